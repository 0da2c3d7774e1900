#pragma once

#include <cstdint>
#include <variant>

#include "veq/agents/internal/agent_memories.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"

namespace veq::internal {

/// What a group of agents with memory has besides.
struct DynamicState {
  Shared<const VEQNetwork> agentsNetwork;
  /// In the words of the group's history.
  std::variant<AgentMemories<std::uint32_t>, AgentMemories<std::uint64_t>> memories;
};

}  // namespace veq::internal
