#pragma once

#include <cstdint>
#include <variant>

#include "veq/agents/internal/dynamic_mover.hpp"
#include "veq/agents/internal/dynamic_state.hpp"
#include "veq/agents/internal/plain_mover.hpp"
#include "veq/agents/internal/walk_frame.hpp"

namespace veq::internal {

/// The walk of a plain group, by one of the choices.
template <class Choice>
WalkResult walkPlainly(GroupState& group, const WalkRequest& request, Choice choice) {
  return runWalk(
      group, request,
      [&]<class Index, class Word>(const Topology<Index>& topology, const WalkHistory<Word>&) {
        return PlainMover<Index, Word, Choice>(topology.out, group.agents, request.steps, choice,
                                               request.restarts);
      });
}

/// The walk of agents with memory, by one of the choices.
template <class Choice>
WalkResult walkWithMemory(GroupState& group, DynamicState& dynamic, const WalkRequest& request,
                          Choice choice) {
  return runWalk(
      group, request,
      [&]<class Index, class Word>(const Topology<Index>& topology, const WalkHistory<Word>&) {
        return DynamicMover<Index, Word, Choice>(
            topology.out, group.network->countVertices(), group.agents, request.steps, choice,
            request.restarts, std::get<AgentMemories<Word>>(dynamic.memories),
            dynamic.agentsNetwork.get());
      });
}

[[nodiscard]] inline WalkRequest publishedRequest(std::uint64_t steps, bool returnPath,
                                                  float untilReach) {
  WalkRequest request;
  request.steps = steps;
  request.returnPath = returnPath;
  request.untilReach = static_cast<double>(untilReach);
  return request;
}

}  // namespace veq::internal
