// Weakly connected components: labels in one pass over the lists, members in one pass over vertices
// and edges, and networks straight from these, without a handle.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "veq/base/diagnostic_log.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/network/internal/carried_properties.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::CoreAccess;
using internal::HandleRun;
using internal::IndexList;
using internal::NetworkCore;
using internal::NetworkDraft;
using internal::RawVector;
using internal::Weights;

namespace {

// Components are numbered in the order of their lowest vertex.
template <class Index>
struct Components {
  // One more than the number of each vertex's component.
  Block<Index> labels;
  // How many vertices each has.
  std::vector<std::uint64_t> sizes;

  [[nodiscard]] std::uint64_t of(std::uint64_t vertex) const { return labels[vertex] - 1u; }
};

// Finds one component after the other by breadth-first search, whose queue says which vertices come
// next, so that their lists are fetched ahead.
template <class Index>
class ComponentSearch {
 public:
  ComponentSearch(const internal::Topology<Index>& topology, std::uint64_t vertices)
      : topology_(topology), labels_(vertices) {
    reached_.resize(vertices);
  }

  Components<Index> run() && {
    std::vector<std::uint64_t> sizes;
    for (std::uint64_t start = 0; start < labels_.size(); ++start) {
      if (labels_[start] == 0) sizes.push_back(labelFrom(start, sizes.size() + 1));
    }
    return {std::move(labels_), std::move(sizes)};
  }

 private:
  // Labels the component of a vertex, and answers its size.
  std::uint64_t labelFrom(std::uint64_t start, std::uint64_t label) {
    count_ = 0;
    reach(start, label);
    for (std::uint64_t i = 0; i < count_; ++i) {
      fetchAhead(topology_.out, i);
      for (const Index neighbour : topology_.out.neighbours(reached_[i])) reach(neighbour, label);
      if (!topology_.in) continue;
      fetchAhead(*topology_.in, i);
      for (const Index neighbour : topology_.in->neighbours(reached_[i])) reach(neighbour, label);
    }
    return count_;
  }

  void reach(std::uint64_t vertex, std::uint64_t label) {
    if (labels_[vertex] != 0) return;
    labels_[vertex] = static_cast<Index>(label);
    reached_[count_++] = static_cast<Index>(vertex);
  }

  // The row of a vertex; the list of one that comes sooner, whose row was fetched before; and the
  // labels of the neighbours of one that comes still sooner, whose list was.
  void fetchAhead(const internal::AdjacencyLists<Index>& lists, std::uint64_t i) const {
    constexpr std::uint64_t kAhead = 4;
    if (i + 3 * kAhead >= count_) return;
    lists.fetchRow(reached_[i + 3 * kAhead]);
    lists.fetchNeighbours(reached_[i + 2 * kAhead]);
    for (const Index neighbour : lists.neighbours(reached_[i + kAhead])) {
      __builtin_prefetch(labels_.data() + neighbour);
    }
  }

