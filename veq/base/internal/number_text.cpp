#include "veq/base/internal/number_text.hpp"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "veq/base/internal/text_scanner.hpp"

namespace veq::internal {
namespace {

template <class Integer>
void appendDigits(std::string& out, Integer value) {
  char text[24];
  out.append(text, std::to_chars(text, text + sizeof text, value).ptr);
}

/// The text of what is no finite number. The sign of a NaN differs between processors: 0 / 0 has
/// one on x86 and none on ARM.
char* writeNonFinite(char* at, double value) {
  const std::string_view text = std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
  return std::copy(text.begin(), text.end(), at);
}

template <class Number>
void appendShortestOf(std::string& out, Number value) {
  char text[32];
  if (!std::isfinite(value)) {
    out.append(text, writeNonFinite(text, static_cast<double>(value)));
    return;
  }
  // Below 2^53, or 2^24 for a float, the digits of a whole number are all significant.
  constexpr auto kWholeLimit =
      static_cast<Number>(std::uint64_t{1} << std::numeric_limits<Number>::digits);
  if (value != 0 && std::fabs(value) < kWholeLimit) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<Number>(whole) == value) return appendDigits(out, whole);
  }
  out.append(text, std::to_chars(text, text + sizeof text, value).ptr);
}

/// A number as units of 2^-shift; shift is at least 0.
struct BinaryFraction {
  std::uint64_t units;
  int shift;
};

/// Splits what lies below 2^53 into units as large as they can be.
BinaryFraction binaryFractionOf(double magnitude) {
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const auto biased = static_cast<int>(bits >> 52);
  std::uint64_t units = bits & ((std::uint64_t{1} << 52) - 1);
  if (biased != 0) units |= std::uint64_t{1} << 52;
  int shift = 1075 - (biased != 0 ? biased : 1);
  const int zeros = units == 0 ? shift : std::min(std::countr_zero(units), shift);
  units = zeros < 64 ? units >> zeros : 0;
  return {units, shift - zeros};
}

/// The fraction units / 2^shift (below 1) in millionths, halves to even; up to 1000000. Nothing
/// where 64 bits do not suffice, which no float reaches.
std::optional<std::uint64_t> millionthsOf(std::uint64_t units, int shift) {
  if (units >= std::uint64_t{1} << 50) return std::nullopt;
  // 10^6 is 15625 x 2^6, and 15625 is below 2^14, so that the product stays below 2^64.
  const std::uint64_t product = units * 15625;
  const int drop = shift - 6;
  if (drop <= 0) return product << -drop;
  if (drop > 64) return 0;  // Below a half.
  if (drop == 64) return product > std::uint64_t{1} << 63 ? 1 : 0;
  const std::uint64_t kept = product >> drop;
  const std::uint64_t rest = product & ((std::uint64_t{1} << drop) - 1);
  const std::uint64_t half = std::uint64_t{1} << (drop - 1);
  return kept + (rest > half || (rest == half && (kept & 1) != 0) ? 1 : 0);
}

// With leading zeros. Eight bytes are written.
char* writeSixDigits(char* at, std::uint64_t value) {
  if (kEightDigitsAtOnce) {
    const std::uint64_t text = (eightDigitsOf(value) | 0x3030303030303030u) >> 16;
    std::memcpy(at, &text, sizeof text);
  } else {
    for (char* digit = at + 6; digit != at; value /= 10) {
      *--digit = static_cast<char>('0' + value % 10);
    }
  }
  return at + 6;
}

// The sign is there already.
char* writeBySlowPath(char* at, double magnitude) {
  constexpr std::size_t kRest = kLongestSixDecimals - 1;
  return std::to_chars(at, at + kRest, magnitude, std::chars_format::fixed, 6).ptr;
}

}  // namespace

void appendInteger(std::string& out, std::int64_t value) { appendDigits(out, value); }
void appendInteger(std::string& out, std::uint64_t value) { appendDigits(out, value); }

void appendShortest(std::string& out, double value) { appendShortestOf(out, value); }
void appendShortest(std::string& out, float value) { appendShortestOf(out, value); }

char* writeLongInteger(char* at, std::uint64_t value) {
  return std::to_chars(at, at + kLongestInteger, value).ptr;
}

char* writeSixDecimals(char* at, double value) {
  if (!std::isfinite(value)) return writeNonFinite(at, value);
  if (std::signbit(value)) *at++ = '-';
  const double magnitude = std::fabs(value);
  if (!(magnitude < 9007199254740992.0)) return writeBySlowPath(at, magnitude);
  const auto [units, shift] = binaryFractionOf(magnitude);
  std::uint64_t whole = shift < 64 ? units >> shift : 0;
  const std::uint64_t fraction = shift < 64 ? units & ((std::uint64_t{1} << shift) - 1) : units;
  std::optional<std::uint64_t> millionths = millionthsOf(fraction, shift);
  if (!millionths) return writeBySlowPath(at, magnitude);
  if (*millionths == 1000000) {
    ++whole;
    millionths = 0;
  }
  // Most weights.
  if (whole < 10) {
    *at++ = static_cast<char>('0' + whole);
  } else {
    at = writeInteger(at, whole);
  }
  *at++ = '.';
  return writeSixDigits(at, *millionths);
}

void appendSixDecimals(std::string& out, double value) {
  char text[kLongestSixDecimals];
  out.append(text, writeSixDecimals(text, value));
}

namespace {

TextScanner behindSpace(std::string_view text) {
  TextScanner scanner(text);
  scanner.skipBlanksAndNewlines();
  return scanner;
}

}  // namespace

double leadingDouble(std::string_view text) { return behindSpace(text).readDouble().value_or(0); }
float leadingFloat(std::string_view text) { return behindSpace(text).readFloat().value_or(0); }
std::int64_t leadingInteger(std::string_view text) {
  return behindSpace(text).readInteger().value_or(0);
}

}  // namespace veq::internal
