#include "veq/formats/internal/pajek_vertices.hpp"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/text_escapes.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {

std::int64_t PajekVertices::readLine(const LineReader& lines, ReadContext& context,
                                     unsigned firstCode) {
  LineCursor cursor(lines.line());
  cursor.skipBlanks();
  const std::optional<std::int64_t> number = cursor.readInteger();
  if (!number) {
    requireNoHugeNumber(cursor, lines);
    context.note(firstCode + kNoNumber, NoteKind::kRepaired, lines.place(), [&] {
      return "a vertex without a number, " + shown(cursor.rest()) + ", follows the one before it";
    });
  }
  ++linesRead_;
  last_ = number.value_or(last_ + 1);
  if (last_ < 1) return last_;
  const auto vertex = static_cast<std::uint64_t>(last_ - 1);
  cursor.skipBlanks();
  if (!cursor.atEnd()) readLabel(cursor, vertex, lines, context, firstCode);
  readPosition(cursor, vertex, lines.place());
  if (!cursor.atEnd()) {
    context.note(firstCode + kFurtherWords, NoteKind::kLeftOut, lines.placeOf(cursor.at()), [&] {
      return "how a vertex is drawn, or when it is there, is left out: " + shown(cursor.rest());
    });
  }
  return last_;
}

namespace {

PropertyValue nameOf(std::string_view text, bool quoted) {
  return quoted ? unescaped(text) : std::string(text);
}

}  // namespace

void PajekVertices::reserve(std::uint64_t vertices, std::uint64_t length) {
  // A line of a vertex with a name has 4 bytes at least, and 16 usually.
  if (names_.empty()) names_.reserve(std::min(vertices, length / 16));
}

void PajekVertices::setName(std::uint64_t vertex, std::string_view text, bool quoted,
                            std::uint64_t line) {
  const bool isNext = vertex >= names_.size() && vertex < linesRead_;
  if (!isNext || !furtherNames_.empty()) {
    return furtherNames_.push_back({vertex, text, line, quoted});
  }
  names_.resize(vertex);
  names_.push_back(nameOf(text, quoted));
}

void PajekVertices::requireNoHugeNumber(LineCursor cursor, const LineReader& lines) {
  if (!cursor.isAtHugeInteger()) return;
  const Place place = lines.placeOf(cursor.at());
  failAt(place, "vertex " + std::string(cursor.takeWord()) + ", and no network has so many");
}

void PajekVertices::readLabel(LineCursor& cursor, std::uint64_t vertex, const LineReader& lines,
                              ReadContext& context, unsigned firstCode) {
  if (!cursor.match('"')) {
    setName(vertex, cursor.takeWord(), false, lines.number());
    return;
  }
  bool closed = false;
  setName(vertex, cursor.takeQuoted(closed), true, lines.number());
  if (closed) return;
  context.note(firstCode + kOpenQuote, NoteKind::kRepaired, lines.place(),
               [] { return std::string("a quote that is not closed ends with its line"); });
}

void PajekVertices::readPosition(LineCursor& cursor, std::uint64_t vertex, Place place) {
  std::array<double, 3> at{};
  bool any = false;
  cursor.skipBlanks();
  for (double& component : at) {
    const std::optional<double> value = cursor.readNumber();
    if (!value) break;
    component = *value;
    any = true;
    cursor.skipBlanks();
  }
  if (any) {
    positions_.push_back({vertex, at});
  } else if (!noPosition_) {
    noPosition_ = place;
  }
}

void PajekVertices::finish(NetworkDraft& draft, ReadContext& context, unsigned firstCode,
                           Place header) {
  // A number in the text is all that may stand for the elements of these columns.
  const bool hasNames = !names_.empty() || !furtherNames_.empty();
  const std::uint64_t bytes =
      (hasNames ? sizeof(PropertyValue) : 0) + (positions_.empty() ? 0 : 3 * sizeof(double));
  if (bytes != 0) requireMemory(draft.vertexCount, bytes);
  if (hasNames) {
    names_.resize(draft.vertexCount);
    for (const Name& name : furtherNames_) {
      PropertyValue& value = names_[name.vertex];
      if (!value.isNull()) {
        context.note(firstCode + kTwice, NoteKind::kRepaired, {name.line, 1}, [&] {
          return "a second label of vertex " + std::to_string(name.vertex + 1) +
                 " takes the place of the first";
        });
      }
      value = nameOf(name.text, name.quoted);
    }
    draft.properties.vertices.set("Name", std::make_shared<GenericArray>(std::move(names_)));
  }
  if (positions_.empty()) return;
  if (positions_.size() < draft.vertexCount) {
    const std::uint64_t without = draft.vertexCount - positions_.size();
    context.note(firstCode + kSomePositions, NoteKind::kTaken, noPosition_.value_or(header), [&] {
      return std::to_string(without) +
             (without == 1 ? " vertex without a position is taken to be at the origin"
                           : " vertices without a position are taken to be at the origin");
    });
  }
  Shared<VEQVector3dArray> column =
      VEQVector3dArray::initWithSize_precision(draft.vertexCount, kDoublePrecision);
  const std::array<double*, 3> axes = {column->xd(), column->yd(), column->zd()};
  for (const Position& position : positions_) {
    for (std::size_t axis = 0; axis < axes.size(); ++axis) {
      axes[axis][position.vertex] = position.at[axis];
    }
  }
  draft.properties.vertices.set("Position", std::move(column));
}

}  // namespace veq::internal