  const internal::Topology<Index>& topology_;
  Block<Index> labels_;
  Block<Index> reached_;  // The vertices of the component, in the order in which they were reached.
  std::uint64_t count_ = 0;
};

// Vertices and edges of one component, in the order of their indices, which stand in the first two;
// the ends of its edges are positions among its vertices.
struct Part {
  std::span<const std::uint64_t> vertices;
  std::span<const std::uint64_t> edges;
  std::span<const std::uint64_t> from;
  std::span<const std::uint64_t> to;
};

HandleRun runOf(const NetworkCore& core, std::span<const std::uint64_t> indices) {
  return {&core.handles().record, indices.size(), indices.data()};
}

// What initWithVertices_edges_directed_... makes of the part's handles.
Shared<VEQNetwork> networkOf(const NetworkCore& core, const Part& part,
                             std::optional<Weights> verticesWeights,
                             std::optional<Weights> edgesWeights) {
  logDiagnostic(edgesWeights ? "Loading Weighted Network? YES" : "Loading Weighted Network? NO");
  const HandleRun vertices = runOf(core, part.vertices);
  const HandleRun edges = runOf(core, part.edges);
  internal::askDoubtful(core.handles().vertices, vertices,
                        [](const VEQVertex& v) { static_cast<void>(v.properties()); });
  internal::askDoubtful(core.handles().edges, edges,
                        [](const VEQEdge& e) { static_cast<void>(e.fromVertex()); });
  internal::NetworkProperties properties;
  if (vertices.count != 0) properties.vertices = internal::carriedVertexProperties({&vertices, 1});
  if (edges.count != 0) properties.edges = internal::carriedEdgeProperties({&edges, 1});
  NetworkDraft draft;
  draft.vertexCount = vertices.count;
  draft.from = IndexList(part.from);
  draft.to = IndexList(part.to);
  draft.directed = core.store.directed();
  draft.verticesWeights = std::move(verticesWeights);
  draft.edgesWeights = std::move(edgesWeights);
  std::unique_ptr<NetworkCore> made = CoreAccess::buildCore(std::move(draft));
  internal::install(std::move(properties), *made);
  return CoreAccess::shared(std::move(made));
}

// Positions where the items of each group start when items are sorted by group, and the end.
std::vector<std::uint64_t> startsOf(std::vector<std::uint64_t> sizes) {
  std::uint64_t start = 0;
  for (std::uint64_t& size : sizes) start += std::exchange(size, start);
  sizes.push_back(start);
  return sizes;
}

// All vertices and edges, sorted by component.
class Partition {
 public:
  template <class Index>
  Partition(const Components<Index>& components, const internal::Topology<Index>& topology,
            std::uint64_t edgeCount)
      : vertexStarts_(startsOf(components.sizes)),
        edgeStarts_(startsOf(edgeCounts(components, topology, edgeCount))) {
    const std::uint64_t n = vertexStarts_.back();
    vertices_.resize(n);
    Block<Index> positions;
    positions.resize(n);
    std::vector<std::uint64_t> next = vertexStarts_;
    for (std::uint64_t v = 0; v < n; ++v) {
      const std::uint64_t c = components.of(v);
      positions[v] = static_cast<Index>(next[c] - vertexStarts_[c]);
      vertices_[next[c]++] = v;
    }
    for (auto* column : {&edges_, &from_, &to_}) column->resize(edgeCount);
    next = edgeStarts_;
    for (std::uint64_t e = 0; e < edgeCount; ++e) {
      const std::uint64_t place = next[components.of(topology.from[e])]++;
      edges_[place] = e;
      from_[place] = positions[topology.from[e]];
      to_[place] = positions[topology.to[e]];
    }
  }

  [[nodiscard]] std::uint64_t count() const { return vertexStarts_.size() - 1; }
  [[nodiscard]] Part operator[](std::uint64_t c) const {
    return {slice(vertices_, vertexStarts_, c), slice(edges_, edgeStarts_, c),
            slice(from_, edgeStarts_, c), slice(to_, edgeStarts_, c)};
  }

 private:
  using Indices = RawVector<std::uint64_t>;

  template <class Index>
  static std::vector<std::uint64_t> edgeCounts(const Components<Index>& components,
                                               const internal::Topology<Index>& topology,
                                               std::uint64_t edgeCount) {
    std::vector<std::uint64_t> counts(components.sizes.size());
    for (std::uint64_t e = 0; e < edgeCount; ++e) ++counts[components.of(topology.from[e])];
    return counts;
  }
  static std::span<const std::uint64_t> slice(const Indices& items,
                                              const std::vector<std::uint64_t>& starts,
                                              std::uint64_t c) {
    return {items.data() + starts[c], starts[c + 1] - starts[c]};
  }

