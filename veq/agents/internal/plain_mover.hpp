#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

#include "veq/agents/internal/move_block.hpp"
#include "veq/agents/internal/walk_frame.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/network/internal/adjacency_lists.hpp"

namespace veq::internal {

/// Lists shorter than this allow the choice in integers.
inline constexpr std::uint64_t kExactChoices = std::uint64_t{1} << 22;

/// round((k - 1) x) for the number x = draw * 2^-31, where k is a list's length, at least 1, and
/// the product is formed and rounded in double, halves away from zero.
///
/// For k - 1 < 2^22 the product (k - 1) * draw is below 2^53 and hence exact also in double, so
/// that the result is floor((k - 1) * draw / 2^31 + 1/2), which integers give without any
/// conversion.
[[nodiscard]] inline std::uint64_t chooseEntry(std::uint64_t k, std::uint32_t draw) {
  if (k - 1 < kExactChoices) return ((k - 1) * draw + (std::uint64_t{1} << 30)) >> 31;
  return static_cast<std::uint64_t>(
      std::round(static_cast<double>(k - 1) * fromDraw<double>(draw)));
}

/// Agents that go to any entry of their vertex's list.
template <class Index>
class PlainMover {
 public:
  static constexpr bool kCanRewind = true;

  PlainMover(const AdjacencyLists<Index>& lists, std::uint64_t agents, std::uint64_t steps)
      : rows_(lists.rows()), neighbours_(lists.neighbourZone()), agents_(agents) {
    draws_.resize(std::min(agents, kMovesPerTile) * std::min(steps, stepsPerTile(agents)));
  }

  void draw(std::uint64_t steps) {
    numbers_ = SharedRandomSequence::instance().take(Uint128{agents_} * steps);
  }

  void walk(Index* positions, Index* moves, std::uint64_t steps) {
    // Only a tile of one step has more agents than fit in a piece.
    for (std::uint64_t first = 0; first < agents_; first += kMovesPerTile) {
      const std::uint64_t some = std::min(agents_ - first, kMovesPerTile);
      numbers_->fill(draws_.data(), some * steps);
      if (some == 1) {
        walkOne(positions[first], moves + first, steps);
        continue;
      }
      for (std::uint64_t a = 0; a < some; a += kAgentsAtOnce) {
        walkSome(positions + first + a, moves + first + a, draws_.data() + a,
                 std::min(some - a, kAgentsAtOnce), some, steps);
      }
    }
  }

  /// Steps in which nobody moves change nothing.
  [[nodiscard]] bool skip(std::uint64_t /*steps*/) const { return true; }

 private:
  // So many that what was fetched ahead for them is still in the cache when it is used.
  static constexpr std::uint64_t kAgentsAtOnce = 256;

  // The place of the chosen neighbour in the zone; place 0 belongs to no list.
  [[nodiscard]] Index choose(Row<Index> row, std::uint32_t draw) const {
    if (row.count == 0) return 0;
    return static_cast<Index>(row.start + chooseEntry(row.count, draw));
  }

  // Moves some neighbouring agents by all steps, in rounds of two passes: each pass fetches ahead
  // what the next will read, so that the agents wait for memory together.
  void walkSome(Index* positions, Index* moves, const std::uint32_t* draws, std::uint64_t some,
                std::uint64_t drawsPerStep, std::uint64_t steps) {
    Index chosen[kAgentsAtOnce];
    for (std::uint64_t s = 0; s < steps; ++s, draws += drawsPerStep, moves += agents_) {
      for (std::uint64_t i = 0; i < some; ++i) {
        chosen[i] = choose(rows_[positions[i]], draws[i]);
        __builtin_prefetch(neighbours_ + chosen[i]);
      }
      for (std::uint64_t i = 0; i < some; ++i) {
        if (chosen[i] == 0) {
          moves[i] = kStayed<Index>;
          continue;
        }
        const Index to = neighbours_[chosen[i]];
        __builtin_prefetch(rows_ + to);
        positions[i] = moves[i] = to;
      }
    }
  }

  void walkOne(Index& position, Index* moves, std::uint64_t steps) {
    Index at = position;
    for (std::uint64_t s = 0; s < steps; ++s) {
      const Index chosen = choose(rows_[at], draws_[s]);
      if (chosen == 0) {
        moves[s * agents_] = kStayed<Index>;
        continue;
      }
      moves[s * agents_] = at = neighbours_[chosen];
    }
    position = at;
  }

  const Row<Index>* rows_;
  const Index* neighbours_;
  std::uint64_t agents_;
  std::optional<RandomStream> numbers_;
  Block<std::uint32_t> draws_;  // those of a tile
};

}  // namespace veq::internal
