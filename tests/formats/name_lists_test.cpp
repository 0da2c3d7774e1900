#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

#include "tests/formats/format_support.hpp"

namespace veq::test::name_lists_test {
namespace {

using Maybe = std::optional<std::string_view>;

Owned<VEQNetwork> fromEdges(std::string_view vertices, std::string_view edges,
                            bool directed = false, const VEQNumberArray* vertexWeights = nullptr,
                            const VEQNumberArray* edgeWeights = nullptr) {
  return VEQNetwork::initWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
      vertices, edges, directed, vertexWeights, edgeWeights);
}

Owned<VEQNetwork> fromLinks(Maybe vertices, std::string_view from, std::string_view to,
                            bool directed = false, const VEQNumberArray* vertexWeights = nullptr,
                            const VEQNumberArray* edgeWeights = nullptr) {
  return VEQNetwork::
      initWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
          vertices, from, to, directed, vertexWeights, edgeWeights);
}

TEST(NameLists, EdgesJoinVerticesByName) {
  const auto network = VEQNetwork::initWithVerticesString_edgesString("a\nb\nc", "a b\nb c");
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 3U);
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "b", "c"));
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
  EXPECT_FALSE(network->isDirected());
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_TRUE(network->isEditable());
}

TEST(NameLists, UnknownNamesAreTheFirstVertex) {
  EXPECT_EQ(edgesOf(*fromEdges("a\nb\nc", "a b\nb c\na x")), "0>1 1>2 0>0");
  EXPECT_EQ(edgesOf(*fromLinks("a\nb", "x\nb", "b\ny")), "0>1 1>0");
}

TEST(NameLists, OfEqualNamesTheFirstIsMeant) {
  EXPECT_EQ(edgesOf(*fromEdges("a\nb\nb", "b a\na b")), "1>0 0>1");
}

TEST(NameLists, LinesEndAtLineFeedsAlone) {
  const auto network = fromEdges("a\r\nb\n", "a\r b");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a\r", "b", ""));
  EXPECT_EQ(edgesOf(*network), "0>1");
}

TEST(NameLists, AnEmptyTextIsOneEmptyLine) {
  const auto network = fromLinks("", "", "");
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 1U);
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre(""));
  EXPECT_EQ(edgesOf(*network), "0>0");
  const auto distinct = fromLinks(std::nullopt, "", "");
  EXPECT_EQ(distinct->countVertices(), 1U);
  EXPECT_EQ(edgesOf(*distinct), "0>0");
}

TEST(NameLists, EdgeLinesAreSplitAtSingleBlanks) {
  // "a  b" is "a" and "", a name that the third vertex has.
  EXPECT_EQ(edgesOf(*fromEdges("a\nb\n", "b a further pieces\na  b\n a\nb ")), "1>0 0>2 2>0 1>2");
  EXPECT_EQ(edgesOf(*fromEdges("x\na\tb\nc", "a\tb c")), "1>2");
}

TEST(NameLists, AnEdgeLineOfOneNameThrows) {
  EXPECT_THROW(std::ignore = fromEdges("a\nb", "a b\n"), std::out_of_range);
  EXPECT_THROW(std::ignore = fromEdges("a\nb", ""), std::out_of_range);
  EXPECT_THROW(std::ignore = fromEdges("a\nb", "a\tb"), std::out_of_range);
  EXPECT_THROW(std::ignore = VEQNetwork::initWithVerticesString_edgesString("a", "a"),
               std::out_of_range);
  EXPECT_THROW(std::ignore = VEQNetwork::networkWithVerticesString_edgesString("a", "a"),
               std::out_of_range);
}

TEST(NameLists, SizesAreCheckedBeforeTheLines) {
  const auto one = VEQNumberArray::ofFloats({1.0F});
  const auto two = VEQNumberArray::ofFloats({1.0F, 2.0F});
  EXPECT_FALSE(fromEdges("a\nb", "a", false, &one, nullptr));
  EXPECT_FALSE(fromEdges("a\nb", "a", false, nullptr, &two));
  EXPECT_THROW(std::ignore = fromEdges("a\nb", "a", false, &two, &one), std::out_of_range);
}

TEST(NameLists, TakesWeights) {
  const auto vertexWeights = VEQNumberArray::ofDoubles({0.1, 2.0});
  const auto edgeWeights = VEQNumberArray::ofIntegers({-3});
  const auto network = fromEdges("a\nb", "b a", true, &vertexWeights, &edgeWeights);
  ASSERT_TRUE(network);
  EXPECT_TRUE(network->isDirected());
  EXPECT_THAT(vertexWeightsOf(*network), ElementsAre(0.1F, 2.0F));
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(-3.0F));
  const auto links = fromLinks(std::nullopt, "x", "y", true, &vertexWeights, &edgeWeights);
  EXPECT_TRUE(links->isDirected());
  EXPECT_THAT(vertexWeightsOf(*links), ElementsAre(0.1F, 2.0F));
  EXPECT_THAT(edgeWeightsOf(*links), ElementsAre(-3.0F));
}

TEST(NameLists, LinksJoinLineByLine) {
  const auto network = VEQNetwork::initWithVerticesString_fromLinksString_toLinksString(
      "a\nb c\nd", "a\nb c", "d\na");
  EXPECT_EQ(edgesOf(*network), "0>2 1>0");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "b c", "d"));
}

