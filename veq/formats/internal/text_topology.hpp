/// \file
/// What text formats have in common in how they tell vertices and edges.
#pragma once

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
/// the edge before, also over sections.
class TextTopology {
 public:
  /// The index that the format gives the first vertex.
  explicit TextTopology(std::int64_t first) : first_(first) {}

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

  /// Makes room for the edges of a text of which so much is left, and answers for how many; 0, and
  /// nothing is done, from the second time on. Every doubling would touch new memory, while room
  /// that nothing needs takes none.
  std::size_t reserveFor(std::string_view rest) {
    if (from_.capacity() != 0) return 0;
    const std::size_t edges = usualLines(rest);
    from_.reserve(edges);
    to_.reserve(edges);
    return edges;
  }
  /// How many lines there are if they are not short.
  [[nodiscard]] static std::size_t usualLines(std::string_view text) { return text.size() / 16; }

  /// Appends the edge between the ends read last, or the one in the opposite direction.
  void append() { append(source_, target_); }
  void appendReverse() { append(target_, source_); }
  [[nodiscard]] std::uint64_t edgeCount() const { return from_.size(); }

  void setDirected(bool directed) { directed_ = directed; }
  [[nodiscard]] bool isDirected() const { return directed_; }

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
