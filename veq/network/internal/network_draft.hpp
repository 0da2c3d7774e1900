#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "veq/network/internal/adjacency_store.hpp"
#include "veq/network/internal/index_list.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

using Weights = RawVector<float>;

/// A network's columns. In one block, as networks with few vertices may be many, and most of the
/// memory and of the time to make them would otherwise be in such blocks.
struct NetworkProperties {
  PropertyTable vertices;
  PropertyTable edges;
};

/// What a network is to be made of. Every constructor, reader and model fills a draft, and one
/// function turns drafts into networks.
struct NetworkDraft {
  /// The exact number of vertices; all ends must be below it.
  std::uint64_t vertexCount = 0;
  IndexList from;
  IndexList to;
  bool directed = false;
  std::optional<Weights> verticesWeights;
  std::optional<Weights> edgesWeights;
  /// Installed by the rules of the whole-column setters (reserved keys are dropped, null columns
  /// ignored, fixed columns copied), unless they come from networks, where these were applied.
  NetworkProperties properties;
  bool columnsAreReady = false;
  /// Asked while the lists are built, where there is one.
  Pace* pace = nullptr;
  /// For tests of the wide form with few edges.
  std::uint64_t narrowLimit = AdjacencyStore::kNarrowLimit;
};

/// The larger of the minimum and the largest index plus one, where two empty lists have a largest
/// index of 0; nothing if an index is too large for a count.
[[nodiscard]] std::optional<std::uint64_t> countVertices(std::uint64_t minimum,
                                                         std::span<const std::uint64_t> from,
                                                         std::span<const std::uint64_t> to);

/// The values of the array as floats, or nothing without an array.
[[nodiscard]] std::optional<Weights> weightsOf(const VEQNumberArray* array);

}  // namespace veq::internal
