// Agents with memory, worked out by hand. After seed 1 the numbers are, to four places,
//   0.8402 0.3944 0.7831 0.7984 0.9116 0.1976 0.3352 0.7682 0.2778 0.5540 0.4774 0.6289
// and the draw that follows these twelve is 783368690.
#include "veq/agents/dynamic_agents_group.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/network_drawing.hpp"

namespace veq::test::dynamic_agents_group_test {
namespace {

using Paths = std::vector<Indices>;
using Group = VEQNetworkDynamicAgentsGroup;

Owned<Group> dynamicGroup(Shared<const VEQNetwork> network, const Indices& start,
                          Shared<const VEQNetwork> agentsNetwork, const VEQNumberArray& errors,
                          const VEQNumberArray& sizes) {
  return Group::initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
      std::move(network), VEQNumberArray::ofIndices(start), std::move(agentsNetwork), errors,
      sizes);
}

// The same memory for all agents, and no errors.
Owned<Group> faultlessGroup(Shared<const VEQNetwork> network, const Indices& start,
                            std::uint64_t size, Shared<const VEQNetwork> agentsNetwork = nullptr) {
  const auto errors = VEQNumberArray::initWithDoubleScalar_count(0.0, start.size());
  return dynamicGroup(std::move(network), start, std::move(agentsNetwork), *errors,
                      VEQNumberArray::ofIndices(Indices(start.size(), size)));
}

// One agent with this memory.
Owned<Group> loneAgent(Shared<const VEQNetwork> network, std::uint64_t start, std::uint64_t size,
                       double error = 0.0) {
  return dynamicGroup(std::move(network), {start}, nullptr, VEQNumberArray::ofDoubles({error}),
                      VEQNumberArray::ofIndices({size}));
}

void placeAll(Group& group, std::uint64_t vertex) {
  const auto agents = static_cast<std::uint64_t>(group.countAgents());
  group.setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices(Indices(agents, vertex)));
}

// Where all agents go from the vertex in one step.
Indices stepFrom(Group& group, std::uint64_t vertex) {
  placeAll(group, vertex);
  group.walkForSteps_returnPath(1, false);
  return indices(group.agentsCurrentVerticesList());
}

std::int64_t nextDraw() { return VEQRandomGenerator::sharedRandomGenerator()->randomInteger(); }

// From every vertex to every one, itself included.
Shared<VEQNetwork> pairWithLoops() { return drawDirected("0-0 0-1 1-0 1-1"); }

// Two starts, whose only ways lead to 2 and 3, and a crossroads 4 with ways to 2, 3 and 5. Nothing
// leads away from 2, 3 and 5.
Shared<VEQNetwork> crossroads() { return drawDirected("0-2 1-3 4-2 4-3 4-5"); }

TEST(DynamicAgentsGroup, TakesThreeRequestsOneAfterTheOther) {
  // Choices 0.84 0.39 0.78 0.80, error tests 0.91 0.20 0.34 0.77, wrong vertices 0.28 0.55 0.48
  // 0.63. Step 0: no memory, entry round(0.84) of 0 1; no error: remembers 1. Step 1: 0; an error:
  // remembers round(0.55) = 1. Step 2: not 1, so 0; an error: remembers round(0.48) = 0. Step 3: 1.
  const auto group = loneAgent(pairWithLoops(), 0, 1, 0.5);
  seed(1);
  EXPECT_EQ(indices(group->walkForSteps(4)), (Paths{{1, 0, 0, 1}}));
  EXPECT_EQ(nextDraw(), 783368690);
}

TEST(DynamicAgentsGroup, DrawsForErrorsAlsoWhereNoneCanOccur) {
  const auto group = loneAgent(pairWithLoops(), 0, 1);
  seed(1);
  group->walkForSteps_returnPath(4, false);
  EXPECT_EQ(nextDraw(), 783368690);
}

