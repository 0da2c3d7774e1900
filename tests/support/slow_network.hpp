#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace veq::test {

/// A network as the plainest code would have it: an edge list that every question reads from end to
/// end. The real one is compared with it.
struct SlowNetwork {
  struct Entry {
    std::uint64_t neighbour;
    std::uint64_t edge;
  };
  using List = std::vector<Entry>;
  using Edge = std::pair<std::uint64_t, std::uint64_t>;

  std::uint64_t vertexCount = 0;
  bool directed = false;
  std::vector<Edge> edges;
  std::optional<std::vector<float>> verticesWeights;
  std::optional<std::vector<float>> edgesWeights;

  List outList(std::uint64_t v) const {
    List list;
    for (std::uint64_t e = 0; e < edges.size(); ++e) {
      const auto [a, b] = edges[e];
      if (a == v) list.push_back({b, e});
      if (!directed && b == v) list.push_back({a, e});
    }
    return list;
  }

  List inList(std::uint64_t v) const {
    if (!directed) return outList(v);
    List list;
    for (std::uint64_t e = 0; e < edges.size(); ++e) {
      if (edges[e].second == v) list.push_back({edges[e].first, e});
    }
    return list;
  }

  double sum(const List& list) const {
    if (!edgesWeights) return static_cast<double>(list.size());
    double total = 0.0;
    for (const Entry& entry : list) total += static_cast<double>((*edgesWeights)[entry.edge]);
    return total;
  }

  // For one vertex it is the flag of vertex weights that decides.
  double strengthOf(std::uint64_t v) const {
    return verticesWeights ? sum(outList(v)) : static_cast<double>(outList(v).size());
  }
  double inStrengthOf(std::uint64_t v) const {
    return verticesWeights ? sum(inList(v)) : static_cast<double>(outList(v).size());
  }

  // For all of them it is the flag of edge weights, except for what comes in undirected.
  double strength(std::uint64_t v) const { return sum(outList(v)); }
  double inStrength(std::uint64_t v) const {
    if (!directed && !verticesWeights) return static_cast<double>(outList(v).size());
    return sum(inList(v));
  }

  std::vector<float> matrix() const {
    std::vector<float> cells(vertexCount * vertexCount, 0.0f);
    for (std::uint64_t e = 0; e < edges.size(); ++e) {
      const auto [a, b] = edges[e];
      const float weight = edgesWeights ? (*edgesWeights)[e] : 1.0f;
      cells[a * vertexCount + b] += weight;
      if (!directed) cells[b * vertexCount + a] += weight;
    }
    return cells;
  }
};

}  // namespace veq::test
