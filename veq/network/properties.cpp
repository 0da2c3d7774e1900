// Named properties of vertices and edges.

#include <utility>
#include <vector>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/property_columns.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

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

}  // namespace

void VEQNetwork::setPropertyValue_forKey_atVertexIndex(const PropertyValue& value,
                                                       std::string_view key, std::uint64_t index) {
  internal::setVertexValue(*core_, value, key, index);
}

void VEQNetwork::setPropertyValue_forKey_atEdgeIndex(const PropertyValue& value,
                                                     std::string_view key, std::uint64_t index) {
  internal::setEdgeValue(*core_, value, key, index);
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
