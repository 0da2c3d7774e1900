#include "veq/models/model_networks.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/rounds.hpp"
#include "veq/models/internal/edge_set.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::model_networks_test {
namespace {

using Edges = std::vector<std::pair<std::uint64_t, std::uint64_t>>;
using Sizes = std::vector<std::uint64_t>;
using Probabilities = std::vector<double>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ModelOptions seed(std::uint64_t value) {
  ModelOptions options;
  options.seed = value;
  return options;
}

Edges edgesOf(const Network& network) {
  Edges edges;
  for (const VEQEdge& edge : network.published()->edges()) {
    edges.emplace_back(edge.fromVertex()->identification(), edge.toVertex()->identification());
  }
  return edges;
}
Edges edgesOf(const Result<Network>& result) { return edgesOf(result.value()); }

std::string textOf(const Result<Network>& result) {
  return result ? "(a network)" : result.error().text();
}

// The sum of (i + 1) (1000 a + b) over all edges, modulo 2^32.
std::uint64_t digest(const Edges& edges) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    sum += (i + 1) * (edges[i].first * 1000 + edges[i].second);
  }
  return sum % (std::uint64_t{1} << 32);
}

Sizes degreesOf(const Network& network) {
  Sizes degrees(network.countVertices());
  for (const auto& [a, b] : edgesOf(network)) {
    ++degrees[a];
    ++degrees[b];
  }
  return degrees;
}

bool isSimple(const Network& network) {
  Edges edges = edgesOf(network);
  for (auto& [a, b] : edges) {
    if (a == b) return false;
    if (b < a) std::swap(a, b);
  }
  std::sort(edges.begin(), edges.end());
  return std::adjacent_find(edges.begin(), edges.end()) == edges.end();
}

Network ring(std::uint64_t n, bool directed = false) {
  Sizes from(n);
  Sizes to(n);
  for (std::uint64_t v = 0; v < n; ++v) {
    from[v] = v;
    to[v] = (v + 1) % n;
  }
  return Network(VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed(
      VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), directed));
}

// All seeded edges here come from a second program in another language, which does what the laws
// say step by step: with lists of all pairs, skips by logarithms of 120 digits, and the recurrence
// of the generator written anew.

TEST(GnpNetwork, IsThatOfItsLaw) {
  const Network network = gnpNetwork(8, 0.3, seed(1)).value();
  EXPECT_EQ(
      edgesOf(network),
      (Edges{{0, 1}, {0, 2}, {0, 3}, {0, 7}, {1, 5}, {2, 3}, {2, 6}, {2, 7}, {3, 5}, {5, 6}}));
  EXPECT_EQ(network.countVertices(), 8u);
  EXPECT_FALSE(network.isDirected());
  const Network directed = gnpNetwork(5, 0.3, seed(2), true).value();
  EXPECT_EQ(edgesOf(directed), (Edges{{0, 1}, {1, 4}, {2, 3}, {3, 0}, {3, 2}, {3, 4}, {4, 3}}));
  EXPECT_TRUE(directed.isDirected());
  const Edges sparse = edgesOf(gnpNetwork(300, 0.02, seed(11)));
  EXPECT_EQ(sparse.size(), 893u);
  EXPECT_EQ(digest(sparse), 3859135540u);
  const Edges dense = edgesOf(gnpNetwork(60, 0.5, seed(12)));
  EXPECT_EQ(dense.size(), 900u);
  EXPECT_EQ(digest(dense), 2576933931u);
}

TEST(GnpNetwork, HasAllVerticesWhateverTheEdges) {
  EXPECT_EQ(gnpNetwork(1, 0.5, seed(1)).value().countVertices(), 1u);
  const Network empty = gnpNetwork(1000, 0.0, seed(1)).value();
  EXPECT_EQ(empty.countVertices(), 1000u);
  EXPECT_EQ(empty.countEdges(), 0u);
  EXPECT_EQ(gnpNetwork(2000000000, 0.0, seed(1)).value().countVertices(), 2000000000u);
  EXPECT_EQ(edgesOf(gnpNetwork(4, 1.0, seed(1))),
            (Edges{{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}}));
  EXPECT_EQ(gnpNetwork(4, 1.0, seed(1), true).value().countEdges(), 12u);
}

