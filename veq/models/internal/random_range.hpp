/// \file
/// How a draw chooses an integer of a range.
#pragma once

#include <cmath>
#include <cstdint>

#include "veq/numeric/number.hpp"

namespace veq::internal {

/// round((to - from) x draw / (2^31 - 1)) + from, halves away from zero. The difference wraps in 64
/// bits, and the result saturates.
[[nodiscard]] inline std::int64_t integerInRange(std::uint32_t draw, std::int64_t from,
                                                 std::int64_t to) {
  const auto difference =
      static_cast<std::int64_t>(static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from));
  const double share = draw / 2147483647.0;
  const double offset = std::round(static_cast<double>(difference) * share);
  return convertNumber<std::int64_t>(offset + static_cast<double>(from));
}

}  // namespace veq::internal
