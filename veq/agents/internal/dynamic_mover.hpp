#pragma once

#include <cstdint>
#include <new>
#include <optional>

#include "veq/agents/internal/agent_memories.hpp"
#include "veq/agents/internal/choice.hpp"
#include "veq/agents/internal/shared_tiles.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_draws.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Agents that go to an entry of their vertex's list which they do not remember, or to any where
/// they remember all, and that share what they remember after every step.
template <class Index, class Word, class Choice>
class DynamicMover {
 public:
  static constexpr bool kCanRewind = false;
  static constexpr Meetings kMeetings = Meetings::kOften;

  DynamicMover(const AdjacencyLists<Index>& lists, std::uint64_t vertices, std::uint64_t agents,
               std::uint64_t steps, Choice choice, Restarts restarts, AgentMemories<Word>& memories,
               const VEQNetwork* agentsNetwork, Team& team)
      : lists_(lists),
        vertices_(vertices),
        agents_(agents),
        choice_(choice),
        restarts_(restarts),
        memories_(memories),
        agentsNetwork_(agentsNetwork),
        tiles_(agents, steps, restarts_.happen() ? 4 : 3, team, kMeetings) {}

  void draw(const RandomSource& source, std::uint64_t steps, bool endless) {
    tiles_.take(source, steps, endless);
  }

  [[nodiscard]] std::uint64_t purposes() const { return tiles_.purposes(); }

  /// With listeners for a team of one alone.
  void walk(Word* positions, Word* moves, std::uint64_t steps) {
    tiles_.forEach(steps, [&](const WalkDraws& draws, AgentRange agents, std::uint64_t first,
                              std::uint64_t some) {
      for (std::uint64_t s = 0; s < some; ++s) {
        const bool moved =
            moveSome({draws, agents_ * s}, positions, moves + agents_ * (first + s), agents);
        if (agentsNetwork_) share(moved);
      }
    });
  }

  /// Sharing goes on when nobody moves any longer: until it changes nothing, or for ever round the
  /// same states, as where two agents pass their latest visits on to a third that has one slot.
  [[nodiscard]] bool skip(std::uint64_t steps) {
    if (restarts_.happen()) return false;
    if (!agentsNetwork_) return true;
    if (idling_.period == 0) return false;
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

  // The draws of a step.
  struct StepDraws {
    const WalkDraws& draws;
    std::uint64_t begin;

    [[nodiscard]] std::uint32_t operator()(Purpose purpose, std::uint64_t agent) const {
      return draws[purpose][begin + agent];
    }
  };

  // Answers whether any of them moved.
  bool moveSome(StepDraws draws, Word* positions, Word* moves, AgentRange agents) {
    bool moved = false;
    for (std::uint64_t a = agents.first; a < agents.end; ++a) {
      fetchAhead(positions, a, agents.end);
      moves[a] = move(draws, a, positions[a]);
      moved |= moves[a] != kStayed<Word>;
    }
    return moved;
  }

  void share(bool moved) {
    const bool shared = shareAll();
    if (moved) {
      idling_ = {};
    } else {
      lookForPeriod(shared);
    }
  }

  Word move(StepDraws draws, std::uint64_t agent, Word& position) {
    const Word to = next(draws, agent, position);
    if (to == kStayed<Word>) return to;
    position = to;
    std::uint64_t remembered = to;
    if (memories_.isMistaken(agent, draws(kError, agent))) {
      remembered = chooseEntry(vertices_, draws(kWrongVertex, agent));
    }
    memories_.remember(agent, remembered, agentsNetwork_ != nullptr);
    return to;
  }

  [[nodiscard]] Word next(StepDraws draws, std::uint64_t agent, Word position) const {
    if (restarts_.happen() && draws(kRestart, agent) < restarts_.threshold) {
      return static_cast<Word>(restarts_.starts[agent]);
    }
    const Index chosen =
        choice_.among(lists_.rows()[position], lists_.neighbourPool(), draws(kNextVertex, agent),
                      [&](Index neighbour) { return memories_.remembers(agent, neighbour); });
    return chosen == kNoPlace<Index> ? kStayed<Word>
                                     : static_cast<Word>(lists_.neighbourPool()[chosen]);
  }

  // Lists and their places, for agents that come soon: each waits for memory on its own otherwise.
  void fetchAhead(const Word* positions, std::uint64_t agent, std::uint64_t end) const {
    constexpr std::uint64_t kAgentsAhead = 4;
    if (agent + 2 * kAgentsAhead >= end) return;
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
  SharedTiles tiles_;
  Idling idling_;
};

}  // namespace veq::internal