TEST(GnpNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(gnpNetwork(0, 0.5)), "n = 0: give at least 1");
  EXPECT_EQ(textOf(gnpNetwork(2147483649, 0.0)), "n = 2147483649: give at most 2147483648");
  EXPECT_EQ(textOf(gnpNetwork(5, 1.5)), "p = 1.5: give 0 to 1");
  EXPECT_EQ(textOf(gnpNetwork(5, -1e-9)), "p = -1e-09: give 0 to 1");
  EXPECT_EQ(textOf(gnpNetwork(5, kNaN)), "p = nan: give 0 to 1");
  const auto large = gnpNetwork(4000000, 1.0);
  EXPECT_EQ(textOf(large), "n = 4000000, p = 1: about 7999998000000 edges, more than memory holds");
  EXPECT_EQ(large.error().kind(), ErrorKind::kMemory);
}

TEST(GnmNetwork, IsThatOfItsLaw) {
  EXPECT_EQ(edgesOf(gnmNetwork(7, 6, seed(1))),
            (Edges{{0, 6}, {1, 3}, {1, 6}, {3, 5}, {3, 6}, {4, 6}}));
  // Two of ten pairs are left out.
  EXPECT_EQ(edgesOf(gnmNetwork(5, 8, seed(1))),
            (Edges{{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {3, 4}}));
}

TEST(GnmNetwork, HasExactlySoManyEdges) {
  for (std::uint64_t m = 0; m <= 45; ++m) {
    const Network network = gnmNetwork(10, m, seed(m + 1)).value();
    EXPECT_EQ(network.countEdges(), m);
    EXPECT_EQ(network.countVertices(), 10u);
    EXPECT_TRUE(isSimple(network));
  }
  EXPECT_EQ(gnmNetwork(10, 90, seed(1), true).value().countEdges(), 90u);
  EXPECT_EQ(gnmNetwork(1, 0, seed(1)).value().countVertices(), 1u);
}

TEST(GnmNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(gnmNetwork(4, 7)), "m = 7: give at most 6, the pairs of 4 vertices");
  EXPECT_EQ(textOf(gnmNetwork(4, 13, {}, true)),
            "m = 13: give at most 12, the pairs of 4 vertices");
  EXPECT_EQ(textOf(gnmNetwork(1, 1)), "m = 1: give at most 0, the pairs of 1 vertex");
  EXPECT_EQ(textOf(gnmNetwork(0, 0)), "n = 0: give at least 1");
  EXPECT_EQ(gnmNetwork(2147483648, 1ULL << 60).error().kind(), ErrorKind::kMemory);
}

TEST(BarabasiAlbertNetwork, IsThatOfItsLaw) {
  EXPECT_EQ(
      edgesOf(barabasiAlbertNetwork(7, 2, seed(1))),
      (Edges{{2, 0}, {2, 1}, {3, 1}, {3, 2}, {4, 3}, {4, 2}, {5, 1}, {5, 2}, {6, 2}, {6, 3}}));
  EXPECT_EQ(edgesOf(barabasiAlbertNetwork(6, 1, seed(3))),
            (Edges{{1, 0}, {2, 0}, {3, 2}, {4, 2}, {5, 0}}));
  // So many targets that they are marked, not looked through.
  EXPECT_EQ(digest(edgesOf(barabasiAlbertNetwork(200, 30, seed(5)))), 3258066717u);
}

