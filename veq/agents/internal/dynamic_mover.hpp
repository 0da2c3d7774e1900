#pragma once

#include <algorithm>
#include <cstdint>
#include <new>
#include <optional>
#include <span>

#include "veq/agents/internal/agent_memories.hpp"
#include "veq/agents/internal/choice.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Agents that go to an entry of their vertex's list which they do not remember, or to any where
/// they remember all, and that share what they remember after every step.
template <class Index, class Word>
class DynamicMover {
 public:
  static constexpr bool kCanRewind = false;

  DynamicMover(const Topology<Index>& topology, std::uint64_t vertices, std::uint64_t agents,
               std::uint64_t steps, AgentMemories<Word>& memories, const VEQNetwork* agentsNetwork)
      : lists_(topology.out),
        vertices_(vertices),
        agents_(agents),
        memories_(memories),
        agentsNetwork_(agentsNetwork) {
    for (Numbers& numbers : numbers_) {
      numbers.draws.resize(agents * std::min(steps, stepsPerTile(agents)));
    }
  }

  void draw(std::uint64_t steps) {
    for (Numbers& numbers : numbers_) {
      numbers.stream = SharedRandomSequence::instance().take(Uint128{agents_} * steps);
    }
  }

  void walk(Word* positions, Word* moves, std::uint64_t steps) {
    for (Numbers& numbers : numbers_) numbers.stream->fill(numbers.draws.data(), agents_ * steps);
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
    if (idling_.period == 0) return false;
    for (std::uint64_t s = steps % idling_.period; s > 0; --s) shareAll();
    return true;
  }

 private:
  // The three requests of numbers: for the next vertex, for the errors and for the wrong vertices.
  struct Numbers {
    std::optional<RandomStream> stream;
    Block<std::uint32_t> draws;  // those of a tile
  };
  enum Purpose { kNextVertex, kError, kWrongVertex };

  // Steps in which nobody moves: after how many of them, once known, the memories come round to the
  // same state; else a state, the steps since, and after how many steps a later one is taken.
  struct Idling {
    std::uint64_t period = 0;
    std::optional<typename AgentMemories<Word>::State> state;
    std::uint64_t steps = 0;
    std::uint64_t patience = 1;
  };

  Word move(std::uint64_t agent, Word& position, std::uint64_t number) {
    const std::span<const Index> list = lists_.neighbours(position);
    if (list.empty()) return kStayed<Word>;
    position = static_cast<Word>(choose(agent, list, numbers_[kNextVertex].draws[number]));
    std::uint64_t remembered = position;
    if (memories_.isMistaken(agent, numbers_[kError].draws[number])) {
      remembered = chooseEntry(vertices_, numbers_[kWrongVertex].draws[number]);
    }
    memories_.remember(agent, remembered, agentsNetwork_ != nullptr);
    return position;
  }

  // Counting the candidates and then looking for the chosen one takes no memory, which a walk could
  // run out of in the middle of a step.
  Index choose(std::uint64_t agent, std::span<const Index> list, std::uint32_t draw) const {
    std::uint64_t candidates = 0;
    for (const Index neighbour : list) candidates += !memories_.remembers(agent, neighbour);
    if (candidates == 0 || candidates == list.size()) {
      return list[chooseEntry(list.size(), draw)];
    }
    std::uint64_t left = chooseEntry(candidates, draw);
    for (const Index* neighbour = list.data();; ++neighbour) {
      if (!memories_.remembers(agent, *neighbour) && left-- == 0) return *neighbour;
    }
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
  AgentMemories<Word>& memories_;
  const VEQNetwork* agentsNetwork_;
  Numbers numbers_[3];
  Idling idling_;
};

}  // namespace veq::internal
