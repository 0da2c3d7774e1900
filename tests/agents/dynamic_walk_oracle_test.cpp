// The walk of agents with memory against its literal form, on random networks and through random
// histories.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/agents.hpp"
#include "tests/support/literal_dynamic_walk.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "veq/agents/dynamic_agents_group.hpp"

namespace veq::test::dynamic_walk_oracle_test {
namespace {

using Draw = std::mt19937_64;

std::uint64_t below(Draw& draw, std::uint64_t n) { return draw() % n; }

template <class T, std::size_t kCount>
T oneOf(Draw& draw, const T (&values)[kCount]) {
  return values[below(draw, kCount)];
}

// Some vertices without edges, many self-loops and parallel edges.
LiteralNetwork randomNetwork(Draw& draw, std::uint64_t n, std::uint64_t edges, bool directed) {
  LiteralNetwork network{n, directed, {}, {}};
  if (n == 0) return network;
  const std::uint64_t linked = std::max<std::uint64_t>(1, n - n / 8);
  for (std::uint64_t i = 0; i < edges; ++i) {
    const bool again = i > 0 && below(draw, 8) == 0;
    network.from.push_back(again ? network.from.back() : below(draw, linked));
    network.to.push_back(again                  ? network.to.back()
                         : below(draw, 10) == 0 ? network.from.back()
                                                : below(draw, linked));
  }
  return network;
}

Shared<VEQNetwork> build(const LiteralNetwork& literal, bool wide) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::size_t i = 0; i < literal.from.size(); ++i) {
    edges.emplace_back(literal.from[i], literal.to[i]);
  }
  return wide ? networkOf(literal.n, edges, literal.directed, 0)
              : networkOf(literal.n, edges, literal.directed);
}

// From the lower half of the vertices to the upper, where agents are stuck.
LiteralNetwork networkOfTraps(Draw& draw, std::uint64_t n) {
  LiteralNetwork network{n, true, {}, {}};
  for (std::uint64_t i = 0; i < 2 * n; ++i) {
    network.from.push_back(below(draw, n / 2));
    network.to.push_back(n / 2 + below(draw, n - n / 2));
  }
  return network;
}

LiteralNetwork networkOfAnyKind(Draw& draw) {
  static constexpr std::uint64_t kVertices[] = {1, 2, 3, 5, 12, 34, 100, 300};
  const std::uint64_t n = oneOf(draw, kVertices);
  return randomNetwork(draw, n, below(draw, 4 * n), below(draw, 2) == 0);
}

