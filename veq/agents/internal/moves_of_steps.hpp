/// \file
/// The moves of a tile, for those who go through them step by step.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "veq/agents/internal/tiles.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/team.hpp"

namespace veq::internal {

/// All of them, as they lie in memory.
template <class Word>
struct MovesOfSteps {
  const Word* moves;
  std::uint64_t agents;

  [[nodiscard]] std::span<const Word> operator()(std::uint64_t step) const {
    return {moves + step * agents, agents};
  }
};

/// Those that a record lacks. Going through what a walk has arrived at must be done in order and by
/// one thread, but most moves lead to where somebody was before; so threads first look for the
/// others, each in some steps.
template <class Word>
class NewMoves {
 public:
  /// With room for so many steps at once, so that collecting cannot fail; for a team of one for
  /// none.
  NewMoves(std::uint64_t agents, std::uint64_t steps, Team& team) : agents_(agents), team_(team) {
    if (team.threads() == 1) return;
    moves_.resize(steps * agents);
    counts_.resize(steps);
  }

  /// Has `record` take the steps: calls take(movesOf), with all their moves or those it lacks.
  template <class Record, class Take>
  void give(const MovesOfSteps<Word>& all, std::uint64_t steps, const Record& record, Take take) {
    if (team_.threads() == 1 || steps * agents_ < Team::worthSharing) return take(all);
    const std::uint64_t some = steps / kPieces + 1;
    team_.forEachPiece((steps + some - 1) / some, steps * agents_, [&](std::uint64_t piece) {
      const std::uint64_t end = std::min(steps, (piece + 1) * some);
      for (std::uint64_t s = piece * some; s < end; ++s) counts_[s] = collect(all(s), s, record);
    });
    take([this](std::uint64_t step) {
      return std::span<const Word>(moves_.data() + step * agents_, counts_[step]);
    });
  }

 private:
  // So many that some threads may be late.
  static constexpr std::uint64_t kPieces = 64;

  template <class Record>
  std::uint64_t collect(std::span<const Word> moves, std::uint64_t step, const Record& record) {
    Word* const out = moves_.data() + step * agents_;
    std::uint64_t count = 0;
    for (const Word to : moves) {
      out[count] = to;
      count += to != kStayed<Word> && !record.has(to);
    }
    return count;
  }

  std::uint64_t agents_;
  Team& team_;
  Block<Word> moves_;  // of each step in its place
  std::vector<std::uint64_t> counts_;
};

}  // namespace veq::internal
