// Building networks from indices and from names.

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/internal/name_table.hpp"
#include "veq/base/internal/own_parallelism.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/network.hpp"

namespace veq {

using internal::argumentError;
using internal::IndexList;
using internal::Item;
using internal::NetworkDraft;
using internal::Pace;
using internal::Weights;

namespace {

std::uint64_t verticesOf(const IndexList& from, const IndexList& to) {
  // What passed for indices is small enough to be counted up to.
  return from.all().empty() ? 0 : *internal::countVertices(0, from.all(), to.all());
}

std::optional<Error> exactWeightsError(const NumberSpan& weights, const PropertyTable& columns,
                                       const BuildOptions& options) {
  if (!options.keepExactWeights || !weights.given() || !columns.contains("Weight")) {
    return std::nullopt;
  }
  return argumentError("column Weight: given, and to be made of the weights");
}

std::optional<Error> optionsError(const BuildOptions& options, std::uint64_t n, std::uint64_t m) {
  if (auto error = internal::weightsError(options.vertexWeights, n, Item::kVertex)) return error;
  if (auto error = internal::weightsError(options.edgeWeights, m, Item::kEdge)) return error;
  if (auto error = internal::columnsError(options.vertexColumns, n, Item::kVertex)) return error;
  if (auto error = internal::columnsError(options.edgeColumns, m, Item::kEdge)) return error;
  if (auto error = exactWeightsError(options.vertexWeights, options.vertexColumns, options)) {
    return error;
  }
  return exactWeightsError(options.edgeWeights, options.edgeColumns, options);
}

Shared<PropertyColumn> exactColumn(const NumberSpan& weights) {
  internal::RawVector<double> exact(weights.count());
  weights.visit([&exact](auto values) { std::copy(values.begin(), values.end(), exact.begin()); });
  return std::make_shared<VEQNumberArray>(std::move(exact));
}

// Puts weights into a draft, and what is to be told of them into the notes.
void takeWeights(const NumberSpan& weights, bool keepExact, std::optional<Weights>& to,
                 PropertyTable& columns, std::uint64_t& rounded,
                 std::optional<std::uint64_t>& firstRounded, Pace& pace) {
  if (!weights.given()) return;
  internal::RoundedWeights floats = internal::roundedWeights(weights, &pace);
  to = std::move(floats.values);
  rounded = floats.rounded;
  firstRounded = floats.firstRounded;
  if (keepExact) columns.set("Weight", exactColumn(weights));
}

Result<Network> built(const IndexSpan& sources, const IndexSpan& targets,
                      const BuildOptions& options, Pace& pace) {
  pace.reach(0);
  if (auto error = internal::endsError(sources, targets, options.vertices, &pace)) return *error;
  NetworkDraft draft;
  draft.pace = &pace;
  draft.from = internal::listOf(sources, &pace);
  draft.to = internal::listOf(targets, &pace);
  draft.vertexCount = options.vertices ? *options.vertices : verticesOf(draft.from, draft.to);
  draft.directed = options.directed;
  if (auto error = optionsError(options, draft.vertexCount, sources.count())) return *error;

  BuildNotes notes;
  draft.properties.vertices = options.vertexColumns;
  draft.properties.edges = options.edgeColumns;
  takeWeights(options.vertexWeights, options.keepExactWeights, draft.verticesWeights,
              draft.properties.vertices, notes.roundedVertexWeights, notes.firstRoundedVertexWeight,
              pace);
  takeWeights(options.edgeWeights, options.keepExactWeights, draft.edgesWeights,
              draft.properties.edges, notes.roundedEdgeWeights, notes.firstRoundedEdgeWeight, pace);
  Network network = internal::networkOf(std::move(draft));
  if (options.notes) *options.notes = notes;
  return network;
}

std::string inQuotes(std::string_view name) { return "\"" + std::string(name) + "\""; }

// The ends as indices, and the column of names.
struct NamedEnds {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  std::vector<PropertyValue> names;
};

// Looking up two names takes as long as so many passes over an edge.
constexpr std::uint64_t kNamePasses = 20;

// Calls f(i) for names or edges by name, of which there are so many.
template <class F>
void forEachNamed(std::uint64_t count, Pace& pace, F f) {
  constexpr std::uint64_t kTile = std::uint64_t{1} << 14;
  for (std::uint64_t begin = 0; begin < count; begin += kTile) {
    const std::uint64_t end = std::min(count, begin + kTile);
    for (std::uint64_t i = begin; i < end; ++i) f(i);
    pace.advance(kNamePasses * (end - begin));
  }
}

NamedEnds numbered(std::span<const std::string> sources, std::span<const std::string> targets,
                   Pace& pace) {
  NamedEnds ends;
  ends.from.reserve(sources.size());
  ends.to.reserve(targets.size());
  internal::NameTable table;
  const auto indexOf = [&](const std::string& name) {
    const std::uint64_t index = table.insert(name, ends.names.size());
    if (index == ends.names.size()) ends.names.emplace_back(name);
    return index;
  };
  forEachNamed(sources.size(), pace, [&](std::uint64_t e) {
    ends.from.push_back(indexOf(sources[e]));
    ends.to.push_back(indexOf(targets[e]));
  });
  return ends;
}

// The name that stands in the list for the second time first, and how many more do.
std::optional<Error> fillTable(internal::NameTable& table, std::span<const std::string> names,
                               Pace& pace) {
  std::string text;
  std::uint64_t again = 0;
  forEachNamed(names.size(), pace, [&](std::uint64_t i) {
    const std::uint64_t first = table.insert(names[i], i);
    if (first == i || again++ != 0) return;
    text = "names " + std::to_string(first) + " and " + std::to_string(i) + " are both " +
           inQuotes(names[i]);
  });
  if (again == 0) return std::nullopt;
  if (again > 1) text += ", and " + std::to_string(again - 1) + " more";
  return argumentError(std::move(text));
}

Result<NamedEnds> lookedUp(std::span<const std::string> sources,
                           std::span<const std::string> targets, std::span<const std::string> names,
                           Pace& pace) {
  internal::NameTable table;
  if (auto error = fillTable(table, names, pace)) return *error;
  NamedEnds ends;
  ends.from.reserve(sources.size());
  ends.to.reserve(targets.size());
  std::string text;
  std::uint64_t unknown = 0;
  forEachNamed(sources.size(), pace, [&](std::uint64_t e) {
    const auto from = table.find(sources[e]);
    const auto to = table.find(targets[e]);
    if ((!from || !to) && unknown++ == 0) {
      text = "edge " + std::to_string(e) + ": " + (from ? "target " : "source ") +
             inQuotes(from ? targets[e] : sources[e]) + " is not among the names";
    }
    ends.from.push_back(from.value_or(0));
    ends.to.push_back(to.value_or(0));
  });
  if (unknown > 1) text += ", and " + std::to_string(unknown - 1) + " more";
  if (unknown > 0) return argumentError(std::move(text));
  ends.names.reserve(names.size());
  internal::forEachTile(names.size(), &pace, [&](std::uint64_t begin, std::uint64_t end) {
    for (std::uint64_t i = begin; i < end; ++i) ends.names.emplace_back(names[i]);
  });
  return ends;
}

Result<Network> namedNetwork(NamedEnds ends, BuildOptions options, Pace& pace) {
  const std::uint64_t n = ends.names.size();
  if (options.vertices && *options.vertices != n) {
    return argumentError(internal::counted(*options.vertices, Item::kVertex) + " for " +
                         std::to_string(n) + (n == 1 ? " name" : " names"));
  }
  if (options.vertexColumns.contains("Name")) {
    return argumentError("column Name: given, and to be made of the names");
  }
  options.vertices = n;
  options.vertexColumns.set("Name", std::make_shared<GenericArray>(std::move(ends.names)));
  return built(ends.from, ends.to, options, pace);
}

std::optional<Error> lengthsError(std::span<const std::string> sources,
                                  std::span<const std::string> targets) {
  if (sources.size() == targets.size()) return std::nullopt;
  return argumentError(std::to_string(sources.size()) + " sources for " +
                       std::to_string(targets.size()) + " targets");
}

}  // namespace

Result<Network> Network::build(const IndexSpan& sources, const IndexSpan& targets,
                               const BuildOptions& options) {
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&] {
    Pace pace(options.progress, internal::kBuildingPasses * sources.count());
    return built(sources, targets, options, pace);
  });
}

Result<Network> Network::fromNames(std::span<const std::string> sources,
                                   std::span<const std::string> targets,
                                   const BuildOptions& options) {
  if (auto error = lengthsError(sources, targets)) return *error;
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&] {
    Pace pace(options.progress, (kNamePasses + internal::kBuildingPasses) * sources.size());
    pace.reach(0);
    return namedNetwork(numbered(sources, targets, pace), options, pace);
  });
}

Result<Network> Network::fromNames(std::span<const std::string> sources,
                                   std::span<const std::string> targets,
                                   std::span<const std::string> allNames,
                                   const BuildOptions& options) {
  if (auto error = lengthsError(sources, targets)) return *error;
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<Network> {
    const std::uint64_t named = sources.size() + allNames.size();
    Pace pace(options.progress, kNamePasses * named + internal::kBuildingPasses * sources.size());
    pace.reach(0);
    Result<NamedEnds> ends = lookedUp(sources, targets, allNames, pace);
    if (!ends) return ends.error();
    return namedNetwork(std::move(ends.value()), options, pace);
  });
}

}  // namespace veq
