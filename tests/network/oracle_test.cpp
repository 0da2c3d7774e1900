// Random networks, compared with a slow one in every question.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/network_comparison.hpp"
#include "tests/support/slow_network.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::test::oracle_test {
namespace {

using internal::AdjacencyStore;
using internal::CoreAccess;

using Random = std::mt19937_64;

std::uint64_t below(Random& random, std::uint64_t n) { return random() % n; }

float randomWeight(Random& random) { return static_cast<float>(below(random, 2000)) / 8 - 100; }

std::vector<float> randomWeights(Random& random, std::uint64_t count) {
  std::vector<float> weights(count);
  for (float& weight : weights) weight = randomWeight(random);
  return weights;
}

// Every third edge is a self-loop or repeats an earlier one.
SlowNetwork::Edge randomEdge(Random& random, const SlowNetwork& slow) {
  const std::uint64_t a = below(random, slow.vertexCount);
  if (below(random, 6) == 0) return {a, a};
  if (below(random, 6) == 0 && !slow.edges.empty()) {
    return slow.edges[below(random, slow.edges.size())];
  }
  return {a, below(random, slow.vertexCount)};
}

SlowNetwork randomNetwork(Random& random, bool directed, bool vertexWeighted, bool edgeWeighted) {
  SlowNetwork slow;
  slow.vertexCount = 1 + below(random, 12);
  slow.directed = directed;
  const std::uint64_t edges = below(random, 40);
  while (slow.edges.size() < edges) slow.edges.push_back(randomEdge(random, slow));
  if (vertexWeighted) slow.verticesWeights = randomWeights(random, slow.vertexCount);
  if (edgeWeighted) slow.edgesWeights = randomWeights(random, edges);
  return slow;
}

Owned<VEQNetwork> realNetwork(const SlowNetwork& slow, std::uint64_t narrowLimit) {
  internal::RawVector<std::uint64_t> from;
  internal::RawVector<std::uint64_t> to;
  for (const auto& [a, b] : slow.edges) {
    from.push_back(a);
    to.push_back(b);
  }
  internal::NetworkDraft draft;
  draft.vertexCount = slow.vertexCount;
  draft.from = std::move(from);
  draft.to = std::move(to);
  draft.directed = slow.directed;
  draft.narrowLimit = narrowLimit;
  if (slow.verticesWeights) {
    draft.verticesWeights.emplace(slow.verticesWeights->begin(), slow.verticesWeights->end());
  }
  if (slow.edgesWeights) {
    draft.edgesWeights.emplace(slow.edgesWeights->begin(), slow.edgesWeights->end());
  }
  return CoreAccess::build(std::move(draft));
}

struct Flags {
  bool directed;
  bool vertexWeighted;
  bool edgeWeighted;
};

class OracleTest : public testing::TestWithParam<int> {
 protected:
  Flags flags() const {
    const int bits = GetParam();
    return {(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0};
  }
};

TEST_P(OracleTest, RandomNetworksAnswerAsASlowOne) {
  Random random(static_cast<std::uint64_t>(GetParam()) + 1);
  for (int i = 0; i < 25 && !HasFailure(); ++i) {
    const auto [directed, vertexWeighted, edgeWeighted] = flags();
    const SlowNetwork slow = randomNetwork(random, directed, vertexWeighted, edgeWeighted);
    for (const std::uint64_t limit : {AdjacencyStore::kNarrowLimit, std::uint64_t{0}}) {
      const auto network = realNetwork(slow, limit);
      EXPECT_EQ(CoreAccess::of(*network).store.isNarrow(), limit != 0);
      expectSame(*network, slow);
    }
  }
}

// A network and the slow one that is edited beside it, with handles and snapshots held all along.
class EditedPair {
 public:
  EditedPair(Random& random, Flags flags, std::uint64_t narrowLimit)
      : random_(random),
        slow_(randomNetwork(random, flags.directed, flags.vertexWeighted, flags.edgeWeighted)),
        network_(realNetwork(slow_, narrowLimit)) {}

  void edit() {
    switch (below(random_, 7)) {
      case 0:
        insertMany(below(random_, 10));
        break;
      case 1:
        if (below(random_, 8) == 0) insertMany(60 + below(random_, 20));
        break;
      case 2:
        link();
        break;
      case 3:
        linkWithWeight();
        break;
      case 4:
        setWeights();
        break;
      case 5:
        if (below(random_, 12) == 0) block();
        break;
      case 6:
        setProperty();
        break;
    }
    hold();
  }

  void compare() {
    expectSame(*network_, slow_);
    if (edgeColumn_.empty()) return;
    const PropertyColumn* column = columnOf(*network_->propertiesOfEdges(), "k");
    ASSERT_EQ(column->count(), edgeColumn_.size());
    for (std::uint64_t e = 0; e < edgeColumn_.size(); ++e) {
      EXPECT_EQ(column->objectAtIndex(e), edgeColumn_[e]);
    }
  }

