// Walks in the natural form. Golden values were worked out by a program of twenty lines in another
// language, which knows the recurrence of the numbers and the rules of the choices alone.
#include "veq/walkers.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/observers.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/natural/sharing.hpp"

namespace veq::test {
namespace {

constexpr std::uint64_t kN = kNever;

// 0 - 1, 0 - 2, 1 - 2, 2 - 3, 3 - 0, 1 - 3.
Network sixLinks() {
  return Network(networkOf(4, {{0, 1}, {0, 2}, {1, 2}, {2, 3}, {3, 0}, {1, 3}}, false));
}
Network weighted(Network network, const std::vector<float>& weights) {
  network.published()->setEdgesWeightValues(
      *VEQNumberArray::initWithFloatArray_count(weights.data(), weights.size()));
  return network;
}
Network sixWeights() { return weighted(sixLinks(), {1, 2.5, 0, 4, 0.5, 3}); }

RandomState seeded(std::uint64_t seed) { return RandomState::seeded(seed).value(); }
std::uint32_t nextOfShared() {
  return static_cast<std::uint32_t>(VEQRandomGenerator::sharedRandomGenerator()->randomInteger());
}

Walkers walkersAt(const Network& network, const Indices& starts) {
  return Walkers::at(network, starts).value();
}

std::vector<Indices> pathsOf(const WalkOutcome& outcome) {
  std::vector<Indices> paths;
  for (std::uint64_t a = 0; a < outcome.paths->countAgents(); ++a) {
    paths.push_back(outcome.paths->of(a));
  }
  return paths;
}

template <class T>
std::string errorText(const Result<T>& result) {
  return result ? "none" : result.error().text();
}

struct Golden {
  Choice choice;
  double restart;
  bool memory;
  std::vector<Indices> paths;
};

TEST(Walkers, WalkAsWorkedOutElsewhere) {
  const std::vector<Golden> all = {
      {Choice::kPublished,
       0,
       false,
       {{3, 2, 1, 2, 1, 0, 2, 1, 2, 3, 1, 2}, {1, 3, 2, 1, 2, 1, 0, 2, 0, 3, 0, 3}}},
      {Choice::kPublished,
       0.25,
       false,
       {{0, 1, 0, 2, 0, 1, 0, 2, 1, 0, 3, 0}, {2, 3, 2, 1, 2, 1, 0, 2, 0, 3, 0, 2}}},
      {Choice::kPublished,
       0,
       true,
       {{3, 0, 3, 1, 3, 0, 1, 2, 1, 3, 0, 1}, {1, 2, 0, 3, 2, 0, 1, 2, 0, 3, 1, 2}}},
      {Choice::kPublished,
       0.25,
       true,
       {{3, 0, 3, 1, 3, 0, 1, 2, 1, 3, 0, 1}, {2, 2, 0, 2, 1, 0, 2, 1, 0, 2, 3, 2}}},
      {Choice::kEven,
       0,
       false,
       {{3, 2, 3, 2, 1, 0, 1, 2, 1, 3, 1, 2}, {1, 3, 2, 1, 2, 1, 0, 2, 0, 3, 0, 3}}},
      {Choice::kEven,
       0.25,
       false,
       {{0, 1, 0, 1, 0, 1, 0, 2, 1, 0, 3, 0}, {2, 3, 2, 1, 2, 1, 0, 2, 0, 3, 0, 2}}},
      {Choice::kEven,
       0,
       true,
       {{3, 0, 3, 1, 3, 0, 1, 2, 1, 3, 0, 1}, {1, 2, 0, 3, 2, 0, 1, 2, 0, 3, 1, 2}}},
      {Choice::kEven,
       0.25,
       true,
       {{3, 0, 3, 1, 3, 0, 1, 2, 1, 3, 0, 1}, {2, 2, 0, 2, 1, 0, 2, 1, 0, 2, 3, 2}}},
      {Choice::kWeighted,
       0,
       false,
       {{2, 0, 2, 0, 2, 0, 2, 0, 2, 3, 1, 3}, {3, 1, 0, 2, 3, 2, 0, 2, 0, 3, 1, 3}}},
      {Choice::kWeighted,
       0.25,
       false,
       {{0, 1, 0, 2, 0, 1, 0, 2, 3, 0, 2, 0}, {2, 3, 2, 3, 2, 3, 2, 3, 2, 3, 1, 2}}},
      {Choice::kWeighted,
       0,
       true,
       {{2, 0, 3, 1, 3, 0, 1, 3, 1, 0, 2, 0}, {3, 1, 0, 2, 3, 1, 0, 2, 3, 1, 0, 3}}},
      {Choice::kWeighted,
       0.25,
       true,
       {{2, 0, 3, 1, 3, 0, 1, 3, 1, 0, 2, 0}, {2, 2, 0, 2, 3, 1, 0, 2, 3, 2, 0, 2}}},
  };
  for (const Golden& golden : all) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(golden.choice) << " " << golden.restart
                                    << " " << golden.memory);
    Walkers walkers =
        golden.memory ? Walkers::withMemory(sixWeights(), Indices{0, 2}, {{2}, {0.25F}, {}}).value()
                      : walkersAt(sixWeights(), {0, 2});
    RandomState random = seeded(12);
    WalkOptions options;
    options.steps = 12;
    options.paths = true;
    options.choice = golden.choice;
    options.restart = golden.restart;
    options.random = &random;
    const WalkOutcome outcome = walkers.walk(options).value();
    EXPECT_EQ(pathsOf(outcome), golden.paths);
    EXPECT_EQ(outcome.end, WalkEnd::kSteps);
    EXPECT_EQ(outcome.steps, 12U);
    EXPECT_EQ(random, seeded(12).after(walkers.drawsOfWalk(options)));
    const std::uint64_t purposes = (golden.memory ? 3U : 1U) + (golden.restart > 0 ? 1U : 0U);
    EXPECT_EQ(walkers.drawsOfWalk(options), DrawCount(24 * purposes));
  }
}

