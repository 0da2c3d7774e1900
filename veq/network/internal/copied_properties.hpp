/// \file
/// Properties that a network inherits from the vertices and edges that it is made of.
#pragma once

#include <cstdint>
#include <span>

#include "veq/network/internal/handle_runs.hpp"
#include "veq/numeric/keyed_table.hpp"

namespace veq::internal {

/// The columns of a network whose vertices are made of those of the runs, one after the other, all
/// of networks that live. They are what setting every vertex's `properties` in order gives: keys in
/// the order in which they are first met, a kind fixed by the first value, nothing set where a
/// vertex's network lacks the key. But a column with a value that this kind cannot hold becomes one
/// that holds any kind. O(vertices) for each key.
[[nodiscard]] PropertyTable copiedVertexProperties(std::span<const HandleRun> runs);

/// The same for edges, whose columns always hold any kind.
[[nodiscard]] PropertyTable copiedEdgeProperties(std::span<const HandleRun> runs);

}  // namespace veq::internal
