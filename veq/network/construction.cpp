// Construction from index lists and capacities; size, flags and handles.

#include <stdexcept>

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

std::uint64_t VEQNetwork::countVertices() const { return core_->store.vertexCount(); }

std::uint64_t VEQNetwork::countEdges() const { return core_->store.edgeCount(); }

bool VEQNetwork::isDirected() const { return core_->store.directed(); }

bool VEQNetwork::isEdgeWeighted() const { return core_->edgesWeights.has_value(); }

bool VEQNetwork::isVertexWeighted() const { return core_->verticesWeights.has_value(); }

bool VEQNetwork::isEditable() const { return core_->editable; }

void VEQNetwork::blockEditing() { core_->editable = false; }

Shared<VEQVertex> VEQNetwork::vertexAtIndex(std::uint64_t index) const {
  if (index >= countVertices()) throw std::out_of_range("The network has no vertex of this index.");
  return core_->handles().vertices.sharedAt(index);
}

Shared<VEQEdge> VEQNetwork::edgeAtIndex(std::uint64_t index) const {
  if (index >= countEdges()) throw std::out_of_range("The network has no edge of this index.");
  return core_->handles().edges.sharedAt(index);
}

VEQVertexArray VEQNetwork::vertices() const {
  return VEQVertexArray(core_->vertices(), countVertices());
}

VEQEdgeArray VEQNetwork::edges() const { return VEQEdgeArray(core_->edges(), countEdges()); }

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
