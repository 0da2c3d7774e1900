#include "veq/formats/internal/six_decimals.hpp"

#include <cmath>
#include <string>

#include "veq/base/internal/number_text.hpp"

namespace veq::internal {

double throughSixDecimals(double value) {
  // Below 2^30 the rounded product is within 2^-4 of the exact one: if it is less than 0.4 away
  // from a whole number, the exact one rounds to the same millionths. These are below 2^53, so that
  // one division gives the double nearest to their text.
  constexpr double kProvable = 1 << 30;
  if (std::fabs(value) < kProvable) {
    const double product = value * 1e6;
    const double millionths = std::nearbyint(product);
    if (std::fabs(product - millionths) < 0.4) return std::copysign(millionths / 1e6, value);
  }
  std::string text;
  appendSixDecimals(text, value);
  return leadingDouble(text);
}

float throughSixDecimals(float value) {
  if (!std::isfinite(value)) return 0;
  // From 16 on floats lie further apart than two millionths, so that theirs lead back to them.
  if (std::fabs(value) >= 16) return value;
  // The product of 24 and 14 bits is exact, and the millionths are below 2^24.
  const auto millionths = static_cast<float>(std::nearbyint(static_cast<double>(value) * 1e6));
  return std::copysign(millionths / 1e6F, value);
}

}  // namespace veq::internal
