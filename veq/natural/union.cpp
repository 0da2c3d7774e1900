// One network of several.

#include <algorithm>
#include <deque>
#include <memory>
#include <string>
#include <utility>

#include "veq/base/internal/name_table.hpp"
#include "veq/base/internal/own_parallelism.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/core_of.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/network.hpp"
#include "veq/network/internal/copied_properties.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq {

using internal::argumentError;
using internal::CoreAccess;
using internal::coreOf;
using internal::HeldWeights;
using internal::NetworkCore;
using internal::Pace;
using internal::Weights;

namespace {

// For each network, and each of its vertices or edges, the new index; and how many there are.
struct Places {
  std::vector<std::vector<std::uint64_t>> of;
  std::uint64_t count = 0;
};

std::vector<std::uint64_t> numbersFrom(std::uint64_t first, std::uint64_t count) {
  std::vector<std::uint64_t> numbers(count);
  for (std::uint64_t i = 0; i < count; ++i) numbers[i] = first + i;
  return numbers;
}

Places sideBySide(std::span<const Network> networks, std::uint64_t (Network::*count)() const) {
  Places places;
  for (const Network& network : networks) {
    const std::uint64_t more = (network.*count)();
    places.of.push_back(numbersFrom(places.count, more));
    places.count += more;
  }
  return places;
}

Places byIndex(std::span<const Network> networks) {
  Places places;
  for (const Network& network : networks) {
    places.of.push_back(numbersFrom(0, network.countVertices()));
    places.count = std::max(places.count, network.countVertices());
  }
  return places;
}

// A vertex without a name is like no other.
Places byName(std::span<const Network> networks) {
  std::deque<std::vector<std::string>> kept;  // The table's names.
  internal::NameTable table;
  Places places;
  for (const Network& network : networks) {
    const auto column = network.vertexColumn("Name");
    const std::vector<std::string>& names = kept.emplace_back(network.names());
    std::vector<std::uint64_t>& of = places.of.emplace_back(names.size());
    for (std::uint64_t v = 0; v < names.size(); ++v) {
      const bool named = !column || !internal::valueOrNull(*column, v).isNull();
      of[v] = named ? table.insert(names[v], places.count) : places.count;
      if (of[v] == places.count) ++places.count;
    }
  }
  return places;
}

Places vertexPlaces(std::span<const Network> networks, UnionBy by) {
  switch (by) {
    case UnionBy::kIndex:
      return byIndex(networks);
    case UnionBy::kName:
      return byName(networks);
    case UnionBy::kNothing:
      break;
  }
  return sideBySide(networks, &Network::countVertices);
}

// Whether values of one column can stand in the other and stay what they are.
bool areAlike(const PropertyColumn& a, const PropertyColumn& b) {
  if (a.kind() != b.kind()) return false;
  switch (a.kind()) {
    case PropertyColumn::Kind::kGeneric:
      return true;
    case PropertyColumn::Kind::kNumber:
      return static_cast<const VEQNumberArray&>(a).elementType() ==
             static_cast<const VEQNumberArray&>(b).elementType();
    case PropertyColumn::Kind::kVector2d:
      return static_cast<const VEQVector2dArray&>(a).precision() ==
             static_cast<const VEQVector2dArray&>(b).precision();
    case PropertyColumn::Kind::kVector3d:
      return static_cast<const VEQVector3dArray&>(a).precision() ==
             static_cast<const VEQVector3dArray&>(b).precision();
  }
  return false;
}

// The columns of one key, null where a network has none.
using Columns = std::vector<const PropertyColumn*>;

// Of nothing that is set, of the kind of all columns or of one that holds any.
Shared<PropertyColumn> emptyColumn(const Columns& columns, std::uint64_t count) {
  const auto has = [](const PropertyColumn* column) { return column != nullptr; };
  const PropertyColumn& first = **std::find_if(columns.begin(), columns.end(), has);
  const bool alike = std::all_of(
      columns.begin(), columns.end(),
      [&first](const PropertyColumn* column) { return !column || areAlike(first, *column); });
  if (!alike) return GenericArray::nullFilled(count);
  Shared<PropertyColumn> column = first.subarrayWithIndices(VEQNumberArray::ofIndices({}));
  column->appendUnset(count);
  return column;
}

// The last networks first, so that the first one that has something decides.
Shared<PropertyColumn> unitedColumn(const Columns& columns, const Places& places) {
  Shared<PropertyColumn> united = emptyColumn(columns, places.count);
  for (std::size_t k = columns.size(); k-- > 0;) {
    if (!columns[k]) continue;
    const std::uint64_t count = std::min<std::uint64_t>(columns[k]->count(), places.of[k].size());
    for (std::uint64_t i = 0; i < count; ++i) {
      PropertyValue value = columns[k]->objectAtIndex(i);
      if (!value.isNull())
        united->replaceObjectAtIndex_withObject(places.of[k][i], std::move(value));
    }
  }
  return united;
}

template <class TableOf>
PropertyTable unitedColumns(std::span<const Network> networks, const Places& places,
                            TableOf tableOf, Pace& pace) {
  PropertyTable result;
  for (const Network& network : networks) {
    for (const auto& entry : tableOf(network)) {
      const std::string& key = entry.first;
      if (result.contains(key)) continue;
      pace.reach(0);
      Columns columns;
      for (const Network& other : networks) {
        const auto* column = tableOf(other).find(key);
        columns.push_back(column ? column->get() : nullptr);
      }
      result.set(key, unitedColumn(columns, places));
    }
  }
  return result;
}

template <class WeightsOf>
std::optional<Weights> unitedWeights(std::span<const Network> networks, const Places& places,
                                     WeightsOf weightsOf) {
  std::optional<Weights> result;
  for (std::size_t k = networks.size(); k-- > 0;) {
    const std::optional<HeldWeights>& weights = weightsOf(networks[k]);
    if (!weights) continue;
    if (!result) result.emplace(places.count, 1.0f);
    for (std::uint64_t i = 0; i < weights->size(); ++i) (*result)[places.of[k][i]] = (*weights)[i];
  }
  return result;
}

std::optional<Error> directionError(std::span<const Network> networks) {
  if (networks.empty()) return argumentError("no networks");
  for (std::size_t k = 1; k < networks.size(); ++k) {
    if (networks[k].isDirected() == networks[0].isDirected()) continue;
    return argumentError("network " + std::to_string(k) +
                         (networks[k].isDirected() ? " is directed, network 0 is not"
                                                   : " is not directed, network 0 is"));
  }
  return std::nullopt;
}

internal::OwnEnds unitedEnds(std::span<const Network> networks, const Places& vertices,
                             const Places& edges) {
  internal::OwnEnds ends;
  ends.from.resize(edges.count);
  ends.to.resize(edges.count);
  for (std::size_t k = 0; k < networks.size(); ++k) {
    coreOf(networks[k]).store.visit([&](const auto& topology) {
      for (std::uint64_t e = 0; e < edges.of[k].size(); ++e) {
        ends.from[edges.of[k][e]] = vertices.of[k][topology.from[e]];
        ends.to[edges.of[k][e]] = vertices.of[k][topology.to[e]];
      }
    });
  }
  return ends;
}

UnitedNetwork unitedNetwork(std::span<const Network> networks, const UnionOptions& options) {
  Places vertices = vertexPlaces(networks, options.by);
  const Places edges = sideBySide(networks, &Network::countEdges);
  Pace pace(options.progress, internal::kBuildingPasses * edges.count);
  pace.reach(0);
  internal::NetworkDraft draft;
  draft.columnsAreReady = true;
  draft.properties.vertices = unitedColumns(
      networks, vertices,
      [](const Network& n) -> const PropertyTable& { return coreOf(n).properties->vertices; },
      pace);
  draft.properties.edges = unitedColumns(
      networks, edges,
      [](const Network& n) -> const PropertyTable& { return coreOf(n).properties->edges; }, pace);
  internal::OwnEnds ends = unitedEnds(networks, vertices, edges);
  draft.vertexCount = vertices.count;
  draft.from = internal::IndexList(std::move(ends.from));
  draft.to = internal::IndexList(std::move(ends.to));
  draft.directed = networks[0].isDirected();
  draft.verticesWeights =
      unitedWeights(networks, vertices, [](const Network& n) -> const std::optional<HeldWeights>& {
        return coreOf(n).verticesWeights;
      });
  draft.edgesWeights = unitedWeights(
      networks, edges,
      [](const Network& n) -> const std::optional<HeldWeights>& { return coreOf(n).edgesWeights; });
  pace.reach(0);
  Network united(CoreAccess::buildShared(std::move(draft)));
  std::vector<std::uint64_t> firstEdges;
  std::uint64_t first = 0;
  for (const Network& network : networks) {
    firstEdges.push_back(std::exchange(first, first + network.countEdges()));
  }
  return {std::move(united), std::move(vertices.of), std::move(firstEdges)};
}

}  // namespace

Result<UnitedNetwork> Network::united(std::span<const Network> networks,
                                      const UnionOptions& options) {
  if (auto error = directionError(networks)) return *error;
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped(
      [&]() -> Result<UnitedNetwork> { return unitedNetwork(networks, options); });
}

}  // namespace veq
