// Inserting edges.

#include <algorithm>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "veq/network/internal/inserting.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::EdgeEnds;
using internal::NetworkCore;

namespace {

[[noreturn]] void refuseEdge(const EdgeEnds& edges, std::uint64_t i, std::uint64_t n) {
  throw std::invalid_argument("Edge lists contains indices out of bounds:from " +
                              std::to_string(edges.from[i]) + " to " + std::to_string(edges.to[i]) +
                              " (max vertex inddex:" + std::to_string(n) + ")");
}

void requireVertices(const EdgeEnds& edges, std::uint64_t n) {
  for (std::uint64_t i = 0; i < edges.count(); ++i) {
    if (edges.from[i] >= n || edges.to[i] >= n) refuseEdge(edges, i, n);
  }
}

void requireOwn(const NetworkCore& core, const VEQVertex& source, const VEQVertex& target,
                const char* message) {
  if (core.lives(source.life()) && core.lives(target.life())) return;
  throw std::invalid_argument(message);
}

// Reserves in every edge column, so that appending cannot fail. A column that stands under
// several keys grows once for each.
void reserveInColumns(const PropertyTable& table, std::uint64_t count) {
  std::vector<PropertyColumn*> columns;
  columns.reserve(table.size());
  for (const auto& entry : table) columns.push_back(entry.second.get());
  std::sort(columns.begin(), columns.end());
  for (auto at = columns.begin(); at != columns.end();) {
    const auto next = std::upper_bound(at, columns.end(), *at);
    (*at)->reserve(count * static_cast<std::uint64_t>(next - at));
    at = next;
  }
}

// Whether the indices lie in a column, whose elements move when it grows.
bool lieIn(const PropertyTable& table, std::span<const std::uint64_t> indices) {
  const std::less<const void*> before;
  return std::any_of(table.begin(), table.end(), [&](const auto& entry) {
    if (entry.second->kind() != PropertyColumn::Kind::kNumber) return false;
    return static_cast<const VEQNumberArray&>(*entry.second).visit([&](auto elements) {
      return before(indices.data(), elements.data() + elements.size()) &&
             before(elements.data(), indices.data() + indices.size());
    });
  });
}

}  // namespace

void internal::insertEdges(NetworkCore& core, const EdgeEnds& edges, Pace* pace) {
  const PropertyTable& columns = core.properties->edges;
  if (!columns.empty() && (lieIn(columns, edges.from) || lieIn(columns, edges.to))) {
    const RawVector<std::uint64_t> from(edges.from.begin(), edges.from.end());
    const RawVector<std::uint64_t> to(edges.to.begin(), edges.to.end());
    return insertEdges(core, {from, to}, pace);
  }

  const std::uint64_t count = edges.count();
  const std::uint64_t edgesAfter = core.store.edgeCount() + count;
  if (core.edgesWeights) core.edgesWeights->reserve(edgesAfter);
  if (!columns.empty()) reserveInColumns(columns, count);
  core.store.insert(edges, pace);

  // From here on nothing fails. Handles come into being when somebody asks for them.
  if (edgesAfter > core.edgesCapacity) core.edgesCapacity = 2 * edgesAfter;
  if (core.edgesWeights) core.edgesWeights->growTo(edgesAfter);
  for (const auto& entry : columns) entry.second->appendUnset(count);
}

void VEQNetwork::addEdgesFromVerticesIndices_toVerticesIndices_count(const std::uint64_t* from,
                                                                     const std::uint64_t* to,
                                                                     std::uint64_t count) {
  const auto size = static_cast<std::size_t>(count);
  const EdgeEnds edges{{from, size}, {to, size}};
  requireVertices(edges, countVertices());
  internal::insertEdges(*core_, edges);
}

Shared<VEQEdge> VEQNetwork::linkVertex_to(const VEQVertex& source, const VEQVertex& target) {
  requireOwn(*core_, source, target, "Both vertices must be in this network.");
  const std::uint64_t from = source.identification();
  const std::uint64_t to = target.identification();
  // The handle first: once the edge is there, nothing may fail.
  Shared<VEQEdge> edge = core_->handles().edges.sharedAt(countEdges());
  addEdgesFromVerticesIndices_toVerticesIndices_count(&from, &to, 1);
  return edge;
}

Shared<VEQEdge> VEQNetwork::linkVertex_to_weight(const VEQVertex& source, const VEQVertex& target,
                                                 float weight) {
  requireOwn(*core_, source, target, "Both vertices must be in this network.");
  const std::uint64_t n = countVertices();
  // What the weight needs, before the edge is there.
  std::optional<internal::HeldWeights> firstWeights;
  if (core_->editable && !core_->edgesWeights && source.identification() < n &&
      target.identification() < n) {
    firstWeights.emplace(countEdges() + 1, 0.0f);
  }
  Shared<VEQEdge> edge = linkVertex_to(source, target);
  if (firstWeights) core_->edgesWeights = std::move(firstWeights);
  setWeightValue_atEdgeIndex(weight, edge->identification());
  return edge;
}

Shared<VEQEdge> VEQNetwork::reLinkVertex_to_atIndex(const VEQVertex& source,
                                                    const VEQVertex& target, std::uint64_t) {
  requireOwn(*core_, source, target, "Both links must be in this network.");
  return nullptr;
}

Shared<VEQEdge> VEQNetwork::reLinkVertex_to_weight_atIndex(const VEQVertex& source,
                                                           const VEQVertex& target, float,
                                                           std::uint64_t) {
  requireOwn(*core_, source, target, "Both links must be in this network.");
  return nullptr;
}

}  // namespace veq
