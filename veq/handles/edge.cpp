#include "veq/handles/edge.hpp"

#include <stdexcept>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/property_columns.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

const internal::AdjacencyStore& storeWith(const VEQNetwork& network, std::uint64_t edge) {
  if (edge >= network.countEdges()) {
    throw std::out_of_range("The network has no edge of this index.");
  }
  return internal::CoreAccess::of(network).store;
}

}  // namespace

VEQNetwork& VEQEdge::networkOfEdge() const {
  if (!isValid()) throw std::invalid_argument("The Related Network of this edge is not valid.");
  return *relatedNetwork();
}

VEQNetwork& VEQEdge::networkOfVertex() const {
  if (!isValid()) {
    throw std::invalid_argument("The Related Network of this vertex is not valid.");
  }
  return *relatedNetwork();
}

std::string VEQEdge::description() const { return name().text(); }

PropertyValue VEQEdge::name() const {
  const VEQNetwork& owner = networkOfEdge();
  if (const auto* names = owner.propertiesOfEdges()->find("Name")) {
    return identification() < owner.countEdges() ? internal::valueOrNull(**names, identification())
                                                 : (*names)->objectAtIndex(identification());
  }
  const char* link = owner.isDirected() ? " -> " : " <-> ";
  return fromVertex()->description() + link + toVertex()->description();
}

void VEQEdge::setName(std::string_view name) const {
  networkOfEdge().setPropertyValue_forKey_atEdgeIndex(name, "Name", identification());
}

float VEQEdge::weight() const {
  const VEQNetwork& owner = networkOfEdge();
  static_cast<void>(storeWith(owner, identification()));
  const auto& weights = internal::CoreAccess::of(owner).edgesWeights;
  return weights ? (*weights)[identification()] : 1.0f;
}

void VEQEdge::setWeight(float weight) const {
  networkOfEdge().setWeightValue_atEdgeIndex(weight, identification());
}

PropertyMap VEQEdge::properties() const {
  return networkOfEdge().propertiesOfEdgeAtIndex(identification());
}

PropertyMap VEQEdge::propertyForKey(std::string_view) const { return properties(); }

void VEQEdge::setProperty_forKey(const PropertyValue& value, std::string_view key) const {
  networkOfEdge().setPropertyValue_forKey_atEdgeIndex(value, key, identification());
}

void VEQEdge::setProperties(const PropertyMap& properties) const {
  internal::setEdgeValues(internal::CoreAccess::of(networkOfEdge()), properties, identification());
}

std::vector<std::string> VEQEdge::keysForProperties() const {
  return networkOfVertex().keysForPropertiesOfEdges();
}

void VEQEdge::blockEditing() const { static_cast<void>(networkOfVertex()); }

bool VEQEdge::isEditable() const { return networkOfVertex().isEditable(); }

bool VEQEdge::isDirected() const { return networkOfVertex().isDirected(); }

bool VEQEdge::isWeighted() const { return networkOfVertex().isEdgeWeighted(); }

Shared<VEQVertex> VEQEdge::fromVertex() const {
  const VEQNetwork& owner = networkOfVertex();
  return owner.vertexAtIndex(storeWith(owner, identification()).from(identification()));
}

Shared<VEQVertex> VEQEdge::toVertex() const {
  const VEQNetwork& owner = networkOfVertex();
  return owner.vertexAtIndex(storeWith(owner, identification()).to(identification()));
}

Shared<VEQVertex> VEQEdge::vertexFromVertex(const VEQVertex& vertex) const {
  Shared<VEQVertex> from = fromVertex();
  return vertex.isEqual(*from) ? toVertex() : from;
}

}  // namespace veq
