/// \file
/// Where the vertices of a drawing are, by whatever layout.
#pragma once

#include <string_view>
#include <vector>

#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/drawing/internal/repulsion.hpp"
#include "veq/drawing/page.hpp"
#include "veq/natural/network.hpp"

namespace veq::internal {

struct Placement {
  /// In the unit square, from its lower left corner; the longer direction fills it, and the shorter
  /// one is in its middle.
  std::vector<Point> points;
  /// "force", "given" or "circle".
  std::string_view layout;
};

[[nodiscard]] Result<Placement> placementOf(const Network& network, Layout layout,
                                            const Progress& progress);

/// Whether a given layout can be had.
[[nodiscard]] std::optional<Error> placementError(const Network& network, Layout layout);

}  // namespace veq::internal
