#include "veq/formats/internal/network_archive.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "veq/base/result.hpp"
#include "veq/formats/internal/archive_keys.hpp"
#include "veq/formats/internal/property_cbor.hpp"

namespace veq::internal {
namespace {

constexpr std::uint64_t kNewestVersion = 2;

[[noreturn]] void fail(std::string text) { throw Error(ErrorKind::kFormat, std::move(text)); }

[[noreturn]] void failEntry(std::string_view key) {
  fail("the archive's entry \"" + std::string(key) + "\" is missing or not what it should be");
}

/// What the archive has under the key, which it must have.
template <class T>
T required(std::optional<T> decoded, std::string_view key) {
  if (!decoded) failEntry(key);
  return std::move(*decoded);
}

Owned<VEQNumberArray> numbers(VEQKeyedUnarchiver& archive, std::string_view key, ElementType type) {
  Owned<VEQNumberArray> array = archive.decodeNumberArray(key);
  if (!array || array->elementType() != type) failEntry(key);
  return array;
}

Weights weights(VEQKeyedUnarchiver& archive, std::string_view key) {
  const Owned<VEQNumberArray> array = numbers(archive, key, ElementType::kFloat);
  return std::move(*weightsOf(array.get()));
}

void requireAsMany(const Weights& weights, std::uint64_t count, std::string_view whose) {
  if (weights.size() == count) return;
  fail("the archive has " + std::to_string(weights.size()) + " weights for " +
       std::to_string(count) + " " + std::string(whose));
}

void requireSound(const NetworkDraft& draft) {
  if (draft.from.all().size() != draft.to.all().size()) {
    fail("the archive has " + std::to_string(draft.from.all().size()) + " sources of edges and " +
         std::to_string(draft.to.all().size()) + " targets");
  }
  for (const IndexList* ends : {&draft.from, &draft.to}) {
    for (const std::uint64_t end : ends->all()) {
      if (end < draft.vertexCount) continue;
      fail("an edge of the archive ends at vertex " + std::to_string(end) + ", and there are " +
           std::to_string(draft.vertexCount));
    }
  }
  if (draft.verticesWeights) requireAsMany(*draft.verticesWeights, draft.vertexCount, "vertices");
  if (draft.edgesWeights) requireAsMany(*draft.edgesWeights, draft.from.all().size(), "edges");
}

NetworkDraft draftOfVersion2(VEQKeyedUnarchiver& archive, ArchivedEnds& ends) {
  using namespace archive2;
  const auto version = required(archive.decodeCount(kVersion), kVersion);
  if (version != kNewestVersion) {
    fail("an archive of version " + std::to_string(version) + ", where 2 is the newest known");
  }
  NetworkDraft draft;
  draft.directed = required(archive.decodeBool(kDirected), kDirected);
  draft.vertexCount = required(archive.decodeCount(kVertices), kVertices);
  ends.from = numbers(archive, kFrom, ElementType::kUnsignedInteger);
  ends.to = numbers(archive, kTo, ElementType::kUnsignedInteger);
  draft.from = IndexList(*ends.from);
  draft.to = IndexList(*ends.to);
  if (archive.has(kVertexWeights)) draft.verticesWeights = weights(archive, kVertexWeights);
  if (archive.has(kEdgeWeights)) draft.edgesWeights = weights(archive, kEdgeWeights);
  draft.properties = {required(archive.decodePropertyTable(kVertexProperties), kVertexProperties),
                      required(archive.decodePropertyTable(kEdgeProperties), kEdgeProperties)};
  // Also those under keys that setters keep for weights and ends.
  draft.columnsAreReady = true;
  requireSound(draft);
  return draft;
}

NetworkDraft draftOfVersion1(VEQKeyedUnarchiver& archive, ArchivedEnds& ends) {
  using namespace archive1;
  NetworkDraft draft;
  draft.directed = required(archive.decodeBool(kDirected), kDirected);
  const bool edgeWeighted = required(archive.decodeBool(kEdgeWeighted), kEdgeWeighted);
  const bool vertexWeighted = required(archive.decodeBool(kVertexWeighted), kVertexWeighted);
  draft.properties = {
      required(archive.decodePropertyTable(kVerticesProperties), kVerticesProperties),
      required(archive.decodePropertyTable(kEdgesProperties), kEdgesProperties)};
  ends.from = archive.decodeNumberArray(kFromList);
  ends.to = archive.decodeNumberArray(kToList);
  if (!ends.from) failEntry(kFromList);
  if (!ends.to) failEntry(kToList);
  draft.from = IndexList(*ends.from);
  draft.to = IndexList(*ends.to);
  const auto count = countVertices(0, draft.from.all(), draft.to.all());
  if (!count) fail("an index of the archive cannot be");
  draft.vertexCount = *count;
  // Archives have these whether the network is weighted or not, one for each of all vertices.
  if (const auto each = archive.decodeNumberArray(kVerticesWeights)) {
    const bool noEdges = draft.from.all().empty();
    if (each->count() > *count || (noEdges && each->count() == 0)) {
      draft.vertexCount = each->count();
    }
  }
  if (vertexWeighted) draft.verticesWeights = weights(archive, kVerticesWeights);
  if (edgeWeighted) draft.edgesWeights = weights(archive, kEdgesWeights);
  requireSound(draft);
  return draft;
}

void writeWeights(VEQKeyedArchiver& out, const std::optional<HeldWeights>& weights,
                  std::uint64_t count, std::string_view key) {
  if (!weights) return;
  out.encodeNumberArray(VEQNumberArray(Weights(weights->begin(), weights->begin() + count)), key);
}

template <class Index>
void writeEnds(VEQKeyedArchiver& out, const Index* ends, std::uint64_t count,
               std::string_view key) {
  out.encodeNumberArray(VEQNumberArray(RawVector<std::uint64_t>(ends, ends + count)), key);
}

}  // namespace

void writeArchive(const NetworkCore& core, VEQKeyedArchiver& out) {
  using namespace archive2;
  const std::uint64_t vertices = core.store.vertexCount();
  const std::uint64_t edges = core.store.edgeCount();
  requireArchivable(core.properties->vertices);
  requireArchivable(core.properties->edges);
  out.encodeCount(kNewestVersion, kVersion);
  out.encodeBool(core.store.directed(), kDirected);
  out.encodeCount(vertices, kVertices);
  core.store.visit([&](const auto& topology) {
    writeEnds(out, topology.from.data(), edges, kFrom);
    writeEnds(out, topology.to.data(), edges, kTo);
  });
  writeWeights(out, core.verticesWeights, vertices, kVertexWeights);
  writeWeights(out, core.edgesWeights, edges, kEdgeWeights);
  out.encodePropertyTable(core.properties->vertices, kVertexProperties);
  out.encodePropertyTable(core.properties->edges, kEdgeProperties);
}

bool hasVersion(const VEQKeyedUnarchiver& archive) { return archive.has(archive2::kVersion); }

NetworkDraft draftOfArchive(VEQKeyedUnarchiver& archive, ArchivedEnds& ends) {
  if (!archive.isValid()) fail("not a whole archive");
  return hasVersion(archive) ? draftOfVersion2(archive, ends) : draftOfVersion1(archive, ends);
}

}  // namespace veq::internal
