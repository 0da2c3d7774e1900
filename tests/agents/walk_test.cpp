#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/agents.hpp"
#include "veq/models/internal/random_engine.hpp"

namespace veq::test::walk_test {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

// 0 -> 1 -> ... -> n - 1 -> 0.
Shared<VEQNetwork> cycle(std::uint64_t n) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < n; ++v) edges.emplace_back(v, (v + 1) % n);
  return networkOf(n, edges, true);
}

// Vertex 0 in the middle of 1, 2, 3, 4.
Shared<VEQNetwork> star() { return networkOf(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}}, false); }

// 0 -> 1, and 2 without an edge.
Shared<VEQNetwork> deadEnd() { return networkOf(3, {{0, 1}}, true); }

std::int64_t nextDraw() { return VEQRandomGenerator::sharedRandomGenerator()->randomInteger(); }

std::int64_t drawAfter(std::uint32_t seedValue, Uint128 count) {
  auto stream = internal::RandomStream::seeded(seedValue);
  stream.advance(count);
  return stream.next();
}

// The numbers after seed 1 begin 0.840, 0.394, 0.783, 0.798, 0.912, 0.198, 0.335, 0.768.
TEST(Walk, ChoosesTheRoundedEntryOfTheOutList) {
  const auto group = groupAt(star(), {0});
  seed(1);
  // round(3 x 0.840) = 3; the way back has one entry; round(3 x 0.783) = 2; round(3 x 0.912) = 3.
  EXPECT_EQ(indices(group->walkForSteps(5)), (std::vector<Indices>{{4, 0, 3, 0, 4}}));
}

TEST(Walk, AgentATakesNumberAgentsTimesStepPlusA) {
  const auto group = groupAt(star(), {0, 0});
  seed(1);
  // Agent 1 takes the odd ones: round(3 x 0.394) = 1, then back, then round(3 x 0.198) = 1.
  EXPECT_EQ(indices(group->walkForSteps(3)), (std::vector<Indices>{{4, 0, 4}, {2, 0, 2}}));
}

TEST(Walk, GoesAlongOutgoingEdgesOnlyWhenDirectedAndAlongAnyOtherwise) {
  const auto directed = groupAt(networkOf(2, {{1, 0}}, true), {0});
  EXPECT_EQ(indices(directed->walkForSteps(1)), (std::vector<Indices>{{0}}));
  EXPECT_EQ(directed->currentVertexOfAgent(0)->identification(), 0U);
  const auto undirected = groupAt(networkOf(2, {{1, 0}}, false), {0});
  EXPECT_EQ(indices(undirected->walkForSteps(1)), (std::vector<Indices>{{1}}));
}

TEST(Walk, SelfLoopOfAnUndirectedNetworkStandsTwiceInTheList) {
  // The list of 0 is 0, 0, 1; after seed 1, round(2 x 0.840) = 2 and round(2 x 0.394) = 1.
  const auto network = networkOf(2, {{0, 0}, {0, 1}}, false);
  const auto group = groupAt(network, {0, 0});
  seed(1);
  EXPECT_EQ(indices(group->walkForSteps(1)), (std::vector<Indices>{{1}, {0}}));
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(1)), (Integers{1, 0}));
}

TEST(Walk, AVertexWithOneEntrySendsAlwaysThere) {
  const auto group = groupAt(cycle(4), {1});
  EXPECT_EQ(indices(group->walkForSteps(6)), (std::vector<Indices>{{2, 3, 0, 1, 2, 3}}));
}

TEST(Walk, OfNoStepsMovesNobodyButCountsIntoTheTotalsAgain) {
  const auto group = groupAt(cycle(3), {0, 1});
  group->walkForSteps(1);
  const auto paths = group->walkForSteps(0);
  EXPECT_EQ(indices(paths), (std::vector<Indices>{{}, {}}));
  EXPECT_EQ(group->currentProgress(), 0);
  EXPECT_EQ(group->currentWork(), 0);
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{1, 2}));
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{0, 2, 2}));
  group->walkForSteps_returnPath(0, false);
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{0, 3, 3}));
}

