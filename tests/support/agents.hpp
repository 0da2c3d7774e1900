#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/literal_walk.hpp"
#include "veq/agents/agents_group.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::test {

using Integers = std::vector<std::int64_t>;
using Indices = std::vector<std::uint64_t>;

/// A network of exactly n vertices. With a narrow limit of 0 its indices take 64 bits.
inline Shared<VEQNetwork> networkOf(
    std::uint64_t n, const std::vector<std::pair<std::uint64_t, std::uint64_t>>& edges,
    bool directed, std::uint64_t narrowLimit = internal::AdjacencyStore::kNarrowLimit) {
  internal::RawVector<std::uint64_t> from;
  internal::RawVector<std::uint64_t> to;
  for (const auto& [source, target] : edges) {
    from.push_back(source);
    to.push_back(target);
  }
  internal::NetworkDraft draft;
  draft.vertexCount = n;
  draft.from = std::move(from);
  draft.to = std::move(to);
  draft.directed = directed;
  draft.narrowLimit = narrowLimit;
  return internal::CoreAccess::build(std::move(draft));
}

inline Owned<VEQNetworkAgentsGroup> groupAt(Shared<const VEQNetwork> network,
                                            const Indices& start) {
  return VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      std::move(network), VEQNumberArray::ofIndices(start));
}

inline Integers integers(const VEQNumberArray& array) {
  Integers values(array.count());
  array.getIntegerValues_count(values.data(), values.size());
  return values;
}
inline Integers integers(const Shared<const VEQNumberArray>& array) { return integers(*array); }

inline Indices indices(const VEQVertexArray& vertices) {
  Indices values;
  for (const VEQVertex& vertex : vertices) values.push_back(vertex.identification());
  return values;
}

inline std::vector<Indices> indices(const VEQVertexPaths& paths) {
  std::vector<Indices> all;
  for (const VEQVertexArray& path : paths) all.push_back(indices(path));
  return all;
}

inline void seed(std::uint32_t value) {
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(value);
}

}  // namespace veq::test
