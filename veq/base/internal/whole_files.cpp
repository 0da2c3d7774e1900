#include "veq/base/internal/whole_files.hpp"

#include <algorithm>
#include <cerrno>
#include <new>
#include <variant>

#include "veq/base/internal/byte_stream.hpp"
#include "veq/base/internal/file_calls.hpp"

namespace veq::internal {
namespace {

constexpr std::size_t kFirstChunk = std::size_t{64} << 10;

Outcome outcomeOf(const std::error_code& error) {
  return error ? Outcome(fileError(error)) : Outcome(std::monostate{});
}

}  // namespace

std::error_code errorOfPath(std::string_view path) {
  if (path.empty()) return std::make_error_code(std::errc::no_such_file_or_directory);
  if (path.find('\0') != path.npos) return std::make_error_code(std::errc::invalid_argument);
  return {};
}

std::error_code lastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

Error fileError(const std::error_code& error) { return Error(ErrorKind::kFile, error.message()); }

std::size_t nextCapacity(std::size_t size, std::uint64_t expected) {
  const std::uint64_t wanted =
      size == 0 ? std::max<std::uint64_t>(expected, kFirstChunk - 1) + 1 : std::uint64_t{2} * size;
  if (wanted > std::string().max_size()) throw std::bad_alloc();
  return static_cast<std::size_t>(wanted);
}

ByteSource sourceOf(std::string_view bytes) {
  return [bytes](const ByteSink& sink) { return sink(bytes); };
}

Result<std::string> readWholeFile(std::string_view path) { return readRest(openedFile(path)); }

Outcome writeWholeFile(std::string_view path, const ByteSource& bytes, bool atomically) {
  const std::error_code error = errorOfPath(path);
  return outcomeOf(error ? error : writeBytes(std::string(path), bytes, atomically));
}

Outcome writeWholeFile(std::string_view path, std::string_view bytes, bool atomically) {
  return writeWholeFile(path, sourceOf(bytes), atomically);
}

Outcome writeStandardOutput(const ByteSource& bytes) {
  return outcomeOf(writeBytesToStandardOutput(bytes));
}

Outcome checkWritablePath(std::string_view path) {
  const std::error_code error = errorOfPath(path);
  return outcomeOf(error ? error : writingError(std::string(path)));
}

}  // namespace veq::internal
