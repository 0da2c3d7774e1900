/// \file
/// What is wrong with the input of the natural operations, in words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "veq/base/internal/pace.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/spans.hpp"
#include "veq/numeric/keyed_table.hpp"

namespace veq::internal {

/// What columns and weights are counted by.
enum class Item { kVertex, kEdge };

/// "1 vertex", "2 vertices", "1 edge", "0 edges".
[[nodiscard]] std::string counted(std::uint64_t count, Item item);

[[nodiscard]] inline Error argumentError(std::string text) {
  return {ErrorKind::kArgument, std::move(text)};
}

/// Throw std::out_of_range, "vertex 12 of 10", "edge 12 of 10".
void requireVertex(std::uint64_t vertex, std::uint64_t count);
void requireEdge(std::uint64_t edge, std::uint64_t count);

/// The first edge with an end that no vertex has, and how many more there are; or, without a number
/// of vertices, with one that cannot be an index.
[[nodiscard]] std::optional<Error> endsError(const IndexSpan& sources, const IndexSpan& targets,
                                             std::optional<std::uint64_t> vertices,
                                             Pace* pace = nullptr);

/// Weights that are not one for each.
[[nodiscard]] std::optional<Error> weightsError(const NumberSpan& weights, std::uint64_t count,
                                                Item item);

/// A key that names no column, and a column without one value for each.
[[nodiscard]] std::optional<Error> columnError(std::string_view key, const PropertyColumn* column,
                                               std::uint64_t count, Item item);
[[nodiscard]] std::optional<Error> columnsError(const PropertyTable& columns, std::uint64_t count,
                                                Item item);

}  // namespace veq::internal