TEST(DynamicAgentsGroup, NumbersAgentsWithinASteps) {
  // Choices 0.84 0.39 for step 0, 0.78 0.80 for step 1; without memory of 0 and 1 at first. Error
  // tests 0.91 0.20 0.34 0.77: only the second agent errs in step 0, remembering round(0.55) = 1
  // after having gone to 0, and only the first in step 1.
  const auto group =
      dynamicGroup(pairWithLoops(), {0, 0}, nullptr, VEQNumberArray::ofDoubles({0.5, 0.5}),
                   VEQNumberArray::ofIndices({1, 1}));
  seed(1);
  EXPECT_EQ(indices(group->walkForSteps(2)), (Paths{{1, 0}, {0, 0}}));
  EXPECT_EQ(nextDraw(), 783368690);
}

TEST(DynamicAgentsGroup, UsesUpAllNumbersWhenItStopsEarly) {
  const auto group = loneAgent(pairWithLoops(), 0, 1);
  seed(1);
  const auto paths = group->walkForSteps_returnPath_untilReach(4, true, 0.5F);
  EXPECT_EQ(indices(*paths), (Paths{{1}}));
  EXPECT_TRUE(group->reachedWalkPercentage());
  EXPECT_EQ(group->currentProgress(), 1);
  EXPECT_EQ(nextDraw(), 783368690);
}

TEST(DynamicAgentsGroup, UsesUpNumbersOfStuckAgents) {
  const auto group = loneAgent(crossroads(), 5, 1);
  seed(1);
  EXPECT_EQ(indices(group->walkForSteps(4)), (Paths{{0, 0, 0, 0}}));
  EXPECT_EQ(nextDraw(), 783368690);
}

TEST(DynamicAgentsGroup, NeverErrsWithoutErrorProbability) {
  for (const double error : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    const auto group = loneAgent(pairWithLoops(), 0, 1, error);
    const Paths paths = indices(group->walkForSteps(200));
    for (std::size_t s = 1; s < 200; ++s) ASSERT_EQ(paths[0][s], 1 - paths[0][s - 1]);
  }
}

TEST(DynamicAgentsGroup, AlwaysErrsWithAProbabilityOfOne) {
  for (const double error : {1.0, 2.0}) {
    const auto group = loneAgent(pairWithLoops(), 0, 1, error);
    auto& random = *VEQRandomGenerator::sharedRandomGenerator();
    seed(17);
    const auto numbers = random.newRandomDoubleArrayWithCount(600);
    seed(17);
    const Paths paths = indices(group->walkForSteps(200));
    for (std::size_t s = 1; s < 200; ++s) {
      const std::uint64_t wrong = numbers->numberAtIndex(400 + s - 1).as<double>() < 0.5 ? 0 : 1;
      ASSERT_EQ(paths[0][s], 1 - wrong);
    }
  }
}

TEST(DynamicAgentsGroup, ErrsWhereTheProbabilityIsAboveTheNumberOnly) {
  // A seed whose second draw is small enough for a probability half a draw above it, and whose
  // first and third choose different vertices of 0 and 1.
  std::vector<std::int64_t> draws(3);
  std::uint32_t goodSeed = 0;
  const auto isHigh = [](std::int64_t draw) { return draw >= 0x40000000; };
  do {
    seed(++goodSeed);
    for (auto& draw : draws) draw = nextDraw();
  } while (draws[1] >= 0x800000 || isHigh(draws[0]) == isHigh(draws[2]));
  const std::uint64_t reached = isHigh(draws[0]) ? 1 : 0;

  const auto second = static_cast<double>(draws[1]);
  for (const auto& [probability, errs] :
       {std::pair{second * 0x1p-31, false}, std::pair{(second + 0.5) * 0x1p-31, true}}) {
    const auto group = loneAgent(pairWithLoops(), 0, 1, probability);
    seed(goodSeed);
    EXPECT_EQ(indices(group->walkForSteps(1)), (Paths{{reached}}));
    EXPECT_EQ(stepFrom(*group, 0), Indices{errs ? reached : 1 - reached});
  }
}

TEST(DynamicAgentsGroup, RecordsWhereItStandsAndNotWhatItRemembers) {
  // From 0 only to 2, and back; 1 is only ever remembered.
  const auto group = loneAgent(drawDirected("0-2 2-0", 3), 0, 1, 1.0);
  EXPECT_EQ(indices(group->walkForSteps(4)), (Paths{{2, 0, 2, 0}}));
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{2, 0, 2}));
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{3, 0, 2}));
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{2, 0, 2}));
}