TEST(BarabasiAlbertNetwork, IsSimple) {
  for (const std::uint64_t m : {1U, 3U, 24U, 25U, 40U}) {
    const Network network = barabasiAlbertNetwork(100, m, seed(m)).value();
    EXPECT_EQ(network.countEdges(), m * (100 - m));
    EXPECT_TRUE(isSimple(network));
  }
  EXPECT_EQ(barabasiAlbertNetwork(5, 0, seed(1)).value().countEdges(), 0u);
  EXPECT_EQ(barabasiAlbertNetwork(5, 4, seed(1)).value().countEdges(), 4u);
}

TEST(BarabasiAlbertNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(barabasiAlbertNetwork(4, 4)), "m = 4: give at most n - 1 = 3");
  EXPECT_EQ(textOf(barabasiAlbertNetwork(0, 0)), "n = 0: give at least 1");
  EXPECT_EQ(barabasiAlbertNetwork(2000000000, 1000000000).error().kind(), ErrorKind::kMemory);
}

TEST(PublishedTwins, GiveTheSameNetworksFromAnySource) {
  VEQRandomGenerator& shared = *VEQRandomGenerator::sharedRandomGenerator();
  shared.setRandomSeed(11);
  const auto grown = VEQNetwork::barabasiNetworkWitNumberOfVertices_approximateDegree(200, 7);
  const RandomState afterGrowing = shared.state();
  const auto drawn = VEQNetwork::randomNetworkWithNumberOfVertices_degree(200, 3.5);
  const RandomState afterBoth = shared.state();

  RandomState state = RandomState::seeded(11).value();
  ModelOptions options;
  options.random = &state;
  EXPECT_EQ(edgesOf(preferentialAttachmentNetwork(200, 7, options)), edgesOf(Network(grown)));
  EXPECT_EQ(state, afterGrowing);
  EXPECT_EQ(edgesOf(uniformRandomNetwork(200, 3.5, options)), edgesOf(Network(drawn)));
  EXPECT_EQ(state, afterBoth);
  EXPECT_EQ(edgesOf(preferentialAttachmentNetwork(200, 7, seed(11))), edgesOf(Network(grown)));
  EXPECT_EQ(shared.state(), afterBoth);
  shared.setRandomSeed(11);
  EXPECT_EQ(edgesOf(preferentialAttachmentNetwork(200, 7)), edgesOf(Network(grown)));
  EXPECT_EQ(shared.state(), afterGrowing);
}

TEST(PublishedTwins, SayWhatIsWrong) {
  EXPECT_EQ(preferentialAttachmentNetwork(0, 6, seed(1)).value().countVertices(), 1u);
  EXPECT_EQ(preferentialAttachmentNetwork(9, 1, seed(1)).value().countVertices(), 1u);
  // The number of vertices follows from the edges, and without any it is 1.
  EXPECT_EQ(uniformRandomNetwork(0, 6, seed(1)).value().countVertices(), 1u);
  EXPECT_EQ(textOf(uniformRandomNetwork(5, 6, seed(0))), textOf(gnpNetwork(5, 0.5, seed(0))));
  // (2^40 - 3) x 3 edges.
  EXPECT_EQ(textOf(preferentialAttachmentNetwork(std::uint64_t{1} << 40, 6, seed(1))),
            "n = 1099511627776, degree = 6: about 3298534883319 edges, more than memory holds");
  RandomState part = RandomState::seeded(1).value().substream(0);
  part = part.after(*part.drawsLeft() - 10);
  const RandomState before = part;
  ModelOptions options;
  options.random = &part;
  EXPECT_FALSE(preferentialAttachmentNetwork(50, 4, options));
  EXPECT_FALSE(uniformRandomNetwork(50, 4, options));
  EXPECT_EQ(part, before);
}