TEST(Walk, EveryWalkCountsEarlierArrivalsAgain) {
  const auto group = groupAt(cycle(3), {0});
  group->walkForSteps_returnPath(1, false);
  group->walkForSteps_returnPath(1, false);
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{0, 2, 1}));
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{0, 1, 1}));
}

TEST(Walk, AStuckAgentShowsVertexZeroAndIsNotRecorded) {
  const auto group = groupAt(deadEnd(), {0, 2});
  const auto paths = group->walkForSteps(3);
  EXPECT_EQ(indices(paths), (std::vector<Indices>{{1, 0, 0}, {0, 0, 0}}));
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{1, 2}));
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{0, 1, 0}));
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(1)), (Integers{0, 0, 0}));
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(1)), (Integers{0, 0, 0}));
  EXPECT_EQ(group->currentProgress(), 3);
}

TEST(Walk, PathsAreReturnedWhenAskedForAndByTheShortForms) {
  const auto group = groupAt(cycle(3), {0});
  EXPECT_FALSE(group->walkForSteps_returnPath(1, false).has_value());
  EXPECT_FALSE(group->walkForSteps_returnPath_untilReach(1, false, 1.0F).has_value());
  EXPECT_EQ(indices(*group->walkForSteps_returnPath(2, true)), (std::vector<Indices>{{0, 1}}));
  EXPECT_EQ(indices(group->tellAgentsToWalkToNextVertices()), (std::vector<Indices>{{2}}));
}

TEST(Walk, PathsHoldTheNetworksOwnHandlesAndOutliveTheGroupAndAFlush) {
  const auto network = cycle(3);
  auto group = groupAt(network, {0, 1});
  const VEQVertexPaths paths = group->walkForSteps(2);
  ASSERT_TRUE(group->flushWalkHistory());
  group.reset();
  ASSERT_EQ(paths.count(), 2U);
  EXPECT_EQ(paths.objectAtIndex(1).count(), 2U);
  EXPECT_EQ(paths.objectAtIndex(1).objectAtIndex(0), network->vertexAtIndex(2));
  EXPECT_THROW((void)paths.objectAtIndex(2), std::out_of_range);
  EXPECT_THROW((void)paths.objectAtIndex(1).objectAtIndex(2), std::out_of_range);
}

TEST(Walk, OneAgentAloneIsNeverToldToWalk) {
  const auto group = groupAt(cycle(3), {0});
  EXPECT_EQ(group->walkNextVertexForAgent(0), nullptr);
  EXPECT_EQ(group->walkNextVertexForAgent(99), nullptr);
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{0}));
}

TEST(Walk, TheSameSeedGivesTheSameWalk) {
  const auto network =
      networkOf(6, {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 0}, {0, 3}}, false);
  const auto first = groupAt(network, {0, 3});
  const auto second = groupAt(network, {0, 3});
  seed(9);
  const auto path = indices(first->walkForSteps(50));
  seed(9);
  EXPECT_EQ(indices(second->walkForSteps(50)), path);
  EXPECT_EQ(integers(first->globalVisitFrequencyOfVertices()),
            integers(second->globalVisitFrequencyOfVertices()));
}

TEST(Walk, WithWideIndicesIsTheSame) {
  const std::vector<std::pair<std::uint64_t, std::uint64_t>> edges = {
      {0, 1}, {0, 2}, {0, 3}, {0, 4}};
  const auto network = networkOf(6, edges, false, 0);
  ASSERT_FALSE(internal::CoreAccess::of(*network).store.isNarrow());
  const auto group = groupAt(network, {0, 5});
  seed(1);
  // Agent 0 takes numbers 0, 2, 4: round(3 x 0.840) = 3, back, round(3 x 0.912) = 3.
  EXPECT_EQ(indices(group->walkForSteps(3)), (std::vector<Indices>{{4, 0, 4}, {0, 0, 0}}));
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{1, 0, 0, 0, 2, 0}));
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{1, 0, 0, 0, 2, 0}));
}

