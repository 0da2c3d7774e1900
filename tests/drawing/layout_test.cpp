#include "veq/drawing/layout.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/observers.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/drawing/internal/checksum.hpp"
#include "veq/drawing/internal/force_steps.hpp"
#include "veq/drawing/internal/layout_graph.hpp"
#include "veq/drawing/internal/packing.hpp"
#include "veq/drawing/internal/repulsion.hpp"
#include "veq/models.hpp"

namespace veq::test::layout_test {
namespace {

using internal::Point;
using Edges = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

std::vector<Point> pointsOf(const VEQVector2dArray& array) {
  std::vector<Point> points;
  for (std::uint64_t v = 0; v < array.count(); ++v) {
    points.push_back({array.vectorAtIndex(v).x(), array.vectorAtIndex(v).y()});
  }
  return points;
}

std::vector<Point> layoutOf(const Network& network, const LayoutOptions& options = {}) {
  return pointsOf(*forceLayout(network, options).value());
}

double distance(const Point& a, const Point& b) {
  return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

double nearest(const std::vector<Point>& points) {
  double least = INFINITY;
  for (std::size_t i = 0; i < points.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) least = std::min(least, distance(points[i], points[k]));
  }
  return least;
}

void expectInSquare(const std::vector<Point>& points) {
  double most = 0.0;
  for (const Point& point : points) {
    ASSERT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
    most = std::max({most, std::fabs(point.x), std::fabs(point.y)});
  }
  EXPECT_EQ(most, points.size() > 1 ? 1.0 : 0.0);
}

Network star(std::uint64_t rays) {
  Edges edges;
  for (std::uint64_t ray = 1; ray <= rays; ++ray) edges.emplace_back(0, ray);
  return Network::build(edges).value();
}

Network pathOf(std::uint64_t n) {
  Edges edges;
  for (std::uint64_t v = 1; v < n; ++v) edges.emplace_back(v - 1, v);
  return Network::build(edges).value();
}

TEST(ForceLayout, OfNothingAndOfOne) {
  EXPECT_EQ(layoutOf(Network::build({}).value()).size(), 0U);
  const std::vector<Point> one = layoutOf(Network::build({}, {.vertices = 1}).value());
  ASSERT_EQ(one.size(), 1U);
  EXPECT_EQ(one[0].x, 0.0);
  EXPECT_EQ(one[0].y, 0.0);
  const std::vector<Point> loop = layoutOf(Network::build({{0, 0}, {0, 0}}).value());
  EXPECT_EQ(loop[0].x, 0.0);
}

TEST(ForceLayout, OfTwoIsLevel) {
  const std::vector<Point> two = layoutOf(Network::build({{0, 1}}).value());
  EXPECT_NEAR(std::fabs(two[0].x), 1.0, 1e-9);
  EXPECT_NEAR(two[0].x, -two[1].x, 1e-9);
  EXPECT_NEAR(two[0].y, 0.0, 1e-9);
}

TEST(ForceLayout, OfShapesThatHaveNoEdges) {
  for (const auto& network : {Network::build({}, {.vertices = 7}).value(),
                              Network::build({{0, 0}, {1, 1}, {1, 1}, {4, 4}}).value()}) {
    const std::vector<Point> points = layoutOf(network);
    expectInSquare(points);
    EXPECT_GT(nearest(points), 0.3);
  }
}

TEST(ForceLayout, OfAHundredThousandWithoutEdges) {
  const std::vector<Point> points = layoutOf(Network::build({}, {.vertices = 100'000}).value());
  expectInSquare(points);
  std::vector<std::pair<double, double>> places;
  for (const Point& point : points) places.emplace_back(point.x, point.y);
  std::sort(places.begin(), places.end());
  EXPECT_EQ(std::adjacent_find(places.begin(), places.end()), places.end());
}

TEST(ForceLayout, OfVeryManyPairs) {
  Edges edges;
  for (std::uint64_t pair = 0; pair < 20'000; ++pair) edges.emplace_back(2 * pair, 2 * pair + 1);
  expectInSquare(layoutOf(Network::build(edges).value()));
}

TEST(ForceLayout, OfAStarHasItsCentreInTheMiddle) {
  for (const std::uint64_t rays : {3U, 60U, 500U}) {
    const std::vector<Point> points = layoutOf(star(rays));
    expectInSquare(points);
    EXPECT_GT(nearest(points), 0.0) << rays;
    Point middle;
    for (const Point& point : points) {
      middle = {middle.x + point.x / static_cast<double>(points.size()),
                middle.y + point.y / static_cast<double>(points.size())};
    }
    EXPECT_LT(distance(points[0], middle), 0.25) << rays;
  }
}

TEST(ForceLayout, OfALongPathUnfoldsIt) {
  const std::vector<Point> points = layoutOf(pathOf(2000));
  expectInSquare(points);
  // Ends are far apart, and no edge is long.
  EXPECT_GT(distance(points[0], points[1999]), 1.0);
  for (std::size_t v = 1; v < points.size(); ++v) {
    ASSERT_LT(distance(points[v - 1], points[v]), 0.02);
  }
}

TEST(ForceLayout, NeighboursAreNearerThanOthers) {
  const Network network = latticeNetwork(std::vector<std::uint64_t>{20, 20}).value();
  const std::vector<Point> points = layoutOf(network);
  double edges = 0.0;
  for (std::uint64_t e = 0; e < network.countEdges(); ++e) {
    const auto [from, to] = network.endsOf(e);
    edges += distance(points[from], points[to]) / static_cast<double>(network.countEdges());
  }
  double pairs = 0.0;
  for (const Point& a : points) {
    for (const Point& b : points) pairs += distance(a, b) / 160'000.0;
  }
  EXPECT_LT(edges, pairs / 6.0);
  // Opposite corners of the lattice are opposite corners of the drawing.
  EXPECT_GT(distance(points[0], points[399]), 1.8);
}

TEST(ForceLayout, ComponentsStandApart) {
  Edges edges;
  for (std::uint64_t part = 0; part < 30; ++part) {
    for (std::uint64_t v = 0; v + 1 < 5; ++v) edges.emplace_back(part * 5 + v, part * 5 + v + 1);
  }
  const Network network = Network::build(edges, {.vertices = 160}).value();
  const std::vector<Point> points = layoutOf(network);
  expectInSquare(points);
  const auto box = [&](std::size_t part) {
    Point low = points[part * 5];
    Point high = low;
    for (std::size_t v = part * 5; v < part * 5 + 5; ++v) {
      low = {std::min(low.x, points[v].x), std::min(low.y, points[v].y)};
      high = {std::max(high.x, points[v].x), std::max(high.y, points[v].y)};
    }
    return std::pair(low, high);
  };
  for (std::size_t a = 0; a < 30; ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      const auto [lowA, highA] = box(a);
      const auto [lowB, highB] = box(b);
      EXPECT_TRUE(highA.x < lowB.x || highB.x < lowA.x || highA.y < lowB.y || highB.y < lowA.y);
    }
  }
}

TEST(ForceLayout, LoopsParallelEdgesAndDirectionDoNotMatter) {
  const Network plain = Network::build({{0, 1}, {1, 2}, {2, 3}, {3, 0}, {1, 3}}).value();
  const Network other =
      Network::build({{0, 1}, {1, 2}, {2, 3}, {3, 0}, {1, 3}, {1, 1}, {2, 1}}, {.directed = true})
          .value();
  const std::vector<Point> a = layoutOf(plain);
  const std::vector<Point> b = layoutOf(other);
  for (std::size_t v = 0; v < 4; ++v) {
    EXPECT_EQ(a[v].x, b[v].x);
    EXPECT_EQ(a[v].y, b[v].y);
  }
}

TEST(ForceLayout, WeightsDrawTogether) {
  const std::vector<float> weights{8, 1, 0};
  const Network network =
      Network::build({{0, 1}, {1, 2}, {2, 3}}, {.edgeWeights = weights}).value();
  const std::vector<Point> points = layoutOf(network, {.useWeights = true});
  EXPECT_LT(distance(points[0], points[1]), distance(points[1], points[2]));
  const std::vector<float> negative{8, 1, -1};
  const auto refused =
      forceLayout(Network::build({{0, 1}, {1, 2}, {2, 3}}, {.edgeWeights = negative}).value(),
                  {.useWeights = true});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().text(), "edge 2: weight -1");
}

TEST(ForceLayout, IsFollowedAndStopped) {
  const ObserverInterval always;
  const Network network = barabasiAlbertNetwork(1000, 2, {.seed = 1}).value();
  StopSource source;
  std::uint64_t looks = 0;
  std::uint64_t last = 0;
  LayoutOptions options;
  options.progress.stop = source.token();
  options.progress.observer = [&](std::uint64_t done, std::uint64_t all) {
    EXPECT_GE(done, last);
    EXPECT_LE(done, all);
    last = done;
    if (++looks == 20) source.requestStop();
  };
  const auto stopped = forceLayout(network, options);
  ASSERT_FALSE(stopped);
  EXPECT_EQ(stopped.error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(looks, 20U);
}

TEST(ForceLayout, IsStoppedBeforeAnyVertexMoves) {
  const ObserverInterval always;
  // A look for each 2^14 ends or vertices: 6 while 50 000 edges are counted and put into rows, 12
  // while these are sorted, 24 while components are found. Pairs are moved at once then.
  Edges edges;
  for (std::uint64_t pair = 0; pair < 50'000; ++pair) edges.emplace_back(2 * pair, 2 * pair + 1);
  const Network network = Network::build(edges).value();
  for (const std::uint64_t enough : {1U, 15U, 40U}) {
    StopSource source;
    std::uint64_t looks = 0;
    LayoutOptions options;
    options.progress.stop = source.token();
    options.progress.observer = [&](std::uint64_t done, std::uint64_t all) {
      EXPECT_EQ(done, 0U);
      EXPECT_GT(all, 0U);
      if (++looks == enough) source.requestStop();
    };
    const auto stopped = forceLayout(network, options);
    ASSERT_FALSE(stopped);
    EXPECT_EQ(stopped.error().kind(), ErrorKind::kStopped);
    EXPECT_EQ(looks, enough);
  }
}

std::uint32_t hashOf(const std::vector<Point>& points) {
  std::vector<std::uint64_t> bits;
  for (const Point& point : points) {
    bits.push_back(std::bit_cast<std::uint64_t>(point.x));
    bits.push_back(std::bit_cast<std::uint64_t>(point.y));
  }
  internal::Crc32 sum;
  sum.add(bits);
  return sum.value();
}

// All bits of these drawings are what every machine gives: they may change when the layout is made
// better, and never otherwise.
TEST(ForceLayout, IsTheSameEverywhere) {
  EXPECT_EQ(hashOf(layoutOf(barabasiAlbertNetwork(300, 2, {.seed = 1}).value())), 1984253890U);
  EXPECT_EQ(hashOf(layoutOf(gnmNetwork(200, 150, {.seed = 1}).value(), {.seed = 2})), 1225835555U);
  EXPECT_EQ(hashOf(layoutOf(star(400))), 4011640510U);
  EXPECT_EQ(hashOf(pointsOf(*circleLayout(pathOf(100)))), 985304073U);
}

TEST(CircleLayout, GoesRoundInOrder) {
  const std::vector<Point> points = pointsOf(*circleLayout(pathOf(12)));
  for (std::size_t i = 0; i < 12; ++i) {
    const double angle = 3.14159265358979323846 * static_cast<double>(i) / 6.0;
    EXPECT_NEAR(points[i].x, std::cos(angle), 1e-15);
    EXPECT_NEAR(points[i].y, std::sin(angle), 1e-15);
  }
  const std::vector<Point> many = pointsOf(*circleLayout(pathOf(1001)));
  for (std::size_t i = 0; i < many.size(); ++i) {
    const double angle = 2 * 3.14159265358979323846 * static_cast<double>(i) / 1001.0;
    ASSERT_NEAR(many[i].x, std::cos(angle), 1e-14);
    ASSERT_NEAR(many[i].y, std::sin(angle), 1e-14);
  }
  EXPECT_EQ(circleLayout(Network::build({}).value())->count(), 0U);
}

// The forces of all pairs, one by one.
std::vector<Point> allPairs(const std::vector<Point>& points, const std::vector<double>& masses) {
  std::vector<Point> forces(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    for (std::size_t k = 0; k < points.size(); ++k) {
      if (i == k) continue;
      const double dx = points[i].x - points[k].x;
      const double dy = points[i].y - points[k].y;
      const double push = masses[i] * masses[k] / (dx * dx + dy * dy);
      forces[i] = {forces[i].x + push * dx, forces[i].y + push * dy};
    }
  }
  return forces;
}

TEST(Repulsion, IsNearlyThatOfAllPairs) {
  RandomState state = RandomState::seeded(1).value();
  std::vector<Point> points(2000);
  std::vector<double> masses;
  for (Point& point : points) {
    // Thrice as dense in one corner.
    const double scale = state.nextDouble() < 0.5 ? 1.0 : 0.3;
    const double x = state.nextDouble();
    point = {scale * x, scale * state.nextDouble()};
    masses.push_back(1.0 + std::floor(3.0 * state.nextDouble()));
  }
  std::vector<Point> forces(points.size());
  internal::Repulsion().add(points, masses, forces);
  const std::vector<Point> exact = allPairs(points, masses);
  double wrong = 0.0;
  double all = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    wrong += distance(forces[i], exact[i]);
    all += distance(exact[i], Point());
  }
  EXPECT_LT(wrong / all, 0.05);
}

TEST(Repulsion, OfFewIsThatOfAllPairs) {
  const std::vector<Point> points{{0, 0}, {1, 0}, {0, 2}};
  const std::vector<double> masses{1, 2, 3};
  std::vector<Point> forces(3, Point{1, 1});
  internal::Repulsion().add(points, masses, forces);
  // On the first: 2 to the left at 1 away, 3 / 4 x 2 downwards.
  EXPECT_DOUBLE_EQ(forces[0].x, 1 - 2.0);
  EXPECT_DOUBLE_EQ(forces[0].y, 1 - 1.5);
}

TEST(Repulsion, IsStoppedAmongThePointsOfOneStep) {
  const ObserverInterval always;
  std::vector<Point> points(10'000);
  RandomState state = RandomState::seeded(1).value();
  for (Point& point : points) point = {state.nextDouble(), state.nextDouble()};
  const std::vector<double> masses(points.size(), 1.0);
  std::vector<Point> forces(points.size());
  StopSource source;
  std::uint64_t looks = 0;
  const Progress progress{.observer =
                              [&](std::uint64_t, std::uint64_t) {
                                if (++looks == 3) source.requestStop();
                              },
                          .stop = source.token()};
  internal::Pace pace(progress, 1);
  EXPECT_THROW(internal::Repulsion().add(points, masses, forces, &pace), internal::Stopped);
  EXPECT_EQ(looks, 3U);
}

TEST(Repulsion, DrivesApartWhatIsInOnePlace) {
  for (const std::size_t count : {2U, 40U, 60U}) {
    const std::vector<Point> points(count, Point{3, 4});
    const std::vector<double> masses(count, 1.0);
    std::vector<Point> forces(count);
    internal::Repulsion().add(points, masses, forces);
    Point sum;
    for (const Point& force : forces) {
      EXPECT_GT(distance(force, Point()), 1.0);
      sum = {sum.x + force.x, sum.y + force.y};
    }
    // What one does to another, the other does to it.
    EXPECT_LT(distance(sum, Point()), 1e-6);
  }
}

TEST(Packing, BoxesDoNotOverlap) {
  RandomState state = RandomState::seeded(1).value();
  std::vector<internal::Box> boxes;
  double area = 0.0;
  for (int i = 0; i < 300; ++i) {
    const double width = 1.0 + 5.0 * state.nextDouble();
    boxes.push_back({width, 1.0 + 5.0 * state.nextDouble()});
    area += boxes.back().width * boxes.back().height;
  }
  const std::vector<Point> corners = internal::packed(boxes);
  double right = 0.0;
  double top = 0.0;
  for (std::size_t a = 0; a < boxes.size(); ++a) {
    right = std::max(right, corners[a].x + boxes[a].width);
    top = std::max(top, corners[a].y + boxes[a].height);
    EXPECT_GE(corners[a].x, 0.0);
    EXPECT_GE(corners[a].y, 0.0);
    for (std::size_t b = 0; b < a; ++b) {
      EXPECT_TRUE(corners[a].x + boxes[a].width <= corners[b].x + 1e-9 ||
                  corners[b].x + boxes[b].width <= corners[a].x + 1e-9 ||
                  corners[a].y + boxes[a].height <= corners[b].y + 1e-9 ||
                  corners[b].y + boxes[b].height <= corners[a].y + 1e-9)
          << a << " and " << b;
    }
  }
  EXPECT_LT(right * top, 1.4 * area);
  EXPECT_LT(std::max(right, top), 1.5 * std::min(right, top));
}

TEST(Packing, IsStoppedAmongManyBoxes) {
  const std::vector<internal::Box> boxes(1000, internal::Box{1.0, 1.0});
  const StopSource source;
  source.requestStop();
  const Progress progress{.observer = {}, .stop = source.token()};
  internal::Pace pace(progress, 1);
  EXPECT_THROW(static_cast<void>(internal::packed(boxes, &pace)), internal::Stopped);
}

TEST(LayoutGraph, CoarserOnesHaveAboutHalfTheVertices) {
  for (const Network& network :
       {star(100), pathOf(100), barabasiAlbertNetwork(100, 2, {.seed = 1}).value()}) {
    const internal::LayoutGraph graph = internal::layoutGraph(network, false).value();
    const internal::CoarserGraph made = internal::coarser(graph);
    EXPECT_LE(made.graph.count(), 60U);
    double mass = 0.0;
    for (const double each : made.graph.masses) mass += each;
    EXPECT_EQ(mass, static_cast<double>(network.countVertices()));
    // Each edge between different vertices pulls in both directions.
    double pulls = 0.0;
    for (const double pull : made.graph.pulls) pulls += pull;
    std::uint64_t between = 0;
    for (std::uint64_t e = 0; e < network.countEdges(); ++e) {
      const auto [from, to] = network.endsOf(e);
      between += made.coarse[from] != made.coarse[to] ? 2 : 0;
    }
    EXPECT_EQ(pulls, static_cast<double>(between));
  }
}

}  // namespace
}  // namespace veq::test::layout_test
