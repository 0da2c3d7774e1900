#include "network_facts.hpp"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace veq::tool {
namespace {

using Vertices = std::vector<std::uint64_t>;

Vertices sortedNeighbours(const Shared<VEQNumberArray>& indices) {
  const auto values = std::as_const(*indices).values<std::uint64_t>();
  Vertices neighbours(values.begin(), values.end());
  std::sort(neighbours.begin(), neighbours.end());
  return neighbours;
}

/// Sets of vertices that grow together.
class Sets {
 public:
  explicit Sets(std::uint64_t count) : parents_(count) {
    std::iota(parents_.begin(), parents_.end(), std::uint64_t{0});
  }

  std::uint64_t rootOf(std::uint64_t vertex) {
    while (parents_[vertex] != vertex) {
      parents_[vertex] = parents_[parents_[vertex]];
      vertex = parents_[vertex];
    }
    return vertex;
  }

  /// Whether they were apart.
  bool join(std::uint64_t a, std::uint64_t b) {
    a = rootOf(a);
    b = rootOf(b);
    // The lower index above, so that the same file always does the same work.
    parents_[std::max(a, b)] = std::min(a, b);
    return a != b;
  }

 private:
  Vertices parents_;
};

/// Counts what the out-list of one vertex tells.
void countList(NetworkFacts& facts, std::uint64_t vertex, const Vertices& neighbours) {
  for (auto at = neighbours.begin(); at != neighbours.end();) {
    const auto end = std::upper_bound(at, neighbours.end(), *at);
    auto edges = static_cast<std::uint64_t>(end - at);
    if (*at == vertex) {
      if (!facts.directed) edges /= 2;  // a self-loop stands twice in its vertex's list
      facts.selfLoops += edges;
    }
    // Other undirected edges are counted at their lower end.
    if (facts.directed || *at >= vertex) facts.parallelEdges += edges - 1;
    at = end;
  }
}

/// How many of a vertex's arcs to others have a reverse.
std::uint64_t returned(std::uint64_t vertex, const Vertices& out, const Vertices& in) {
  return static_cast<std::uint64_t>(std::count_if(out.begin(), out.end(), [&](std::uint64_t to) {
    return to != vertex && std::binary_search(in.begin(), in.end(), to);
  }));
}

void countTopology(NetworkFacts& facts, const VEQNetwork& network) {
  Sets sets(facts.vertices);
  facts.components = facts.vertices;
  std::uint64_t withReverse = 0;
  for (std::uint64_t i = 0; i < facts.vertices; ++i) {
    const Vertices out = sortedNeighbours(network.indicesOfVerticesLinkedFromVertexAtIndex(i));
    countList(facts, i, out);
    for (const std::uint64_t neighbour : out) facts.components -= sets.join(i, neighbour);
    if (!facts.directed) continue;
    withReverse +=
        returned(i, out, sortedNeighbours(network.indicesOfVerticesLinkedToVertexAtIndex(i)));
  }
  const std::uint64_t arcs = facts.edges - facts.selfLoops;
  if (facts.directed && arcs > 0) {
    facts.reciprocity = static_cast<double>(withReverse) / static_cast<double>(arcs);
  }
  const auto n = static_cast<double>(facts.vertices);
  const double pairs = facts.directed ? n * (n - 1) : n * (n - 1) / 2;
  if (pairs > 0) facts.density = static_cast<double>(facts.edges) / pairs;
}

std::optional<Spread> spreadOf(const Shared<VEQNumberArray>& numbers) {
  if (numbers->count() == 0) return std::nullopt;
  return std::as_const(*numbers).visit([](auto values) {
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    double sum = 0;
    for (const auto value : values) sum += static_cast<double>(value);
    return std::optional(Spread{static_cast<double>(*least),
                                sum / static_cast<double>(values.size()),
                                static_cast<double>(*most)});
  });
}

void measure(NetworkFacts& facts, const VEQNetwork& network) {
  facts.outDegree = spreadOf(network.calcDegrees());
  if (facts.directed) facts.inDegree = spreadOf(network.calcInDegrees());
  if (network.isVertexWeighted()) facts.vertexWeight = spreadOf(network.verticesWeightValues());
  if (!network.isEdgeWeighted()) return;
  facts.edgeWeight = spreadOf(network.edgesWeightValues());
  facts.outStrength = spreadOf(network.calcStrengths());
  if (facts.directed) facts.inStrength = spreadOf(network.calcInStrengths());
}

std::string kindOf(const PropertyColumn& column) {
  switch (column.kind()) {
    case PropertyColumn::Kind::kVector2d:
      return "2D vectors";
    case PropertyColumn::Kind::kVector3d:
      return "3D vectors";
    case PropertyColumn::Kind::kNumber: {
      const ElementType type = static_cast<const VEQNumberArray&>(column).elementType();
      return type == ElementType::kInteger || type == ElementType::kUnsignedInteger
                 ? "whole numbers"
                 : "numbers";
    }
    case PropertyColumn::Kind::kGeneric:
      break;
  }
  for (std::uint64_t i = 0; i < column.count(); ++i) {
    const PropertyValue value = column.objectAtIndex(i);
    if (!value.string() && !value.isNull()) return "mixed";
  }
  return "text";
}

std::string exampleOf(const PropertyColumn& column) {
  for (std::uint64_t i = 0; i < column.count(); ++i) {
    const PropertyValue value = column.objectAtIndex(i);
    if (!value.isNull()) return value.text();
  }
  return {};
}

std::vector<ColumnFact> columnsOf(const PropertyTable& table) {
  std::vector<ColumnFact> facts;
  for (const auto& [key, column] : table) {
    facts.push_back({key, kindOf(*column), exampleOf(*column)});
  }
  return facts;
}

}  // namespace

NetworkFacts factsOf(const VEQNetwork& network) {
  NetworkFacts facts;
  facts.directed = network.isDirected();
  facts.vertices = network.countVertices();
  facts.edges = network.countEdges();
  countTopology(facts, network);
  measure(facts, network);
  facts.vertexColumns = columnsOf(*network.propertiesOfVertices());
  facts.edgeColumns = columnsOf(*network.propertiesOfEdges());
  return facts;
}

}  // namespace veq::tool
