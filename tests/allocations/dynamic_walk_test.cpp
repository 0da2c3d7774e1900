// Groups of agents with memory and their walks, each of whose allocations is made to fail, and how
// much memory they take.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/failing_allocation.hpp"
#include "veq/agents/dynamic_agents_group.hpp"

namespace veq::test::dynamic_walk_test {
namespace {

constexpr std::uint64_t kVertices = 6000;
constexpr std::uint64_t kAgents = 20;
constexpr std::uint64_t kFirst = 70;

// 0 - 1 - 2 - ... - 0
Shared<VEQNetwork> cycle(std::uint64_t n) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < n; ++v) edges.emplace_back(v, (v + 1) % n);
  return networkOf(n, edges, false);
}

// Agents at vertex 0.
Owned<VEQNetworkDynamicAgentsGroup> makeGroup(Shared<const VEQNetwork> network,
                                              Shared<const VEQNetwork> agentsNetwork,
                                              std::uint64_t agents, std::int64_t size) {
  return VEQNetworkDynamicAgentsGroup::
      initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
          std::move(network), *VEQNumberArray::initWithIntegerScalar_count(0, agents),
          std::move(agentsNetwork), *VEQNumberArray::initWithDoubleScalar_count(0.0, agents),
          *VEQNumberArray::initWithIntegerScalar_count(size, agents));
}

// Two slots on a cycle: after the second step nobody turns round any more.
struct TalkingAgents {
  std::uint64_t vertices;
  Owned<VEQNetworkDynamicAgentsGroup> group = makeGroup(cycle(vertices), nullptr, kAgents, 2);
  Indices ahead;

  explicit TalkingAgents(std::uint64_t vertexCount) : vertices(vertexCount) {
    seed(1);
    const VEQVertexPaths paths = group->walkForSteps(kFirst);
    for (const Indices& path : indices(paths)) {
      ahead.push_back((path[kFirst - 1] + vertices - path[kFirst - 2]) % vertices);
    }
    before_ = indices(group->agentsCurrentVerticesList());
  }

  // That positions and visits are those of so many further steps.
  void expectSteps(std::uint64_t steps) const {
    const Indices now = indices(group->agentsCurrentVerticesList());
    for (std::uint64_t a = 0; a < kAgents; ++a) {
      ASSERT_EQ(now[a], (before_[a] + steps * ahead[a]) % vertices) << "agent " << a;
      const Integers visits =
          integers(group->visitFrequencyOfVerticesForAgent(static_cast<std::int64_t>(a)));
      ASSERT_EQ(std::accumulate(visits.begin(), visits.end(), std::uint64_t{0}), kFirst + steps);
    }
  }

 private:
  Indices before_;
};

TEST(FailingDynamicWalk, AGroupIsMadeOrNot) {
  const auto network = cycle(kVertices);
  const auto linked = cycle(2);
  const auto start = VEQNumberArray::ofIndices({3, 4});
  const VEQVertexArray handles = {network->vertexAtIndex(3), network->vertexAtIndex(4)};
  const auto errors = VEQNumberArray::ofDoubles({0, 1});
  const auto sizes = VEQNumberArray::ofIndices({3, 4});
  for (const bool fromHandles : {false, true}) {
    Owned<VEQNetworkDynamicAgentsGroup> group;
    const std::uint64_t failures = forEachFailingAllocation(
        [&] {
          group =
              fromHandles
                  ? VEQNetworkDynamicAgentsGroup::
                        initAtNetwork_initialVertices_agentsNetwork_agentsErrors_agentsMemory(
                            network, handles, linked, errors, sizes)
                  : VEQNetworkDynamicAgentsGroup::
                        initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
                            network, start, linked, errors, sizes);
        },
        [&](bool failed) {
          EXPECT_FALSE(failed) << "It must not throw.";
          EXPECT_EQ(group == nullptr, FailingAllocation::happened());
          group.reset();
        });
    EXPECT_GE(failures, 8U);
  }
}

// Before the first step nothing is changed. Later the walk ends between two steps, and what the
// agents remember agrees, for they go on in the same direction.
void expectAgreement(std::uint64_t vertices, std::uint64_t further, float target) {
  seed(1);  // makes the generator, which is never deleted
  std::uint64_t interrupted = 0;
  const std::uint64_t failures = forEachFailingAllocation(
      [vertices] { return std::make_unique<TalkingAgents>(vertices); },
      [&](std::unique_ptr<TalkingAgents>& walkers) {
        (void)walkers->group->walkForSteps_returnPath_untilReach(further, false, target);
      },
      [&](std::unique_ptr<TalkingAgents>& walkers, bool failed) {
        VEQNetworkAgentsGroup& group = *walkers->group;
        EXPECT_FALSE(group.isWorking());
        const bool begun = group.currentWork() == static_cast<std::int64_t>(further);
        const auto steps = begun ? static_cast<std::uint64_t>(group.currentProgress()) : 0;
        EXPECT_EQ(failed, steps < further);
        interrupted += steps > 0 && failed;
        walkers->expectSteps(steps);
        group.walkForSteps_returnPath(3, false);
        walkers->expectSteps(steps + 3);
      });
  EXPECT_GE(failures, 4U);
  EXPECT_GE(interrupted, 1U);
}

// As it may end early, room is asked for a run at a time: 8 MiB of moves, which the log takes, and
// 2 million bytes more, which it does not, so that tallies are made as it goes.
TEST(FailingDynamicWalk, EndsWithEverythingInAgreement) { expectAgreement(60000, 130000, 2.0F); }

// 8.8 million bytes of moves, where the log may take 9.6, in blocks of 8 MiB at most.
TEST(FailingDynamicWalk, EndsWithEverythingInAgreementBetweenTwoBlocks) {
  expectAgreement(60000, 110000, -1.0F);
}

TEST(FailingDynamicWalk, WithSharingLosesNothing) {
  seed(1);
  const std::uint64_t failures = forEachFailingAllocation(
      [] { return makeGroup(cycle(kVertices), cycle(kAgents), kAgents, 2); },
      [&](Owned<VEQNetworkDynamicAgentsGroup>& group) {
        (void)group->walkForSteps_returnPath_untilReach(50, true, 2.0F);
      },
      [&](Owned<VEQNetworkDynamicAgentsGroup>& group, bool) {
        const std::uint64_t steps = group->walkCount();
        EXPECT_EQ(static_cast<std::uint64_t>(group->currentProgress()), steps);
        const Integers visits = integers(group->globalVisitFrequencyOfVertices());
        EXPECT_EQ(std::accumulate(visits.begin(), visits.end(), std::uint64_t{0}), kAgents * steps);
      });
  EXPECT_GE(failures, 4U);
}

// A thousand rings of 100 slots: 0.4 megabytes of slots and 2 of tables of 256 places. The walk
// adds 0.4 megabytes of moves and as much of random numbers.
TEST(DynamicWalkMemory, FollowsTheRingsAndNotTheNetwork) {
  const auto network = cycle(1000000);
  const std::uint64_t before = FailingAllocation::allocatedBytes();
  const auto group = makeGroup(network, nullptr, 1000, 100);
  ASSERT_NE(group, nullptr);
  EXPECT_LT(FailingAllocation::allocatedBytes() - before, std::uint64_t{3} << 20);
  group->walkForSteps_returnPath(100, false);
  EXPECT_LT(FailingAllocation::allocatedBytes() - before, std::uint64_t{5} << 20);
  EXPECT_GT(FailingAllocation::allocatedBytes() - before, std::uint64_t{2} << 20);
}

}  // namespace
}  // namespace veq::test::dynamic_walk_test
