/// \file
/// In what two networks differ, in words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// What became of `before` when it came back as `after`, its vertices and edges in the same order.
/// The ends of edges are not compared. O(size of both).
[[nodiscard]] std::vector<std::string> differencesBetween(const VEQNetwork& before,
                                                          const VEQNetwork& after);

/// The same for the weights of edges alone; empty where there is no difference.
[[nodiscard]] std::string edgeWeightsDifference(const VEQNetwork& before, const VEQNetwork& after);

}  // namespace veq::tool
