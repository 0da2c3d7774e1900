#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/questions/small_networks.hpp"
#include "tests/support/log_capture.hpp"
#include "tests/support/observers.hpp"
#include "veq/natural/internal/core_of.hpp"
#include "veq/network.hpp"
#include "veq/questions.hpp"
#include "veq/questions/internal/strong_components.hpp"

namespace veq::test::questions_test {
namespace {

using testing::DoubleEq;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNan;

Progress stopped() {
  StopSource source;
  source.requestStop();
  Progress progress;
  progress.stop = source.token();
  return progress;
}

TEST(DegreesTest, OfATriangleWithATail) {
  const Network network = triangleWithTail();
  EXPECT_THAT(degreeDistribution(network), ElementsAre(0, 1, 2, 1));
  EXPECT_THAT(strengthDistribution(network),
              ElementsAre(StrengthCount{1, 1}, StrengthCount{2, 2}, StrengthCount{3, 1}));
  EXPECT_EQ(density(network), 4.0 / 6.0);
  EXPECT_EQ(reciprocity(network), 1);
  EXPECT_THAT(averageNeighbourDegree(network), ElementsAre(2.5, 2.5, DoubleEq(5.0 / 3), 3));
  // The mean degree of an end is 18 / 8; about it the ends' squares sum to 3.5, and the products
  // over the edges, both ways round, to -2.5.
  EXPECT_THAT(degreeAssortativity(network), DoubleEq(-5.0 / 7));
}

TEST(DegreesTest, OfNothing) {
  const Network nothing = Network::build({}, {}).value();
  EXPECT_THAT(degreeDistribution(nothing), IsEmpty());
  EXPECT_THAT(strengthDistribution(nothing), IsEmpty());
  EXPECT_EQ(density(nothing), 0);
  EXPECT_THAT(reciprocity(nothing), IsNan());
  EXPECT_THAT(averageNeighbourDegree(nothing), IsEmpty());
  EXPECT_THAT(degreeAssortativity(nothing), IsNan());
}

TEST(DegreesTest, LoopsAndParallelEdgesCount) {
  const Network network = Network::build({{0, 0}, {0, 1}, {0, 1}}).value();
  EXPECT_THAT(degreeDistribution(network), ElementsAre(0, 0, 1, 0, 1));
  EXPECT_EQ(density(network), 3);
  // Vertex 0 is its own neighbour twice: (4 + 4 + 2 + 2) / 4.
  EXPECT_THAT(averageNeighbourDegree(network), ElementsAre(3, 4));
}

TEST(DegreesTest, WeightsAreThoseOfTheEdges) {
  const std::vector<double> weights{3, 1};
  const Network network = Network::build({0, 1}, {1, 2}, {.edgeWeights = weights}).value();
  EXPECT_THAT(strengthDistribution(network),
              ElementsAre(StrengthCount{1, 1}, StrengthCount{3, 1}, StrengthCount{4, 1}));
  // Degrees 1, 2, 1.
  EXPECT_THAT(averageNeighbourDegree(network, {.weighted = true}), ElementsAre(2, 1, 2));
}

TEST(DegreesTest, OnlyEdgesThatLeadElsewhereCanBeReturned) {
  const Network network =
      Network::build({{0, 1}, {0, 1}, {1, 0}, {1, 2}, {2, 2}}, {.directed = true}).value();
  EXPECT_EQ(reciprocity(network), 0.75);
  EXPECT_THAT(reciprocity(Network::build({{0, 0}}).value()), IsNan());
}

TEST(DegreesTest, EqualDegreesHaveNoCorrelation) {
  EXPECT_THAT(degreeAssortativity(Network::build({{0, 1}, {1, 2}, {2, 0}}).value()), IsNan());
}

TEST(ClusteringTest, OfATriangleWithATail) {
  const Network network = triangleWithTail();
  EXPECT_THAT(triangles(network), ElementsAre(1, 1, 1, 0));
  EXPECT_EQ(countTriangles(network), 1U);
  EXPECT_THAT(localClustering(network), ElementsAre(1, 1, DoubleEq(1.0 / 3), 0));
  EXPECT_THAT(averageClustering(network), DoubleEq(7.0 / 12));
  EXPECT_THAT(averageClustering(network, WithoutPairs::kLeftOut), DoubleEq(7.0 / 9));
  EXPECT_THAT(transitivity(network), DoubleEq(3.0 / 5));
}

TEST(ClusteringTest, AsksOnlyWhoIsWhoseNeighbour) {
  const Network network =
      Network::build({{0, 1}, {1, 0}, {1, 2}, {0, 2}, {0, 2}, {2, 2}, {2, 3}}, {.directed = true})
          .value();
  EXPECT_THAT(triangles(network), ElementsAre(1, 1, 1, 0));
  EXPECT_THAT(transitivity(network), DoubleEq(3.0 / 5));
}

TEST(ClusteringTest, OfNothing) {
  const Network nothing = Network::build({}, {}).value();
  EXPECT_THAT(localClustering(nothing), IsEmpty());
  EXPECT_THAT(averageClustering(nothing), IsNan());
  EXPECT_EQ(transitivity(nothing), 0);
}

TEST(ClusteringTest, CompleteNetworkHasAllTriangles) {
  NetworkBuilder builder;
  for (std::uint64_t a = 0; a < 10; ++a) {
    for (std::uint64_t b = 0; b < a; ++b) builder.addEdge(a, b);
  }
  const Network network = builder.build().value();
  EXPECT_EQ(countTriangles(network), 120U);  // 10 over 3.
  EXPECT_EQ(transitivity(network), 1);
  EXPECT_THAT(coreNumbers(network), testing::Each(9U));
}

// 0 and 1 lead to each other, and so do 2 and 3; 1 leads to 2. Vertex 4 is alone.
Network twoPairs() {
  const std::vector<double> weights{2, 3, 4, 5, 6};
  BuildOptions options{.vertices = 5, .directed = true, .edgeWeights = weights};
  options.vertexColumns.set(
      "Name", std::make_shared<GenericArray>(std::vector<PropertyValue>{"a", "b", "c", "d", "e"}));
  return Network::build({{3, 2}, {0, 1}, {1, 2}, {1, 0}, {2, 3}}, options).value();
}

TEST(ComponentsTest, AreNumberedByTheirLowestVertex) {
  const ComponentLabels weak = components(twoPairs());
  EXPECT_THAT(weak.labels, ElementsAre(0, 0, 0, 0, 1));
  EXPECT_THAT(weak.sizes, ElementsAre(4, 1));
  const ComponentLabels strong = components(twoPairs(), Connection::kStrong);
  EXPECT_THAT(strong.labels, ElementsAre(0, 0, 1, 1, 2));
  EXPECT_THAT(strong.sizes, ElementsAre(2, 2, 1));
  EXPECT_THAT(components(Network::build({}, {}).value()).sizes, IsEmpty());
}

TEST(ComponentsTest, BecomeNetworksWithAllTheyHave) {
  LogCapture log;
  const auto parts = componentNetworks(twoPairs(), Connection::kStrong).value();
  ASSERT_EQ(parts.size(), 3U);
  EXPECT_THAT(parts[1].vertices, ElementsAre(2, 3));
  EXPECT_THAT(parts[1].edges, ElementsAre(0, 4));
  EXPECT_THAT(parts[1].network.sources(), ElementsAre(1, 0));
  EXPECT_THAT(parts[1].network.targets(), ElementsAre(0, 1));
  EXPECT_THAT(parts[1].network.edgeWeights(), ElementsAre(2, 6));
  EXPECT_THAT(parts[1].network.names(), ElementsAre("c", "d"));
  EXPECT_EQ(parts[2].network.countVertices(), 1U);
  const DerivedNetwork largest = largestComponent(twoPairs()).value();
  EXPECT_THAT(largest.vertices, ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(largest.network.edgeWeights(), ElementsAre(2, 3, 4, 5, 6));
  EXPECT_TRUE(largest.network.isDirected());
  EXPECT_EQ(largestComponent(Network::build({}, {}).value()).value().network.countVertices(), 0U);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(ComponentsTest, ALongPathNeedsNoStack) {
  const ComponentLabels strong = components(path(200'000, true), Connection::kStrong);
  EXPECT_EQ(strong.sizes.size(), 200'001U);
}

TEST(CoresTest, OfATriangleWithATail) {
  EXPECT_THAT(coreNumbers(triangleWithTail()), ElementsAre(2, 2, 2, 1));
}

TEST(CoresTest, ParallelEdgesCountAndLoopsDoNot) {
  EXPECT_THAT(coreNumbers(Network::build({{0, 1}, {0, 1}, {0, 1}, {1, 1}, {1, 2}}).value()),
              ElementsAre(3, 3, 1));
  EXPECT_THAT(coreNumbers(Network::build({}, {}).value()), IsEmpty());
}

TEST(CoresTest, DirectionsCountOneWay) {
  const Network network =
      Network::build({{0, 1}, {1, 0}, {1, 2}, {2, 0}}, {.directed = true}).value();
  EXPECT_THAT(coreNumbers(network, Direction::kOut), ElementsAre(1, 1, 1));
  EXPECT_THAT(coreNumbers(network), ElementsAre(2, 2, 2));
  EXPECT_THAT(coreNumbers(path(2, true), Direction::kIn), ElementsAre(0, 0, 0));
}

// Three vertices lead to one that leads nowhere. With p = 1/4 for each, x = 1/4 for the three and
// 1/4 + 0.85 * 3/4 for the fourth, 131/80 together.
TEST(PageRankTest, OfAStar) {
  const PageRank found =
      pageRank(Network::build({1, 2, 3}, {0, 0, 0}, {.directed = true}).value()).value();
  const auto near = [](double value) { return DoubleNear(value, 1e-10); };
  EXPECT_THAT(found.ranks,
              ElementsAre(near(71.0 / 131), near(20.0 / 131), near(20.0 / 131), near(20.0 / 131)));
  EXPECT_TRUE(found.converged);
  EXPECT_LT(found.error, 1e-10);
}

// x = 1/3 (1, 1 + 3/8, 1 + 1/8), 7/6 together.
TEST(PageRankTest, FollowsWeights) {
  const std::vector<double> weights{3, 1};
  const Network network =
      Network::build({0, 0}, {1, 2}, {.directed = true, .edgeWeights = weights}).value();
  const auto near = [](double value) { return DoubleNear(value, 1e-10); };
  EXPECT_THAT(pageRank(network, {.restart = 0.5}).value().ranks,
              ElementsAre(near(8.0 / 28), near(11.0 / 28), near(9.0 / 28)));
  // x = 1/3 (1, 5/4, 5/4) where weights do not count.
  EXPECT_THAT(pageRank(network, {.restart = 0.5, .weighted = false}).value().ranks,
              ElementsAre(near(4.0 / 14), near(5.0 / 14), near(5.0 / 14)));
}

TEST(PageRankTest, RestartsWhereItIsTold) {
  const Network network = Network::build({{0, 1}, {1, 0}, {2, 0}}, {.directed = true}).value();
  const std::vector<float> personalisation{0, 2, 0};
  const PageRank found =
      pageRank(network, {.restart = 0.5, .personalisation = personalisation}).value();
  // x1 = 1 + x0 / 2, x0 = x1 / 2.
  EXPECT_THAT(found.ranks, ElementsAre(DoubleNear(1.0 / 3, 1e-10), DoubleNear(2.0 / 3, 1e-10), 0));
  EXPECT_THAT(pageRank(network, {.restart = 1}).value().ranks,
              testing::Each(DoubleNear(1.0 / 3, 1e-15)));
}

TEST(PageRankTest, SaysThatItDidNotArrive) {
  const PageRank hurried = pageRank(triangleWithTail(), {.mostSweeps = 1}).value();
  EXPECT_EQ(hurried.sweeps, 1U);
  EXPECT_FALSE(hurried.converged);
  const PageRank exact = pageRank(triangleWithTail(), {.tolerance = 1e-13}).value();
  double error = 0;
  for (std::size_t v = 0; v < 4; ++v) error += std::abs(hurried.ranks[v] - exact.ranks[v]);
  EXPECT_LT(error, hurried.error + 1e-12);
  EXPECT_TRUE(pageRank(Network::build({}, {}).value()).value().converged);
}

TEST(PageRankTest, SaysWhatCannotBe) {
  const auto text = [](const PageRankOptions& options) {
    return pageRank(triangleWithTail(), options).error().text();
  };
  EXPECT_EQ(text({.restart = 0}), "restart 0: not above 0 and at most 1");
  EXPECT_EQ(text({.restart = 1.5}), "restart 1.5: not above 0 and at most 1");
  EXPECT_EQ(text({.tolerance = 0}), "tolerance 0: not above 0");
  const std::vector<double> three{1, 1, 1};
  EXPECT_EQ(text({.personalisation = three}), "3 weights for 4 vertices");
  const std::vector<double> negative{1, 1, 1, -1};
  EXPECT_EQ(text({.personalisation = negative}), "vertex 3: personalisation -1");
  const std::vector<double> zero{0, 0, 0, 0};
  EXPECT_EQ(text({.personalisation = zero}), "the personalisation sums to 0");
  const std::vector<double> weights{1, -2};
  EXPECT_EQ(
      pageRank(Network::build({0, 1}, {1, 0}, {.edgeWeights = weights}).value()).error().text(),
      "edge 1: weight -2");
}

TEST(QuestionsTest, LongOnesCanBeStopped) {
  const Network network = triangleWithTail();
  const auto expectStopped = [](const auto& result) {
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind(), ErrorKind::kStopped);
  };
  expectStopped(distanceHistogram(network, {.progress = stopped()}));
  expectStopped(diameter(network, {.progress = stopped()}));
  expectStopped(componentNetworks(network, Connection::kWeak, {.progress = stopped()}));
  expectStopped(largestComponent(network, Connection::kWeak, {.progress = stopped()}));
  expectStopped(pageRank(network, {.progress = stopped()}));
  expectStopped(components(network, Connection::kWeak, stopped()));
  expectStopped(components(network, Connection::kStrong, stopped()));
  expectStopped(triangles(network, stopped()));
  expectStopped(countTriangles(network, stopped()));
  expectStopped(localClustering(network, stopped()));
  expectStopped(averageClustering(network, WithoutPairs::kZero, stopped()));
  expectStopped(transitivity(network, stopped()));
  expectStopped(coreNumbers(network, Direction::kAll, stopped()));
}

// Vertices are told of in thousands, wherever the search is, and an observer that ends the work
// does so at once.
TEST(QuestionsTest, ComponentsAreFollowedWhileTheyAreFound) {
  constexpr std::uint64_t kLength = 40'000;
  const ObserverInterval none;
  for (const bool strong : {false, true}) {
    const Network network = path(kLength - 1, strong);
    const internal::AdjacencyStore& store = internal::coreOf(network).store;
    std::vector<std::uint64_t> told;
    Progress progress;
    progress.observer = [&](std::uint64_t done, std::uint64_t all) {
      EXPECT_EQ(all, kLength);
      told.push_back(done);
      if (told.size() == 3) throw std::runtime_error("enough");
    };
    const auto find = [&] {
      internal::Pace pace(progress, kLength);
      return store.visit([&](const auto& topology) {
        return internal::componentsOf(store, topology, strong, &pace).sizes.size();
      });
    };
    EXPECT_EQ(find(), strong ? kLength : 1U);
    EXPECT_THAT(told, ElementsAre(16'384, 32'768));
    EXPECT_THROW(find(), internal::ObserverThrew);
  }
}

}  // namespace
}  // namespace veq::test::questions_test