TEST(Walkers, RememberTheirLatestVisits) {
  Walkers walkers = Walkers::withMemory(sixWeights(), Indices{0, 2}, {{2}, {0.25F}, {}}).value();
  EXPECT_EQ(walkers.remembered(0), Indices());
  RandomState random = seeded(12);
  WalkOptions options;
  options.steps = 12;
  options.choice = Choice::kWeighted;
  options.random = &random;
  ASSERT_TRUE(walkers.walk(options));
  EXPECT_EQ(walkers.remembered(0), (Indices{2, 0}));
  EXPECT_EQ(walkers.remembered(1), (Indices{0, 1}));
  EXPECT_THROW((void)walkers.remembered(2), std::out_of_range);
}

TEST(Walkers, ArePublishedGroupsAndWalkAsTheseUnlessToldOtherwise) {
  const auto network = sixLinks();
  const Shared<VEQNetworkAgentsGroup> group = groupAt(network.published(), {0, 1, 2});
  Walkers walkers(group);
  EXPECT_EQ(walkers.published(), group);
  EXPECT_EQ(walkers.countAgents(), 3U);
  seed(5);
  WalkOptions options;
  options.steps = 50;
  options.paths = true;
  const WalkOutcome outcome = walkers.walk(options).value();
  const std::uint32_t next = nextOfShared();
  const auto twin = groupAt(network.published(), {0, 1, 2});
  seed(5);
  EXPECT_EQ(indices(twin->walkForSteps(50)), indices(outcome.paths->published()));
  EXPECT_EQ(nextOfShared(), next);
  EXPECT_EQ(walkers.positions(), indices(group->agentsCurrentVerticesList()));
  EXPECT_EQ(group->currentProgress(), 50);
  EXPECT_EQ(thrownText<std::invalid_argument>([] { Walkers none(nullptr); }),
            "There is no group of agents.");
}

TEST(Walkers, LeaveTheSharedSequenceAloneWhenTheyHaveAStateOfTheirOwn) {
  Walkers walkers = walkersAt(sixLinks(), {0});
  seed(1);
  RandomState random = seeded(2);
  WalkOptions options;
  options.steps = 10;
  options.random = &random;
  ASSERT_TRUE(walkers.walk(options));
  EXPECT_EQ(nextOfShared(), 1804289383U);
  EXPECT_EQ(random, seeded(2).after(10));
}

