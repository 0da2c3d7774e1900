#include "veq/drawing/internal/placement.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "veq/drawing/layout.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {
namespace {

constexpr std::string_view kPosition = "Position";

Error positionError(const std::string& what) {
  return {ErrorKind::kArgument, "column Position: " + what};
}

Result<std::vector<Point>> givenPoints(const Network& network) {
  const Shared<const PropertyColumn> column = network.vertexColumn(kPosition);
  if (!column) return Error(ErrorKind::kArgument, "no column Position");
  std::vector<Point> points(network.countVertices());
  for (std::uint64_t v = 0; v < points.size(); ++v) {
    const PropertyValue value = valueOrNull(*column, v);
    if (const VEQVector2d* const plane = value.vector2d()) {
      points[v] = {plane->x(), plane->y()};
    } else if (const VEQVector3d* const space = value.vector3d()) {
      points[v] = {space->x(), space->y()};
    } else {
      return positionError("vertex " + std::to_string(v) + " has no position");
    }
    if (!std::isfinite(points[v].x) || !std::isfinite(points[v].y)) {
      return positionError("vertex " + std::to_string(v) + " is at no finite place");
    }
  }
  return points;
}

// Halves keep differences of the largest doubles finite.
void fitUnitSquare(std::vector<Point>& points) {
  if (points.empty()) return;
  const auto [low, high] = extentOf(points);
  const double width = high.x / 2 - low.x / 2;
  const double height = high.y / 2 - low.y / 2;
  const double side = std::max(width, height);
  const auto fit = [side](double offset, double length) {
    return side > 0.0 ? std::clamp((offset - length / 2) / side + 0.5, 0.0, 1.0) : 0.5;
  };
  for (Point& point : points) {
    point = {fit(point.x / 2 - low.x / 2, width), fit(point.y / 2 - low.y / 2, height)};
  }
}

std::vector<Point> pointsOf(const VEQVector2dArray& vectors) {
  std::vector<Point> points(vectors.count());
  for (std::uint64_t v = 0; v < points.size(); ++v) {
    const VEQVector2d vector = vectors.vectorAtIndex(v);
    points[v] = {vector.x(), vector.y()};
  }
  return points;
}

Placement fitted(std::vector<Point> points, std::string_view layout) {
  fitUnitSquare(points);
  return {std::move(points), layout};
}

}  // namespace

Result<Placement> placementOf(const Network& network, Layout layout, const Progress& progress) {
  if (layout == Layout::kCircle) return fitted(pointsOf(*circleLayout(network)), "circle");
  if (layout != Layout::kForce) {
    Result<std::vector<Point>> given = givenPoints(network);
    if (given) return fitted(std::move(given).value(), "given");
    if (layout == Layout::kGiven) return given.error();
  }
  LayoutOptions options;
  options.progress = progress;
  const auto vectors = forceLayout(network, options);
  if (!vectors) return vectors.error();
  return fitted(pointsOf(*vectors.value()), "force");
}

std::optional<Error> placementError(const Network& network, Layout layout) {
  if (layout != Layout::kGiven) return std::nullopt;
  const auto given = givenPoints(network);
  if (given) return std::nullopt;
  return given.error();
}

}  // namespace veq::internal