  // Everything that was held must say that the network is gone, and nothing may touch it.
  void destroy() {
    const VEQVertexArray vertices = network_->vertices();
    const std::uint64_t n = network_->countVertices();
    network_.reset();
    for (const auto& vertex : heldVertices_) EXPECT_FALSE(vertex->isValid());
    for (const auto& edge : heldEdges_) {
      EXPECT_FALSE(edge->isValid());
      EXPECT_THROW(static_cast<void>(edge->weight()), std::invalid_argument);
    }
    for (std::size_t i = 0; i < snapshots_.size(); ++i) {
      EXPECT_EQ(snapshots_[i].count(), snapshotCounts_[i]);
      for (const VEQEdge& edge : snapshots_[i]) EXPECT_FALSE(edge.isValid());
    }
    EXPECT_EQ(vertices.count(), n);
    for (const VEQVertex& vertex : vertices) EXPECT_FALSE(vertex.isValid());
  }

 private:
  void addToSlow(SlowNetwork::Edge edge) {
    slow_.edges.push_back(edge);
    if (slow_.edgesWeights) slow_.edgesWeights->push_back(1.0f);
    if (!edgeColumn_.empty()) edgeColumn_.emplace_back();
  }

  void insertMany(std::uint64_t count) {
    std::vector<std::uint64_t> from;
    std::vector<std::uint64_t> to;
    for (std::uint64_t i = 0; i < count; ++i) {
      const auto edge = randomEdge(random_, slow_);
      from.push_back(edge.first);
      to.push_back(edge.second);
      addToSlow(edge);
    }
    network_->addEdgesFromVerticesIndices_toVerticesIndices_count(from.data(), to.data(), count);
  }

  void link() {
    const auto edge = randomEdge(random_, slow_);
    heldEdges_.push_back(network_->linkVertex_to(*network_->vertexAtIndex(edge.first),
                                                 *network_->vertexAtIndex(edge.second)));
    EXPECT_EQ(heldEdges_.back()->identification(), slow_.edges.size());
    addToSlow(edge);
  }

  void linkWithWeight() {
    const auto edge = randomEdge(random_, slow_);
    const float weight = randomWeight(random_);
    heldEdges_.push_back(network_->linkVertex_to_weight(
        *network_->vertexAtIndex(edge.first), *network_->vertexAtIndex(edge.second), weight));
    addToSlow(edge);
    if (blocked_) return;
    if (!slow_.edgesWeights) slow_.edgesWeights.emplace(slow_.edges.size(), 0.0f);
    slow_.edgesWeights->back() = weight;
  }

  void setWeights() {
    const std::uint64_t m = slow_.edges.size();
    const float weight = randomWeight(random_);
    if (below(random_, 2) == 0) {
      const std::uint64_t v = below(random_, slow_.vertexCount);
      network_->setWeightValue_atVertexIndex(weight, v);
      if (blocked_) return;
      if (!slow_.verticesWeights) slow_.verticesWeights.emplace(slow_.vertexCount, 0.0f);
      (*slow_.verticesWeights)[v] = weight;
    } else if (m > 0 && below(random_, 2) == 0) {
      const std::uint64_t e = below(random_, m);
      network_->setWeightValue_atEdgeIndex(weight, e);
      if (blocked_) return;
      if (!slow_.edgesWeights) slow_.edgesWeights.emplace(m, 0.0f);
      (*slow_.edgesWeights)[e] = weight;
    } else {
      const std::vector<float> weights = randomWeights(random_, m + below(random_, 2));
      network_->setEdgesWeightValues(
          *VEQNumberArray::initWithFloatArray_count(weights.data(), weights.size()));
      if (!blocked_) slow_.edgesWeights.emplace(weights.data(), weights.data() + m);
    }
  }

  void block() {
    network_->blockEditing();
    blocked_ = true;
  }

  void setProperty() {
    if (slow_.edges.empty()) return;
    const std::uint64_t e = below(random_, slow_.edges.size());
    const PropertyValue value = std::to_string(random_());
    network_->setPropertyValue_forKey_atEdgeIndex(value, "k", e);
    edgeColumn_.resize(slow_.edges.size());
    edgeColumn_[e] = value;
  }

  void hold() {
    if (below(random_, 4) != 0) return;
    heldVertices_.push_back(network_->vertexAtIndex(below(random_, slow_.vertexCount)));
    snapshots_.push_back(network_->edges());
    snapshotCounts_.push_back(slow_.edges.size());
  }

  Random& random_;
  SlowNetwork slow_;
  Owned<VEQNetwork> network_;
  bool blocked_ = false;
  std::vector<PropertyValue> edgeColumn_;
  std::vector<Shared<VEQVertex>> heldVertices_;
  std::vector<Shared<VEQEdge>> heldEdges_;
  std::vector<VEQEdgeArray> snapshots_;
  std::vector<std::uint64_t> snapshotCounts_;
};

TEST_P(OracleTest, RandomEditingLeavesWhatTheSlowOneHas) {
  Random random(static_cast<std::uint64_t>(GetParam()) + 100);
  // The last limit is passed while edges are inserted.
  for (const std::uint64_t limit :
       {AdjacencyStore::kNarrowLimit, std::uint64_t{0}, std::uint64_t{200}}) {
    for (int i = 0; i < 4 && !HasFailure(); ++i) {
      EditedPair pair(random, flags(), limit);
      for (int edits = 0; edits < 40; ++edits) {
        pair.edit();
        if (edits % 10 == 9) pair.compare();
      }
      pair.destroy();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllFlags, OracleTest, testing::Range(0, 8));

}  // namespace
}  // namespace veq::test::oracle_test
