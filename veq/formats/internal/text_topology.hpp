/// \file
/// What text formats have in common in how they tell vertices and edges.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "veq/base/internal/text_scanner.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// The vertices and edges of a text on their way to a draft. An end that cannot be read is that of
/// the edge before, also over sections. LinesAhead reads them, too.
class TextTopology {
 public:
  /// The index that the format gives the first vertex.
  explicit TextTopology(std::int64_t first = 0) : first_(first) {}

  /// Of the edges of a section, where it has them.
  std::optional<Weights> weights;

  /// Reads the number of vertices, from before its blanks; false where there is none.
  bool readVertexCount(TextScanner& scanner) {
    scanner.skipBlanks();
    const std::optional<std::int64_t> count = scanner.readInteger();
    vertexCount_ = count.value_or(vertexCount_);
    return count.has_value();
  }
  [[nodiscard]] std::int64_t vertexCount() const { return vertexCount_; }

  void readSource(TextScanner& scanner) { source_ = scanner.readInteger().value_or(source_); }
  /// From before its blanks; false where there is none.
  bool readTarget(TextScanner& scanner) {
    scanner.skipBlanks();
    const std::optional<std::int64_t> target = scanner.readInteger();
    target_ = target.value_or(target_);
    return target.has_value();
  }

  /// Reads both ends from before their blanks. Where one is missing, it answers false and consumes
  /// nothing.
  bool readEnds(TextScanner& scanner) {
    const std::size_t begin = scanner.position();
    scanner.skipBlanks();
    const std::optional<std::int64_t> source = scanner.readInteger();
    scanner.skipBlanks();
    const std::optional<std::int64_t> target = scanner.readInteger();
    if (!source || !target) {
      scanner.goTo(begin);
      return false;
    }
    source_ = *source;
    target_ = *target;
    return true;
  }

  /// Makes room for the edges of a text of which so much is left, and for their weights. Nothing is
  /// done from the second time on. Every doubling would touch new memory, while room that nothing
  /// needs takes none.
  void reserveFor(std::string_view rest) {
    if (from_.capacity() == 0) reserve(usualLines(rest));
  }
  /// How many lines there are if they are not short.
  [[nodiscard]] static std::size_t usualLines(std::string_view text) { return text.size() / 16; }

  /// Appends the edge between the ends read last, or the one in the opposite direction.
  void appendEdge() { append(source_, target_); }
  void appendReverse() { append(target_, source_); }
  [[nodiscard]] std::uint64_t edgeCount() const { return from_.size(); }

  void setDirected(bool directed) { directed_ = directed; }
  [[nodiscard]] bool isDirected() const { return directed_; }

  // For LinesAhead

  void begin(const TextTopology& whole) {
    first_ = whole.first_;
    directed_ = whole.directed_;
    from_.clear();
    to_.clear();
    if (!whole.weights) return weights.reset();
    if (!weights) weights.emplace();
    weights->clear();
  }
  [[nodiscard]] std::uint64_t count() const { return edgeCount(); }
  void reserve(std::uint64_t edges) {
    const auto more = static_cast<std::size_t>(edges) - from_.size();
    from_.reserve(from_.size() + more);
    to_.reserve(to_.size() + more);
    if (weights) weights->reserve(weights->size() + more);
  }
  void resize(std::uint64_t edges) {
    // Of earlier sections there may be no weights.
    if (weights) weights->resize(weights->size() + (edges - edgeCount()));
    from_.resize(edges);
    to_.resize(edges);
  }
  void copy(const TextTopology& piece, std::uint64_t at) {
    const auto behind = static_cast<std::ptrdiff_t>(edgeCount() - at);
    std::copy(piece.from_.begin(), piece.from_.end(), from_.end() - behind);
    std::copy(piece.to_.begin(), piece.to_.end(), to_.end() - behind);
    if (weights) std::copy(piece.weights->begin(), piece.weights->end(), weights->end() - behind);
  }
  void follow(const TextTopology& piece, std::uint64_t /*at*/) {
    if (piece.edgeCount() == 0) return;
    source_ = piece.source_;
    target_ = piece.target_;
  }

  /// Nothing where this is no network.
  [[nodiscard]] std::optional<NetworkDraft> finish() {
    if (vertexCount_ < 0) return std::nullopt;
    const std::optional<std::uint64_t> count =
        countVertices(static_cast<std::uint64_t>(vertexCount_), from_, to_);
    if (!count) return std::nullopt;
    NetworkDraft draft;
    draft.vertexCount = *count;
    draft.from = std::move(from_);
    draft.to = std::move(to_);
    draft.directed = directed_;
    draft.edgesWeights = std::move(weights);
    return draft;
  }

 private:
  /// What lies below the first vertex names nothing that can be.
  [[nodiscard]] std::uint64_t asIndex(std::int64_t number) const {
    return number < first_
               ? std::numeric_limits<std::uint64_t>::max()
               : static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(first_);
  }

  void append(std::int64_t from, std::int64_t to) {
    from_.push_back(asIndex(from));
    to_.push_back(asIndex(to));
  }

  std::int64_t first_;
  std::int64_t vertexCount_ = 0;
  std::int64_t source_ = 0;
  std::int64_t target_ = 0;
  RawVector<std::uint64_t> from_;
  RawVector<std::uint64_t> to_;
  bool directed_ = false;
};

}  // namespace veq::internal
