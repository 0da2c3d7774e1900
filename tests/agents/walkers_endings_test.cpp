// How walks in the natural form end: by their steps, their target, a stop, an observer, lacking
// draws.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/observers.hpp"
#include "tests/support/walkers.hpp"

namespace veq::test::walkers_endings_test {
namespace {

// On a directed ring of 4 from vertex 0 the fourth step comes back, and all have been arrived at.
TEST(WalkersEndings, WalkWithoutANumberOfStepsUntilTheTargetIsMet) {
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

TEST(WalkersEndings, EndWhereNobodyCanMoveAndNoNumberOfStepsIsGiven) {
  Walkers walkers = walkersAt(Network(networkOf(3, {{0, 1}}, true)), {0});
  WalkOptions options;
  options.target = 1.0;
  const WalkOutcome outcome = walkers.walk(options).value();
  EXPECT_EQ(outcome.end, WalkEnd::kStuck);
  EXPECT_EQ(walkers.positions(), (Indices{1}));
  EXPECT_EQ(walkers.visits(), (Indices{0, 1, 0}));
}

// One draw for each of 3 agents and step, so that 2^40 - 87 - (2^40 - 97) = 10 do for 3 steps.
TEST(WalkersEndings, EndWhereASubstreamDoes) {
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
TEST(WalkersEndings, WithoutANumberOfStepsHaveNoWorkToTellOf) {
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

TEST(WalkersEndings, AreStoppedAfterAWholeStepAndMoveTheSequenceByAllSteps) {
  Walkers walkers = walkersAt(sixLinks(), {0, 1, 2});
  StopSource source;
  WalkOptions options;
  options.progress.stop = source.token();
  options.progress.observer = [&](std::uint64_t done, std::uint64_t all) {
    EXPECT_EQ(all, 1000000000U);
    if (done != 0) source.requestStop();
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

TEST(WalkersEndings, LetThroughWhatTheObserverThrows) {
  Walkers walkers = walkersAt(sixLinks(), {0});
  WalkOptions options;
  options.steps = 1000000000;
  options.progress.observer = [](std::uint64_t done, std::uint64_t) {
    if (done != 0) throw std::string("enough");
  };
  EXPECT_THROW((void)walkers.walk(options), std::string);
  EXPECT_FALSE(walkers.published()->isWorking());
  const auto steps = static_cast<std::uint64_t>(walkers.published()->currentProgress());
  EXPECT_GT(steps, 0U);
  std::uint64_t visits = 0;
  for (const std::uint64_t count : walkers.visits()) visits += count;
  EXPECT_EQ(visits, steps);
  EXPECT_TRUE(walkers.forget());
}

// Without memory and restarts the draws are those of a walk of so many steps.
TEST(WalkersEndings, TellThePathsOfAWalkWithoutANumberOfSteps) {
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

}  // namespace
}  // namespace veq::test::walkers_endings_test
