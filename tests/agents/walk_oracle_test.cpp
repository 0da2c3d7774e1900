// The walk against its literal form, on random networks and through random histories.
#include <cstdint>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/agents.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "veq/agents/internal/group_state.hpp"

namespace veq::test::walk_oracle_test {
namespace {

using Draw = std::mt19937_64;

std::uint64_t below(Draw& draw, std::uint64_t n) { return draw() % n; }

// Some vertices without edges; self-loops and parallel edges occur by themselves.
LiteralNetwork randomNetwork(Draw& draw, std::uint64_t n, std::uint64_t edges, bool directed) {
  LiteralNetwork network{n, directed, {}, {}};
  const std::uint64_t linked = std::max<std::uint64_t>(1, n - n / 8);
  for (std::uint64_t i = 0; i < edges; ++i) {
    network.from.push_back(below(draw, linked));
    network.to.push_back(below(draw, linked));
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

class Pair {
 public:
  Pair(Draw& draw, const LiteralNetwork& network, std::uint64_t agents, bool wide)
      : draw_(draw),
        n_(network.n),
        agents_(agents),
        start_(places(agents)),
        literal_(network, start_),
        group_(groupAt(build(network, wide), start_)) {}

  void walk() {
    static constexpr std::uint64_t kSteps[] = {0, 1, 2, 3, 7, 40, 333, 1000};
    static constexpr float kTargets[] = {-1.0F, -1.0F, 0.0F, 0.1F, 0.5F, 0.8F, 1.0F, 2.0F};
    const std::uint64_t steps = kSteps[below(draw_, std::size(kSteps))];
    const float target = kTargets[below(draw_, std::size(kTargets))];
    const auto seedOfWalk = static_cast<std::uint32_t>(draw_());
    const bool withPaths = below(draw_, 2) == 0;
    seed(seedOfWalk);
    LiteralRandom random(seedOfWalk);

    const auto expected = literal_.walk(random, steps, target);
    const auto paths = group_->walkForSteps_returnPath_untilReach(steps, withPaths, target);
    ASSERT_EQ(paths.has_value(), withPaths);
    if (withPaths) {
      ASSERT_EQ(indices(*paths), expected);
    }
    ASSERT_EQ(group_->currentProgress(), static_cast<std::int64_t>(literal_.progress));
    ASSERT_EQ(group_->currentWork(), static_cast<std::int64_t>(steps));
    ASSERT_EQ(group_->reachedWalkPercentage(), literal_.finished);
    ASSERT_EQ(group_->walkCount(), literal_.walkCount);
    ASSERT_FALSE(group_->isWorking());
    Indices positions = literal_.positions;
    positions.resize(agents_);
    ASSERT_EQ(indices(group_->agentsCurrentVerticesList()), positions);
    ASSERT_EQ(VEQRandomGenerator::sharedRandomGenerator()->randomDouble(), random.next());
  }

  void flush() {
    ASSERT_TRUE(group_->flushWalkHistory());
    literal_.flush();
    held_.clear();
  }

  void place() {
    const Indices moved = places(agents_ + below(draw_, 3));
    group_->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices(moved));
    literal_.positions = moved;
  }

  void askForSome() {
    if (below(draw_, 2) == 0) {
      totals_ = group_->globalVisitFrequencyOfVertices();
      ASSERT_EQ(integers(totals_), literal_.totals);
    }
    if (agents_ == 0) return;
    const std::uint64_t agent = below(draw_, agents_);
    const auto a = static_cast<std::int64_t>(agent);
    held_.push_back({agent, group_->visitFrequencyOfVerticesForAgent(a),
                     group_->orderOfVisitedVerticesForAgent(a)});
  }

  void compareHeld() {
    for (const Held& held : held_) {
      ASSERT_EQ(integers(held.visits), literal_.visits[held.agent]);
      ASSERT_EQ(integers(held.order), literal_.orders[held.agent]);
    }
  }

  void compareAll() {
    ASSERT_EQ(integers(group_->globalVisitFrequencyOfVertices()), literal_.totals);
    for (std::uint64_t agent = 0; agent < agents_; ++agent) {
      const auto a = static_cast<std::int64_t>(agent);
      ASSERT_EQ(integers(group_->visitFrequencyOfVerticesForAgent(a)), literal_.visits[agent]);
      ASSERT_EQ(integers(group_->orderOfVisitedVerticesForAgent(a)), literal_.orders[agent]);
    }
    ASSERT_EQ(integers(group_->globalOrderOfVisitedVertices()), Integers(n_));
  }

 private:
  struct Held {
    std::uint64_t agent;
    Shared<const VEQNumberArray> visits;
    Shared<const VEQNumberArray> order;
  };

  Indices places(std::uint64_t count) {
    Indices result(count);
    for (auto& place : result) place = below(draw_, n_);
    return result;
  }

  Draw& draw_;
  std::uint64_t n_;
  std::uint64_t agents_;
  Indices start_;
  LiteralGroup literal_;
  Owned<VEQNetworkAgentsGroup> group_;
  std::vector<Held> held_;
  Shared<const VEQNumberArray> totals_;
};

TEST(WalkOracle, AgreesWithTheLiteralWalkThroughRandomHistories) {
  static constexpr std::uint64_t kAgents[] = {0, 1, 2, 3, 16, 17, 100, 300};
  static constexpr std::uint64_t kVertices[] = {1, 2, 5, 34, 200, 1000};
  Draw draw(20261120);
  for (int round = 0; round < rounds(120); ++round) {
    const SharedWork shared = SharedWork::inTurn(round);
    const std::uint64_t n = kVertices[below(draw, std::size(kVertices))];
    const std::uint64_t agents = kAgents[below(draw, std::size(kAgents))];
    const bool wide = below(draw, 3) == 0;
    const LiteralNetwork network = randomNetwork(draw, n, below(draw, 4 * n), below(draw, 2) == 0);
    SCOPED_TRACE(::testing::Message() << "round " << round << ", " << n << " vertices, " << agents
                                      << " agents, wide " << wide);
    Pair pair(draw, network, agents, wide);
    for (int event = 0; event < 8; ++event) {
      switch (below(draw, 6)) {
        case 0:
          pair.flush();
          break;
        case 1:
          pair.place();
          break;
        case 2:
          pair.askForSome();
          break;
        default:
          pair.walk();
          break;
      }
      pair.compareHeld();
      if (HasFatalFailure()) return;
    }
    pair.compareAll();
    if (HasFatalFailure()) return;
  }
}

/// A group with so small a log that it is folded often.
class FoldingGroup final : public VEQNetworkAgentsGroup {
 public:
  FoldingGroup(Shared<const VEQNetwork> network, const Indices& start)
      : VEQNetworkAgentsGroup(std::make_unique<internal::GroupState>(std::move(network), start)) {
    state().history = History(state().network->countVertices(), start.size(), 0, {.log = 65536});
  }
  std::uint64_t logBytes() { return std::get<History>(state().history).logBytes(); }

 private:
  using History = internal::WalkHistory<std::uint32_t>;
};

// Long enough for the log of moves to be folded several times, in the middle of a walk, with dense
// and with sparse visits.
TEST(WalkOracle, AgreesWhileTheLogIsFolded) {
  int round = 0;
  for (const auto& [n, agents] : {std::pair<std::uint64_t, std::uint64_t>{40, 3},
                                  {40, 50},
                                  {40, 50},
                                  {3000, 20},
                                  {20000, 1}}) {
    const SharedWork shared = SharedWork::inTurn(round++);
    Draw draw(n);
    const LiteralNetwork network = randomNetwork(draw, n, 3 * n, false);
    Indices start(agents);
    for (auto& place : start) place = below(draw, n);
    LiteralGroup literal(network, start);
    const auto group = std::make_unique<FoldingGroup>(build(network, n == 40), start);
    for (std::uint32_t walk = 1; walk <= 3; ++walk) {
      seed(walk);
      LiteralRandom random(walk);
      const std::uint64_t steps = 400000 / agents;
      literal.walk(random, steps, -1.0F);
      group->walkForSteps_returnPath(steps, walk == 3);
      EXPECT_EQ(group->logBytes(), 0U);
      if (walk == 2 && agents > 1) {
        ASSERT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), literal.visits[0]);
      }
    }
    ASSERT_EQ(integers(group->globalVisitFrequencyOfVertices()), literal.totals);
    for (std::uint64_t agent = 0; agent < agents; ++agent) {
      const auto a = static_cast<std::int64_t>(agent);
      ASSERT_EQ(integers(group->visitFrequencyOfVerticesForAgent(a)), literal.visits[agent]);
      ASSERT_EQ(integers(group->orderOfVisitedVerticesForAgent(a)), literal.orders[agent]);
    }
  }
}

TEST(WalkOracle, AgreesForMoreAgentsThanATileHasMoves) {
  Draw draw(5);
  const LiteralNetwork network = randomNetwork(draw, 50, 120, false);
  Indices start(70000);
  for (auto& place : start) place = below(draw, network.n);
  LiteralGroup literal(network, start);
  const auto group = groupAt(build(network, false), start);
  seed(11);
  LiteralRandom random(11);
  const auto expected = literal.walk(random, 3, -1.0F);
  EXPECT_EQ(indices(group->walkForSteps(3)), expected);
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), literal.totals);
}

}  // namespace
}  // namespace veq::test::walk_oracle_test
