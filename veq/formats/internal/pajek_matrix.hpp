#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/pajek_edges.hpp"

namespace veq::internal {

/// A matrix of a Pajek file: rows of numbers, wherever their lines end.
class PajekMatrix {
 public:
  /// None.
  PajekMatrix() = default;
  /// One of so many vertices, or of as many as its first line has numbers where that is not known.
  /// Where there are two modes each row is of a vertex of the first, and each column of a vertex of
  /// the second.
  PajekMatrix(std::optional<std::uint64_t> vertices, std::optional<std::uint64_t> firstMode);

  /// Appends the edges of a line. Answers for how many vertices there are where the line has told
  /// it, and otherwise 0.
  std::uint64_t readLine(LineCursor cursor, const LineReader& lines, PajekEdges& edges);
  /// An error where numbers are missing.
  void requireWhole() const;

 private:
  [[nodiscard]] bool isWhole() const { return rowLength_ == 0 || row_ == rows_; }
  [[nodiscard]] std::string size() const {
    return std::to_string(rows_) + " times " + std::to_string(rowLength_);
  }

  bool needsSize_ = false;
  bool twoModes_ = false;
  std::uint64_t rows_ = 0;
  std::uint64_t rowLength_ = 0;
  std::uint64_t row_ = 0;
  std::uint64_t cell_ = 0;
  /// The last line.
  Place place_;
};

}  // namespace veq::internal
