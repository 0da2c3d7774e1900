// Walks with many threads about them, mostly for the thread sanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <numeric>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/threads.hpp"
#include "veq/agents/dynamic_agents_group.hpp"
#include "veq/agents/internal/group_state.hpp"

namespace veq::test::walk_threads_test {
namespace {

using Group = VEQNetworkAgentsGroup;

constexpr std::uint64_t kAgents = 8;

// 0 - 1 - ... - 99 - 0, and a chord from each vertex to the one opposite.
Shared<VEQNetwork> ringWithChords() {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < 100; ++v) edges.emplace_back(v, (v + 1) % 100);
  for (std::uint64_t v = 0; v < 50; ++v) edges.emplace_back(v, v + 50);
  return networkOf(100, edges, false);
}

bool isLinked(std::uint64_t a, std::uint64_t b) {
  const std::uint64_t apart = a < b ? b - a : a - b;
  return apart == 1 || apart == 50 || apart == 99;
}

Owned<Group> groupOn(Shared<const VEQNetwork> network, bool withMemory) {
  Indices start(kAgents);
  std::iota(start.begin(), start.end(), 0);
  if (!withMemory) return groupAt(network, start);
  return VEQNetworkDynamicAgentsGroup::
      initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
          network, VEQNumberArray::ofIndices(start), network,
          *VEQNumberArray::initWithDoubleScalar_count(0.1, kAgents),
          *VEQNumberArray::initWithIntegerScalar_count(5, kAgents));
}

std::uint64_t sum(const Integers& values) {
  return std::accumulate(values.begin(), values.end(), std::uint64_t{0});
}

// That every step of every path goes along an edge, and the history tells of the same steps.
void expectPathsAndHistoryAgree(const Group& group, const std::vector<Indices>& paths,
                                std::uint64_t steps) {
  ASSERT_EQ(paths.size(), kAgents);
  for (std::uint64_t a = 0; a < kAgents; ++a) {
    ASSERT_EQ(paths[a].size(), steps);
    std::uint64_t at = a;
    Integers visits(100);
    for (const std::uint64_t next : paths[a]) {
      ASSERT_TRUE(isLinked(at, next)) << at << " to " << next;
      ++visits[at = next];
    }
    ASSERT_EQ(integers(group.visitFrequencyOfVerticesForAgent(static_cast<std::int64_t>(a))),
              visits);
  }
}

class WalkersAndWatchers : public testing::TestWithParam<bool> {};

// One thread walks again and again; the others use all that they may use meanwhile.
TEST_P(WalkersAndWatchers, WatchersMayUseEveryReaderAndControl) {
  constexpr std::uint64_t kWalks = 40;
  constexpr std::uint64_t kSteps = 500;
  const auto group = groupOn(ringWithChords(), GetParam());
  std::atomic<bool> done{false};
  inThreads(4, [&](int number) {
    if (number == 0) {
      for (std::uint64_t w = 0; w < kWalks; ++w) {
        group->walkForSteps_returnPath_untilReach(kSteps, w % 2 == 0, 2.0F);
      }
      done = true;
    }
    std::uint64_t counted = 0;
    while (!done) {
      const std::int64_t progress = group->currentProgress();
      EXPECT_TRUE(progress >= 0 && progress <= static_cast<std::int64_t>(kSteps)) << progress;
      const std::int64_t work = group->currentWork();
      EXPECT_TRUE(work == 0 || work == static_cast<std::int64_t>(kSteps)) << work;
      const std::uint64_t walked = group->walkCount();
      EXPECT_TRUE(walked >= counted && walked <= kWalks * kSteps) << walked;
      counted = walked;
      EXPECT_FALSE(group->isWaiting());
      EXPECT_FALSE(group->reachedWalkPercentage());
      static_cast<void>(group->isWorking());
      EXPECT_EQ(group->countAgents(), static_cast<std::int64_t>(kAgents));
      number % 2 == 0 ? group->pauseWork() : group->resumeWork();
      group->setSynchronizationSteps(group->synchronizationSteps() + 1);
    }
  });
  EXPECT_EQ(group->walkCount(), kWalks * kSteps);
  EXPECT_EQ(sum(integers(group->visitFrequencyOfVerticesForAgent(3))), kWalks * kSteps);
}

// Cancelling sets the progress back, and stops nothing.
TEST_P(WalkersAndWatchers, AWalkThatIsCancelledAgainAndAgainWalksToItsEnd) {
  constexpr std::uint64_t kSteps = 20000;
  const auto group = groupOn(ringWithChords(), GetParam());
  std::vector<Indices> paths;
  std::atomic<bool> done{false};
  inThreads(3, [&](int number) {
    if (number == 0) {
      paths = indices(group->walkForSteps(kSteps));
      done = true;
    }
    while (!done) {
      group->cancelWork();
      const std::int64_t progress = group->currentProgress();
      EXPECT_TRUE(progress >= 0 && progress <= static_cast<std::int64_t>(kSteps)) << progress;
    }
  });
  expectPathsAndHistoryAgree(*group, paths, kSteps);
}

