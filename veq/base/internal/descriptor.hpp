/// \file
/// Open files of a POSIX system.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace veq::internal {

/// Repeats a call that a signal interrupted.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// A file descriptor, closed when this dies. Negative numbers are none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      close();
      number_ = std::exchange(other.number_, -1);
    }
    return *this;
  }

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

inline Descriptor openedAt(int directory, const char* path, int flags, mode_t mode = 0) {
  return Descriptor(
      uninterrupted([&] { return ::openat(directory, path, flags | O_CLOEXEC | O_NOCTTY, mode); }));
}

/// What closing the file would say, without closing it.
inline bool wouldCloseWell(int file) {
  return Descriptor(::fcntl(file, F_DUPFD_CLOEXEC, 0)).close();
}

inline bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Whether `name` in the directory, itself and not what a link leads to, is this file.
inline bool isNameOf(int directory, const char* name, const struct stat& file) {
  struct stat named {};
  return ::fstatat(directory, name, &named, AT_SYMLINK_NOFOLLOW) == 0 && isSameFile(named, file);
}

}  // namespace veq::internal