TEST(ConfigurationNetwork, PairsTheEndsOfEdges) {
  const Network network =
      configurationNetwork(Sizes{3, 2, 2, 1}, DegreeLaw::kPairing, seed(1)).value();
  EXPECT_EQ(edgesOf(network), (Edges{{3, 2}, {2, 1}, {1, 0}, {0, 0}}));
  EXPECT_EQ(degreesOf(network), (Sizes{3, 2, 2, 1}));
  EXPECT_EQ(edgesOf(configurationNetwork(Sizes{4, 0, 1, 1, 2}, DegreeLaw::kPairing, seed(9))),
            (Edges{{4, 0}, {3, 4}, {0, 0}, {2, 0}}));
  EXPECT_EQ(configurationNetwork(Sizes{0, 0}).value().countVertices(), 2u);
}

TEST(ConfigurationNetwork, WithoutLoopsAndParallelEdges) {
  const Sizes given[] = {
      {3, 2, 2, 2, 1}, {5, 1, 1, 1, 1, 1}, {4, 4, 4, 4, 4}, {0, 0, 2, 2, 2}, {0}};
  for (const Sizes& degrees : given) {
    const Network network = configurationNetwork(degrees, DegreeLaw::kSimple, seed(3)).value();
    EXPECT_EQ(degreesOf(network), degrees);
    EXPECT_TRUE(isSimple(network));
  }
  Sizes many(500);
  for (std::size_t v = 0; v < many.size(); ++v) many[v] = 1 + (v * v) % 40;
  if ((std::count_if(many.begin(), many.end(), [](auto d) { return d % 2 == 1; })) % 2 == 1) {
    ++many[0];
  }
  const Network network = configurationNetwork(many, DegreeLaw::kSimple, seed(4)).value();
  EXPECT_EQ(degreesOf(network), many);
  EXPECT_TRUE(isSimple(network));
}

TEST(ConfigurationNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(configurationNetwork(Sizes{})), "degrees: no vertex, give at least one");
  EXPECT_EQ(textOf(configurationNetwork(Sizes{3, 2, 2})), "degrees: their sum 7 is odd");
  const char* const none = "degrees: no network without loops and parallel edges has them";
  EXPECT_EQ(textOf(configurationNetwork(Sizes{4, 1, 1}, DegreeLaw::kSimple)), none);
  EXPECT_EQ(textOf(configurationNetwork(Sizes{3, 3, 1, 1}, DegreeLaw::kSimple)), none);
  EXPECT_EQ(textOf(configurationNetwork(Sizes{2}, DegreeLaw::kSimple)), none);
  EXPECT_EQ(configurationNetwork(Sizes{1ULL << 60, 1ULL << 60}).error().kind(), ErrorKind::kMemory);
  EXPECT_EQ(configurationNetwork(Sizes{UINT64_MAX, UINT64_MAX, 2}).error().kind(),
            ErrorKind::kMemory);
}

TEST(WattsStrogatzNetwork, IsThatOfItsLaw) {
  EXPECT_EQ(edgesOf(wattsStrogatzNetwork(8, 2, 0.4, seed(1))), (Edges{{0, 3},
                                                                      {1, 2},
                                                                      {2, 7},
                                                                      {3, 7},
                                                                      {4, 5},
                                                                      {5, 2},
                                                                      {6, 7},
                                                                      {7, 4},
                                                                      {0, 2},
                                                                      {1, 3},
                                                                      {2, 4},
                                                                      {3, 2},
                                                                      {4, 6},
                                                                      {5, 3},
                                                                      {6, 2},
                                                                      {7, 5}}));
  EXPECT_EQ(edgesOf(wattsStrogatzNetwork(6, 1, 1.0, seed(2))),
            (Edges{{0, 2}, {1, 3}, {2, 1}, {3, 5}, {4, 2}, {5, 1}}));
  EXPECT_EQ(edgesOf(wattsStrogatzNetwork(5, 1, 0.0, seed(1))), edgesOf(ring(5)));
}

