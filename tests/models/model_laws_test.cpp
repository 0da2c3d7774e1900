// Whether model networks come as often as their laws say: counts of whole small networks, or of
// what decides one, are compared with exact probabilities. For each there is a planted wrong law
// that the same comparison refuses.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/chi_square.hpp"
#include "tests/support/rounds.hpp"
#include "veq/models/model_networks.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::model_laws_test {
namespace {

using Counts = std::vector<std::uint64_t>;
using Laws = std::vector<double>;
using Edge = std::pair<std::uint64_t, std::uint64_t>;

// Answers a cell's number for each network that it makes.
using Draw = std::function<std::size_t(const ModelOptions&)>;

// A share of the networks is too few to compare: a sanitizer watches how they are made, and that is
// all.
class ModelLaws : public testing::Test {
 protected:
  static bool follows(const Counts& counts, const Laws& law) {
    return test::share() > 1 || test::follows(counts, law);
  }
  static bool refuses(const Counts& counts, const Laws& law) {
    return test::share() > 1 || !test::follows(counts, law);
  }
  void TearDown() override {
    if (test::share() > 1) GTEST_SKIP() << "made, and not compared";
  }
};

Counts counted(int all, std::size_t cells, const Draw& draw) {
  RandomState state = RandomState::seeded(4711).value();
  ModelOptions options;
  options.random = &state;
  Counts counts(cells);
  const int times = test::rounds(all);
  for (int i = 0; i < times; ++i) ++counts.at(draw(options));
  return counts;
}

// What a law gives that takes 1 % of one cell's networks for another's.
Counts withOnePercentMoved(Counts counts, std::size_t from, std::size_t to) {
  const std::uint64_t moved = counts[from] / 100;
  counts[from] -= moved;
  counts[to] += moved;
  return counts;
}

Edge sorted(std::uint64_t a, std::uint64_t b) { return a < b ? Edge(a, b) : Edge(b, a); }

std::uint64_t targetOf(const Network& network, std::uint64_t edge) {
  return internal::CoreAccess::of(*network.published()).store.to(edge);
}

std::set<Edge> edgesOf(const Network& network) {
  std::set<Edge> edges;
  const internal::AdjacencyStore& store = internal::CoreAccess::of(*network.published()).store;
  for (std::uint64_t e = 0; e < network.countEdges(); ++e) {
    edges.insert(sorted(store.from(e), store.to(e)));
  }
  return edges;
}

// The pairs of four vertices as bits.
std::size_t pattern(const std::set<Edge>& edges) {
  const Edge pairs[] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
  std::size_t bits = 0;
  for (std::size_t i = 0; i < 6; ++i) bits |= edges.count(pairs[i]) << i;
  return bits;
}
std::size_t pattern(const Network& network) { return pattern(edgesOf(network)); }

Laws gnpLaw(double p) {
  Laws law(64);
  for (std::size_t bits = 0; bits < 64; ++bits) {
    law[bits] = 1.0;
    for (std::size_t i = 0; i < 6; ++i) law[bits] *= (bits >> i & 1) != 0 ? p : 1.0 - p;
  }
  return law;
}

TEST_F(ModelLaws, Gnp) {
  const auto draw = [](double p) {
    return [p](const ModelOptions& options) { return pattern(gnpNetwork(4, p, options).value()); };
  };
  EXPECT_TRUE(follows(counted(60000, 64, draw(0.5)), gnpLaw(0.5)));
  EXPECT_TRUE(follows(counted(60000, 64, draw(0.3)), gnpLaw(0.3)));
  // Of six pairs so many are linked as of six coins show heads.
  const auto edges = [](double p) {
    return
        [p](const ModelOptions& options) { return gnpNetwork(4, p, options).value().countEdges(); };
  };
  const Laws coins{1 / 64., 6 / 64., 15 / 64., 20 / 64., 15 / 64., 6 / 64., 1 / 64.};
  EXPECT_TRUE(follows(counted(150000, 7, edges(0.5)), coins));
  EXPECT_TRUE(refuses(counted(150000, 7, edges(0.5 * 1.01)), coins));
  const auto withoutOnePair = [&](const ModelOptions& options) {
    return draw(0.5)(options) & ~std::size_t{32};
  };
  EXPECT_TRUE(refuses(counted(10000, 64, withoutOnePair), gnpLaw(0.5)));
}

TEST_F(ModelLaws, GnpWithRareEdges) {
  // 40,000 vertices have 799,980,000 pairs: at p = 10^-9 about 0.8 edges, Poisson but for 10^-9.
  const auto draw = [](double p) {
    return [p](const ModelOptions& options) {
      return std::min<std::size_t>(gnpNetwork(40000, p, options).value().countEdges(), 4);
    };
  };
  const double mean = 0.79998;
  Laws law{std::exp(-mean)};
  for (int k = 1; k < 4; ++k) law.push_back(law.back() * mean / k);
  law.push_back(1.0);
  for (int k = 0; k < 4; ++k) law.back() -= law[static_cast<std::size_t>(k)];
  EXPECT_TRUE(follows(counted(8000, 5, draw(1e-9)), law));
  EXPECT_TRUE(refuses(counted(8000, 5, draw(1.2e-9)), law));
}

TEST_F(ModelLaws, Gnm) {
  const auto draw = [](const ModelOptions& options) {
    return pattern(gnmNetwork(4, 3, options).value());
  };
  Laws law(64);
  for (std::size_t bits = 0; bits < 64; ++bits) law[bits] = std::popcount(bits) == 3 ? 0.05 : 0.0;
  EXPECT_TRUE(follows(counted(40000, 64, draw), law));
  Laws four(64);
  for (std::size_t bits = 0; bits < 64; ++bits) {
    four[bits] = std::popcount(bits) == 4 ? 1.0 / 15 : 0.0;
  }
  EXPECT_TRUE(follows(counted(40000, 64,
                              [](const ModelOptions& options) {
                                return pattern(gnmNetwork(4, 4, options).value());
                              }),
                      four));
  const auto withoutOnePair = [&](const ModelOptions& options) {
    std::size_t bits = draw(options);
    while ((bits & 32) != 0) bits = draw(options);
    return bits;
  };
  EXPECT_TRUE(refuses(counted(10000, 64, withoutOnePair), law));
}

TEST_F(ModelLaws, BarabasiAlbert) {
  // n = 4, m = 2: vertex 3 finds degrees 1, 1, 2. It takes 0 and then 1, or the other way round,
  // with 1/4 x 1/3 each; 0 and 2 with 1/4 x 2/3 + 1/2 x 1/2.
  const auto targets = [](const ModelOptions& options) {
    const auto edges = edgesOf(barabasiAlbertNetwork(4, 2, options).value());
    return edges.count({2, 3}) == 0 ? std::size_t{0} : edges.count({0, 3}) != 0 ? 1 : 2;
  };
  const Laws law{1.0 / 6, 5.0 / 12, 5.0 / 12};
  Counts counts = counted(700000, 3, targets);
  EXPECT_TRUE(follows(counts, law));
  EXPECT_TRUE(refuses(withOnePercentMoved(counts, 1, 2), law));
  // n = 5, m = 1: trees by the targets of 2, 3, 4. After 1-0 and 2-a, a has degree 2 and the other
  // two 1, of 4; then, with 3-b, degrees out of 6.
  Laws trees;
  for (std::size_t a = 0; a < 2; ++a) {
    for (std::size_t b = 0; b < 3; ++b) {
      for (std::size_t c = 0; c < 4; ++c) {
        double degrees[4] = {1, 1, 1, 1};
        ++degrees[a];
        double probability = 0.5 * degrees[b] / 4;
        ++degrees[b];
        trees.push_back(probability * degrees[c] / 6);
      }
    }
  }
  const auto tree = [](const ModelOptions& options) {
    const Network network = barabasiAlbertNetwork(5, 1, options).value();
    return (targetOf(network, 1) * 3 + targetOf(network, 2)) * 4 + targetOf(network, 3);
  };
  EXPECT_TRUE(follows(counted(60000, 24, tree), trees));
  EXPECT_TRUE(refuses(counted(60000, 24, tree), Laws(24, 1.0 / 24)));
}

TEST_F(ModelLaws, Configuration) {
  // Ends a a b c have three pairings: aa bc, ab ac, ac ab.
  const auto loops = [](const ModelOptions& options) {
    const auto edges = edgesOf(
        configurationNetwork(std::vector<std::uint64_t>{2, 1, 1}, DegreeLaw::kPairing, options)
            .value());
    return edges.count({0, 0});
  };
  const Counts counts = counted(400000, 2, loops);
  EXPECT_TRUE(follows(counts, {2.0 / 3, 1.0 / 3}));
  EXPECT_TRUE(refuses(withOnePercentMoved(counts, 0, 1), {2.0 / 3, 1.0 / 3}));
}

// The matchings of six vertices: who is matched with 0, and with the lowest of the others.
std::size_t matching(const std::set<Edge>& edges) {
  std::map<std::uint64_t, std::uint64_t> mates;
  for (const auto& [a, b] : edges) {
    mates[a] = b;
    mates[b] = a;
  }
  std::vector<std::uint64_t> left;
  for (std::uint64_t v = 1; v < 6; ++v) {
    if (v != mates.at(0)) left.push_back(v);
  }
  for (std::size_t i = 1; i < 4; ++i) {
    if (mates.at(left[0]) == left[i]) return (mates.at(0) - 1) * 3 + i - 1;
  }
  return 15;
}

TEST_F(ModelLaws, Matchings) {
  const std::vector<std::uint64_t> ones(6, 1);
  const Laws alike(15, 1.0 / 15);
  for (const DegreeLaw law : {DegreeLaw::kPairing, DegreeLaw::kSimple}) {
    const auto draw = [&](const ModelOptions& options) {
      return matching(edgesOf(configurationNetwork(ones, law, options).value()));
    };
    EXPECT_TRUE(follows(counted(50000, 15, draw), alike));
  }
  // Rewiring goes from a matching to each of six others alike, which forgets where it began by a
  // factor of 2 a try at least; after a single try it has not.
  const Network first = configurationNetwork(ones, DegreeLaw::kPairing).value();
  const auto rewired = [&](std::uint64_t tries) {
    return [&first, tries](const ModelOptions& options) {
      return matching(edgesOf(rewiredNetwork(first, tries, options).value()));
    };
  };
  EXPECT_TRUE(follows(counted(50000, 15, rewired(40)), alike));
  EXPECT_TRUE(refuses(counted(50000, 15, rewired(1)), alike));
  EXPECT_TRUE(refuses(counted(50000, 15, rewired(4)), alike));
}

TEST_F(ModelLaws, WattsStrogatz) {
  // The first edge, 0-1 of a ring of 7, is drawn again with probability p, and then leads to 2, 3,
  // 4 or 5, each alike, as 6 is linked to 0.
  const auto draw = [](double p) {
    return [p](const ModelOptions& options) {
      return targetOf(wattsStrogatzNetwork(7, 1, p, options).value(), 0);
    };
  };
  const double p = 0.9;
  const Laws law{0.0, 1 - p, p / 4, p / 4, p / 4, p / 4, 0.0};
  EXPECT_TRUE(follows(counted(120000, 7, draw(p)), law));
  EXPECT_TRUE(refuses(counted(120000, 7, draw(1.01 * p)), law));
  // How many of the seven edges are moved is binomial.
  const auto moved = [](const ModelOptions& options) {
    const Network network = wattsStrogatzNetwork(7, 1, 0.5, options).value();
    std::size_t count = 0;
    for (std::uint64_t e = 0; e < 7; ++e) {
      count += targetOf(network, e) != (e + 1) % 7;
    }
    return count;
  };
  Laws binomial{1 / 128.0};
  for (std::size_t k = 1; k <= 7; ++k) {
    binomial.push_back(binomial.back() * static_cast<double>(8 - k) / static_cast<double>(k));
  }
  EXPECT_TRUE(follows(counted(60000, 8, moved), binomial));
}

TEST_F(ModelLaws, Geometric) {
  // Two points of the unit square are within r <= 1 with probability pi r^2 - 8/3 r^3 + r^4 / 2.
  const auto draw = [](double r) {
    return [r](const ModelOptions& options) {
      return static_cast<std::size_t>(geometricNetwork(2, r, options).value().countEdges());
    };
  };
  const double r = 0.9;
  const double near = 3.141592653589793 * r * r - 8.0 / 3.0 * r * r * r + r * r * r * r / 2;
  EXPECT_TRUE(follows(counted(200000, 2, draw(r)), {1 - near, near}));
  EXPECT_TRUE(refuses(counted(200000, 2, draw(1.01 * r)), {1 - near, near}));
}

TEST_F(ModelLaws, Blocks) {
  // Vertices 0, 1 and 2, 3: one pair in each block, four between them.
  const auto draw = [](double between) {
    return [between](const ModelOptions& options) {
      const std::vector<double> probabilities{0.5, between, between, 0.4};
      return pattern(
          blockNetwork(std::vector<std::uint64_t>{2, 2}, probabilities, options).value());
    };
  };
  const double ofPair[] = {0.5, 0.8, 0.8, 0.8, 0.8, 0.4};
  Laws law(64);
  for (std::size_t bits = 0; bits < 64; ++bits) {
    law[bits] = 1.0;
    for (std::size_t i = 0; i < 6; ++i) {
      law[bits] *= (bits >> i & 1) != 0 ? ofPair[i] : 1.0 - ofPair[i];
    }
  }
  EXPECT_TRUE(follows(counted(80000, 64, draw(0.8)), law));
  const auto betweenThem = [&](double between) {
    return [&draw, between](const ModelOptions& options) {
      return static_cast<std::size_t>(std::popcount(draw(between)(options) & 0b011110));
    };
  };
  const Laws binomial{0.0016, 0.0256, 0.1536, 0.4096, 0.4096};
  EXPECT_TRUE(follows(counted(80000, 5, betweenThem(0.8)), binomial));
  EXPECT_TRUE(refuses(counted(80000, 5, betweenThem(0.808)), binomial));
}

}  // namespace
}  // namespace veq::model_laws_test