  std::vector<std::uint64_t> vertexStarts_;
  std::vector<std::uint64_t> edgeStarts_;
  Indices vertices_;
  Indices edges_;
  Indices from_;
  Indices to_;
};

// One component by itself.
struct LargestPart {
  RawVector<std::uint64_t> vertices;
  RawVector<std::uint64_t> edges;
  RawVector<std::uint64_t> from;
  RawVector<std::uint64_t> to;

  template <class Index>
  LargestPart(const Components<Index>& components, const internal::Topology<Index>& topology,
              std::uint64_t edgeCount) {
    const auto& sizes = components.sizes;
    if (sizes.empty()) return;
    // Of several largest ones the first.
    const auto largest =
        static_cast<std::uint64_t>(std::max_element(sizes.begin(), sizes.end()) - sizes.begin());
    const std::uint64_t n = components.labels.size();
    Block<Index> positions;
    positions.resize(n);
    vertices.reserve(sizes[largest]);
    for (std::uint64_t v = 0; v < n; ++v) {
      if (components.of(v) != largest) continue;
      positions[v] = static_cast<Index>(vertices.size());
      vertices.push_back(v);
    }
    for (std::uint64_t e = 0; e < edgeCount; ++e) {
      if (components.of(topology.from[e]) != largest) continue;
      edges.push_back(e);
      from.push_back(positions[topology.from[e]]);
      to.push_back(positions[topology.to[e]]);
    }
  }

  [[nodiscard]] Part part() const { return {vertices, edges, from, to}; }
};

// The weights of some vertices or edges, asked of their handles.
template <class Kind>
std::optional<Weights> weightsAt(const std::optional<Weights>& weights, const HandleRun& run,
                                 const internal::HandleTable<Kind>& table) {
  if (!weights) return std::nullopt;
  internal::askDoubtful(table, run, [](const Kind& handle) { static_cast<void>(handle.weight()); });
  Weights result(run.count);
  for (std::uint64_t i = 0; i < run.count; ++i) result[i] = (*weights)[run[i]];
  return result;
}

// The texts speak of vertices but show the weights of edges.
void logWeights(const std::optional<Weights>& edgesWeights) {
  if (!diagnosticLogListens()) return;
  logDiagnostic("verticesWeights count:" + std::to_string(edgesWeights ? edgesWeights->size() : 0));
  logDiagnostic("verticesWeights:{\n" +
                (edgesWeights ? VEQNumberArray(*edgesWeights).description() : "(null)") + "\n");
}

}  // namespace

std::vector<Shared<VEQNetwork>> VEQNetwork::connectedSubNetworksArray() const {
  const AdjacencyStore& store = core_->store;
  const Partition parts = store.visit([&store](const auto& topology) {
    return Partition(ComponentSearch(topology, store.vertexCount()).run(), topology,
                     store.edgeCount());
  });
  std::vector<Shared<VEQNetwork>> result;
  result.reserve(parts.count());
  for (std::uint64_t c = 0; c < parts.count(); ++c) {
    result.push_back(networkOf(*core_, parts[c], std::nullopt, std::nullopt));
  }
  return result;
}

Shared<VEQNetwork> VEQNetwork::largestConnectedSubNetwork() const {
  const AdjacencyStore& store = core_->store;
  const LargestPart largest = store.visit([&store](const auto& topology) {
    return LargestPart(ComponentSearch(topology, store.vertexCount()).run(), topology,
                       store.edgeCount());
  });
  std::optional<Weights> verticesWeights =
      weightsAt(core_->verticesWeights, runOf(*core_, largest.vertices), core_->handles().vertices);
  std::optional<Weights> edgesWeights =
      weightsAt(core_->edgesWeights, runOf(*core_, largest.edges), core_->handles().edges);
  logWeights(edgesWeights);
  Shared<VEQNetwork> network =
      networkOf(*core_, largest.part(), std::move(verticesWeights), std::move(edgesWeights));
  if (diagnosticLogListens()) {
    logDiagnostic("The Network: {\n" + network->description() + "\n");
  }
  return network;
}

}  // namespace veq
