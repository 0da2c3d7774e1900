#include "tests/support/failing_calls.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

// The linker sends every call of these functions in the program's own objects and in the library to
// __wrap_..., and calls of __real_... to the functions themselves.
extern "C" {
int __real_openat(int directory, const char* path, int flags, mode_t mode);
ssize_t __real_write(int file, const void* bytes, size_t count);
int __real_fsync(int file);
int __real_fstat(int file, struct stat* status);
int __real_fchown(int file, uid_t owner, gid_t group);
int __real_fchmod(int file, mode_t mode);
int __real_faccessat(int directory, const char* path, int mode, int flags);
int __real_fstatat(int directory, const char* path, struct stat* status, int flags);
int __real_flock(int file, int operation);
int __real_linkat(int from, const char* old, int to, const char* name, int flags);
int __real_renameat(int from, const char* old, int to, const char* name);
int __real_unlinkat(int directory, const char* path, int flags);
int __real_unlink(const char* path);
int __real_close(int file);
}

namespace veq::test {
namespace {

using Mode = FailingCall::Mode;

struct State {
  bool armed = false;
  Mode mode = Mode::kFail;
  std::uint64_t n = 0;
  int error = 0;
  bool happened = false;
  std::uint64_t calls = 0;
  std::string trace;
};

thread_local State state;
thread_local bool onlyNamedFiles = false;

void killThisProcess() {
  ::kill(::getpid(), SIGKILL);
  for (;;) ::pause();
}

bool isDirectory(int file) {
  struct stat status {};
  return __real_fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
}

/// What is done besides failing: nothing, or giving back what a failed call takes all the same.
enum class Kind { kOther, kInterruptible, kCleanUp };

/// Makes the call, or not, as this thread's fault has it.
template <class Call>
auto made(const char* name, Kind kind, Call call) {
  if (!state.armed) return call();
  state.trace += std::string(name) + " ";
  const std::uint64_t number = state.calls++;
  const bool isIt = number == state.n;
  const auto fail = [&](int error) {
    state.happened = true;
    // What a call that cleans up has done it has done.
    if (kind == Kind::kCleanUp) call();
    errno = error;
    return static_cast<decltype(call())>(-1);
  };
  switch (state.mode) {
    case Mode::kFail:
      if (isIt) return fail(state.error);
      break;
    case Mode::kFailFrom:
      if (number >= state.n && kind != Kind::kCleanUp) return fail(state.error);
      break;
    case Mode::kInterrupt:
      if (isIt && kind != Kind::kOther) return fail(EINTR);
      break;
    case Mode::kKillBefore:
      if (isIt) killThisProcess();
      break;
    case Mode::kKillAfter: {
      const auto result = call();
      if (isIt) killThisProcess();
      return result;
    }
    case Mode::kKillHalfWay:
    case Mode::kShortWrites:
      break;
  }
  return call();
}

}  // namespace

FailingCall::FailingCall(std::uint64_t n, Mode mode, int error) {
  state = {true, mode, n, error, false, 0, ""};
}

FailingCall::~FailingCall() { state.armed = false; }

bool FailingCall::happened() { return state.happened; }

std::uint64_t FailingCall::calls() { return state.calls; }

const std::string& FailingCall::trace() { return state.trace; }

OnlyNamedFiles::OnlyNamedFiles() : before_(std::exchange(onlyNamedFiles, true)) {}

OnlyNamedFiles::~OnlyNamedFiles() { onlyNamedFiles = before_; }

}  // namespace veq::test

using veq::test::isDirectory;
using veq::test::Kind;
using veq::test::made;
using veq::test::Mode;
using veq::test::state;

extern "C" {

int __wrap_openat(int directory, const char* path, int flags, mode_t mode);
ssize_t __wrap_write(int file, const void* bytes, size_t count);
int __wrap_fsync(int file);
int __wrap_fstat(int file, struct stat* status);
int __wrap_fchown(int file, uid_t owner, gid_t group);
int __wrap_fchmod(int file, mode_t mode);
int __wrap_faccessat(int directory, const char* path, int mode, int flags);
int __wrap_fstatat(int directory, const char* path, struct stat* status, int flags);
int __wrap_flock(int file, int operation);
int __wrap_linkat(int from, const char* old, int to, const char* name, int flags);
int __wrap_renameat(int from, const char* old, int to, const char* name);
int __wrap_unlinkat(int directory, const char* path, int flags);
int __wrap_unlink(const char* path);
int __wrap_close(int file);

int __wrap_openat(int directory, const char* path, int flags, mode_t mode) {
#ifdef O_TMPFILE
  if (veq::test::onlyNamedFiles && (flags & O_TMPFILE) == O_TMPFILE) {
    errno = EOPNOTSUPP;
    return -1;
  }
#endif
  return made("openat", Kind::kInterruptible,
              [&] { return __real_openat(directory, path, flags, mode); });
}

ssize_t __wrap_write(int file, const void* bytes, size_t count) {
  const bool isIt = state.armed && state.calls == state.n;
  if (isIt && state.mode == Mode::kKillHalfWay) {
    static_cast<void>(__real_write(file, bytes, count / 2));
    veq::test::killThisProcess();
  }
  if (state.armed && state.mode == Mode::kShortWrites && count > 1) {
    state.happened = true;
    count = 1;
  }
  return made("write", Kind::kInterruptible, [&] { return __real_write(file, bytes, count); });
}

int __wrap_fsync(int file) {
  return made(isDirectory(file) ? "fsync_directory" : "fsync", Kind::kInterruptible,
              [&] { return __real_fsync(file); });
}

int __wrap_fstat(int file, struct stat* status) {
  return made("fstat", Kind::kOther, [&] { return __real_fstat(file, status); });
}

int __wrap_fchown(int file, uid_t owner, gid_t group) {
  return made("fchown", Kind::kOther, [&] { return __real_fchown(file, owner, group); });
}

int __wrap_fchmod(int file, mode_t mode) {
  return made("fchmod", Kind::kOther, [&] { return __real_fchmod(file, mode); });
}

int __wrap_faccessat(int directory, const char* path, int mode, int flags) {
  return made("faccessat", Kind::kOther,
              [&] { return __real_faccessat(directory, path, mode, flags); });
}

int __wrap_fstatat(int directory, const char* path, struct stat* status, int flags) {
  return made("fstatat", Kind::kOther,
              [&] { return __real_fstatat(directory, path, status, flags); });
}

int __wrap_flock(int file, int operation) {
  return made("flock", Kind::kInterruptible, [&] { return __real_flock(file, operation); });
}

int __wrap_linkat(int from, const char* old, int to, const char* name, int flags) {
  return made("linkat", Kind::kOther, [&] { return __real_linkat(from, old, to, name, flags); });
}

int __wrap_renameat(int from, const char* old, int to, const char* name) {
  return made("renameat", Kind::kOther, [&] { return __real_renameat(from, old, to, name); });
}

int __wrap_unlinkat(int directory, const char* path, int flags) {
  return made("unlinkat", Kind::kCleanUp, [&] { return __real_unlinkat(directory, path, flags); });
}

int __wrap_unlink(const char* path) {
  return made("unlink", Kind::kCleanUp, [&] { return __real_unlink(path); });
}

int __wrap_close(int file) {
  return made("close", Kind::kCleanUp, [&] { return __real_close(file); });
}
}
