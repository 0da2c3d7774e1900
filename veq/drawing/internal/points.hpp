#pragma once

#include <algorithm>
#include <span>

namespace veq::internal {

/// Of a drawing, x to the right and y upwards.
struct Point {
  double x = 0.0;
  double y = 0.0;
};

/// The smallest rectangle round some points.
struct Extent {
  Point low;
  Point high;
};
/// Of one point at least.
[[nodiscard]] inline Extent extentOf(std::span<const Point> points) {
  Extent extent{points[0], points[0]};
  for (const Point& point : points) {
    extent.low = {std::min(extent.low.x, point.x), std::min(extent.low.y, point.y)};
    extent.high = {std::max(extent.high.x, point.x), std::max(extent.high.y, point.y)};
  }
  return extent;
}

}  // namespace veq::internal