// 0 -> 1 -> 2, and 2 cannot be left.
// The first list of an image begins at the first place of the pool. On 0 - 1 three steps from 0
// lead to 1, to 0 and to 1.
TEST(Walkers, GoOverForeignMemoryFromItsFirstEntryOn) {
  const auto built = weighted(Network(networkOf(2, {{0, 1}}, false)), {2.0F});
  const auto words = std::make_shared<std::vector<std::uint64_t>>(imageSize(built).value() / 8 + 1);
  ASSERT_TRUE(writeImage(built, std::as_writable_bytes(std::span(*words))));
  const Network network = attachImage(std::as_bytes(std::span(*words)), words).value();
  for (const Choice choice : {Choice::kPublished, Choice::kEven, Choice::kWeighted}) {
    for (const bool memory : {false, true}) {
      for (const std::uint64_t agents : {1U, 2U}) {
        const Indices starts(agents, 0);
        Walkers walkers = memory ? Walkers::withMemory(network, starts, {{1}, {}, {}}).value()
                                 : walkersAt(network, starts);
        RandomState state = seeded(1);
        WalkOptions options;
        options.steps = 3;
        options.choice = choice;
        options.random = &state;
        ASSERT_TRUE(walkers.walk(options));
        EXPECT_EQ(walkers.positions(), Indices(agents, 1));
        EXPECT_EQ(walkers.visits(), (Indices{agents, 2 * agents}));
      }
    }
  }
}

TEST(Walkers, TellStepsInPlaceFromStepsToVertex0) {
  Walkers walkers = walkersAt(Network(networkOf(4, {{0, 1}, {1, 2}}, true)), {0, 1});
  WalkOptions options;
  options.steps = 3;
  options.paths = true;
  options.firstArrivals = true;
  const WalkOutcome outcome = walkers.walk(options).value();
  ASSERT_TRUE(outcome.paths);
  const WalkPaths& paths = *outcome.paths;
  EXPECT_EQ(paths.countAgents(), 2U);
  EXPECT_EQ(paths.countSteps(), 3U);
  EXPECT_EQ(paths.of(0), (Indices{1, 2, 2}));
  EXPECT_EQ(paths.of(1, true), (Indices{1, 2, 2, 2}));
  EXPECT_EQ(paths.start(1), 1U);
  EXPECT_EQ(paths.arrival(0, 1), 2U);
  EXPECT_EQ(paths.arrival(1, 1), std::nullopt);
  EXPECT_THROW((void)paths.arrival(2, 0), std::out_of_range);
  EXPECT_THROW((void)paths.arrival(0, 3), std::out_of_range);
  EXPECT_THROW((void)paths.of(2), std::out_of_range);
  paths.visitArrivals([](auto arrivals) {
    EXPECT_EQ(arrivals.size(), 6U);
    EXPECT_EQ(arrivals[1], 2U);
    using Word = std::remove_cvref_t<decltype(arrivals[5])>;
    EXPECT_EQ(arrivals[5], std::numeric_limits<Word>::max());
  });
  EXPECT_EQ(outcome.firstArrivals, (Indices{kN, 1, 1, kN}));
  EXPECT_EQ(outcome.coverage(), (std::vector<Coverage>{{1, 2}}));
  EXPECT_EQ(walkers.visits(), (Indices{0, 1, 2, 0}));
  EXPECT_EQ(walkers.visits(0), (Indices{0, 1, 1, 0}));
  EXPECT_THROW((void)walkers.visits(2), std::out_of_range);
  EXPECT_THROW((void)walkers.liveVisits(2), std::out_of_range);
}

TEST(Walkers, CountVisitsOnceHoweverManyWalksThereAre) {
  Walkers walkers = walkersAt(Network(networkOf(3, {{0, 1}, {1, 2}, {2, 0}}, true)), {0, 1});
  WalkOptions options;
  options.steps = 2;
  for (int walk = 0; walk < 3; ++walk) ASSERT_TRUE(walkers.walk(options));
  EXPECT_EQ(walkers.visits(), (Indices{4, 4, 4}));
  EXPECT_EQ(walkers.visits(1), (Indices{2, 2, 2}));
  const auto live = walkers.liveVisits(1);
  const Indices snapshot = walkers.visits(1);
  options.steps = 1;
  ASSERT_TRUE(walkers.walk(options));
  EXPECT_EQ(integers(live), (Integers{2, 2, 3}));
  EXPECT_EQ(walkers.visits(1), (Indices{2, 2, 3}));
  EXPECT_EQ(snapshot, (Indices{2, 2, 2}));
  EXPECT_TRUE(walkers.forget());
  EXPECT_EQ(walkers.visits(), (Indices{0, 0, 0}));
}

