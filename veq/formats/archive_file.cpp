#include "veq/formats/archive_file.hpp"

#include <new>
#include <stdexcept>

#include "veq/base/internal/whole_files.hpp"
#include "veq/formats/keyed_archiver.hpp"

namespace veq {

bool writeArchiveToFile(const VEQNetwork& network, std::string_view path, bool atomically) {
  VEQKeyedArchiver archiver;
  network.encodeWithCoder(archiver);
  return internal::writeWholeFile(path, archiver.bytes(), atomically);
}

Owned<VEQNetwork> networkWithArchiveFile(std::string_view path) {
  try {
    const internal::FileContents contents = internal::readWholeFile(path);
    if (!contents) return nullptr;
    VEQKeyedUnarchiver unarchiver(contents.bytes);
    return VEQNetwork::initWithCoder(unarchiver);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace veq
