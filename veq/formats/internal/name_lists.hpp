/// \file
/// Networks from names: lines of vertices and of the ends of edges.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "veq/network/internal/network_draft.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// Optional weights, one for each vertex and one for each edge.
struct WeightArrays {
  const VEQNumberArray* vertices = nullptr;
  const VEQNumberArray* edges = nullptr;
};

/// One vertex for each name, which becomes its entry of the column "Name".
[[nodiscard]] NetworkDraft draftOfNames(const std::vector<std::string_view>& names,
                                        RawVector<std::uint64_t> from, RawVector<std::uint64_t> to,
                                        bool directed);

/// Lines of names, and lines of two names with a blank between them. Nothing where weights are not
/// one for each line; then std::out_of_range for a line of fewer than two names. O(length).
[[nodiscard]] std::optional<NetworkDraft> readEdgeNames(std::string_view vertices,
                                                        std::string_view edges, bool directed,
                                                        const WeightArrays& weights);

/// Lines of names, of sources and of targets; without a text of vertices these are the distinct
/// ends, by first appearance, source before target. Nothing where numbers of lines or of weights do
/// not match. O(length).
[[nodiscard]] std::optional<NetworkDraft> readLinkNames(std::optional<std::string_view> vertices,
                                                        std::string_view from, std::string_view to,
                                                        bool directed, const WeightArrays& weights);

}  // namespace veq::internal
