#pragma once

#include <cerrno>
#include <csignal>
#include <ctime>

namespace veq::internal {

/// While this lives, a write of this thread that meets a broken pipe or a file-size limit fails
/// without the signal that would end the process.
class QuietWriteSignals {
 public:
  QuietWriteSignals() {
    sigemptyset(&own_);
    sigset_t pending;
    sigpending(&pending);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
      // One that waits already is somebody else's.
      if (sigismember(&pending, signal) == 0) sigaddset(&own_, signal);
    }
    pthread_sigmask(SIG_BLOCK, &own_, &before_);
  }
  ~QuietWriteSignals() {
#if defined(__APPLE__)
    sigset_t pending;
    sigpending(&pending);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
      sigset_t one;
      sigemptyset(&one);
      sigaddset(&one, signal);
      int taken = 0;
      if (sigismember(&own_, signal) == 1 && sigismember(&pending, signal) == 1) {
        sigwait(&one, &taken);
      }
    }
#else
    const timespec atOnce{};
    while (sigtimedwait(&own_, nullptr, &atOnce) > 0 || errno == EINTR) {
    }
#endif
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  QuietWriteSignals(const QuietWriteSignals&) = delete;
  QuietWriteSignals& operator=(const QuietWriteSignals&) = delete;

 private:
  sigset_t own_;
  sigset_t before_;
};

}  // namespace veq::internal