TEST(WattsStrogatzNetwork, StaysSimple) {
  for (const double p : {0.1, 0.5, 1.0}) {
    for (const std::uint64_t k : {1U, 3U, 9U}) {
      const Network network = wattsStrogatzNetwork(20, k, p, seed(k)).value();
      EXPECT_EQ(network.countEdges(), 20 * k);
      EXPECT_TRUE(isSimple(network)) << p << ", " << k;
    }
  }
  // Where every vertex is linked to all others nothing can be moved.
  EXPECT_EQ(edgesOf(wattsStrogatzNetwork(5, 2, 1.0, seed(1))),
            edgesOf(wattsStrogatzNetwork(5, 2, 0.0, seed(1))));
  EXPECT_EQ(wattsStrogatzNetwork(1, 0, 0.5, seed(1)).value().countEdges(), 0u);
}

TEST(WattsStrogatzNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(wattsStrogatzNetwork(10, 5, 0.1)), "k = 5: give at most (n - 1) / 2 = 4");
  EXPECT_EQ(textOf(wattsStrogatzNetwork(10, 2, 1.1)), "p = 1.1: give 0 to 1");
  EXPECT_EQ(textOf(wattsStrogatzNetwork(0, 0, 0.1)), "n = 0: give at least 1");
  EXPECT_EQ(wattsStrogatzNetwork(4000000000, 1000000000, 0.1).error().kind(), ErrorKind::kMemory);
}

TEST(LatticeNetwork, LinksNeighbours) {
  EXPECT_EQ(edgesOf(latticeNetwork(Sizes{3})), (Edges{{0, 1}, {1, 2}}));
  EXPECT_EQ(edgesOf(latticeNetwork(Sizes{3}, true)), (Edges{{0, 1}, {1, 2}, {2, 0}}));
  EXPECT_EQ(edgesOf(latticeNetwork(Sizes{2, 2})), (Edges{{0, 1}, {0, 2}, {1, 3}, {2, 3}}));
  // Two in a row are neighbours once.
  EXPECT_EQ(edgesOf(latticeNetwork(Sizes{3, 2}, true)),
            (Edges{{0, 1}, {0, 3}, {1, 2}, {1, 4}, {2, 0}, {2, 5}, {3, 4}, {4, 5}, {5, 3}}));
  const Network cube = latticeNetwork(Sizes{4, 5, 6}, true).value();
  EXPECT_EQ(cube.countVertices(), 120u);
  EXPECT_EQ(degreesOf(cube), Sizes(120, 6));
  EXPECT_TRUE(isSimple(cube));
  EXPECT_EQ(latticeNetwork(Sizes{4, 5, 6}).value().countEdges(), 90u + 96u + 100u);
  EXPECT_EQ(latticeNetwork(Sizes{1, 1}, true).value().countVertices(), 1u);
}

TEST(LatticeNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(latticeNetwork(Sizes{})), "sizes: none, give at least one");
  EXPECT_EQ(textOf(latticeNetwork(Sizes{3, 0})), "sizes[1] = 0: give at least 1");
  EXPECT_EQ(latticeNetwork(Sizes{1ULL << 40, 1ULL << 40}).error().kind(), ErrorKind::kMemory);
}

TEST(GeometricNetwork, IsThatOfItsLaw) {
  const Network network = geometricNetwork(8, 0.4, seed(1)).value();
  EXPECT_EQ(edgesOf(network),
            (Edges{{0, 2}, {1, 5}, {1, 7}, {3, 4}, {3, 5}, {3, 6}, {4, 5}, {4, 6}, {5, 6}}));
  const auto positions = std::dynamic_pointer_cast<VEQVector2dArray>(
      *network.published()->propertiesOfVertices()->find("Position"));
  ASSERT_TRUE(positions);
  EXPECT_EQ(positions->vectorAtIndex(0).x(), 1804289383 * 0x1p-31);
  EXPECT_EQ(positions->vectorAtIndex(0).y(), 846930886 * 0x1p-31);
  EXPECT_EQ(positions->vectorAtIndex(1).y(), 1714636915 * 0x1p-31);

  const Network cube = geometricNetwork(8, 0.6, seed(1), 3).value();
  EXPECT_EQ(
      edgesOf(cube),
      (Edges{{0, 1}, {0, 3}, {0, 7}, {1, 7}, {2, 3}, {2, 4}, {2, 5}, {2, 6}, {4, 6}, {5, 6}}));
  const auto places = std::dynamic_pointer_cast<VEQVector3dArray>(
      *cube.published()->propertiesOfVertices()->find("Position"));
  ASSERT_TRUE(places);
  EXPECT_EQ(places->vectorAtIndex(1).z(), 719885386 * 0x1p-31);
}

