#include "veq/formats/internal/network_archive.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "veq/base/result.hpp"
#include "veq/formats/internal/archive_keys.hpp"
#include "veq/formats/internal/cbor_reader.hpp"
#include "veq/formats/internal/property_cbor.hpp"

namespace veq::internal {
namespace {

constexpr std::uint64_t kNewestVersion = 2;

[[noreturn]] void fail(std::string text, std::string_view key) {
  throw ArchiveError(std::move(text), key);
}

[[noreturn]] void failEntry(std::string_view key) {
  fail("the archive's entry \"" + std::string(key) + "\" is missing or not what it should be", key);
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

void requireAsMany(const std::optional<Weights>& weights, std::uint64_t count,
                   std::string_view whose, std::string_view key) {
  if (!weights || weights->size() == count) return;
  fail("the archive has " + std::to_string(weights->size()) + " weights for " +
           std::to_string(count) + " " + std::string(whose),
       key);
}

struct KeyedEnds {
  const IndexList& ends;
  std::string_view key;
};

void requireSound(const KeyedEnds& from, const KeyedEnds& to, std::uint64_t vertices) {
  if (from.ends.all().size() != to.ends.all().size()) {
    fail("the archive has " + std::to_string(from.ends.all().size()) + " sources of edges and " +
             std::to_string(to.ends.all().size()) + " targets",
         to.key);
  }
  for (const KeyedEnds* side : {&from, &to}) {
    for (const std::uint64_t end : side->ends.all()) {
      if (end < vertices) continue;
      fail("an edge of the archive ends at vertex " + std::to_string(end) + ", and there are " +
               std::to_string(vertices),
           side->key);
    }
  }
}

NetworkDraft draftOfVersion2(VEQKeyedUnarchiver& archive, ArchivedEnds& ends) {
  using namespace archive2;
  const auto version = required(archive.decodeCount(kVersion), kVersion);
  if (version != kNewestVersion) {
    fail("an archive of version " + std::to_string(version) + ", where 2 is the newest known",
         kVersion);
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
  requireSound({draft.from, kFrom}, {draft.to, kTo}, draft.vertexCount);
  requireAsMany(draft.verticesWeights, draft.vertexCount, "vertices", kVertexWeights);
  requireAsMany(draft.edgesWeights, draft.from.all().size(), "edges", kEdgeWeights);
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
  if (!count) fail("an index of the archive cannot be", kFromList);
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
  requireSound({draft.from, kFromList}, {draft.to, kToList}, draft.vertexCount);
  requireAsMany(draft.verticesWeights, draft.vertexCount, "vertices", kVerticesWeights);
  requireAsMany(draft.edgesWeights, draft.from.all().size(), "edges", kEdgesWeights);
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
  if (!archive.isValid()) fail("not a whole archive", {});
  return hasVersion(archive) ? draftOfVersion2(archive, ends) : draftOfVersion1(archive, ends);
}

Place placeInArchive(std::string_view bytes, std::string_view key) {
  if (!key.empty()) {
    const std::size_t at = bytes.find(key);
    return {1, at == bytes.npos ? 1 : at + 1};
  }
  CborReader in(bytes);
  const auto head = in.readHead();
  if (head && head->major == CborMajor::kMap) {
    for (std::uint64_t i = 0; i < head->argument && in.readString() && in.skipItem(); ++i) {
    }
  }
  return {1, bytes.size() - in.rest().size() + 1};
}

}  // namespace veq::internal