TEST(ReachTarget, OneStopsTheWalkWhenTheLastVertexIsReached) {
  const auto group = groupAt(cycle(4), {0});
  const auto paths = group->walkForSteps_returnPath_untilReach(10, true, 1.0F);
  EXPECT_EQ(indices(*paths), (std::vector<Indices>{{1, 2, 3, 0}}));
  EXPECT_TRUE(group->reachedWalkPercentage());
  EXPECT_EQ(group->walkCount(), 4U);
  EXPECT_EQ(group->currentProgress(), 4);
  EXPECT_EQ(group->currentWork(), 10);
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{1, 1, 1, 1}));
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{0}));
}

TEST(ReachTarget, OneIsMetAlsoWhereTheShareRoundsBelowIt) {
  for (const std::uint64_t n : Indices{49, 98, 103, 107}) {
    const auto group = groupAt(cycle(n), {0});
    group->walkForSteps_returnPath_untilReach(3 * n, false, 1.0F);
    EXPECT_EQ(group->walkCount(), n);
    EXPECT_TRUE(group->reachedWalkPercentage());
  }
}

TEST(ReachTarget, TheShareIsAProductAndNotAQuotient) {
  // 49 x (1.0 / 98) is 0.49999999999999994.
  const auto group = groupAt(cycle(98), {0});
  group->walkForSteps_returnPath_untilReach(1000, false, 0.5F);
  EXPECT_EQ(group->walkCount(), 50U);
}

TEST(ReachTarget, IsAFloatWidenedToDouble) {
  // 0.1F is 0.100000001..., more than 1 of 10; 0.7F is 0.699999988..., less than 7 of 10.
  const auto tenth = groupAt(cycle(10), {0});
  tenth->walkForSteps_returnPath_untilReach(100, false, 0.1F);
  EXPECT_EQ(tenth->walkCount(), 2U);
  const auto sevenTenths = groupAt(cycle(10), {0});
  sevenTenths->walkForSteps_returnPath_untilReach(100, false, 0.7F);
  EXPECT_EQ(sevenTenths->walkCount(), 7U);
}

TEST(ReachTarget, StartingOnAVertexDoesNotReachIt) {
  const auto group = groupAt(networkOf(2, {{0, 1}}, false), {0});
  group->walkForSteps_returnPath_untilReach(10, false, 1.0F);
  EXPECT_EQ(group->walkCount(), 2U);
}

TEST(ReachTarget, AboveOneNeverStopsAWalk) {
  const auto group = groupAt(cycle(3), {0});
  group->walkForSteps_returnPath_untilReach(10, false, 1.5F);
  EXPECT_EQ(group->walkCount(), 10U);
  EXPECT_EQ(group->currentProgress(), 10);
  EXPECT_FALSE(group->reachedWalkPercentage());
  group->walkForSteps_returnPath_untilReach(5, false, std::numeric_limits<float>::infinity());
  EXPECT_EQ(group->walkCount(), 15U);
}

TEST(ReachTarget, OfZeroOrLessOrNoNumberIsNone) {
  const auto group = groupAt(cycle(3), {0});
  for (const float target : {0.0F, -0.0F, -1.0F, std::nanf("")}) {
    group->walkForSteps_returnPath_untilReach(5, false, target);
    EXPECT_EQ(group->currentProgress(), 5);
  }
  EXPECT_EQ(group->walkCount(), 0U);
  EXPECT_FALSE(group->reachedWalkPercentage());
}

