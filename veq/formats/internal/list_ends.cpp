#include "veq/formats/internal/list_ends.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>

#include "veq/formats/internal/integer_ids.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/list_rows.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {
namespace {

/// The first place for whose end `isIt` holds.
template <class IsIt>
Place placeWhere(const ListText& list, IsIt isIt) {
  const ListShape& shape = list.shape;
  ListRows rows(list.text, shape.separator);
  while (rows.next()) {
    if (rows.number() == shape.headerLine) continue;
    for (const std::size_t column : {shape.source, shape.target}) {
      if (column < rows.fields().size() && isIt(rows.fields()[column], column)) {
        return rows.placeOf(rows.fields()[column]);
      }
    }
  }
  return {};
}

Place placeOfId(const ListText& list, std::int64_t id) {
  return placeWhere(list, [id](std::string_view field, std::size_t) {
    return LineCursor(field).readLongInteger() == id;
  });
}

/// The first comment that has the number, as one that says how many vertices there are.
Place placeOfComment(const ListText& list, std::int64_t number) {
  LineReader lines(list.text);
  while (lines.next()) {
    const std::string_view line = lines.line();
    if (isListComment(line) && line.find(std::to_string(number)) != line.npos) {
      return lines.place();
    }
  }
  return {};
}

void setIds(NetworkDraft& draft, RawVector<std::int64_t> ids) {
  draft.vertexCount = ids.size();
  draft.properties.vertices.set("Id", std::make_shared<VEQNumberArray>(std::move(ids)));
}

/// Ends that are to be indices as they stand.
void takeAsIndices(NetworkDraft& draft, RawVector<std::uint64_t> from, RawVector<std::uint64_t> to,
                   const ListText& list, ReadContext& context) {
  std::int64_t most = -1;
  for (const RawVector<std::uint64_t>* ends : {&from, &to}) {
    for (const std::uint64_t unsignedEnd : *ends) {
      const auto end = static_cast<std::int64_t>(unsignedEnd);
      if (end < 0) failAt(placeOfId(list, end), "the id " + std::to_string(end) + " is no index");
      most = std::max(most, end);
    }
  }
  if (static_cast<std::uint64_t>(most) + 1 > context.mostVertices()) {
    context.requireVertices(static_cast<std::uint64_t>(most) + 1, placeOfId(list, most));
  }
  draft.vertexCount = static_cast<std::uint64_t>(most) + 1;
  draft.from = std::move(from);
  draft.to = std::move(to);
}

/// Two kinds of vertices, each numbered from 1 on its own.
void takeTwoModes(NetworkDraft& draft, RawVector<std::uint64_t> from, RawVector<std::uint64_t> to,
                  const ListText& list, ReadContext& context) {
  const ListShape& shape = list.shape;
  std::uint64_t sizes[2] = {shape.firstMode, shape.secondMode};
  const RawVector<std::uint64_t>* const sides[2] = {&from, &to};
  for (int side = 0; side < 2; ++side) {
    for (const std::uint64_t unsignedEnd : *sides[side]) {
      const auto end = static_cast<std::int64_t>(unsignedEnd);
      if (end < 1) failAt(placeOfId(list, end), "the id " + std::to_string(end) + " is below 1");
      sizes[side] = std::max(sizes[side], static_cast<std::uint64_t>(end));
    }
  }
  // Each is below 2^63, so that their sum is none that has gone round.
  if (const std::uint64_t all = sizes[0] + sizes[1]; all > context.mostVertices()) {
    const std::size_t column = sizes[0] > sizes[1] ? shape.source : shape.target;
    const auto most = static_cast<std::int64_t>(std::max(sizes[0], sizes[1]));
    const Place place = placeWhere(list, [&](std::string_view field, std::size_t at) {
      return at == column && LineCursor(field).readLongInteger() == most;
    });
    context.requireVertices(all, place.line > 0 ? place : placeOfComment(list, most));
  }
  draft.vertexCount = sizes[0] + sizes[1];
  for (std::uint64_t& index : from) --index;
  for (std::uint64_t& index : to) index += sizes[0] - 1;
  draft.from = std::move(from);
  draft.to = std::move(to);
  draft.properties.vertices.set("Mode", modeColumn(sizes[0], draft.vertexCount));
}

}  // namespace

void ListText::requireVertices(std::uint64_t vertices, const ReadContext& context) const {
  if (vertices <= context.mostVertices()) return;
  std::unordered_set<std::string> seen;
  context.requireVertices(vertices, placeWhere(*this, [&](std::string_view field, std::size_t) {
                            if (!field.empty()) seen.emplace(field);
                            return seen.size() > context.mostVertices();
                          }));
}

void takeIntegerEnds(NetworkDraft& draft, RawVector<std::uint64_t> from,
                     RawVector<std::uint64_t> to, std::uint64_t edges, const ListText& list,
                     ReadContext& context) {
  if (context.options.idsAreIndices || list.shape.twoModes) {
    from.resize(edges);
    to.resize(edges);
    const auto take = list.shape.twoModes ? takeTwoModes : takeAsIndices;
    return take(draft, std::move(from), std::move(to), list, context);
  }
  setIds(draft, numberVertices(from, to, context.team));
  list.requireVertices(draft.vertexCount, context);
  from.resize(edges);
  to.resize(edges);
  draft.from = std::move(from);
  draft.to = std::move(to);
}

}  // namespace veq::internal
