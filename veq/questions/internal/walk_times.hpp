/// \file
/// Mean times to a vertex.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "veq/base/internal/pace.hpp"
#include "veq/questions/internal/walk_matrix.hpp"

namespace veq::internal {

/// Thrown where an iteration does not settle.
struct NotSettled {};

/// Half a unit in the last place of 1.
inline constexpr double kUnitRoundoff = 0x1p-53;

/// As WalkLaw::hittingTimes. Throws Stopped and NotSettled.
[[nodiscard]] HittingTimes timesTo(const WalkLaw::Matrix& matrix, const BackwardRows& backward,
                                   std::uint64_t target, const SolvingOptions& options, Pace& pace);

/// The result of work that may throw these two.
template <class Work>
[[nodiscard]] auto untilSettled(const SolvingOptions& options, Work work) -> decltype(work()) {
  return untilStopped([&]() -> decltype(work()) {
    try {
      return work();
    } catch (const NotSettled&) {
      return Error(ErrorKind::kUnsupported,
                   "not settled after " + std::to_string(options.mostRounds) + " rounds");
    }
  });
}

}  // namespace veq::internal
