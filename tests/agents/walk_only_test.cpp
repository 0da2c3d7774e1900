// Walkers on walk-only networks: by values worked out for whole ones elsewhere, and beside walks of
// all kinds on the whole network.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/edge_sources.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/thrown_text.hpp"
#include "tests/support/walkers.hpp"
#include "veq/network.hpp"

namespace veq::test::walk_only_test {
namespace {

Walkers onSixLinks(const Indices& starts) {
  const WalkNetwork network =
      WalkNetwork::fromEdges(edgesFrom({{0, 1}, {0, 2}, {1, 2}, {2, 3}, {3, 0}, {1, 3}})).value();
  return Walkers::at(network, starts).value();
}

// The moves are those of Walkers.WalkAsWorkedOutElsewhere.
TEST(WalkOnly, WalksAsWorkedOutElsewhere) {
  Walkers walkers = onSixLinks({0, 2});
  RandomState random = seeded(12);
  WalkOptions options;
  options.steps = 12;
  options.firstArrivals = true;
  options.random = &random;
  const WalkOutcome outcome = walkers.walk(options).value();
  EXPECT_EQ(outcome.end, WalkEnd::kSteps);
  EXPECT_EQ(outcome.steps, 12U);
  EXPECT_FALSE(outcome.paths);
  EXPECT_EQ(walkers.positions(), (Indices{2, 3}));
  EXPECT_EQ(walkers.visits(), (Indices{4, 7, 8, 5}));
  EXPECT_EQ(outcome.firstArrivals, (Indices{6, 1, 2, 1}));
  EXPECT_EQ(random, seeded(12).after(24));
  EXPECT_EQ(walkers.drawsOfWalk(options), DrawCount(24));
}

TEST(WalkOnly, RestartsAsWorkedOutElsewhere) {
  Walkers walkers = onSixLinks({0, 2});
  RandomState random = seeded(12);
  WalkOptions options;
  options.steps = 12;
  options.firstArrivals = true;
  options.choice = Choice::kEven;
  options.restart = 0.25;
  options.random = &random;
  const WalkOutcome outcome = walkers.walk(options).value();
  EXPECT_EQ(walkers.positions(), (Indices{0, 2}));
  EXPECT_EQ(walkers.visits(), (Indices{9, 6, 6, 3}));
  EXPECT_EQ(outcome.firstArrivals, (Indices{1, 2, 1, 2}));
  EXPECT_EQ(random, seeded(12).after(48));
}

TEST(WalkOnly, AddsUpTotalsUntilTheyAreForgotten) {
  Walkers walkers = onSixLinks({0, 2});
  EXPECT_EQ(walkers.visits(), (Indices{0, 0, 0, 0}));
  RandomState random = seeded(12);
  WalkOptions options;
  options.steps = 12;
  options.random = &random;
  ASSERT_TRUE(walkers.walk(options));
  EXPECT_EQ(walkers.visits(), (Indices{4, 7, 8, 5}));
  options.steps = 5;
  ASSERT_TRUE(walkers.walk(options));
  std::uint64_t all = 0;
  for (const std::uint64_t visits : walkers.visits()) all += visits;
  EXPECT_EQ(all, 34U);
  EXPECT_TRUE(walkers.forget());
  EXPECT_EQ(walkers.visits(), (Indices{0, 0, 0, 0}));
}

TEST(WalkOnly, SaysWhatItLacks) {
  Walkers walkers = onSixLinks({0, 2});
  WalkOptions options;
  options.steps = 1;
  const auto lack = [&](const WalkOptions& how) {
    const auto outcome = walkers.walk(how);
    return outcome ? "none"
                   : (outcome.error().kind() == ErrorKind::kUnsupported ? "" : "otherwise: ") +
                         outcome.error().text();
  };
  WalkOptions paths = options;
  paths.paths = true;
  EXPECT_EQ(lack(paths),
            "paths are histories of single agents, which are not kept on a walk-only network");
  WalkOptions weighted = options;
  weighted.choice = Choice::kWeighted;
  EXPECT_EQ(lack(weighted), "a walk-only network has no weights to choose by");
  EXPECT_EQ(errorText(walkers.record(options)), "a record is of a Network, not of a walk-only one");
  const std::string single =
      "visits of single agents are not kept on a walk-only network, only those of all";
  EXPECT_EQ(thrownText<Error>([&] { (void)walkers.visits(1); }), single);
  EXPECT_EQ(thrownText<Error>([&] { (void)walkers.liveVisits(0); }), single);
  EXPECT_EQ(thrownText<Error>([&] { (void)walkers.published(); }),
            "agents on a walk-only network are no published group");
  EXPECT_TRUE(throwsOutOfRange([&] { (void)walkers.visits(2); }));
  EXPECT_EQ(walkers.remembered(1), Indices());
  EXPECT_EQ(walkers.positions(), (Indices{0, 2}));
}

TEST(WalkOnly, HasTheErrorsOfOtherWalks) {
  const WalkNetwork network = WalkNetwork::fromEdges(edgesFrom({{0, 4}})).value();
  EXPECT_EQ(errorText(Walkers::at(network, Indices{1, 7})), "start 1: vertex 7 of 5");
  Walkers walkers = Walkers::at(network, Indices{0}).value();
  EXPECT_EQ(errorText(walkers.walk({})), "neither steps nor target");
  WalkOptions options;
  options.target = 2.0;
  EXPECT_EQ(errorText(walkers.walk(options)), "target 2: give more than 0, up to 1");
  const WalkNetwork none = WalkNetwork::fromEdges(edgesFrom({})).value();
  EXPECT_EQ(errorText(Walkers::uniformStarts(none, 1)), "the network has no vertices");
  EXPECT_EQ(errorText(Walkers::startsByDegree(none, 1)), "the network has no edges");
}

TEST(WalkOnly, WalksWithoutAgentsAndWithoutEdges) {
  Walkers nobody = onSixLinks({});
  WalkOptions options;
  options.steps = 7;
  EXPECT_EQ(nobody.walk(options).value().steps, 7U);
  EXPECT_EQ(nobody.visits(), (Indices{0, 0, 0, 0}));
  WalkNetworkOptions five;
  five.vertices = 5;
  Walkers stuck =
      Walkers::at(WalkNetwork::fromEdges(edgesFrom({}), five).value(), Indices{3}).value();
  EXPECT_EQ(stuck.walk(options).value().steps, 7U);
  EXPECT_EQ(stuck.positions(), (Indices{3}));
  EXPECT_EQ(stuck.visits(), (Indices{0, 0, 0, 0, 0}));
  options.steps.reset();
  options.target = 1.0;
  EXPECT_EQ(stuck.walk(options).value().end, WalkEnd::kStuck);
}

TEST(WalkOnly, StopsAfterAWholeStep) {
  Walkers walkers = onSixLinks({0, 1, 2});
  const StopSource stop;
  stop.requestStop();
  WalkOptions options;
  options.steps = 100;
  options.progress.stop = stop.token();
  const WalkOutcome outcome = walkers.walk(options).value();
  EXPECT_EQ(outcome.end, WalkEnd::kStopped);
  EXPECT_EQ(outcome.steps, 0U);
  EXPECT_EQ(walkers.visits(), (Indices{0, 0, 0, 0}));
}

struct Kind {
  Choice choice;
  std::optional<std::uint64_t> steps;
  std::optional<double> target;
  double restart;
};

constexpr Kind kKinds[] = {
    {Choice::kPublished, 3000, std::nullopt, 0.0}, {Choice::kEven, 3000, std::nullopt, 0.01},
    {Choice::kPublished, 3000, 0.9, 0.02},         {Choice::kEven, 3000, 1.0, 0.0},
    {Choice::kEven, std::nullopt, 0.3, 0.05},      {Choice::kPublished, std::nullopt, 0.2, 0.1},
};

// All that two walks and the state behind them lead to.
struct Story {
  std::vector<std::uint64_t> steps;
  std::vector<WalkEnd> ends;
  std::vector<Indices> positions;
  std::vector<Indices> visits;
  std::vector<Indices> firstArrivals;
  RandomState random;
  friend bool operator==(const Story&, const Story&) = default;
};

template <class OfKind>
Story storyOf(const OfKind& network, const Kind& kind, unsigned threads) {
  Story story{{}, {}, {}, {}, {}, seeded(11)};
  // Some hundreds of agents, who fill several lines of the cache, and some who are few.
  for (const std::uint64_t agents : {100U, 3U, 1U}) {
    if (agents < 100 && !kind.steps) continue;  // they might never meet the target
    const Indices by = Walkers::startsByDegree(network, agents, &story.random).value();
    Indices starts = Walkers::uniformStarts(network, agents, &story.random).value();
    for (std::size_t a = 0; a < agents; a += 2) starts[a] = by[a];
    Walkers walkers = Walkers::at(network, starts).value();
    for (int walk = 0; walk < 2; ++walk) {
      WalkOptions options;
      options.steps = kind.steps;
      options.target = kind.target;
      options.firstArrivals = true;
      options.choice = kind.choice;
      options.restart = kind.restart;
      options.random = &story.random;
      options.threads = threads;
      const WalkOutcome outcome = walkers.walk(options).value();
      story.steps.push_back(outcome.steps);
      story.ends.push_back(outcome.end);
      story.firstArrivals.push_back(outcome.firstArrivals);
      story.positions.push_back(walkers.positions());
      story.visits.push_back(walkers.visits());
    }
  }
  return story;
}

Network randomNetwork(bool directed) {
  std::mt19937_64 draw(5);
  EdgePairs edges;
  for (int e = 0; e < 9000; ++e) {
    const std::uint64_t from = draw() % 2900;
    edges.emplace_back(from, draw() % 10 == 0 ? from : draw() % 2900);
  }
  BuildOptions options;
  options.directed = directed;
  options.vertices = 3000;
  return Network::build(edges, options).value();
}

TEST(WalkOnly, WalksBitByBitAsOnTheWholeNetwork) {
  for (const bool directed : {false, true}) {
    const Network whole = randomNetwork(directed);
    const WalkNetwork rows = WalkNetwork::of(whole).value();
    for (const Kind& kind : kKinds) {
      const Story onWhole = storyOf(whole, kind, 1);
      for (const unsigned threads : {1U, 2U, 3U}) {
        EXPECT_TRUE(storyOf(rows, kind, threads) == onWhole)
            << threads << " threads, kind " << &kind - kKinds << ", directed " << directed;
        const SharedWork shared(threads);
        EXPECT_TRUE(storyOf(rows, kind, threads) == onWhole)
            << threads << " sharing threads, kind " << &kind - kKinds;
      }
    }
  }
}

}  // namespace
}  // namespace veq::test::walk_only_test
