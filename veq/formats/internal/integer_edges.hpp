#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/list_shape.hpp"
#include "veq/formats/internal/text_columns.hpp"

namespace veq::internal {

/// Lines of two integers, with a weight or without.
class IntegerEdges {
 public:
  IntegerEdges() = default;
  explicit IntegerEdges(const ListShape& shape)
      : weighted_(shape.weight == 2), separator_(shape.separator == '\t' ? ' ' : shape.separator) {}

  /// As they would be in memory as signed integers.
  RawVector<std::uint64_t> from;
  RawVector<std::uint64_t> to;
  WeightColumn weights;
  /// How many lines they are of, with comments and empty ones.
  std::uint64_t lines = 0;

  /// Reads so many lines, or all; false where one is anything else.
  [[gnu::noinline, gnu::flatten]] bool read(LineReader& reader, std::uint64_t most) {
    for (; most > 0 && reader.next(); --most) {
      if (!readLine(reader)) return false;
    }
    return true;
  }
  /// The bytes of the piece, or nothing of it where a line is anything else.
  static std::size_t readPiece(std::string_view text, IntegerEdges& edges) {
    LineReader reader(text, edges.loneReturns_);
    if (edges.read(reader, text.size())) {
      edges.lines = reader.number();
      return text.size();
    }
    edges.clear();
    return 0;
  }

  void reserve(std::uint64_t edges) {
    from.reserve(edges);
    to.reserve(edges);
    if (weighted_) weights.reserve(edges);
  }

  // For LinesAhead

  void begin(const IntegerEdges& whole) {
    clear();
    weighted_ = whole.weighted_;
    separator_ = whole.separator_;
    loneReturns_ = whole.loneReturns_;
  }
  void setLoneReturns(bool loneReturns) { loneReturns_ = loneReturns; }
  [[nodiscard]] std::uint64_t count() const { return from.size(); }
  void resize(std::uint64_t edges) {
    from.resize(edges);
    to.resize(edges);
    if (weighted_) weights.resize(edges);
  }
  void copy(const IntegerEdges& piece, std::uint64_t at) {
    const auto begin = static_cast<std::ptrdiff_t>(at);
    std::copy(piece.from.begin(), piece.from.end(), from.begin() + begin);
    std::copy(piece.to.begin(), piece.to.end(), to.begin() + begin);
    if (weighted_) weights.copy(piece.weights, at);
  }
  void follow(const IntegerEdges& piece, std::uint64_t at) {
    weights.follow(piece.weights, at, lines);
    lines += piece.lines;
  }

 private:
  bool readLine(const LineReader& reader) {
    LineCursor cursor = reader.cursor();
    cursor.skipBlanks();
    const std::optional<std::int64_t> source = readInteger(cursor);
    if (!source) return isListComment(reader.line());
    if (!separate(cursor)) return false;
    const std::optional<std::int64_t> target = readInteger(cursor);
    if (!target) return false;
    if (weighted_) {
      if (!separate(cursor)) return false;
      const char* const begin = cursor.at();
      const std::optional<double> weight = cursor.readNumber();
      if (!weight) return false;
      if (weights.append(*weight, static_cast<std::size_t>(cursor.at() - begin))) {
        weights.setPlace(reader.placeOf(begin));
      }
    }
    cursor.skipBlanks();
    if (!cursor.atEnd()) return false;
    from.push_back(static_cast<std::uint64_t>(*source));
    to.push_back(static_cast<std::uint64_t>(*target));
    return true;
  }
  bool separate(LineCursor& cursor) const {
    cursor.skipBlanks();
    if (separator_ == ' ') return true;
    const bool matched = cursor.match(separator_);
    cursor.skipBlanks();
    return matched;
  }
  /// A comma behind a number is no blank.
  std::optional<std::int64_t> readInteger(LineCursor& cursor) const {
    return cursor.readLongInteger(separator_);
  }

  void clear() {
    from.clear();
    to.clear();
    weights.clear();
    lines = 0;
  }

  bool weighted_ = false;
  char separator_ = ' ';
  bool loneReturns_ = false;
};

}  // namespace veq::internal
