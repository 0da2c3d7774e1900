#include "veq/agents/internal/weight_sums.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veq::internal {
namespace {

std::optional<std::uint64_t> firstWrong(const std::optional<HeldWeights>& weights) {
  if (!weights) return std::nullopt;
  const auto wrong = std::find_if(weights->begin(), weights->end(), [](float weight) {
    return !(weight >= 0.0F && std::isfinite(weight));
  });
  if (wrong == weights->end()) return std::nullopt;
  return static_cast<std::uint64_t>(wrong - weights->begin());
}

}  // namespace

std::optional<std::uint64_t> WeightSums::prepare(const NetworkCore& core) {
  const std::uint64_t edges = core.store.edgeCount();
  if (isMade_ && edges_ == edges && revision_ == core.weightsRevision) return std::nullopt;
  if (const auto wrong = firstWrong(core.edgesWeights)) return wrong;
  const float* const weights = core.edgesWeights ? core.edgesWeights->data() : nullptr;
  const std::uint64_t vertices = core.store.vertexCount();
  Block<WeightedChoice::Entry> entries = core.store.visit([&](const auto& topology) {
    const auto& lists = topology.out;
    std::uint64_t size = 0;
    for (std::uint64_t v = 0; v < vertices; ++v) {
      const auto row = lists.rows()[v];
      size = std::max<std::uint64_t>(size, std::uint64_t{row.start} + row.count);
    }
    Block<WeightedChoice::Entry> made(size);
    for (std::uint64_t v = 0; v < vertices; ++v) {
      double sum = 0.0;
      WeightedChoice::Entry* entry = made.data() + lists.rows()[v].start;
      for (const auto edge : lists.edges(v)) {
        const double weight = weights ? static_cast<double>(weights[edge]) : 1.0;
        *entry++ = {sum += weight, weight};
      }
    }
    return made;
  });
  entries_ = std::move(entries);
  edges_ = edges;
  revision_ = core.weightsRevision;
  isMade_ = true;
  return std::nullopt;
}

}  // namespace veq::internal
