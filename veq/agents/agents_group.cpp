#include "veq/agents/agents_group.hpp"

#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <variant>

#include "veq/agents/internal/group_state.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/numeric/generic_array.hpp"

namespace veq {
namespace internal {

GroupState::Positions positionsOf(const VEQNumberArray& indices) {
  GroupState::Positions positions(indices.count());
  indices.getUnsignedIntegerValues_count(positions.data(), positions.size());
  return positions;
}

GroupState::Positions positionsOf(const VEQVertexArray& vertices) {
  GroupState::Positions positions(vertices.count());
  for (std::uint64_t i = 0; i < positions.size(); ++i) {
    positions[i] = vertices.identificationAtIndex(i);
  }
  return positions;
}

template <class Places>
Owned<VEQNetworkAgentsGroup> GroupAccess::make(Shared<const VEQNetwork> network,
                                               const Places& places) {
  if (!network) return nullptr;
  return orNothing([&] {
    auto state = std::make_unique<GroupState>(std::move(network), positionsOf(places));
    return Owned<VEQNetworkAgentsGroup>(new VEQNetworkAgentsGroup(std::move(state)));
  });
}

}  // namespace internal

namespace {

using internal::GroupState;

template <class Places>
void setPositions(GroupState& state, const Places& places) {
  if (places.count() < state.agents) {
    throw std::invalid_argument(
        "New current vertices list shall be a array of vertices with at least the size of the "
        "number of agents.");
  }
  state.positions = std::make_shared<GroupState::Positions>(internal::positionsOf(places));
}

std::uint64_t requirePosition(const GroupState& state, std::uint64_t agent) {
  if (agent >= state.positions->size()) {
    throw std::out_of_range("The group has no agent of this number.");
  }
  return agent;
}

// Shares of the arrays are taken under the lock, for another thread may flush the history.
internal::AgentArrays arraysOf(GroupState& state, std::int64_t agent) {
  if (agent < 0 || static_cast<std::uint64_t>(agent) >= state.agents) {
    throw std::out_of_range("The group has no agent of this number.");
  }
  const std::lock_guard guard(state.historyLock);
  return std::visit(
      [&](auto& history) { return history.arraysOf(static_cast<std::uint64_t>(agent)); },
      state.history);
}

AgentsProperty entryOrWhole(const AgentsProperty& property, std::uint64_t agent) {
  const auto* column = std::get_if<Shared<PropertyColumn>>(&property);
  if (!column || agent >= (*column)->count()) return property;
  return (*column)->objectAtIndex(agent);
}

}  // namespace

VEQNetworkAgentsGroup::VEQNetworkAgentsGroup(std::unique_ptr<GroupState> state)
    : state_(std::move(state)) {}

VEQNetworkAgentsGroup::~VEQNetworkAgentsGroup() { state_->work.cancel(); }

Owned<VEQNetworkAgentsGroup> VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
    Shared<const VEQNetwork> network, const VEQNumberArray& indices) {
  return internal::GroupAccess::make(std::move(network), indices);
}

Owned<VEQNetworkAgentsGroup> VEQNetworkAgentsGroup::initAtNetwork_initialVertices(
    Shared<const VEQNetwork> network, const VEQVertexArray& vertices) {
  return internal::GroupAccess::make(std::move(network), vertices);
}

std::int64_t VEQNetworkAgentsGroup::countAgents() const {
  return static_cast<std::int64_t>(state_->agents);
}

VEQVertexArray VEQNetworkAgentsGroup::agentsCurrentVerticesList() const {
  internal::requireAgentsWithin(*state_);
  VEQVertexArray::Indices indices(
      state_->positions->begin(),
      state_->positions->begin() + static_cast<std::ptrdiff_t>(state_->agents));
  return {internal::CoreAccess::of(*state_->network).vertices(), std::move(indices)};
}

Shared<VEQVertex> VEQNetworkAgentsGroup::currentVertexOfAgent(std::uint64_t agent) const {
  return state_->network->vertexAtIndex((*state_->positions)[requirePosition(*state_, agent)]);
}

