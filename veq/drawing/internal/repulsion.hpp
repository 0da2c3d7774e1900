/// \file
/// The forces with which very many points push each other off.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "veq/base/internal/pace.hpp"
#include "veq/drawing/internal/points.hpp"

namespace veq::internal {

/// Each point pushes each other one off by the product of their masses over the distance. Points
/// that are far away for how much room they take together count as one in their centre (Barnes and
/// Hut). Memory is kept from call to call.
class Repulsion {
 public:
  /// Adds to each point's force, and asks the pace now and then, if there is one. O(n log n).
  void add(std::span<const Point> points, std::span<const double> masses, std::span<Point> forces,
           Pace* pace = nullptr);

 private:
  /// A square of the plane. Those inside it follow it in the array, up to `next`.
  struct Node {
    double x, y;  // the centre of mass
    double mass;
    double farSquare;          // from this square of a distance on it counts as one point
    std::uint32_t begin, end;  // its points, in order
    std::uint32_t next;        // a leaf is followed by this at once
  };

  void sortByPlace(std::span<const Point> points);
  void build(std::uint32_t begin, std::uint32_t end, int level);
  [[nodiscard]] Point forceOn(std::uint32_t point) const;

  double side_ = 0.0;
  std::vector<std::uint64_t> codes_;  // the place's in the upper half, and the point
  std::vector<std::uint64_t> spare_;
  std::vector<Point> points_;  // in order
  std::vector<double> masses_;
  std::vector<Node> nodes_;
};

}  // namespace veq::internal
