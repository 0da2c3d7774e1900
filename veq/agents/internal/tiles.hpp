/// \file
/// The moves of a walk, which are made in tiles: some steps of all agents, step by step.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "veq/base/internal/team.hpp"

namespace veq::internal {

/// What a move shows where an agent could not leave its vertex.
template <class Word>
inline constexpr Word kStayed = std::numeric_limits<Word>::max();

/// The agents whose moves of a step lie in one line of the cache: threads that move others seldom
/// wait for it.
template <class Word>
inline constexpr std::uint64_t kAgentsPerLine = 64 / sizeof(Word);

/// The moves that are made before the progress climbs: few enough to take no more than a few
/// milliseconds, and enough to draw their numbers and to look at the log for all of them together.
inline constexpr std::uint64_t kMovesPerTile = std::uint64_t{1} << 15;

[[nodiscard]] inline std::uint64_t stepsPerTile(std::uint64_t agents) {
  return std::max<std::uint64_t>(kMovesPerTile / std::max<std::uint64_t>(agents, 1), 1);
}

/// After how many moves threads wait for each other, as a share of what is worth sharing. In
/// between each makes several tiles of its agents, so that waiting takes little of their time;
/// moves that take long are fewer, for a walk can be stopped where threads meet.
enum class Meetings : std::uint8_t { kSeldom = 1, kOften = 4 };

[[nodiscard]] inline std::uint64_t stepsPerMeeting(std::uint64_t agents, const Team& team,
                                                   Meetings meetings) {
  if (team.threads() == 1) return stepsPerTile(agents);
  const std::uint64_t moves = 2 * Team::worthSharing / static_cast<std::uint64_t>(meetings);
  return std::max<std::uint64_t>(moves / std::max<std::uint64_t>(agents, 1), 1);
}

}  // namespace veq::internal
