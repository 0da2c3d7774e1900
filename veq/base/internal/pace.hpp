#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <utility>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"

namespace veq::internal {

/// Thrown by Pace::reach() where the work is to stop; caught where the operation began.
struct Stopped {};

/// Carries what an observer threw to where the operation began, past whoever on the way makes
/// something of exceptions like it.
struct ObserverThrew {
  std::exception_ptr thrown;
};

/// Follows one piece of work for its Progress. To be asked between pieces of a few milliseconds,
/// not in hot loops.
class VEQ_EXPORT Pace {
 public:
  /// How long an observer is left alone. Tests set it to 0, to be told at every look.
  static inline std::chrono::milliseconds usualInterval{50};

  Pace(const Progress& progress, std::uint64_t all) : progress_(progress), all_(all) {}

  /// Whether anybody would see or stop the work.
  [[nodiscard]] bool isWatched() const { return progress_.observer || progress_.stop.canStop(); }

  /// Tells the observer where that is due, and answers whether the work is to stop. Throws
  /// ObserverThrew.
  [[nodiscard]] bool shallStop(std::uint64_t done) {
    if (progress_.observer) tell(done);
    return progress_.stop.stopRequested();
  }
  /// The same for work that unwinds: throws Stopped.
  void reach(std::uint64_t done) {
    passed_ = std::max(passed_, done);
    if (shallStop(passed_)) throw Stopped{};
  }
  /// The same for work of several passes, whose sum is an estimate: so much more is done.
  void advance(std::uint64_t more) { reach(std::min(all_, passed_ + more)); }
  /// The same for work that is needed first, of which nothing is counted.
  void ask() { reach(passed_); }

 private:
  using Clock = std::chrono::steady_clock;

  void tell(std::uint64_t done);

  const Progress& progress_;
  std::uint64_t all_;
  std::uint64_t passed_ = 0;
  Clock::time_point last_ = Clock::now();
};

/// A Pace for work of very many small pieces, which is asked once for a few thousand of them;
/// without one nothing is.
class SparsePace {
 public:
  /// In most pieces of work nobody follows, which costs least.
  explicit SparsePace(Pace* pace) : pace_(pace && pace->isWatched() ? pace : nullptr) {}

  void advance(std::uint64_t more) {
    passed_ += more;
    if (pace_ && passed_ >= kPieces) pace_->advance(std::exchange(passed_, 0));
  }
  /// The same for pieces that are not counted.
  void ask(std::uint64_t more) {
    passed_ += more;
    if (!pace_ || passed_ < kPieces) return;
    passed_ = 0;
    pace_->ask();
  }

 private:
  static constexpr std::uint64_t kPieces = std::uint64_t{1} << 14;

  Pace* pace_;
  std::uint64_t passed_ = 0;
};

/// What becomes of an exception where work that follows a Pace began, to be asked by a handler of
/// all: the error that says that it was stopped, or what an observer threw. More elements than a
/// standard container can count are lacking memory.
[[nodiscard]] VEQ_EXPORT Error endOfWork();

/// The result of such work.
template <class Work>
[[nodiscard]] auto untilStopped(Work work) -> decltype(work()) {
  try {
    return work();
  } catch (...) {
    return endOfWork();
  }
}

/// Calls f(begin, end) for one tile of many elements after the other. Pace is asked between them.
template <class F>
[[gnu::noinline]] void forEachFollowedTile(std::uint64_t count, Pace& pace, F f) {
  constexpr std::uint64_t kTile = std::uint64_t{1} << 18;
  for (std::uint64_t begin = 0; begin < count;) {
    const std::uint64_t end = begin + std::min(count - begin, kTile);
    f(begin, end);
    pace.advance(end - begin);
    begin = end;
  }
}

/// The same, at once where there is no pace: most networks are small, and nobody follows them.
template <class F>
void forEachTile(std::uint64_t count, Pace* pace, F f) {
  if (pace) return forEachFollowedTile(count, *pace, f);
  f(std::uint64_t{0}, count);
}

}  // namespace veq::internal
