// Construction from index lists and capacities.

#include <optional>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::CoreAccess;
using internal::IndexList;
using internal::NetworkDraft;
using internal::sharedOrNull;

namespace {

std::optional<NetworkDraft> draftFromIndices(std::uint64_t minimumCount, const VEQNumberArray& from,
                                             const VEQNumberArray& to, bool directed,
                                             const VEQNumberArray* verticesWeights,
                                             const VEQNumberArray* edgesWeights) {
  if (from.count() != to.count()) return std::nullopt;
  NetworkDraft draft;
  draft.from = IndexList(from);
  draft.to = IndexList(to);
  const auto count = internal::countVertices(minimumCount, draft.from.all(), draft.to.all());
  if (!count) return std::nullopt;
  draft.vertexCount = *count;
  draft.directed = directed;
  draft.verticesWeights = internal::weightsOf(verticesWeights);
  draft.edgesWeights = internal::weightsOf(edgesWeights);
  return draft;
}

}  // namespace

Owned<VEQNetwork>
VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
    std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to, bool directed,
    const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return CoreAccess::make([&] {
    return draftFromIndices(minimumCount, from, to, directed, verticesWeights, edgesWeights);
  });
}

Owned<VEQNetwork>
VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
    const VEQNumberArray& from, const VEQNumberArray& to, bool directed,
    const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      0, from, to, directed, verticesWeights, edgesWeights);
}

Owned<VEQNetwork>
VEQNetwork::initWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
    std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed, bool verticesWeighted,
    bool edgesWeighted) {
  Owned<VEQNetwork> network = CoreAccess::make([&] {
    std::optional<NetworkDraft> draft(std::in_place);
    draft->directed = directed;
    if (verticesWeighted) draft->verticesWeights.emplace();
    if (edgesWeighted) draft->edgesWeights.emplace();
    return draft;
  });
  if (network) {
    network->core_->vertexCapacity = vertexCapacity;
    network->core_->edgesCapacity = edgeCapacity;
  }
  return network;
}

// The convenience forms and the factories.

Owned<VEQNetwork> VEQNetwork::initWithLinksIndexedFrom_toIndices(const VEQNumberArray& from,
                                                                 const VEQNumberArray& to) {
  return initWithLinksIndexedFrom_toIndices_directed(from, to, false);
}

Owned<VEQNetwork> VEQNetwork::initWithLinksIndexedFrom_toIndices_directed(
    const VEQNumberArray& from, const VEQNumberArray& to, bool directed) {
  return initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      from, to, directed, nullptr, nullptr);
}

Owned<VEQNetwork> VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
    std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to) {
  return initWithVerticesCount_linksIndexedFrom_toIndices_directed(minimumCount, from, to, false);
}

Owned<VEQNetwork> VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
    std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to,
    bool directed) {
  return initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      minimumCount, from, to, directed, nullptr, nullptr);
}

Owned<VEQNetwork> VEQNetwork::initWithVertexCapacity_edgeCapacity(std::uint64_t vertexCapacity,
                                                                  std::uint64_t edgeCapacity) {
  return initWithVertexCapacity_edgeCapacity_directed(vertexCapacity, edgeCapacity, false);
}

Owned<VEQNetwork> VEQNetwork::initWithVertexCapacity_edgeCapacity_directed(
    std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed) {
  return initWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
      vertexCapacity, edgeCapacity, directed, false, false);
}

Shared<VEQNetwork> VEQNetwork::networkWithLinksIndexedFrom_toIndices(const VEQNumberArray& from,
                                                                     const VEQNumberArray& to) {
  return sharedOrNull(initWithLinksIndexedFrom_toIndices(from, to));
}

Shared<VEQNetwork> VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed(
    const VEQNumberArray& from, const VEQNumberArray& to, bool directed) {
  return sharedOrNull(initWithLinksIndexedFrom_toIndices_directed(from, to, directed));
}

Shared<VEQNetwork>
VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
    const VEQNumberArray& from, const VEQNumberArray& to, bool directed,
    const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return sharedOrNull(initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      from, to, directed, verticesWeights, edgesWeights));
}

Shared<VEQNetwork> VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices(
    std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to) {
  return sharedOrNull(initWithVerticesCount_linksIndexedFrom_toIndices(minimumCount, from, to));
}

Shared<VEQNetwork> VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices_directed(
    std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to,
    bool directed) {
  return sharedOrNull(
      initWithVerticesCount_linksIndexedFrom_toIndices_directed(minimumCount, from, to, directed));
}

Shared<VEQNetwork> VEQNetwork::
    networkWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
        std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to,
        bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return sharedOrNull(
      initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          minimumCount, from, to, directed, verticesWeights, edgesWeights));
}

Shared<VEQNetwork> VEQNetwork::networkWithVertexCapacity_edgeCapacity(std::uint64_t vertexCapacity,
                                                                      std::uint64_t edgeCapacity) {
  return sharedOrNull(initWithVertexCapacity_edgeCapacity(vertexCapacity, edgeCapacity));
}

Shared<VEQNetwork> VEQNetwork::networkWithVertexCapacity_edgeCapacity_directed(
    std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed) {
  return sharedOrNull(
      initWithVertexCapacity_edgeCapacity_directed(vertexCapacity, edgeCapacity, directed));
}

Shared<VEQNetwork>
VEQNetwork::networkWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
    std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed, bool verticesWeighted,
    bool edgesWeighted) {
  return sharedOrNull(initWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
      vertexCapacity, edgeCapacity, directed, verticesWeighted, edgesWeighted));
}

}  // namespace veq
