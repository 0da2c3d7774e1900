#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "veq/network/network.hpp"
#include "veq/numeric/generic_array.hpp"

namespace veq::bench {

/// A network with names and edge weights, a vertex for every ten edges.
inline Owned<VEQNetwork> namedNetwork(std::uint64_t edges) {
  const std::uint64_t vertices = edges / 10;
  std::mt19937_64 random(1);
  std::uniform_int_distribution<std::uint64_t> vertex(0, vertices - 1);
  std::uniform_real_distribution<float> weight(0, 10);
  internal::RawVector<std::uint64_t> from(edges), to(edges);
  internal::RawVector<float> weights(edges);
  for (std::uint64_t i = 0; i < edges; ++i) {
    from[i] = vertex(random);
    to[i] = vertex(random);
    weights[i] = weight(random);
  }
  const VEQNumberArray edgeWeights(std::move(weights));
  auto network = VEQNetwork::
      initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          vertices, VEQNumberArray(std::move(from)), VEQNumberArray(std::move(to)), true, nullptr,
          &edgeWeights);
  std::vector<PropertyValue> names;
  names.reserve(vertices);
  for (std::uint64_t i = 0; i < vertices; ++i) names.emplace_back("vertex " + std::to_string(i));
  network->setPropertiesOfVertices_forKey(std::make_shared<GenericArray>(std::move(names)), "Name");
  return network;
}

/// Reports bytes and edges per second.
inline void countText(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
  state.SetItemsProcessed(state.range(0) * state.iterations());
}

}  // namespace veq::bench