// On a directed ring of 4 from vertex 0 the fourth step comes back, and all have been arrived at.
TEST(Walkers, WalkWithoutANumberOfStepsUntilTheTargetIsMet) {
  Walkers walkers = walkersAt(Network(networkOf(4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}, true)), {0});
  RandomState random = seeded(3);
  WalkOptions options;
  options.target = 1.0;
  options.firstArrivals = true;
  options.random = &random;
  const WalkOutcome outcome = walkers.walk(options).value();
  EXPECT_EQ(outcome.end, WalkEnd::kTarget);
  EXPECT_EQ(outcome.steps, 4U);
  EXPECT_EQ(outcome.firstArrivals, (Indices{4, 1, 2, 3}));
  EXPECT_EQ(outcome.coverage(), (std::vector<Coverage>{{1, 1}, {2, 2}, {3, 3}, {4, 4}}));
  EXPECT_EQ(random, seeded(3).after(4));
  EXPECT_EQ(walkers.drawsOfWalk(options), DrawCount(1));
  seed(1);
  options.random = nullptr;
  ASSERT_TRUE(walkers.walk(options));  // met already, so it is one step
  EXPECT_EQ(nextOfShared(), 846930886U);
}

TEST(Walkers, EndWhereNobodyCanMoveAndNoNumberOfStepsIsGiven) {
  Walkers walkers = walkersAt(Network(networkOf(3, {{0, 1}}, true)), {0});
  WalkOptions options;
  options.target = 1.0;
  const WalkOutcome outcome = walkers.walk(options).value();
  EXPECT_EQ(outcome.end, WalkEnd::kStuck);
  EXPECT_EQ(walkers.positions(), (Indices{1}));
  EXPECT_EQ(walkers.visits(), (Indices{0, 1, 0}));
}

// One draw for each of 3 agents and step, so that 2^40 - 87 - (2^40 - 97) = 10 do for 3 steps.
TEST(Walkers, EndWhereASubstreamDoes) {
  const Indices starts = {0, 1, 2};
  Walkers walkers = walkersAt(sixLinks(), starts);
  RandomState random = seeded(1).substream(0).after(RandomState::kSubstreamSpacing - 10);
  WalkOptions options;
  options.steps = 4;
  options.random = &random;
  EXPECT_EQ(errorText(walkers.walk(options)), "the substream has 10 draws left, not 12");
  EXPECT_EQ(walkers.positions(), starts);
  options.steps.reset();
  options.target = 1.0;
  options.choice = Choice::kWeighted;
  // No edge weighs anything: nobody moves, but a restart comes now and then.
  options.restart = 0x1p-31;
  Walkers held = walkersAt(weighted(sixLinks(), {0, 0, 0, 0, 0, 0}), {0});
  const WalkOutcome outcome = held.walk(options).value();
  EXPECT_EQ(outcome.end, WalkEnd::kDraws);
  EXPECT_EQ(outcome.steps, 5U);
  EXPECT_EQ(random.drawsLeft(), 0U);
  // A step takes two: there are as many for one of them, and too few for any.
  random = seeded(1).substream(0).after(RandomState::kSubstreamSpacing - 2);
  EXPECT_EQ(held.walk(options).value().steps, 1U);
  random = seeded(1).substream(0).after(RandomState::kSubstreamSpacing - 1);
  const WalkOutcome none = held.walk(options).value();
  EXPECT_EQ(none.end, WalkEnd::kDraws);
  EXPECT_EQ(none.steps, 0U);
  EXPECT_EQ(random.drawsLeft(), 1U);
}

// Nobody knows how much there is to do before it is done.
TEST(Walkers, WithoutANumberOfStepsHaveNoWorkToTellOf) {
  const ObserverInterval none;
  const Shared<VEQNetworkAgentsGroup> group = groupAt(sixLinks().published(), {0});
  std::uint64_t calls = 0;
  WalkOptions options;
  options.target = 1.0;
  options.progress.observer = [&](std::uint64_t, std::uint64_t all) {
    EXPECT_EQ(all, 0U);
    EXPECT_EQ(group->currentWork(), 0);
    ++calls;
  };
  const WalkOutcome outcome = Walkers(group).walk(options).value();
  EXPECT_GE(calls, 1U);
  EXPECT_EQ(outcome.end, WalkEnd::kTarget);
  EXPECT_EQ(group->currentWork(), static_cast<std::int64_t>(outcome.steps));
}

