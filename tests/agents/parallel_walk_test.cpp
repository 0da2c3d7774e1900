// Walks that threads share, beside the same walks of one thread.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <numeric>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/threads.hpp"
#include "veq/models/random_state.hpp"
#include "veq/walkers.hpp"

namespace veq::test::parallel_walk_test {
namespace {

constexpr std::uint64_t kAgents = 100;

// A few thousand vertices, some of them without edges, with weights that are no round numbers.
Network someNetwork() {
  constexpr std::uint64_t kVertices = 3000;
  std::mt19937 draw(5);
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  std::vector<float> weights;
  for (int e = 0; e < 9000; ++e) {
    edges.emplace_back(draw() % 2900, draw() % 2900);
    weights.push_back(0.1F * static_cast<float>(1 + draw() % 50));
  }
  const auto network = networkOf(kVertices, edges, false);
  network->setEdgesWeightValues(
      *VEQNumberArray::initWithFloatArray_count(weights.data(), weights.size()));
  return Network(network);
}

struct Kind {
  const char* name;
  bool withMemory;
  Choice choice;
  std::optional<std::uint64_t> steps;
  std::optional<double> target;
  double restart;
};

constexpr Kind kKinds[] = {
    {"published", false, Choice::kPublished, 4000, std::nullopt, 0.0},
    {"even, restarting", false, Choice::kEven, 4000, std::nullopt, 0.01},
    {"weighted, to a target", false, Choice::kWeighted, 4000, 0.9, 0.0},
    {"to a target without a number of steps", false, Choice::kEven, std::nullopt, 0.96, 0.02},
    {"to a target that is never met", false, Choice::kPublished, 4000, 1.0, 0.0},
    {"with memory", true, Choice::kPublished, 3000, std::nullopt, 0.0},
    {"with memory, to a target", true, Choice::kWeighted, 3000, 0.95, 0.02},
};

// All that a walk and those after it lead to.
struct Story {
  std::vector<std::uint64_t> steps;
  std::vector<WalkEnd> ends;
  std::vector<std::uint64_t> positions;
  std::vector<std::uint64_t> visits;
  std::vector<std::vector<std::uint64_t>> visitsOfAgents;
  std::vector<std::vector<std::uint64_t>> firstArrivals;
  std::vector<std::vector<std::uint64_t>> paths;
  RandomState random;
  friend bool operator==(const Story&, const Story&) = default;
};

Walkers walkersOn(const Network& network, bool withMemory) {
  std::vector<std::uint64_t> starts(kAgents);
  std::iota(starts.begin(), starts.end(), 0);
  if (!withMemory) return Walkers::at(network, starts).value();
  MemoryOptions memory;
  memory.sizes = {5};
  memory.errors = {0.05F};
  return Walkers::withMemory(network, starts, memory).value();
}

// Two walks, which make some 800,000 moves, more than the log of such a group holds.
Story storyOf(const Network& network, const Kind& kind, std::optional<unsigned> threads) {
  Walkers walkers = walkersOn(network, kind.withMemory);
  Story story{{}, {}, {}, {}, {}, {}, {}, RandomState::seeded(11).value()};
  for (const bool paths : {true, false}) {
    WalkOptions options;
    options.steps = kind.steps;
    options.target = kind.target;
    options.paths = paths;
    options.firstArrivals = true;
    options.choice = kind.choice;
    options.restart = kind.restart;
    options.random = &story.random;
    options.threads = threads;
    const WalkOutcome outcome = walkers.walk(options).value();
    story.steps.push_back(outcome.steps);
    story.ends.push_back(outcome.end);
    story.firstArrivals.push_back(outcome.firstArrivals);
    for (std::uint64_t a = 0; paths && a < kAgents; ++a) {
      story.paths.push_back(outcome.paths->of(a, true));
    }
  }
  story.positions = walkers.positions();
  story.visits = walkers.visits();
  for (std::uint64_t a = 0; a < kAgents; ++a) story.visitsOfAgents.push_back(walkers.visits(a));
  return story;
}

TEST(ParallelWalk, LeadsToTheSameForAnyNumberOfThreads) {
  const Network network = someNetwork();
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.name);
    const Story alone = storyOf(network, kind, std::nullopt);
    for (const unsigned threads : {1U, 2U, 3U, 7U, 16U, 64U}) {
      if (threads > 3 && share() > 1 && kind.withMemory) continue;
      EXPECT_TRUE(storyOf(network, kind, threads) == alone) << threads << " threads";
    }
    const SharedWork reversed(5, SharedWork::InReverse());
    EXPECT_TRUE(storyOf(network, kind, std::nullopt) == alone) << "in reverse";
  }
}

// Agents that pass on what they remember do so in turn, whatever is asked for.
TEST(ParallelWalk, OfAgentsWithListenersIsThatOfOneThread) {
  const Network network = someNetwork();
  std::vector<std::pair<std::uint64_t, std::uint64_t>> links;
  for (std::uint64_t a = 0; a + 1 < kAgents; ++a) links.emplace_back(a, a + 1);
  std::vector<std::uint64_t> starts(kAgents, 7);
  MemoryOptions memory;
  memory.sizes = {4};
  memory.listeners = Network(networkOf(kAgents, links, false));
  std::vector<std::vector<std::uint64_t>> positions;
  for (const unsigned threads : {1U, 4U}) {
    Walkers walkers = Walkers::withMemory(network, starts, memory).value();
    RandomState random = RandomState::seeded(3).value();
    WalkOptions options;
    options.steps = 1500;
    options.random = &random;
    options.threads = threads;
    ASSERT_TRUE(walkers.walk(options).hasValue());
    positions.push_back(walkers.positions());
  }
  EXPECT_EQ(positions[0], positions[1]);
}

