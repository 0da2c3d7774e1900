#pragma once

#include <chrono>
#include <cstdint>

#include "veq/base/progress.hpp"

namespace veq::internal {

/// Thrown by Pace::reach() where the work is to stop; caught where the operation began.
struct Stopped {};

/// Follows one piece of work for its Progress. To be asked between pieces of a few milliseconds,
/// not in hot loops.
class Pace {
 public:
  Pace(const Progress& progress, std::uint64_t all) : progress_(progress), all_(all) {}

  /// Tells the observer where that is due, and answers whether the work is to stop. What the
  /// observer throws passes through.
  [[nodiscard]] bool shallStop(std::uint64_t done) {
    if (progress_.observer) tell(done);
    return progress_.stop.stopRequested();
  }
  /// The same for work that unwinds: throws Stopped.
  void reach(std::uint64_t done) {
    if (shallStop(done)) throw Stopped{};
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kInterval{50};

  void tell(std::uint64_t done) {
    const Clock::time_point now = Clock::now();
    if (now - last_ < kInterval) return;
    last_ = now;
    progress_.observer(done, all_);
  }

  const Progress& progress_;
  std::uint64_t all_;
  Clock::time_point last_ = Clock::now();
};

}  // namespace veq::internal