TEST(DynamicAgentsGroup, AvoidsOnlySelfLoopsWithARingOfOne) {
  const auto group = loneAgent(drawDirected("0-0 0-1 1-0"), 1, 1);
  EXPECT_EQ(indices(group->walkForSteps(8)), (Paths{{0, 1, 0, 1, 0, 1, 0, 1}}));
}

TEST(DynamicAgentsGroup, DoesNotTurnBackWithARingOfTwo) {
  const auto group = loneAgent(drawUndirected("0-1 1-2 2-3 3-4 4-0"), 0, 2);
  const Indices path = indices(group->walkForSteps(200))[0];
  // Only the start may be returned to, in the second step.
  const std::uint64_t ahead = (path[1] + 5 - path[0]) % 5;
  for (std::size_t s = 2; s < path.size(); ++s) ASSERT_EQ(path[s], (path[s - 1] + ahead) % 5);
}

TEST(DynamicAgentsGroup, DoesNotRememberTheStart) {
  // At 1, the numbers 0.39 of 0 and 2 give entry 0: the start. Then 1 is the only neighbour.
  const auto group = loneAgent(drawUndirected("0-1 1-2"), 0, 5);
  seed(1);
  EXPECT_EQ(indices(group->walkForSteps(3)), (Paths{{1, 0, 1}}));
}

TEST(DynamicAgentsGroup, ChoosesAmongAllWhenItRemembersAll) {
  // Numbers 0.84 for 1 2 3, 0.78 for 1 2, 0.91 for 1, and 0.34 for 1 2 3 again; each time back to
  // 0.
  const auto group = loneAgent(drawDirected("0-1 0-2 0-3 1-0 2-0 3-0"), 0, 100);
  seed(1);
  EXPECT_EQ(indices(group->walkForSteps(8)), (Paths{{3, 0, 2, 0, 1, 0, 2, 0}}));
}

TEST(DynamicAgentsGroup, KeepsRepetitionsAmongTheCandidates) {
  // At 0 it remembers 2 and 0, so that 0.78 chooses entry round(2.35) of 1 1 1 3.
  const auto group = loneAgent(drawDirected("4-2 2-0 0-1 0-1 0-2 0-1 0-3"), 4, 2);
  seed(1);
  EXPECT_EQ(indices(group->walkForSteps(3)), (Paths{{2, 0, 1}}));
}

TEST(DynamicAgentsGroup, ForgetsTheOldest) {
  // With three slots every step from the crossroads takes the place of the step three before.
  const auto group = loneAgent(drawDirected("0-1 0-2 0-3 0-4"), 0, 3);
  Indices visits;
  for (int step = 0; step < 40; ++step) visits.push_back(stepFrom(*group, 0)[0]);
  for (std::size_t s = 4; s < visits.size(); ++s) ASSERT_EQ(visits[s], visits[s - 4]);
}

TEST(DynamicAgentsGroup, RemembersAVertexUntilItsLastSlotIsTaken) {
  // 1 takes two of three slots; 2 takes the third, and 0 takes a slot of 1, which is remembered.
  const auto group = loneAgent(drawDirected("0-1 3-2 4-0 5-1 5-6"), 0, 3);
  EXPECT_EQ(stepFrom(*group, 0), Indices{1});
  EXPECT_EQ(stepFrom(*group, 0), Indices{1});
  EXPECT_EQ(stepFrom(*group, 3), Indices{2});
  EXPECT_EQ(stepFrom(*group, 4), Indices{0});
  EXPECT_EQ(stepFrom(*group, 5), Indices{6});
}

TEST(DynamicAgentsGroup, SharesBetweenTwoAgentsWithTwoSlotsEach) {
  // After step 0 both remember 2 and 3. Step 1 puts 5 in the place of each one's own; the first
  // agent passes 3 on, which takes the place of 2. Step 2 brings both to 2, and the first passes on
  // 5 in the place of 3.
  for (const bool handles : {false, true}) {
    const Shared<VEQNetwork> network = crossroads();
    const Shared<VEQNetwork> linked = drawUndirected("0-1");
    const auto errors = VEQNumberArray::ofFloats({0, 0});
    const auto sizes = VEQNumberArray::ofIntegers({1, 1});
    const auto group =
        handles ? Group::initAtNetwork_initialVertices_agentsNetwork_agentsErrors_agentsMemory(
                      network,
                      VEQVertexArray(std::vector<Shared<VEQVertex>>{network->vertexAtIndex(0),
                                                                    network->vertexAtIndex(1)}),
                      linked, errors, sizes)
                : dynamicGroup(network, {0, 1}, linked, errors, sizes);
    EXPECT_EQ(indices(group->walkForSteps(1)), (Paths{{2}, {3}}));
    EXPECT_EQ(stepFrom(*group, 4), (Indices{5, 5}));
    EXPECT_EQ(stepFrom(*group, 4), (Indices{2, 2}));
    EXPECT_EQ(stepFrom(*group, 4), (Indices{3, 3}));
  }
}

