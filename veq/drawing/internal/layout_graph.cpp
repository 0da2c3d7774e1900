#include "veq/drawing/internal/layout_graph.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <utility>

#include "veq/base/internal/number_text.hpp"

namespace veq::internal {
namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

struct Entry {
  std::uint32_t neighbour;
  double pull;
};

Error weightError(std::uint64_t edge, float weight) {
  std::string text = "edge " + std::to_string(edge) + ": weight ";
  appendShortest(text, weight);
  return {ErrorKind::kArgument, std::move(text)};
}

// Rows of all ends, in which neighbours may stand several times.
struct Rows {
  std::vector<std::uint64_t> starts;
  std::vector<Entry> entries;
};

template <class PullOf>
Rows rowsOf(const TopologyView& view, PullOf pullOf, Pace* pace) {
  const std::uint64_t n = view.countVertices();
  const std::uint64_t m = view.countEdges();
  Rows rows;
  rows.starts.assign(n + 1, 0);
  view.visit([&](const auto& topology) {
    const auto forEachEdge = [&](auto f) {
      SparsePace asked(pace);
      for (std::uint64_t e = 0; e < m; ++e) {
        asked.ask(1);
        if (topology.from[e] != topology.to[e] && pullOf(e) > 0.0) {
          f(static_cast<std::uint32_t>(topology.from[e]),
            static_cast<std::uint32_t>(topology.to[e]), pullOf(e));
        }
      }
    };
    forEachEdge([&](std::uint32_t a, std::uint32_t b, double) {
      ++rows.starts[a + std::uint64_t{1}];
      ++rows.starts[b + std::uint64_t{1}];
    });
    std::partial_sum(rows.starts.begin(), rows.starts.end(), rows.starts.begin());
    rows.entries.resize(rows.starts[n]);
    std::vector<std::uint64_t> next(rows.starts.begin(), rows.starts.end() - 1);
    forEachEdge([&](std::uint32_t a, std::uint32_t b, double pull) {
      rows.entries[next[a]++] = {b, pull};
      rows.entries[next[b]++] = {a, pull};
    });
  });
  return rows;
}

// With `merge` the pulls of parallel edges are added, in edge order; without it one counts.
LayoutGraph simpleGraph(Rows rows, bool merge, Pace* pace) {
  const std::uint64_t n = rows.starts.size() - 1;
  SparsePace asked(pace);
  LayoutGraph graph;
  graph.rowStarts.reserve(n + 1);
  graph.masses.assign(n, 1.0);
  for (std::uint64_t v = 0; v < n; ++v) {
    const std::span<Entry> row =
        std::span(rows.entries).subspan(rows.starts[v], rows.starts[v + 1] - rows.starts[v]);
    std::stable_sort(row.begin(), row.end(),
                     [](const Entry& a, const Entry& b) { return a.neighbour < b.neighbour; });
    std::uint32_t last = kNone;
    for (const Entry& entry : row) {
      if (entry.neighbour != last) {
        graph.neighbours.push_back(last = entry.neighbour);
        graph.pulls.push_back(entry.pull);
      } else if (merge) {
        graph.pulls.back() += entry.pull;
      }
    }
    graph.rowStarts.push_back(graph.neighbours.size());
    asked.ask(1 + row.size());
  }
  return graph;
}

void scaleToMean(std::vector<double>& pulls) {
  double sum = 0.0;
  for (const double pull : pulls) sum += pull;
  if (pulls.empty()) return;
  const double mean = sum / static_cast<double>(pulls.size());
  for (double& pull : pulls) pull /= mean;
}

// All vertices that can be reached, in the order in which they are found.
void findPart(const LayoutGraph& graph, std::uint32_t first, std::vector<std::uint32_t>& local,
              std::vector<std::uint32_t>& vertices, SparsePace& asked) {
  local[first] = 0;
  vertices = {first};
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    for (const std::uint32_t neighbour : graph.neighboursOf(vertices[i])) {
      if (local[neighbour] != kNone) continue;
      local[neighbour] = static_cast<std::uint32_t>(vertices.size());
      vertices.push_back(neighbour);
    }
    asked.ask(1 + graph.neighboursOf(vertices[i]).size());
  }
}

LayoutGraph subgraph(const LayoutGraph& graph, const std::vector<std::uint32_t>& vertices,
                     const std::vector<std::uint32_t>& local, SparsePace& asked) {
  LayoutGraph part;
  part.rowStarts.reserve(vertices.size() + 1);
  for (const std::uint32_t vertex : vertices) {
    const auto pulls = graph.pullsOf(vertex);
    for (const std::uint32_t neighbour : graph.neighboursOf(vertex)) {
      part.neighbours.push_back(local[neighbour]);
    }
    part.pulls.insert(part.pulls.end(), pulls.begin(), pulls.end());
    part.rowStarts.push_back(part.neighbours.size());
    part.masses.push_back(graph.masses[vertex]);
    asked.ask(1 + pulls.size());
  }
  return part;
}

// Whom each vertex is matched with, or itself.
class Matching {
 public:
  Matching(const LayoutGraph& graph, SparsePace& asked)
      : graph_(graph), partner_(graph.count(), kNone), waiting_(graph.count(), kNone) {
    for (const std::uint32_t vertex : byDegree()) {
      matchWithNeighbour(vertex);
      asked.ask(1 + graph.neighboursOf(vertex).size());
    }
    for (std::uint32_t v = 0; v < graph.count(); ++v) matchWithSibling(v);
  }

