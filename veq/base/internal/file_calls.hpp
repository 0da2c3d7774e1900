/// \file
/// The operating system's own calls for files, with the standard library's in their place where
/// there are none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "veq/base/internal/whole_files.hpp"

namespace veq::internal {

/// A file open for reading while this lives.
class ReadableFile {
 public:
  explicit ReadableFile(const std::string& path);
  ~ReadableFile();
  ReadableFile(const ReadableFile&) = delete;
  ReadableFile& operator=(const ReadableFile&) = delete;

  bool isOpen() const;
  bool isDirectory() const;
  /// A hint; 0 where the system knows none.
  std::uint64_t expectedSize() const;
  /// Bytes read, 0 at the end, -1 on failure.
  std::ptrdiff_t read(char* into, std::size_t capacity);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Follows the symbolic links that a path ends in, as opening it would, whether or not there is a
/// file at the end. Nothing for a circle of links.
std::optional<std::filesystem::path> behindLinks(std::filesystem::path path);

/// writeWholeFile for a path that is not empty and holds no NUL.
bool writeFile(const std::string& path, const ByteSource& bytes, bool atomically);

}  // namespace veq::internal