TEST(DynamicAgentsGroup, SharesAlongLinksOnly) {
  // The second agent's one slot takes 2 in the place of its own 3; the first one learns nothing.
  const auto group =
      faultlessGroup(drawDirected("0-2 1-3 4-2 4-3"), {0, 1}, 1, drawDirected("0-1"));
  group->walkForSteps_returnPath(1, false);
  EXPECT_EQ(stepFrom(*group, 4), (Indices{3, 3}));
}

TEST(DynamicAgentsGroup, IgnoresATooSmallAgentsNetwork) {
  // Links of its one vertex neither enlarge the first agent's ring nor share anything: each agent
  // avoids only its own visit, and forgets it in the next step.
  const auto group =
      faultlessGroup(drawDirected("0-2 1-3 4-2 4-3"), {0, 1}, 1, drawUndirected("0-0"));
  group->walkForSteps_returnPath(1, false);
  EXPECT_EQ(stepFrom(*group, 4), (Indices{3, 2}));
  EXPECT_EQ(stepFrom(*group, 4), (Indices{2, 3}));
  EXPECT_EQ(stepFrom(*group, 4), (Indices{3, 2}));
}

TEST(DynamicAgentsGroup, CountsBothEndsOfASelfLoopInARing) {
  // One slot, times two ends plus 1: three slots. The agent shares nothing with itself.
  const auto group = faultlessGroup(drawDirected("0-1 0-2 0-3 0-4"), {0}, 1, drawUndirected("0-0"));
  Indices visits;
  for (int step = 0; step < 40; ++step) visits.push_back(stepFrom(*group, 0)[0]);
  for (std::size_t s = 4; s < visits.size(); ++s) ASSERT_EQ(visits[s], visits[s - 4]);
}

TEST(DynamicAgentsGroup, IgnoresLinksToVerticesThatStandForNoAgent) {
  // Three slots from two links to vertex 1, for which there is no agent.
  const auto group =
      faultlessGroup(drawDirected("0-1 0-2 0-3 0-4"), {0}, 1, drawUndirected("0-1 0-1"));
  Indices visits;
  for (int step = 0; step < 40; ++step) visits.push_back(stepFrom(*group, 0)[0]);
  for (std::size_t s = 4; s < visits.size(); ++s) ASSERT_EQ(visits[s], visits[s - 4]);
}

TEST(DynamicAgentsGroup, OffersItsLatestVisitAgainInEveryStep) {
  // The first agent is stuck on 1 after one step, and its visit takes the other's one slot after
  // each step, so that the other goes to and fro between 2 and 3 and never to 1.
  const auto group =
      faultlessGroup(drawDirected("0-1 4-2 2-1 2-3 3-1 3-2"), {0, 4}, 1, drawDirected("0-1"));
  const Paths paths = indices(group->walkForSteps(60));
  for (std::size_t s = 0; s < 60; ++s) ASSERT_EQ(paths[1][s], 2 + s % 2);
}

TEST(DynamicAgentsGroup, ReadsTheAgentsNetworkLive) {
  const Shared<VEQNetwork> linked = drawDirected("", 2);
  const auto group = faultlessGroup(drawDirected("0-2 1-3 4-2 4-3"), {0, 1}, 1, linked);
  group->walkForSteps_returnPath(1, false);
  EXPECT_EQ(stepFrom(*group, 4), (Indices{3, 2}));
  insert(*linked, "0-1");
  // Both know the first one's visit now, in rings that are as small as before.
  EXPECT_EQ(stepFrom(*group, 4), (Indices{2, 3}));
  EXPECT_EQ(stepFrom(*group, 4), (Indices{3, 3}));
}

