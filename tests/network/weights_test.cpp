#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::weights_test {
namespace {

using testing::Each;
using testing::ElementsAre;

TEST(Weights, OfAnUnweightedNetworkAreAllOne) {
  const auto network = drawUndirected("0-1 1-2", 4);
  EXPECT_THAT(doubles(*network->verticesWeightValues()), ElementsAre(1, 1, 1, 1));
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(1, 1));
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isEdgeWeighted());
}

TEST(Weights, TheFirstSingleVertexWeightMakesAllOthersZero) {
  const auto network = drawUndirected("0-1 1-2");
  network->setWeightValue_atVertexIndex(2.5f, 1);
  EXPECT_TRUE(network->isVertexWeighted());
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_THAT(doubles(*network->verticesWeightValues()), ElementsAre(0.0, 2.5, 0.0));
  network->setWeightValue_atVertexIndex(-1.0f, 2);
  EXPECT_THAT(doubles(*network->verticesWeightValues()), ElementsAre(0.0, 2.5, -1.0));
}

TEST(Weights, TheFirstSingleEdgeWeightMakesAllOthersZero) {
  const auto network = drawUndirected("0-1 1-2 0-2");
  network->setWeightValue_atEdgeIndex(2.5f, 2);
  EXPECT_TRUE(network->isEdgeWeighted());
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(0.0, 0.0, 2.5));
}

TEST(Weights, AnIndexAtTheCountIsToldOffInTheWordsForVertices) {
  const auto network = drawUndirected("0-1 1-2", 5);
  const auto texts = {
      invalidArgumentText([&] { network->setWeightValue_atVertexIndex(1.0f, 5); }),
      invalidArgumentText([&] { network->setWeightValue_atVertexIndex(1.0f, UINT64_MAX); }),
      invalidArgumentText([&] { network->setWeightValue_atEdgeIndex(1.0f, 2); }),
      invalidArgumentText([&] { network->setWeightValue_atEdgeIndex(1.0f, UINT64_MAX); })};
  EXPECT_THAT(texts, Each("Index must be less than number of Vertices."));
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isEdgeWeighted());
}

TEST(Weights, SettingAllTakesTheFirstOfALongerArray) {
  const auto network = drawUndirected("0-1 1-2");
  network->setVerticesWeightValues(VEQNumberArray::ofDoubles({1, 2, 3, 4, 5}));
  network->setEdgesWeightValues(VEQNumberArray::ofIntegers({-7, 8, 9}));
  EXPECT_THAT(doubles(*network->verticesWeightValues()), ElementsAre(1, 2, 3));
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(-7, 8));
  network->setVerticesWeightValues(VEQNumberArray::ofFloats({3, 2, 1}));
  EXPECT_THAT(doubles(*network->verticesWeightValues()), ElementsAre(3, 2, 1));
}

TEST(Weights, AShorterArrayIsRefused) {
  const auto network = drawUndirected("0-1 1-2");
  EXPECT_EQ(invalidArgumentText([&] {
              network->setVerticesWeightValues(VEQNumberArray::ofFloats({1, 2}));
            }),
            "New property must have at least the size of the number of Vertices.");
  EXPECT_EQ(
      invalidArgumentText([&] { network->setEdgesWeightValues(VEQNumberArray::ofFloats({1})); }),
      "New property must have at least the size of the number of Edges.");
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isEdgeWeighted());
}

TEST(Weights, ABlockedNetworkIgnoresEvenInvalidCalls) {
  const auto network = drawUndirected("0-1 1-2");
  network->setWeightValue_atEdgeIndex(4.0f, 0);
  network->blockEditing();
  network->setVerticesWeightValues(VEQNumberArray::ofFloats({1}));
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({1}));
  network->setWeightValue_atVertexIndex(1.0f, 99);
  network->setWeightValue_atEdgeIndex(1.0f, 99);
  network->setVerticesWeightValues(VEQNumberArray::ofFloats({1, 2, 3}));
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({1, 2}));
  network->setWeightValue_atVertexIndex(1.0f, 0);
  network->setWeightValue_atEdgeIndex(1.0f, 1);
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(4.0, 0.0));
}

TEST(Weights, ChangingAReturnedArrayDoesNotChangeTheNetwork) {
  const auto network = drawUndirected("0-1");
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({2}));
  const auto weights = network->edgesWeightValues();
  EXPECT_EQ(weights->elementType(), ElementType::kFloat);
  weights->setIntegerValue_atIndex(9, 0);
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(2));
}

TEST(Weights, HoldEveryFloat) {
  const float infinity = std::numeric_limits<float>::infinity();
  const float tiny = std::numeric_limits<float>::denorm_min();
  const auto network = drawDirected("0-1 0-1 0-1 0-1");
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({infinity, tiny, -0.0f, NAN}));
  EXPECT_EQ(network->edgeAtIndex(0)->weight(), infinity);
  EXPECT_EQ(network->edgeAtIndex(1)->weight(), tiny);
  EXPECT_TRUE(std::signbit(network->edgeAtIndex(2)->weight()));
  EXPECT_TRUE(std::isnan(network->edgeAtIndex(3)->weight()));
  EXPECT_TRUE(std::isnan(network->calcStrengths()->numberAtIndex(0).as<double>()));
}

}  // namespace
}  // namespace veq::test::weights_test
