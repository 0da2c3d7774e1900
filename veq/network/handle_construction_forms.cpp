// The convenience forms and the factories of construction from handles, and of copies.

#include "veq/network/network.hpp"

namespace veq {

Owned<VEQNetwork> VEQNetwork::initWithVertices_edges(const VEQVertexArray& vertices,
                                                     const VEQEdgeArray& edges) {
  return initWithVertices_edges_directed(vertices, edges, false);
}

Owned<VEQNetwork> VEQNetwork::initWithVertices_edges_directed(const VEQVertexArray& vertices,
                                                              const VEQEdgeArray& edges,
                                                              bool directed) {
  return initWithVertices_edges_directed_verticesWeights_edgesWeights(vertices, edges, directed,
                                                                      nullptr, nullptr);
}

Owned<VEQNetwork> VEQNetwork::initWithVertices_linkFromVertices_toVertices(
    const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
    const VEQVertexArray& to) {
  return initWithVertices_linkFromVertices_toVertices_directed(vertices, from, to, false);
}

Owned<VEQNetwork> VEQNetwork::initWithVertices_linkFromVertices_toVertices_directed(
    const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
    const VEQVertexArray& to, bool directed) {
  return initWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
      vertices, from, to, directed, nullptr, nullptr);
}

Owned<VEQNetwork> VEQNetwork::initWithNetwork(const VEQNetwork& network) {
  return initWithNetwork_directed(network, network.isDirected());
}

Owned<VEQNetwork> VEQNetwork::initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(
    const VEQNetwork& network, std::uint64_t vertexIncrement, std::uint64_t edgeIncrement) {
  return initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
      network, vertexIncrement, edgeIncrement, network.isDirected());
}

Owned<VEQNetwork>
VEQNetwork::initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
    const VEQNetwork& network, std::uint64_t, std::uint64_t, bool directed) {
  return initWithNetwork_directed(network, directed);
}

Owned<VEQNetwork> VEQNetwork::
    initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed_verticesWeights_edgesWeights(
        const VEQNetwork& network, std::uint64_t, std::uint64_t, bool directed,
        const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return initWithNetwork_directed_verticesWeights_edgesWeights(network, directed, verticesWeights,
                                                               edgesWeights);
}

// The factories.

Shared<VEQNetwork> VEQNetwork::networkWithVertices_edges(const VEQVertexArray& vertices,
                                                         const VEQEdgeArray& edges) {
  return internal::sharedOrNull(initWithVertices_edges(vertices, edges));
}

Shared<VEQNetwork> VEQNetwork::networkWithVertices_edges_directed(const VEQVertexArray& vertices,
                                                                  const VEQEdgeArray& edges,
                                                                  bool directed) {
  return internal::sharedOrNull(initWithVertices_edges_directed(vertices, edges, directed));
}

Shared<VEQNetwork> VEQNetwork::networkWithVertices_edges_directed_verticesWeights_edgesWeights(
    const VEQVertexArray& vertices, const VEQEdgeArray& edges, bool directed,
    const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return internal::sharedOrNull(initWithVertices_edges_directed_verticesWeights_edgesWeights(
      vertices, edges, directed, verticesWeights, edgesWeights));
}

Shared<VEQNetwork> VEQNetwork::networkWithVertices_linkFromVertices_toVertices(
    const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
    const VEQVertexArray& to) {
  return internal::sharedOrNull(initWithVertices_linkFromVertices_toVertices(vertices, from, to));
}

Shared<VEQNetwork> VEQNetwork::networkWithVertices_linkFromVertices_toVertices_directed(
    const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
    const VEQVertexArray& to, bool directed) {
  return internal::sharedOrNull(
      initWithVertices_linkFromVertices_toVertices_directed(vertices, from, to, directed));
}

Shared<VEQNetwork>
VEQNetwork::networkWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
    const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
    const VEQVertexArray& to, bool directed, const VEQNumberArray* verticesWeights,
    const VEQNumberArray* edgesWeights) {
  return internal::sharedOrNull(
      initWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
          vertices, from, to, directed, verticesWeights, edgesWeights));
}

Shared<VEQNetwork> VEQNetwork::networkWithNetwork(const VEQNetwork& network) {
  return internal::sharedOrNull(initWithNetwork(network));
}

Shared<VEQNetwork> VEQNetwork::networkWithNetwork_directed(const VEQNetwork& network,
                                                           bool directed) {
  return internal::sharedOrNull(initWithNetwork_directed(network, directed));
}

Shared<VEQNetwork> VEQNetwork::networkWithNetwork_directed_verticesWeights_edgesWeights(
    const VEQNetwork& network, bool directed, const VEQNumberArray* verticesWeights,
    const VEQNumberArray* edgesWeights) {
  return internal::sharedOrNull(initWithNetwork_directed_verticesWeights_edgesWeights(
      network, directed, verticesWeights, edgesWeights));
}

Shared<VEQNetwork> VEQNetwork::networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(
    const VEQNetwork& network, std::uint64_t vertexIncrement, std::uint64_t edgeIncrement) {
  return internal::sharedOrNull(initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(
      network, vertexIncrement, edgeIncrement));
}

Shared<VEQNetwork>
VEQNetwork::networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
    const VEQNetwork& network, std::uint64_t vertexIncrement, std::uint64_t edgeIncrement,
    bool directed) {
  return internal::sharedOrNull(
      initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
          network, vertexIncrement, edgeIncrement, directed));
}

// The plain copy, which an expanding one equals.
Shared<VEQNetwork> VEQNetwork::
    networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed_verticesWeights_edgesWeights(
        const VEQNetwork& network, std::uint64_t, std::uint64_t, bool directed,
        const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return internal::sharedOrNull(initWithNetwork_directed_verticesWeights_edgesWeights(
      network, directed, verticesWeights, edgesWeights));
}

}  // namespace veq
