/// \file
/// Weights for questions to which only some of them make sense.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "veq/base/result.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/numeric/number.hpp"

namespace veq::internal {

/// The first edge whose weight is negative, infinite or not a number, and how many more there are.
[[nodiscard]] inline std::optional<Error> edgeWeightsError(const NetworkCore& core) {
  if (!core.edgesWeights) return std::nullopt;
  std::string text;
  std::uint64_t wrong = 0;
  for (std::uint64_t e = 0; e < core.edgesWeights->size(); ++e) {
    const float weight = (*core.edgesWeights)[e];
    if (weight >= 0 && std::isfinite(weight)) continue;
    if (wrong++ == 0) text = "edge " + std::to_string(e) + ": weight " + Number(weight).text();
  }
  if (wrong == 0) return std::nullopt;
  if (wrong > 1) text += ", and " + std::to_string(wrong - 1) + " more";
  return Error(ErrorKind::kArgument, std::move(text));
}

/// 1.0 for an edge without a weight.
[[nodiscard]] inline double weightOf(const NetworkCore& core, std::uint64_t edge) {
  return core.edgesWeights ? static_cast<double>((*core.edgesWeights)[edge]) : 1.0;
}

}  // namespace veq::internal
