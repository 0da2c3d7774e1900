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
#include "tests/support/thrown_text.hpp"
#include "tests/support/walkers.hpp"
#include "veq/natural/sharing.hpp"

namespace veq::test::walkers_test {
namespace {

constexpr std::uint64_t kN = kNever;

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

// 0 -> 1 -> 2, and 2 cannot be left.
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
}  // namespace veq::test::walkers_test
