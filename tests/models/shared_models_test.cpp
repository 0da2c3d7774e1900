// Model networks that threads make, beside those of one thread.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "tests/support/shared_work.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/network/network.hpp"

namespace veq::test::shared_models_test {
namespace {

// The ends of its edges, and the draw that comes next.
struct Drawn {
  std::vector<std::uint64_t> ends;
  std::int64_t next;
  friend bool operator==(const Drawn&, const Drawn&) = default;
};

Drawn drawn(std::uint64_t count, double degree) {
  const auto generator = VEQRandomGenerator::sharedRandomGenerator();
  generator->setRandomSeed(5);
  const auto network = VEQNetwork::initRandomNetworkWithNumberOfVertices_degree(count, degree);
  Drawn result;
  for (const VEQEdge& edge : network->edges()) {
    result.ends.push_back(edge.fromVertex()->identification());
    result.ends.push_back(edge.toVertex()->identification());
  }
  result.next = generator->randomInteger();
  return result;
}

// 17,997,000 pairs, of which some 12,000 are linked, and 4,498,500, of which a tenth are.
TEST(SharedModels, ARandomNetworkIsThatOfOneThread) {
  for (const auto& [count, degree] : {std::pair{6000, 4.0}, {3000, 300.0}}) {
    const auto vertices = static_cast<std::uint64_t>(count);
    const Drawn alone = drawn(vertices, degree);
    EXPECT_GT(alone.ends.size(), 1000U);
    for (const unsigned threads : {2U, 5U}) {
      const SharedWork shared(threads);
      EXPECT_TRUE(drawn(vertices, degree) == alone) << threads << " threads";
    }
    for (const std::uint64_t order : {1U, 4U, 23U}) {
      const SharedWork ordered(3, SharedWork::InOrder{order});
      EXPECT_TRUE(drawn(vertices, degree) == alone) << "order " << order;
    }
  }
}

}  // namespace
}  // namespace veq::test::shared_models_test