TEST(ReachTarget, MarksAndTheEndLiveOnUntilAFlush) {
  const auto group = groupAt(cycle(4), {0});
  group->walkForSteps_returnPath_untilReach(2, false, 1.0F);
  EXPECT_FALSE(group->reachedWalkPercentage());
  group->walkForSteps_returnPath(1, false);  // onto 3, which is not marked
  group->walkForSteps_returnPath_untilReach(10, false, 1.0F);
  EXPECT_EQ(group->currentProgress(), 4);  // 0, 1, 2, 3
  EXPECT_EQ(group->walkCount(), 6U);
  // A group that has finished still takes one step, also for a lower target.
  EXPECT_EQ(indices(*group->walkForSteps_returnPath_untilReach(10, true, 0.5F)),
            (std::vector<Indices>{{0}}));
  EXPECT_EQ(group->walkCount(), 7U);
  group->walkForSteps_returnPath_untilReach(3, false, 2.0F);
  EXPECT_TRUE(group->reachedWalkPercentage());
  EXPECT_EQ(group->walkCount(), 10U);
  ASSERT_TRUE(group->flushWalkHistory());
  EXPECT_FALSE(group->reachedWalkPercentage());
  EXPECT_EQ(group->walkCount(), 0U);
  group->walkForSteps_returnPath_untilReach(10, false, 0.5F);
  EXPECT_EQ(group->walkCount(), 2U);
}

TEST(ReachTarget, CountsTheVerticesOfAllAgentsOnce) {
  const auto group = groupAt(cycle(6), {0, 0, 3});
  group->walkForSteps_returnPath_untilReach(10, false, 1.0F);
  EXPECT_EQ(group->walkCount(), 3U);
}

TEST(WalkNumbers, AreUsedUpByAStepThatIsNotTakenAndByAnAgentThatIsStuck) {
  const auto stopped = groupAt(cycle(4), {0, 1, 2});
  seed(77);
  stopped->walkForSteps_returnPath_untilReach(1000, false, 0.5F);
  EXPECT_EQ(stopped->currentProgress(), 1);
  EXPECT_EQ(nextDraw(), drawAfter(77, 3000));
  const auto stuck = groupAt(deadEnd(), {2, 2});
  seed(77);
  stuck->walkForSteps_returnPath(500, false);
  EXPECT_EQ(nextDraw(), drawAfter(77, 1000));
}

TEST(WalkNumbers, MayBeMoreThanSixtyFourBitsCount) {
  const auto group = groupAt(deadEnd(), {2, 2, 2});
  seed(5);
  group->walkForSteps_returnPath(kMost, false);
  EXPECT_EQ(nextDraw(), drawAfter(5, Uint128{3} * kMost));
}

TEST(LongWalks, OfNobodyOrOfStuckAgentsEndAtOnce) {
  for (const Indices& start : {Indices{}, Indices{2, 1}}) {
    const auto group = groupAt(deadEnd(), start);
    EXPECT_FALSE(group->walkForSteps_returnPath(kMost, false).has_value());
    EXPECT_EQ(group->currentProgress(), -1);  // 2^64 - 1 as a signed number
    EXPECT_EQ(group->currentWork(), -1);
    EXPECT_EQ(group->walkCount(), 0U);
    group->walkForSteps_returnPath_untilReach(kMost, false, 0.5F);
    EXPECT_EQ(group->walkCount(), kMost);
    EXPECT_FALSE(group->reachedWalkPercentage());
  }
}

TEST(LongWalks, EndAtOnceWhenTheLastAgentGetsStuck) {
  const auto group = groupAt(deadEnd(), {0});
  group->walkForSteps_returnPath_untilReach(kMost, false, 0.5F);
  EXPECT_EQ(group->walkCount(), kMost);
  EXPECT_EQ(group->currentProgress(), -1);
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{0, 1, 0}));
}

TEST(LongWalks, OfNobodyHaveNoPathsWhateverTheirLength) {
  const auto group = groupAt(cycle(3), {});
  EXPECT_EQ(group->walkForSteps(kMost).count(), 0U);
}

TEST(LongWalks, IdleStepsShowInPathsThatEndEarly) {
  const auto group = groupAt(deadEnd(), {0});
  const auto paths = group->walkForSteps(100000);
  ASSERT_EQ(paths[0].count(), 100000U);
  EXPECT_EQ(paths[0].identificationAtIndex(0), 1U);
  EXPECT_EQ(paths[0].identificationAtIndex(1), 0U);
  EXPECT_EQ(paths[0].identificationAtIndex(99999), 0U);
}

