#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network.hpp"

namespace veq::test::values_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Network drawn(const std::string& text, bool directed) { return Network(draw(text, directed)); }

TEST(ValuesTest, IsThePublishedNetworkItself) {
  const Shared<VEQNetwork> published = draw("0-1", true);
  const Network network(published);
  EXPECT_EQ(network.published(), published);
  EXPECT_THROW(Network(nullptr), std::invalid_argument);
}

TEST(ValuesTest, AnswersWithListsOfEitherDirection) {
  const Network network = drawn("0-1 2-0 0-0", true);
  EXPECT_THAT(network.neighbours(0), ElementsAre(1, 0));
  EXPECT_THAT(network.neighbours(0, Direction::kIn), ElementsAre(2, 0));
  EXPECT_THAT(network.neighbours(0, Direction::kAll), ElementsAre(1, 0, 2, 0));
  EXPECT_THAT(network.edgesOf(0, Direction::kAll), ElementsAre(0, 2, 1, 2));
  EXPECT_THAT(network.degrees(), ElementsAre(2, 0, 1));
  EXPECT_THAT(network.degrees(Direction::kIn), ElementsAre(2, 1, 0));
  EXPECT_THAT(network.degrees(Direction::kAll), ElementsAre(4, 1, 1));
  EXPECT_EQ(network.degree(0, Direction::kIn), 2U);
  EXPECT_EQ(network.degree(0, Direction::kAll), 4U);
}

TEST(ValuesTest, UndirectedListsAreTheSameEveryWay) {
  const Network network = drawn("0-1 1-1", false);
  for (const Direction direction : {Direction::kOut, Direction::kIn, Direction::kAll}) {
    EXPECT_THAT(network.neighbours(1, direction), ElementsAre(0, 1, 1));
    EXPECT_THAT(network.degrees(direction), ElementsAre(1, 3));
    EXPECT_THAT(network.strengths(direction), ElementsAre(1, 3));
  }
}

TEST(ValuesTest, GivesTheEnds) {
  const Network network = drawn("0-1 2-0", false);
  EXPECT_EQ(network.endsOf(1), std::make_pair(std::uint64_t{2}, std::uint64_t{0}));
  EXPECT_THAT(network.sources(), ElementsAre(0, 2));
  EXPECT_THAT(network.targets(), ElementsAre(1, 0));
}

// Weights 2, 4, 8 on 0-1, 1-2 and the loop 2-2.
TEST(ValuesTest, StrengthsDoNotDependOnVertexWeights) {
  const std::vector<double> edgeWeights{2, 4, 8};
  const std::vector<double> vertexWeights{9, 9, 9};
  for (const bool vertexWeighted : {false, true}) {
    BuildOptions options{.edgeWeights = edgeWeights};
    if (vertexWeighted) options.vertexWeights = vertexWeights;
    const Network undirected = Network::build({0, 1, 2}, {1, 2, 2}, options).value();
    for (const Direction direction : {Direction::kOut, Direction::kIn, Direction::kAll}) {
      EXPECT_THAT(undirected.strengths(direction), ElementsAre(2, 6, 20));
      EXPECT_EQ(undirected.strength(2, direction), 20);
    }
    options.directed = true;
    const Network directed = Network::build({0, 1, 2}, {1, 2, 2}, options).value();
    EXPECT_THAT(directed.strengths(), ElementsAre(2, 4, 8));
    EXPECT_THAT(directed.strengths(Direction::kIn), ElementsAre(0, 2, 12));
    EXPECT_THAT(directed.strengths(Direction::kAll), ElementsAre(2, 6, 20));
    EXPECT_EQ(directed.strength(2, Direction::kIn), 12);
    EXPECT_EQ(directed.strength(2, Direction::kAll), 20);
    EXPECT_EQ(directed.strength(1), 4);
  }
}

TEST(ValuesTest, AnUnweightedEdgeCountsOne) {
  const Network network = drawn("0-1 0-1", true);
  EXPECT_THAT(network.strengths(), ElementsAre(2, 0));
  EXPECT_EQ(network.strength(1, Direction::kAll), 2);
  EXPECT_THAT(network.edgeWeights(), ElementsAre(1, 1));
  EXPECT_THAT(network.vertexWeights(), ElementsAre(1, 1));
}

TEST(ValuesTest, ValuesOutliveTheNetwork) {
  double sum = 0;
  for (const double strength : Network::build({0, 1}, {1, 2}).value().strengths()) sum += strength;
  EXPECT_EQ(sum, 4);
}

TEST(ValuesTest, FindsEdgesFromEitherEnd) {
  const Network directed = drawn("0-1 0-1 1-0 0-2 0-3", true);
  EXPECT_TRUE(directed.hasEdge(0, 2));
  EXPECT_FALSE(directed.hasEdge(2, 0));
  EXPECT_FALSE(directed.hasEdge(3, 3));
  EXPECT_THAT(directed.edgesBetween(0, 1), ElementsAre(0, 1));
  EXPECT_THAT(directed.edgesBetween(1, 0), ElementsAre(2));
  const Network undirected = drawn("0-1 1-1 1-0 1-2", false);
  EXPECT_TRUE(undirected.hasEdge(2, 1));
  EXPECT_THAT(undirected.edgesBetween(0, 1), ElementsAre(0, 2));
  EXPECT_THAT(undirected.edgesBetween(1, 0), ElementsAre(0, 2));
  EXPECT_THAT(undirected.edgesBetween(1, 1), ElementsAre(1));
  EXPECT_THAT(undirected.edgesBetween(0, 2), IsEmpty());
}

