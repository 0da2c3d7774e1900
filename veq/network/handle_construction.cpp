// Construction from handles of any networks, and copies, which are made of all handles of one.

#include <optional>
#include <utility>

#include "veq/base/diagnostic_log.hpp"
#include "veq/network/internal/copied_properties.hpp"
#include "veq/network/internal/handle_positions.hpp"
#include "veq/network/internal/handle_runs.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::CoreAccess;
using internal::HandlePositions;
using internal::HandleRun;
using internal::HandleRuns;
using internal::NetworkCore;
using internal::NetworkDraft;
using internal::PositionsInNetwork;
using internal::RawVector;
using internal::Weights;

namespace {

// The weights that a caller gave.
struct GivenWeights {
  const VEQNumberArray* vertices;
  const VEQNumberArray* edges;

  void operator()(NetworkDraft& draft) const {
    draft.verticesWeights = internal::weightsOf(vertices);
    draft.edgesWeights = internal::weightsOf(edges);
  }
};

// The weights that a network reports, which are 1.0 where it has none.
struct ReportedWeights {
  const NetworkCore& core;

  void operator()(NetworkDraft& draft) const {
    draft.verticesWeights = reported(core.verticesWeights, core.store.vertexCount());
    draft.edgesWeights = reported(core.edgesWeights, core.store.edgeCount());
  }
  static Weights reported(const std::optional<internal::HeldWeights>& weights,
                          std::uint64_t count) {
    return weights ? weights->copy() : Weights(count, 1.0f);
  }
};

bool weightsFit(const NetworkDraft& draft, std::uint64_t edgeCount) {
  return (!draft.verticesWeights || draft.verticesWeights->size() == draft.vertexCount) &&
         (!draft.edgesWeights || draft.edgesWeights->size() == edgeCount);
}

// A vertex that is not given counts as the first.
HandlePositions positionsOf(const HandleRuns<VEQVertex>& vertices) {
  HandlePositions positions;
  std::uint64_t position = 0;
  for (const HandleRun& run : vertices.runs()) {
    PositionsInNetwork& inNetwork = positions.inNetworkOf(run);
    for (std::uint64_t i = 0; i < run.count; ++i) inNetwork.enter(run[i], position++);
  }
  return positions;
}

// The ends of the edges of a run, as indices of their own network.
struct HandleEnds {
  RawVector<std::uint64_t> from;
  RawVector<std::uint64_t> to;

