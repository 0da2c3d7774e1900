#include "veq/base/internal/file_calls.hpp"

#if !VEQ_POSIX_FILES

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "veq/base/internal/entropy.hpp"
#include "veq/base/internal/whole_files.hpp"

// What the standard library offers: nothing is synced to the disk, and owners are not kept.

namespace veq::internal {

namespace fs = std::filesystem;

namespace {

struct CloseStream {
  void operator()(std::FILE* stream) const { static_cast<void>(std::fclose(stream)); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

Stream opened(const fs::path& path, const char* mode) {
  errno = 0;
  return Stream(std::fopen(path.string().c_str(), mode));
}

}  // namespace

struct ReadableFile::State {
  Stream file;
  std::error_code error;
  std::uint64_t size = 0;
};

ReadableFile::ReadableFile(const std::string& path) : state_(std::make_unique<State>()) {
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) {
    state_->error = std::make_error_code(std::errc::is_a_directory);
    return;
  }
  state_->file = opened(path, "rb");
  if (!state_->file) state_->error = lastError();
  const std::uintmax_t size = fs::file_size(path, ignored);
  state_->size = ignored ? 0 : size;
}

ReadableFile::~ReadableFile() = default;

const std::error_code& ReadableFile::error() const { return state_->error; }
std::uint64_t ReadableFile::expectedSize() const { return state_->size; }

std::size_t ReadableFile::read(char* into, std::size_t capacity) {
  errno = 0;
  const std::size_t count = std::fread(into, 1, capacity, state_->file.get());
  if (std::ferror(state_->file.get()) != 0) state_->error = lastError();
  return count;
}

namespace {

/// Writes what the source gives, and takes care that the system has it.
std::error_code writeAll(std::FILE* stream, const ByteSource& bytes) {
  errno = 0;
  const bool gaveAll = bytes([stream](std::string_view piece) {
    return std::fwrite(piece.data(), 1, piece.size(), stream) == piece.size();
  });
  if (std::fflush(stream) != 0 || std::ferror(stream) != 0) return lastError();
  return gaveAll ? std::error_code() : std::make_error_code(std::errc::operation_canceled);
}

std::error_code writeAndClose(Stream stream, const ByteSource& bytes) {
  if (!stream) return lastError();
  const std::error_code error = writeAll(stream.get(), bytes);
  const bool isClosed = std::fclose(stream.release()) == 0;
  return error || isClosed ? error : lastError();
}

/// A file that did not exist, and that vanishes with this unless it is kept.
class NewFile {
 public:
  explicit NewFile(fs::path path) : path_(std::move(path)), stream_(opened(path_, "wbx")) {
    if (stream_)
      isOurs_ = true;
    else
      error_ = lastError();
  }
  ~NewFile() {
    stream_.reset();
    std::error_code ignored;
    if (isOurs_) fs::remove(path_, ignored);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  const std::error_code& error() const { return error_; }
  const fs::path& path() const { return path_; }
  std::error_code write(const ByteSource& bytes) {
    return writeAndClose(std::move(stream_), bytes);
  }
  void keep() { isOurs_ = false; }

 private:
  fs::path path_;
  Stream stream_;
  std::error_code error_;
  bool isOurs_ = false;
};

/// A name beside `target` that nobody else uses.
fs::path temporaryBeside(const fs::path& target) {
  return target.parent_path() /
         (".veq-" + std::to_string(systemEntropy()) + std::to_string(systemEntropy()) + ".tmp");
}

/// Why the target cannot be replaced. Renaming would not ask for the permission to write to it.
std::error_code replacingError(const fs::path& target, bool exists) {
  if (!target.has_filename()) return std::make_error_code(std::errc::is_a_directory);
  return exists && !opened(target, "ab") ? lastError() : std::error_code();
}

std::error_code replaceFile(const fs::path& target, const ByteSource& bytes, bool exists) {
  std::error_code error = replacingError(target, exists);
  if (error) return error;
  NewFile file(temporaryBeside(target));
  if (file.error()) return file.error();
  const fs::perms old = fs::status(target, error).permissions();
  // Nobody but its owner sees what is to be private later.
  if (exists) fs::permissions(file.path(), fs::perms::owner_read | fs::perms::owner_write, error);
  if (error = file.write(bytes); error) return error;
  if (exists) fs::permissions(file.path(), old, error);
  if (!error) fs::rename(file.path(), target, error);
  if (!error) file.keep();
  return error;
}

std::error_code createInPlace(const fs::path& target, const ByteSource& bytes) {
  NewFile file(target);
  if (file.error()) return file.error();
  const std::error_code error = file.write(bytes);
  if (!error) file.keep();
  return error;
}

/// What lies behind a path.
struct Destination {
  explicit Destination(const std::string& path)
      : target(behindLinks(path, [](const fs::path&) { return false; })) {
    const fs::file_status status = fs::status(path, error);
    exists = fs::exists(status);
    isRegular = fs::is_regular_file(status);
    if (fs::is_directory(status))
      error = std::make_error_code(std::errc::is_a_directory);
    else if (exists || status.type() == fs::file_type::not_found)
      error.clear();
    if (!error && !target) error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  }
  std::optional<fs::path> target;
  bool exists = false;
  bool isRegular = false;
  std::error_code error;
};

}  // namespace

struct SpoolFile::State {
  std::string folder;
  std::error_code error;
  Stream file;
};

// The standard library makes it where it likes.
SpoolFile::SpoolFile(const std::string& /*folder*/) : state_(std::make_unique<State>()) {
  state_->folder = fs::temp_directory_path(state_->error).string();
  errno = 0;
  state_->file = Stream(std::tmpfile());
  state_->error = state_->file ? std::error_code() : lastError();
}

SpoolFile::~SpoolFile() = default;

const std::error_code& SpoolFile::error() const { return state_->error; }
const std::string& SpoolFile::folder() const { return state_->folder; }

bool SpoolFile::write(std::string_view bytes) {
  errno = 0;
  const bool isWritten =
      std::fwrite(bytes.data(), 1, bytes.size(), state_->file.get()) == bytes.size();
  if (!isWritten) state_->error = lastError();
  return isWritten;
}

std::size_t SpoolFile::readAt(std::uint64_t place, char* into, std::size_t capacity) {
  errno = 0;
  std::FILE* const file = state_->file.get();
  const bool isThere =
      place <= LONG_MAX && std::fseek(file, static_cast<long>(place), SEEK_SET) == 0;
  const std::size_t count = isThere ? std::fread(into, 1, capacity, file) : 0;
  if (!isThere || std::ferror(file) != 0) state_->error = lastError();
  return count;
}

std::error_code writeBytes(const std::string& path, const ByteSource& bytes, bool atomically) {
  const Destination destination(path);
  if (destination.error) return destination.error;
  if (atomically && (!destination.exists || destination.isRegular)) {
    return replaceFile(*destination.target, bytes, destination.exists);
  }
  return destination.exists ? writeAndClose(opened(path, "wb"), bytes)
                            : createInPlace(*destination.target, bytes);
}

std::error_code writeBytesToStandardOutput(const ByteSource& bytes) {
  return writeAll(stdout, bytes);
}

std::error_code writingError(const std::string& path) {
  const Destination destination(path);
  if (destination.error || (destination.exists && !destination.isRegular)) return destination.error;
  const std::error_code error = replacingError(*destination.target, destination.exists);
  return error ? error : NewFile(temporaryBeside(*destination.target)).error();
}

}  // namespace veq::internal

namespace veq {

// The standard library has nothing that a signal handler may call for this. A test that puts this
// layer in the place of the other keeps that one's function.
#ifndef VEQ_PORTABLE_FILES
void removeTemporaryFiles() noexcept {}
#endif

}  // namespace veq

#endif
