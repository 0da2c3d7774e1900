#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// What the formats write differently in the lines of edges.
struct EdgeLineStyle {
  std::uint64_t firstVertex;          ///< The number of vertex 0.
  std::string_view unweightedSuffix;  ///< Stands in the place of a weight where there is none.
  std::string_view lineEnd;
};

/// Appends a line for each edge, in edge order: source, target, and the weight with six decimals
/// where the network is edge-weighted.
void appendEdgeLines(std::string& out, const NetworkCore& core, const EdgeLineStyle& style);

}  // namespace veq::internal
