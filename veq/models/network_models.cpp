// The model constructors of the network.

#include <algorithm>
#include <stdexcept>

#include "veq/models/internal/preferential_attachment.hpp"
#include "veq/models/internal/random_network.hpp"
#include "veq/models/internal/random_source.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::CoreAccess;
using internal::RandomSource;

Owned<VEQNetwork> VEQNetwork::initBarabasiNetworkWithInitialVertices_degreeGrowth_iterations(
    std::uint64_t initialVertices, std::uint64_t degreeGrowth, std::uint64_t iterations) {
  return CoreAccess::make([&] {
    return internal::preferentialAttachment(initialVertices, degreeGrowth, iterations,
                                            RandomSource(nullptr));
  });
}

Owned<VEQNetwork> VEQNetwork::initBarabasiNetworkWitNumberOfVertices_approximateDegree(
    std::uint64_t count, std::uint64_t approximateDegree) {
  const std::uint64_t growth = std::min(approximateDegree / 2, count);
  return initBarabasiNetworkWithInitialVertices_degreeGrowth_iterations(growth, growth,
                                                                        count - growth);
}

Owned<VEQNetwork> VEQNetwork::initRandomNetworkWithNumberOfVertices_degree(std::uint64_t count,
                                                                           double degree) {
  return CoreAccess::make(
      [&] { return internal::randomNetwork(count, degree, RandomSource(nullptr)); });
}

Shared<VEQNetwork> VEQNetwork::barabasiNetworkWithInitialVertices_degreeGrowth_iterations(
    std::uint64_t initialVertices, std::uint64_t degreeGrowth, std::uint64_t iterations) {
  return internal::sharedOrNull(initBarabasiNetworkWithInitialVertices_degreeGrowth_iterations(
      initialVertices, degreeGrowth, iterations));
}

Shared<VEQNetwork> VEQNetwork::barabasiNetworkWitNumberOfVertices_approximateDegree(
    std::uint64_t count, std::uint64_t approximateDegree) {
  return internal::sharedOrNull(
      initBarabasiNetworkWitNumberOfVertices_approximateDegree(count, approximateDegree));
}

Shared<VEQNetwork> VEQNetwork::randomNetworkWithNumberOfVertices_degree(std::uint64_t count,
                                                                        double degree) {
  return internal::sharedOrNull(initRandomNetworkWithNumberOfVertices_degree(count, degree));
}

// The models without a body.

Owned<VEQNetwork> VEQNetwork::initGeographicalNetworkWithNetwork_maximumDistance(const VEQNetwork&,
                                                                                 double) {
  return nullptr;
}

Owned<VEQNetwork> VEQNetwork::initGeographicalNetworkWithNetwork_positions_maximumDistance(
    const VEQNetwork&, const PropertyColumn*, double) {
  return nullptr;
}

Owned<VEQNetwork> VEQNetwork::initRegularNetworkWithNumberOfVertices_bordered(std::uint64_t, bool) {
  return nullptr;
}

Owned<VEQNetwork>
VEQNetwork::initWattzStrogatzNetworkWithNumberOfVertices_degree_reconnectionProbability(
    std::uint64_t, std::int64_t, double) {
  return nullptr;
}

Shared<VEQNetwork> VEQNetwork::geographicalNetworkWithNetwork_maximumDistance(const VEQNetwork&,
                                                                              double) {
  return nullptr;
}

Shared<VEQNetwork> VEQNetwork::geographicalNetworkWithNetwork_positions_maximumDistance(
    const VEQNetwork&, const PropertyColumn*, double) {
  return nullptr;
}

Shared<VEQNetwork> VEQNetwork::regularNetworkWithNumberOfVertices_bordered(std::uint64_t, bool) {
  return nullptr;
}

Shared<VEQNetwork>
VEQNetwork::wattzStrogatzNetworkWithNumberOfVertices_degree_reconnectionProbability(std::uint64_t,
                                                                                    std::int64_t,
                                                                                    double) {
  return nullptr;
}

Owned<VEQNetwork> VEQNetwork::initByMergingNetworksInArray(const std::vector<Shared<VEQNetwork>>&) {
  throw std::logic_error("Networks cannot be merged.");
}

Shared<VEQNetwork> VEQNetwork::networkByMergingNetworksInArray(
    const std::vector<Shared<VEQNetwork>>&) {
  throw std::logic_error("Networks cannot be merged.");
}

}  // namespace veq
