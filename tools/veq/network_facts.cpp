#include "network_facts.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veq::tool {
namespace {

using Vertices = std::vector<std::uint64_t>;

Vertices sortedNeighbours(const Shared<VEQNumberArray>& indices) {
  const auto values = std::as_const(*indices).values<std::uint64_t>();
  Vertices neighbours(values.begin(), values.end());
  std::sort(neighbours.begin(), neighbours.end());
  return neighbours;
}

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

void countTopology(NetworkFacts& facts, const Network& network) {
  for (std::uint64_t i = 0; i < facts.vertices; ++i) {
    countList(facts, i,
              sortedNeighbours(network.published()->indicesOfVerticesLinkedFromVertexAtIndex(i)));
  }
  facts.components = components(network).sizes.size();
  if (facts.vertices > 1) facts.density = density(network);
  if (facts.directed && facts.edges > facts.selfLoops) facts.reciprocity = reciprocity(network);
}

std::optional<double> unlessNaN(double value) {
  return std::isnan(value) ? std::nullopt : std::optional(value);
}

void countTriangles(NetworkFacts& facts, const Network& network, const Effort& effort) {
  facts.withoutTriangles = facts.edges > effort.triangleEdges;
  if (facts.withoutTriangles || facts.edges == 0) return;
  facts.averageClustering = averageClustering(network);
  facts.transitivity = transitivity(network);
}

void measureDistances(NetworkFacts& facts, const Network& network, const Effort& effort) {
  DistanceOptions options;
  options.mostVisits = effort.distanceVisits;
  const DistanceHistogram histogram = distanceHistogram(network, options).value();
  if (histogram.pairs.size() < 2) return;
  const Diameter extent = diameter(network, options).value();
  facts.distances = {histogram.meanDistance, histogram.sources, histogram.sampled, extent.least,
                     extent.most};
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

NetworkFacts factsOf(const Network& network, const Effort& effort) {
  const VEQNetwork& published = *network.published();
  NetworkFacts facts;
  facts.directed = network.isDirected();
  facts.vertices = network.countVertices();
  facts.edges = network.countEdges();
  countTopology(facts, network);
  measure(facts, published);
  if (facts.directed) {
    facts.strongComponents = components(network, Connection::kStrong).sizes.size();
  }
  facts.assortativity = unlessNaN(degreeAssortativity(network));
  countTriangles(facts, network, effort);
  measureDistances(facts, network, effort);
  facts.vertexColumns = columnsOf(*published.propertiesOfVertices());
  facts.edgeColumns = columnsOf(*published.propertiesOfEdges());
  return facts;
}

}  // namespace veq::tool