// Whoever asks during a walk is refused; whoever is not has forgotten the whole walk.
TEST_P(WalkersAndWatchers, AHistoryIsNotForgottenDuringAWalk) {
  const auto group = groupOn(ringWithChords(), GetParam());
  for (int round = 0; round < 10; ++round) {
    std::atomic<int> flushes{0};
    std::atomic<bool> begun{false};
    inThreads(4, [&](int number) {
      if (number == 0) {
        group->walkForSteps_returnPath(3000, false);
        return;
      }
      // A walk that is about to begin must not be met by a flush.
      while (!begun && !group->isWorking() && group->currentProgress() == 0) {
        std::this_thread::yield();
      }
      begun = true;
      while (!group->flushWalkHistory()) std::this_thread::yield();
      ++flushes;
    });
    EXPECT_EQ(flushes, 3);
    EXPECT_EQ(group->currentProgress(), 3000);
    EXPECT_EQ(sum(integers(group->visitFrequencyOfVerticesForAgent(0))), 0U);
    EXPECT_EQ(sum(integers(group->globalVisitFrequencyOfVertices())), 0U);
    group->cancelWork();  // sets the progress back, so that the next round sees its walk begin
  }
}

// One thread walks, one asks for histories and looks at them, and one tries to flush all the time,
// which succeeds between the walks. Arrays that were given out live on.
TEST_P(WalkersAndWatchers, HistoriesMayBeAskedForAndFlushedMeanwhile) {
  constexpr std::uint64_t kWalks = 300;
  const auto group = groupOn(ringWithChords(), GetParam());
  std::atomic<bool> done{false};
  std::atomic<std::uint64_t> flushes{0};
  inThreads(3, [&](int number) {
    if (number == 0) {
      for (std::uint64_t w = 0; w < kWalks || flushes == 0; ++w) {
        group->walkForSteps_returnPath_untilReach(50, w % 3 == 0, w % 2 == 0 ? -1.0F : 2.0F);
        if (w % 16 == 0) std::this_thread::yield();
      }
      done = true;
    }
    for (std::uint64_t a = 0; !done; a = (a + 1) % kAgents) {
      if (number == 2) {
        flushes += group->flushWalkHistory();
        continue;
      }
      const auto agent = static_cast<std::int64_t>(a);
      const auto visits = group->visitFrequencyOfVerticesForAgent(agent);
      const auto order = group->orderOfVisitedVerticesForAgent(agent);
      EXPECT_EQ(visits->count(), 100U);
      EXPECT_EQ(order->count(), 100U);
      EXPECT_EQ(group->globalVisitFrequencyOfVertices()->count(), 100U);
      EXPECT_EQ(group->globalOrderOfVisitedVertices()->count(), 100U);
    }
  });
  EXPECT_TRUE(group->flushWalkHistory());
  EXPECT_EQ(sum(integers(group->visitFrequencyOfVerticesForAgent(0))), 0U);
}

INSTANTIATE_TEST_SUITE_P(Groups, WalkersAndWatchers, testing::Bool(), [](const auto& parameter) {
  return std::string(parameter.param ? "WithMemory" : "Plain");
});

Indices oneAtEachVertex() {
  Indices start(kAgents);
  std::iota(start.begin(), start.end(), 0);
  return start;
}

/// A group whose log is folded all the time.
class Folding final : public VEQNetworkAgentsGroup {
 public:
  explicit Folding(Shared<const VEQNetwork> network)
      : VEQNetworkAgentsGroup(
            std::make_unique<internal::GroupState>(std::move(network), oneAtEachVertex())) {
    state().history = internal::WalkHistory<std::uint32_t>(100, kAgents, 0, {.log = 0});
  }
};

