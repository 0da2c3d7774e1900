// Work that threads share, each of whose allocations is made to fail, in whichever thread it is.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/failing_allocation.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/models.hpp"
#include "veq/questions.hpp"
#include "veq/walkers.hpp"

namespace veq::test::shared_allocations_test {
namespace {

// Shared by three threads, where the n-th allocation is another one each time, and by one thread
// that does their pieces in reverse.
template <class Try>
void inBothWays(Try attempt) {
  {
    SCOPED_TRACE("three threads");
    const SharedWork shared(3);
    attempt();
  }
  SCOPED_TRACE("in reverse");
  const SharedWork shared(3, SharedWork::InReverse());
  attempt();
}

// Each piece asks for memory of its own, and so does every thread that starts.
TEST(FailingSharedWork, ATeamTellsOfItAndGoesOn) {
  inBothWays([] {
    const std::uint64_t failures = forEachFailingAllocation(
        [] { return std::make_unique<internal::Team>(3); },
        [](std::unique_ptr<internal::Team>& team) {
          std::vector<std::vector<std::uint64_t>> made(9);
          team->forEachPiece(made.size(), 1, [&](std::uint64_t i) { made[i].push_back(i); });
          for (std::uint64_t i = 0; i < made.size(); ++i) EXPECT_EQ(made[i], Indices{i});
        },
        [](std::unique_ptr<internal::Team>& team, bool) {
          std::vector<std::uint64_t> made(9);
          team->forEachPiece(made.size(), 1, [&](std::uint64_t i) { made[i] = i; });
          EXPECT_EQ(made, (Indices{0, 1, 2, 3, 4, 5, 6, 7, 8}));
        });
    EXPECT_GE(failures, 10U);
  });
}

constexpr std::uint64_t kVertices = 50;
constexpr std::uint64_t kAgents = 40;
constexpr std::uint64_t kSteps = 60;

// 0 -> 1 -> ... -> 49 -> 0, so that positions and visits follow from the number of steps.
Network cycle() {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < kVertices; ++v) edges.emplace_back(v, (v + 1) % kVertices);
  return Network(networkOf(kVertices, edges, true));
}

struct Kind {
  const char* name;
  bool withMemory;
  bool endless;
  std::optional<double> target;
  bool paths;
  bool arrivals;
};
constexpr Kind kKinds[] = {
    {"plain", false, false, std::nullopt, false, false},
    {"to a target", false, false, 1.0, false, false},
    {"with paths", false, false, std::nullopt, true, false},
    {"with first arrivals", false, false, std::nullopt, false, true},
    {"without a number of steps", false, true, 1.0, true, true},
    {"with memory", true, false, std::nullopt, false, false},
    {"with memory, to a target", true, false, 1.0, true, true},
};

struct Walking {
  std::unique_ptr<Walkers> agents;
  RandomState random;
  WalkOptions options;
};

Walking beginning(const Kind& kind, const RandomState& random) {
  const Network network = cycle();
  const Indices starts(kAgents, 0);
  MemoryOptions memory;
  memory.sizes = {2};
  Result<Walkers> made =
      kind.withMemory ? Walkers::withMemory(network, starts, memory) : Walkers::at(network, starts);
  Walking walking{std::make_unique<Walkers>(std::move(made).value()), random, {}};
  if (!kind.endless) walking.options.steps = kSteps;
  walking.options.target = kind.target;
  walking.options.paths = kind.paths;
  walking.options.firstArrivals = kind.arrivals;
  return walking;
}

// That all agents and what is counted tell of the same number of steps, which it answers.
std::uint64_t stepsOf(const Walkers& agents) {
  std::uint64_t steps = 0;
  for (const std::uint64_t visits : agents.visits(0)) steps += visits;
  EXPECT_EQ(agents.positions(), Indices(kAgents, steps % kVertices));
  Indices visits(kVertices);
  for (std::uint64_t s = 1; s <= steps; ++s) ++visits[s % kVertices];
  for (const std::uint64_t agent : {0U, 17U, 39U}) EXPECT_EQ(agents.visits(agent), visits) << agent;
  for (std::uint64_t& visit : visits) visit *= kAgents;
  EXPECT_EQ(agents.visits(), visits);
  return steps;
}

// Between two steps, with the draws of all that were to be made, or of those that were.
void expectAgreement(Walking& walking, const RandomState& before, bool failed) {
  const std::uint64_t wanted = walking.options.target ? kVertices : kSteps;
  const std::uint64_t steps = stepsOf(*walking.agents);
  if (!failed) {
    EXPECT_EQ(steps, wanted);
  }
  EXPECT_LE(steps, wanted);
  WalkOptions made = walking.options;
  if (!made.steps) made.steps = steps;
  const RandomState after = before.after(walking.agents->drawsOfWalk(made));
  EXPECT_TRUE(walking.random == after || (steps == 0 && walking.random == before));
  // And they go on.
  WalkOptions more;
  more.steps = 7;
  more.threads = 3;
  more.random = &walking.random;
  EXPECT_EQ(walking.agents->walk(more).value().steps, 7U);
  EXPECT_EQ(stepsOf(*walking.agents), steps + 7);
}

TEST(FailingSharedWork, AWalkEndsWithEverythingInAgreement) {
  const RandomState before = RandomState::seeded(5).value();
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.name);
    inBothWays([&] {
      const std::uint64_t failures = forEachFailingAllocation(
          [&] { return beginning(kind, before); },
          [](Walking& walking) {
            walking.options.random = &walking.random;
            const WalkOutcome outcome = walking.agents->walk(walking.options).value();
            if (!walking.options.firstArrivals) return;
            for (std::uint64_t v = 0; v < kVertices; ++v) {
              EXPECT_EQ(outcome.firstArrivals[v], v == 0 ? kVertices : v);
            }
          },
          [&](Walking& walking, bool failed) { expectAgreement(walking, before, failed); });
      EXPECT_GE(failures, 6U);
    });
  }
}

