#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "veq/network/internal/adjacency_store.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// Vertex indices in edge order, either its own or the caller's for the time of a call.
class IndexList {
 public:
  IndexList() = default;
  IndexList(RawVector<std::uint64_t> own) : own_(std::move(own)), all_(own_) {}
  explicit IndexList(std::span<const std::uint64_t> borrowed) : all_(borrowed) {}
  /// Borrows the elements of an array of unsigned or signed integers, and converts others. A
  /// negative index becomes one that cannot be.
  explicit IndexList(const VEQNumberArray& array);
  IndexList(IndexList&&) = default;
  IndexList& operator=(IndexList&&) = default;

  [[nodiscard]] std::span<const std::uint64_t> all() const { return all_; }

 private:
  RawVector<std::uint64_t> own_;
  std::span<const std::uint64_t> all_;
};

using Weights = RawVector<float>;

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
  /// Installed by the rules of the whole-column setters: reserved keys are dropped, null columns
  /// ignored, and fixed columns copied.
  PropertyTable verticesProperties;
  PropertyTable edgesProperties;
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
