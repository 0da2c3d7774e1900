#pragma once

#include <cstdint>
#include <new>
#include <optional>

#include "veq/agents/internal/agent_memories.hpp"
#include "veq/agents/internal/choice.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_draws.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Agents that go to an entry of their vertex's list which they do not remember, or to any where
/// they remember all, and that share what they remember after every step.
template <class Index, class Word, class Choice>
class DynamicMover {
 public:
  static constexpr bool kCanRewind = false;

  DynamicMover(const AdjacencyLists<Index>& lists, std::uint64_t vertices, std::uint64_t agents,
               std::uint64_t steps, Choice choice, Restarts restarts, AgentMemories<Word>& memories,
               const VEQNetwork* agentsNetwork)
      : lists_(lists),
        vertices_(vertices),
        agents_(agents),
        choice_(choice),
        restarts_(restarts),
        memories_(memories),
        agentsNetwork_(agentsNetwork),
        draws_(agents, steps, restarts_.happen() ? 4 : 3) {}

  void draw(const RandomSource& source, std::uint64_t steps, bool endless) {
    draws_.take(source, steps, endless);
  }

  [[nodiscard]] std::uint64_t purposes() const { return draws_.purposes(); }

  void walk(Word* positions, Word* moves, std::uint64_t steps) {
    draws_.fill(steps);
    for (std::uint64_t s = 0; s < steps; ++s, moves += agents_) {
      const std::uint64_t first = agents_ * s;
      bool moved = false;
      for (std::uint64_t a = 0; a < agents_; ++a) {
        fetchAhead(positions, a);
        moves[a] = move(a, positions[a], first + a);
        moved |= moves[a] != kStayed<Word>;
      }
      const bool shared = agentsNetwork_ && shareAll();
      if (moved) {
        idling_ = {};
      } else {
        lookForPeriod(shared);
      }
    }
  }

  /// Sharing goes on when nobody moves any longer: until it changes nothing, or for ever round the
  /// same states, as where two agents pass their latest visits on to a third that has one slot.
  [[nodiscard]] bool skip(std::uint64_t steps) {
    if (restarts_.happen() || idling_.period == 0) return false;
    for (std::uint64_t s = steps % idling_.period; s > 0; --s) shareAll();
    return true;
  }

 private:
  // What the draws are for. The published walk takes the first three.
  enum Purpose : std::uint8_t { kNextVertex, kError, kWrongVertex, kRestart };

  // Steps in which nobody moves: after how many of them, once known, the memories come round to the
  // same state; else a state, the steps since, and after how many steps a later one is taken.
  struct Idling {
    std::uint64_t period = 0;
    std::optional<typename AgentMemories<Word>::State> state;
    std::uint64_t steps = 0;
    std::uint64_t patience = 1;
  };

  Word move(std::uint64_t agent, Word& position, std::uint64_t number) {
    const Word to = next(agent, position, number);
    if (to == kStayed<Word>) return to;
    position = to;
    std::uint64_t remembered = to;
    if (memories_.isMistaken(agent, draws_[kError][number])) {
      remembered = chooseEntry(vertices_, draws_[kWrongVertex][number]);
    }
    memories_.remember(agent, remembered, agentsNetwork_ != nullptr);
    return to;
  }

  [[nodiscard]] Word next(std::uint64_t agent, Word position, std::uint64_t number) const {
    if (restarts_.happen() && draws_[kRestart][number] < restarts_.threshold) {
      return static_cast<Word>(restarts_.starts[agent]);
    }
    const Index chosen =
        choice_.among(lists_.rows()[position], lists_.neighbourPool(), draws_[kNextVertex][number],
                      [&](Index neighbour) { return memories_.remembers(agent, neighbour); });
    return chosen == kNoPlace<Index> ? kStayed<Word>
                                     : static_cast<Word>(lists_.neighbourPool()[chosen]);
  }

  // Lists and their places, for agents that come soon: each waits for memory on its own otherwise.
  void fetchAhead(const Word* positions, std::uint64_t agent) const {
    constexpr std::uint64_t kAgentsAhead = 4;
    if (agent + 2 * kAgentsAhead >= agents_) return;
    lists_.prefetchRow(positions[agent + 2 * kAgentsAhead]);
    lists_.prefetchNeighbours(positions[agent + kAgentsAhead]);
  }

  // The period is found by comparing with states that lie twice as far apart each time (Brent's
  // method), in at most some three times the steps that lead to the first state that comes again
  // and back to it.
  void lookForPeriod(bool shared) {
    if (!shared) idling_.period = 1;
    if (idling_.period != 0) return;
    ++idling_.steps;
    if (idling_.state && memories_.isIn(*idling_.state)) {
      idling_.period = idling_.steps;
    } else if (!idling_.state || idling_.steps == idling_.patience) {
      if (idling_.state) idling_.patience *= 2;
      idling_.steps = 0;
      try {
        idling_.state = memories_.state();
      } catch (const std::bad_alloc&) {  // then the steps are taken one by one
        idling_.state.reset();
      }
    }
  }

  // Answers whether anything changed.
  bool shareAll() {
    return CoreAccess::of(*agentsNetwork_).store.visit([this](const auto& topology) {
      bool changed = false;
      for (std::uint64_t a = 0; a < agents_; ++a) {
        const auto neighbours = topology.out.neighbours(a);
        changed |= memories_.share(a, [&](auto give) {
          for (const auto neighbour : neighbours) {
            if (neighbour < agents_) give(neighbour);
          }
        });
      }
      return changed;
    });
  }

  const AdjacencyLists<Index>& lists_;
  std::uint64_t vertices_;
  std::uint64_t agents_;
  Choice choice_;
  Restarts restarts_;
  AgentMemories<Word>& memories_;
  const VEQNetwork* agentsNetwork_;
  WalkDraws draws_;
  Idling idling_;
};

}  // namespace veq::internal
