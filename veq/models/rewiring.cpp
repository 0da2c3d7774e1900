// A try takes two edges e = (a, b) and f = (c, d), by the numbers of two draws of 62 bits: e is
// floor(m u / 2^62), and f is floor((m - 1) u' / 2^62), one more from e on. Of an undirected
// network a third number of 2^61 or more turns f round. They become (a, d) and (c, b).

#include "veq/models/internal/rewiring.hpp"

#include <algorithm>
#include <utility>

#include "veq/models/internal/edge_set.hpp"

namespace veq {
namespace {

constexpr std::uint64_t kTriesPerLook = 16384;
constexpr std::uint64_t kMostVertices = UINT32_MAX;

PropertyTable copied(const PropertyTable& columns) {
  PropertyTable copies;
  for (const auto& [key, column] : columns) copies.set(key, column->editableCopy());
  return copies;
}

}  // namespace

namespace internal {

void rewire(GrowingEnds& ends, bool directed, std::uint64_t tries, DrawBlocks& draws, Pace& pace) {
  const std::uint64_t m = ends.count();
  if (m < 2) return;
  EdgeSet edges(directed, m);
  for (std::uint64_t e = 0; e < m; ++e) edges.insert(ends.from[e], ends.to[e]);
  for (std::uint64_t tried = 0; tried < tries; ++tried) {
    if (tried % kTriesPerLook == 0) pace.reach(tried);
    const std::uint64_t e = draws.below(m);
    std::uint64_t f = draws.below(m - 1);
    if (f >= e) ++f;
    const bool turned = !directed && draws.below(2) == 1;
    const std::uint64_t a = ends.from[e];
    const std::uint64_t b = ends.to[e];
    std::uint64_t c = ends.from[f];
    std::uint64_t d = ends.to[f];
    if (turned) std::swap(c, d);
    if (a == d || c == b || edges.contains(a, d) || edges.contains(c, b)) continue;
    if (!directed && a == b && c == d) continue;  // two loops, which would become parallel
    edges.erase(a, b);
    edges.erase(c, d);
    edges.insert(a, d);
    edges.insert(c, b);
    ends.to[e] = d;
    ends.from[f] = c;
    ends.to[f] = b;
  }
}

}  // namespace internal

Result<Network> rewiredNetwork(const Network& network, std::uint64_t tries,
                               const ModelOptions& options) {
  const internal::NetworkCore& core = internal::CoreAccess::of(*network.published());
  const std::uint64_t n = core.store.vertexCount();
  const std::uint64_t m = core.store.edgeCount();
  if (n > kMostVertices) return internal::countError(n, kMostVertices).value();
  return internal::generated(options, [&](internal::DrawBlocks& draws) {
    internal::Pace pace(options.progress, tries);
    internal::GrowingEnds ends;
    ends.from.resize(m);
    ends.to.resize(m);
    core.store.visit([&](const auto& topology) {
      std::copy_n(topology.from.data(), m, ends.from.data());
      std::copy_n(topology.to.data(), m, ends.to.data());
    });
    internal::rewire(ends, core.store.directed(), tries, draws, pace);
    internal::NetworkDraft draft = internal::draftOf(n, std::move(ends), core.store.directed());
    if (core.verticesWeights) draft.verticesWeights = core.verticesWeights->copy();
    if (core.edgesWeights) draft.edgesWeights = core.edgesWeights->copy();
    draft.properties.vertices = copied(core.properties->vertices);
    draft.properties.edges = copied(core.properties->edges);
    return draft;
  });
}

}  // namespace veq
