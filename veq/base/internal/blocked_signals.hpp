#pragma once

#if __has_include(<unistd.h>)
#include <csignal>
#endif

namespace veq::internal {

#if __has_include(<unistd.h>)

/// While this lives, signals to the process go to other threads, and so they do for all that is
/// left of the life of a thread that is started meanwhile.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before_;
};

#else

struct BlockedSignals {
  BlockedSignals() {}
  ~BlockedSignals() {}
};

#endif

}  // namespace veq::internal
