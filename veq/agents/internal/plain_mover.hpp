#pragma once

#include <algorithm>
#include <cstdint>

#include "veq/agents/internal/choice.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_draws.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/network/internal/adjacency_lists.hpp"

namespace veq::internal {

/// Agents that go to any entry of their vertex's list.
template <class Index, class Word, class Choice>
class PlainMover {
 public:
  static constexpr bool kCanRewind = true;

  PlainMover(const AdjacencyLists<Index>& lists, std::uint64_t agents, std::uint64_t steps,
             Choice choice, Restarts restarts)
      : rows_(lists.rows()),
        neighbours_(lists.neighbourPool()),
        agents_(agents),
        choice_(choice),
        restarts_(restarts),
        draws_(agents, steps, restarts_.happen() ? 2 : 1) {}

  void draw(const RandomSource& source, std::uint64_t steps, bool endless) {
    draws_.take(source, steps, endless);
  }

  [[nodiscard]] std::uint64_t purposes() const { return draws_.purposes(); }

  void walk(Word* positions, Word* moves, std::uint64_t steps) {
    draws_.fill(steps);
    restarts_.happen() ? walkAll<true>(positions, moves, steps)
                       : walkAll<false>(positions, moves, steps);
  }

  /// Steps in which nobody moves change nothing, but restarts end them.
  [[nodiscard]] bool skip(std::uint64_t /*steps*/) const { return !restarts_.happen(); }

 private:
  // So many that what was fetched ahead for them is still in the cache when it is used.
  static constexpr std::uint64_t kAgentsAtOnce = 256;
  enum Purpose : std::uint8_t { kNextVertex, kRestart };

  template <bool kRestarts>
  void walkAll(Word* positions, Word* moves, std::uint64_t steps) {
    if (agents_ == 1) return walkOne<kRestarts>(*positions, moves, steps);
    for (std::uint64_t first = 0; first < agents_; first += kAgentsAtOnce) {
      walkSome<kRestarts>(positions, moves, first, std::min(agents_ - first, kAgentsAtOnce), steps);
    }
  }

  // Moves some neighbouring agents by all steps, in rounds of two passes: each pass fetches ahead
  // what the next will read, so that the agents wait for memory together.
  template <bool kRestarts>
  void walkSome(Word* positions, Word* moves, std::uint64_t first, std::uint64_t some,
                std::uint64_t steps) {
    const std::uint32_t* draws = draws_[kNextVertex] + first;
    const std::uint32_t* restarts = kRestarts ? draws_[kRestart] + first : nullptr;
    positions += first;
    moves += first;
    Index chosen[kAgentsAtOnce];
    for (std::uint64_t s = 0; s < steps; ++s, draws += agents_, moves += agents_) {
      for (std::uint64_t i = 0; i < some; ++i) {
        chosen[i] = choice_(rows_[positions[i]], draws[i]);
        prefetchElement(neighbours_, chosen[i]);
      }
      for (std::uint64_t i = 0; i < some; ++i) {
        if constexpr (kRestarts) {
          if (restarts[i] < restarts_.threshold) {
            positions[i] = moves[i] = static_cast<Word>(restarts_.starts[first + i]);
            continue;
          }
        }
        if (chosen[i] == kNoPlace<Index>) {
          moves[i] = kStayed<Word>;
          continue;
        }
        const auto to = static_cast<Word>(neighbours_[chosen[i]]);
        prefetch(rows_ + to);
        positions[i] = moves[i] = to;
      }
      if constexpr (kRestarts) restarts += agents_;
    }
  }

  template <bool kRestarts>
  void walkOne(Word& position, Word* moves, std::uint64_t steps) {
    const std::uint32_t* const draws = draws_[kNextVertex];
    Word at = position;
    for (std::uint64_t s = 0; s < steps; ++s) {
      if constexpr (kRestarts) {
        if (draws_[kRestart][s] < restarts_.threshold) {
          moves[s] = at = static_cast<Word>(restarts_.starts[0]);
          continue;
        }
      }
      const Index chosen = choice_(rows_[at], draws[s]);
      if (chosen == kNoPlace<Index>) {
        moves[s] = kStayed<Word>;
        continue;
      }
      moves[s] = at = static_cast<Word>(neighbours_[chosen]);
    }
    position = at;
  }

  const Row<Index>* rows_;
  const Index* neighbours_;
  std::uint64_t agents_;
  Choice choice_;
  Restarts restarts_;
  WalkDraws draws_;
};

}  // namespace veq::internal
