// Components that threads look for, beside those that one finds by searching.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/log_capture.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "veq/models.hpp"
#include "veq/questions.hpp"

namespace veq::test::shared_components_test {
namespace {

TEST(SharedComponents, AreThoseOfOneThread) {
  static constexpr std::uint64_t kVertices[] = {1, 2, 5, 40, 300, 40000};
  std::mt19937_64 draw(3);
  for (int round = 0; round < rounds(120); ++round) {
    const std::uint64_t n = kVertices[draw() % std::size(kVertices)];
    std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
    for (std::uint64_t e = draw() % (2 * n); e > 0; --e) edges.emplace_back(draw() % n, draw() % n);
    const bool directed = draw() % 2 == 0;
    const Network network(draw() % 3 == 0 ? networkOf(n, edges, directed, 0)
                                          : networkOf(n, edges, directed));
    const ComponentLabels alone = components(network, Connection::kWeak);
    const SharedWork shared = SharedWork::inTurn(1 + round % 2);
    const ComponentLabels found = components(network, Connection::kWeak);
    ASSERT_EQ(found.labels, alone.labels) << "round " << round << ", " << n << " vertices";
    ASSERT_EQ(found.sizes, alone.sizes);
    ASSERT_EQ(network.published()->largestConnectedSubNetwork()->countVertices(),
              *std::max_element(alone.sizes.begin(), alone.sizes.end()));
  }
}

// 0 - 1 - ... - 199999 - 0 by links in no order, and 100 vertices without any.
TEST(SharedComponents, OfALongRingAreFound) {
  constexpr std::uint64_t kRing = 200000;
  std::vector<std::uint64_t> from(kRing);
  std::vector<std::uint64_t> to(kRing);
  for (std::uint64_t e = 0; e < kRing; ++e) {
    from[e] = e * 7919 % kRing;
    to[e] = (from[e] + 1) % kRing;
  }
  BuildOptions options;
  options.vertices = kRing + 100;
  const Network network = Network::build(from, to, options).value();
  for (const unsigned threads : {2U, 7U}) {
    const SharedWork shared(threads, std::uint64_t{1} << 12);
    const ComponentLabels found = components(network, Connection::kWeak);
    ASSERT_EQ(found.sizes.size(), 101U);
    EXPECT_EQ(found.sizes[0], kRing);
    for (std::uint64_t v = 0; v < kRing; ++v) ASSERT_EQ(found.labels[v], 0U) << v;
    for (std::uint64_t v = 0; v < 100; ++v) ASSERT_EQ(found.labels[kRing + v], 1 + v);
  }
}

// 0 - 1 - ... - 99 - 0, and behind it 2000 pairs a - b, in whose column "number" each has its own.
Network ringAndPairs() {
  constexpr std::uint64_t kRing = 100;
  constexpr std::uint64_t kPairs = 2000;
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < kRing; ++v) edges.emplace_back(v, (v + 1) % kRing);
  for (std::uint64_t p = 0; p < kPairs; ++p) {
    edges.emplace_back(kRing + 2 * p, kRing + 2 * p + 1);
  }
  const auto network = networkOf(kRing + 2 * kPairs, edges, false);
  internal::RawVector<double> numbers(network->countVertices());
  std::iota(numbers.begin(), numbers.end(), 0.0);
  network->setPropertiesOfVertices_forKey(std::make_shared<VEQNumberArray>(std::move(numbers)),
                                          "number");
  return Network(network);
}

void expectRingAndPairs(const Network& network) {
  const LogCapture log;
  const auto parts = componentNetworks(network, Connection::kWeak).value();
  const auto published = network.published()->connectedSubNetworksArray();
  ASSERT_EQ(parts.size(), 2001U);
  ASSERT_EQ(published.size(), 2001U);
  EXPECT_EQ(parts[0].network.countVertices(), 100U);
  EXPECT_EQ(parts[0].network.countEdges(), 100U);
  EXPECT_EQ(published[0]->countEdges(), 100U);
  EXPECT_EQ(log.lines(), std::vector<std::string>(2001, "Loading Weighted Network? NO"));
  for (std::uint64_t p = 1; p <= 2000; ++p) {
    const std::uint64_t first = 98 + 2 * p;
    ASSERT_EQ(parts[p].vertices, (std::vector<std::uint64_t>{first, first + 1}));
    ASSERT_EQ(parts[p].edges, (std::vector<std::uint64_t>{99 + p}));
    for (const Shared<VEQNetwork>& part : {parts[p].network.published(), published[p]}) {
      ASSERT_EQ(part->countVertices(), 2U);
      ASSERT_EQ(part->countEdges(), 1U);
      const auto numbers = part->propertiesOfVertices()->find("number");
      ASSERT_EQ((*numbers)->objectAtIndex(0).number()->text(), std::to_string(first));
      ASSERT_EQ((*numbers)->objectAtIndex(1).number()->text(), std::to_string(first + 1));
    }
  }
}

// By one thread, by all together, and those of fewer than 50 edges side by side.
TEST(SharedComponents, AreMadeIntoNetworksInTheirOrder) {
  const Network network = ringAndPairs();
  expectRingAndPairs(network);
  for (const std::uint64_t worthSharing : {0U, 50U}) {
    const SharedWork shared(3, worthSharing);
    expectRingAndPairs(network);
  }
}

TEST(SharedComponents, CanBeStopped) {
  const Network network = gnmNetwork(1000, 5000).value();
  const SharedWork shared(3);
  const StopSource source;
  Progress progress;
  progress.stop = source.token();
  EXPECT_TRUE(components(network, Connection::kWeak, progress).hasValue());
  source.requestStop();
  EXPECT_EQ(components(network, Connection::kWeak, progress).error().kind(), ErrorKind::kStopped);
}

}  // namespace
}  // namespace veq::test::shared_components_test