// What was there before, for walks that must not change anything.
class RefusedWalk : public ::testing::Test {
 protected:
  RefusedWalk() {
    group_->walkForSteps_returnPath_untilReach(2, false, 2.0F);
    seed(3);
  }
  void expectNothingChanged() {
    EXPECT_EQ(nextDraw(), drawAfter(3, 0));
    EXPECT_FALSE(group_->isWorking());
    EXPECT_EQ(group_->currentProgress(), 2);
    EXPECT_EQ(group_->currentWork(), 2);
    EXPECT_EQ(group_->walkCount(), 2U);
    EXPECT_EQ(group_->currentVertexOfAgent(0)->identification(), 2U);
    EXPECT_EQ(integers(group_->globalVisitFrequencyOfVertices()), (Integers{0, 1, 2, 1}));
  }

  Shared<VEQNetwork> network_ = cycle(4);
  Owned<VEQNetworkAgentsGroup> group_ = groupAt(network_, {0, 1});
};

TEST_F(RefusedWalk, WithAnAgentOutsideTheNetwork) {
  const auto larger = cycle(9);
  group_->setCurrentVertex_forAgent(*larger->vertexAtIndex(4), 1);
  EXPECT_THROW(group_->walkForSteps_returnPath(5, false), std::out_of_range);
  EXPECT_THROW(group_->walkForSteps_returnPath_untilReach(5, true, 0.5F), std::out_of_range);
  EXPECT_THROW(group_->walkForSteps(0), std::out_of_range);
  expectNothingChanged();
}

TEST_F(RefusedWalk, WithPathsOfMoreEntriesThanCanBeCounted) {
  EXPECT_THROW(group_->walkForSteps(std::uint64_t{1} << 63), std::length_error);
  EXPECT_THROW(group_->walkForSteps(kMost), std::length_error);
  expectNothingChanged();
}

TEST_F(RefusedWalk, WithPathsThatMemoryCannotHold) {
  EXPECT_THROW(group_->walkForSteps(std::uint64_t{1} << 62), std::bad_alloc);
  EXPECT_THROW(group_->walkForSteps((std::uint64_t{1} << 63) - 1), std::bad_alloc);
  expectNothingChanged();
}

TEST(Walk, OnANetworkWithoutVerticesFindsItsAgentsOutside) {
  const Shared<VEQNetwork> empty = VEQNetwork::initWithVertexCapacity_edgeCapacity(4, 4);
  EXPECT_THROW(groupAt(empty, {0})->walkForSteps(1), std::out_of_range);
  EXPECT_EQ(groupAt(empty, {})->walkForSteps(1).count(), 0U);
}

TEST(WorkControl, OutsideAWalkIsAsTheLastWalkLeftIt) {
  const auto group = groupAt(cycle(3), {0});
  EXPECT_FALSE(group->isWorking());
  EXPECT_FALSE(group->isWaiting());
  EXPECT_EQ(group->currentProgress(), 0);
  EXPECT_EQ(group->currentWork(), 0);
  EXPECT_EQ(group->synchronizationSteps(), 1U);
  group->setSynchronizationSteps(kMost);
  EXPECT_EQ(group->synchronizationSteps(), kMost);
  group->pauseWork();
  group->walkForSteps_returnPath(7, false);
  EXPECT_FALSE(group->isWaiting());
  EXPECT_EQ(group->currentProgress(), 7);
  EXPECT_EQ(group->currentWork(), 7);
  group->resumeWork();
  group->cancelWork();
  EXPECT_EQ(group->currentProgress(), 0);
  EXPECT_EQ(group->currentWork(), 0);
  EXPECT_EQ(group->synchronizationSteps(), kMost);
}

}  // namespace
}  // namespace veq::test::walk_test
