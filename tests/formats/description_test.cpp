#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "veq/network/network.hpp"

namespace veq::description_test {
namespace {

Owned<VEQNetwork> pairOf(bool directed) {
  return VEQNetwork::initWithLinksIndexedFrom_toIndices_directed(
      VEQNumberArray::ofIndices({0}), VEQNumberArray::ofIndices({1}), directed);
}

TEST(Description, NamesCountsFlagsAndKeysOfADirectedNetwork) {
  const VEQNumberArray weights = VEQNumberArray::ofFloats({2.0F, 3.0F});
  auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0, 1}), VEQNumberArray::ofIndices({1, 2}), true, nullptr,
          &weights);
  network->setPropertyValue_forKey_atVertexIndex("a", "Name", 0);
  EXPECT_EQ(network->description(),
            "Network:\n"
            "Number of Vertices:3 \n"
            "Number of Edges:2 (Weighted) (Directed)\n"
            "Vertices:\n"
            "Vertices Properties:\"Name\" \n"
            "Edges Properties:\n");
}

TEST(Description, OfAnEmptyUndirectedNetwork) {
  EXPECT_EQ(VEQNetwork::initWithVertexCapacity_edgeCapacity(5, 5)->description(),
            "Network:\nNumber of Vertices:0 \nNumber of Edges:0  \nVertices:\nVertices "
            "Properties:\nEdges Properties:\n");
}

TEST(Description, MarksVertexWeightsBehindTheVertices) {
  const VEQNumberArray weights = VEQNumberArray::ofFloats({2.0F, 3.0F});
  const auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0}), VEQNumberArray::ofIndices({1}), true, &weights, nullptr);
  EXPECT_EQ(network->description(),
            "Network:\n"
            "Number of Vertices:2 (Weighted)\n"
            "Number of Edges:1  (Directed)\n"
            "Vertices:\n"
            "Vertices Properties:\n"
            "Edges Properties:\n");
}

TEST(Description, UndirectedEdgeWeightsLeaveABlankAtTheEndOfTheLine) {
  auto network = pairOf(false);
  network->setWeightValue_atEdgeIndex(2.0F, 0);
  EXPECT_EQ(network->description(),
            "Network:\n"
            "Number of Vertices:2 \n"
            "Number of Edges:1 (Weighted) \n"
            "Vertices:\n"
            "Vertices Properties:\n"
            "Edges Properties:\n");
}

TEST(Description, ListsKeysInTheOrderOfTheirFirstSettingAndAsTheyAre) {
  auto network = pairOf(false);
  network->setPropertyValue_forKey_atVertexIndex(1, "zeta", 0);
  network->setPropertyValue_forKey_atVertexIndex(1, "alpha", 0);
  network->setPropertyValue_forKey_atVertexIndex(2, "zeta", 1);
  network->setPropertyValue_forKey_atEdgeIndex(1, "say \"%d\"", 0);
  network->setPropertyValue_forKey_atEdgeIndex(1, "", 0);
  EXPECT_EQ(network->description(),
            "Network:\n"
            "Number of Vertices:2 \n"
            "Number of Edges:1  \n"
            "Vertices:\n"
            "Vertices Properties:\"zeta\" \"alpha\" \n"
            "Edges Properties:\"say \"%d\"\" \"\" \n");
}

// Vertices without edges cost address space only, except where a sanitizer marks every byte of it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kAddressSpaceIsFree = false;
#elif defined(__has_feature)
constexpr bool kAddressSpaceIsFree =
    !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer);
#else
constexpr bool kAddressSpaceIsFree = true;
#endif

TEST(Description, PrintsCountsAsSignedNumbersOf32Bits) {
  if (!kAddressSpaceIsFree) GTEST_SKIP() << "2^31 vertices are too many under a sanitizer";
  const auto network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      2147483648U, VEQNumberArray::ofIndices({}), VEQNumberArray::ofIndices({}));
  if (!network) GTEST_SKIP() << "this machine cannot hold 2^31 vertices";
  EXPECT_EQ(network->description(),
            "Network:\n"
            "Number of Vertices:-2147483648 \n"
            "Number of Edges:0  \n"
            "Vertices:\n"
            "Vertices Properties:\n"
            "Edges Properties:\n");
}

TEST(MatrixDump, OfAnUndirectedEdgeIsSymmetric) {
  EXPECT_EQ(pairOf(false)->VEQ_MatrixDebug(),
            "0.000000  1.000000  \n"
            "1.000000  0.000000  \n");
}

TEST(MatrixDump, RowsAreSources) {
  EXPECT_EQ(pairOf(true)->VEQ_MatrixDebug(),
            "0.000000  1.000000  \n"
            "0.000000  0.000000  \n");
}

TEST(MatrixDump, PrintsSixDecimalsOfEachFloat) {
  // 16777216 + 1 stays 16777216 as a float, and 0.1F is 0.10000000149.
  const VEQNumberArray weights = VEQNumberArray::ofFloats(
      {16777216.0F, 1.0F, 0.1F, -2.5F, std::numeric_limits<float>::infinity(), -1e-9F});
  const auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0, 0, 0, 1, 1, 2}),
          VEQNumberArray::ofIndices({0, 0, 1, 1, 2, 2}), true, nullptr, &weights);
  EXPECT_EQ(network->VEQ_MatrixDebug(),
            "16777216.000000  0.100000  0.000000  \n"
            "0.000000  -2.500000  inf  \n"
            "0.000000  0.000000  -0.000000  \n");
}

// The sign of inf - inf differs between processors, and its text does not.
TEST(MatrixDump, SumsThatAreNoNumberHaveNoSignAndNeitherHaveStrengths) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const VEQNumberArray weights =
      VEQNumberArray::ofFloats({kInfinity, -kInfinity, std::copysign(nan, -1.0F), nan});
  const auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0, 0, 1, 1}), VEQNumberArray::ofIndices({0, 0, 0, 1}), true,
          nullptr, &weights);
  EXPECT_EQ(network->VEQ_MatrixDebug(),
            "nan  0.000000  \n"
            "nan  nan  \n");
  EXPECT_EQ(network->calcStrengths()->description(), "(nan, nan)");
  EXPECT_EQ(weights.description(), "(inf, -inf, nan, nan)");
}

TEST(MatrixDump, CountsAnUndirectedSelfLoopTwice) {
  const VEQNumberArray weights = VEQNumberArray::ofFloats({2.5F});
  const auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0}), VEQNumberArray::ofIndices({0}), false, nullptr, &weights);
  EXPECT_EQ(network->VEQ_MatrixDebug(), "5.000000  \n");
}

TEST(MatrixDump, OfNoVerticesIsEmpty) {
  EXPECT_EQ(VEQNetwork::initWithVertexCapacity_edgeCapacity(0, 0)->VEQ_MatrixDebug(), "");
}

TEST(MatrixDump, OfVerticesWithoutEdgesIsZero) {
  const auto network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      2, VEQNumberArray::ofIndices({}), VEQNumberArray::ofIndices({}));
  EXPECT_EQ(network->VEQ_MatrixDebug(),
            "0.000000  0.000000  \n"
            "0.000000  0.000000  \n");
}

}  // namespace
}  // namespace veq::description_test
