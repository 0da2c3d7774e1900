// Distances from one vertex, and shortest paths.

#include <algorithm>
#include <functional>
#include <limits>
#include <queue>
#include <utility>

#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/core_of.hpp"
#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/questions/distances.hpp"
#include "veq/questions/internal/breadth_first.hpp"
#include "veq/questions/internal/edge_weights.hpp"

namespace veq {

using internal::BreadthFirst;
using internal::coreOf;
using internal::NetworkCore;
using internal::SideLists;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t kNothing = UINT64_MAX;

// How each vertex that was reached was reached.
struct ShortestPathTree {
  explicit ShortestPathTree(std::uint64_t vertices)
      : lengths(vertices, kInfinity), before(vertices, kNothing), by(vertices, kNothing) {}

  std::vector<double> lengths;
  std::vector<std::uint64_t> before;
  std::vector<std::uint64_t> by;  // Which edge.

  [[nodiscard]] Path to(std::uint64_t vertex) const {
    Path path;
    path.length = lengths[vertex];
    path.vertices.push_back(vertex);
    for (std::uint64_t v = vertex; before[v] != kNothing; v = before[v]) {
      path.edges.push_back(by[v]);
      path.vertices.push_back(before[v]);
    }
    std::reverse(path.vertices.begin(), path.vertices.end());
    std::reverse(path.edges.begin(), path.edges.end());
    return path;
  }
};

// Until all or the target is reached. Of paths of equal length the one found first stays, which is
// always the same: lists have an order, and of equally near vertices the lowest comes first.
ShortestPathTree nearestFirst(const NetworkCore& core, std::uint64_t source, Direction direction,
                              std::uint64_t target = kNothing) {
  using Near = std::pair<double, std::uint64_t>;
  ShortestPathTree tree(core.store.vertexCount());
  std::priority_queue<Near, std::vector<Near>, std::greater<>> queue;
  tree.lengths[source] = 0;
  queue.emplace(0.0, source);
  core.store.visit([&](const auto& topology) {
    const SideLists lists(core.store, topology, direction);
    while (!queue.empty()) {
      const double length = queue.top().first;
      const std::uint64_t vertex = queue.top().second;
      queue.pop();
      if (length != tree.lengths[vertex]) continue;  // A shorter way was found since.
      if (vertex == target) return;
      lists.forEachEntry(vertex, [&](std::uint64_t neighbour, std::uint64_t edge) {
        const double longer = length + internal::weightOf(core, edge);
        if (!(longer < tree.lengths[neighbour])) return;
        tree.lengths[neighbour] = longer;
        tree.before[neighbour] = vertex;
        tree.by[neighbour] = edge;
        queue.emplace(longer, neighbour);
      });
    }
  });
  return tree;
}

ShortestPathTree fewestEdgesFirst(const NetworkCore& core, std::uint64_t source,
                                  Direction direction, std::uint64_t target) {
  ShortestPathTree tree(core.store.vertexCount());
  std::vector<std::uint64_t> reached{source};
  tree.lengths[source] = 0;
  core.store.visit([&](const auto& topology) {
    const SideLists lists(core.store, topology, direction);
    for (std::size_t i = 0; i < reached.size() && tree.lengths[target] == kInfinity; ++i) {
      const std::uint64_t vertex = reached[i];
      lists.forEachEntry(vertex, [&](std::uint64_t neighbour, std::uint64_t edge) {
        if (tree.lengths[neighbour] != kInfinity) return;
        tree.lengths[neighbour] = tree.lengths[vertex] + 1;
        tree.before[neighbour] = vertex;
        tree.by[neighbour] = edge;
        reached.push_back(neighbour);
      });
    }
  });
  return tree;
}

}  // namespace

std::vector<std::uint64_t> distancesFrom(const Network& network, std::uint64_t source,
                                         Direction direction) {
  internal::requireVertex(source, network.countVertices());
  const NetworkCore& core = coreOf(network);
  std::vector<std::uint64_t> distances(core.store.vertexCount(), kUnreachable);
  core.store.visit([&](const auto& topology) {
    BreadthFirst search(core.store, topology, direction);
    search.search(source, [&distances](std::uint64_t distance, auto vertices) {
      for (const auto vertex : vertices) distances[vertex] = distance;
    });
  });
  return distances;
}

Result<std::vector<double>> weightedDistancesFrom(const Network& network, std::uint64_t source,
                                                  Direction direction) {
  internal::requireVertex(source, network.countVertices());
  if (auto error = internal::edgeWeightsError(coreOf(network))) return *error;
  return nearestFirst(coreOf(network), source, direction).lengths;
}

Result<std::optional<Path>> shortestPath(const Network& network, std::uint64_t from,
                                         std::uint64_t to, const PathOptions& options) {
  internal::requireVertex(from, network.countVertices());
  internal::requireVertex(to, network.countVertices());
  const NetworkCore& core = coreOf(network);
  if (options.weighted) {
    if (auto error = internal::edgeWeightsError(core)) return *error;
  }
  const ShortestPathTree tree = options.weighted
                                    ? nearestFirst(core, from, options.direction, to)
                                    : fewestEdgesFirst(core, from, options.direction, to);
  if (tree.lengths[to] == kInfinity) return std::optional<Path>();
  return std::optional(tree.to(to));
}

}  // namespace veq
