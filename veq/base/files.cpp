#include "veq/base/files.hpp"

#include <cerrno>
#include <cstdio>
#include <new>

#include "veq/base/internal/whole_files.hpp"

namespace veq {
namespace {

constexpr std::string_view kStandardStream = "-";

Error lackOfMemory() { return Error(ErrorKind::kMemory, "not enough memory"); }

Result<std::string> readStandardInput() {
  std::string bytes;
  std::size_t filled = 0;
  while (std::feof(stdin) == 0) {
    bytes.resize(internal::nextCapacity(bytes.size(), 0));
    errno = 0;
    filled += std::fread(bytes.data() + filled, 1, bytes.size() - filled, stdin);
    if (std::ferror(stdin) != 0) return internal::fileError(internal::lastError());
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace

Result<std::string> readFile(std::string_view path) try {
  return path == kStandardStream ? readStandardInput() : internal::readWholeFile(path);
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
