// Networks to and from keyed archives as they are published.

#include <optional>
#include <utility>

#include "veq/formats/coder.hpp"
#include "veq/formats/internal/archive_keys.hpp"
#include "veq/formats/internal/property_cbor.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::CoreAccess;
using internal::IndexList;
using internal::NetworkDraft;
using internal::RawVector;
using internal::Weights;

namespace {

// Without weights there are as many zeros.
VEQNumberArray weightsOf(const std::optional<internal::HeldWeights>& weights, std::uint64_t count) {
  if (!weights) return VEQNumberArray(Weights(count, 0.0F));
  return VEQNumberArray(Weights(weights->begin(), weights->begin() + count));
}

template <class Index>
VEQNumberArray indicesOf(const Index* indices, std::uint64_t count) {
  return VEQNumberArray(RawVector<std::uint64_t>(indices, indices + count));
}

// The arrays that a draft borrows.
struct EndArrays {
  Owned<VEQNumberArray> from;
  Owned<VEQNumberArray> to;
};

bool decodeWeights(VEQCoder& coder, std::string_view key, std::optional<Weights>& weights) {
  const Owned<VEQNumberArray> decoded = coder.decodeNumberArray(key);
  weights = internal::weightsOf(decoded.get());
  return weights.has_value();
}

std::optional<NetworkDraft> decodeDraft(VEQCoder& coder, EndArrays& ends) {
  using namespace internal::archive1;
  const std::optional<bool> directed = coder.decodeBool(kDirected);
  const std::optional<bool> edgeWeighted = coder.decodeBool(kEdgeWeighted);
  const std::optional<bool> vertexWeighted = coder.decodeBool(kVertexWeighted);
  if (!directed || !edgeWeighted || !vertexWeighted) return std::nullopt;
  std::optional<PropertyTable> edges = coder.decodePropertyTable(kEdgesProperties);
  std::optional<PropertyTable> vertices = coder.decodePropertyTable(kVerticesProperties);
  if (!edges || !vertices) return std::nullopt;
  ends.from = coder.decodeNumberArray(kFromList);
  ends.to = coder.decodeNumberArray(kToList);
  if (!ends.from || !ends.to || ends.from->count() != ends.to->count()) return std::nullopt;

  NetworkDraft draft;
  draft.directed = *directed;
  // Each flag decides about the other kind of weights. Every archive is read in this way, so that
  // weights of both kinds or of neither survive, and those of one kind change sides.
  if (*edgeWeighted && !decodeWeights(coder, kVerticesWeights, draft.verticesWeights)) {
    return std::nullopt;
  }
  if (*vertexWeighted && !decodeWeights(coder, kEdgesWeights, draft.edgesWeights)) {
    return std::nullopt;
  }
  draft.from = IndexList(*ends.from);
  draft.to = IndexList(*ends.to);
  const auto count = internal::countVertices(0, draft.from.all(), draft.to.all());
  if (!count) return std::nullopt;
  draft.vertexCount = *count;
  draft.properties = {std::move(*vertices), std::move(*edges)};
  return draft;
}

}  // namespace

void VEQNetwork::encodeWithCoder(VEQCoder& coder) const {
  using namespace internal::archive1;
  internal::requireArchivable(core_->properties->edges);
  internal::requireArchivable(core_->properties->vertices);
  coder.encodeBool(isDirected(), kDirected);
  coder.encodeBool(isEdgeWeighted(), kEdgeWeighted);
  coder.encodeBool(isVertexWeighted(), kVertexWeighted);
  coder.encodePropertyTable(core_->properties->edges, kEdgesProperties);
  coder.encodePropertyTable(core_->properties->vertices, kVerticesProperties);
  core_->store.visit([&](const auto& topology) {
    coder.encodeNumberArray(indicesOf(topology.from.data(), countEdges()), kFromList);
    coder.encodeNumberArray(indicesOf(topology.to.data(), countEdges()), kToList);
  });
  coder.encodeNumberArray(weightsOf(core_->verticesWeights, countVertices()), kVerticesWeights);
  coder.encodeNumberArray(weightsOf(core_->edgesWeights, countEdges()), kEdgesWeights);
}

Owned<VEQNetwork> VEQNetwork::initWithCoder(VEQCoder& coder) {
  EndArrays ends;
  return CoreAccess::make([&] { return decodeDraft(coder, ends); });
}

Shared<VEQNetwork> VEQNetwork::networkWithCoder(VEQCoder& coder) {
  return internal::sharedOrNull(initWithCoder(coder));
}

}  // namespace veq