TEST(DynamicAgentsGroup, LearnsWhileItIsStuck) {
  // The second agent stands on 5 and learns of 2.
  const auto group = faultlessGroup(drawDirected("0-2 4-2 4-3", 6), {0, 5}, 1, drawDirected("0-1"));
  EXPECT_EQ(indices(group->walkForSteps(1)), (Paths{{2}, {0}}));
  for (int again = 0; again < 20; ++again) {
    placeAll(*group, 2);
    group->walkForSteps_returnPath(3, false);
  }
  EXPECT_EQ(stepFrom(*group, 4), (Indices{3, 3}));
}

TEST(DynamicAgentsGroup, RemembersNothingOfStepsInWhichItIsStuck) {
  const auto group = loneAgent(crossroads(), 0, 1);
  group->walkForSteps_returnPath(1, false);
  group->walkForSteps_returnPath(50, false);
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{0, 0, 1, 0, 0, 0}));
  for (int again = 0; again < 20; ++again) {
    const std::uint64_t first = stepFrom(*group, 4)[0];
    ASSERT_NE(stepFrom(*group, 4)[0], first);
  }
}

TEST(DynamicAgentsGroup, KeepsMemoriesThroughAFlush) {
  const auto group = faultlessGroup(crossroads(), {0, 1}, 1, drawUndirected("0-1"));
  group->walkForSteps_returnPath_untilReach(1, false, 2.0F);
  EXPECT_TRUE(group->flushWalkHistory());
  EXPECT_EQ(group->walkCount(), 0U);
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), Integers(6));
  EXPECT_EQ(stepFrom(*group, 4), (Indices{5, 5}));
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(1)), (Integers{0, 0, 0, 0, 0, 1}));
}

TEST(DynamicAgentsGroup, WalksByEveryOperationWithMemory) {
  const Owned<VEQNetworkAgentsGroup> group = loneAgent(drawDirected("0-0 0-1 1-0"), 1, 1);
  EXPECT_EQ(indices(group->walkForSteps(2)), (Paths{{0, 1}}));
  EXPECT_EQ(indices(*group->walkForSteps_returnPath(3, true)), (Paths{{0, 1, 0}}));
  EXPECT_EQ(indices(group->tellAgentsToWalkToNextVertices()), (Paths{{1}}));
  EXPECT_EQ(group->walkForSteps_returnPath(3, false), std::nullopt);
}

TEST(DynamicAgentsGroup, KeepsAnAgentsNetworkAliveUnlessItIsTooSmall) {
  for (const std::uint64_t agents : {2U, 3U}) {
    Shared<VEQNetwork> linked = drawUndirected("0-1");
    const std::weak_ptr<VEQNetwork> watch = linked;
    auto group = faultlessGroup(crossroads(), Indices(agents, 4), 1, std::move(linked));
    EXPECT_EQ(watch.expired(), agents == 3);
    group.reset();
    EXPECT_TRUE(watch.expired());
  }
}

TEST(DynamicAgentsGroup, IsNotMadeWithoutAnErrorAndAMemorySizeForEachAgent) {
  const auto make = [](const VEQNumberArray& errors, const VEQNumberArray& sizes) {
    return dynamicGroup(crossroads(), {0, 1}, drawUndirected("0-1"), errors, sizes) != nullptr;
  };
  const auto two = VEQNumberArray::ofDoubles({0, 0});
  EXPECT_TRUE(make(two, VEQNumberArray::ofIndices({1, 1})));
  EXPECT_TRUE(make(VEQNumberArray::ofDoubles({0, 0, 9}), VEQNumberArray::ofIndices({1, 1, 0})));
  EXPECT_FALSE(make(VEQNumberArray::ofDoubles({0}), VEQNumberArray::ofIndices({1, 1})));
  EXPECT_FALSE(make(two, VEQNumberArray::ofIndices({1})));
  EXPECT_FALSE(make(VEQNumberArray::ofDoubles({}), VEQNumberArray::ofIndices({})));
  EXPECT_FALSE(make(two, VEQNumberArray::ofIndices({1, 0})));
  EXPECT_FALSE(make(two, VEQNumberArray::ofDoubles({0.5, 1})));
}