TEST(GeometricNetwork, FindsEveryPairWhateverTheCells) {
  for (const unsigned dimensions : {2u, 3u}) {
    for (const double radius : {0.0, 0.003, 0.05, 0.3, 0.9, 1.2, 2.0}) {
      const Network network = geometricNetwork(300, radius, seed(6), dimensions).value();
      RandomState state = RandomState::seeded(6).value();
      std::vector<std::vector<double>> places(300);
      for (auto& place : places) {
        for (unsigned d = 0; d < 2 * (dimensions - 1); ++d) place.push_back(state.nextDouble());
        place.resize(dimensions);
      }
      Edges expected;
      for (std::uint64_t a = 0; a < 300; ++a) {
        for (std::uint64_t b = a + 1; b < 300; ++b) {
          double sum = 0.0;
          for (unsigned d = 0; d < dimensions; ++d) {
            sum += (places[a][d] - places[b][d]) * (places[a][d] - places[b][d]);
          }
          if (sum <= radius * radius) expected.emplace_back(a, b);
        }
      }
      EXPECT_EQ(edgesOf(network), expected) << dimensions << ", " << radius;
    }
  }
}

TEST(GeometricNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(geometricNetwork(5, -1)), "radius = -1: give 0 to 2");
  EXPECT_EQ(textOf(geometricNetwork(5, kNaN)), "radius = nan: give 0 to 2");
  EXPECT_EQ(textOf(geometricNetwork(5, 0.1, {}, 4)), "dimensions = 4: give 2 or 3");
  EXPECT_EQ(textOf(geometricNetwork(0, 0.1)), "n = 0: give at least 1");
  EXPECT_EQ(geometricNetwork(2000000000, 1.0).error().kind(), ErrorKind::kMemory);
}

TEST(BlockNetwork, IsThatOfItsLaw) {
  const Probabilities symmetric{0.9, 0.5, 0.3, 0.5, 0.1, 0.2, 0.3, 0.2, 1.0};
  EXPECT_EQ(edgesOf(blockNetwork(Sizes{3, 0, 2}, symmetric, seed(1))),
            (Edges{{0, 1}, {0, 2}, {1, 2}, {1, 4}, {3, 4}}));
  const Network directed =
      blockNetwork(Sizes{2, 2}, Probabilities{0.9, 0.5, 0.3, 1.0}, seed(4), true).value();
  EXPECT_EQ(edgesOf(directed), (Edges{{0, 1}, {1, 0}, {0, 3}, {2, 1}, {3, 1}, {2, 3}, {3, 2}}));
  EXPECT_TRUE(directed.isDirected());
  // One block is G(n, p).
  EXPECT_EQ(edgesOf(blockNetwork(Sizes{300}, Probabilities{0.02}, seed(11))),
            edgesOf(gnpNetwork(300, 0.02, seed(11))));
}

