#pragma once

#include <cstdint>
#include <optional>

namespace veq::internal {

/// A decimal number in text: the value is the sign, `leading` and 10^exponent, and digits that did
/// not fit into `leading` where `isComplete` is false.
struct DecimalText {
  bool negative = false;
  bool isComplete = true;             ///< All significant digits are in `leading`.
  std::uint64_t leading = 0;          ///< The first significant digits, at most 19.
  std::int64_t exponent = 0;          ///< Of `leading`, its omitted digits counted.
  const char* significant = nullptr;  ///< The first digit that is not 0.
  const char* digitsEnd = nullptr;    ///< Behind the last digit or point.
  const char* end = nullptr;          ///< Behind the exponent, too.
};

/// Reads the number at `at`: sign, digits with at most one point, exponent. Nothing if there is
/// none.
std::optional<DecimalText> scanDecimal(const char* at, const char* end);

/// The nearest number, ties to even; an infinity beyond the range, a zero below it.
double doubleFrom(const DecimalText& decimal);
float floatFrom(const DecimalText& decimal);

}  // namespace veq::internal
