#pragma once

#include <algorithm>
#include <cstdint>

#include "veq/agents/internal/choice.hpp"
#include "veq/agents/internal/shared_tiles.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_draws.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/network/internal/adjacency_lists.hpp"

namespace veq::internal {

/// Agents that go to any entry of their vertex's list.
template <class Index, class Word, class Choice>
class PlainMover {
 public:
  static constexpr bool kCanRewind = true;
  static constexpr Meetings kMeetings = Meetings::kSeldom;

  /// On whatever has rows and a pool of neighbours.
  template <class Lists>
  PlainMover(const Lists& lists, std::uint64_t agents, std::uint64_t steps, Choice choice,
             Restarts restarts, Team& team)
      : rows_(lists.rows()),
        neighbours_(lists.neighbourPool()),
        agents_(agents),
        choice_(choice),
        restarts_(restarts),
        tiles_(agents, steps, restarts_.happen() ? 2 : 1, team, kMeetings) {}

  void draw(const RandomSource& source, std::uint64_t steps, bool endless) {
    tiles_.take(source, steps, endless);
  }

  [[nodiscard]] std::uint64_t purposes() const { return tiles_.purposes(); }

  void walk(Word* positions, Word* moves, std::uint64_t steps) {
    tiles_.forEach(steps, [&](const WalkDraws& draws, AgentRange agents, std::uint64_t first,
                              std::uint64_t some) {
      restarts_.happen() ? walkAll<true>(draws, positions, moves + first * agents_, agents, some)
                         : walkAll<false>(draws, positions, moves + first * agents_, agents, some);
    });
  }

  /// Steps in which nobody moves change nothing, but restarts end them.
  [[nodiscard]] bool skip(std::uint64_t /*steps*/) const { return !restarts_.happen(); }

 private:
  // So many that what was fetched ahead for them is still in the cache when it is used.
  static constexpr std::uint64_t kAgentsAtOnce = 256;
  enum Purpose : std::uint8_t { kNextVertex, kRestart };

  template <bool kRestarts>
  void walkAll(const WalkDraws& draws, Word* positions, Word* moves, AgentRange agents,
               std::uint64_t steps) {
    if (agents_ == 1) return walkOne<kRestarts>(draws, *positions, moves, steps);
    for (std::uint64_t first = agents.first; first < agents.end; first += kAgentsAtOnce) {
      const AgentRange some{first, std::min(first + kAgentsAtOnce, agents.end)};
      walkSome<kRestarts>(draws, positions, moves, some, steps);
    }
  }

  // Moves some neighbouring agents by all steps, in rounds of two passes: each pass fetches ahead
  // what the next will read, so that the agents wait for memory together.
  template <bool kRestarts>
  void walkSome(const WalkDraws& allDraws, Word* positions, Word* moves, AgentRange agents,
                std::uint64_t steps) {
    const auto [first, end] = agents;
    const std::uint64_t some = end - first;
    const std::uint32_t* draws = allDraws[kNextVertex] + first;
    const std::uint32_t* restarts = kRestarts ? allDraws[kRestart] + first : nullptr;
    moves += first;
    // Of its own, for other threads write to what lies beside.
    Word at[kAgentsAtOnce];
    std::copy_n(positions + first, some, at);
    Index chosen[kAgentsAtOnce];
    for (std::uint64_t s = 0; s < steps; ++s, draws += agents_, moves += agents_) {
      for (std::uint64_t i = 0; i < some; ++i) {
        chosen[i] = choice_(rows_[at[i]], draws[i]);
        prefetchElement(neighbours_, chosen[i]);
      }
      for (std::uint64_t i = 0; i < some; ++i) {
        if constexpr (kRestarts) {
          if (restarts[i] < restarts_.threshold) {
            at[i] = moves[i] = static_cast<Word>(restarts_.starts[first + i]);
            continue;
          }
        }
        if (chosen[i] == kNoPlace<Index>) {
          moves[i] = kStayed<Word>;
          continue;
        }
        const auto to = static_cast<Word>(neighbours_[chosen[i]]);
        prefetch(rows_ + to);
        at[i] = moves[i] = to;
      }
      if constexpr (kRestarts) restarts += agents_;
    }
    std::copy_n(at, some, positions + first);
  }

  template <bool kRestarts>
  void walkOne(const WalkDraws& allDraws, Word& position, Word* moves, std::uint64_t steps) {
    const std::uint32_t* const draws = allDraws[kNextVertex];
    Word at = position;
    for (std::uint64_t s = 0; s < steps; ++s) {
      if constexpr (kRestarts) {
        if (allDraws[kRestart][s] < restarts_.threshold) {
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
  SharedTiles tiles_;
};

}  // namespace veq::internal
