#include "veq/readers/internal/graphml_columns.hpp"

#include <array>
#include <memory>
#include <optional>

#include "veq/numeric/vector_arrays.hpp"
#include "veq/readers/internal/xml_pieces.hpp"

namespace veq::readers {
namespace {

Shared<PropertyColumn> vectors(const internal::TextColumn& cells, std::size_t dimensions,
                               std::uint64_t rows) {
  std::array<std::vector<double>, 3> axes;
  for (std::uint64_t row = 0; row < rows; ++row) {
    const std::string_view cell = cells.at(row);
    internal::LineCursor cursor(cell.data() ? cell : std::string_view(""));
    for (std::vector<double>& axis : axes) {
      cursor.skipBlanks();
      axis.push_back(cursor.readNumber().value_or(0.0));
    }
  }
  if (dimensions == 3) {
    return VEQVector3dArray::initWithXd_Yd_Zd_count(axes[0].data(), axes[1].data(), axes[2].data(),
                                                    rows);
  }
  Shared<VEQVector2dArray> plane = VEQVector2dArray::initWithSize_precision(rows, kDoublePrecision);
  for (std::uint64_t row = 0; row < rows; ++row) {
    plane->setVector_atIndex({axes[0][row], axes[1][row]}, row);
  }
  return plane;
}

}  // namespace

void GraphMlKeys::declare(const pugi::xml_node& node, Place place) {
  GraphMlKey key;
  key.place = place;
  const std::string_view of = node.attribute("for").as_string("all");
  key.ofVertices = of == "node" || of == "all";
  key.ofEdges = of == "edge" || of == "all";
  const std::string_view id = node.attribute("id").as_string();
  const std::string_view name = node.attribute("attr.name").as_string();
  key.name = std::string(name.empty() ? id : name);
  const std::string_view type = node.attribute("attr.type").as_string("string");
  key.isText = type == "string" || type == "boolean";
  const std::string_view kind = node.attribute("veq:kind").as_string();
  key.dimensions = kind == "vector2d" ? 2 : kind == "vector3d" ? 3 : 0;
  key.isWeight = kind == "weight" || (of == "edge" && name == "weight" && !key.isText);
  // There is one weight; a second key of it is a column like others.
  for (const GraphMlKey* const other : weights_) {
    if (other->ofVertices == key.ofVertices || other->ofEdges == key.ofEdges) key.isWeight = false;
  }
  for (const pugi::xml_node& child : node.children()) {
    if (localName(child) == "default") key.byDefault = child.text().get();
  }
  keys_.push_back(std::move(key));
  if (keys_.back().isWeight) weights_.push_back(&keys_.back());
  byId_.insert_or_assign(ids_.kept(id), &keys_.back());
}

const GraphMlKey* GraphMlKeys::find(std::string_view id) const {
  const auto at = byId_.find(id);
  return at == byId_.end() ? nullptr : at->second;
}

GraphMlColumns::Column& GraphMlColumns::columnOf(const GraphMlKey& key) {
  if (next_ >= columns_.size()) next_ = 0;
  if (columns_.empty() || columns_[next_].key != &key) {
    const auto [at, isNew] = places_.try_emplace(&key, columns_.size());
    if (isNew) columns_.emplace_back(key);
    next_ = at->second;
  }
  return columns_[next_++];
}

void GraphMlColumns::fillWeights(std::uint64_t rows) {
  const std::string_view byDefault = internal::withoutBlanks(weightKey_->byDefault);
  const std::optional<double> weight = internal::wholeNumber(byDefault);
  while (weights_.size() < rows) {
    static_cast<void>(weights_.append(weight.value_or(1.0), byDefault.size()));
    if (weight) continue;
    context_.note(missingCode_, NoteKind::kRepaired, missing_,
                  [] { return std::string("no weight is taken for 1"); });
  }
}

void GraphMlColumns::finishWeights(std::uint64_t rows, internal::NetworkDraft& draft) {
  fillWeights(rows);
  if (ofVertices_) {
    draft.verticesWeights = weights_.take();
  } else {
    weights_.finish(draft, context_, roundedCode_);
  }
}

void GraphMlColumns::finish(const GraphMlKeys& keys, std::uint64_t rows,
                            internal::NetworkDraft& draft) {
  for (const GraphMlKey& key : keys.all()) {
    if (key.byDefault.empty() || !(ofVertices_ ? key.ofVertices : key.ofEdges)) continue;
    if (key.isWeight) {
      weightKey_ = &key;
      continue;
    }
    context_.addUnsetCells(rows, [&key] { return key.place; });
    internal::TextColumn& cells = columnOf(key).cells;
    for (std::uint64_t row = 0; row < rows; ++row) {
      if (!cells.at(row).data()) cells.set(row, key.byDefault);
    }
  }
  PropertyTable& table = ofVertices_ ? draft.properties.vertices : draft.properties.edges;
  for (const auto& column : columns_) {
    const GraphMlKey* const key = column.key;
    const internal::TextColumn& cells = column.cells;
    context_.addUnsetCells(cells.unsetBehind(rows), [key] { return key->place; });
    internal::addColumn(table, key->name,
                        key->dimensions != 0 ? vectors(cells, key->dimensions, rows)
                        : key->isText        ? cells.finishAsText(rows)
                                             : cells.finish(rows),
                        key->place, context_);
  }
  if (weightKey_) finishWeights(rows, draft);
}

}  // namespace veq::readers
