/// \file
/// What one first wants to know about a network, counted.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

struct Spread {
  double least;
  double mean;
  double most;
};

/// A column of properties.
struct ColumnFact {
  std::string key;
  std::string kind;     // "text", "whole numbers", "numbers", "2D vectors", "3D vectors", "mixed"
  std::string example;  // the first value that is set; empty where none is
};

/// How far vertices are from those that they reach.
struct DistanceFacts {
  double mean;
  /// The searches that the mean comes from, and whether these began at all vertices.
  std::uint64_t sources;
  bool sampled;
  /// The diameter lies between these.
  std::uint64_t leastDiameter;
  std::uint64_t mostDiameter;
};

struct NetworkFacts {
  bool directed = false;
  std::uint64_t vertices = 0;
  std::uint64_t edges = 0;
  std::uint64_t components = 0;
  std::uint64_t selfLoops = 0;
  /// Edges that link what an edge before them links already, in the same direction.
  std::uint64_t parallelEdges = 0;
  /// Edges over the pairs that they could link; parallel edges and self-loops count as well.
  /// Nothing where there are no pairs.
  std::optional<double> density;
  /// Of arcs that are no self-loops, the share whose reverse exists. Nothing where there are none.
  std::optional<double> reciprocity;
  /// Of directed networks.
  std::optional<std::uint64_t> strongComponents;
  /// Nothing where they were left out, or where there is nothing to count.
  std::optional<double> averageClustering, transitivity, assortativity;
  /// Nothing where no vertex reaches another.
  std::optional<DistanceFacts> distances;
  /// Whether triangles were left out.
  bool withoutTriangles = false;
  /// Nothing where there are no vertices or no such weights. Undirected networks have one degree
  /// and one strength, the out ones.
  std::optional<Spread> outDegree, inDegree, outStrength, inStrength, vertexWeight, edgeWeight;
  std::vector<ColumnFact> vertexColumns;
  std::vector<ColumnFact> edgeColumns;
};

/// How much may be spent on what takes longer than to count the edges.
struct Effort {
  /// Triangles are counted up to so many edges.
  std::uint64_t triangleEdges;
  /// Distances are sampled beyond so many visits of vertices and list entries.
  std::uint64_t distanceVisits;
};

/// A second or so on each.
inline constexpr Effort kAffordable{2'000'000, 100'000'000};
/// Whatever it takes.
inline constexpr Effort kEverything{UINT64_MAX, UINT64_MAX};

/// O(n + m log d), d being the highest degree, and the effort.
[[nodiscard]] NetworkFacts factsOf(const Network& network, const Effort& effort);

}  // namespace veq::tool
