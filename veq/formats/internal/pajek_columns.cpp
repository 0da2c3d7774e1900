#include "veq/formats/internal/pajek_columns.hpp"

#include <string>
#include <utility>

namespace veq::internal {

void PajekColumns::begin(std::string_view word, std::string_view name, Place place) {
  current_.emplace(Column{TextColumn(std::string(name.empty() ? word : name)), 0, place});
}

bool PajekColumns::end() {
  if (!current_ || current_->rows == 0) return false;
  columns_.push_back(std::move(*current_));
  current_.reset();
  return true;
}

void PajekColumns::finish(NetworkDraft& draft, ReadContext& context) {
  for (const Column& column : columns_) {
    const std::string key = "\"" + column.cells.key() + "\"";
    if (column.rows != draft.vertexCount) {
      context.noteEach(NoteKind::kLeftOut, column.place,
                       key + " has " + std::to_string(column.rows) + " values for " +
                           std::to_string(draft.vertexCount) + " vertices and is left out");
      continue;
    }
    context.noteEach(NoteKind::kTaken, column.place,
                     key + " is taken for a property of the vertices");
    addColumn(draft.properties.vertices, column.cells.key(), column.cells.finish(column.rows),
              column.place, context);
  }
}

}  // namespace veq::internal