TEST(Walkers, AreStoppedAfterAWholeStepAndMoveTheSequenceByAllSteps) {
  Walkers walkers = walkersAt(sixLinks(), {0, 1, 2});
  StopSource source;
  WalkOptions options;
  options.progress.stop = source.token();
  options.progress.observer = [&](std::uint64_t done, std::uint64_t all) {
    EXPECT_EQ(all, 1000000000U);
    EXPECT_GT(done, 0U);
    source.requestStop();
  };
  options.steps = 1000000000;
  RandomState random = seeded(8);
  options.random = &random;
  const WalkOutcome outcome = walkers.walk(options).value();
  EXPECT_EQ(outcome.end, WalkEnd::kStopped);
  EXPECT_GT(outcome.steps, 0U);
  EXPECT_LT(outcome.steps, 1000000000U);
  EXPECT_EQ(random, seeded(8).after(3000000000U));
  std::uint64_t visits = 0;
  for (const std::uint64_t count : walkers.visits()) visits += count;
  EXPECT_EQ(visits, 3 * outcome.steps);
  EXPECT_EQ(static_cast<std::uint64_t>(walkers.published()->currentProgress()), outcome.steps);
  EXPECT_FALSE(walkers.published()->isWorking());
  // A stop that was asked for before lets nobody move.
  const WalkOutcome none = walkers.walk(options).value();
  EXPECT_EQ(none.end, WalkEnd::kStopped);
  EXPECT_EQ(none.steps, 0U);
}

TEST(Walkers, LetThroughWhatTheObserverThrows) {
  Walkers walkers = walkersAt(sixLinks(), {0});
  WalkOptions options;
  options.steps = 1000000000;
  options.progress.observer = [](std::uint64_t, std::uint64_t) { throw std::string("enough"); };
  EXPECT_THROW((void)walkers.walk(options), std::string);
  EXPECT_FALSE(walkers.published()->isWorking());
  const auto steps = static_cast<std::uint64_t>(walkers.published()->currentProgress());
  EXPECT_GT(steps, 0U);
  std::uint64_t visits = 0;
  for (const std::uint64_t count : walkers.visits()) visits += count;
  EXPECT_EQ(visits, steps);
  EXPECT_TRUE(walkers.forget());
}

// 0 -> 1 weighs 1 and 0 -> 2 nothing, until that is turned round; then there is a third link.
TEST(Walkers, ChooseByTheWeightsAsTheyAre) {
  const Network network = weighted(Network(networkOf(4, {{0, 1}, {0, 2}}, true)), {1, 0});
  Walkers walkers = walkersAt(network, Indices(50));
  WalkOptions options;
  options.steps = 1;
  options.choice = Choice::kWeighted;
  const auto walkFrom0 = [&] {
    walkers.published()->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices(Indices(50)));
    EXPECT_TRUE(walkers.forget());
    EXPECT_TRUE(walkers.walk(options));
    return walkers.visits();
  };
  EXPECT_EQ(walkFrom0(), (Indices{0, 50, 0, 0}));
  network.published()->setWeightValue_atEdgeIndex(0.0F, 0);
  network.published()->setWeightValue_atEdgeIndex(1e-30F, 1);
  EXPECT_EQ(walkFrom0(), (Indices{0, 0, 50, 0}));
  const std::uint64_t from = 0;
  const std::uint64_t to = 3;
  network.published()->addEdgesFromVerticesIndices_toVerticesIndices_count(&from, &to, 1);
  EXPECT_EQ(walkFrom0(), (Indices{0, 0, 0, 50}));  // of weight 1
  network.published()->setEdgesWeightValues(VEQNumberArray::ofFloats({0, 0, 0}));
  EXPECT_EQ(walkFrom0(), (Indices{0, 0, 0, 0}));
  Network same = network;
  const std::vector<float> weights{1, 0, 0};
  ASSERT_TRUE(same.setEdgeWeights(weights));
  EXPECT_EQ(walkFrom0(), (Indices{0, 50, 0, 0}));
}

TEST(Walkers, WithoutWeightsWeighEachEdgeOne) {
  Walkers even = walkersAt(sixLinks(), {0, 1, 2, 3});
  Walkers byWeight = walkersAt(sixLinks(), {0, 1, 2, 3});
  WalkOptions options;
  options.steps = 100;
  options.paths = true;
  std::vector<Indices> paths[2];
  for (Walkers* walkers : {&even, &byWeight}) {
    RandomState random = seeded(4);
    options.random = &random;
    options.choice = walkers == &even ? Choice::kEven : Choice::kWeighted;
    paths[walkers == &byWeight] = pathsOf(walkers->walk(options).value());
  }
  // floor(3 x), and the first of 1, 2, 3 above 3 x.
  EXPECT_EQ(paths[0], paths[1]);
}

