#include "veq/base/internal/file_calls.hpp"

#if VEQ_POSIX_FILES

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <random>
#include <stdexcept>
#include <utility>

#include "veq/base/internal/quiet_write_signals.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::internal {
namespace {

/// Repeats a call that a signal interrupted.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// A file descriptor, closed when this dies.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  /// Some file systems report a failed write only here. An interrupted close has closed.
  bool close() {
    const int number = std::exchange(number_, -1);
    return number < 0 || ::close(number) == 0 || errno == EINTR;
  }

 private:
  int number_;
};

int openAt(int directory, const char* path, int flags, mode_t mode = 0) {
  return uninterrupted(
      [&] { return ::openat(directory, path, flags | O_CLOEXEC | O_NOCTTY, mode); });
}

constexpr std::size_t kLargestPiece = std::size_t{1} << 30;  // Some systems refuse 2^31 and more.

bool writePiece(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = uninterrupted(
        [&] { return ::write(file, bytes.data(), std::min(bytes.size(), kLargestPiece)); });
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool writeAll(int file, const ByteSource& bytes) {
  return bytes([file](std::string_view piece) { return writePiece(file, piece); });
}

bool sync(int file) {
  return uninterrupted([&] { return ::fsync(file); }) == 0;
}

bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// A name that nobody can foresee, so that nobody can lie in wait under it. Nothing where the
/// system gives no randomness.
std::optional<std::string> temporaryName() try {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::random_device device;
  std::string name = ".veq-";
  for (int word = 0; word < 2; ++word) {
    std::uint32_t bits = device();
    for (int i = 0; i < 8; ++i, bits >>= 4) name += kDigits[bits & 15];
  }
  return name + ".tmp";
} catch (const std::runtime_error&) {
  return std::nullopt;
}

/// Owner and permissions of `old`. Where the owner cannot be kept, the bits that lend its rights to
/// others are not kept either.
bool takeOver(int file, const struct stat& old) {
  struct stat now {};
  if (::fstat(file, &now) != 0) return false;
  const bool isOwnerKept = (now.st_uid == old.st_uid && now.st_gid == old.st_gid) ||
                           ::fchown(file, old.st_uid, old.st_gid) == 0;
  return ::fchmod(file, old.st_mode & (isOwnerKept ? 07777u : 0777u)) == 0;
}

/// Puts a complete new file in the place of `target`, whose status is `old` if there is one. From
/// the moment there is a temporary file nothing here throws.
bool replaceFile(const std::filesystem::path& target, const ByteSource& bytes,
                 const struct stat* old) {
  const std::string name = target.filename().string();
  const std::filesystem::path parent = target.parent_path();
  const std::optional<std::string> temporary = temporaryName();
  if (name.empty()) errno = EISDIR;
  if (name.empty() || !temporary) return false;
  // All names below are looked up in this directory, even if it is itself renamed meanwhile.
  const Descriptor directory(
      openAt(AT_FDCWD, parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY));
  if (!directory.isOpen()) return false;
  const int in = directory.number();
  // Renaming would not ask for the permission to write to the old file.
  if (old != nullptr && ::faccessat(in, name.c_str(), W_OK, AT_EACCESS) != 0) return false;

  const mode_t mode = old != nullptr ? 0600 : 0666;
  Descriptor file(openAt(in, temporary->c_str(), O_WRONLY | O_CREAT | O_EXCL, mode));
  if (!file.isOpen()) return false;
  const bool isWritten = writeAll(file.number(), bytes) &&
                         (old == nullptr || takeOver(file.number(), *old)) && sync(file.number()) &&
                         file.close();
  if (!isWritten || ::renameat(in, temporary->c_str(), in, name.c_str()) != 0) {
    ::unlinkat(in, temporary->c_str(), 0);
    return false;
  }
  // The new file stands; whether its name survives a power cut is up to the file system.
  sync(in);
  return true;
}

bool createInPlace(const std::filesystem::path& target, const ByteSource& bytes) {
  Descriptor file(openAt(AT_FDCWD, target.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666));
  if (!file.isOpen()) return false;
  if (writeAll(file.number(), bytes) && file.close()) return true;
  ::unlink(target.c_str());
  return false;
}

/// Whether `target` is the file that opening `path` leads to: a link such as /dev/stdout may lead
/// to a file that no path names. Somebody else may replace the file between the two looks, so that
/// a difference counts only if it stays.
bool isWhereLinksLead(const std::string& path, const std::filesystem::path& target) {
  for (int look = 0; look < 100; ++look) {
    struct stat opened {};
    struct stat named {};
    if (::stat(path.c_str(), &opened) != 0 || ::stat(target.c_str(), &named) != 0) return false;
    if (isSameFile(opened, named)) return true;
  }
  return false;
}

bool overwriteInPlace(const std::string& path, const ByteSource& bytes) {
  Descriptor file(openAt(AT_FDCWD, path.c_str(), O_WRONLY | O_TRUNC));
  return file.isOpen() && writeAll(file.number(), bytes) && file.close();
}

}  // namespace

struct ReadableFile::State {
  explicit State(const std::string& path) : file(openAt(AT_FDCWD, path.c_str(), O_RDONLY)) {
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

bool writeFile(const std::string& path, const ByteSource& bytes, bool atomically) {
  struct stat old {};
  const bool exists = ::stat(path.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) return false;
  // Pipes and devices hold nothing that could be replaced; a directory refuses to be opened.
  if (exists && (!atomically || !S_ISREG(old.st_mode))) return overwriteInPlace(path, bytes);

  const std::optional<std::filesystem::path> target =
      behindLinks(path, [](const std::filesystem::path&) { return false; });
  if (!target) return false;
  if (!exists) {
    return atomically ? replaceFile(*target, bytes, nullptr) : createInPlace(*target, bytes);
  }
  const bool isLink = *target != std::filesystem::path(path);
  if (isLink && !isWhereLinksLead(path, *target)) return overwriteInPlace(path, bytes);
  return replaceFile(*target, bytes, &old);
}

}  // namespace

std::error_code writeBytes(const std::string& path, const ByteSource& bytes, bool atomically) {
  const QuietWriteSignals quiet;
  return writeFile(path, bytes, atomically) ? std::error_code() : lastError();
}

std::error_code writeBytesToStandardOutput(const ByteSource& bytes) {
  const QuietWriteSignals quiet;
  return std::fflush(stdout) == 0 && writeAll(STDOUT_FILENO, bytes) ? std::error_code()
                                                                    : lastError();
}

std::error_code writingError(const std::string& path) {
  struct stat old {};
  if (::stat(path.c_str(), &old) != 0) return errno == ENOENT ? std::error_code() : lastError();
  if (S_ISDIR(old.st_mode)) return std::make_error_code(std::errc::is_a_directory);
  if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return lastError();
  return {};
}

}  // namespace veq::internal

#endif
