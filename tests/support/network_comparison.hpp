#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/slow_network.hpp"
#include "veq/network/network.hpp"

namespace veq::test {

inline std::vector<std::uint64_t> neighboursOf(const SlowNetwork::List& list) {
  std::vector<std::uint64_t> result;
  for (const auto& entry : list) result.push_back(entry.neighbour);
  return result;
}

inline std::vector<std::uint64_t> edgesOf(const SlowNetwork::List& list) {
  std::vector<std::uint64_t> result;
  for (const auto& entry : list) result.push_back(entry.edge);
  return result;
}

/// Every question about one vertex.
inline void expectSameVertex(const VEQNetwork& network, const SlowNetwork& slow, std::uint64_t v) {
  const SlowNetwork::List out = slow.outList(v);
  const SlowNetwork::List in = slow.inList(v);
  EXPECT_EQ(network.countEdgesOfVertexAtIndex(v), out.size());
  EXPECT_EQ(network.countToVerticesOfVertexAtIndex(v), out.size());
  EXPECT_EQ(network.countInEdgesOfVertexAtIndex(v), in.size());
  EXPECT_EQ(network.countFromVerticesOfVertexAtIndex(v), in.size());
  EXPECT_EQ(network.calcDegreeOfVertexAtIndex(v), static_cast<double>(out.size()));
  EXPECT_EQ(network.calcInDegreeOfVertexAtIndex(v), static_cast<double>(out.size()));
  EXPECT_EQ(network.calcStrengthOfVertexAtIndex(v), slow.strengthOf(v));
  EXPECT_EQ(network.calcInStrengthOfVertexAtIndex(v), slow.inStrengthOf(v));
  EXPECT_EQ(indices(*network.indicesOfVerticesLinkedFromVertexAtIndex(v)), neighboursOf(out));
  EXPECT_EQ(indices(*network.indicesOfEdgesLinkedFromVertexAtIndex(v)), edgesOf(out));
  EXPECT_EQ(indices(*network.indicesOfVerticesLinkedToVertexAtIndex(v)), neighboursOf(in));
  EXPECT_EQ(indices(*network.indicesOfEdgesLinkedToVertexAtIndex(v)), edgesOf(in));
  EXPECT_EQ(indices(network.verticesLinkedFromVertexAtIndex(v)), neighboursOf(out));
  EXPECT_EQ(indices(network.edgesLinkedFromVertexAtIndex(v)), edgesOf(out));
  EXPECT_EQ(indices(network.verticesLinkedToVertexAtIndex(v)), neighboursOf(in));
  EXPECT_EQ(indices(network.edgesLinkedToVertexAtIndex(v)), edgesOf(in));
}

/// Every question that the slow network can answer.
inline void expectSame(const VEQNetwork& network, const SlowNetwork& slow) {
  ASSERT_EQ(network.countVertices(), slow.vertexCount);
  ASSERT_EQ(network.countEdges(), slow.edges.size());
  EXPECT_EQ(network.isDirected(), slow.directed);
  EXPECT_EQ(network.isEdgeWeighted(), slow.edgesWeights.has_value());
  EXPECT_EQ(network.isVertexWeighted(), slow.verticesWeights.has_value());

  std::vector<double> degrees;
  std::vector<double> inDegrees;
  std::vector<double> strengths;
  std::vector<double> inStrengths;
  for (std::uint64_t v = 0; v < slow.vertexCount; ++v) {
    expectSameVertex(network, slow, v);
    degrees.push_back(static_cast<double>(slow.outList(v).size()));
    inDegrees.push_back(static_cast<double>(slow.inList(v).size()));
    strengths.push_back(slow.strength(v));
    inStrengths.push_back(slow.inStrength(v));
    const float weight = slow.verticesWeights ? (*slow.verticesWeights)[v] : 1.0f;
    EXPECT_EQ(network.vertexAtIndex(v)->weight(), weight);
  }
  EXPECT_EQ(doubles(*network.calcDegrees()), degrees);
  EXPECT_EQ(doubles(*network.calcInDegrees()), inDegrees);
  EXPECT_EQ(doubles(*network.calcStrengths()), strengths);
  EXPECT_EQ(doubles(*network.calcInStrengths()), inStrengths);

  for (std::uint64_t e = 0; e < slow.edges.size(); ++e) {
    const auto edge = network.edgeAtIndex(e);
    EXPECT_EQ(edge->fromVertex()->identification(), slow.edges[e].first);
    EXPECT_EQ(edge->toVertex()->identification(), slow.edges[e].second);
    EXPECT_EQ(edge->weight(), slow.edgesWeights ? (*slow.edgesWeights)[e] : 1.0f);
  }
  std::vector<float> cells(slow.vertexCount * slow.vertexCount, -1.0f);
  EXPECT_EQ(network.buildAdjacencyMatrixInPointer(cells.data()), cells.data());
  EXPECT_EQ(cells, slow.matrix());
}

}  // namespace veq::test
