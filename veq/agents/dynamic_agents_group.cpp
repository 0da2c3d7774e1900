#include "veq/agents/dynamic_agents_group.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <utility>
#include <variant>
#include <vector>

#include "veq/agents/internal/dynamic_state.hpp"
#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/walks.hpp"

namespace veq {
namespace internal {

DynamicState* GroupAccess::memoriesOf(const VEQNetworkAgentsGroup& group) {
  const auto* dynamic = dynamic_cast<const VEQNetworkDynamicAgentsGroup*>(&group);
  return dynamic ? dynamic->dynamicState_.get() : nullptr;
}

}  // namespace internal

namespace {

using internal::AgentAbility;
using internal::AgentMemories;
using internal::DynamicState;
using internal::GroupState;

// The draws r with probability > r * 2^-31, which is exact in double, are those below this.
std::uint32_t thresholdOf(float probability) {
  const double threshold = std::ceil(static_cast<double>(probability) * 0x1p31);
  if (!(threshold > 0.0)) return 0;
  return threshold < 0x1p31 ? static_cast<std::uint32_t>(threshold) : std::uint32_t{1} << 31;
}

// The size of a ring that also takes what the neighbours pass on.
std::uint64_t withNeighbours(std::uint64_t size, std::uint64_t neighbours) {
  if (neighbours >= std::numeric_limits<std::uint64_t>::max() / size) throw std::bad_alloc();
  return size * (neighbours + 1);
}

std::vector<AgentAbility> abilitiesOf(std::uint64_t agents, const VEQNetwork* agentsNetwork,
                                      const VEQNumberArray& errors,
                                      const VEQNumberArray& memorySizes) {
  std::vector<float> probabilities(agents);
  errors.getFloatValues_count(probabilities.data(), agents);
  std::vector<std::uint64_t> sizes(agents);
  memorySizes.getUnsignedIntegerValues_count(sizes.data(), agents);
  std::vector<AgentAbility> abilities(agents);
  for (std::uint64_t a = 0; a < agents; ++a) {
    if (sizes[a] == 0) return {};
    const std::uint64_t neighbours =
        agentsNetwork ? agentsNetwork->countEdgesOfVertexAtIndex(a) : 0;
    abilities[a] = {withNeighbours(sizes[a], neighbours), thresholdOf(probabilities[a])};
  }
  return abilities;
}

// A word holds a vertex plus 1, or a number of slots.
bool fitsNarrow(std::uint64_t vertices, const std::vector<AgentAbility>& abilities) {
  return vertices < UINT32_MAX &&
         std::all_of(abilities.begin(), abilities.end(),
                     [](const AgentAbility& ability) { return ability.ringSize <= UINT32_MAX; });
}

// Null where the errors or memory sizes are no good; std::bad_alloc where memory cannot hold the
// rings.
std::unique_ptr<DynamicState> makeDynamicState(GroupState& group,
                                               Shared<const VEQNetwork> agentsNetwork,
                                               const VEQNumberArray& errors,
                                               const VEQNumberArray& memorySizes) {
  if (errors.count() < group.agents || memorySizes.count() < group.agents) return nullptr;
  if (agentsNetwork && agentsNetwork->countVertices() < group.agents) agentsNetwork = nullptr;
  const std::vector<AgentAbility> abilities =
      abilitiesOf(group.agents, agentsNetwork.get(), errors, memorySizes);
  if (abilities.size() != group.agents) return nullptr;
  const std::uint64_t vertices = group.network->countVertices();
  const auto make = [&](auto word) {
    return std::make_unique<DynamicState>(
        DynamicState{agentsNetwork, AgentMemories<decltype(word)>(vertices, abilities)});
  };
  if (fitsNarrow(vertices, abilities)) return make(std::uint32_t{});
  group.history = group.makeHistory(true, 0);  // in the same words
  return make(std::uint64_t{});
}

}  // namespace

VEQNetworkDynamicAgentsGroup::VEQNetworkDynamicAgentsGroup(
    std::unique_ptr<GroupState> state, std::unique_ptr<DynamicState> dynamicState)
    : VEQNetworkAgentsGroup(std::move(state)), dynamicState_(std::move(dynamicState)) {}

VEQNetworkDynamicAgentsGroup::~VEQNetworkDynamicAgentsGroup() = default;

template <class Places>
Owned<VEQNetworkDynamicAgentsGroup> VEQNetworkDynamicAgentsGroup::make(
    Shared<const VEQNetwork> network, const Places& places, Shared<const VEQNetwork> agentsNetwork,
    const VEQNumberArray& errors, const VEQNumberArray& memorySizes) {
  if (!network) return nullptr;
  return internal::orNothing([&]() -> Owned<VEQNetworkDynamicAgentsGroup> {
    auto state = std::make_unique<GroupState>(std::move(network), internal::positionsOf(places));
    auto memories = makeDynamicState(*state, std::move(agentsNetwork), errors, memorySizes);
    if (!memories) return nullptr;
    return Owned<VEQNetworkDynamicAgentsGroup>(
        new VEQNetworkDynamicAgentsGroup(std::move(state), std::move(memories)));
  });
}

Owned<VEQNetworkDynamicAgentsGroup> VEQNetworkDynamicAgentsGroup::
    initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
        Shared<const VEQNetwork> network, const VEQNumberArray& indices,
        Shared<const VEQNetwork> agentsNetwork, const VEQNumberArray& errors,
        const VEQNumberArray& memorySizes) {
  return make(std::move(network), indices, std::move(agentsNetwork), errors, memorySizes);
}

Owned<VEQNetworkDynamicAgentsGroup>
VEQNetworkDynamicAgentsGroup::initAtNetwork_initialVertices_agentsNetwork_agentsErrors_agentsMemory(
    Shared<const VEQNetwork> network, const VEQVertexArray& vertices,
    Shared<const VEQNetwork> agentsNetwork, const VEQNumberArray& errors,
    const VEQNumberArray& memorySizes) {
  return make(std::move(network), vertices, std::move(agentsNetwork), errors, memorySizes);
}

std::optional<VEQVertexPaths> VEQNetworkDynamicAgentsGroup::walkForSteps_returnPath_untilReach(
    std::uint64_t steps, bool returnPath, float untilReach) {
  return internal::walkWithMemory(state(), *dynamicState_,
                                  internal::publishedRequest(steps, returnPath, untilReach),
                                  internal::PublishedChoice())
      .paths;
}

bool VEQNetworkDynamicAgentsGroup::flushWalkHistory() {
  return VEQNetworkAgentsGroup::flushWalkHistory();
}

}  // namespace veq
