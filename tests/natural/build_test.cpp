#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/network_comparison.hpp"
#include "veq/network.hpp"

namespace veq::test::build_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string errorOf(const Result<Network>& result) {
  return result ? "no error" : result.error().text();
}

std::string buildError(const IndexSpan& from, const IndexSpan& to,
                       const BuildOptions& options = {}) {
  const auto result = Network::build(from, to, options);
  EXPECT_TRUE(result || result.error().kind() == ErrorKind::kArgument);
  return errorOf(result);
}

TEST(BuildTest, BuildsFromBraces) {
  const Network network = Network::build({0, 1, 2}, {1, 2, 2}).value();
  SlowNetwork slow;
  slow.vertexCount = 3;
  slow.edges = {{0, 1}, {1, 2}, {2, 2}};
  expectSame(*network.published(), slow);
}

TEST(BuildTest, BuildsFromPairsInBracesDirected) {
  const Network network = Network::build({{0, 1}, {3, 2}}, {.directed = true}).value();
  SlowNetwork slow;
  slow.vertexCount = 4;
  slow.directed = true;
  slow.edges = {{0, 1}, {3, 2}};
  expectSame(*network.published(), slow);
}

template <class T>
void expectBuiltFrom() {
  SlowNetwork slow;
  slow.vertexCount = 6;
  slow.edges = {{4, 1}, {0, 5}};
  const std::vector<T> from{4, 0};
  const std::vector<T> to{1, 5};
  expectSame(*Network::build(from, to).value().published(), slow);
  const std::vector<std::pair<T, T>> pairs{{T{4}, T{1}}, {T{0}, T{5}}};
  expectSame(*Network::build(pairs).value().published(), slow);
}

TEST(BuildTest, TakesEveryIntegerOf32And64Bits) {
  expectBuiltFrom<std::int32_t>();
  expectBuiltFrom<std::uint32_t>();
  expectBuiltFrom<std::int64_t>();
  expectBuiltFrom<std::uint64_t>();
  expectBuiltFrom<long>();
  expectBuiltFrom<unsigned long long>();
}

TEST(BuildTest, TakesArraysAndSpans) {
  const std::array<int, 2> from{0, 1};
  const int to[] = {1, 2};
  EXPECT_EQ(Network::build(std::span(from), to).value().countVertices(), 3U);
}

TEST(BuildTest, HasExactlyTheVerticesAskedFor) {
  EXPECT_EQ(Network::build({0}, {1}, {.vertices = 5}).value().countVertices(), 5U);
  EXPECT_EQ(Network::build({0}, {1}).value().countVertices(), 2U);
}

TEST(BuildTest, NothingGivesNothing) {
  const Network network = Network::build({}, {}).value();
  EXPECT_EQ(network.countVertices(), 0U);
  EXPECT_EQ(network.countEdges(), 0U);
  EXPECT_THAT(network.strengths(), IsEmpty());
  const std::vector<std::pair<int, int>> none;
  EXPECT_EQ(Network::build(none, {.vertices = 2}).value().countVertices(), 2U);
}

TEST(BuildTest, NamesTheFirstWrongEndAndHowManyMore) {
  EXPECT_EQ(buildError({0, 1, 2}, {1, 2}), "3 sources for 2 targets");
  EXPECT_EQ(buildError({0, 1}, {1, -1}), "edge 1: target -1");
  EXPECT_EQ(buildError({0, -5, 2, -7}, {1, -1, 0, 0}), "edge 1: source -5, and 1 more");
  EXPECT_EQ(buildError({0, 1, 4}, {1, 12, 10}, {.vertices = 10}),
            "edge 1: target 12 of 10 vertices, and 1 more");
  EXPECT_EQ(buildError({1}, {0}, {.vertices = 1}), "edge 0: source 1 of 1 vertex");
  EXPECT_EQ(buildError({-1}, {0}, {.vertices = 3}), "edge 0: source -1");
  EXPECT_EQ(buildError({0}, {0}, {.vertices = 0}), "edge 0: source 0 of 0 vertices");
  const std::vector<std::int32_t> negative{-2147483647 - 1};
  EXPECT_EQ(buildError(negative, {0}), "edge 0: source -2147483648");
  const std::vector<std::uint64_t> huge{UINT64_MAX};
  EXPECT_EQ(buildError({0}, huge), "edge 0: target 18446744073709551615");
}

TEST(BuildTest, AnEndBeyondAllMemoryIsBadAlloc) {
  const std::vector<std::uint64_t> huge{std::uint64_t{1} << 62};
  EXPECT_THROW(static_cast<void>(Network::build({0}, huge)), std::bad_alloc);
}

TEST(BuildTest, CountsWeights) {
  const std::vector<double> four{1, 2, 3, 4};
  const std::vector<double> one{1};
  EXPECT_EQ(buildError({0, 1}, {1, 2}, {.edgeWeights = four}), "4 weights for 2 edges");
  EXPECT_EQ(buildError({0, 1}, {1, 2}, {.edgeWeights = one}), "1 weight for 2 edges");
  EXPECT_EQ(buildError({0}, {1}, {.vertexWeights = four}), "4 weights for 2 vertices");
  EXPECT_EQ(buildError({0}, {0}, {.vertexWeights = four}), "4 weights for 1 vertex");
}

