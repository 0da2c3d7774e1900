#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

#include "fuzz/operations/world.hpp"
#include "veq/agents/dynamic_agents_group.hpp"
#include "veq/models/random_generator.hpp"

namespace veq::fuzz {
namespace {

std::vector<std::uint64_t> positionsOf(const VEQNetworkAgentsGroup& group) {
  std::vector<std::uint64_t> positions;
  for (const VEQVertex& vertex : group.agentsCurrentVerticesList()) {
    positions.push_back(vertex.identification());
  }
  return positions;
}

bool allWithin(const VEQNumberArray& indices, std::uint64_t n) {
  std::vector<std::uint64_t> values(indices.count());
  indices.getUnsignedIntegerValues_count(values.data(), values.size());
  return std::all_of(values.begin(), values.end(), [n](std::uint64_t v) { return v < n; });
}

std::uint64_t sum(const VEQNumberArray& integers) {
  const auto values = integers.values<std::int64_t>();
  return static_cast<std::uint64_t>(std::accumulate(values.begin(), values.end(), std::int64_t{0}));
}

// Each agent's visits are its moves, and no order is above the number of visits.
void checkHistory(const FuzzedGroup& walkers) {
  const VEQNetworkAgentsGroup& group = *walkers.group;
  for (std::size_t a = 0; a < walkers.moves.size(); ++a) {
    const auto agent = static_cast<std::int64_t>(a);
    const auto visits = group.visitFrequencyOfVerticesForAgent(agent);
    const auto order = group.orderOfVisitedVerticesForAgent(agent);
    VEQ_CHECK(visits->count() == walkers.network->countVertices());
    VEQ_CHECK(order->count() == visits->count());
    VEQ_CHECK(sum(*visits) == walkers.moves[a]);
    for (std::uint64_t v = 0; v < visits->count(); ++v) {
      const std::int64_t visited = visits->integerValueAtIndex(v);
      const std::int64_t last = order->integerValueAtIndex(v);
      VEQ_CHECK(visited >= 0 && last >= 0);
      VEQ_CHECK(static_cast<std::uint64_t>(last) <= walkers.moves[a]);
      if (visited == 0) VEQ_CHECK(last == 0);
    }
  }
}

// Follows an agent along its path; gives the number of its moves.
std::uint64_t follow(const VEQNetwork& network, std::uint64_t& at, const VEQVertexArray& path) {
  std::uint64_t moves = 0;
  for (std::uint64_t step = 0; step < path.count(); ++step) {
    const std::uint64_t next = path.identificationAtIndex(step);
    const auto neighbours = network.indicesOfVerticesLinkedFromVertexAtIndex(at);
    if (neighbours->count() == 0) {
      VEQ_CHECK(next == 0);
      continue;
    }
    const auto values = neighbours->values<std::uint64_t>();
    VEQ_CHECK(std::find(values.begin(), values.end(), next) != values.end());
    at = next;
    ++moves;
  }
  return moves;
}

void checkPaths(FuzzedGroup& walkers, std::vector<std::uint64_t> positions,
                const VEQVertexPaths& paths) {
  const auto completed = static_cast<std::uint64_t>(walkers.group->currentProgress());
  VEQ_CHECK(paths.count() == positions.size());
  for (std::size_t a = 0; a < positions.size(); ++a) {
    VEQ_CHECK(paths[a].count() == completed);
    walkers.moves[a] += follow(*walkers.network, positions[a], paths[a]);
  }
  VEQ_CHECK(positions == positionsOf(*walkers.group));
}

void walk(FuzzedGroup& walkers, Input& input) {
  constexpr std::array<float, 6> kTargets = {-1.0F, 0.0F, 0.25F,
                                             1.0F,  2.0F, std::numeric_limits<float>::quiet_NaN()};
  VEQNetworkAgentsGroup& group = *walkers.group;
  const std::uint64_t steps = input.below(7);
  const float target = kTargets[input.below(kTargets.size())];
  std::vector<std::uint64_t> before;
  const bool placed = mayThrow([&] { before = positionsOf(group); });
  std::optional<VEQVertexPaths> paths;
  const bool walked = succeeds<std::out_of_range>(
      !placed, [&] { paths = group.walkForSteps_returnPath_untilReach(steps, true, target); });
  VEQ_CHECK(!group.isWorking() && !group.isWaiting());
  if (!walked) return checkHistory(walkers);
  const auto completed = static_cast<std::uint64_t>(group.currentProgress());
  VEQ_CHECK(completed == steps ||
            (target > 0 && completed <= steps && group.reachedWalkPercentage()));
  VEQ_CHECK(static_cast<std::uint64_t>(group.currentWork()) == steps);
  VEQ_CHECK(paths.has_value());
  checkPaths(walkers, std::move(before), *paths);
  checkHistory(walkers);
}

// With the same seed and the same places, whether anybody asks for paths makes no difference.
void walkTwins(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject) return;
  const VEQNumberArray places = anyIndices(input, subject->model.topology.vertexCount);
  if (!allWithin(places, subject->network->countVertices())) return;
  const std::uint64_t steps = input.below(9);
  const std::uint8_t seed = input.byte();
  std::vector<std::uint64_t> ends[2];
  double next[2];
  for (const bool withPath : {false, true}) {
    VEQRandomGenerator& generator = *VEQRandomGenerator::sharedRandomGenerator();
    generator.setRandomSeed(seed);
    const auto group =
        VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(subject->network, places);
    (void)group->walkForSteps_returnPath(steps, withPath);
    ends[withPath] = positionsOf(*group);
    next[withPath] = generator.randomDouble();
  }
  VEQ_CHECK(ends[0] == ends[1]);
  VEQ_CHECK(next[0] == next[1]);
}

void place(FuzzedGroup& walkers, Input& input) {
  VEQNetworkAgentsGroup& group = *walkers.group;
  const std::uint64_t n = walkers.network->countVertices();
  if (input.flag()) {
    const std::uint64_t agent = input.below(5);
    const auto vertex =
        VEQVertex::initAtNetwork_identification(*walkers.network, anyIndex(input, n));
    mayThrow([&] {
      group.setCurrentVertex_forAgent(*vertex, agent);
      VEQ_CHECK(group.currentVertexOfAgent(agent)->isEqual(*vertex));
    });
    return;
  }
  const VEQNumberArray places = anyIndices(input, n);
  succeeds<std::invalid_argument>(places.count() < walkers.moves.size(),
                                  [&] { group.setAgentsCurrentVerticesIndices(places); });
}

void useProperties(World& world, VEQNetworkAgentsGroup& group, Input& input) {
  const std::string key = anyKey(input);
  const std::uint64_t agent = input.below(6);
  switch (input.below(4)) {
    case 0:
      mayThrow([&] { group.setPropertyValue_forKey_forAgent(anyValue(input), key, agent); });
      break;
    case 1:
      if (const LooseColumn* loose = choose(world.columns, input)) {
        mayThrow([&] {
          group.setPropertyValues_forKey(
              imageOf(*loose->column).values.empty()
                  ? AgentsProperty(anyValue(input))
                  : AgentsProperty(Shared<PropertyColumn>(loose->column->editableCopy())),
              key);
        });
      }
      break;
    case 2: {
      const AgentsPropertyTable copy(*group.properties());
      group.setProperties(copy);
      VEQ_CHECK(group.properties()->isFrozen());
      break;
    }
    default:
      break;
  }
  VEQ_CHECK(group.propertiesForAgent(agent).size() == group.properties()->size());
  VEQ_CHECK(group.propertyValuesForKey(key).has_value() == group.properties()->contains(key));
}

}  // namespace

