#pragma once

#include <string>

#include "veq/network/network.hpp"

namespace veq::test {

inline std::string dump(const PropertyValue& value) {
  std::string result;
  if (const Number* number = value.number()) {
    return result.append("n").append(std::to_string(static_cast<int>(number->type()))) + ":" +
           number->text();
  }
  if (value.string()) return result.append("s:") + value.text();
  if (const VEQVector2d* v = value.vector2d()) {
    return result.append("2d").append(std::to_string(v->precision())) + ":" + value.text();
  }
  if (const VEQVector3d* v = value.vector3d()) {
    return result.append("3d").append(std::to_string(v->precision())) + ":" + value.text();
  }
  return value.isNull() ? "null" : "object";
}

inline std::string dump(const PropertyTable& table) {
  std::string result;
  for (const auto& [key, column] : table) {
    result += key + " (" + std::to_string(static_cast<int>(column->kind())) + "):";
    for (std::uint64_t i = 0; i < column->count(); ++i) {
      result += ' ';
      result += dump(column->objectAtIndex(i));
    }
    result += "\n";
  }
  return result;
}

/// Everything that can be asked of a network, as text to compare: two networks with the same text
/// are equal.
inline std::string dump(const VEQNetwork* network) {
  if (!network) return "no network";
  std::string result = std::to_string(network->countVertices()) + " vertices " +
                       (network->isDirected() ? "directed\n" : "undirected\n");
  for (std::uint64_t e = 0; e < network->countEdges(); ++e) {
    const auto edge = network->edgeAtIndex(e);
    result += std::to_string(edge->fromVertex()->identification()) + "-" +
              std::to_string(edge->toVertex()->identification()) + " ";
  }
  if (network->isVertexWeighted()) {
    result += "\nvertices " + network->verticesWeightValues()->description();
  }
  if (network->isEdgeWeighted()) {
    result += "\nedges " + network->edgesWeightValues()->description();
  }
  return result + "\nof vertices:\n" + dump(*network->propertiesOfVertices()) + "of edges:\n" +
         dump(*network->propertiesOfEdges());
}

}  // namespace veq::test
