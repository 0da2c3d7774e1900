// Adding edges, and new networks with other ends or directions.

#include <algorithm>
#include <utility>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/network.hpp"
#include "veq/network/internal/inserting.hpp"

namespace veq {

using internal::argumentError;
using internal::CoreAccess;
using internal::Derivation;
using internal::NetworkCore;
using internal::OwnEnds;
using internal::Pace;
using internal::Weights;

namespace {

// The weights of all edges once those of the new ones stand behind 1.0 for the old ones; none where
// the network is weighted already, or the call has no weights.
std::optional<Weights> firstWeights(const NetworkCore& core,
                                    const internal::RoundedWeights& added) {
  if (core.edgesWeights) return std::nullopt;
  const std::uint64_t m = core.store.edgeCount();
  Weights weights(m + added.values.size(), 1.0f);
  std::copy(added.values.begin(), added.values.end(),
            weights.begin() + static_cast<std::ptrdiff_t>(m));
  return weights;
}

// The network with other ends, in which everything else is as it was.
template <class ChangeEnds>
Result<Network> withEnds(const Network& network, const ChangeOptions& options, bool directed,
                         ChangeEnds changeEnds) {
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<Network> {
    Pace pace(options.progress, internal::kBuildingPasses * network.countEdges());
    pace.reach(0);
    const NetworkCore& core = CoreAccess::of(*network.published());
    Derivation derivation;
    derivation.ends = internal::endsOf(core);
    derivation.directed = directed;
    changeEnds(derivation);
    return internal::derived(core, std::move(derivation), pace);
  });
}

// Each edge one way, and the next one back.
OwnEnds bothWays(const OwnEnds& ends) {
  const std::uint64_t m = ends.from.size();
  OwnEnds both;
  both.from.resize(2 * m);
  both.to.resize(2 * m);
  for (std::uint64_t e = 0; e < m; ++e) {
    both.from[2 * e] = both.to[2 * e + 1] = ends.from[e];
    both.to[2 * e] = both.from[2 * e + 1] = ends.to[e];
  }
  return both;
}

}  // namespace

Result<AddedEdges> Network::addEdges(const IndexSpan& sources, const IndexSpan& targets,
                                     const NumberSpan& weights, const Progress& progress) {
  return internal::untilStopped([&]() -> Result<AddedEdges> {
    NetworkCore& core = CoreAccess::of(*published_);
    Pace pace(progress, internal::kBuildingPasses * sources.count());
    pace.reach(0);
    if (auto error = internal::endsError(sources, targets, countVertices(), &pace)) return *error;
    if (auto error = internal::weightsError(weights, sources.count(), internal::Item::kEdge)) {
      return *error;
    }
    if (weights.given() && !core.editable) {
      return argumentError("the weights of this network are fixed");
    }
    AddedEdges added{countEdges(), sources.count(), 0};
    const internal::RoundedWeights floats = internal::roundedWeights(weights, &pace);
    added.roundedWeights = floats.rounded;
    std::optional<Weights> all;
    if (weights.given()) all = firstWeights(core, floats);
    const internal::IndexList from = internal::listOf(sources, &pace);
    const internal::IndexList to = internal::listOf(targets, &pace);
    internal::insertEdges(core, {from.all(), to.all()}, pace.isWatched() ? &pace : nullptr);
    // From here on nothing fails.
    if (all) {
      core.edgesWeights.emplace(std::move(*all));
    } else if (weights.given()) {
      std::copy(floats.values.begin(), floats.values.end(), core.edgesWeights->own() + added.first);
    }
    return added;
  });
}

std::uint64_t Network::addEdge(std::uint64_t source, std::uint64_t target) {
  internal::requireVertex(source, countVertices());
  internal::requireVertex(target, countVertices());
  const std::uint64_t edge = countEdges();
  published_->addEdgesFromVerticesIndices_toVerticesIndices_count(&source, &target, 1);
  return edge;
}

Result<Network> Network::copy(const ChangeOptions& options) const {
  return withEnds(*this, options, isDirected(), [](Derivation&) {});
}

Result<Network> Network::withMoreVertices(std::uint64_t count, const ChangeOptions& options) const {
  return withEnds(*this, options, isDirected(),
                  [count](Derivation& derivation) { derivation.moreVertices = count; });
}

Result<Network> Network::reversed(const ChangeOptions& options) const {
  return withEnds(*this, options, isDirected(), [](Derivation& derivation) {
    if (derivation.directed) std::swap(derivation.ends.from, derivation.ends.to);
  });
}

Result<Network> Network::asDirected(const ChangeOptions& options) const {
  if (isDirected()) return copy(options);
  std::vector<std::uint64_t> edges(2 * countEdges());
  for (std::uint64_t i = 0; i < edges.size(); ++i) edges[i] = i / 2;
  return withEnds(*this, options, true, [&edges](Derivation& derivation) {
    derivation.ends = bothWays(derivation.ends);
    derivation.edges = &edges;
  });
}

Result<Network> Network::asUndirected(const ChangeOptions& options) const {
  return withEnds(*this, options, false, [](Derivation&) {});
}

}  // namespace veq
