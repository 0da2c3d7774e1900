// What a record keeps of a walk. That it suffices to walk again is tested with pages.
#include "veq/agents/walk_record.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "veq/agents/internal/recorded_walk.hpp"
#include "veq/random.hpp"
#include "veq/walkers.hpp"

namespace veq::test::walk_record_test {
namespace {

using Vertices = std::vector<std::uint64_t>;

Network triangle() { return Network::build({{0, 1}, {1, 2}, {2, 0}}).value(); }

RandomState stateSeeded(std::uint64_t seed) { return RandomState::seeded(seed).value(); }

template <class T>
std::string reasonOf(const Result<T>& result) {
  return result ? "none" : result.error().text();
}

WalkOptions stepsFrom(RandomState& state, std::uint64_t steps) {
  WalkOptions options;
  options.steps = steps;
  options.random = &state;
  return options;
}

TEST(WalkRecord, WalksAsAWalkDoes) {
  RandomState one = stateSeeded(3);
  RandomState other = stateSeeded(3);
  Walkers recorded = Walkers::at(triangle(), Vertices{0, 1}).value();
  Walkers walked = Walkers::at(triangle(), Vertices{0, 1}).value();
  WalkOptions options = stepsFrom(one, 100);
  options.firstArrivals = true;
  const WalkRecord record = recorded.record(options).value();
  options.random = &other;
  const WalkOutcome outcome = walked.walk(options).value();
  EXPECT_EQ(recorded.visits(), walked.visits());
  EXPECT_EQ(recorded.positions(), walked.positions());
  EXPECT_EQ(record.outcome().firstArrivals, outcome.firstArrivals);
  EXPECT_EQ(record.outcome().steps, 100U);
  EXPECT_FALSE(record.outcome().paths);
  EXPECT_EQ(record.countAgents(), 2U);
  EXPECT_EQ(one, other);
}

TEST(WalkRecord, KeepsItsOwnArrivalsAlone) {
  RandomState state = stateSeeded(3);
  // Along a path there is no choice: 0 to 1 to 2, and back from the end.
  Walkers walkers =
      Walkers::at(Network::build({{0, 1}, {1, 2}}, {.directed = true}).value(), Vertices{0})
          .value();
  const WalkRecord first = walkers.record(stepsFrom(state, 1)).value();
  const WalkRecord second = walkers.record(stepsFrom(state, 5)).value();
  EXPECT_EQ(first.parts().arrivals, (Vertices{0, 1, 0}));
  EXPECT_EQ(second.parts().arrivals, (Vertices{0, 0, 1}));
  EXPECT_EQ(second.parts().starts, (Vertices{1}));
  EXPECT_EQ(second.parts().ends, (Vertices{2}));
}

TEST(WalkRecord, KeepsTheWordsBeforeTheDraws) {
  RandomState state = stateSeeded(3);
  Walkers walkers = Walkers::at(triangle(), Vertices{0, 1}).value();
  WalkOptions options = stepsFrom(state, 10);
  const WalkRecord plain = walkers.record(options).value();
  EXPECT_EQ(plain.parts().words, stateSeeded(3).words());
  EXPECT_FALSE(plain.parts().restartWords);
  options.restart = 0.5;
  const WalkRecord led = walkers.record(options).value();
  EXPECT_EQ(led.parts().words, stateSeeded(3).after(20).words());
  EXPECT_EQ(led.parts().restartWords, stateSeeded(3).after(40).words());
  EXPECT_EQ(led.parts().restartThreshold, 1U << 30);
  EXPECT_EQ(led.parts().homes, (Vertices{0, 1}));
}

TEST(WalkRecord, TakesTheSequenceOfTheProcessToo) {
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(5);
  Walkers walkers = Walkers::at(triangle(), Vertices{0}).value();
  WalkOptions options;
  options.steps = 4;
  EXPECT_EQ(walkers.record(options).value().parts().words, stateSeeded(5).words());
}

TEST(WalkRecord, OfMemoriesHasTheirMoves) {
  RandomState state = stateSeeded(3);
  MemoryOptions memory;
  memory.sizes = {2, 3};
  Walkers walkers = Walkers::withMemory(triangle(), Vertices{0, 1}, memory).value();
  const WalkRecord record = walkers.record(stepsFrom(state, 6)).value();
  EXPECT_EQ(record.outcome().paths->countSteps(), 6U);
  ASSERT_EQ(record.parts().memories.size(), 2U);
  EXPECT_EQ(record.parts().memories[1].ringSize, 3U);
  EXPECT_TRUE(record.parts().memories[1].ring.empty());
  const WalkRecord again = walkers.record(stepsFrom(state, 1)).value();
  EXPECT_EQ(again.parts().memories[1].ring.size(), 3U);
}

TEST(WalkRecord, OfMemoriesIsRefusedWhereItIsTooLarge) {
  RandomState state = stateSeeded(3);
  MemoryOptions memory;
  memory.sizes = {1};
  Walkers walkers = Walkers::withMemory(triangle(), Vertices{0, 1}, memory).value();
  EXPECT_EQ(reasonOf(walkers.record(stepsFrom(state, 2'000'001))),
            "4000002 moves of agents with memory are more than a record holds (4000000): take "
            "fewer steps or agents");
  EXPECT_EQ(reasonOf(walkers.record(stepsFrom(state, UINT64_MAX))),
            "2^64 or more moves of agents with memory are more than a record holds (4000000): "
            "take fewer steps or agents");
  WalkOptions options;
  options.target = 1.0;
  EXPECT_EQ(reasonOf(walkers.record(options)),
            "a record of agents with memory needs a number of steps");
  EXPECT_EQ(walkers.visits(), (Vertices{0, 0, 0}));
  EXPECT_EQ(state, stateSeeded(3));
}

TEST(WalkRecord, IsRefusedAsTheWalkIs) {
  Walkers walkers = Walkers::at(triangle(), Vertices{0}).value();
  EXPECT_EQ(reasonOf(walkers.record({})), "neither steps nor target");
}

}  // namespace
}  // namespace veq::test::walk_record_test