// What was asked for is there as a whole, also where nobody had asked before.
TEST(FailingSharedWork, VisitsCanBeAskedForAgain) {
  inBothWays([&] {
    forEachFailingAllocation(
        [] {
          Walking walking = beginning(kKinds[0], RandomState::seeded(5).value());
          walking.options.random = &walking.random;
          EXPECT_TRUE(walking.agents->walk(walking.options).hasValue());
          return walking;
        },
        [](Walking& walking) {
          EXPECT_EQ(walking.agents->visits()[1], 2 * kAgents);
          (void)walking.agents->liveVisits(17);
        },
        [](Walking& walking, bool) { EXPECT_EQ(stepsOf(*walking.agents), kSteps); });
  });
}

std::vector<std::uint64_t> endsOf(const VEQNetwork& network) {
  std::vector<std::uint64_t> ends;
  for (std::uint64_t e = 0; e < network.countEdges(); ++e) {
    ends.push_back(network.edgeAtIndex(e)->fromVertex()->identification());
    ends.push_back(network.edgeAtIndex(e)->toVertex()->identification());
  }
  return ends;
}

// 1,124,250 pairs, which two pieces draw, and of which one in 30 is linked.
TEST(FailingSharedWork, ARandomNetworkIsMadeOrNot) {
  constexpr std::uint64_t kCount = 1500;
  constexpr double kDegree = 50.0;
  const auto make = [] {
    return VEQNetwork::initRandomNetworkWithNumberOfVertices_degree(kCount, kDegree);
  };
  seed(3);
  const RandomState before = VEQRandomGenerator::sharedRandomGenerator()->state();
  const std::vector<std::uint64_t> ends = endsOf(*make());
  const RandomState after = VEQRandomGenerator::sharedRandomGenerator()->state();
  EXPECT_GT(ends.size(), 60000U);
  Owned<VEQNetwork> network;
  inBothWays([&] {
    const std::uint64_t failures = forEachFailingAllocation(
        [&] {
          seed(3);
          network = make();
        },
        [&](bool failed) {
          EXPECT_FALSE(failed) << "It must not throw.";
          const RandomState now = VEQRandomGenerator::sharedRandomGenerator()->state();
          // Its draws are taken at once, so that those of others who draw meanwhile never depend on
          // it.
          EXPECT_TRUE(now == after || (!network && now == before));
          if (network && FailingAllocation::happened()) {
            EXPECT_EQ(endsOf(*network), ends);
          }
          network.reset();
        });
    EXPECT_GE(failures, 20U);
  });
}

