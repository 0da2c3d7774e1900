// What a network answers about its parts, as values of their own.

#include <algorithm>
#include <utility>

#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/internal/sides.hpp"
#include "veq/natural/network.hpp"
#include "veq/network/internal/degree_sums.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::argumentError;
using internal::CoreAccess;
using internal::Item;
using internal::NetworkCore;
using Side = AdjacencyStore::Side;

namespace {

using List = std::vector<std::uint64_t> (AdjacencyStore::*)(std::uint64_t, Side) const;

std::vector<std::uint64_t> listsOf(const NetworkCore& core, std::uint64_t vertex,
                                   Direction direction, List list) {
  internal::requireVertex(vertex, core.store.vertexCount());
  std::vector<std::uint64_t> result;
  for (const Side side : internal::sidesOf(core.store, direction)) {
    std::vector<std::uint64_t> part = (core.store.*list)(vertex, side);
    if (result.empty()) {
      result = std::move(part);
    } else {
      result.insert(result.end(), part.begin(), part.end());
    }
  }
  return result;
}

// Calls f(edge) for each entry of the shorter of the two lists in which such edges stand, until it
// answers true.
template <class F>
void untilAmongEdges(const NetworkCore& core, std::uint64_t from, std::uint64_t to, F f) {
  internal::requireVertex(from, core.store.vertexCount());
  internal::requireVertex(to, core.store.vertexCount());
  const bool turned = core.store.count(to, Side::kIn) < core.store.count(from, Side::kOut);
  const std::uint64_t at = turned ? to : from;
  const std::uint64_t wanted = turned ? from : to;
  core.store.visit([&](const auto& topology) {
    const auto& lists = core.store.lists(topology, turned ? Side::kIn : Side::kOut);
    const auto neighbours = lists.neighbours(at);
    const auto edges = lists.edges(at);
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      if (neighbours[i] == wanted && f(std::uint64_t{edges[i]})) return;
    }
  });
}

std::vector<float> weightValues(const std::optional<internal::HeldWeights>& weights,
                                std::uint64_t count) {
  if (!weights) return std::vector<float>(count, 1.0f);
  return {weights->begin(), weights->end()};
}

Result<std::uint64_t> setWeights(NetworkCore& core, std::optional<internal::HeldWeights>& weights,
                                 std::uint64_t count, const NumberSpan& values, Item item) {
  if (!core.editable) return argumentError("the weights of this network are fixed");
  if (!values.given()) return argumentError("no weights for " + internal::counted(count, item));
  if (auto error = internal::weightsError(values, count, item)) return *error;
  internal::RoundedWeights rounded = internal::roundedWeights(values);
  weights.emplace(std::move(rounded.values));
  return rounded.rounded;
}

Shared<const PropertyColumn> columnAt(const PropertyTable& table, std::string_view key) {
  const auto* const column = table.find(key);
  return column ? *column : nullptr;
}

Error noColumn(std::string_view key) { return argumentError("no column " + std::string(key)); }

Result<std::vector<double>> numbersOf(const PropertyTable& table, std::string_view key,
                                      std::uint64_t count, const char* item) {
  const auto column = columnAt(table, key);
  if (!column) return noColumn(key);
  std::vector<double> numbers(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    const PropertyValue value = internal::valueOrNull(*column, i);
    const Number* const number = value.number();
    if (!number) {
      return argumentError("column " + std::string(key) + ": " + item + " " + std::to_string(i) +
                           " has no number");
    }
    numbers[i] = number->as<double>();
  }
  return numbers;
}

std::string textOf(const PropertyValue& value) {
  return value.isNull() ? std::string() : value.text();
}

Result<std::vector<std::string>> textsOf(const PropertyTable& table, std::string_view key,
                                         std::uint64_t count) {
  const auto column = columnAt(table, key);
  if (!column) return noColumn(key);
  std::vector<std::string> texts;
  texts.reserve(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    texts.push_back(textOf(internal::valueOrNull(*column, i)));
  }
  return texts;
}

Outcome setColumn(PropertyTable& table, std::string_view key, Shared<PropertyColumn> column,
                  std::uint64_t count, Item item) {
  if (column || internal::isReservedKey(key)) {
    if (auto error = internal::columnError(key, column.get(), count, item)) return *error;
  }
  internal::installColumn(table, key, std::move(column));
  return std::monostate();
}

}  // namespace

std::pair<std::uint64_t, std::uint64_t> Network::endsOf(std::uint64_t edge) const {
  internal::requireEdge(edge, countEdges());
  const AdjacencyStore& store = CoreAccess::of(*published_).store;
  return {store.from(edge), store.to(edge)};
}

std::vector<std::uint64_t> Network::sources() const {
  return CoreAccess::of(*published_).store.visit([m = countEdges()](const auto& topology) {
    return std::vector<std::uint64_t>(topology.from.data(), topology.from.data() + m);
  });
}

std::vector<std::uint64_t> Network::targets() const {
  return CoreAccess::of(*published_).store.visit([m = countEdges()](const auto& topology) {
    return std::vector<std::uint64_t>(topology.to.data(), topology.to.data() + m);
  });
}

std::vector<std::uint64_t> Network::neighbours(std::uint64_t vertex, Direction direction) const {
  return listsOf(CoreAccess::of(*published_), vertex, direction, &AdjacencyStore::neighbours);
}

std::vector<std::uint64_t> Network::edgesOf(std::uint64_t vertex, Direction direction) const {
  return listsOf(CoreAccess::of(*published_), vertex, direction, &AdjacencyStore::edges);
}

