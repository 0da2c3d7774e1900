// Groups of agents, their walks and their history, each of whose allocations is made to fail.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/failing_allocation.hpp"
#include "tests/support/shared_work.hpp"
#include "veq/agents/internal/group_state.hpp"
#include "veq/walkers.hpp"

namespace veq::test::walk_allocations_test {
namespace {

constexpr std::uint64_t kVertices = 50;
constexpr std::uint64_t kAgents = 20;

// 0 -> 1 -> ... -> 49 -> 0, so that positions and visits follow from the number of steps.
Shared<VEQNetwork> cycle() {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < kVertices; ++v) edges.emplace_back(v, (v + 1) % kVertices);
  return networkOf(kVertices, edges, true);
}

/// A group whose log is folded whenever there is one, and which has made 70 steps.
class FoldingGroup final : public VEQNetworkAgentsGroup {
 public:
  explicit FoldingGroup(Shared<const VEQNetwork> network)
      : VEQNetworkAgentsGroup(std::make_unique<internal::GroupState>(
            std::move(network), std::vector<std::uint64_t>(kAgents, 0))) {
    state().history = internal::WalkHistory<std::uint32_t>(kVertices, kAgents, 0, {.log = 0});
    walkForSteps_returnPath_untilReach(70, false, 2.0F);
  }
};

std::unique_ptr<FoldingGroup> walkers() { return std::make_unique<FoldingGroup>(cycle()); }

// That everything tells of the same number of steps, all agents having begun at vertex 0.
void expectSteps(FoldingGroup& group, std::uint64_t steps) {
  EXPECT_FALSE(group.isWorking());
  EXPECT_EQ(indices(group.agentsCurrentVerticesList()), Indices(kAgents, steps % kVertices));
  Integers visits(kVertices);
  Integers order(kVertices);
  for (std::uint64_t s = 1; s <= steps; ++s) {
    ++visits[s % kVertices];
    order[s % kVertices] = static_cast<std::int64_t>(s - 1);
  }
  for (const std::int64_t agent : {0, 7, 19}) {
    ASSERT_EQ(integers(group.visitFrequencyOfVerticesForAgent(agent)), visits) << agent;
    ASSERT_EQ(integers(group.orderOfVisitedVerticesForAgent(agent)), order) << agent;
  }
}

TEST(FailingWalk, AGroupIsMadeOrNot) {
  const auto network = cycle();
  const VEQVertexArray vertices = {network->vertexAtIndex(3), network->vertexAtIndex(4)};
  const auto start = VEQNumberArray::ofIndices({3, 4});
  Owned<VEQNetworkAgentsGroup> group;
  const auto check = [&](bool failed) {
    EXPECT_FALSE(failed) << "It must not throw.";
    EXPECT_EQ(group == nullptr, FailingAllocation::happened());
    group.reset();
  };
  EXPECT_GE(forEachFailingAllocation(
                [&] {
                  group =
                      VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(network, start);
                },
                check),
            3U);
  EXPECT_GE(
      forEachFailingAllocation(
          [&] { group = VEQNetworkAgentsGroup::initAtNetwork_initialVertices(network, vertices); },
          check),
      3U);
}

// Before the first step nothing is changed; later the walk ends between two steps.
void expectAgreementWhereAllocationsFail(std::uint64_t steps) {
  seed(1);  // makes the generator, which is never deleted
  for (const bool paths : {false, true}) {
    for (const float target : {-1.0F, 2.0F}) {
      const std::uint64_t failures = forEachFailingAllocation(
          walkers,
          [&](std::unique_ptr<FoldingGroup>& group) {
            (void)group->walkForSteps_returnPath_untilReach(steps, paths, target);
          },
          [&](std::unique_ptr<FoldingGroup>& group, bool failed) {
            const auto progress = static_cast<std::uint64_t>(group->currentProgress());
            const bool begun = static_cast<std::uint64_t>(group->currentWork()) == steps;
            if (!failed) {
              EXPECT_EQ(progress, steps);
            }
            EXPECT_EQ(group->walkCount(), begun && target > 0.0F ? 70 + progress : 70);
            expectSteps(*group, begun ? 70 + progress : 70);
          });
      EXPECT_GE(failures, 4U);
    }
  }
}

TEST(FailingWalk, EndsWithEverythingInAgreement) { expectAgreementWhereAllocationsFail(2000); }

TEST(FailingWalk, EndsSoWhereThreadsShareIt) {
  const SharedWork shared(3);
  expectAgreementWhereAllocationsFail(100);
}

TEST(FailingWalk, EndsSoInPiecesInReverse) {
  const SharedWork shared(2, SharedWork::InReverse());
  expectAgreementWhereAllocationsFail(100);
}

// Either nothing is made, or walkers that can walk.
TEST(FailingWalk, WalkersAreMadeOrNot) {
  const Network network(cycle());
  const std::vector<std::uint64_t> starts{3, 4};
  MemoryOptions memory;
  memory.sizes = {2};
  for (const bool withMemory : {false, true}) {
    std::optional<Result<Walkers>> made;
    const auto check = [&](bool failed) {
      if (!failed && FailingAllocation::happened()) {
        EXPECT_EQ(made->error().kind(), ErrorKind::kMemory);
      }
      made.reset();
    };
    EXPECT_GE(forEachFailingAllocation(
                  [&] {
                    made = withMemory ? Walkers::withMemory(network, starts, memory)
                                      : Walkers::at(network, starts);
                  },
                  check),
              4U);
  }
}

// On the cycle everybody goes on by one vertex in every step.
TEST(FailingWalk, OfWalkersEndsWithEverythingInAgreement) {
  for (const bool endless : {false, true}) {
    const std::uint64_t failures = forEachFailingAllocation(
        [] {
          const std::vector<std::uint64_t> starts{0, 0};
          return std::make_unique<Walkers>(Walkers::at(Network(cycle()), starts).value());
        },
        [&](std::unique_ptr<Walkers>& agents) {
          RandomState random = RandomState::seeded(5).value();
          WalkOptions options;
          if (!endless) options.steps = 120;
          options.target = 1.0;
          options.paths = true;
          options.firstArrivals = true;
          options.choice = Choice::kWeighted;
          options.random = &random;
          const auto outcome = agents->walk(options);
          if (outcome) {
            EXPECT_EQ(outcome.value().steps, kVertices);
          }
        },
        [&](std::unique_ptr<Walkers>& agents, bool) {
          const std::vector<std::uint64_t> visits = agents->visits(1);
          const std::uint64_t steps = std::accumulate(visits.begin(), visits.end(), 0U);
          EXPECT_LE(steps, kVertices);
          EXPECT_EQ(agents->positions(), std::vector<std::uint64_t>(2, steps % kVertices));
          for (std::uint64_t s = 1; s <= steps; ++s) EXPECT_EQ(visits[s % kVertices], 1U);
        });
    EXPECT_GE(failures, 6U);
  }
}

TEST(FailingWalk, ItsHistoryCanBeAskedForAgain) {
  forEachFailingAllocation(
      walkers,
      [](std::unique_ptr<FoldingGroup>& group) {
        (void)group->visitFrequencyOfVerticesForAgent(7);
        (void)group->globalVisitFrequencyOfVertices();
        (void)group->globalOrderOfVisitedVertices();
      },
      [](std::unique_ptr<FoldingGroup>& group, bool) {
        expectSteps(*group, 70);
        Integers totals(kVertices, kAgents);
        for (std::size_t v = 1; v <= 20; ++v) totals[v] = 2 * kAgents;
        EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), totals);
      });
}

TEST(FailingWalk, ItsGroupStaysAsItIsWhenItCannotBePlacedOrDescribed) {
  const auto elsewhere = VEQNumberArray::ofIndices(Indices(kAgents + 1, 9));
  forEachFailingAllocation(
      walkers,
      [&](std::unique_ptr<FoldingGroup>& group) {
        group->setPropertyValue_forKey_forAgent("a text too long for the string itself", "Key", 3);
        group->setAgentsCurrentVerticesIndices(elsewhere);
      },
      [](std::unique_ptr<FoldingGroup>& group, bool failed) {
        const auto property = group->propertyValueForAgent_forKey(3, "Key");
        if (property) {
          EXPECT_EQ(*property,
                    AgentsProperty(PropertyValue("a text too long for the string itself")));
        }
        if (failed) {
          expectSteps(*group, 70);
        } else {
          EXPECT_EQ(group->currentVertexOfAgent(kAgents)->identification(), 9U);
        }
      });
}

}  // namespace
}  // namespace veq::test::walk_allocations_test
