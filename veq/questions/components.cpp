#include "veq/questions/components.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/tiled_work.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/natural/internal/core_of.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/network/internal/components.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/shared_parts.hpp"
#include "veq/questions/internal/strong_components.hpp"

namespace veq {

using internal::Components;
using internal::componentsOf;
using internal::coreOf;
using internal::forEachSharedTile;
using internal::NetworkCore;
using internal::Pace;
using internal::Part;
using internal::Partition;
using internal::Team;

namespace {

DerivedNetwork networkOf(const NetworkCore& core, const Part& part, Pace& pace) {
  std::vector<std::uint64_t> vertices(part.vertices.begin(), part.vertices.end());
  std::vector<std::uint64_t> edges(part.edges.begin(), part.edges.end());
  internal::Derivation derivation;
  derivation.ends.from.assign(part.from.begin(), part.from.end());
  derivation.ends.to.assign(part.to.begin(), part.to.end());
  derivation.directed = core.store.directed();
  derivation.vertices = &vertices;
  derivation.edges = &edges;
  Network network = internal::derived(core, std::move(derivation), pace);
  return {std::move(network), std::move(vertices), std::move(edges)};
}

template <class Index>
std::vector<std::uint64_t> membersOf(const Components<Index>& components, std::uint64_t which) {
  std::vector<std::uint64_t> members;
  members.reserve(components.sizes[which]);
  for (std::uint64_t v = 0; v < components.labels.size(); ++v) {
    if (components.of(v) == which) members.push_back(v);
  }
  return members;
}

}  // namespace

ComponentLabels components(const Network& network, Connection connection) {
  return components(network, connection, Progress()).value();
}

Result<ComponentLabels> components(const Network& network, Connection connection,
                                   const Progress& progress) {
  const internal::AdjacencyStore& store = coreOf(network).store;
  return internal::untilStopped([&]() -> Result<ComponentLabels> {
    Pace pace(progress, store.vertexCount());
    pace.reach(0);
    return store.visit([&](const auto& topology) {
      auto found = componentsOf(store, topology, connection == Connection::kStrong, &pace);
      ComponentLabels labels;
      labels.sizes = std::move(found.sizes);
      labels.labels.resize(store.vertexCount());
      constexpr std::uint64_t kTile = std::uint64_t{1} << 16;
      Team team(parallelism());
      forEachSharedTile(labels.labels.size(), kTile, team, nullptr,
                        [&](std::uint64_t begin, std::uint64_t end) {
                          for (std::uint64_t v = begin; v < end; ++v)
                            labels.labels[v] = found.of(v);
                        });
      return labels;
    });
  });
}

Result<std::vector<DerivedNetwork>> componentNetworks(const Network& network, Connection connection,
                                                      const ChangeOptions& options) {
  const NetworkCore& core = coreOf(network);
  const bool strong = connection == Connection::kStrong;
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<std::vector<DerivedNetwork>> {
    Pace pace(options.progress, core.store.vertexCount() + core.store.edgeCount());
    pace.reach(0);
    const Partition parts = core.store.visit([&](const auto& topology) {
      return Partition(componentsOf(core.store, topology, strong, &pace), topology,
                       core.store.edgeCount(),
                       strong ? Partition::CrossEdges::kPossible : Partition::CrossEdges::kNone);
    });
    std::vector<std::optional<DerivedNetwork>> made(parts.count());
    internal::forEachPart(parts, pace, core.store.edgeCount(), [&](std::uint64_t c, Pace& ofPart) {
      made[c] = networkOf(core, parts[c], ofPart);
    });
    std::vector<DerivedNetwork> result;
    result.reserve(made.size());
    for (std::optional<DerivedNetwork>& part : made) result.push_back(std::move(*part));
    return result;
  });
}

Result<DerivedNetwork> largestComponent(const Network& network, Connection connection,
                                        const ChangeOptions& options) {
  const NetworkCore& core = coreOf(network);
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<DerivedNetwork> {
    Pace pace(options.progress, core.store.vertexCount() + core.store.edgeCount());
    pace.reach(0);
    std::vector<std::uint64_t> members = core.store.visit([&](const auto& topology) {
      const auto found =
          componentsOf(core.store, topology, connection == Connection::kStrong, &pace);
      // Of several largest ones the first.
      const auto largest = std::max_element(found.sizes.begin(), found.sizes.end());
      if (largest == found.sizes.end()) return std::vector<std::uint64_t>();
      return membersOf(found, static_cast<std::uint64_t>(largest - found.sizes.begin()));
    });
    return internal::inducedBy(core, std::move(members), pace);
  });
}

}  // namespace veq
