#include "veq/base/files.hpp"

#include <new>

#include "veq/base/internal/byte_stream.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq {
namespace {

constexpr std::string_view kStandardStream = "-";

Error lackOfMemory() { return Error(ErrorKind::kMemory, "not enough memory"); }

}  // namespace

Result<std::string> readFile(std::string_view path) try {
  return internal::readRest(internal::openedInput(path));
} catch (const std::bad_alloc&) {
  return lackOfMemory();
}

Outcome writeFile(std::string_view path, std::string_view bytes) {
  return writeFile(path, internal::sourceOf(bytes));
}

Outcome writeFile(std::string_view path, const ByteSource& bytes) {
  return path == kStandardStream ? internal::writeStandardOutput(bytes)
                                 : internal::writeWholeFile(path, bytes, true);
}

Outcome checkWritable(std::string_view path) {
  return path == kStandardStream ? Outcome(std::monostate{}) : internal::checkWritablePath(path);
}

}  // namespace veq
