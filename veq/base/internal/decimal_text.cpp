#include "veq/base/internal/decimal_text.hpp"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <string>

#include "veq/base/internal/digit_text.hpp"

#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

namespace veq::internal {
namespace {

constexpr std::int64_t kLeadingDigits = 19;  // 10^19 - 1 fits into 64 bits.
// Far beyond every range, and far enough from the ends of 64 bits for any number of digits.
constexpr std::int64_t kExponentLimit = 100'000'000'000'000'000;

/// A decimal number in text: the value is the sign, `leading` and 10^exponent, and digits that did
/// not fit into `leading` where `isComplete` is false.
struct DecimalText {
  bool negative = false;
  bool isComplete = true;       ///< All significant digits are in `leading`.
  std::uint64_t leading = 0;    ///< The first significant digits, at most 19.
  std::int64_t exponent = 0;    ///< Of `leading`, its omitted digits counted.
  const char* begin = nullptr;  ///< Of what the standard library reads: behind the sign.
  const char* end = nullptr;    ///< Behind the exponent.
};

/// The digits around the point, gathered in one pass.
class DigitReader {
 public:
  explicit DigitReader(DecimalText& decimal) : decimal_(decimal) {}

  /// Takes digits, each of which moves the exponent by `omitted` if it is left out of the leading
  /// ones and by `taken` if it is not.
  const char* take(const char* at, const char* end, std::int64_t taken, std::int64_t omitted) {
    const char* const begin = at;
    while (count_ == 0 && at != end && *at == '0') ++at;
    const char* const first = at;
    const char* const full = std::min<std::int64_t>(end - at, kLeadingDigits - count_) + at;
    for (; at != full && isDigit(*at); ++at) {
      decimal_.leading = decimal_.leading * 10 + digitOf(*at);
    }
    count_ += at - first;
    decimal_.exponent += taken * (at - begin);
    for (; at != end && isDigit(*at); ++at) {
      decimal_.isComplete &= *at == '0';
      decimal_.exponent += omitted;
    }
    return at;
  }

 private:
  DecimalText& decimal_;
  std::int64_t count_ = 0;
};

/// Reads "e", sign and digits; 0 with `at` unmoved where there are no digits.
std::int64_t takeExponent(const char*& at, const char* end) {
  if (at == end || (*at != 'e' && *at != 'E')) return 0;
  const char* digit = at + 1;
  const bool negative = digit != end && *digit == '-';
  if (digit != end && (*digit == '-' || *digit == '+')) ++digit;
  if (digit == end || !isDigit(*digit)) return 0;
  std::int64_t exponent = 0;
  for (; digit != end && isDigit(*digit); ++digit) {
    if (exponent < kExponentLimit) exponent = exponent * 10 + (*digit - '0');
  }
  at = digit;
  return negative ? -exponent : exponent;
}

constexpr std::array<double, 23> kExactPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Numerator and power of ten are both exact in a double, so that one rounding gives the answer.
bool isOneRoundingAway(const DecimalText& decimal) {
  return FLT_EVAL_METHOD == 0 && decimal.isComplete && decimal.leading <= std::uint64_t{1} << 53 &&
         decimal.exponent >= -22 && decimal.exponent <= 22;
}

double roundedOnce(const DecimalText& decimal) {
  const auto leading = static_cast<double>(decimal.leading);
  return decimal.exponent < 0 ? leading / kExactPowers[static_cast<std::size_t>(-decimal.exponent)]
                              : leading * kExactPowers[static_cast<std::size_t>(decimal.exponent)];
}

#if defined(__cpp_lib_to_chars)
/// False where the number is out of range.
template <class Number>
bool readByLibrary(const char* text, const char* end, Number& value) {
  return std::from_chars(text, end, value).ec != std::errc::result_out_of_range;
}
#else
/// Where the standard library reads no such numbers the C library does, in its own locale. What is
/// out of range it gives as an infinity or zero.
template <class Number>
bool readByLibrary(const char* text, const char* end, Number& value) {
  static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
  const std::string copy(text, end);
  if constexpr (sizeof(Number) == sizeof(float)) {
    value = ::strtof_l(copy.c_str(), nullptr, locale);
  } else {
    value = ::strtod_l(copy.c_str(), nullptr, locale);
  }
  return true;
}
#endif

template <class Number>
Number roundedByLibrary(const DecimalText& decimal) {
  Number value = 0;
  if (readByLibrary(decimal.begin, decimal.end, value)) return value;
  return decimal.exponent > 0 ? std::numeric_limits<Number>::infinity() : Number{0};
}

/// Rounding to a double and then to a float goes wrong only where the double lies half-way between
/// two floats: every other double is on the same side of all half-way points as the number itself.
bool isHalfWayBetweenFloats(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & 0x1FFF'FFFF) == 0x1000'0000;
}

/// Nothing if there is no number.
std::optional<DecimalText> scanDecimal(const char* at, const char* end) {
  DecimalText decimal;
  decimal.negative = at != end && *at == '-';
  if (at != end && (*at == '-' || *at == '+')) ++at;
  decimal.begin = at;
  DigitReader reader(decimal);
  at = reader.take(at, end, 0, 1);
  std::ptrdiff_t digits = at - decimal.begin;
  if (at != end && *at == '.') {
    const char* const fraction = at + 1;
    at = reader.take(fraction, end, -1, 0);
    digits += at - fraction;
  }
  if (digits == 0) return std::nullopt;
  decimal.exponent += takeExponent(at, end);
  decimal.end = at;
  return decimal;
}

/// The nearest number to the decimal, in either width.
void round(const DecimalText& decimal, double& value) {
  value = 0;
  if (isOneRoundingAway(decimal)) {
    value = roundedOnce(decimal);
  } else if (decimal.leading != 0) {
    value = roundedByLibrary<double>(decimal);
  }
}

void round(const DecimalText& decimal, float& value) {
  value = 0;
  // 2^53 x 10^22 and 10^-22 are far inside the range of normal floats.
  if (const double wide = isOneRoundingAway(decimal) ? roundedOnce(decimal) : 0;
      wide != 0 && !isHalfWayBetweenFloats(wide)) {
    value = static_cast<float>(wide);
  } else if (decimal.leading != 0) {
    value = roundedByLibrary<float>(decimal);
  }
}

template <class Number>
const char* readNumber(const char* at, const char* end, Number& value) {
  const std::optional<DecimalText> decimal = scanDecimal(at, end);
  if (!decimal) return nullptr;
  round(*decimal, value);
  if (decimal->negative) value = -value;
  return decimal->end;
}

}  // namespace

const char* readDecimal(const char* at, const char* end, double& value) {
  return readNumber(at, end, value);
}
const char* readDecimal(const char* at, const char* end, float& value) {
  return readNumber(at, end, value);
}

}  // namespace veq::internal