TEST(NameLists, WithoutVerticesTheDistinctEndsAreTheVertices) {
  const auto network = VEQNetwork::initWithVerticesString_fromLinksString_toLinksString(
      std::nullopt, "3\n1\n3", "1\n2\n3");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("3", "1", "2"));
  EXPECT_EQ(edgesOf(*network), "0>1 1>2 0>0");
}

TEST(NameLists, NumbersOfLinesMustMatch) {
  const auto one = VEQNumberArray::ofFloats({1.0F});
  EXPECT_FALSE(fromLinks("a", "a\na", "a"));
  EXPECT_FALSE(fromLinks(std::nullopt, "a\n", "a"));
  EXPECT_FALSE(fromLinks("a\nb", "a", "b", false, &one));
  EXPECT_FALSE(fromLinks("a\nb", "a\nb", "b\na", false, nullptr, &one));
  EXPECT_FALSE(fromLinks(std::nullopt, "a", "b", false, &one));
  EXPECT_FALSE(fromLinks(std::nullopt, "a\nb", "b\na", false, nullptr, &one));
}

TEST(NameLists, TheShortLinksFormsAreUndirectedWhateverTheyAreGiven) {
  for (const bool directed : {false, true}) {
    EXPECT_FALSE(VEQNetwork::initWithVerticesString_fromLinksString_toLinksString_directed(
                     "a\nb", "a", "b", directed)
                     ->isDirected());
    EXPECT_FALSE(VEQNetwork::networkWithVerticesString_fromLinksString_toLinksString_directed(
                     "a\nb", "a", "b", directed)
                     ->isDirected());
  }
  EXPECT_FALSE(
      VEQNetwork::networkWithVerticesString_fromLinksString_toLinksString(std::nullopt, "a", "b")
          ->isDirected());
  EXPECT_TRUE(
      VEQNetwork::
          networkWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
              std::nullopt, "a", "b", true, nullptr, nullptr)
              ->isDirected());
}

TEST(NameLists, ShortEdgesFormsKeepTheDirection) {
  for (const bool directed : {false, true}) {
    EXPECT_EQ(VEQNetwork::initWithVerticesString_edgesString_directed("a\nb", "a b", directed)
                  ->isDirected(),
              directed);
    EXPECT_EQ(VEQNetwork::networkWithVerticesString_edgesString_directed("a\nb", "a b", directed)
                  ->isDirected(),
              directed);
  }
  EXPECT_FALSE(VEQNetwork::networkWithVerticesString_edgesString("a\nb", "a b")->isDirected());
}

TEST(NameLists, TheFullEdgesFactoryTakesTheVertexWeightsForBoth) {
  const auto two = VEQNumberArray::ofFloats({5.0F, 6.0F});
  const auto one = VEQNumberArray::ofFloats({7.0F});
  const auto factory =
      VEQNetwork::networkWithVerticesString_edgesString_directed_verticesWeights_edgesWeights;
  const auto network = factory("a\nb", "a b\nb a", true, &two, &one);
  ASSERT_TRUE(network);
  EXPECT_TRUE(network->isDirected());
  EXPECT_THAT(vertexWeightsOf(*network), ElementsAre(5.0F, 6.0F));
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(5.0F, 6.0F));
  EXPECT_FALSE(factory("a\nb", "a b", true, &two, &one));
  EXPECT_FALSE(factory("a\nb", "a b", true, nullptr, &one)->isEdgeWeighted());
}

TEST(NameLists, TheFullLinksFactoryTakesWhatItIsGiven) {
  const auto two = VEQNumberArray::ofFloats({5.0F, 6.0F});
  const auto one = VEQNumberArray::ofFloats({7.0F});
  const auto network = VEQNetwork::
      networkWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
          "a\nb", "a", "b", true, &two, &one);
  EXPECT_THAT(vertexWeightsOf(*network), ElementsAre(5.0F, 6.0F));
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(7.0F));
}

TEST(NameLists, TextThatIsNotUtf8IsNoNetwork) {
  EXPECT_FALSE(fromEdges("\xFF", "a b"));
  EXPECT_FALSE(fromEdges("a", "\xFF"));
  EXPECT_FALSE(fromLinks("\xFF", "a", "b"));
  EXPECT_FALSE(fromLinks(std::nullopt, "\xFF", "b"));
  EXPECT_FALSE(fromLinks(std::nullopt, "a", "\xC3"));
  EXPECT_TRUE(fromLinks(std::nullopt, "\xC3\xA4", "b"));
}

TEST(NameLists, ManyNamesAreFound) {
  std::string vertices, from, to;
  for (int i = 0; i < 100000; ++i) {
    const std::string name = "vertex number " + std::to_string(i);
    vertices += (i ? "\n" : "") + name;
    from += (i ? "\n" : "") + name;
    to += (i ? "\n" : "") + ("vertex number " + std::to_string(99999 - i));
  }
  const auto network = fromLinks(vertices, from, to);
  ASSERT_TRUE(network);
  const auto& store = internal::CoreAccess::of(*network).store;
  for (std::uint64_t i = 0; i < 100000; ++i) {
    ASSERT_EQ(store.from(i), i);
    ASSERT_EQ(store.to(i), 99999 - i);
  }
}

}  // namespace
}  // namespace veq::test::name_lists_test
