#include "veq/base/internal/file_calls.hpp"

#if VEQ_POSIX_FILES

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>

#include "veq/base/internal/descriptor.hpp"
#include "veq/base/internal/entropy.hpp"
#include "veq/base/internal/quiet_write_signals.hpp"
#include "veq/base/internal/replacement.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::internal {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLargestPiece = std::size_t{1} << 30;  // Some systems refuse 2^31 and more.

}  // namespace

struct ReadableFile::State {
  explicit State(const std::string& path) : file(openedAt(AT_FDCWD, path.c_str(), O_RDONLY)) {
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) error = lastError();
    if (S_ISDIR(status.st_mode)) error = std::make_error_code(std::errc::is_a_directory);
  }
  Descriptor file;
  struct stat status {};
  std::error_code error;
};

ReadableFile::ReadableFile(const std::string& path) : state_(std::make_unique<State>(path)) {}

ReadableFile::~ReadableFile() = default;

const std::error_code& ReadableFile::error() const { return state_->error; }

std::uint64_t ReadableFile::expectedSize() const {
  return S_ISREG(state_->status.st_mode) ? static_cast<std::uint64_t>(state_->status.st_size) : 0;
}

std::size_t ReadableFile::read(char* into, std::size_t capacity) {
  const ssize_t count = uninterrupted(
      [&] { return ::read(state_->file.number(), into, std::min(capacity, kLargestPiece)); });
  if (count < 0) state_->error = lastError();
  return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

namespace {

std::error_code writePiece(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = uninterrupted(
        [&] { return ::write(file, bytes.data(), std::min(bytes.size(), kLargestPiece)); });
    if (count < 0) return lastError();
    if (count == 0) return std::make_error_code(std::errc::io_error);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return {};
}

/// A file that no path names, or none.
Descriptor openedWithoutName(const std::string& folder) {
#ifdef O_TMPFILE
  if (Descriptor file = openedAt(AT_FDCWD, folder.c_str(), O_TMPFILE | O_RDWR, 0600);
      file.isOpen()) {
    return file;
  }
#endif
  const std::string path = folder + "/.veq-" + std::to_string(systemEntropy()) +
                           std::to_string(systemEntropy()) + ".spool";
  Descriptor file = openedAt(AT_FDCWD, path.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
  if (file.isOpen()) ::unlink(path.c_str());
  return file;
}

std::error_code writeAll(int file, const ByteSource& bytes) {
  std::error_code error;
  const bool gaveAll = bytes([file, &error](std::string_view piece) {
    error = writePiece(file, piece);
    return !error;
  });
  return gaveAll || error ? error : std::make_error_code(std::errc::operation_canceled);
}

std::error_code writeAndClose(Descriptor file, const ByteSource& bytes) {
  if (!file.isOpen()) return lastError();
  const std::error_code error = writeAll(file.number(), bytes);
  return error || file.close() ? error : lastError();
}

std::error_code replaceFile(const fs::path& target, const ByteSource& bytes,
                            const struct stat* old) {
  Replacement file(target, old);
  if (file.error()) return file.error();
  const std::error_code error = writeAll(file.number(), bytes);
  return error ? error : file.putInPlace();
}

/// A file that did not exist, and that vanishes with this unless it is kept.
class NewFile {
 public:
  explicit NewFile(const fs::path& path)
      : path_(path), file_(openedAt(AT_FDCWD, path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666)) {}
  ~NewFile() {
    struct stat status {};
    // Somebody else may have put another one in its place.
    if (file_.isOpen() && ::fstat(file_.number(), &status) == 0 &&
        isNameOf(AT_FDCWD, path_.c_str(), status)) {
      ::unlink(path_.c_str());
    }
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  bool isOpen() const { return file_.isOpen(); }
  int number() const { return file_.number(); }
  bool keep() {
    if (!wouldCloseWell(file_.number())) return false;
    file_.close();
    return true;
  }

 private:
  const fs::path& path_;
  Descriptor file_;
};

std::error_code createInPlace(const fs::path& target, const ByteSource& bytes) {
  NewFile file(target);
  if (!file.isOpen()) return lastError();
  const std::error_code error = writeAll(file.number(), bytes);
  return error || file.keep() ? error : lastError();
}

/// The open file of this process that a path in a folder such as /proc/self/fd stands for.
std::optional<int> ownDescriptor(const fs::path& path) {
  const std::string name = path.filename().string();
  const bool isNumber = !name.empty() && name.find_first_not_of("0123456789") == name.npos;
  if (!isNumber || name.size() > 9 || (name[0] == '0' && name != "0")) return std::nullopt;
  std::error_code error;
  const fs::path folder = fs::canonical(path.parent_path(), error);
  if (error) return std::nullopt;
  for (const char* own : {"/proc/self/fd", "/proc/thread-self/fd", "/dev/fd"}) {
    if (fs::canonical(own, error) == folder) return std::stoi(name);
  }
  return std::nullopt;
}

bool isOwnDescriptor(const fs::path& path) { return ownDescriptor(path).has_value(); }

/// Where the file stands and in its mode, as if it had been written to all along: opening its link
/// anew would begin at the file's start and cut off what has been written before.
std::error_code writeToDescriptor(int file, const ByteSource& bytes) {
  // What the process has printed comes first.
  if (file == STDOUT_FILENO && std::fflush(stdout) != 0) return lastError();
  return writeAll(file, bytes);
}

/// Whether `target` is the file that opening `path` leads to: a link of the system's may lead to a
/// file that no path names. Somebody else may replace the file between the two looks, so that a
/// difference counts only if it stays.
bool isWhereLinksLead(const std::string& path, const fs::path& target) {
  for (int look = 0; look < 100; ++look) {
    struct stat opened {};
    struct stat named {};
    if (::stat(path.c_str(), &opened) != 0 || ::stat(target.c_str(), &named) != 0) return false;
    if (isSameFile(opened, named)) return true;
  }
  return false;
}

/// What a path leads to, and how it is to be written.
struct Destination {
  enum class Way { kReplace, kCreate, kOverwrite, kDescriptor };

  Destination(const std::string& path, bool atomically)
      : target(behindLinks(path, isOwnDescriptor)) {
    if (target) descriptor = ownDescriptor(*target);
    exists = ::stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) error = lastError();
    if (S_ISDIR(status.st_mode)) error = std::make_error_code(std::errc::is_a_directory);
    if (!exists && !target) error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
    way = chosenWay(path, atomically);
  }

  std::optional<fs::path> target;
  std::optional<int> descriptor;
  struct stat status {};
  bool exists = false;
  std::error_code error;
  Way way;

 private:
  Way chosenWay(const std::string& path, bool atomically) const {
    if (descriptor) return Way::kDescriptor;
    if (!exists) return atomically ? Way::kReplace : Way::kCreate;
    // Pipes and devices hold nothing that could be replaced.
    if (!atomically || !S_ISREG(status.st_mode) || !target) return Way::kOverwrite;
    const bool isLink = *target != fs::path(path);
    return isLink && !isWhereLinksLead(path, *target) ? Way::kOverwrite : Way::kReplace;
  }
};

using Way = Destination::Way;

}  // namespace

struct SpoolFile::State {
  std::string folder;
  std::error_code error;
  Descriptor file;
};

SpoolFile::SpoolFile(const std::string& folder) : state_(std::make_unique<State>()) {
  state_->folder = folder;
  if (folder.empty()) state_->folder = fs::temp_directory_path(state_->error).string();
  if (state_->error) return;
  state_->file = openedWithoutName(state_->folder);
  if (!state_->file.isOpen()) state_->error = lastError();
}

SpoolFile::~SpoolFile() = default;

const std::error_code& SpoolFile::error() const { return state_->error; }
const std::string& SpoolFile::folder() const { return state_->folder; }

bool SpoolFile::write(std::string_view bytes) {
  const QuietWriteSignals quiet;
  state_->error = writePiece(state_->file.number(), bytes);
  return !state_->error;
}

std::size_t SpoolFile::readAt(std::uint64_t place, char* into, std::size_t capacity) {
  const ssize_t count = uninterrupted([&] {
    return ::pread(state_->file.number(), into, std::min(capacity, kLargestPiece),
                   static_cast<off_t>(place));
  });
  if (count < 0) state_->error = lastError();
  return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

std::error_code writeBytes(const std::string& path, const ByteSource& bytes, bool atomically) {
  const QuietWriteSignals quiet;
  const Destination to(path, atomically);
  if (to.error) return to.error;
  switch (to.way) {
    case Way::kDescriptor:
      return writeToDescriptor(*to.descriptor, bytes);
    case Way::kReplace:
      return replaceFile(*to.target, bytes, to.exists ? &to.status : nullptr);
    case Way::kCreate:
      return createInPlace(*to.target, bytes);
    case Way::kOverwrite:
      break;
  }
  return writeAndClose(openedAt(AT_FDCWD, path.c_str(), O_WRONLY | O_TRUNC), bytes);
}

std::error_code writeBytesToStandardOutput(const ByteSource& bytes) {
  const QuietWriteSignals quiet;
  return writeToDescriptor(STDOUT_FILENO, bytes);
}

std::error_code writingError(const std::string& path) {
  const Destination to(path, true);
  if (to.error) return to.error;
  if (to.way == Way::kReplace) {
    return Replacement(*to.target, to.exists ? &to.status : nullptr).error();
  }
  if (to.way == Way::kOverwrite) {
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? std::error_code()
                                                                      : lastError();
  }
  const int mode = ::fcntl(*to.descriptor, F_GETFL);
  if (mode < 0) return lastError();
  return (mode & O_ACCMODE) != O_RDONLY ? std::error_code()
                                        : std::make_error_code(std::errc::bad_file_descriptor);
}

}  // namespace veq::internal

#endif
