// Size, flags and handles.

#include "veq/network/network.hpp"

#include <stdexcept>
#include <utility>

#include "veq/network/internal/network_core.hpp"

namespace veq {

VEQNetwork::VEQNetwork(std::unique_ptr<internal::NetworkCore> core) : core_(std::move(core)) {
  core_->network = this;
}

VEQNetwork::~VEQNetwork() = default;

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

}  // namespace veq