void VEQNetworkAgentsGroup::setAgentsCurrentVertices(const VEQVertexArray& vertices) {
  setPositions(*state_, vertices);
}

void VEQNetworkAgentsGroup::setAgentsCurrentVerticesIndices(const VEQNumberArray& indices) {
  setPositions(*state_, indices);
}

void VEQNetworkAgentsGroup::setCurrentVertex_forAgent(const VEQVertex& vertex,
                                                      std::uint64_t agent) {
  requirePosition(*state_, agent);
  state_->ownPositions()[agent] = vertex.identification();
}

Shared<const VEQNumberArray> VEQNetworkAgentsGroup::globalVisitFrequencyOfVertices() const {
  const std::lock_guard guard(state_->historyLock);
  internal::Team team(parallelism());
  return std::visit([&](auto& history) { return history.totals(team); }, state_->history);
}

Shared<const VEQNumberArray> VEQNetworkAgentsGroup::globalOrderOfVisitedVertices() const {
  const std::lock_guard guard(state_->historyLock);
  return std::visit([](auto& history) { return history.zeros(); }, state_->history);
}

Shared<const VEQNumberArray> VEQNetworkAgentsGroup::visitFrequencyOfVerticesForAgent(
    std::int64_t agent) const {
  return arraysOf(*state_, agent).visits;
}

Shared<const VEQNumberArray> VEQNetworkAgentsGroup::orderOfVisitedVerticesForAgent(
    std::int64_t agent) const {
  return arraysOf(*state_, agent).order;
}

bool VEQNetworkAgentsGroup::flushWalkHistory() {
  const std::lock_guard guard(state_->historyLock);
  if (state_->walksUnderWay != 0) return false;
  state_->reached.clear();
  state_->history = state_->makeHistory(state_->history.index() == 1, 1);
  return true;
}

Shared<const AgentsPropertyTable> VEQNetworkAgentsGroup::properties() const {
  return state_->properties;
}

void VEQNetworkAgentsGroup::setProperties(const AgentsPropertyTable& table) {
  if (&table == state_->properties.get()) return;
  state_->properties = table.frozenCopy();
}

void VEQNetworkAgentsGroup::setPropertyValue_forKey_forAgent(const PropertyValue& value,
                                                             std::string_view key,
                                                             std::uint64_t agent) {
  if (const AgentsProperty* property = state_->properties->find(key)) {
    const auto* column = std::get_if<Shared<PropertyColumn>>(property);
    if (!column) {
      throw std::invalid_argument("The property of the agents is one value, not a column.");
    }
    (*column)->replaceObject_atIndex(value, agent);
    return;
  }
  Shared<PropertyColumn> column = GenericArray::nullFilled(state_->agents);
  column->replaceObject_atIndex(value, agent);
  state_->properties->set(key, std::move(column));
}

void VEQNetworkAgentsGroup::setProperties_forAgent(const PropertyMap& values, std::uint64_t agent) {
  for (const auto& [key, value] : values) setPropertyValue_forKey_forAgent(value, key, agent);
}

std::optional<AgentsProperty> VEQNetworkAgentsGroup::propertyValuesForKey(
    std::string_view key) const {
  const AgentsProperty* property = state_->properties->find(key);
  return property ? std::optional(*property) : std::nullopt;
}

void VEQNetworkAgentsGroup::setPropertyValues_forKey(AgentsProperty property,
                                                     std::string_view key) {
  state_->properties->set(key, std::move(property));
}

std::optional<AgentsProperty> VEQNetworkAgentsGroup::propertyValueForAgent_forKey(
    std::uint64_t agent, std::string_view key) const {
  const AgentsProperty* property = state_->properties->find(key);
  return property ? std::optional(entryOrWhole(*property, agent)) : std::nullopt;
}

AgentsPropertyTable VEQNetworkAgentsGroup::propertiesForAgent(std::uint64_t agent) const {
  AgentsPropertyTable result;
  for (const auto& [key, property] : *state_->properties) {
    result.set(key, entryOrWhole(property, agent));
  }
  return result;
}

}  // namespace veq
