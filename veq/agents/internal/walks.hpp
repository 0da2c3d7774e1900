#pragma once

#include <cstdint>
#include <variant>

#include "veq/agents/internal/dynamic_mover.hpp"
#include "veq/agents/internal/dynamic_state.hpp"
#include "veq/agents/internal/plain_mover.hpp"
#include "veq/agents/internal/walk_frame.hpp"
#include "veq/base/parallelism.hpp"

namespace veq::internal {

/// The walk of a plain group, by one of the choices.
template <class Choice>
WalkResult walkPlainly(GroupState& group, const WalkRequest& request, Choice choice) {
  return runWalk(group, request,
                 [&]<class Index, class Word>(const Topology<Index>& topology,
                                              const WalkHistory<Word>&, Team& team) {
                   return PlainMover<Index, Word, Choice>(topology.out, group.agents, request.steps,
                                                          choice, request.restarts, team);
                 });
}

/// The walk of agents with memory, by one of the choices.
template <class Choice>
WalkResult walkWithMemory(GroupState& group, DynamicState& dynamic, WalkRequest request,
                          Choice choice) {
  if (dynamic.agentsNetwork) request.threads = 1;  // agents are told of others in their order
  return runWalk(group, request,
                 [&]<class Index, class Word>(const Topology<Index>& topology,
                                              const WalkHistory<Word>&, Team& team) {
                   return DynamicMover<Index, Word, Choice>(
                       topology.out, group.network->countVertices(), group.agents, request.steps,
                       choice, request.restarts, std::get<AgentMemories<Word>>(dynamic.memories),
                       dynamic.agentsNetwork.get(), team);
                 });
}

[[nodiscard]] inline WalkRequest publishedRequest(std::uint64_t steps, bool returnPath,
                                                  float untilReach) {
  WalkRequest request;
  request.steps = steps;
  request.returnPath = returnPath;
  request.untilReach = static_cast<double>(untilReach);
  request.threads = parallelism();
  return request;
}

}  // namespace veq::internal