  void append(const HandleRun& run) {
    run.core().store.visit([&](const auto& topology) {
      for (std::uint64_t i = 0; i < run.count; ++i) {
        from.push_back(topology.from[run[i]]);
        to.push_back(topology.to[run[i]]);
      }
    });
  }
};

// Replaces indices of a network by positions among the given vertices.
void translate(std::span<std::uint64_t> indices, const PositionsInNetwork* positions) {
  for (std::uint64_t& index : indices) index = positions ? positions->of(index) : 0;
}

HandleEnds endsOf(const HandleRuns<VEQVertex>& vertices, const HandleRuns<VEQEdge>& edges) {
  HandleEnds ends;
  ends.from.reserve(edges.count());
  ends.to.reserve(edges.count());
  // Among all vertices of one network every vertex lies at its own index.
  const bool allOfOne = vertices.runs().size() == 1 && edges.runs().size() == 1 &&
                        vertices.runs()[0].indices == nullptr &&
                        vertices.runs()[0].life == edges.runs()[0].life;
  if (allOfOne) {
    ends.append(edges.runs()[0]);
    return ends;
  }
  const HandlePositions positions = positionsOf(vertices);
  for (const HandleRun& run : edges.runs()) {
    const std::size_t first = ends.from.size();
    ends.append(run);
    const PositionsInNetwork* inNetwork = positions.find(run.life);
    translate(std::span(ends.from).subspan(first), inNetwork);
    translate(std::span(ends.to).subspan(first), inNetwork);
  }
  return ends;
}

RawVector<std::uint64_t> positionsOf(const VEQVertexArray& array,
                                     const HandlePositions& positions) {
  RawVector<std::uint64_t> result;
  result.reserve(array.count());
  const HandleRuns<VEQVertex> given(array);
  for (const HandleRun& run : given.runs()) {
    const PositionsInNetwork* inNetwork = positions.find(run.life);
    for (std::uint64_t i = 0; i < run.count; ++i) {
      result.push_back(inNetwork ? inNetwork->of(run[i]) : 0);
    }
  }
  return result;
}

// The distinct ends, in the order of their first appearance.
VEQVertexArray distinctEnds(const VEQVertexArray& from, const VEQVertexArray& to) {
  std::vector<Shared<VEQVertex>> distinct;
  HandlePositions positions;
  const auto enter = [&](const VEQVertexArray& array, std::uint64_t i) {
    const std::uint64_t index = array.identificationAtIndex(i);
    const auto& table = array.table();
    const HandleRun run = table ? HandleRun{&table->life(), array.count(), nullptr}
                                : HandleRun{&array.handleAt(i).life(), 1, nullptr};
    if (positions.inNetworkOf(run).enter(index, distinct.size())) distinct.push_back(array[i]);
  };
  for (std::uint64_t i = 0; i < from.count(); ++i) {
    enter(from, i);
    enter(to, i);
  }
  return distinct;
}

void askForProperties(const VEQVertexArray& vertices, const HandleRuns<VEQVertex>& runs) {
  internal::visitInvalid(vertices, runs,
                         [](const VEQVertex& v) { static_cast<void>(v.properties()); });
}

// Without vertices there is none to which an end that was not given could be attached.
bool hasVertexForEnds(const NetworkDraft& draft) {
  return draft.vertexCount != 0 || draft.from.all().empty();
}

// `giveHandles()` gives the vertices and the edges; those of a whole network may want memory.
template <class GiveHandles, class GiveWeights>
Owned<VEQNetwork> fromHandles(GiveHandles giveHandles, bool directed, GiveWeights giveWeights) {
  return CoreAccess::make([&]() -> std::optional<NetworkDraft> {
    const auto handles = giveHandles();
    const VEQVertexArray& vertices = handles.first;
    const VEQEdgeArray& edges = handles.second;
    NetworkDraft draft;
    draft.vertexCount = vertices.count();
    draft.directed = directed;
    draft.columnsAreReady = true;
    giveWeights(draft);
    if (!weightsFit(draft, edges.count())) return std::nullopt;
    const HandleRuns<VEQVertex> givenVertices(vertices);
    const HandleRuns<VEQEdge> givenEdges(edges);
    askForProperties(vertices, givenVertices);
    internal::visitInvalid(edges, givenEdges,
                           [](const VEQEdge& e) { static_cast<void>(e.fromVertex()); });
    draft.properties.vertices = internal::copiedVertexProperties(givenVertices.runs());
    draft.properties.edges = internal::copiedEdgeProperties(givenEdges.runs());
    HandleEnds ends = endsOf(givenVertices, givenEdges);
    draft.from = std::move(ends.from);
    draft.to = std::move(ends.to);
    return hasVertexForEnds(draft) ? std::move(draft) : std::optional<NetworkDraft>();
  });
}

auto allHandlesOf(const VEQNetwork& network) {
  return [&network] { return std::pair(network.vertices(), network.edges()); };
}

void logLoading(bool weighted) {
  logDiagnostic(weighted ? "Loading Weighted Network? YES" : "Loading Weighted Network? NO");
}

}  // namespace

Owned<VEQNetwork> VEQNetwork::initWithVertices_edges_directed_verticesWeights_edgesWeights(
    const VEQVertexArray& vertices, const VEQEdgeArray& edges, bool directed,
    const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  logLoading(edgesWeights != nullptr);
  return fromHandles(
      [&] { return std::pair<const VEQVertexArray&, const VEQEdgeArray&>(vertices, edges); },
      directed, GivenWeights{verticesWeights, edgesWeights});
}

Owned<VEQNetwork>
VEQNetwork::initWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
    const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
    const VEQVertexArray& to, bool directed, const VEQNumberArray* verticesWeights,
    const VEQNumberArray* edgesWeights) {
  return CoreAccess::make([&]() -> std::optional<NetworkDraft> {
    if (from.count() != to.count()) return std::nullopt;
    const VEQVertexArray all = vertices ? *vertices : distinctEnds(from, to);
    NetworkDraft draft;
    draft.vertexCount = all.count();
    draft.directed = directed;
    draft.columnsAreReady = true;
    GivenWeights{verticesWeights, edgesWeights}(draft);
    if (!weightsFit(draft, from.count())) return std::nullopt;
    const HandleRuns<VEQVertex> given(all);
    askForProperties(all, given);
    draft.properties.vertices = internal::copiedVertexProperties(given.runs());
    const HandlePositions positions = positionsOf(given);
    draft.from = positionsOf(from, positions);
    draft.to = positionsOf(to, positions);
    return hasVertexForEnds(draft) ? std::move(draft) : std::optional<NetworkDraft>();
  });
}

Owned<VEQNetwork> VEQNetwork::initWithNetwork_directed_verticesWeights_edgesWeights(
    const VEQNetwork& network, bool directed, const VEQNumberArray* verticesWeights,
    const VEQNumberArray* edgesWeights) {
  logLoading(edgesWeights != nullptr);
  return fromHandles(allHandlesOf(network), directed, GivenWeights{verticesWeights, edgesWeights});
}

Owned<VEQNetwork> VEQNetwork::initWithNetwork_directed(const VEQNetwork& network, bool directed) {
  logLoading(true);
  return fromHandles(allHandlesOf(network), directed, ReportedWeights{CoreAccess::of(network)});
}

}  // namespace veq