TEST(FailingSharedWork, ComponentsAreFoundOrNot) {
  const Network network = gnmNetwork(1000, 600).value();
  const ComponentLabels alone = components(network, Connection::kWeak);
  std::optional<ComponentLabels> found;
  inBothWays([&] {
    const std::uint64_t failures =
        forEachFailingAllocation([&] { found = components(network, Connection::kWeak); },
                                 [&](bool failed) {
                                   EXPECT_EQ(failed, !found);
                                   if (found) {
                                     EXPECT_EQ(found->labels, alone.labels);
                                     EXPECT_EQ(found->sizes, alone.sizes);
                                   }
                                   found.reset();
                                 });
    EXPECT_GE(failures, 4U);
  });
}

// Many of one vertex, and some of two; each takes some ten allocations.
TEST(FailingSharedWork, TheNetworksOfComponentsAreMadeOrNot) {
  constexpr std::uint64_t kParts = 600;
  const Network network = [] {
    std::vector<std::uint64_t> from(50);
    std::vector<std::uint64_t> to(50);
    for (std::uint64_t e = 0; e < from.size(); ++e) to[e] = 600 + (from[e] = 12 * e);
    BuildOptions options;
    options.vertices = kParts + 600;
    return Network::build(from, to, options).value();
  }();
  std::optional<std::vector<DerivedNetwork>> made;
  const SharedWork shared(3, 100);
  const std::uint64_t failures = forEachFailingAllocation(
      [] { return 0; }, [&](int) { made = componentNetworks(network, Connection::kWeak).value(); },
      [&](int, bool failed) {
        EXPECT_EQ(failed, !made);
        if (made) {
          ASSERT_EQ(made->size(), kParts + 550);
          EXPECT_EQ((*made)[12].vertices, (Indices{12, 612}));
          EXPECT_EQ(made->back().vertices, Indices{1199});
        }
        made.reset();
      },
      97);
  EXPECT_GE(failures, 50U);
}

// Edges that are counted in two pieces, and vertices that are filled in ranges.
TEST(FailingSharedWork, ANetworkIsBuiltOrNot) {
  constexpr std::uint64_t kCount = 40000;
  std::vector<std::uint64_t> from(140000);
  std::vector<std::uint64_t> to(from.size());
  for (std::uint64_t e = 0; e < from.size(); ++e) {
    from[e] = e * 7919 % kCount;
    to[e] = (e + 1) % kCount;
  }
  std::optional<Network> built;
  inBothWays([&] {
    const std::uint64_t failures = forEachFailingAllocation(
        [] { return 0; }, [&](int) { built = Network::build(from, to).value(); },
        [&](int, bool failed) {
          EXPECT_EQ(failed, !built);
          if (built) {
            const Shared<const VEQNetwork> network = built->published();
            EXPECT_EQ(network->countEdges(), from.size());
            for (const std::uint64_t e : {0U, 77777U, 139999U}) {
              EXPECT_EQ(network->edgeAtIndex(e)->fromVertex()->identification(), from[e]);
            }
          }
          built.reset();
        },
        static_cast<std::uint64_t>(share()));
    EXPECT_GE(failures, 1U);
  });
}

}  // namespace
}  // namespace veq::test::shared_allocations_test