TEST(BuildTest, TellsWhichWeightsAFloatDoesNotHold) {
  // 0.5 and 2^24 are floats; 0.1 and 2^24 + 1 are not; what is not a number is as good as any.
  const std::vector<double> weights{0.5, 0.1, 16777217, std::numeric_limits<double>::quiet_NaN()};
  const std::vector<float> floats{0.1f, 2};
  BuildNotes notes;
  const Network network =
      Network::build({0, 0, 0, 0}, {1, 1, 1, 1},
                     {.vertexWeights = floats, .edgeWeights = weights, .notes = &notes})
          .value();
  EXPECT_EQ(notes.roundedEdgeWeights, 2U);
  EXPECT_EQ(notes.firstRoundedEdgeWeight, 1U);
  EXPECT_EQ(notes.roundedVertexWeights, 0U);
  EXPECT_EQ(notes.firstRoundedVertexWeight, std::nullopt);
  EXPECT_EQ(network.edgeWeights()[1], 0.1f);
  EXPECT_EQ(Number(network.edgeWeights()[1]).text(), "0.1");
  EXPECT_EQ(network.edgeWeights()[2], 16777216.0f);
  EXPECT_THAT(network.edgeKeys(), IsEmpty());
}

TEST(BuildTest, KeepsExactWeightsWhereAsked) {
  const std::vector<double> weights{0.1, 16777217};
  const Network network =
      Network::build({0, 1}, {1, 0}, {.edgeWeights = weights, .keepExactWeights = true}).value();
  EXPECT_THAT(network.edgeNumbers("Weight").value(), ElementsAre(0.1, 16777217));
  EXPECT_THAT(network.vertexKeys(), IsEmpty());
}

TEST(BuildTest, ChecksColumns) {
  const auto two = std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({7, 8}));
  BuildOptions options;
  options.vertexColumns.set("Age", two);
  EXPECT_EQ(buildError({0}, {2}, options), "column Age: 2 values for 3 vertices");
  const Network network = Network::build({0}, {1}, options).value();
  EXPECT_EQ(network.vertexColumn("Age"), two);

  options.edgeColumns.set("Age", two);
  EXPECT_EQ(buildError({0}, {1}, options), "column Age: 2 values for 1 edge");
  options.edgeColumns = {};
  options.edgeColumns.set("Edge To", two);
  EXPECT_EQ(buildError({0, 1}, {1, 0}, options), "column Edge To: a reserved name");
  options.edgeColumns = {};
  options.edgeColumns.set("Kind", nullptr);
  EXPECT_EQ(buildError({0, 1}, {1, 0}, options), "column Kind: no values");
  options.edgeColumns = {};
  options.edgeColumns.set("Weight", two);
  const std::vector<float> weights{1, 2};
  options.edgeWeights = weights;
  options.keepExactWeights = true;
  EXPECT_EQ(buildError({0, 1}, {1, 0}, options),
            "column Weight: given, and to be made of the weights");
}

TEST(BuildTest, StopsBeforeItBegins) {
  StopSource source;
  source.requestStop();
  BuildOptions options;
  options.progress.stop = source.token();
  const auto result = Network::build({0}, {1}, options);
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(result.error().text(), "stopped");
}

TEST(BuildTest, NumbersNamesByFirstAppearance) {
  const std::vector<std::string> from{"Ada", "", "Eve"};
  const std::vector<std::string> to{"Eve", "Ada", "Ada"};
  const Network network = Network::fromNames(from, to, {.directed = true}).value();
  EXPECT_THAT(network.names(), ElementsAre("Ada", "Eve", ""));
  EXPECT_THAT(network.sources(), ElementsAre(0, 2, 1));
  EXPECT_THAT(network.targets(), ElementsAre(1, 0, 0));
  EXPECT_EQ(network.vertexNamed("Eve"), 1U);
  EXPECT_EQ(network.vertexNamed("eve"), std::nullopt);
}

TEST(BuildTest, TakesTheListOfAllNames) {
  const std::vector<std::string> from{"b"};
  const std::vector<std::string> to{"a"};
  const std::vector<std::string> names{"a", "lonely", "b"};
  const Network network = Network::fromNames(from, to, names).value();
  EXPECT_EQ(network.countVertices(), 3U);
  EXPECT_THAT(network.sources(), ElementsAre(2));
  EXPECT_THAT(network.targets(), ElementsAre(0));
}

