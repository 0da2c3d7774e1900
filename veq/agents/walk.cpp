#include <optional>
#include <stdexcept>

#include "veq/agents/agents_group.hpp"
#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/walks.hpp"

namespace veq {
namespace internal {

void requireAgentsWithin(const GroupState& group) {
  const std::uint64_t vertices = group.network->countVertices();
  for (std::uint64_t a = 0; a < group.agents; ++a) {
    if ((*group.positions)[a] >= vertices) {
      throw std::out_of_range("An agent stands on a vertex that the network does not have.");
    }
  }
}

}  // namespace internal

std::optional<VEQVertexPaths> VEQNetworkAgentsGroup::walkForSteps_returnPath_untilReach(
    std::uint64_t steps, bool returnPath, float untilReach) {
  return internal::walkPlainly(*state_, internal::publishedRequest(steps, returnPath, untilReach),
                               internal::PublishedChoice())
      .paths;
}

std::optional<VEQVertexPaths> VEQNetworkAgentsGroup::walkForSteps_returnPath(std::uint64_t steps,
                                                                             bool returnPath) {
  return walkForSteps_returnPath_untilReach(steps, returnPath, -1.0F);
}

VEQVertexPaths VEQNetworkAgentsGroup::walkForSteps(std::uint64_t steps) {
  return *walkForSteps_returnPath(steps, true);
}

VEQVertexPaths VEQNetworkAgentsGroup::tellAgentsToWalkToNextVertices() { return walkForSteps(1); }

Shared<VEQVertex> VEQNetworkAgentsGroup::walkNextVertexForAgent(std::uint64_t) { return nullptr; }

bool VEQNetworkAgentsGroup::reachedWalkPercentage() const { return state_->reached.finished(); }
std::uint64_t VEQNetworkAgentsGroup::walkCount() const { return state_->reached.walkCount(); }

std::int64_t VEQNetworkAgentsGroup::currentProgress() const {
  return state_->work.currentProgress();
}
std::int64_t VEQNetworkAgentsGroup::currentWork() const { return state_->work.currentWork(); }
bool VEQNetworkAgentsGroup::isWorking() const { return state_->work.isWorking(); }
bool VEQNetworkAgentsGroup::isWaiting() const { return state_->work.isWaiting(); }
void VEQNetworkAgentsGroup::pauseWork() { state_->work.pause(); }
void VEQNetworkAgentsGroup::resumeWork() { state_->work.resume(); }
void VEQNetworkAgentsGroup::cancelWork() { state_->work.cancel(); }
void VEQNetworkAgentsGroup::setSynchronizationSteps(std::uint64_t steps) {
  state_->work.setSynchronizationSteps(steps);
}
std::uint64_t VEQNetworkAgentsGroup::synchronizationSteps() const {
  return state_->work.synchronizationSteps();
}

}  // namespace veq