// Published walks use as many threads as the process is to.
TEST(ParallelWalk, OfAPublishedGroupIsThatOfOneThread) {
  const Network network = someNetwork();
  std::vector<Integers> totals;
  std::vector<Indices> places;
  for (const unsigned threads : {1U, 3U}) {
    const SharedWork shared(threads, std::uint64_t{1} << 12);
    Indices start(kAgents);
    std::iota(start.begin(), start.end(), 0);
    const auto group = groupAt(network.published(), start);
    seed(4);
    group->walkForSteps_returnPath_untilReach(3000, false, -1.0F);
    group->walkForSteps_returnPath_untilReach(3000, false, 0.9F);
    totals.push_back(integers(group->globalVisitFrequencyOfVertices()));
    totals.push_back(integers(group->visitFrequencyOfVerticesForAgent(99)));
    totals.push_back(integers(group->orderOfVisitedVerticesForAgent(99)));
    places.push_back(indices(group->agentsCurrentVerticesList()));
  }
  EXPECT_EQ(places[0], places[1]);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(totals[i], totals[3 + i]) << i;
}

// 0 -> 1 -> ... -> 99 -> 0, where everybody goes on by a vertex in each step, and a vertex that no
// walk arrives at.
Walkers walkersOnCycle(bool withMemory) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < 100; ++v) edges.emplace_back(v, (v + 1) % 100);
  const Network network(networkOf(101, edges, true));
  std::vector<std::uint64_t> starts(kAgents);
  std::iota(starts.begin(), starts.end(), 0);
  MemoryOptions memory;
  memory.sizes = {5};
  return withMemory ? Walkers::withMemory(network, starts, memory).value()
                    : Walkers::at(network, starts).value();
}

// That all agents have made so many steps.
void expectSteps(const Walkers& walkers, std::uint64_t steps) {
  const std::vector<std::uint64_t> positions = walkers.positions();
  for (std::uint64_t a = 0; a < kAgents; ++a) ASSERT_EQ(positions[a], (a + steps) % 100) << a;
  std::vector<std::uint64_t> visits(100, steps);
  visits.push_back(0);
  EXPECT_EQ(walkers.visits(), visits);
  visits.assign(100, steps / 100);
  for (std::uint64_t s = 1; s <= steps % 100; ++s) ++visits[(17 + s) % 100];
  visits.push_back(0);
  EXPECT_EQ(walkers.visits(17), visits);
}

// Walks that never end by themselves.
struct Endless {
  const char* name;
  bool withMemory;
  bool withTarget;
  bool withPaths;  // and without a number of steps
};
constexpr Endless kEndless[] = {{"plain", false, false, false},
                                {"to a target", false, true, false},
                                {"with paths", false, true, true},
                                {"with memory", true, true, false}};

WalkOptions endlessly(const Endless& kind) {
  WalkOptions options;
  if (!kind.withPaths) options.steps = std::uint64_t{1} << 40;
  if (kind.withTarget) options.target = 1.0;
  options.paths = kind.withPaths;
  options.threads = 3;
  return options;
}

TEST(ParallelWalk, EndsAfterAWholeStepWhereItIsStopped) {
  for (const Endless& kind : kEndless) {
    SCOPED_TRACE(kind.name);
    Walkers walkers = walkersOnCycle(kind.withMemory);
    const StopSource source;
    WalkOptions options = endlessly(kind);
    options.progress.stop = source.token();
    options.progress.observer = [&](std::uint64_t, std::uint64_t) { source.requestStop(); };
    const WalkOutcome outcome = walkers.walk(options).value();
    EXPECT_EQ(outcome.end, WalkEnd::kStopped);
    EXPECT_GT(outcome.steps, 0U);
    expectSteps(walkers, outcome.steps);
  }
}

TEST(ParallelWalk, PassesOnWhatAnObserverThrows) {
  for (const Endless& kind : kEndless) {
    SCOPED_TRACE(kind.name);
    Walkers walkers = walkersOnCycle(kind.withMemory);
    WalkOptions options = endlessly(kind);
    std::uint64_t done = 0;
    options.progress.observer = [&](std::uint64_t steps, std::uint64_t) {
      done = steps;
      throw std::runtime_error("enough");
    };
    EXPECT_THROW((void)walkers.walk(options), std::runtime_error);
    expectSteps(walkers, done);
  }
}

// Several groups on one network, each with helpers of its own.
TEST(ParallelWalk, SeveralMayRunAtOnce) {
  const Network network = someNetwork();
  const Story alone = storyOf(network, kKinds[0], 1);
  std::array<std::optional<Story>, 3> stories;
  inThreads(3, [&](int number) {
    stories[static_cast<std::size_t>(number)] = storyOf(network, kKinds[0], 2);
  });
  for (const auto& story : stories) EXPECT_TRUE(*story == alone);
}

}  // namespace
}  // namespace veq::test::parallel_walk_test