// The arrays may be asked for during a walk, and read when it is over.
TEST(WalkHistoryThreads, ArraysMayBeAskedForWhileTheLogIsFolded) {
  constexpr std::uint64_t kSteps = 60000;
  Folding group(ringWithChords());
  std::vector<Indices> paths;
  std::atomic<bool> done{false};
  std::vector<Shared<const VEQNumberArray>> totals(3);
  inThreads(3, [&](int number) {
    if (number == 0) {
      group.walkForSteps_returnPath(kSteps, false);
      done = true;
    }
    for (std::uint64_t a = 0; !done; a = (a + 1) % kAgents) {
      const auto agent = static_cast<std::int64_t>(a);
      EXPECT_EQ(group.visitFrequencyOfVerticesForAgent(agent),
                group.visitFrequencyOfVerticesForAgent(agent));
      EXPECT_EQ(group.orderOfVisitedVerticesForAgent(agent)->count(), 100U);
      EXPECT_EQ(group.globalOrderOfVisitedVertices()->count(), 100U);
      totals[static_cast<std::size_t>(number)] = group.globalVisitFrequencyOfVertices();
    }
  });
  Integers all(100);
  for (std::int64_t agent = 0; agent < static_cast<std::int64_t>(kAgents); ++agent) {
    const Integers visits = integers(group.visitFrequencyOfVerticesForAgent(agent));
    EXPECT_EQ(sum(visits), kSteps);
    for (std::size_t v = 0; v < 100; ++v) all[v] += visits[v];
  }
  EXPECT_EQ(integers(group.globalVisitFrequencyOfVertices()), all);
  if (totals[1]) {
    EXPECT_EQ(totals[1], group.globalVisitFrequencyOfVertices());
  }
}

// Where totals are out, what is left to do at the end of a walk takes milliseconds. Who asks for
// the progress in that time, now and then, is answered again and again, and not when all is over.
TEST(WalkHistoryThreads, NobodyWaitsForTheProgressWhileArraysAreBroughtUpToDate) {
  constexpr std::int64_t kSteps = 3;
  constexpr std::uint64_t kVertices = 4000000;
  const int all = rounds(15);
  const auto group = groupAt(networkOf(kVertices, {{0, 1}, {1, 0}}, true), {0});
  const auto totals = group->globalVisitFrequencyOfVertices();
  // Either thread may be kept from its work by others that have nothing to do with it, but not in
  // most rounds.
  int answeredOften = 0;
  for (int round = 0; round < all; ++round) {
    std::atomic<bool> done{false};
    int answers = 0;
    group->cancelWork();  // sets the progress back
    inThreads(2, [&](int number) {
      if (number == 0) {
        group->walkForSteps_returnPath(kSteps, false);
        done = true;
        return;
      }
      while (!done) {
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        answers += group->currentProgress() == kSteps && group->isWorking();
      }
    });
    answeredOften += answers >= 5;
  }
  EXPECT_GT(answeredOften, all / 2);
}

// Two groups on one network draw from one sequence, each walk all its numbers at once: the result
// is that of one walk after the other, in either order.
TEST(TwoGroups, WalkAtOnceAsOneAfterTheOther) {
  const auto network = ringWithChords();
  constexpr std::uint64_t kSteps = 5000;
  std::vector<std::vector<Indices>> expected[2];  // for each order: of each group the paths
  for (const std::size_t first : {0U, 1U}) {
    seed(7);
    const Owned<Group> groups[] = {groupOn(network, false), groupOn(network, false)};
    expected[first].resize(2);
    expected[first][first] = indices(groups[first]->walkForSteps(kSteps));
    expected[first][1 - first] = indices(groups[1 - first]->walkForSteps(kSteps));
  }
  EXPECT_NE(expected[0], expected[1]);
  for (int round = 0; round < 5; ++round) {
    seed(7);
    const Owned<Group> groups[] = {groupOn(network, false), groupOn(network, false)};
    std::vector<std::vector<Indices>> paths(2);
    inThreads(2, [&](int number) {
      const auto g = static_cast<std::size_t>(number);
      paths[g] = indices(groups[g]->walkForSteps(kSteps));
    });
    EXPECT_TRUE(paths == expected[0] || paths == expected[1]);
  }
}

TEST(TwoGroups, OfDifferentKindsWalkAtOnce) {
  const auto network = ringWithChords();
  constexpr std::uint64_t kSteps = 5000;
  const Owned<Group> groups[] = {groupOn(network, false), groupOn(network, true),
                                 groupOn(network, true)};
  std::vector<Indices> paths[3];
  inThreads(4, [&](int number) {
    const auto g = static_cast<std::size_t>(number);
    if (number < 3) {
      paths[g] = indices(groups[g]->walkForSteps(kSteps));
      return;
    }
    // And somebody asks the network meanwhile.
    for (int i = 0; i < 200; ++i) {
      EXPECT_EQ(network->countEdgesOfVertexAtIndex(7), 3U);
      EXPECT_EQ(network->calcDegrees()->count(), 100U);
      EXPECT_EQ(network->verticesLinkedFromVertexAtIndex(7)[0]->identification(), 6U);
    }
  });
  for (std::size_t g = 0; g < 3; ++g) expectPathsAndHistoryAgree(*groups[g], paths[g], kSteps);
}

}  // namespace
}  // namespace veq::test::walk_threads_test
