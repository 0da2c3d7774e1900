// What threads find out together, beside what one does.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/temporarily.hpp"
#include "veq/natural/internal/core_of.hpp"
#include "veq/questions.hpp"
#include "veq/questions/internal/rank_waves.hpp"

namespace veq::test {
namespace {

using internal::RankWaves;
using internal::VertexRange;

// As long as it lives, networks are cut into waves from one vertex on, and pieces have the least
// work that they are given.
class SmallWaves {
 public:
  explicit SmallWaves(std::uint64_t leastWork)
      : largeFrom_(RankWaves::largeFrom, std::uint64_t{1}),
        leastWork_(RankWaves::leastWork, leastWork) {}

 private:
  Temporarily<std::uint64_t> largeFrom_;
  Temporarily<std::uint64_t> leastWork_;
};

Network star(std::uint64_t leaves) {
  std::vector<std::uint64_t> from(leaves);
  std::vector<std::uint64_t> to(leaves);
  for (std::uint64_t leaf = 0; leaf < leaves; ++leaf) to[leaf] = leaf + 1;
  return Network::build(from, to).value();
}

// The centre is work enough for a piece, and leaves are of two vertices and entries each.
TEST(RankWavesTest, CutsAStar) {
  const SmallWaves waves(3);
  const Network network = star(70);
  const RankWaves cut(internal::coreOf(network));
  EXPECT_FALSE(cut.empty());
  EXPECT_EQ(cut.workOfWave(), 96U);
  EXPECT_EQ(cut.widest(), 63U);
  std::vector<std::vector<std::pair<std::uint64_t, std::uint64_t>>> found;
  cut.forEach([&](VertexRange wave, std::uint64_t count, const VertexRange* pieces) {
    EXPECT_EQ(wave.begin, pieces[0].begin);
    EXPECT_EQ(wave.end, pieces[count - 1].end);
    auto& of = found.emplace_back();
    for (std::uint64_t i = 0; i < count; ++i) of.emplace_back(pieces[i].begin, pieces[i].end);
  });
  ASSERT_EQ(found.size(), 2U);
  ASSERT_EQ(found[0].size(), 32U);
  EXPECT_EQ(found[0][0], std::pair(std::uint64_t{0}, std::uint64_t{1}));
  EXPECT_EQ(found[0][1], std::pair(std::uint64_t{1}, std::uint64_t{3}));
  EXPECT_EQ(found[0][31], std::pair(std::uint64_t{61}, std::uint64_t{63}));
  ASSERT_EQ(found[1].size(), 4U);
  EXPECT_EQ(found[1][0], std::pair(std::uint64_t{63}, std::uint64_t{65}));
  EXPECT_EQ(found[1][3], std::pair(std::uint64_t{69}, std::uint64_t{71}));
}

TEST(RankWavesTest, AreNotMadeOfSmallNetworks) {
  const Network network = star(70);
  EXPECT_TRUE(RankWaves(internal::coreOf(network)).empty());
}

struct Case {
  Network network;
  PageRankOptions options;
};

Case anyCase(std::mt19937_64& draw) {
  const std::uint64_t n = 1 + draw() % 300;
  const std::uint64_t m = draw() % (4 * n);
  std::vector<std::uint64_t> from(m);
  std::vector<std::uint64_t> to(m);
  std::vector<double> weights(draw() % 2 == 0 ? m : 0);
  for (std::uint64_t e = 0; e < m; ++e) {
    from[e] = draw() % n;
    to[e] = draw() % 3 == 0 ? (from[e] + 1) % n : draw() % n;
  }
  for (double& weight : weights) weight = static_cast<double>(draw() % 5);
  BuildOptions build{.vertices = n, .directed = draw() % 2 == 0};
  if (!weights.empty()) build.edgeWeights = weights;
  return {Network::build(from, to, build).value(), {.tolerance = 1e-12}};
}

// By definition: steps of the walk, from all vertices alike, until nothing changes.
std::vector<double> ranksByWalking(const Network& network) {
  const std::uint64_t n = network.countVertices();
  const std::vector<double> strengths = network.strengths(Direction::kOut);
  const std::vector<float> weights = network.edgeWeights();
  std::vector<double> ranks(n, 1.0 / static_cast<double>(n));
  const auto follow = [&](std::vector<double>& next, std::uint64_t a, std::uint64_t b, double w) {
    if (strengths[a] > 0) next[b] += 0.85 * ranks[a] * w / strengths[a];
  };
  for (int step = 0; step < 250; ++step) {
    std::vector<double> next(n);
    double restarting = 0.15;
    for (std::uint64_t v = 0; v < n; ++v) restarting += strengths[v] > 0 ? 0 : 0.85 * ranks[v];
    for (double& rank : next) rank = restarting / static_cast<double>(n);
    for (std::uint64_t e = 0; e < network.countEdges(); ++e) {
      const auto [a, b] = network.endsOf(e);
      const auto weight = static_cast<double>(weights[e]);
      follow(next, a, b, weight);
      if (!network.isDirected()) follow(next, b, a, weight);
    }
    ranks = next;
  }
  return ranks;
}

TEST(SharedPageRank, InWavesIsThatOfTheWalk) {
  std::mt19937_64 draw(11);
  for (int round = 0; round < rounds(60); ++round) {
    const SmallWaves waves(1 + draw() % 20);
    const Case one = anyCase(draw);
    const SharedWork shared = SharedWork::inTurn(round);
    const PageRank found = pageRank(one.network, one.options).value();
    EXPECT_TRUE(found.converged);
    const std::vector<double> walked = ranksByWalking(one.network);
    for (std::size_t v = 0; v < walked.size(); ++v) {
      ASSERT_NEAR(found.ranks[v], walked[v], 1e-11) << "round " << round << ", vertex " << v;
    }
  }
}

TEST(SharedPageRank, IsTheSameForAnyNumberOfThreads) {
  std::mt19937_64 draw(5);
  for (int round = 0; round < rounds(40); ++round) {
    const SmallWaves waves(1 + draw() % 20);
    const Case one = anyCase(draw);
    const PageRank alone = pageRank(one.network, one.options).value();
    const auto expectSame = [&] {
      const PageRank found = pageRank(one.network, one.options).value();
      EXPECT_EQ(found.ranks, alone.ranks) << "round " << round;
      EXPECT_EQ(found.sweeps, alone.sweeps);
      EXPECT_EQ(found.error, alone.error);
    };
    for (const unsigned threads : {2U, 3U, 7U, 16U, 64U}) {
      const SharedWork shared(threads);
      expectSame();
    }
    const SharedWork reverse(7, SharedWork::InReverse());
    expectSame();
  }
}

TEST(SharedDistances, AreThoseOfOneThread) {
  std::mt19937_64 draw(8);
  for (int round = 0; round < rounds(40); ++round) {
    const Network network = anyCase(draw).network;
    DistanceOptions options;
    if (round % 2 == 0) options.mostVisits = 1 + draw() % 20'000;
    const DistanceHistogram alone = distanceHistogram(network, options).value();
    for (const unsigned threads : {2U, 7U, 64U}) {
      const SharedWork shared(threads);
      const DistanceHistogram found = distanceHistogram(network, options).value();
      EXPECT_EQ(found.pairs, alone.pairs) << "round " << round;
      EXPECT_EQ(found.unreachablePairs, alone.unreachablePairs);
      EXPECT_EQ(found.sources, alone.sources);
    }
  }
}

// 0 - 1 - 2 - ... - 9: at distance d are 10 - d pairs, each counted from both of its ends.
TEST(SharedDistances, OfAPath) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < 9; ++v) edges.emplace_back(v, v + 1);
  const Network path = Network::build(edges).value();
  const SharedWork shared(3);
  EXPECT_EQ(distanceHistogram(path).value().pairs,
            (std::vector<std::uint64_t>{10, 18, 16, 14, 12, 10, 8, 6, 4, 2}));
}

}  // namespace
}  // namespace veq::test