TEST(BuildTest, NamesWhatIsWrongWithNames) {
  const std::vector<std::string> ab{"a", "b"};
  const std::vector<std::string> xa{"x", "a"};
  const std::vector<std::string> xy{"x", "y"};
  const std::vector<std::string> twice{"a", "b", "a", "a"};
  const std::vector<std::string> one{"a"};
  EXPECT_EQ(errorOf(Network::fromNames(ab, one)), "2 sources for 1 targets");
  EXPECT_EQ(errorOf(Network::fromNames(ab, one, ab)), "2 sources for 1 targets");
  EXPECT_EQ(errorOf(Network::fromNames(ab, xa, ab)), "edge 0: target \"x\" is not among the names");
  EXPECT_EQ(errorOf(Network::fromNames(xy, ab, ab)),
            "edge 0: source \"x\" is not among the names, and 1 more");
  EXPECT_EQ(errorOf(Network::fromNames(ab, ab, twice)), "names 0 and 2 are both \"a\", and 1 more");
  EXPECT_EQ(errorOf(Network::fromNames(ab, ab, ab, {.vertices = 3})), "3 vertices for 2 names");
  BuildOptions options;
  options.vertexColumns.set("Name", GenericArray::nullFilled(2));
  EXPECT_EQ(errorOf(Network::fromNames(ab, ab, ab, options)),
            "column Name: given, and to be made of the names");
}

TEST(NetworkBuilderTest, CollectsEdgesAndVertices) {
  NetworkBuilder builder;
  EXPECT_EQ(builder.addVertices(2), 0U);
  EXPECT_EQ(builder.addEdge(0, 4), 0U);
  EXPECT_EQ(builder.addEdge(1, 1), 1U);
  EXPECT_EQ(builder.addVertices(3), 5U);
  EXPECT_EQ(builder.countVertices(), 8U);
  EXPECT_EQ(builder.countEdges(), 2U);
  SlowNetwork slow;
  slow.vertexCount = 8;
  slow.edges = {{0, 4}, {1, 1}};
  expectSame(*builder.build().value().published(), slow);
  expectSame(*builder.build({.vertices = 8}).value().published(), slow);
  slow.vertexCount = 9;
  slow.directed = true;
  expectSame(*builder.build({.vertices = 9, .directed = true}).value().published(), slow);
}

TEST(NetworkBuilderTest, OneWeightGivesAllOne) {
  NetworkBuilder builder;
  builder.addEdge(0, 1);
  builder.addEdge(0, 1, 2.5);
  builder.addEdge(0, 1);
  const Network network = builder.build().value();
  EXPECT_TRUE(network.isEdgeWeighted());
  EXPECT_THAT(network.edgeWeights(), ElementsAre(1, 2.5, 1));
}

TEST(NetworkBuilderTest, FindsVerticesByName) {
  NetworkBuilder builder;
  builder.addVertices(1);
  builder.addEdge("a", "b");
  builder.addEdge(builder.vertexNamed("b"), 0);
  builder.addEdge("b", "a", 0.5);
  const Network network = builder.build().value();
  EXPECT_THAT(network.names(), ElementsAre("", "a", "b"));
  EXPECT_TRUE(network.vertexColumn("Name")->objectAtIndex(0).isNull());
  EXPECT_THAT(network.sources(), ElementsAre(1, 2, 2));
  EXPECT_THAT(network.targets(), ElementsAre(2, 0, 1));
  EXPECT_THAT(network.edgeWeights(), ElementsAre(1, 1, 0.5));
}

TEST(NetworkBuilderTest, RefusesWhatIsNoIndex) {
  NetworkBuilder builder;
  builder.addEdge(0, 1);
  try {
    builder.addEdge(0, UINT64_MAX);
    FAIL() << "nothing was thrown";
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "edge 1: target -1");
  }
  EXPECT_THROW(builder.addEdge(UINT64_MAX - 1, 0, 2.0), std::out_of_range);
  EXPECT_EQ(builder.countEdges(), 1U);
  EXPECT_FALSE(builder.build().value().isEdgeWeighted());
  EXPECT_EQ(errorOf(builder.build({.vertices = 1})), "2 vertices were added, not 1");
}

// All vertices that there may be but one; no network is made of them.
TEST(NetworkBuilderTest, IsAsItWasWhereAVertexIsOneTooMany) {
  constexpr std::uint64_t kAlmost = (std::uint64_t{1} << 63) - 2;
  NetworkBuilder builder;
  builder.addVertices(kAlmost);
  EXPECT_THROW(builder.addVertices(2), std::bad_alloc);
  EXPECT_EQ(builder.countVertices(), kAlmost);
  EXPECT_THROW(builder.addEdge("a", "b"), std::bad_alloc);
  EXPECT_EQ(builder.countVertices(), kAlmost);
  EXPECT_THROW(builder.addEdge("a", "b", 0.5), std::bad_alloc);
  EXPECT_EQ(builder.countEdges(), 0U);
  EXPECT_EQ(builder.vertexNamed("c"), kAlmost);
  // Neither is there in spite of having been asked for.
  EXPECT_THROW(builder.vertexNamed("a"), std::bad_alloc);
  EXPECT_THROW(builder.vertexNamed("b"), std::bad_alloc);
  EXPECT_THROW(builder.vertexNamed("b"), std::bad_alloc);
}

}  // namespace
}  // namespace veq::test::build_test