TEST(Walkers, RestartWhereTheyWerePut) {
  Walkers walkers = walkersAt(sixLinks(), {3, 1});
  WalkOptions options;
  options.steps = 5;
  options.restart = 1.0;
  options.paths = true;
  EXPECT_EQ(pathsOf(walkers.walk(options).value()),
            (std::vector<Indices>{Indices(5, 3), Indices(5, 1)}));
  EXPECT_EQ(walkers.visits(), (Indices{0, 5, 0, 5}));
}

TEST(Walkers, BeginAtVerticesDrawnByTwoNumbersEach) {
  const Network star(networkOf(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}}, false));
  RandomState random = seeded(5);
  const Network ten(networkOf(10, {}, false));
  // floor(10 u / 2^62) of the numbers 590011675 99788765, 2131925610 171864072, 317159276
  // 171035632.
  EXPECT_EQ(Walkers::uniformStarts(ten, 3, &random).value(), (Indices{2, 9, 1}));
  EXPECT_EQ(random, seeded(5).after(6));
  random = seeded(5);
  // Of 8 entries the first four are the centre's: 2, 7 and 1 of them.
  EXPECT_EQ(Walkers::startsByDegree(star, 3, &random).value(), (Indices{0, 4, 0}));
  seed(5);
  EXPECT_EQ(Walkers::uniformStarts(ten, 3).value(), (Indices{2, 9, 1}));
  EXPECT_THROW(static_cast<void>(Walkers::uniformStarts(ten, UINT64_MAX)), std::bad_alloc);
  EXPECT_EQ(errorText(Walkers::uniformStarts(Network(networkOf(0, {}, false)), 1)),
            "the network has no vertices");
  EXPECT_EQ(errorText(Walkers::startsByDegree(ten, 1)), "the network has no edges");
  random = seeded(5).substream(0).after(RandomState::kSubstreamSpacing - 5);
  EXPECT_EQ(errorText(Walkers::uniformStarts(ten, 3, &random)),
            "the substream has 5 draws left, not 6");
  EXPECT_EQ(random.drawsLeft(), 5U);
}

TEST(Walkers, SayWhyTheyCannotBe) {
  EXPECT_EQ(errorText(Walkers::at(sixLinks(), Indices{0, 1, 7})), "start 2: vertex 7 of 4");
  EXPECT_EQ(errorText(Walkers::at(sixLinks(), Indices{UINT64_MAX})),
            "start 0: vertex 18446744073709551615 of 4");
  const Indices three = {0, 1, 2};
  const auto why = [&](const MemoryOptions& memory) {
    return errorText(Walkers::withMemory(sixLinks(), three, memory));
  };
  EXPECT_EQ(why({{1, 2}, {}, {}}), "2 memory sizes for 3 agents");
  EXPECT_EQ(why({{}, {}, {}}), "0 memory sizes for 3 agents");
  EXPECT_EQ(why({{1, 0, 2}, {}, {}}), "agent 1: memory size 0");
  EXPECT_EQ(why({{1}, {0.5F, 0.5F}, {}}), "2 errors for 3 agents");
  EXPECT_EQ(why({{1}, {0.0F, 1.5F, 0.0F}, {}}), "agent 1: error 1.5, not 0 to 1");
  EXPECT_EQ(why({{1}, {std::nanf("")}, {}}), "agent 0: error nan, not 0 to 1");
  EXPECT_EQ(why({{1}, {}, Network(networkOf(2, {}, false))}), "2 listeners for 3 agents");
  EXPECT_EQ(errorText(Walkers::withMemory(sixLinks(), Indices{4}, {{1}, {}, {}})),
            "start 0: vertex 4 of 4");
  EXPECT_EQ(why({{1}, {}, Network(networkOf(3, {{0, 1}}, false))}), "none");
  EXPECT_EQ(why({{1}, {}, Network(networkOf(4, {{0, 1}}, false))}), "none");
  const auto tooMuch = Walkers::withMemory(sixLinks(), three, {{UINT64_MAX}, {}, {}});
  ASSERT_FALSE(tooMuch);
  EXPECT_EQ(tooMuch.error().kind(), ErrorKind::kMemory);
}

