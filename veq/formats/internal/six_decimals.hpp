#pragma once

namespace veq::internal {

/// The number nearest to the "%f" text of a value, which keeps six decimals; 0 for an infinity,
/// whose text is no number.
[[nodiscard]] double throughSixDecimals(double value);
[[nodiscard]] float throughSixDecimals(float value);

}  // namespace veq::internal
