/// \file
/// Which entry of a list a draw chooses.
#pragma once

#include <cmath>
#include <cstdint>

#include "veq/models/internal/random_engine.hpp"

namespace veq::internal {

/// Lists shorter than this allow the choice in integers.
inline constexpr std::uint64_t kExactChoices = std::uint64_t{1} << 22;

/// round((k - 1) x) for the number x = draw * 2^-31, where k is a list's length, at least 1, and
/// the product is formed and rounded in double, halves away from zero.
///
/// For k - 1 < 2^22 the product (k - 1) * draw is below 2^53 and hence exact also in double, so
/// that the result is floor((k - 1) * draw / 2^31 + 1/2), which integers give without any
/// conversion.
[[nodiscard]] inline std::uint64_t chooseEntry(std::uint64_t k, std::uint32_t draw) {
  if (k - 1 < kExactChoices) return ((k - 1) * draw + (std::uint64_t{1} << 30)) >> 31;
  return static_cast<std::uint64_t>(
      std::round(static_cast<double>(k - 1) * fromDraw<double>(draw)));
}

}  // namespace veq::internal
