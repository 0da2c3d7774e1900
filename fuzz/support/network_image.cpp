#include "fuzz/support/network_image.hpp"

#include <optional>

namespace veq::fuzz {
namespace {

using Weights = std::optional<std::vector<float>>;

Weights weightsOf(bool weighted, const VEQNumberArray& values) {
  if (!weighted) return std::nullopt;
  std::vector<float> weights(values.count());
  values.getFloatValues(weights.data());
  return weights;
}

TableImage imageOf(const PropertyTable& table) {
  TableImage image;
  for (const auto& [key, column] : table) {
    image[key] = std::make_shared<ColumnImage>(fuzz::imageOf(*column));
  }
  return image;
}

bool areSame(double a, double b) { return a == b || (a != a && b != b); }

bool isSameNumber(const Number& a, const Number& b) {
  if (a.type() != b.type()) return false;
  const bool isFloating = a.type() == ElementType::kDouble || a.type() == ElementType::kFloat;
  return isFloating ? areSame(a.as<double>(), b.as<double>()) : a == b;
}

std::string difference(const char* what, const Weights& expected, const Weights& actual) {
  if (expected.has_value() != actual.has_value()) return std::string(what) + ": weighted or not";
  if (!expected) return "";
  if (expected->size() != actual->size()) return std::string(what) + ": number of weights";
  for (std::size_t i = 0; i < expected->size(); ++i) {
    const double a = static_cast<double>((*expected)[i]);
    const double b = static_cast<double>((*actual)[i]);
    if (!areSame(a, b)) {
      return std::string(what) + ": weight " + std::to_string(i) + " is " + std::to_string(b) +
             ", not " + std::to_string(a);
    }
  }
  return "";
}

std::string difference(const ColumnImage& expected, const ColumnImage& actual) {
  if (expected.kind != actual.kind) return "another kind";
  if (expected.values.size() != actual.values.size()) {
    return std::to_string(actual.values.size()) + " values, not " +
           std::to_string(expected.values.size());
  }
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    if (isSame(expected.values[i], actual.values[i])) continue;
    return "value " + std::to_string(i) + " is '" + actual.values[i].text() + "', not '" +
           expected.values[i].text() + "'";
  }
  return "";
}

std::string difference(const char* what, const TableImage& expected, const TableImage& actual) {
  for (const auto& entry : actual) {
    if (!expected.count(entry.first)) return std::string(what) + ": unexpected key " + entry.first;
  }
  for (const auto& [key, column] : expected) {
    const auto other = actual.find(key);
    if (other == actual.end()) return std::string(what) + ": missing key " + key;
    const std::string inColumn = difference(*column, *other->second);
    if (!inColumn.empty()) return std::string(what) + ": " + key + ": " + inColumn;
  }
  return "";
}

}  // namespace

ColumnImage imageOf(const PropertyColumn& column) {
  ColumnImage image{column.kind(), {}};
  for (std::uint64_t i = 0; i < column.count(); ++i) {
    image.values.push_back(column.objectAtIndex(i));
  }
  return image;
}

NetworkImage imageOf(const VEQNetwork& network) {
  NetworkImage image;
  image.topology.vertexCount = network.countVertices();
  image.topology.directed = network.isDirected();
  for (const VEQEdge& edge : network.edges()) {
    image.topology.edges.emplace_back(edge.fromVertex()->identification(),
                                      edge.toVertex()->identification());
  }
  image.topology.verticesWeights =
      weightsOf(network.isVertexWeighted(), *network.verticesWeightValues());
  image.topology.edgesWeights = weightsOf(network.isEdgeWeighted(), *network.edgesWeightValues());
  image.ofVertices = imageOf(*network.propertiesOfVertices());
  image.ofEdges = imageOf(*network.propertiesOfEdges());
  return image;
}

bool isSame(const PropertyValue& a, const PropertyValue& b) {
  if (a.number() && b.number()) return isSameNumber(*a.number(), *b.number());
  if (const auto* v = a.vector2d(), *w = b.vector2d(); v && w) {
    return areSame(v->x(), w->x()) && areSame(v->y(), w->y());
  }
  if (const auto* v = a.vector3d(), *w = b.vector3d(); v && w) {
    return areSame(v->x(), w->x()) && areSame(v->y(), w->y()) && areSame(v->z(), w->z());
  }
  return a == b;
}

std::string difference(const NetworkImage& expected, const NetworkImage& actual) {
  const test::SlowNetwork& a = expected.topology;
  const test::SlowNetwork& b = actual.topology;
  if (a.vertexCount != b.vertexCount) {
    return std::to_string(b.vertexCount) + " vertices, not " + std::to_string(a.vertexCount);
  }
  if (a.directed != b.directed) return "directed or not";
  if (a.edges != b.edges) return "edges";
  for (const std::string& found : {difference("vertices", a.verticesWeights, b.verticesWeights),
                                   difference("edges", a.edgesWeights, b.edgesWeights),
                                   difference("vertices", expected.ofVertices, actual.ofVertices),
                                   difference("edges", expected.ofEdges, actual.ofEdges)}) {
    if (!found.empty()) return found;
  }
  return "";
}

}  // namespace veq::fuzz
