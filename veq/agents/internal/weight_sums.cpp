#include "veq/agents/internal/weight_sums.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <mutex>
#include <utility>

namespace veq::internal {
namespace {

// For the few instructions in which a network's sums are taken or put there.
std::mutex& lockOfAllSums() {
  static std::mutex lock;
  return lock;
}

Block<WeightedChoice::Entry> entriesOf(const NetworkCore& core) {
  const float* const weights = core.edgesWeights ? core.edgesWeights->data() : nullptr;
  const std::uint64_t vertices = core.store.vertexCount();
  return core.store.visit([&](const auto& topology) {
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
}

}  // namespace

WeightSums::WeightSums(const NetworkCore& core, Block<WeightedChoice::Entry> entries)
    : edges_(core.store.edgeCount()),
      revision_(core.weightsRevision),
      entries_(std::move(entries)) {}

bool WeightSums::areOf(const NetworkCore& core) const {
  return edges_ == core.store.edgeCount() && revision_ == core.weightsRevision;
}

Shared<const WeightSums> WeightSums::of(const NetworkCore& core) {
  {
    const std::lock_guard guard(lockOfAllSums());
    auto kept = std::static_pointer_cast<const WeightSums>(core.weightSums);
    if (kept && kept->areOf(core)) return kept;
  }
  if (wrongWeight(core)) return nullptr;
  auto made = std::make_shared<const WeightSums>(core, entriesOf(core));
  const std::lock_guard guard(lockOfAllSums());
  core.weightSums = made;
  return made;
}

std::optional<std::uint64_t> WeightSums::wrongWeight(const NetworkCore& core) {
  if (!core.edgesWeights) return std::nullopt;
  const HeldWeights& weights = *core.edgesWeights;
  const auto wrong = std::find_if(weights.begin(), weights.end(), [](float weight) {
    return !(weight >= 0.0F && std::isfinite(weight));
  });
  if (wrong == weights.end()) return std::nullopt;
  return static_cast<std::uint64_t>(wrong - weights.begin());
}

}  // namespace veq::internal
