#include "veq/formats/internal/pajek_matrix.hpp"

#include "veq/formats/internal/read_context.hpp"

namespace veq::internal {
namespace {

std::uint64_t countWords(LineCursor cursor) {
  std::uint64_t words = 0;
  for (cursor.skipBlanks(); !cursor.atEnd(); cursor.skipBlanks()) {
    cursor.takeWord();
    ++words;
  }
  return words;
}

}  // namespace

PajekMatrix::PajekMatrix(std::optional<std::uint64_t> vertices,
                         std::optional<std::uint64_t> firstMode)
    : needsSize_(!vertices), twoModes_(firstMode.has_value()) {
  if (!vertices) return;
  rows_ = firstMode.value_or(*vertices);
  rowLength_ = firstMode ? *vertices - *firstMode : *vertices;
}

std::uint64_t PajekMatrix::readLine(LineCursor cursor, const LineReader& lines, PajekEdges& edges) {
  const bool tellsSize = needsSize_;
  if (tellsSize) rows_ = rowLength_ = countWords(cursor);
  needsSize_ = false;
  place_ = lines.place();
  for (; !cursor.atEnd(); cursor.skipBlanks()) {
    const char* const at = cursor.at();
    const std::optional<double> value = cursor.readNumber();
    if (!value) failAt(lines.placeOf(at), "no number in a matrix: " + shown(cursor.rest()));
    if (isWhole()) failAt(lines.placeOf(at), "a matrix of more than " + size() + " numbers");
    if (*value != 0.0) {
      const std::uint64_t target = cell_ + (twoModes_ ? rows_ : 0);
      if (edges.append(row_, target, *value, static_cast<std::size_t>(cursor.at() - at))) {
        edges.setWeightPlace(lines.placeOf(at));
      }
    }
    if (++cell_ < rowLength_) continue;
    cell_ = 0;
    ++row_;
  }
  return tellsSize ? rows_ : 0;
}

void PajekMatrix::requireWhole() const {
  if (isWhole()) return;
  failAt(place_, "a matrix of " + size() + " numbers ends in row " + std::to_string(row_ + 1));
}

}  // namespace veq::internal
