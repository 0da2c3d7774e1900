#include "veq/handles/vertex.hpp"

#include <stdexcept>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/property_columns.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

using Side = internal::AdjacencyStore::Side;

// What a network consists of, where the vertex has a list with an entry k.
const internal::NetworkCore& coreWithEntry(const VEQNetwork& network, std::uint64_t vertex,
                                           std::uint64_t k, Side side) {
  const std::uint64_t length = side == Side::kOut ? network.countEdgesOfVertexAtIndex(vertex)
                                                  : network.countInEdgesOfVertexAtIndex(vertex);
  if (k >= length) throw std::out_of_range("The index is beyond the array of handles.");
  return internal::CoreAccess::of(network);
}

Shared<VEQEdge> edgeIn(const VEQNetwork& network, std::uint64_t vertex, std::uint64_t k,
                       Side side) {
  const auto& core = coreWithEntry(network, vertex, k, side);
  return core.handles().edges.sharedAt(core.store.edge(vertex, k, side));
}

Shared<VEQVertex> neighbourIn(const VEQNetwork& network, std::uint64_t vertex, std::uint64_t k,
                              Side side) {
  const auto& core = coreWithEntry(network, vertex, k, side);
  return core.handles().vertices.sharedAt(core.store.neighbour(vertex, k, side));
}

}  // namespace

VEQNetwork& VEQVertex::network() const {
  if (!isValid()) {
    throw std::invalid_argument("The Related Network of this vertex is not valid.");
  }
  return *relatedNetwork();
}

std::string VEQVertex::description() const { return name().text(); }

PropertyValue VEQVertex::name() const {
  const VEQNetwork& owner = network();
  if (const auto* names = owner.propertiesOfVertices()->find("Name")) {
    return identification() < owner.countVertices()
               ? internal::valueOrNull(**names, identification())
               : (*names)->objectAtIndex(identification());
  }
  return std::to_string(identification());
}

void VEQVertex::setName(std::string_view name) const {
  network().setPropertyValue_forKey_atVertexIndex(name, "Name", identification());
}

float VEQVertex::weight() const {
  const VEQNetwork& owner = network();
  if (identification() >= owner.countVertices()) {
    throw std::out_of_range("The network has no vertex of this index.");
  }
  const auto& weights = internal::CoreAccess::of(owner).verticesWeights;
  return weights ? (*weights)[identification()] : 1.0f;
}

void VEQVertex::setWeight(float weight) const {
  network().setWeightValue_atVertexIndex(weight, identification());
}

PropertyMap VEQVertex::properties() const {
  return network().propertiesOfVertexAtIndex(identification());
}

PropertyMap VEQVertex::propertyForKey(std::string_view) const { return properties(); }

void VEQVertex::setProperty_forKey(const PropertyValue& value, std::string_view key) const {
  network().setPropertyValue_forKey_atVertexIndex(value, key, identification());
}

void VEQVertex::setProperties(const PropertyMap& properties) const {
  internal::setVertexValues(internal::CoreAccess::of(network()), properties, identification());
}

std::vector<std::string> VEQVertex::keysForProperties() const {
  return network().keysForPropertiesOfVertices();
}

void VEQVertex::blockEditing() const { static_cast<void>(network()); }

bool VEQVertex::isEditable() const { return network().isEditable(); }

bool VEQVertex::isDirected() const { return network().isDirected(); }

bool VEQVertex::isWeighted() const { return network().isVertexWeighted(); }

std::uint64_t VEQVertex::countEdges() const {
  return network().countEdgesOfVertexAtIndex(identification());
}

std::uint64_t VEQVertex::countInEdges() const {
  return network().countInEdgesOfVertexAtIndex(identification());
}

std::uint64_t VEQVertex::countNeighborVertices() const {
  return network().countToVerticesOfVertexAtIndex(identification());
}

std::uint64_t VEQVertex::countInNeighborVertices() const {
  return network().countFromVerticesOfVertexAtIndex(identification());
}

VEQEdgeArray VEQVertex::edges() const {
  return network().edgesLinkedFromVertexAtIndex(identification());
}

VEQVertexArray VEQVertex::neighborVertices() const {
  return network().verticesLinkedFromVertexAtIndex(identification());
}

VEQVertexArray VEQVertex::inEdges() const { return inNeighborVertices(); }

VEQVertexArray VEQVertex::inNeighborVertices() const {
  return network().verticesLinkedToVertexAtIndex(identification());
}

Shared<VEQEdge> VEQVertex::edgeAtIndex(std::uint64_t k) const {
  return edgeIn(network(), identification(), k, Side::kOut);
}

Shared<VEQVertex> VEQVertex::nextVertexAtIndex(std::uint64_t k) const {
  return neighbourIn(network(), identification(), k, Side::kOut);
}

Shared<VEQEdge> VEQVertex::inEdgeAtIndex(std::uint64_t k) const {
  return edgeIn(network(), identification(), k, Side::kIn);
}

Shared<VEQVertex> VEQVertex::previousVertexAtIntex(std::uint64_t k) const {
  return neighbourIn(network(), identification(), k, Side::kIn);
}

}  // namespace veq
