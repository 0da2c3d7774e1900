/// \file
/// What a walk depends on and has led to, for whoever walks it again.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "veq/agents/internal/agent_memories.hpp"
#include "veq/agents/walk_outcome.hpp"
#include "veq/models/random_state.hpp"
#include "veq/natural/choice.hpp"

namespace veq::internal {

/// Of an agent with memory as it was before the walk.
struct RecordedMemory {
  std::uint64_t ringSize = 0;
  std::uint32_t errorThreshold = 0;
  /// The agents that it tells what it remembers, in this order.
  std::vector<std::uint64_t> listeners;
  /// Empty where it has remembered nothing yet. Entries are vertices plus 1, or 0.
  std::vector<std::uint64_t> ring;
  AgentMemories<std::uint64_t>::Slots slots;
};

struct RecordedWalk {
  /// The network's, by which it is known again.
  std::uint64_t vertices = 0;
  std::uint64_t edges = 0;

  Choice choice = Choice::kPublished;
  std::optional<std::uint64_t> asked;
  double target = 0.0;
  /// Draws below this lead back to the homes.
  std::uint32_t restartThreshold = 0;
  std::vector<std::uint64_t> homes;
  std::vector<std::uint64_t> starts;

  RandomState::Words words{};
  /// Where restarts have draws of their own, which those of all steps asked for are followed by.
  std::optional<RandomState::Words> restartWords;

  WalkOutcome outcome;
  /// For each vertex, and for each agent the vertex.
  std::vector<std::uint64_t> arrivals;
  std::vector<std::uint64_t> ends;

  /// One for each agent where they have memory, and then the outcome has paths.
  std::vector<RecordedMemory> memories;
  bool haveListeners = false;
  /// Numbers of moves, agents x step + agent, and the vertex that was remembered instead.
  std::vector<std::pair<std::uint64_t, std::uint64_t>> mistakes;

  [[nodiscard]] std::uint64_t countAgents() const { return starts.size(); }
};

}  // namespace veq::internal
