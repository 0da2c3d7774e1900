#include "veq/base/internal/byte_stream.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "veq/base/internal/file_calls.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::internal {

std::string_view ByteStream::head() {
  fillUpTo(piece_);
  return std::string_view(ahead_).substr(taken_);
}

void ByteStream::fillUpTo(std::size_t size) {
  std::size_t filled = ahead_.size();
  if (ended_ || filled - taken_ >= size) return;
  ahead_.resize(taken_ + size);
  while (filled < ahead_.size() && !ended_) {
    const std::size_t count = fill_(ahead_.data() + filled, ahead_.size() - filled);
    filled += count;
    ended_ = count == 0;
  }
  ahead_.resize(filled);
}

std::size_t ByteStream::read(char* into, std::size_t capacity) {
  if (taken_ < ahead_.size()) {
    const std::size_t count = std::min(capacity, ahead_.size() - taken_);
    std::memcpy(into, ahead_.data() + taken_, count);
    taken_ += count;
    return count;
  }
  if (!ahead_.empty()) {
    std::string().swap(ahead_);
    taken_ = 0;
  }
  if (ended_ || capacity == 0) return 0;
  const std::size_t count = fill_(into, capacity);
  ended_ = count == 0;
  return count;
}

std::string ByteStream::takeRest() {
  std::string bytes = std::move(ahead_);
  bytes.erase(0, taken_);
  ahead_.clear();
  taken_ = 0;
  std::size_t filled = bytes.size();
  while (!ended_) {
    if (filled == bytes.size()) {
      // Beyond what was expected, or where nothing was, twice as much each time.
      bytes.resize(filled <= expected_ && expected_ != 0 ? nextCapacity(0, expected_)
                                                         : nextCapacity(filled, 0));
    }
    const std::size_t count = fill_(bytes.data() + filled, bytes.size() - filled);
    filled += count;
    ended_ = count == 0;
  }
  bytes.resize(filled);
  return bytes;
}

namespace {

ByteStream standardInput() {
  const auto fill = [](char* into, std::size_t capacity) -> std::size_t {
    if (std::feof(stdin) != 0) return 0;
    errno = 0;
    const std::size_t count = std::fread(into, 1, capacity, stdin);
    if (std::ferror(stdin) != 0) throw fileError(lastError());
    return count;
  };
  return {fill, 0};
}

}  // namespace

Result<ByteStream> openedFile(std::string_view path) {
  if (const std::error_code error = errorOfPath(path)) return fileError(error);
  const auto file = std::make_shared<ReadableFile>(std::string(path));
  if (file->error()) return fileError(file->error());
  const auto fill = [file](char* into, std::size_t capacity) {
    const std::size_t count = file->read(into, capacity);
    if (file->error()) throw fileError(file->error());
    return count;
  };
  return ByteStream(fill, file->expectedSize());
}

Result<ByteStream> openedInput(std::string_view path) {
  return path == "-" ? standardInput() : openedFile(path);
}

Result<std::string> readRest(Result<ByteStream> bytes) try {
  if (!bytes) return bytes.error();
  return bytes.value().takeRest();
} catch (const Error& error) {
  return error;
}

}  // namespace veq::internal
