#include "veq/base/internal/file_calls.hpp"

#if VEQ_POSIX_FILES

#include <algorithm>
#include <cerrno>
#include <csignal>

#include "veq/base/internal/replacement.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::internal {
namespace {

// A directory that may be written and searched, but not listed.
#if defined(O_PATH)
constexpr int kSearchOnly = O_PATH;
#elif defined(O_SEARCH)
constexpr int kSearchOnly = O_SEARCH;
#else
constexpr int kSearchOnly = O_RDONLY;
#endif

Descriptor openedDirectory(const std::filesystem::path& path) {
  const char* const name = path.empty() ? "." : path.c_str();
  Descriptor directory = openedAt(AT_FDCWD, name, O_RDONLY | O_DIRECTORY);
  if (directory.isOpen() || errno != EACCES) return directory;
  return openedAt(AT_FDCWD, name, kSearchOnly | O_DIRECTORY);
}

std::string linkToOpenFile(int file) { return "/proc/self/fd/" + std::to_string(file); }

bool sync(int file) {
  return uninterrupted([file] { return ::fsync(file); }) == 0;
}

/// While this lives no signal is handled in this thread: a handler that removes temporary files is
/// to know each of them.
class SignalsWait {
 public:
  SignalsWait() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsWait() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsWait(const SignalsWait&) = delete;
  SignalsWait& operator=(const SignalsWait&) = delete;

 private:
  sigset_t before_{};
};

/// The permissions of a file that replaces `old` and belongs to the owner and group of `now`.
mode_t permissionsAfter(const struct stat& old, const struct stat& now) {
  const bool isGroupKept = now.st_gid == old.st_gid;
  // Who runs the file would borrow the rights of somebody who has never granted them.
  if (isGroupKept && now.st_uid == old.st_uid) return old.st_mode & 07777;
  if (isGroupKept) return old.st_mode & 0777;
  // The old group's members are others now, and some of the others are the group: each of them may
  // do what both might.
  const mode_t both = old.st_mode >> 3 & old.st_mode & 07;
  return (old.st_mode & 0700) | both << 3 | both;
}

}  // namespace

Replacement::Replacement(const std::filesystem::path& target, const struct stat* old)
    : name_(target.filename().string()), names_(name_), old_(old) {
  if (name_.empty()) {
    error_ = std::make_error_code(std::errc::is_a_directory);
    return;
  }
  directory_ = openedDirectory(target.parent_path());
  if (!directory_.isOpen() || !open()) error_ = lastError();
}

Replacement::~Replacement() {
  if (!temporary_.empty()) ::unlinkat(directory_.number(), temporary_.c_str(), 0);
}

bool Replacement::open() {
  // Renaming would not ask for the permission to write to the old file.
  if (old_ && ::faccessat(directory_.number(), name_.c_str(), W_OK, AT_EACCESS) != 0) return false;
  names_.removeOrphans(directory_.number());
  // Nobody else sees what may be private.
  const mode_t mode = old_ ? 0600 : 0666;
  return openWithoutName(mode) ||
         makeNamed([this, mode](const char* name) { return openNamed(name, mode); });
}

bool Replacement::openWithoutName([[maybe_unused]] mode_t mode) {
#ifdef O_TMPFILE
  file_ = openedAt(directory_.number(), ".", O_TMPFILE | O_WRONLY, mode);
  // It is given its name through there.
  const std::string link = linkToOpenFile(file_.number());
  if (file_.isOpen() && ::faccessat(AT_FDCWD, link.c_str(), F_OK, 0) == 0) {
    static_cast<void>(lockTemporary(file_.number()));
    return true;
  }
  file_.close();
#endif
  return false;
}

/// False with EEXIST where somebody else has the name, or has taken the file for an orphan before
/// it was locked.
bool Replacement::openNamed(const char* name, mode_t mode) {
  file_ = openedAt(directory_.number(), name, O_WRONLY | O_CREAT | O_EXCL, mode);
  if (!file_.isOpen()) return false;
  if (lockTemporary(file_.number()) || errno != EWOULDBLOCK) return true;
  file_.close();
  errno = EEXIST;
  return false;
}

/// Lets `make` try one temporary name after the other.
template <class Make>
bool Replacement::makeNamed(Make make) {
  const SignalsWait wait;
  for (unsigned number = 0; number <= TemporaryNames::kCount; ++number) {
    std::string name = names_[number];
    if (!make(name.c_str())) {
      if (errno != EEXIST) return false;
      continue;
    }
    temporary_ = std::move(name);
    struct stat file {};
    struct stat named {};
    if (::fstat(file_.number(), &file) != 0) return false;
    if (::fstatat(directory_.number(), temporary_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0) {
      if (isSameFile(file, named)) {
        registered_.take(directory_.number(), temporary_, file);
        return true;
      }
    } else if (errno != ENOENT) {
      return false;
    }
    // It was taken for an orphan after all.
    temporary_.clear();
    errno = EEXIST;
  }
  return false;
}

/// Owner, group and permissions of the old file, as far as the system lets us.
bool Replacement::takeOver() const {
  const int file = file_.number();
  struct stat now {};
  if (::fstat(file, &now) != 0) return false;
  if (now.st_uid != old_->st_uid || now.st_gid != old_->st_gid) {
    // Only the system's administrator gives files away; a group may be one of our own.
    if (::fchown(file, old_->st_uid, old_->st_gid) != 0) {
      static_cast<void>(::fchown(file, static_cast<uid_t>(-1), old_->st_gid) == 0);
    }
    if (::fstat(file, &now) != 0) return false;
  }
  return ::fchmod(file, permissionsAfter(*old_, now)) == 0;
}

bool Replacement::linkAs(const char* name) const {
  return ::linkat(AT_FDCWD, linkToOpenFile(number()).c_str(), directory_.number(), name,
                  AT_SYMLINK_FOLLOW) == 0;
}

/// Puts the complete file under the target's name.
bool Replacement::rename() {
  if (temporary_.empty()) {
    if (!old_ && linkAs(name_.c_str())) return true;
    // Where a file has appeared meanwhile it is replaced.
    if (!old_ && errno != EEXIST) return false;
    if (!makeNamed([this](const char* name) { return linkAs(name); })) return false;
  }
  if (::renameat(directory_.number(), temporary_.c_str(), directory_.number(), name_.c_str()) !=
      0) {
    return false;
  }
  registered_.release();
  temporary_.clear();
  return true;
}

std::error_code Replacement::putInPlace() {
  const bool isInPlace =
      (!old_ || takeOver()) && sync(number()) && wouldCloseWell(number()) && rename();
  if (!isInPlace) return lastError();
  // The new file stands; whether its name survives a power cut is up to the file system, and a
  // directory that may not be read cannot be synced.
  sync(directory_.number());
  return {};
}

}  // namespace veq::internal

#endif
