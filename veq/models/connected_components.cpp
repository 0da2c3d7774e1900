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
#include "veq/base/internal/pace.hpp"
#include "veq/network/internal/component_forest.hpp"
#include "veq/network/internal/components.hpp"
#include "veq/network/internal/copied_properties.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/shared_parts.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::Components;
using internal::CoreAccess;
using internal::HandleRun;
using internal::HeldWeights;
using internal::IndexList;
using internal::NetworkCore;
using internal::NetworkDraft;
using internal::Pace;
using internal::Part;
using internal::Partition;
using internal::RawVector;
using internal::Weights;

namespace {

HandleRun runOf(const NetworkCore& core, std::span<const std::uint64_t> indices) {
  return {&core.handles().record, indices.size(), indices.data()};
}

// What initWithVertices_edges_directed_... says of the part's handles.
void announce(const NetworkCore& core, const Part& part, bool weighted) {
  logDiagnostic(weighted ? "Loading Weighted Network? YES" : "Loading Weighted Network? NO");
  internal::visitInvalid(core.handles().vertices, runOf(core, part.vertices),
                         [](const VEQVertex& v) { static_cast<void>(v.properties()); });
  internal::visitInvalid(core.handles().edges, runOf(core, part.edges),
                         [](const VEQEdge& e) { static_cast<void>(e.fromVertex()); });
}

// What it makes of them.
Shared<VEQNetwork> networkOf(const NetworkCore& core, const Part& part,
                             std::optional<Weights> verticesWeights,
                             std::optional<Weights> edgesWeights) {
  const HandleRun vertices = runOf(core, part.vertices);
  const HandleRun edges = runOf(core, part.edges);
  NetworkDraft draft;
  draft.columnsAreReady = true;
  if (vertices.count != 0) {
    draft.properties.vertices = internal::copiedVertexProperties({&vertices, 1});
  }
  if (edges.count != 0) draft.properties.edges = internal::copiedEdgeProperties({&edges, 1});
  draft.vertexCount = vertices.count;
  draft.from = IndexList(part.from);
  draft.to = IndexList(part.to);
  draft.directed = core.store.directed();
  draft.verticesWeights = std::move(verticesWeights);
  draft.edgesWeights = std::move(edgesWeights);
  return CoreAccess::buildShared(std::move(draft));
}

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
std::optional<Weights> weightsAt(const std::optional<HeldWeights>& weights, const HandleRun& run,
                                 const internal::HandleTable<Kind>& table) {
  if (!weights) return std::nullopt;
  internal::visitInvalid(table, run,
                         [](const Kind& handle) { static_cast<void>(handle.weight()); });
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
    return Partition(internal::weakComponents(store, topology), topology, store.edgeCount());
  });
  const bool hasHandles =
      core_->handles().vertices.hasMadeAny() || core_->handles().edges.hasMadeAny();
  if (hasHandles || diagnosticLogListens()) {
    for (std::uint64_t c = 0; c < parts.count(); ++c) announce(*core_, parts[c], false);
  }
  std::vector<Shared<VEQNetwork>> result(parts.count());
  const Progress nobody;
  Pace unwatched(nobody, 0);
  internal::forEachPart(parts, unwatched, 0, [&](std::uint64_t c, Pace&) {
    result[c] = networkOf(*core_, parts[c], std::nullopt, std::nullopt);
  });
  return result;
}

Shared<VEQNetwork> VEQNetwork::largestConnectedSubNetwork() const {
  const AdjacencyStore& store = core_->store;
  const LargestPart largest = store.visit([&store](const auto& topology) {
    return LargestPart(internal::weakComponents(store, topology), topology, store.edgeCount());
  });
  std::optional<Weights> verticesWeights =
      weightsAt(core_->verticesWeights, runOf(*core_, largest.vertices), core_->handles().vertices);
  std::optional<Weights> edgesWeights =
      weightsAt(core_->edgesWeights, runOf(*core_, largest.edges), core_->handles().edges);
  logWeights(edgesWeights);
  announce(*core_, largest.part(), edgesWeights.has_value());
  Shared<VEQNetwork> network =
      networkOf(*core_, largest.part(), std::move(verticesWeights), std::move(edgesWeights));
  if (diagnosticLogListens()) {
    logDiagnostic("The Network: {\n" + network->description() + "\n");
  }
  return network;
}

}  // namespace veq
