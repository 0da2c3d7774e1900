#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/literal_models.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/network/network.hpp"

namespace veq::network_models_test {
namespace {

using test::EdgeList;
using test::LiteralGenerator;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

void seed(std::uint32_t value) {
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(value);
}

std::uint32_t nextDraw() {
  return static_cast<std::uint32_t>(VEQRandomGenerator::sharedRandomGenerator()->randomInteger());
}

// The draw number `skipped` + 1 after a seed.
std::uint32_t drawAfter(std::uint32_t seedValue, Uint128 skipped) {
  internal::RandomStream stream = internal::RandomStream::seeded(seedValue);
  stream.advance(skipped);
  return stream.next();
}

EdgeList edgesOf(const VEQNetwork& network) {
  EdgeList edges;
  for (const VEQEdge& edge : network.edges()) {
    edges.emplace_back(edge.fromVertex()->identification(), edge.toVertex()->identification());
  }
  return edges;
}

Owned<VEQNetwork> barabasi(std::uint64_t initial, std::uint64_t growth, std::uint64_t iterations) {
  return VEQNetwork::initBarabasiNetworkWithInitialVertices_degreeGrowth_iterations(initial, growth,
                                                                                    iterations);
}

Owned<VEQNetwork> randomNetwork(std::uint64_t count, double degree) {
  return VEQNetwork::initRandomNetworkWithNumberOfVertices_degree(count, degree);
}

// After srandom(1) the C library draws 1804289383, 846930886, 1681692777, 1714636915, 1957747793,
// 424238335, 719885386, 1649760492, 596516649, ... The quotients by 2147483647 are 0.8402, 0.3944,
// 0.7831, 0.7984, 0.9116, 0.1976, 0.3352, 0.7682, 0.2778.

TEST(PreferentialAttachment, GrowsTheTreeOfSeedOne) {
  seed(1);
  const auto network = barabasi(1, 1, 4);
  // The pool is 0; then 0 0 1; then, round(2 x 0.3944) = 1 having chosen 0, 0 0 1 0 2; then
  // round(4 x 0.7831) = 3 chooses 0, whose pool of seven ends in 0 3; round(6 x 0.7984) = 5
  // chooses 0 again.
  EXPECT_EQ(edgesOf(*network), (EdgeList{{1, 0}, {2, 0}, {3, 0}, {4, 0}}));
  EXPECT_EQ(network->countVertices(), 5u);
  EXPECT_FALSE(network->isDirected());
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_EQ(nextDraw(), 1957747793u);
}

TEST(PreferentialAttachment, AChosenTargetJoinsThePoolAtOnceAndRejectionsUseUpDraws) {
  seed(1);
  const auto network = barabasi(3, 3, 1);
  // Pool 0 1 2: round(2 x 0.8402) = 2 chooses 2. Pool 0 1 2 2: round(3 x 0.3944) = 1 chooses 1.
  // Pool 0 1 2 2 1: round(4 x q) is 3, 3, 4, 1, 1, 3, 1 for the next seven quotients, which choose
  // 2, 2, 1, 1, 1, 2, 1, all known.
  const EdgeList edges = edgesOf(*network);
  ASSERT_EQ(edges.size(), 3u);
  EXPECT_EQ(edges, (EdgeList{{3, 2}, {3, 1}, {3, 0}}));
  EXPECT_EQ(network->countVertices(), 4u);
  // Two draws chose; the third choice needs a quotient below 1/8, and none of the seven is.
  LiteralGenerator generator(1);
  int used = 2;
  for (int i = 0; i < 2; ++i) generator.draw();
  do ++used;
  while (generator.draw() / 2147483647.0 >= 0.125);
  EXPECT_GT(used, 9);
  EXPECT_EQ(nextDraw(), generator.draw());
}

TEST(PreferentialAttachment, EqualsTheLiteralFormForManyShapesAndSeeds) {
  for (std::uint32_t value = 1; value <= 6; ++value) {
    for (std::uint64_t initial = 1; initial <= 9; ++initial) {
      for (std::uint64_t growth = 1; growth <= initial; ++growth) {
        for (const std::uint64_t iterations : {1u, 2u, 7u, 60u}) {
          seed(value);
          const auto network = barabasi(initial, growth, iterations);
          LiteralGenerator generator(value);
          EXPECT_EQ(edgesOf(*network),
                    test::literalPreferentialAttachment(generator, initial, growth, iterations));
          EXPECT_EQ(network->countVertices(), initial + iterations);
          EXPECT_EQ(nextDraw(), generator.draw())
              << value << " " << initial << " " << growth << " " << iterations;
        }
      }
    }
  }
}

TEST(PreferentialAttachment, EqualsTheLiteralFormBeyondOneBlockOfDraws) {
  seed(77);
  const auto network = barabasi(5, 3, 900);
  LiteralGenerator generator(77);
  EXPECT_EQ(edgesOf(*network), test::literalPreferentialAttachment(generator, 5, 3, 900));
  EXPECT_EQ(nextDraw(), generator.draw());
}

// The first draw of seed 996 is 1987296140, and 5743043 x 1987296140 / 2147483647 lies 2^-32 below
// 5314651.5, which is the double that the product gives.
TEST(PreferentialAttachment, AHalfChoosesTheHigherEntry) {
  seed(996);
  EXPECT_EQ(edgesOf(*barabasi(5743044, 1, 1)), (EdgeList{{5743044, 5314652}}));
}

TEST(PreferentialAttachment, HasNoSelfLoopsAndNoParallelEdges) {
  seed(3);
  const auto network = barabasi(60, 50, 100);
  std::set<std::pair<std::uint64_t, std::uint64_t>> seen;
  for (const auto& [from, to] : edgesOf(*network)) {
    EXPECT_LT(to, from);
    EXPECT_TRUE(seen.emplace(from, to).second);
  }
  EXPECT_EQ(seen.size(), 5000u);
}

TEST(PreferentialAttachment, WithoutGrowthOrIterationsGivesOneVertexAndDrawsNothing) {
  for (const auto& network : {barabasi(5, 0, 4), barabasi(5, 3, 0), barabasi(0, 0, 0),
                              barabasi(0, 7, 0), barabasi(0, 0, UINT64_MAX)}) {
    ASSERT_TRUE(network);
    EXPECT_EQ(network->countVertices(), 1u);
    EXPECT_EQ(network->countEdges(), 0u);
  }
  seed(1);
  static_cast<void>(barabasi(5, 0, 4));
  static_cast<void>(barabasi(5, 3, 0));
  EXPECT_EQ(nextDraw(), 1804289383u);
}

TEST(PreferentialAttachment, ThatCouldNeverFinishOrFitGivesNoNetworkAndDrawsNothing) {
  seed(1);
  EXPECT_FALSE(barabasi(2, 3, 1));
  EXPECT_FALSE(barabasi(0, 1, 1));
  EXPECT_FALSE(barabasi(UINT64_MAX, UINT64_MAX, UINT64_MAX));
  EXPECT_FALSE(barabasi(1, 1, UINT64_MAX));
  EXPECT_FALSE(barabasi(UINT64_MAX, 1, 1));
  EXPECT_FALSE(barabasi(4, 4, std::uint64_t{1} << 62));
  EXPECT_EQ(nextDraw(), 1804289383u);
}

TEST(PreferentialAttachment, FromSizeAndDegreeTakesHalfTheDegree) {
  const auto make = [](std::uint64_t count, std::uint64_t degree) {
    return VEQNetwork::barabasiNetworkWitNumberOfVertices_approximateDegree(count, degree);
  };
  seed(8);
  const auto network = make(100, 4);
  EXPECT_EQ(network->countVertices(), 100u);
  EXPECT_EQ(network->countEdges(), 196u);
  seed(8);
  EXPECT_EQ(
      edgesOf(*network),
      edgesOf(*VEQNetwork::barabasiNetworkWithInitialVertices_degreeGrowth_iterations(2, 2, 98)));
  EXPECT_EQ(make(100, 5)->countEdges(), 196u);
  for (const auto& single : {make(3, 10), make(3, 6), make(10, 1), make(0, 4), make(0, 0),
                             make(0, UINT64_MAX), make(7, UINT64_MAX)}) {
    EXPECT_EQ(single->countVertices(), 1u);
    EXPECT_EQ(single->countEdges(), 0u);
  }
  EXPECT_EQ(make(4, 6)->countEdges(), 3u);
}

TEST(RandomNetwork, LinksThePairsOfSeedOneAndDrawsWholeBatches) {
  seed(1);
  // p = 0.5, batches of 4 x 2 + 1 = 9. Draws x 2^-31: 0.840 0.394 0.783 0.798 0.912 0.198 for the
  // pairs 01 02 03 12 13 23.
  const auto network = randomNetwork(4, 2);
  EXPECT_EQ(edgesOf(*network), (EdgeList{{0, 2}, {2, 3}}));
  EXPECT_EQ(network->countVertices(), 4u);
  EXPECT_FALSE(network->isDirected());
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_EQ(nextDraw(), drawAfter(1, 9));
}

// The first draw is 1804289383, and half the degree is the probability that a pair is linked.
TEST(RandomNetwork, LinksAPairWhoseDrawLiesBelowByAFraction) {
  for (const double threshold : {1804289384.0, 1804289383.5, 1804289383.25}) {
    seed(1);
    EXPECT_EQ(edgesOf(*randomNetwork(2, threshold / 0x1p30)), (EdgeList{{0, 1}})) << threshold;
  }
  seed(1);
  EXPECT_EQ(edgesOf(*randomNetwork(2, 1804289383.0 / 0x1p30)), EdgeList());
}

TEST(RandomNetwork, HasNoVerticesAboveTheLastOneThatIsLinked) {
  seed(1);
  // p = 1 / 3, batches of 4: 01 and 02 and 12 draw 0.840 0.394 0.783.
  const auto network = randomNetwork(3, 1);
  EXPECT_EQ(network->countVertices(), 1u);
  EXPECT_EQ(network->countEdges(), 0u);
  EXPECT_EQ(nextDraw(), 1957747793u);
}

TEST(RandomNetwork, EqualsTheLiteralFormForManyShapesAndSeeds) {
  for (std::uint32_t value = 1; value <= 12; ++value) {
    for (const std::uint64_t n : {0u, 1u, 2u, 3u, 4u, 7u, 20u, 61u}) {
      for (const double degree : {0.0, 0.01, 0.3, 0.5, 1.0, 2.0, 2.7, 6.0, 60.0, 61.0, 500.0}) {
        seed(value);
        const auto network = randomNetwork(n, degree);
        LiteralGenerator generator(value);
        const EdgeList expected = test::literalRandomNetwork(generator, n, degree);
        EXPECT_EQ(edgesOf(*network), expected);
        std::uint64_t last = 0;
        for (const auto& [from, to] : expected) last = std::max(last, to);
        EXPECT_EQ(network->countVertices(), last + 1);
        EXPECT_EQ(nextDraw(), generator.draw()) << value << " " << n << " " << degree;
      }
    }
  }
}

TEST(RandomNetwork, EqualsTheLiteralFormWhereHitsAreRareAndMany) {
  for (const double degree : {1e-3, 3.0, 700.0}) {
    seed(5);
    const auto network = randomNetwork(1500, degree);
    LiteralGenerator generator(5);
    EXPECT_EQ(edgesOf(*network), test::literalRandomNetwork(generator, 1500, degree));
    EXPECT_EQ(nextDraw(), generator.draw());
  }
}

TEST(RandomNetwork, DrawsOneBatchForNoPairAndAnotherWhenOneIsUsedUp) {
  const auto drawsOf = [](std::uint64_t n, double degree, std::uint64_t expected) {
    seed(6);
    EXPECT_TRUE(randomNetwork(n, degree));
    EXPECT_EQ(nextDraw(), drawAfter(6, expected)) << n << " " << degree;
  };
  drawsOf(0, 0, 1);
  drawsOf(0, 5, 1);
  drawsOf(1, 0, 1);
  drawsOf(1, 5.5, 6);
  drawsOf(2, 0, 2);     // one pair uses up a batch of one
  drawsOf(3, 0, 4);     // three pairs, three batches, and the one begun
  drawsOf(3, 1, 4);     // three pairs of a batch of four
  drawsOf(5, 0.8, 15);  // ten pairs use up two batches of five
}

TEST(RandomNetwork, WithADegreeOfAllOrMoreLinksEveryPair) {
  for (const double degree : {4.0, 5.0, 1e300, kInfinity}) {
    seed(2);
    EXPECT_EQ(edgesOf(*randomNetwork(4, degree)),
              (EdgeList{{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}}))
        << degree;
  }
}

TEST(RandomNetwork, BatchesUpTo64BitsAreAccountedFor) {
  seed(4);
  EXPECT_TRUE(randomNetwork(2, 0x1p62));  // 2^63: the conversion's unsigned path
  EXPECT_EQ(nextDraw(), drawAfter(4, std::uint64_t{1} << 63));
  seed(4);
  EXPECT_TRUE(randomNetwork(2, kInfinity));
  EXPECT_EQ(nextDraw(), drawAfter(4, UINT64_MAX));
}

TEST(RandomNetwork, WithANegativeOrUndefinedDegreeLinksNothingAndEnds) {
  for (const double degree : {-0.0, -1e-300, -0.4, -0.5, -1.0, -100.0, -1e300, -kInfinity, kNaN}) {
    const auto network = randomNetwork(3, degree);
    ASSERT_TRUE(network) << degree;
    EXPECT_EQ(network->countVertices(), 1u);
    EXPECT_EQ(network->countEdges(), 0u);
  }
  seed(1);
  static_cast<void>(randomNetwork(2, -0.5));  // a batch of none
  EXPECT_EQ(nextDraw(), 1804289383u);
}

TEST(RandomNetwork, OfAnyNumberOfVerticesWithoutLinksEndsAtOnce) {
  for (const double degree : {0.0, -1.0, kNaN}) {
    const auto network = randomNetwork(UINT64_MAX, degree);
    ASSERT_TRUE(network);
    EXPECT_EQ(network->countVertices(), 1u);
  }
}

TEST(RandomNetwork, ThatMemoryCannotHoldIsNotMadeAndDrawsNothing) {
  seed(1);
  EXPECT_FALSE(randomNetwork(UINT64_MAX, kInfinity));
  EXPECT_FALSE(randomNetwork(std::uint64_t{1} << 40, 1e11));
  EXPECT_EQ(nextDraw(), 1804289383u);
}

TEST(ModelsWithoutABody, GiveNoNetwork) {
  const auto any = barabasi(1, 1, 1);
  EXPECT_FALSE(VEQNetwork::initGeographicalNetworkWithNetwork_maximumDistance(*any, 1));
  EXPECT_FALSE(
      VEQNetwork::initGeographicalNetworkWithNetwork_positions_maximumDistance(*any, nullptr, 1));
  EXPECT_FALSE(VEQNetwork::initRegularNetworkWithNumberOfVertices_bordered(9, true));
  EXPECT_FALSE(
      VEQNetwork::initWattzStrogatzNetworkWithNumberOfVertices_degree_reconnectionProbability(9, 2,
                                                                                              0.5));
  EXPECT_FALSE(VEQNetwork::geographicalNetworkWithNetwork_maximumDistance(*any, 1));
  EXPECT_FALSE(
      VEQNetwork::geographicalNetworkWithNetwork_positions_maximumDistance(*any, nullptr, 1));
  EXPECT_FALSE(VEQNetwork::regularNetworkWithNumberOfVertices_bordered(9, true));
  EXPECT_FALSE(VEQNetwork::wattzStrogatzNetworkWithNumberOfVertices_degree_reconnectionProbability(
      9, 2, 0.5));
}

TEST(Merging, FailsAtOnce) {
  const auto message = [](auto f) -> std::string {
    try {
      f();
    } catch (const std::logic_error& error) {
      return error.what();
    }
    return "nothing thrown";
  };
  EXPECT_EQ(message([] { VEQNetwork::initByMergingNetworksInArray({}); }),
            "Networks cannot be merged.");
  EXPECT_EQ(message([] { VEQNetwork::networkByMergingNetworksInArray({nullptr}); }),
            "Networks cannot be merged.");
}

}  // namespace
}  // namespace veq::network_models_test
