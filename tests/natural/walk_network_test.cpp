// Networks for walks alone, beside what their lists must be and beside whole networks.
#include "veq/natural/walk_network.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/edge_sources.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network.hpp"

namespace veq::test::walk_network_test {
namespace {

using Lists = std::vector<std::vector<std::uint64_t>>;

Lists listsOf(const WalkNetwork& network) {
  Lists lists;
  for (std::uint64_t v = 0; v < network.countVertices(); ++v) {
    lists.push_back(network.neighbours(v));
    EXPECT_EQ(network.degree(v), lists.back().size());
  }
  return lists;
}

WalkNetworkOptions directed() {
  WalkNetworkOptions options;
  options.directed = true;
  return options;
}

WalkNetworkOptions ofVertices(std::uint64_t vertices) {
  WalkNetworkOptions options;
  options.vertices = vertices;
  return options;
}

std::string errorOf(const EdgeSource& source, const WalkNetworkOptions& options = {}) {
  const auto network = WalkNetwork::fromEdges(source, options);
  if (network) return "none";
  const char* const kinds[] = {
      "argument: ", "file: ", "format: ", "unsupported: ", "memory: ", "stopped: "};
  return kinds[static_cast<int>(network.error().kind())] + network.error().text();
}

const EdgePairs kEdges = {{3, 0}, {0, 1}, {3, 3}, {1, 3}, {0, 1}, {3, 2}, {0, 0}};

TEST(WalkNetwork, HasTheListsInTheOrderOfTheEdges) {
  for (const std::size_t atOnce : {1U, 3U, 100U}) {
    const auto network = WalkNetwork::fromEdges(edgesFrom(kEdges, atOnce), directed()).value();
    EXPECT_EQ(listsOf(network), (Lists{{1, 1, 0}, {3}, {}, {0, 3, 2}}));
    EXPECT_TRUE(network.isDirected());
    EXPECT_EQ(network.countVertices(), 4U);
    EXPECT_EQ(network.countEdges(), 7U);
    EXPECT_EQ(network.size(), (WalkNetworkSize{4, 7, 7}));
    EXPECT_EQ(network.size().bytes(), 8 * 5 + 4 * 7U);
  }
}

TEST(WalkNetwork, HasUndirectedEdgesAtBothEndsAndLoopsTwice) {
  const auto network = WalkNetwork::fromEdges(edgesFrom(kEdges)).value();
  EXPECT_EQ(listsOf(network), (Lists{{3, 1, 1, 0, 0}, {0, 3, 0}, {3}, {0, 3, 3, 1, 2}}));
  EXPECT_FALSE(network.isDirected());
  EXPECT_EQ(network.size(), (WalkNetworkSize{4, 7, 14}));
}

TEST(WalkNetwork, HasVerticesWithoutEdgesWhereTheyAreAskedFor) {
  const auto six = WalkNetwork::fromEdges(edgesFrom({{1, 0}}), ofVertices(6)).value();
  EXPECT_EQ(listsOf(six), (Lists{{1}, {0}, {}, {}, {}, {}}));
  const auto gap = WalkNetwork::fromEdges(edgesFrom({{5, 3}, {0, 1}}, 1)).value();
  EXPECT_EQ(listsOf(gap), (Lists{{1}, {0}, {}, {5}, {}, {3}}));
  EXPECT_EQ(WalkNetwork::fromEdges(edgesFrom({})).value().countVertices(), 0U);
  EXPECT_EQ(listsOf(WalkNetwork::fromEdges(edgesFrom({}), ofVertices(2)).value()), (Lists{{}, {}}));
}

TEST(WalkNetwork, TellsItsSizeBeforeItTakesMemoryForTheLists) {
  std::vector<WalkNetworkSize> told;
  WalkNetworkOptions options;
  options.announce = [&](const WalkNetworkSize& size) { told.push_back(size); };
  EXPECT_TRUE(WalkNetwork::fromEdges(edgesFrom(kEdges), options));
  EXPECT_EQ(told, (std::vector<WalkNetworkSize>{{4, 7, 14}}));
  options.announce = [](const WalkNetworkSize&) { throw std::runtime_error("too large for me"); };
  EXPECT_EQ(thrownText<std::runtime_error>(
                [&] { (void)WalkNetwork::fromEdges(edgesFrom(kEdges), options); }),
            "too large for me");
}

TEST(WalkNetwork, TellsWhatWalkersTakeBesideIt) {
  const auto network = WalkNetwork::fromEdges(edgesFrom({{0, 999}})).value();
  EXPECT_EQ(network.bytesToWalk(0), 8000U);
  EXPECT_EQ(network.bytesToWalk(10, true), 16640U);
  EXPECT_EQ(network.bytesToWalk(10, true, true), 17640U);
}

TEST(WalkNetwork, SaysWhatIsWrongWithItsEdges) {
  EXPECT_EQ(errorOf(edgesFrom({{0, 1}, {2, 12}, {13, 1}}, 1), ofVertices(10)),
            "argument: edge 1: target 12 of 10 vertices");
  EXPECT_EQ(errorOf(edgesFrom({{0, 1}, {2, 9}, {10, 11}}), ofVertices(10)),
            "argument: edge 2: source 10 of 10 vertices");
  EXPECT_EQ(errorOf(edgesFrom({{0, 0}}), ofVertices(0)),
            "argument: edge 0: source 0 of 0 vertices");
  EXPECT_EQ(errorOf([](const EdgeReceiver& receiver) {
              receiver(std::vector<std::uint64_t>{1, 2, 3}, std::vector<std::uint64_t>{1, 2});
            }),
            "argument: 3 sources for 2 targets");
  EXPECT_EQ(errorOf(edgesFrom({{0, 1}, {0, UINT64_MAX}})),
            "unsupported: edge 1: target 18446744073709551615: a walk-only network has up to "
            "4294967295 vertices");
  EXPECT_EQ(errorOf(edgesFrom({{UINT32_MAX, 0}})),
            "unsupported: edge 0: source 4294967295: a walk-only network has up to 4294967295 "
            "vertices");
  EXPECT_EQ(errorOf(edgesFrom({}), ofVertices(std::uint64_t{1} << 32)),
            "unsupported: 4294967296 vertices: a walk-only network has up to 4294967295");
}

TEST(WalkNetwork, RefusesWhatTakesMoreMemoryThanThereIs) {
  WalkNetworkOptions options;
  options.mostBytes = 96;  // 5 vertices and 12 entries
  EXPECT_EQ(errorOf(edgesFrom({{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 0}, {0, 0}}), options), "none");
  EXPECT_EQ(errorOf(edgesFrom({{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 0}, {0, 0}, {1, 1}}), options),
            "memory: 5 vertices and 14 list entries take 104 bytes, and there are 96");
  // Rows alone may be too many: for one edge, whose ends say how many there are.
  EXPECT_EQ(errorOf(edgesFrom({{0, 99}}), options),
            "memory: 100 vertices and 0 list entries take 808 bytes, and there are 96");
  options.vertices = 12;
  EXPECT_EQ(errorOf(edgesFrom({}), options),
            "memory: 12 vertices and 0 list entries take 104 bytes, and there are 96");
  options.vertices = 3;
  options.bytesBeside = 16;
  EXPECT_EQ(errorOf(edgesFrom({{0, 1}, {1, 2}}), options), "none");
  EXPECT_EQ(errorOf(edgesFrom({{0, 1}, {1, 2}, {2, 0}}), options),
            "memory: 3 vertices and 6 list entries take 56 bytes, walks on them 48 more, and there "
            "are 96");
}

// A source that gives the first edges at first, and then the others.
EdgeSource changing(const EdgePairs& first, const EdgePairs& then) {
  return [first, then, calls = 0](const EdgeReceiver& receiver) mutable {
    edgesFrom(calls++ == 0 ? first : then, 2)(receiver);
  };
}

TEST(WalkNetwork, NoticesThatASourceGivesOtherEdgesTheSecondTime) {
  const std::string changed = "argument: the source gave other edges when it was asked again";
  EXPECT_EQ(errorOf(changing(kEdges, kEdges)), "none");
  EdgePairs other = kEdges;
  other[2].second = 9;  // which was no vertex
  EXPECT_EQ(errorOf(changing(kEdges, other)), changed);
  other[2].second = UINT64_MAX;
  EXPECT_EQ(errorOf(changing(kEdges, other)), changed);
  other = kEdges;
  other.emplace_back(2, 2);  // which lies behind the last list
  EXPECT_EQ(errorOf(changing(kEdges, other)), changed);
  EXPECT_EQ(errorOf(changing(kEdges, other), directed()), changed);
  other = kEdges;
  other.pop_back();
  EXPECT_EQ(errorOf(changing(kEdges, other)), changed);
  EXPECT_EQ(errorOf(changing(kEdges, {})), changed);
  EXPECT_EQ(errorOf(changing({}, kEdges)), changed);
  other = kEdges;
  std::swap(other[0].second, other[1].second);  // lists of the same lengths
  EXPECT_EQ(errorOf(changing(kEdges, other), directed()), changed);
  other = kEdges;
  std::swap(other[0], other[1]);
  EXPECT_EQ(errorOf(changing(kEdges, other)), changed);
  // More edges from a vertex than were counted, and fewer from the next.
  EXPECT_EQ(errorOf(changing({{0, 1}, {1, 2}}, {{0, 1}, {0, 2}}), directed()), changed);
}

TEST(WalkNetwork, GivesTheErrorOfItsSourceAndLetsOtherExceptionsPass) {
  EXPECT_EQ(errorOf([](const EdgeReceiver&) { throw Error(ErrorKind::kFile, "no such file"); }),
            "file: no such file");
  EXPECT_EQ(thrownText<std::runtime_error>([] {
              (void)WalkNetwork::fromEdges(
                  [](const EdgeReceiver&) { throw std::runtime_error("no more"); });
            }),
            "no more");
}

TEST(WalkNetwork, CanBeStoppedInBothPasses) {
  for (const int pass : {0, 1}) {
    const StopSource stop;
    WalkNetworkOptions options;
    options.progress.stop = stop.token();
    int calls = 0;
    const auto source = [&](const EdgeReceiver& receiver) {
      if (calls++ == pass) stop.requestStop();
      edgesFrom(kEdges)(receiver);
    };
    EXPECT_EQ(errorOf(source, options), "stopped: stopped");
    EXPECT_EQ(calls, pass + 1);
  }
}

TEST(WalkNetwork, IsOfANetworkAsItIs) {
  const Network whole =
      Network::build({{3, 0}, {0, 1}, {3, 3}, {1, 3}, {0, 1}, {3, 2}, {0, 0}}).value();
  const WalkNetwork network = WalkNetwork::of(whole).value();
  EXPECT_EQ(listsOf(network), (Lists{{3, 1, 1, 0, 0}, {0, 3, 0}, {3}, {0, 3, 3, 1, 2}}));
  BuildOptions options;
  options.directed = true;
  options.vertices = 3;
  EXPECT_EQ(listsOf(WalkNetwork::of(Network::build({{1, 0}}, options).value()).value()),
            (Lists{{}, {0}, {}}));
}

TEST(WalkNetwork, ThrowsForVerticesThatItDoesNotHave) {
  const auto network = WalkNetwork::fromEdges(edgesFrom({{0, 9}})).value();
  EXPECT_EQ(thrownText<std::out_of_range>([&] { (void)network.degree(12); }), "vertex 12 of 10");
  EXPECT_EQ(thrownText<std::out_of_range>([&] { (void)network.neighbours(10); }),
            "vertex 10 of 10");
}

// By any number of threads, and from blocks of any size, some larger than what is taken at once.
TEST(WalkNetwork, HasTheListsOfWholeNetworks) {
  std::mt19937_64 draw(9);
  for (int round = 0; round < rounds(60); ++round) {
    const SharedWork work = SharedWork::inTurn(round);
    const std::uint64_t vertices = 1 + draw() % (round % 10 == 0 ? 50'000 : 40);
    const std::uint64_t edges = round == 10 ? 600'000 : draw() % (round % 10 == 0 ? 90'000 : 300);
    BuildOptions options;
    options.directed = draw() % 2 == 0;
    options.vertices = vertices;
    EdgePairs pairs;
    // A third of them have an end among the first vertices.
    const auto end = [&] { return draw() % (draw() % 3 == 0 ? 1 + vertices / 10 : vertices); };
    for (std::uint64_t e = 0; e < edges; ++e) {
      const std::uint64_t from = end();
      pairs.emplace_back(from, end());
    }
    const Network whole = Network::build(pairs, options).value();
    WalkNetworkOptions like;
    like.directed = options.directed;
    if (draw() % 2 == 0) like.vertices = vertices;
    const auto network =
        WalkNetwork::fromEdges(edgesFrom(pairs, 1 + draw() % (edges + 2)), like).value();
    ASSERT_EQ(network.countEdges(), edges);
    ASSERT_LE(network.countVertices(), vertices);
    for (std::uint64_t v = 0; v < vertices; ++v) {
      if (v >= network.countVertices()) {
        ASSERT_EQ(whole.degree(v, Direction::kAll), 0U);
      } else {
        ASSERT_EQ(network.neighbours(v), whole.neighbours(v)) << "round " << round;
      }
    }
  }
}

}  // namespace
}  // namespace veq::test::walk_network_test