TEST(BlockNetwork, SaysWhatIsWrong) {
  EXPECT_EQ(textOf(blockNetwork(Sizes{}, Probabilities{})), "sizes: none, give at least one");
  EXPECT_EQ(textOf(blockNetwork(Sizes{1, 1}, Probabilities(5, 0.1))),
            "probabilities: 5 for 2 blocks, give 4");
  EXPECT_EQ(textOf(blockNetwork(Sizes{1}, Probabilities{})),
            "probabilities: 0 for 1 block, give 1");
  EXPECT_EQ(textOf(blockNetwork(Sizes{1, 1}, Probabilities{0, 2, 2, 0})),
            "probabilities[1] = 2: give 0 to 1");
  EXPECT_EQ(textOf(blockNetwork(Sizes{1, 1}, Probabilities{0, 0.5, 0.25, 0})),
            "probabilities[1] and probabilities[2] differ");
  EXPECT_EQ(textOf(blockNetwork(Sizes{1, 1}, Probabilities{0, 0.5, 0.25, 0}, seed(1), true)),
            "(a network)");
  EXPECT_EQ(textOf(blockNetwork(Sizes{0, 0}, Probabilities(4, 0.1))), "n = 0: give at least 1");
  EXPECT_EQ(textOf(blockNetwork(Sizes{UINT64_MAX, 2}, Probabilities(4, 0.1))),
            "sizes: more than 2147483648 vertices together");
}

TEST(RewiredNetwork, IsThatOfItsLaw) {
  EXPECT_EQ(edgesOf(rewiredNetwork(ring(6), 5, seed(1))),
            (Edges{{0, 1}, {1, 2}, {2, 3}, {4, 0}, {4, 5}, {5, 3}}));
  EXPECT_EQ(edgesOf(rewiredNetwork(ring(6, true), 5, seed(1))),
            (Edges{{0, 4}, {1, 0}, {2, 3}, {3, 1}, {4, 5}, {5, 2}}));
}

TEST(RewiredNetwork, KeepsDegreesWeightsAndColumns) {
  const Network before = gnpNetwork(50, 0.2, seed(3)).value();
  before.published()->setWeightValue_atEdgeIndex(2.5F, 7);
  const auto ages =
      std::make_shared<VEQNumberArray>(*VEQNumberArray::initWithIntegerScalar_count(30, 50));
  before.published()->setPropertiesOfVertices_forKey(ages, "Age");
  const Network after = rewiredNetwork(before, 5000, seed(4)).value();
  EXPECT_EQ(degreesOf(after), degreesOf(before));
  EXPECT_TRUE(isSimple(after));
  EXPECT_NE(edgesOf(after), edgesOf(before));
  EXPECT_EQ(after.published()->edgesWeightValues()->values<float>()[7], 2.5F);
  const auto kept = after.published()->propertiesOfVertices()->find("Age");
  ASSERT_NE(kept, nullptr);
  EXPECT_NE(*kept, Shared<PropertyColumn>(ages));  // a copy
  EXPECT_EQ((*kept)->count(), 50u);
  EXPECT_EQ(edgesOf(rewiredNetwork(before, 0, seed(4))), edgesOf(before));
}

TEST(RewiredNetwork, LeavesLoopsAndParallelEdgesThatAreThereOrMendsThem) {
  // Loops and parallel edges may go, but none is made.
  const Network before = configurationNetwork(Sizes(20, 4), DegreeLaw::kPairing, seed(2)).value();
  ASSERT_FALSE(isSimple(before));
  const Network after = rewiredNetwork(before, 2000, seed(5)).value();
  EXPECT_EQ(degreesOf(after), degreesOf(before));
  EXPECT_TRUE(isSimple(after));
  // Two loops stay, for both exchanges would make parallel edges of them.
  const Network loops(VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      VEQNumberArray::ofIndices({0, 1}), VEQNumberArray::ofIndices({0, 1})));
  EXPECT_EQ(edgesOf(rewiredNetwork(loops, 100, seed(1))), (Edges{{0, 0}, {1, 1}}));
}