  [[nodiscard]] std::uint32_t partner(std::uint32_t vertex) const {
    return partner_[vertex] == kNone ? vertex : partner_[vertex];
  }

 private:
  // Those of few neighbours first, which have the least choice.
  [[nodiscard]] std::vector<std::uint32_t> byDegree() const {
    std::vector<std::uint32_t> order(graph_.count());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [this](std::uint32_t a, std::uint32_t b) {
      return graph_.neighboursOf(a).size() < graph_.neighboursOf(b).size();
    });
    return order;
  }

  void match(std::uint32_t a, std::uint32_t b) {
    partner_[a] = b;
    partner_[b] = a;
  }

  // The one that is tied to it most for its mass, so that masses stay alike.
  void matchWithNeighbour(std::uint32_t vertex) {
    if (partner_[vertex] != kNone) return;
    const auto neighbours = graph_.neighboursOf(vertex);
    const auto pulls = graph_.pullsOf(vertex);
    std::uint32_t best = kNone;
    double most = 0.0;
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      const double tie = pulls[i] / graph_.masses[neighbours[i]];
      if (partner_[neighbours[i]] != kNone || !(tie > most)) continue;
      most = tie;
      best = neighbours[i];
    }
    if (best != kNone) match(vertex, best);
  }

  void matchWithSibling(std::uint32_t vertex) {
    if (partner_[vertex] != kNone || graph_.neighboursOf(vertex).empty()) return;
    std::uint32_t& other = waiting_[graph_.neighboursOf(vertex)[0]];
    if (other == kNone) {
      other = vertex;
    } else {
      match(vertex, std::exchange(other, kNone));
    }
  }

  const LayoutGraph& graph_;
  std::vector<std::uint32_t> partner_;
  std::vector<std::uint32_t> waiting_;
};

}  // namespace

Result<LayoutGraph> layoutGraph(const Network& network, bool useWeights, Pace* pace) {
  if (network.countVertices() >= kNone) {
    return Error(ErrorKind::kUnsupported, "a layout of 2^32 - 1 vertices or more");
  }
  const TopologyView view = network.topology();
  if (!useWeights || !network.isEdgeWeighted()) {
    return simpleGraph(rowsOf(
                           view, [](std::uint64_t) { return 1.0; }, pace),
                       false, pace);
  }
  const std::vector<float> weights = network.edgeWeights();
  for (std::uint64_t e = 0; e < weights.size(); ++e) {
    if (!(weights[e] >= 0.0F && std::isfinite(weights[e]))) return weightError(e, weights[e]);
  }
  const auto pullOf = [&](std::uint64_t e) { return static_cast<double>(weights[e]); };
  LayoutGraph graph = simpleGraph(rowsOf(view, pullOf, pace), true, pace);
  scaleToMean(graph.pulls);
  return graph;
}

LayoutParts partsOf(const LayoutGraph& graph, Pace* pace) {
  SparsePace asked(pace);
  LayoutParts all;
  std::vector<std::uint32_t> local(graph.count(), kNone);
  for (std::uint32_t v = 0; v < graph.count(); ++v) {
    if (local[v] != kNone) continue;
    if (graph.neighboursOf(v).empty()) {
      all.single.push_back(v);
      continue;
    }
    LayoutPart part;
    findPart(graph, v, local, part.vertices, asked);
    part.graph = subgraph(graph, part.vertices, local, asked);
    all.parts.push_back(std::move(part));
  }
  return all;
}

CoarserGraph coarser(const LayoutGraph& graph, Pace* pace) {
  SparsePace asked(pace);
  const Matching matching(graph, asked);
  CoarserGraph made;
  made.coarse.assign(graph.count(), kNone);
  std::vector<std::uint32_t> firsts;
  for (std::uint32_t v = 0; v < graph.count(); ++v) {
    if (made.coarse[v] != kNone) continue;
    made.coarse[v] = made.coarse[matching.partner(v)] = static_cast<std::uint32_t>(firsts.size());
    firsts.push_back(v);
  }
  // For each vertex of the coarser graph its place in the row that is being made.
  std::vector<std::uint64_t> place(firsts.size(), std::numeric_limits<std::uint64_t>::max());
  LayoutGraph& rough = made.graph;
  for (std::uint32_t c = 0; c < firsts.size(); ++c) {
    const std::uint64_t begin = rough.neighbours.size();
    rough.masses.push_back(0.0);
    const auto add = [&](std::uint32_t child) {
      rough.masses[c] += graph.masses[child];
      const auto neighbours = graph.neighboursOf(child);
      const auto pulls = graph.pullsOf(child);
      for (std::size_t i = 0; i < neighbours.size(); ++i) {
        const std::uint32_t to = made.coarse[neighbours[i]];
        if (to == c) continue;
        if (place[to] >= begin && place[to] < rough.neighbours.size()) {
          rough.pulls[place[to]] += pulls[i];
        } else {
          place[to] = rough.neighbours.size();
          rough.neighbours.push_back(to);
          rough.pulls.push_back(pulls[i]);
        }
      }
    };
    const std::uint32_t first = firsts[c];
    const std::uint32_t second = matching.partner(first);
    add(first);
    if (second != first) add(second);
    rough.rowStarts.push_back(rough.neighbours.size());
    asked.ask(1 + rough.neighbours.size() - begin);
  }
  return made;
}

}  // namespace veq::internal