TEST(DynamicAgentsGroup, IsNotMadeWhereMemoryCannotHoldTheRings) {
  for (const std::uint64_t size :
       {UINT64_MAX, UINT64_MAX - 1, UINT64_MAX / 2, UINT64_MAX / 2 + 1, UINT64_MAX / 3 + 1,
        std::uint64_t{1} << 61, std::uint64_t{1} << 60, std::uint64_t{1} << 58}) {
    EXPECT_EQ(loneAgent(crossroads(), 0, size), nullptr);
    EXPECT_EQ(faultlessGroup(crossroads(), {0, 1}, size, drawUndirected("0-1")), nullptr);
  }
  EXPECT_EQ(dynamicGroup(crossroads(), {0}, nullptr, VEQNumberArray::ofDoubles({0}),
                         VEQNumberArray::ofIntegers({-1})),
            nullptr);
}

TEST(DynamicAgentsGroup, IsNotMadeWithoutANetwork) { EXPECT_EQ(loneAgent(nullptr, 0, 1), nullptr); }

TEST(DynamicAgentsGroup, MayHaveNoAgents) {
  for (const bool linked : {false, true}) {
    const auto group =
        faultlessGroup(crossroads(), {}, 1, linked ? drawUndirected("0-1") : nullptr);
    ASSERT_NE(group, nullptr);
    EXPECT_TRUE(group->walkForSteps(3).empty());
    group->walkForSteps_returnPath(UINT64_MAX, false);
    EXPECT_EQ(group->currentProgress(), -1);
  }
}

TEST(DynamicAgentsGroup, TakesNoTimeForStepsInWhichNobodyMovesOrLearns) {
  const auto group =
      faultlessGroup(crossroads(), {4, 4, 0, 1}, 3, drawUndirected("0-1 1-2 2-3 3-0 0-2 1-1"));
  group->walkForSteps_returnPath(UINT64_MAX, false);
  EXPECT_EQ(group->currentProgress(), -1);
  EXPECT_FALSE(group->isWorking());
}

TEST(DynamicAgentsGroup, TakesNoTimeForStepsInWhichTheSameIsLearntForEver) {
  // The first agent has two slots for what the three others, stuck on 5, 6 and 7, offer in every
  // step: 5 takes the place of 6, 6 that of 7 and 7 that of 5.
  const auto group = faultlessGroup(drawDirected("1-5 2-6 3-7 8-5 8-6 8-7"), {4, 1, 2, 3}, 2,
                                    drawDirected("1-0 2-0 3-0"));
  for (int again = 0; again < 20; ++again) {
    group->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices({4, 1, 2, 3}));
    group->walkForSteps_returnPath(UINT64_MAX, false);
    EXPECT_EQ(group->currentProgress(), -1);
    group->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices({8, 4, 4, 4}));
    ASSERT_EQ(indices(group->walkForSteps(1))[0], Indices{5});
  }
}

TEST(DynamicAgentsGroup, RejectsAStartOutsideTheNetworkBeforeItDraws) {
  const auto group = loneAgent(crossroads(), 6, 1);
  ASSERT_NE(group, nullptr);
  seed(1);
  EXPECT_THROW(group->walkForSteps_returnPath(4, false), std::out_of_range);
  EXPECT_EQ(nextDraw(), 1804289383);
}

template <class AnyGroup>
concept MadeFromIndicesAlone = requires(Shared<const VEQNetwork> n, const VEQNumberArray& indices) {
  AnyGroup::initAtNetwork_initialVerticesIndices(n, indices);
};
template <class AnyGroup>
concept MadeFromHandlesAlone = requires(Shared<const VEQNetwork> n, const VEQVertexArray& handles) {
  AnyGroup::initAtNetwork_initialVertices(n, handles);
};
static_assert(MadeFromIndicesAlone<VEQNetworkAgentsGroup>);
static_assert(MadeFromHandlesAlone<VEQNetworkAgentsGroup>);
static_assert(!MadeFromIndicesAlone<VEQNetworkDynamicAgentsGroup>);
static_assert(!MadeFromHandlesAlone<VEQNetworkDynamicAgentsGroup>);

}  // namespace
}  // namespace veq::test::dynamic_agents_group_test
