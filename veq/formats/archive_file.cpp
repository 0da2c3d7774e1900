#include "veq/formats/archive_file.hpp"

#include "veq/base/internal/whole_files.hpp"
#include "veq/formats/internal/network_archive.hpp"
#include "veq/formats/keyed_archiver.hpp"

namespace veq {

bool writeArchiveToFile(const VEQNetwork& network, std::string_view path, bool atomically) {
  VEQKeyedArchiver archiver;
  network.encodeWithCoder(archiver);
  return internal::writeWholeFile(path, archiver.bytes(), atomically).hasValue();
}

Owned<VEQNetwork> networkWithArchiveFile(std::string_view path) {
  return internal::orNothing([path]() -> Owned<VEQNetwork> {
    const Result<std::string> bytes = internal::readWholeFile(path);
    if (!bytes) return nullptr;
    VEQKeyedUnarchiver unarchiver(bytes.value());
    if (!internal::hasVersion(unarchiver)) return VEQNetwork::initWithCoder(unarchiver);
    try {
      internal::ArchivedEnds ends;
      return internal::CoreAccess::build(internal::draftOfArchive(unarchiver, ends));
    } catch (const Error&) {
      return nullptr;
    }
  });
}

}  // namespace veq