bool Network::hasEdge(std::uint64_t from, std::uint64_t to) const {
  bool found = false;
  untilAmongEdges(CoreAccess::of(*published_), from, to,
                  [&found](std::uint64_t) { return found = true; });
  return found;
}

std::vector<std::uint64_t> Network::edgesBetween(std::uint64_t from, std::uint64_t to) const {
  std::vector<std::uint64_t> edges;
  untilAmongEdges(CoreAccess::of(*published_), from, to, [&edges](std::uint64_t edge) {
    // The two entries of an undirected loop are neighbours.
    if (edges.empty() || edges.back() != edge) edges.push_back(edge);
    return false;
  });
  return edges;
}

std::uint64_t Network::degree(std::uint64_t vertex, Direction direction) const {
  const NetworkCore& core = CoreAccess::of(*published_);
  internal::requireVertex(vertex, core.store.vertexCount());
  std::uint64_t sum = 0;
  for (const Side side : internal::sidesOf(core.store, direction))
    sum += core.store.count(vertex, side);
  return sum;
}

double Network::strength(std::uint64_t vertex, Direction direction) const {
  const NetworkCore& core = CoreAccess::of(*published_);
  internal::requireVertex(vertex, core.store.vertexCount());
  double sum = 0.0;
  core.store.visit([&](const auto& topology) {
    for (const Side side : internal::sidesOf(core.store, direction)) {
      sum = internal::withWeights(sum, core.store.lists(topology, side).edges(vertex),
                                  core.edgesWeights);
    }
  });
  return sum;
}

std::vector<std::uint64_t> Network::degrees(Direction direction) const {
  const NetworkCore& core = CoreAccess::of(*published_);
  std::vector<std::uint64_t> degrees(core.store.vertexCount());
  for (const Side side : internal::sidesOf(core.store, direction)) {
    internal::forEachDegree(core, side,
                            [&](std::uint64_t v, std::uint64_t count) { degrees[v] += count; });
  }
  return degrees;
}

std::vector<double> Network::strengths(Direction direction) const {
  const NetworkCore& core = CoreAccess::of(*published_);
  std::vector<double> sums(core.store.vertexCount());
  for (const Side side : internal::sidesOf(core.store, direction))
    internal::addStrengths(core, side, sums);
  return sums;
}

std::vector<float> Network::vertexWeights() const {
  return weightValues(CoreAccess::of(*published_).verticesWeights, countVertices());
}

std::vector<float> Network::edgeWeights() const {
  return weightValues(CoreAccess::of(*published_).edgesWeights, countEdges());
}

Result<std::uint64_t> Network::setVertexWeights(const NumberSpan& weights) {
  NetworkCore& core = CoreAccess::of(*published_);
  return setWeights(core, core.verticesWeights, countVertices(), weights, Item::kVertex);
}

Result<std::uint64_t> Network::setEdgeWeights(const NumberSpan& weights) {
  NetworkCore& core = CoreAccess::of(*published_);
  ++core.weightsRevision;
  return setWeights(core, core.edgesWeights, countEdges(), weights, Item::kEdge);
}

std::vector<std::string> Network::names() const {
  const PropertyTable& columns = CoreAccess::of(*published_).properties->vertices;
  if (columns.contains("Name")) return textsOf(columns, "Name", countVertices()).value();
  std::vector<std::string> names;
  names.reserve(countVertices());
  for (std::uint64_t v = 0; v < countVertices(); ++v) names.push_back(std::to_string(v));
  return names;
}

std::optional<std::uint64_t> Network::vertexNamed(std::string_view name) const {
  const Shared<VEQVertex> vertex = published_->vertexWithName(name);
  return vertex ? std::optional(vertex->identification()) : std::nullopt;
}

std::vector<std::string> Network::vertexKeys() const {
  return published_->keysForPropertiesOfVertices();
}

std::vector<std::string> Network::edgeKeys() const {
  return published_->keysForPropertiesOfEdges();
}

Shared<const PropertyColumn> Network::vertexColumn(std::string_view key) const {
  return columnAt(CoreAccess::of(*published_).properties->vertices, key);
}

Shared<const PropertyColumn> Network::edgeColumn(std::string_view key) const {
  return columnAt(CoreAccess::of(*published_).properties->edges, key);
}

Result<std::vector<double>> Network::vertexNumbers(std::string_view key) const {
  return numbersOf(CoreAccess::of(*published_).properties->vertices, key, countVertices(),
                   "vertex");
}

Result<std::vector<double>> Network::edgeNumbers(std::string_view key) const {
  return numbersOf(CoreAccess::of(*published_).properties->edges, key, countEdges(), "edge");
}

Result<std::vector<std::string>> Network::vertexTexts(std::string_view key) const {
  return textsOf(CoreAccess::of(*published_).properties->vertices, key, countVertices());
}

Result<std::vector<std::string>> Network::edgeTexts(std::string_view key) const {
  return textsOf(CoreAccess::of(*published_).properties->edges, key, countEdges());
}

Outcome Network::setVertexColumn(std::string_view key, Shared<PropertyColumn> column) {
  return setColumn(CoreAccess::of(*published_).properties->vertices, key, std::move(column),
                   countVertices(), Item::kVertex);
}

Outcome Network::setEdgeColumn(std::string_view key, Shared<PropertyColumn> column) {
  return setColumn(CoreAccess::of(*published_).properties->edges, key, std::move(column),
                   countEdges(), Item::kEdge);
}

}  // namespace veq