TEST(ModelOptions, TakeASeedAStateOrTheSharedSequence) {
  VEQRandomGenerator& shared = *VEQRandomGenerator::sharedRandomGenerator();
  shared.setRandomSeed(11);
  const RandomState before = shared.state();
  const Edges fromSeed = edgesOf(gnpNetwork(300, 0.02, seed(11)));
  RandomState state = RandomState::seeded(11).value();
  ModelOptions options;
  options.random = &state;
  EXPECT_EQ(edgesOf(gnpNetwork(300, 0.02, options)), fromSeed);
  EXPECT_EQ(shared.state(), before);
  // 893 edges and the end take 894 numbers: two blocks of 512, of two draws each.
  EXPECT_EQ(state, before.after(2048));
  EXPECT_EQ(edgesOf(gnpNetwork(300, 0.02)), fromSeed);
  EXPECT_EQ(shared.state(), before.after(2048));
  EXPECT_EQ(edgesOf(latticeNetwork(Sizes{2}, false, options)).size(), 1u);
  EXPECT_EQ(state, before.after(2048));
}

TEST(ModelOptions, SayWhatIsWrong) {
  RandomState state = RandomState::seeded(1).value();
  ModelOptions options = seed(1);
  options.random = &state;
  EXPECT_EQ(textOf(gnpNetwork(5, 0.5, options)), "a seed and a random state: give one of them");
  EXPECT_EQ(textOf(gnpNetwork(5, 0.5, seed(0))),
            "seed 0: it would be the same as seed 1; give 1 to 4294967295");
}

TEST(ModelOptions, ASubstreamMustNotEndWithinAModel) {
  RandomState state =
      RandomState::seeded(1).value().substream(2).after(RandomState::kSubstreamSpacing - 1025);
  ModelOptions options;
  options.random = &state;
  EXPECT_TRUE(gnpNetwork(10, 0.5, options).hasValue());
  EXPECT_EQ(textOf(gnpNetwork(10, 0.5, options)), "The substream has 1 draws left, not 1024.");
  EXPECT_EQ(state.drawsLeft(), 1u);
}

TEST(ModelOptions, StopEveryModel) {
  StopSource source;
  source.requestStop();
  RandomState state = RandomState::seeded(1).value();
  ModelOptions options;
  options.random = &state;
  options.progress.stop = source.token();
  const Network given = ring(6);
  EXPECT_EQ(gnpNetwork(10, 0.5, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(gnmNetwork(10, 5, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(barabasiAlbertNetwork(5000, 2, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(configurationNetwork(Sizes{1, 1}, DegreeLaw::kPairing, options).error().kind(),
            ErrorKind::kStopped);
  EXPECT_EQ(configurationNetwork(Sizes{1, 1}, DegreeLaw::kSimple, options).error().kind(),
            ErrorKind::kStopped);
  EXPECT_EQ(wattsStrogatzNetwork(10, 2, 0.9, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(latticeNetwork(Sizes{4}, false, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(geometricNetwork(10, 0.5, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(blockNetwork(Sizes{4}, Probabilities{0.5}, options).error().kind(),
            ErrorKind::kStopped);
  EXPECT_EQ(rewiredNetwork(given, 10, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(state, RandomState::seeded(1).value());
}

TEST(EdgeSet, CountsEdgesLikeASlowOne) {
  for (const bool directed : {false, true}) {
    internal::EdgeSet edges(directed, 4);
    std::vector<std::pair<std::uint64_t, std::uint64_t>> slow;
    RandomState state = RandomState::seeded(3).value();
    const auto key = [&](std::uint64_t a, std::uint64_t b) {
      return directed || a < b ? std::pair(a, b) : std::pair(b, a);
    };
    for (int step = 0; step < test::rounds(20000); ++step) {
      const std::uint64_t a = state.nextBelow(12);
      const std::uint64_t b = state.nextBelow(12);
      const auto at = std::find(slow.begin(), slow.end(), key(a, b));
      ASSERT_EQ(edges.contains(a, b), at != slow.end()) << step;
      if (state.nextBelow(2) == 0) {
        edges.insert(a, b);
        slow.push_back(key(a, b));
      } else if (at != slow.end()) {
        edges.erase(a, b);
        slow.erase(at);
      }
    }
  }
}

}  // namespace
}  // namespace veq::model_networks_test