TEST(ValuesTest, AWrongIndexIsOutOfRange) {
  const Network network = drawn("0-1", false);
  const auto text = [](auto call) { return thrownText<std::out_of_range>(call); };
  EXPECT_EQ(text([&] { static_cast<void>(network.neighbours(2)); }), "vertex 2 of 2");
  EXPECT_EQ(text([&] { static_cast<void>(network.edgesOf(UINT64_MAX)); }),
            "vertex 18446744073709551615 of 2");
  EXPECT_EQ(text([&] { static_cast<void>(network.degree(2)); }), "vertex 2 of 2");
  EXPECT_EQ(text([&] { static_cast<void>(network.strength(2)); }), "vertex 2 of 2");
  EXPECT_EQ(text([&] { static_cast<void>(network.hasEdge(0, 2)); }), "vertex 2 of 2");
  EXPECT_EQ(text([&] { static_cast<void>(network.edgesBetween(2, 0)); }), "vertex 2 of 2");
  EXPECT_EQ(text([&] { static_cast<void>(network.endsOf(1)); }), "edge 1 of 1");
}

TEST(ValuesTest, SetsAllWeights) {
  Network network = drawn("0-1 1-2", false);
  const std::vector<double> weights{0.1, 2};
  const std::vector<float> three{1, 2, 3};
  EXPECT_EQ(network.setEdgeWeights(weights).value(), 1U);
  EXPECT_THAT(network.edgeWeights(), ElementsAre(0.1f, 2));
  EXPECT_EQ(network.setVertexWeights(three).value(), 0U);
  EXPECT_THAT(network.vertexWeights(), ElementsAre(1, 2, 3));
  EXPECT_EQ(network.setEdgeWeights(three).error().text(), "3 weights for 2 edges");
  EXPECT_EQ(network.setEdgeWeights({}).error().text(), "no weights for 2 edges");
  network.published()->blockEditing();
  EXPECT_EQ(network.setEdgeWeights(weights).error().text(),
            "the weights of this network are fixed");
}

TEST(ValuesTest, NamesAreTextsOrIndices) {
  const Network network = drawn("0-1 1-2", false);
  EXPECT_THAT(network.names(), ElementsAre("0", "1", "2"));
  EXPECT_EQ(network.vertexNamed("2"), 2U);
  EXPECT_EQ(network.vertexNamed("3"), std::nullopt);
  network.published()->setPropertyValue_forKey_atVertexIndex("Ada", "Name", 1);
  EXPECT_THAT(network.names(), ElementsAre("", "Ada", ""));
  EXPECT_EQ(network.vertexNamed("2"), std::nullopt);
}

TEST(ValuesTest, ColumnsComeAsNumbersOrTexts) {
  Network network = drawn("0-1", false);
  ASSERT_TRUE(network.setVertexColumn(
      "Age", std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({1.5, 2}))));
  ASSERT_TRUE(network.setEdgeColumn(
      "Kind", std::make_shared<GenericArray>(std::vector<PropertyValue>{"road"})));
  network.published()->setPropertyValue_forKey_atVertexIndex("x", "Mark", 0);
  EXPECT_THAT(network.vertexKeys(), ElementsAre("Age", "Mark"));
  EXPECT_THAT(network.edgeKeys(), ElementsAre("Kind"));
  EXPECT_THAT(network.vertexNumbers("Age").value(), ElementsAre(1.5, 2));
  EXPECT_THAT(network.vertexTexts("Age").value(), ElementsAre("1.5", "2"));
  EXPECT_THAT(network.vertexTexts("Mark").value(), ElementsAre("x", ""));
  EXPECT_THAT(network.edgeTexts("Kind").value(), ElementsAre("road"));
  EXPECT_EQ(network.edgeNumbers("Kind").error().text(), "column Kind: edge 0 has no number");
  EXPECT_EQ(network.vertexNumbers("Kind").error().text(), "no column Kind");
  EXPECT_EQ(network.edgeTexts("Age").error().text(), "no column Age");
  EXPECT_EQ(network.vertexColumn("nothing"), nullptr);
}

TEST(ValuesTest, ColumnsAreAsLongAsTheNetwork) {
  Network network = drawn("0-1", false);
  EXPECT_EQ(network.setVertexColumn("Age", GenericArray::nullFilled(3)).error().text(),
            "column Age: 3 values for 2 vertices");
  EXPECT_EQ(network.setEdgeColumn("Edge From", GenericArray::nullFilled(1)).error().text(),
            "column Edge From: a reserved name");
  ASSERT_TRUE(network.setEdgeColumn("Kind", GenericArray::nullFilled(1)));
  ASSERT_TRUE(network.setEdgeColumn("Kind", nullptr));
  EXPECT_THAT(network.edgeKeys(), IsEmpty());
  // A published column may be shorter: what lies beyond its end is not set.
  network.published()->setPropertiesOfVertices_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({1})), "Short");
  EXPECT_EQ(network.vertexNumbers("Short").error().text(), "column Short: vertex 1 has no number");
  EXPECT_THAT(network.vertexTexts("Short").value(), ElementsAre("1", ""));
}

}  // namespace
}  // namespace veq::test::values_test
