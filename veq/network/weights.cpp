// Weights of vertices and edges.

#include <algorithm>
#include <stdexcept>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::HeldWeights;
using internal::Weights;

namespace {

Shared<VEQNumberArray> weightValues(const std::optional<HeldWeights>& weights,
                                    std::uint64_t count) {
  if (weights) return VEQNumberArray::numberArrayWithFloatArray_count(weights->data(), count);
  return VEQNumberArray::numberArrayWithNumber_count(1.0f, count);
}

void setAll(std::optional<HeldWeights>& weights, std::uint64_t count, const VEQNumberArray& values,
            const char* tooShort) {
  if (values.count() < count) throw std::invalid_argument(tooShort);
  if (!weights) weights.emplace(Weights(count));
  values.getFloatValues_count(weights->own(), count);
}

// An edge index that is too large is told off in the words for vertices.
void setOne(std::optional<HeldWeights>& weights, std::uint64_t count, float weight,
            std::uint64_t index) {
  if (index >= count) throw std::invalid_argument("Index must be less than number of Vertices.");
  if (!weights) weights.emplace(count, 0.0F);
  weights->own()[index] = weight;
}

}  // namespace

Shared<VEQNumberArray> VEQNetwork::verticesWeightValues() const {
  return weightValues(core_->verticesWeights, countVertices());
}

Shared<VEQNumberArray> VEQNetwork::edgesWeightValues() const {
  return weightValues(core_->edgesWeights, countEdges());
}

void VEQNetwork::setVerticesWeightValues(const VEQNumberArray& weights) {
  if (!core_->editable) return;
  setAll(core_->verticesWeights, countVertices(), weights,
         "New property must have at least the size of the number of Vertices.");
}

void VEQNetwork::setEdgesWeightValues(const VEQNumberArray& weights) {
  if (!core_->editable) return;
  ++core_->weightsRevision;
  setAll(core_->edgesWeights, countEdges(), weights,
         "New property must have at least the size of the number of Edges.");
}

void VEQNetwork::setWeightValue_atVertexIndex(float weight, std::uint64_t index) {
  if (!core_->editable) return;
  setOne(core_->verticesWeights, core_->store.vertexCount(), weight, index);
}

void VEQNetwork::setWeightValue_atEdgeIndex(float weight, std::uint64_t index) {
  if (!core_->editable) return;
  ++core_->weightsRevision;
  setOne(core_->edgesWeights, core_->store.edgeCount(), weight, index);
}

}  // namespace veq
