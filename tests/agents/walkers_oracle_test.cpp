// Walks of every choice against their literal form, on random networks and through random
// histories.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/literal_walkers.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "veq/walkers.hpp"

namespace veq::test::walkers_oracle_test {
namespace {

using Draw = std::mt19937_64;

std::uint64_t below(Draw& draw, std::uint64_t n) { return draw() % n; }

// Loops and parallel edges occur by themselves, and some vertices have no edges.
LiteralWalkers randomWalkers(Draw& draw) {
  static constexpr std::uint64_t kVertices[] = {1, 2, 3, 7, 20, 60};
  static constexpr std::uint64_t kAgents[] = {0, 1, 2, 5, 30, 300};
  static constexpr double kRestarts[] = {0.0, 0.0, 0.1, 1.0, 1e-12};
  LiteralWalkers walkers;
  const std::uint64_t n = kVertices[below(draw, std::size(kVertices))];
  const std::uint64_t linked = std::max<std::uint64_t>(1, n - n / 6);
  walkers.network = {n, below(draw, 2) == 0, {}, {}};
  const bool weighted = below(draw, 4) != 0;
  for (std::uint64_t e = below(draw, 4 * n); e > 0; --e) {
    walkers.network.from.push_back(below(draw, linked));
    walkers.network.to.push_back(below(draw, linked));
    if (!weighted) continue;
    // Floats, many of them 0 and some far larger than others.
    static constexpr float kWeights[] = {0.0F, 0.0F, 1.0F, 0.3F, 7.5F, 1e-30F, 1e20F};
    walkers.weights.push_back(static_cast<double>(kWeights[below(draw, std::size(kWeights))]));
  }
  walkers.starts.resize(kAgents[below(draw, std::size(kAgents))]);
  for (auto& start : walkers.starts) start = below(draw, n);
  if (below(draw, 2) == 0) {
    for (std::size_t a = 0; a < walkers.starts.size(); ++a) {
      walkers.memorySizes.push_back(1 + below(draw, 6));
      walkers.errors.push_back(below(draw, 3) == 0 ? 0.25F : 0.0F);
    }
  }
  walkers.choice = static_cast<Choice>(below(draw, 3));
  walkers.restart = kRestarts[below(draw, std::size(kRestarts))];
  walkers.begin();
  return walkers;
}

Walkers build(const LiteralWalkers& literal, bool wide) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::size_t e = 0; e < literal.network.from.size(); ++e) {
    edges.emplace_back(literal.network.from[e], literal.network.to[e]);
  }
  const Network network(wide ? networkOf(literal.network.n, edges, literal.network.directed, 0)
                             : networkOf(literal.network.n, edges, literal.network.directed));
  if (!literal.weights.empty()) {
    std::vector<float> weights;
    for (const double weight : literal.weights) weights.push_back(static_cast<float>(weight));
    network.published()->setEdgesWeightValues(
        *VEQNumberArray::initWithFloatArray_count(weights.data(), weights.size()));
  }
  if (literal.memorySizes.empty()) return Walkers::at(network, literal.starts).value();
  return Walkers::withMemory(network, literal.starts, {literal.memorySizes, literal.errors, {}})
      .value();
}

// One walk of both, with all that it leads to.
void walkBoth(Draw& draw, LiteralWalkers& literal, Walkers& walkers) {
  static constexpr std::uint64_t kSteps[] = {0, 1, 2, 17, 100};
  static constexpr double kTargets[] = {0.0, 0.0, 0.3, 1.0};
  constexpr std::uint64_t kMost = 150;
  const auto seed = static_cast<std::uint32_t>(1 + below(draw, 1000000));
  const double target = kTargets[below(draw, std::size(kTargets))];
  WalkOptions options;
  // A walk without a number of steps has an end where the literal one has, or a stop.
  const bool endless = target > 0.0 && below(draw, 2) == 0;
  if (!endless) options.steps = kSteps[below(draw, std::size(kSteps))];
  if (target > 0.0) options.target = target;
  options.paths = !endless;
  options.firstArrivals = true;
  options.choice = literal.choice;
  options.restart = literal.restart;
  RandomState random = RandomState::seeded(seed).value();
  options.random = &random;
  const LiteralWalkers before = literal;
  literal.walk(seed, options.steps, target, kMost);
  if (endless && literal.steps == kMost) {  // it might go on for ever
    literal = before;
    return;
  }
  const WalkOutcome outcome = walkers.walk(options).value();
  ASSERT_EQ(outcome.steps, literal.steps);
  const std::uint64_t times = endless ? literal.steps : 1;
  ASSERT_EQ(random,
            RandomState::seeded(seed).value().after(walkers.drawsOfWalk(options).low * times));
  ASSERT_EQ(walkers.positions(), literal.positions);
  ASSERT_EQ(outcome.firstArrivals, literal.firstArrivals);
  Indices visits(literal.network.n);
  for (std::uint64_t a = 0; a < literal.starts.size(); ++a) {
    ASSERT_EQ(walkers.visits(a), literal.visits[a]);
    for (std::uint64_t v = 0; v < literal.network.n; ++v) visits[v] += literal.visits[a][v];
    for (std::uint64_t s = 0; outcome.paths && s < literal.steps; ++s) {
      const std::uint64_t to = literal.paths[a][s];
      const auto expected =
          to == LiteralWalkers::kNoStep ? std::nullopt : std::optional<std::uint64_t>(to);
      ASSERT_EQ(outcome.paths->arrival(a, s), expected) << a << " " << s;
    }
    if (literal.memorySizes.empty()) continue;
    ASSERT_EQ(walkers.remembered(a),
              Indices(literal.memories[a].begin(), literal.memories[a].end()));
  }
  ASSERT_EQ(walkers.visits(), visits);
}

TEST(WalkersOracle, AgreesForEveryChoiceWithAndWithoutMemoryAndRestarts) {
  Draw draw(20261122);
  for (int round = 0; round < rounds(400); ++round) {
    const SharedWork shared = SharedWork::inTurn(round);
    LiteralWalkers literal = randomWalkers(draw);
    const bool wide = below(draw, 3) == 0;
    SCOPED_TRACE(testing::Message()
                 << "round " << round << ", " << literal.network.n << " vertices, "
                 << literal.starts.size() << " agents, choice " << static_cast<int>(literal.choice)
                 << ", restart " << literal.restart << ", memory " << !literal.memorySizes.empty()
                 << ", wide " << wide);
    Walkers walkers = build(literal, wide);
    for (int walk = 0; walk < 4; ++walk) {
      walkBoth(draw, literal, walkers);
      if (HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace veq::test::walkers_oracle_test
