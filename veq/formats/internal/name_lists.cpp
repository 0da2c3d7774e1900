#include "veq/formats/internal/name_lists.hpp"

#include <memory>
#include <stdexcept>
#include <utility>

#include "veq/base/internal/name_table.hpp"
#include "veq/formats/internal/distinct_ends.hpp"
#include "veq/numeric/generic_array.hpp"

namespace veq::internal {
namespace {

using Lines = std::vector<std::string_view>;
using Indices = RawVector<std::uint64_t>;

/// The pieces between line feeds, of which even an empty text has one.
Lines linesOf(std::string_view text) {
  Lines lines;
  for (;;) {
    const std::size_t end = text.find('\n');
    lines.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return lines;
    text.remove_prefix(end + 1);
  }
}

/// Of several vertices with one name the first has it.
NameTable tableOf(const Lines& names) {
  NameTable table;
  std::uint64_t index = 0;
  table.forEach(names, [&](const NameTable::Hashed& name) { table.insert(name, index++); });
  return table;
}

/// A name that no vertex has stands for the first vertex.
Indices indicesIn(const NameTable& table, const Lines& names) {
  Indices indices;
  indices.reserve(names.size());
  table.forEach(names, [&](const NameTable::Hashed& name) {
    indices.push_back(table.find(name).value_or(0));
  });
  return indices;
}

bool fit(const WeightArrays& weights, std::uint64_t vertices, std::uint64_t edges) {
  return (!weights.vertices || weights.vertices->count() == vertices) &&
         (!weights.edges || weights.edges->count() == edges);
}

NetworkDraft withWeights(NetworkDraft draft, const WeightArrays& weights) {
  draft.verticesWeights = weightsOf(weights.vertices);
  draft.edgesWeights = weightsOf(weights.edges);
  return draft;
}

NetworkDraft draftOfLinks(const Lines& names, const Lines& sources, const Lines& targets,
                          bool directed) {
  const NameTable table = tableOf(names);
  return draftOfNames(names, indicesIn(table, sources), indicesIn(table, targets), directed);
}

std::optional<NetworkDraft> readLinksOfDistinctNames(const Lines& sources, const Lines& targets,
                                                     bool directed, const WeightArrays& weights) {
  DistinctEnds ends;
  for (std::size_t i = 0; i < sources.size(); ++i) ends.add(sources[i], targets[i]);
  ends.finish();
  if (!fit(weights, ends.names().size(), sources.size())) return std::nullopt;
  return withWeights(draftOfNames(ends.names(), ends.takeFrom(), ends.takeTo(), directed), weights);
}

}  // namespace

NetworkDraft draftOfNames(const std::vector<std::string_view>& names, RawVector<std::uint64_t> from,
                          RawVector<std::uint64_t> to, bool directed) {
  NetworkDraft draft;
  draft.vertexCount = names.size();
  draft.from = std::move(from);
  draft.to = std::move(to);
  draft.directed = directed;
  draft.properties.vertices.set("Name", std::make_shared<GenericArray>(std::vector<PropertyValue>(
                                            names.begin(), names.end())));
  return draft;
}

std::optional<NetworkDraft> readEdgeNames(std::string_view vertices, std::string_view edges,
                                          bool directed, const WeightArrays& weights) {
  const Lines names = linesOf(vertices);
  const Lines lines = linesOf(edges);
  if (!fit(weights, names.size(), lines.size())) return std::nullopt;
  Lines sources(lines.size());
  Lines targets(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::size_t blank = lines[i].find(' ');
    if (blank == std::string_view::npos) {
      throw std::out_of_range("A line of edges needs two names with a blank between them.");
    }
    const std::string_view rest = lines[i].substr(blank + 1);
    sources[i] = lines[i].substr(0, blank);
    targets[i] = rest.substr(0, rest.find(' '));
  }
  return withWeights(draftOfLinks(names, sources, targets, directed), weights);
}

std::optional<NetworkDraft> readLinkNames(std::optional<std::string_view> vertices,
                                          std::string_view from, std::string_view to, bool directed,
                                          const WeightArrays& weights) {
  const Lines sources = linesOf(from);
  const Lines targets = linesOf(to);
  if (sources.size() != targets.size()) return std::nullopt;
  if (!vertices) return readLinksOfDistinctNames(sources, targets, directed, weights);

  const Lines names = linesOf(*vertices);
  if (!fit(weights, names.size(), sources.size())) return std::nullopt;
  return withWeights(draftOfLinks(names, sources, targets, directed), weights);
}

}  // namespace veq::internal
