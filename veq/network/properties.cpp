// Named properties of vertices and edges.

#include <iterator>
#include <utility>
#include <vector>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::NetworkCore;

Shared<PropertyColumn> internal::newVertexColumn(const PropertyValue& first, std::uint64_t count) {
  if (const VEQVector2d* vector = first.vector2d()) {
    return VEQVector2dArray::initWithSize_precision(count, vector->precision());
  }
  if (const VEQVector3d* vector = first.vector3d()) {
    return VEQVector3dArray::initWithSize_precision(count, vector->precision());
  }
  if (first.number()) return VEQNumberArray::initWithDoubleScalar_count(0.0, count);
  return GenericArray::nullFilled(count);
}

namespace {

// Stores a value under a key, in the column that is there or in one that `newColumn()` makes. A
// value that is refused leaves no new column behind.
template <class NewColumn>
void setValue(PropertyTable& table, const PropertyValue& value, std::string_view key,
              std::uint64_t index, NewColumn newColumn) {
  if (const auto* column = table.find(key)) {
    (*column)->replaceObjectAtIndex_withObject(index, value);
    return;
  }
  Shared<PropertyColumn> column = newColumn();
  column->replaceObjectAtIndex_withObject(index, value);
  table.set(key, std::move(column));
}

// What a value replaced.
struct Replaced {
  PropertyColumn* column;
  PropertyValue value;
};

void undo(std::vector<Replaced>& done, std::uint64_t index, PropertyTable& table,
          std::size_t keys) noexcept {
  for (; !done.empty(); done.pop_back()) {
    done.back().column->replaceObjectAtIndex_withObject(index, std::move(done.back().value));
  }
  // New keys stand behind the old ones.
  while (table.size() > keys) table.remove(std::prev(table.end())->first);
}

template <class SetValue>
void setValues(PropertyTable& table, const PropertyMap& values, std::uint64_t index, SetValue set) {
  const std::size_t keys = table.size();
  std::vector<Replaced> done;
  done.reserve(values.size());
  try {
    for (const auto& [key, value] : values) {
      if (const auto* column = table.find(key)) {
        done.push_back({column->get(), (*column)->objectAtIndex(index)});
      }
      set(value, key);
    }
  } catch (...) {
    undo(done, index, table, keys);
    throw;
  }
}

PropertyMap valuesAt(const PropertyTable& table, std::uint64_t index, std::uint64_t count) {
  PropertyMap result;
  for (const auto& [key, column] : table) {
    // A column that is shorter than the network reads as not set beyond its end.
    result.set(
        key, index < count ? internal::valueOrNull(*column, index) : column->objectAtIndex(index));
  }
  return result;
}

PropertyTable columnsAt(const PropertyTable& table, const VEQNumberArray& indices) {
  PropertyTable result;
  for (const auto& [key, column] : table) result.set(key, column->subarrayWithIndices(indices));
  return result;
}

Shared<PropertyColumn> columnAt(const PropertyTable& table, const VEQNumberArray& indices,
                                std::string_view key) {
  const auto* column = table.find(key);
  return column ? (*column)->subarrayWithIndices(indices) : nullptr;
}

Shared<PropertyColumn> namesAt(const PropertyTable& table, const VEQNumberArray& indices) {
  Shared<PropertyColumn> names = columnAt(table, indices, "Name");
  return names ? names : indices.stringArray();
}

void setVertexValue(NetworkCore& core, const PropertyValue& value, std::string_view key,
                    std::uint64_t index) {
  setValue(core.properties->vertices, value, key, index,
           [&] { return internal::newVertexColumn(value, core.store.vertexCount()); });
}

void setEdgeValue(NetworkCore& core, const PropertyValue& value, std::string_view key,
                  std::uint64_t index) {
  setValue(core.properties->edges, value, key, index, [&]() -> Shared<PropertyColumn> {
    return GenericArray::nullFilled(core.store.edgeCount());
  });
}

}  // namespace

void internal::setVertexValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index) {
  setValues(core.properties->vertices, values, index,
            [&](const PropertyValue& value, std::string_view key) {
              setVertexValue(core, value, key, index);
            });
}

void internal::setEdgeValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index) {
  setValues(core.properties->edges, values, index,
            [&](const PropertyValue& value, std::string_view key) {
              setEdgeValue(core, value, key, index);
            });
}

void VEQNetwork::setPropertyValue_forKey_atVertexIndex(const PropertyValue& value,
                                                       std::string_view key, std::uint64_t index) {
  setVertexValue(*core_, value, key, index);
}

void VEQNetwork::setPropertyValue_forKey_atEdgeIndex(const PropertyValue& value,
                                                     std::string_view key, std::uint64_t index) {
  setEdgeValue(*core_, value, key, index);
}

void VEQNetwork::setPropertiesOfVertices_forKey(Shared<PropertyColumn> column,
                                                std::string_view key) {
  internal::installColumn(core_->properties->vertices, key, std::move(column));
}

void VEQNetwork::setPropertiesOfEdges_forKey(Shared<PropertyColumn> column, std::string_view key) {
  internal::installColumn(core_->properties->edges, key, std::move(column));
}

PropertyMap VEQNetwork::propertiesOfVertexAtIndex(std::uint64_t index) const {
  return valuesAt(core_->properties->vertices, index, countVertices());
}

PropertyMap VEQNetwork::propertiesOfEdgeAtIndex(std::uint64_t index) const {
  return valuesAt(core_->properties->edges, index, countEdges());
}

PropertyTable VEQNetwork::propertiesOfVerticesAtIndexArray(const VEQNumberArray& indices) const {
  return columnsAt(core_->properties->vertices, indices);
}

PropertyTable VEQNetwork::propertiesOfInEdgesAtIndexArray(const VEQNumberArray& indices) const {
  return columnsAt(core_->properties->edges, indices);
}

Shared<PropertyColumn> VEQNetwork::propertiesOfVerticesAtIndexArray_forKey(
    const VEQNumberArray& indices, std::string_view key) const {
  return columnAt(core_->properties->vertices, indices, key);
}

Shared<PropertyColumn> VEQNetwork::propertiesOfEdgesAtIndexArray_forKey(
    const VEQNumberArray& indices, std::string_view key) const {
  return columnAt(core_->properties->edges, indices, key);
}

Shared<PropertyColumn> VEQNetwork::namesOfVerticesAtIndexArray(
    const VEQNumberArray& indices) const {
  return namesAt(core_->properties->vertices, indices);
}

Shared<PropertyColumn> VEQNetwork::namesOfEdgesAtIndexArray(const VEQNumberArray& indices) const {
  return namesAt(core_->properties->edges, indices);
}

Shared<VEQNumberArray> VEQNetwork::areEditableVerticesAtIndexArray(const VEQNumberArray&) const {
  return VEQNumberArray::numberArrayWithNumber_count(core_->editable, countVertices());
}

Shared<VEQNumberArray> VEQNetwork::areEditableEdgesAtIndexArray(const VEQNumberArray&) const {
  return VEQNumberArray::numberArrayWithNumber_count(core_->editable, countEdges());
}

Shared<const PropertyTable> VEQNetwork::propertiesOfVertices() const {
  return {core_->properties, &core_->properties->vertices};
}

Shared<const PropertyTable> VEQNetwork::propertiesOfEdges() const {
  return {core_->properties, &core_->properties->edges};
}

std::vector<std::string> VEQNetwork::keysForPropertiesOfVertices() const {
  return core_->properties->vertices.keys();
}

std::vector<std::string> VEQNetwork::keysForPropertiesOfEdges() const {
  return core_->properties->edges.keys();
}

}  // namespace veq