class DynamicPair {
 public:
  DynamicPair(Draw& draw, LiteralNetwork network) : draw_(draw), network_(std::move(network)) {
    static constexpr std::uint64_t kAgents[] = {0, 1, 2, 5, 5, 40};
    agents_ = oneOf(draw, kAgents);
    makeAgentsNetwork();
    std::vector<float> errors = randomErrors();
    Indices sizes = randomSizes();
    const Indices start = places(agents_);
    literal_ = std::make_unique<LiteralDynamicGroup>(
        network_, start, linked_ ? linked_.get() : nullptr, errors, sizes);
    const auto errorArray = VEQNumberArray::initWithFloatArray_count(errors.data(), errors.size());
    group_ = VEQNetworkDynamicAgentsGroup::
        initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
            build(network_, below(draw, 3) == 0), VEQNumberArray::ofIndices(start), realLinked_,
            *errorArray, VEQNumberArray::ofIndices(sizes));
  }

  [[nodiscard]] bool isMade() const { return group_ != nullptr; }

  void walk(std::uint64_t steps, float target) {
    const auto seedOfWalk = static_cast<std::uint32_t>(draw_());
    const bool withPaths = coin();
    seed(seedOfWalk);
    LiteralRandom random(seedOfWalk);

    const auto expected = literal_->walk(random, steps, target);
    const auto paths = group_->walkForSteps_returnPath_untilReach(steps, withPaths, target);
    ASSERT_EQ(paths.has_value(), withPaths);
    if (withPaths) {
      ASSERT_EQ(indices(*paths), expected);
    }
    ASSERT_EQ(group_->currentProgress(), static_cast<std::int64_t>(literal_->progress));
    ASSERT_EQ(group_->currentWork(), static_cast<std::int64_t>(steps));
    ASSERT_EQ(group_->reachedWalkPercentage(), literal_->finished);
    ASSERT_EQ(group_->walkCount(), literal_->walkCount);
    Indices positions = literal_->positions;
    positions.resize(agents_);
    ASSERT_EQ(indices(group_->agentsCurrentVerticesList()), positions);
    ASSERT_EQ(VEQRandomGenerator::sharedRandomGenerator()->randomDouble(), random.next());
  }

  void flush() {
    ASSERT_TRUE(group_->flushWalkHistory());
    literal_->flush();
  }

  void place() {
    const Indices moved = places(agents_ + below(draw_, 3));
    group_->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices(moved));
    literal_->positions = moved;
  }

  void linkAgents() {
    if (!linked_ || linked_->n == 0) return;
    const std::uint64_t from = below(draw_, linked_->n);
    const std::uint64_t to = below(draw_, linked_->n);
    linked_->from.push_back(from);
    linked_->to.push_back(to);
    realLinked_->addEdgesFromVerticesIndices_toVerticesIndices_count(&from, &to, 1);
  }

  void compareHistory() {
    ASSERT_EQ(integers(group_->globalVisitFrequencyOfVertices()), literal_->totals);
    for (std::uint64_t agent = 0; agent < agents_; ++agent) {
      const auto a = static_cast<std::int64_t>(agent);
      ASSERT_EQ(integers(group_->visitFrequencyOfVerticesForAgent(a)), literal_->visits[agent]);
      ASSERT_EQ(integers(group_->orderOfVisitedVerticesForAgent(a)), literal_->orders[agent]);
    }
    ASSERT_EQ(integers(group_->globalOrderOfVisitedVertices()), Integers(network_.n));
  }

 private:
  bool coin() { return below(draw_, 2) == 0; }

  // None, one that is too small, one of the exact size, or one with vertices beyond the agents.
  void makeAgentsNetwork() {
    if (below(draw_, 4) == 0) return;
    const std::uint64_t sizes[] = {agents_ - (agents_ > 0), agents_, agents_, agents_ + 7};
    const std::uint64_t n = oneOf(draw_, sizes);
    linked_ =
        std::make_unique<LiteralNetwork>(randomNetwork(draw_, n, below(draw_, 3 * n + 1), coin()));
    realLinked_ = build(*linked_, below(draw_, 3) == 0);
  }

  std::vector<float> randomErrors() {
    static constexpr float kErrors[] = {0.0F,
                                        0.0F,
                                        0.3F,
                                        1.0F,
                                        std::numeric_limits<float>::quiet_NaN(),
                                        -0.5F,
                                        1.5F,
                                        std::numeric_limits<float>::infinity(),
                                        0x1p-31F,
                                        0.99999994F};
    std::vector<float> errors(agents_ + below(draw_, 3));
    const float common = oneOf(draw_, kErrors);
    const bool differing = coin();
    for (float& error : errors) error = differing ? oneOf(draw_, kErrors) : common;
    return errors;
  }

  Indices randomSizes() {
    const std::uint64_t sizes[] = {1, 1, 2, 3, 7, 100, 2 * network_.n + 1};
    Indices all(agents_ + below(draw_, 3));
    const std::uint64_t common = oneOf(draw_, sizes);
    const bool differing = coin();
    for (auto& size : all) size = differing ? oneOf(draw_, sizes) : common;
    return all;
  }

  Indices places(std::uint64_t count) {
    Indices result(count);
    for (auto& place : result) place = below(draw_, network_.n);
    return result;
  }

  Draw& draw_;
  std::uint64_t agents_;
  LiteralNetwork network_;
  std::unique_ptr<LiteralNetwork> linked_;
  Shared<VEQNetwork> realLinked_;
  std::unique_ptr<LiteralDynamicGroup> literal_;
  Owned<VEQNetworkDynamicAgentsGroup> group_;
};

void walkAtRandom(Draw& draw, DynamicPair& pair) {
  static constexpr std::uint64_t kSteps[] = {0, 1, 2, 3, 7, 40, 300};
  static constexpr float kTargets[] = {-1.0F, -1.0F, 0.0F, 0.1F, 0.5F, 0.8F, 1.0F, 2.0F};
  const std::uint64_t steps = oneOf(draw, kSteps);
  pair.walk(steps, oneOf(draw, kTargets));
}

TEST(DynamicWalkOracle, AgreesWithTheLiteralWalkThroughRandomHistories) {
  Draw draw(20261120);
  for (int round = 0; round < rounds(400); ++round) {
    const SharedWork shared = SharedWork::inTurn(round);
    SCOPED_TRACE(::testing::Message() << "round " << round);
    DynamicPair pair(draw, networkOfAnyKind(draw));
    ASSERT_TRUE(pair.isMade());
    for (int event = 0; event < 8; ++event) {
      switch (below(draw, 8)) {
        case 0:
          pair.flush();
          break;
        case 1:
          pair.place();
          break;
        case 2:
          pair.linkAgents();
          break;
        case 3:
          pair.compareHistory();
          break;
        default:
          walkAtRandom(draw, pair);
          break;
      }
      if (HasFatalFailure()) return;
    }
    // From somewhere else the agents show by where they go what they remember.
    pair.place();
    pair.walk(300, -1.0F);
    pair.compareHistory();
    if (HasFatalFailure()) return;
  }
}

// Stuck agents go on sharing, which may come to an end or go round in a cycle. With a target that
// is never met a step is a tile, so that both are found soon.
TEST(DynamicWalkOracle, AgreesWhereStuckAgentsGoOnSharing) {
  Draw draw(7);
  for (int round = 0; round < rounds(200); ++round) {
    SCOPED_TRACE(::testing::Message() << "round " << round);
    DynamicPair pair(draw, networkOfTraps(draw, 4 + below(draw, 40)));
    ASSERT_TRUE(pair.isMade());
    for (int walk = 0; walk < 6; ++walk) {
      pair.place();
      pair.walk(1 + below(draw, 3), -1.0F);
      pair.walk(below(draw, 400), 2.0F);
      if (HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace veq::test::dynamic_walk_oracle_test
