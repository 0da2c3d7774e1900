#include "veq/base/internal/whole_files.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>
#include <system_error>

#include "veq/base/internal/file_calls.hpp"

namespace veq::internal {
namespace {

constexpr std::size_t kFirstChunk = std::size_t{64} << 10;

bool isPossiblePath(std::string_view path) { return !path.empty() && path.find('\0') == path.npos; }

/// Makes room behind what has been read: for the size the system reports, then by doubling.
void makeRoom(std::string& bytes, std::uint64_t expected) {
  const std::uint64_t wanted = bytes.empty()
                                   ? std::max<std::uint64_t>(expected, kFirstChunk - 1) + 1
                                   : std::uint64_t{2} * bytes.size();
  if (wanted > bytes.max_size()) throw std::bad_alloc();
  bytes.resize(static_cast<std::size_t>(wanted));
}

}  // namespace

std::optional<std::filesystem::path> behindLinks(std::filesystem::path path) {
  std::error_code error;
  for (int links = 0; links < 40; ++links) {
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error))) return path;
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    if (error) return std::nullopt;
    path = path.parent_path() / next;
  }
  return std::nullopt;
}

FileContents readWholeFile(std::string_view path) {
  FileContents contents;
  contents.failure = ReadFailure::kCannotBeOpened;
  if (!isPossiblePath(path)) return contents;
  ReadableFile file(std::string{path});
  if (!file.isOpen()) return contents;
  contents.failure = ReadFailure::kIsADirectory;
  if (file.isDirectory()) return contents;

  std::string& bytes = contents.bytes;
  std::size_t filled = 0;
  for (;;) {
    // One byte more than expected, so that the end is seen without growing.
    if (filled == bytes.size()) makeRoom(bytes, file.expectedSize());
    const std::ptrdiff_t count = file.read(bytes.data() + filled, bytes.size() - filled);
    if (count < 0) return {{}, ReadFailure::kCannotBeRead};
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  bytes.resize(filled);
  contents.failure = ReadFailure::kNone;
  return contents;
}

std::string_view textOf(ReadFailure failure) {
  constexpr std::array<std::string_view, 4> kTexts = {"", "cannot be opened", "is a directory",
                                                      "cannot be read"};
  return kTexts[static_cast<std::size_t>(failure)];
}

bool writeWholeFile(std::string_view path, const ByteSource& bytes, bool atomically) {
  return isPossiblePath(path) && writeFile(std::string(path), bytes, atomically);
}

bool writeWholeFile(std::string_view path, std::string_view bytes, bool atomically) {
  const ByteSource source = [bytes](const ByteSink& sink) { return sink(bytes); };
  return writeWholeFile(path, source, atomically);
}

}  // namespace veq::internal
