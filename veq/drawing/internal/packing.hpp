/// \file
/// Putting drawings of different sizes beside each other.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "veq/drawing/internal/repulsion.hpp"

namespace veq::internal {

struct Box {
  double width = 0.0;
  double height = 0.0;
};

/// The lower left corners of the boxes, so that none overlap and all together are about a square:
/// each box, the highest first, as low as it finds room, and as far left there. Boxes have some
/// extent in both directions.
[[nodiscard]] std::vector<Point> packed(std::span<const Box> boxes, Pace* pace = nullptr);

}  // namespace veq::internal
