/// \file
/// The operating system's own calls for files, with the standard library's in their place where
/// there are none. Paths are not empty and hold no NUL; an error_code that is not set is success.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "veq/base/files.hpp"

// Which of the two it is. The portable one can be had anywhere, so that it is tested.
#if (defined(__unix__) || defined(__APPLE__)) && !defined(VEQ_PORTABLE_FILES)
#define VEQ_POSIX_FILES 1
#else
#define VEQ_POSIX_FILES 0
#endif

namespace veq::internal {

/// A file open for reading while this lives.
class ReadableFile {
 public:
  explicit ReadableFile(const std::string& path);
  ~ReadableFile();
  ReadableFile(const ReadableFile&) = delete;
  ReadableFile& operator=(const ReadableFile&) = delete;

  /// Of opening it, or of reading.
  const std::error_code& error() const;
  /// A hint; 0 where the system knows none.
  std::uint64_t expectedSize() const;
  /// The number of bytes read, 0 at the end and where that fails.
  std::size_t read(char* into, std::size_t capacity);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// What has to be read more than once, in a file that no path names and that vanishes with this.
class SpoolFile {
 public:
  /// In that folder, or in the system's for temporary files where it is empty.
  explicit SpoolFile(const std::string& folder);
  ~SpoolFile();
  SpoolFile(const SpoolFile&) = delete;
  SpoolFile& operator=(const SpoolFile&) = delete;

  /// Of making it, or of writing or reading.
  const std::error_code& error() const;
  /// The folder in which it takes room.
  const std::string& folder() const;
  /// Appends the bytes; false where that fails.
  bool write(std::string_view bytes);
  /// The number of bytes read from that place on, 0 at the end and where that fails.
  std::size_t readAt(std::uint64_t place, char* into, std::size_t capacity);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Follows the symbolic links that a path ends in, as opening it would, whether or not there is a
/// file at the end, or up to the first path that `isEnd` takes for one. Nothing for a circle.
std::optional<std::filesystem::path> behindLinks(std::filesystem::path path,
                                                 bool (*isEnd)(const std::filesystem::path&));

/// writeWholeFile, writeStandardOutput and checkWritablePath.
std::error_code writeBytes(const std::string& path, const ByteSource& bytes, bool atomically);
std::error_code writeBytesToStandardOutput(const ByteSource& bytes);
std::error_code writingError(const std::string& path);

}  // namespace veq::internal
