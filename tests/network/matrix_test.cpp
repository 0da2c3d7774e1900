#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "veq/network/network.hpp"

namespace veq::test::matrix_test {
namespace {

using testing::Each;
using testing::ElementsAre;

std::vector<float> matrix(const VEQNetwork& network) {
  const std::uint64_t n = network.countVertices();
  const std::unique_ptr<float, decltype(&std::free)> cells(
      network.buildAdjacencyMatrixInPointer(nullptr), &std::free);
  return std::vector<float>(cells.get(), cells.get() + n * n);
}

TEST(AdjacencyMatrix, RowsAreSources) {
  EXPECT_THAT(matrix(*drawDirected("0-1 2-0")), ElementsAre(0, 1, 0, 0, 0, 0, 1, 0, 0));
}

TEST(AdjacencyMatrix, OfAnUndirectedNetworkIsSymmetric) {
  EXPECT_THAT(matrix(*drawUndirected("0-1 2-0")), ElementsAre(0, 1, 1, 1, 0, 0, 1, 0, 0));
}

TEST(AdjacencyMatrix, ParallelEdgesAddUp) {
  EXPECT_THAT(matrix(*drawDirected("0-1 0-1")), ElementsAre(0, 2, 0, 0));
  EXPECT_THAT(matrix(*drawUndirected("0-1 1-0")), ElementsAre(0, 2, 2, 0));
}

TEST(AdjacencyMatrix, SelfLoopsCountTwiceUndirectedAndOnceDirected) {
  const auto undirected = drawUndirected("1-1");
  EXPECT_THAT(matrix(*undirected), ElementsAre(0, 0, 0, 2));
  undirected->setWeightValue_atEdgeIndex(2.5f, 0);
  EXPECT_THAT(matrix(*undirected), ElementsAre(0, 0, 0, 5));
  const auto directed = drawDirected("1-1");
  EXPECT_THAT(matrix(*directed), ElementsAre(0, 0, 0, 1));
  directed->setWeightValue_atEdgeIndex(2.5f, 0);
  EXPECT_THAT(matrix(*directed), ElementsAre(0, 0, 0, 2.5f));
}

TEST(AdjacencyMatrix, WithoutEdgesIsZero) {
  EXPECT_THAT(matrix(*drawUndirected("", 3)), testing::AllOf(testing::SizeIs(9), Each(0.0f)));
}

TEST(AdjacencyMatrix, CellsAddFloats) {
  const auto network = drawDirected("0-0 0-0 0-0");
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({16777216.0f, 1.0f, 1.0f}));
  EXPECT_THAT(matrix(*network), ElementsAre(16777216.0f));
}

TEST(AdjacencyMatrix, ADirtyBufferIsClearedAndGivenBack) {
  for (const char* edges : {"", "0-1"}) {
    const auto network = drawDirected(edges, 2);
    std::vector<float> buffer(5, 7.0f);
    EXPECT_EQ(network->buildAdjacencyMatrixInPointer(buffer.data()), buffer.data());
    EXPECT_THAT(buffer, ElementsAre(0, *edges ? 1 : 0, 0, 0, 7.0f));
  }
}

TEST(AdjacencyMatrix, OfNoVerticesIsABufferThatCanBeFreed) {
  const auto network = VEQNetwork::initWithVertexCapacity_edgeCapacity(3, 3);
  float* cells = network->buildAdjacencyMatrixInPointer(nullptr);
  EXPECT_NE(cells, nullptr);
  std::free(cells);
  float untouched = 7.0f;
  EXPECT_EQ(network->buildAdjacencyMatrixInPointer(&untouched), &untouched);
  EXPECT_EQ(untouched, 7.0f);
}

}  // namespace
}  // namespace veq::test::matrix_test