void makeGroup(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject) return;
  const VEQNumberArray places = anyIndices(input, subject->model.topology.vertexCount);
  const std::uint64_t agents = places.count();
  FuzzedGroup walkers{nullptr, subject->network, std::vector<std::uint64_t>(agents, 0)};
  if (input.flag()) {
    walkers.group =
        VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(subject->network, places);
    VEQ_CHECK(walkers.group != nullptr);
  } else {
    constexpr std::array<double, 5> kErrors = {0.0, 0.5, 1.0, -1.0,
                                               std::numeric_limits<double>::quiet_NaN()};
    internal::RawVector<double> errors;
    internal::RawVector<std::uint64_t> sizes;
    const std::uint64_t given = agents + (input.below(16) == 0 ? 0 : 1) - (agents > 0 ? 1 : 0);
    for (std::uint64_t a = 0; a < std::max(given, agents); ++a) {
      errors.push_back(kErrors[input.below(kErrors.size())]);
      sizes.push_back(input.below(5));
    }
    const bool empty =
        std::find(sizes.begin(), sizes.begin() + static_cast<std::ptrdiff_t>(agents),
                  std::uint64_t{0}) != sizes.begin() + static_cast<std::ptrdiff_t>(agents);
    Subject* const others = input.flag() ? choose(world.subjects, input) : nullptr;
    walkers.group = VEQNetworkDynamicAgentsGroup::
        initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
            subject->network, places, others ? others->network : nullptr,
            VEQNumberArray(std::move(errors)), VEQNumberArray(std::move(sizes)));
    VEQ_CHECK((walkers.group == nullptr) == empty);
  }
  if (!walkers.group) return;
  VEQ_CHECK(static_cast<std::uint64_t>(walkers.group->countAgents()) == agents);
  keep(world.groups, std::move(walkers), input);
}

void useGroup(World& world, Input& input) {
  FuzzedGroup* const walkers = choose(world.groups, input);
  if (!walkers) return walkTwins(world, input);
  switch (input.below(10)) {
    case 0:
      VEQ_CHECK(walkers->group->flushWalkHistory());
      std::fill(walkers->moves.begin(), walkers->moves.end(), 0);
      return checkHistory(*walkers);
    case 1:
    case 2:
      return place(*walkers, input);
    case 3:
      return useProperties(world, *walkers->group, input);
    case 4:
      return walkTwins(world, input);
    case 5:
      walkers->group->pauseWork();
      walkers->group->cancelWork();
      VEQ_CHECK(walkers->group->currentProgress() == 0 && walkers->group->currentWork() == 0);
      (void)walkers->group->globalVisitFrequencyOfVertices();
      VEQ_CHECK(sum(*walkers->group->globalOrderOfVisitedVertices()) == 0);
      return;
    default:
      return walk(*walkers, input);
  }
}

}  // namespace veq::fuzz
