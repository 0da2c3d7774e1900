#include "veq/natural/internal/making.hpp"

#include <algorithm>
#include <memory>
#include <numeric>

#include "veq/network/internal/copied_properties.hpp"

namespace veq::internal {
namespace {

Shared<PropertyColumn> columnOf(const PropertyColumn& column, std::uint64_t count,
                                const VEQNumberArray* chosen) {
  if (!chosen && column.count() == count) return column.editableCopy();
  Shared<PropertyColumn> whole;
  if (column.count() < count) {
    whole = column.editableCopy();
    whole->appendUnset(count - column.count());
    if (!chosen) return whole;
  }
  const PropertyColumn& all = whole ? *whole : column;
  if (chosen) return all.subarrayWithIndices(*chosen);
  RawVector<std::uint64_t> first(count);
  std::iota(first.begin(), first.end(), std::uint64_t{0});
  return all.subarrayWithIndices(VEQNumberArray(std::move(first)));
}

// Positions in a choice, plus one, and 0 for what was not chosen.
template <class Index>
Block<Index> positionsIn(const std::vector<std::uint64_t>& chosen, std::uint64_t count) {
  Block<Index> positions(count);
  for (std::uint64_t i = 0; i < chosen.size(); ++i) {
    positions[chosen[i]] = static_cast<Index>(i + 1);
  }
  return positions;
}

// The edges both of whose ends were chosen, in their order: by the lists of these vertices where
// they are few, and by a look at all edges otherwise.
template <class Index>
std::vector<std::uint64_t> edgesAmong(const Topology<Index>& topology, std::uint64_t edgeCount,
                                      const std::vector<std::uint64_t>& vertices,
                                      const Block<Index>& positions) {
  constexpr std::uint64_t kFew = 16;
  std::vector<std::uint64_t> edges;
  std::uint64_t entries = 0;
  for (const std::uint64_t v : vertices) entries += topology.out.count(v);
  if (entries > edgeCount / kFew) {
    for (std::uint64_t e = 0; e < edgeCount; ++e) {
      if (positions[topology.from[e]] != 0 && positions[topology.to[e]] != 0) edges.push_back(e);
    }
    return edges;
  }
  for (const std::uint64_t v : vertices) {
    for (const Index edge : topology.out.edges(v)) {
      if (positions[topology.from[edge]] != 0 && positions[topology.to[edge]] != 0) {
        edges.push_back(edge);
      }
    }
  }
  // Undirected edges were met at both ends.
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  return edges;
}

}  // namespace

IndexList listOf(const IndexSpan& indices, Pace* pace) {
  if (const auto inPlace = indices.inPlace()) return IndexList(*inPlace);
  RawVector<std::uint64_t> own(indices.count());
  indices.visit([&own, pace](auto values) {
    forEachTile(own.size(), pace, [&](std::uint64_t begin, std::uint64_t end) {
      for (std::uint64_t i = begin; i < end; ++i) own[i] = static_cast<std::uint64_t>(values[i]);
    });
  });
  return IndexList(std::move(own));
}

RoundedWeights roundedWeights(const NumberSpan& weights, Pace* pace) {
  RoundedWeights result;
  result.values.resize(weights.count());
  weights.visit([&result, pace](auto values) {
    forEachTile(values.size(), pace, [&](std::uint64_t begin, std::uint64_t end) {
      for (std::uint64_t i = begin; i < end; ++i) {
        const auto exact = static_cast<double>(values[i]);
        const auto weight = static_cast<float>(exact);
        result.values[i] = weight;
        // What is not a number is held.
        if (static_cast<double>(weight) == exact || exact != exact) continue;
        if (result.rounded++ == 0) result.firstRounded = i;
      }
    });
  });
  return result;
}

Network networkOf(NetworkDraft draft) { return Network(CoreAccess::buildShared(std::move(draft))); }

std::optional<Weights> weightsOf(const std::optional<HeldWeights>& weights, Chosen chosen) {
  if (!weights) return std::nullopt;
  if (!chosen) return weights->copy();
  Weights result(chosen->size());
  for (std::uint64_t i = 0; i < result.size(); ++i) result[i] = (*weights)[(*chosen)[i]];
  return result;
}

PropertyTable columnsOf(const PropertyTable& columns, std::uint64_t count, Chosen chosen,
                        Pace& pace) {
  PropertyTable result;
  if (columns.empty()) return result;
  std::optional<VEQNumberArray> indices;
  if (chosen) indices.emplace(VEQNumberArray::ofIndices(std::span(*chosen)));
  for (const auto& [key, column] : columns) {
    pace.reach(0);
    result.set(key, columnOf(*column, count, indices ? &*indices : nullptr));
  }
  return result;
}

OwnEnds endsOf(const NetworkCore& core) {
  const std::uint64_t m = core.store.edgeCount();
  OwnEnds ends;
  ends.from.resize(m);
  ends.to.resize(m);
  core.store.visit([&](const auto& topology) {
    std::copy_n(topology.from.data(), m, ends.from.data());
    std::copy_n(topology.to.data(), m, ends.to.data());
  });
  return ends;
}

Network derived(const NetworkCore& core, Derivation derivation, Pace& pace) {
  const std::uint64_t n = core.store.vertexCount();
  const std::uint64_t chosen = derivation.vertices ? derivation.vertices->size() : n;
  const std::uint64_t more = derivation.moreVertices;
  if (chosen + more < chosen) throw std::bad_alloc();
  NetworkDraft draft;
  draft.columnsAreReady = true;
  draft.properties.vertices = columnsOf(core.properties->vertices, n, derivation.vertices, pace);
  for (const auto& entry : draft.properties.vertices) entry.second->appendUnset(more);
  draft.properties.edges =
      columnsOf(core.properties->edges, core.store.edgeCount(), derivation.edges, pace);
  draft.vertexCount = chosen + more;
  draft.from = IndexList(std::move(derivation.ends.from));
  draft.to = IndexList(std::move(derivation.ends.to));
  draft.directed = derivation.directed;
  draft.verticesWeights = weightsOf(core.verticesWeights, derivation.vertices);
  if (draft.verticesWeights) draft.verticesWeights->resize(chosen + more, 1.0f);
  draft.edgesWeights = derivation.edgesWeights ? std::move(derivation.edgesWeights)
                                               : weightsOf(core.edgesWeights, derivation.edges);
  pace.reach(0);
  draft.pace = &pace;
  return networkOf(std::move(draft));
}

DerivedNetwork inducedBy(const NetworkCore& core, std::vector<std::uint64_t> vertices, Pace& pace) {
  Derivation derivation;
  std::vector<std::uint64_t> edges;
  core.store.visit([&](const auto& topology) {
    using Index = std::remove_cvref_t<decltype(topology.from[0])>;
    const auto positions = positionsIn<Index>(vertices, core.store.vertexCount());
    edges = edgesAmong(topology, core.store.edgeCount(), vertices, positions);
    pace.reach(0);
    derivation.ends.from.resize(edges.size());
    derivation.ends.to.resize(edges.size());
    for (std::uint64_t i = 0; i < edges.size(); ++i) {
      derivation.ends.from[i] = positions[topology.from[edges[i]]] - 1u;
      derivation.ends.to[i] = positions[topology.to[edges[i]]] - 1u;
    }
  });
  derivation.directed = core.store.directed();
  derivation.vertices = &vertices;
  derivation.edges = &edges;
  Network network = derived(core, std::move(derivation), pace);
  return {std::move(network), std::move(vertices), std::move(edges)};
}

}  // namespace veq::internal
