/// \file
/// The moves of a walk, which are made in tiles: some steps of all agents, step by step.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace veq::internal {

/// What a move shows where an agent could not leave its vertex.
template <class Word>
inline constexpr Word kStayed = std::numeric_limits<Word>::max();

/// The moves that are made before the progress climbs: few enough to take no more than a few
/// milliseconds, and enough to draw their numbers and to look at the log for all of them together.
inline constexpr std::uint64_t kMovesPerTile = std::uint64_t{1} << 15;

[[nodiscard]] inline std::uint64_t stepsPerTile(std::uint64_t agents) {
  return std::max<std::uint64_t>(kMovesPerTile / std::max<std::uint64_t>(agents, 1), 1);
}

}  // namespace veq::internal
