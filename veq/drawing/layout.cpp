#include "veq/drawing/layout.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "veq/base/internal/pace.hpp"
#include "veq/drawing/internal/force_steps.hpp"
#include "veq/drawing/internal/layout_graph.hpp"
#include "veq/drawing/internal/packing.hpp"

namespace veq {
namespace {

using internal::Box;
using internal::LayoutPart;
using internal::LayoutParts;
using internal::Point;

/// How much room is left round each component, and the room of a vertex by itself.
constexpr double kMargin = 0.5;

Shared<VEQVector2dArray> vectorsOf(const std::vector<Point>& points) {
  Shared<VEQVector2dArray> made =
      VEQVector2dArray::initWithSize_precision(points.size(), kDoublePrecision);
  for (std::size_t v = 0; v < points.size(); ++v) {
    made->setVector_atIndex({points[v].x, points[v].y}, v);
  }
  return made;
}

// From the lower left corner of a box with room round them.
Box moveIntoBox(std::vector<Point>& points) {
  const internal::Extent extent = internal::extentOf(points);
  for (Point& point : points) {
    point = {point.x - extent.low.x + kMargin, point.y - extent.low.y + kMargin};
  }
  return {extent.high.x - extent.low.x + 2.0 * kMargin,
          extent.high.y - extent.low.y + 2.0 * kMargin};
}

void fitIntoSquare(std::vector<Point>& points) {
  if (points.empty()) return;
  const auto [low, high] = internal::extentOf(points);
  const Point centre{(low.x + high.x) / 2.0, (low.y + high.y) / 2.0};
  const double half = std::max(high.x - low.x, high.y - low.y) / 2.0;
  if (!(half > 0.0)) {
    std::fill(points.begin(), points.end(), Point());
    return;
  }
  // A quotient may be rounded up beyond the edge.
  const auto fit = [half](double offset) { return std::clamp(offset / half, -1.0, 1.0); };
  for (Point& point : points) point = {fit(point.x - centre.x), fit(point.y - centre.y)};
}

std::vector<Point> packAll(const LayoutParts& all, std::vector<std::vector<Point>>& drawings,
                           std::uint64_t vertices, internal::Pace& pace) {
  std::vector<Box> boxes;
  for (std::vector<Point>& drawing : drawings) boxes.push_back(moveIntoBox(drawing));
  boxes.resize(boxes.size() + all.single.size(), Box{2.0 * kMargin, 2.0 * kMargin});
  const std::vector<Point> corners = internal::packed(boxes, &pace);
  std::vector<Point> points(vertices);
  for (std::size_t part = 0; part < drawings.size(); ++part) {
    for (std::size_t i = 0; i < drawings[part].size(); ++i) {
      const Point at = drawings[part][i];
      points[all.parts[part].vertices[i]] = {corners[part].x + at.x, corners[part].y + at.y};
    }
  }
  for (std::size_t i = 0; i < all.single.size(); ++i) {
    const Point corner = corners[drawings.size() + i];
    points[all.single[i]] = {corner.x + kMargin, corner.y + kMargin};
  }
  return points;
}

}  // namespace

Result<Shared<VEQVector2dArray>> forceLayout(const Network& network, const LayoutOptions& options) {
  const internal::StepPlan plan{options.iterations};
  return internal::untilStopped([&]() -> Result<Shared<VEQVector2dArray>> {
    // Until the components are known, what is to be done is an estimate.
    internal::Pace early(options.progress,
                         std::max<std::uint64_t>(1, plan.workOf(network.countVertices())));
    const Result<internal::LayoutGraph> graph =
        internal::layoutGraph(network, options.useWeights, &early);
    if (!graph) return graph.error();
    const LayoutParts all = internal::partsOf(graph.value(), &early);
    std::uint64_t work = 0;
    for (const LayoutPart& part : all.parts) work += plan.workOf(part.graph.count());
    internal::Pace pace(options.progress, work);
    pace.reach(0);
    std::vector<std::vector<Point>> drawings;
    for (const LayoutPart& part : all.parts) {
      drawings.push_back(
          internal::placedByForces(part.graph, plan, options.seed + std::uint64_t{1}, pace));
      internal::turnLevel(drawings.back());
    }
    std::vector<Point> points = packAll(all, drawings, network.countVertices(), pace);
    fitIntoSquare(points);
    return vectorsOf(points);
  });
}

Shared<VEQVector2dArray> circleLayout(const Network& network) {
  return vectorsOf(internal::circle(network.countVertices()));
}

}  // namespace veq
