#include "veq/formats/internal/pajek_vertices.hpp"

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
    context.note(firstCode + kNoNumber, NoteKind::kRepaired, lines.place(), [&] {
      return "a vertex without a number, " + shown(cursor.rest()) + ", follows the one before it";
    });
  }
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

void PajekVertices::readLabel(LineCursor& cursor, std::uint64_t vertex, const LineReader& lines,
                              ReadContext& context, unsigned firstCode) {
  if (!cursor.match('"')) {
    names_.push_back({vertex, cursor.takeWord(), false});
    return;
  }
  bool closed = false;
  names_.push_back({vertex, cursor.takeQuoted(closed), true});
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

void PajekVertices::finish(NetworkDraft& draft, ReadContext& context, unsigned firstCode) {
  // A number in the text is all that may stand for the elements of these columns.
  const std::uint64_t bytes =
      (names_.empty() ? 0 : sizeof(PropertyValue)) + (positions_.empty() ? 0 : 3 * sizeof(double));
  if (bytes != 0) requireMemory(draft.vertexCount, bytes);
  if (!names_.empty()) {
    std::vector<PropertyValue> names(draft.vertexCount);
    for (const Name& name : names_) {
      names[name.vertex] = name.quoted ? unescaped(name.text) : std::string(name.text);
    }
    draft.properties.vertices.set("Name", std::make_shared<GenericArray>(std::move(names)));
  }
  if (positions_.empty()) return;
  if (positions_.size() < draft.vertexCount) {
    const std::uint64_t without = draft.vertexCount - positions_.size();
    context.note(firstCode + kSomePositions, NoteKind::kTaken, noPosition_.value_or(Place{}), [&] {
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
