#include "veq/network/internal/network_draft.hpp"

#include <algorithm>
#include <array>

namespace veq::internal {
namespace {

// Four running maxima, so that a comparison need not wait for the one before it.
std::uint64_t largest(std::span<const std::uint64_t> indices) {
  std::array<std::uint64_t, 4> lanes{};
  std::size_t i = 0;
  for (; i + lanes.size() <= indices.size(); i += lanes.size()) {
    for (std::size_t l = 0; l < lanes.size(); ++l) lanes[l] = std::max(lanes[l], indices[i + l]);
  }
  for (; i < indices.size(); ++i) lanes[0] = std::max(lanes[0], indices[i]);
  return *std::max_element(lanes.begin(), lanes.end());
}

}  // namespace

std::optional<std::uint64_t> countVertices(std::uint64_t minimum,
                                           std::span<const std::uint64_t> from,
                                           std::span<const std::uint64_t> to) {
  const std::uint64_t last = std::max(largest(from), largest(to));
  if (last == UINT64_MAX) return std::nullopt;
  return std::max(minimum, last + 1);
}

std::optional<Weights> weightsOf(const VEQNumberArray* array) {
  if (!array) return std::nullopt;
  Weights weights(array->count());
  array->getFloatValues(weights.data());
  return weights;
}

}  // namespace veq::internal