TEST(Walkers, SayWhyTheyCannotWalkBeforeAnythingIsDrawn) {
  Walkers walkers = walkersAt(sixLinks(), {0, 1});
  const auto why = [&](auto set) {
    WalkOptions options;
    options.steps = 1;
    set(options);
    seed(1);
    const auto outcome = walkers.walk(options);
    EXPECT_EQ(nextOfShared(), 1804289383U);
    EXPECT_EQ(walkers.positions(), (Indices{0, 1}));
    return errorText(outcome);
  };
  EXPECT_EQ(why([](WalkOptions& o) { o.steps.reset(); }), "neither steps nor target");
  EXPECT_EQ(why([](WalkOptions& o) { o.target = 0.0; }), "target 0: give more than 0, up to 1");
  EXPECT_EQ(why([](WalkOptions& o) { o.target = 1.25; }), "target 1.25: give more than 0, up to 1");
  EXPECT_EQ(why([](WalkOptions& o) { o.target = std::nan(""); }),
            "target nan: give more than 0, up to 1");
  EXPECT_EQ(why([](WalkOptions& o) { o.restart = 1.5; }), "restart 1.5: give 0 to 1");
  EXPECT_EQ(why([](WalkOptions& o) { o.restart = -0.5; }), "restart -0.5: give 0 to 1");
  EXPECT_EQ(why([](WalkOptions& o) {
              o.paths = true;
              o.steps = UINT64_MAX;
            }),
            "paths of 2^64 entries or more");
  walkers = walkersAt(weighted(sixLinks(), {1, 1, -1, 1, 1, 1}), {0, 1});
  EXPECT_EQ(why([](WalkOptions& o) { o.choice = Choice::kWeighted; }), "edge 2: weight -1");
  walkers = walkersAt(weighted(sixLinks(), {1, 1, 1, 1, std::numeric_limits<float>::infinity(), 1}),
                      {0, 1});
  EXPECT_EQ(why([](WalkOptions& o) { o.choice = Choice::kWeighted; }), "edge 4: weight inf");
  EXPECT_EQ(why([](WalkOptions& o) { o.steps = 0; }), "none");
}

// Without memory and restarts the draws are those of a walk of so many steps.
TEST(Walkers, TellThePathsOfAWalkWithoutANumberOfSteps) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < 60; ++v) edges.emplace_back(v, (v + 1) % 60);
  const Network ring(networkOf(60, edges, false));
  const auto walkFor = [&](std::optional<std::uint64_t> steps) {
    RandomState random = seeded(5);
    WalkOptions options;
    options.steps = steps;
    options.target = 1.0;
    options.paths = true;
    options.random = &random;
    return walkersAt(ring, {0, 7}).walk(options).value();
  };
  const WalkOutcome outcome = walkFor(std::nullopt);
  EXPECT_EQ(outcome.end, WalkEnd::kTarget);
  EXPECT_GE(outcome.steps, 30U);
  EXPECT_EQ(outcome.paths->countSteps(), outcome.steps);
  EXPECT_EQ(pathsOf(outcome), pathsOf(walkFor(outcome.steps)));
}

TEST(Walkers, LeadBackToWhereTheGroupStoodWhenTheyWereMade) {
  const Shared<VEQNetworkAgentsGroup> group = groupAt(sixLinks().published(), {2, 2});
  Walkers walkers(group);
  group->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices({0, 1}));
  Walkers later(group);
  group->setCurrentVertex_forAgent(*sixLinks().published()->vertexAtIndex(3), 0);
  WalkOptions options;
  options.steps = 1;
  options.restart = 1.0;
  EXPECT_TRUE(later.walk(options).hasValue());
  EXPECT_EQ(later.positions(), (Indices{0, 1}));
  EXPECT_TRUE(walkers.walk(options).hasValue());
  EXPECT_EQ(walkers.positions(), (Indices{2, 2}));
}

TEST(Walkers, SayWhoStandsOutsideTheNetwork) {
  Walkers walkers(Shared<VEQNetworkAgentsGroup>(groupAt(sixLinks().published(), {0, 9})));
  WalkOptions options;
  options.steps = 1;
  EXPECT_EQ(errorText(walkers.walk(options)), "agent 1: vertex 9 of 4");
}

}  // namespace
}  // namespace veq::test
