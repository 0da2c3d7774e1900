#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "veq/agents/internal/choice.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/network/internal/adjacency_lists.hpp"

namespace veq::internal {

/// Agents that go to any entry of their vertex's list.
template <class Index, class Word>
class PlainMover {
 public:
  static constexpr bool kCanRewind = true;

  PlainMover(const AdjacencyLists<Index>& lists, std::uint64_t agents, std::uint64_t steps)
      : rows_(lists.rows()), neighbours_(lists.neighbourPool()), agents_(agents) {
    draws_.resize(std::min(agents, kMovesPerTile) * std::min(steps, stepsPerTile(agents)));
  }

  void draw(std::uint64_t steps) {
    numbers_ = SharedRandomSequence::instance().take(Uint128{agents_} * steps);
  }

  void walk(Word* positions, Word* moves, std::uint64_t steps) {
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
  void walkSome(Word* positions, Word* moves, const std::uint32_t* draws, std::uint64_t some,
                std::uint64_t drawsPerStep, std::uint64_t steps) {
    Index chosen[kAgentsAtOnce];
    for (std::uint64_t s = 0; s < steps; ++s, draws += drawsPerStep, moves += agents_) {
      for (std::uint64_t i = 0; i < some; ++i) {
        chosen[i] = choose(rows_[positions[i]], draws[i]);
        __builtin_prefetch(neighbours_ + chosen[i]);
      }
      for (std::uint64_t i = 0; i < some; ++i) {
        if (chosen[i] == 0) {
          moves[i] = kStayed<Word>;
          continue;
        }
        const auto to = static_cast<Word>(neighbours_[chosen[i]]);
        __builtin_prefetch(rows_ + to);
        positions[i] = moves[i] = to;
      }
    }
  }

  void walkOne(Word& position, Word* moves, std::uint64_t steps) {
    Word at = position;
    for (std::uint64_t s = 0; s < steps; ++s) {
      const Index chosen = choose(rows_[at], draws_[s]);
      if (chosen == 0) {
        moves[s * agents_] = kStayed<Word>;
        continue;
      }
      moves[s * agents_] = at = static_cast<Word>(neighbours_[chosen]);
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
