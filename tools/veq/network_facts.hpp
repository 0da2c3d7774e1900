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
  /// Nothing where there are no vertices or no such weights. Undirected networks have one degree
  /// and one strength, the out ones.
  std::optional<Spread> outDegree, inDegree, outStrength, inStrength, vertexWeight, edgeWeight;
  std::vector<ColumnFact> vertexColumns;
  std::vector<ColumnFact> edgeColumns;
};

/// O(n + m log d), d being the highest degree.
[[nodiscard]] NetworkFacts factsOf(const Network& network);

}  // namespace veq::tool
