/// \file
/// Numbers to text and back, the same on every machine and in every locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "veq/base/internal/digit_text.hpp"

namespace veq::internal {

/// Each appends to `out` and throws std::bad_alloc only.
void appendInteger(std::string& out, std::int64_t value);
void appendInteger(std::string& out, std::uint64_t value);

/// The shortest decimal text that reads back as the same number. Whole numbers below 2^53 are
/// written out ("100000", "-0"); other numbers take an exponent where that is shorter ("1e-07").
/// Infinities give "inf" and "-inf", every NaN "nan".
void appendShortest(std::string& out, double value);
void appendShortest(std::string& out, float value);

/// Six decimals, as "%f" gives them: halves of the exact value to even, up to 309 digits before the
/// point, "-0.000000" for what rounds to zero from below, "inf" and "-inf". Every NaN gives "nan".
void appendSixDecimals(std::string& out, double value);

/// The same into a buffer with room for the longest of them, for a loop that puts a line together
/// before it appends it. They give the text's end.
inline constexpr std::size_t kLongestInteger = 20;
inline constexpr std::size_t kLongestSixDecimals = 317;
/// writeInteger, out of line, for numbers of any length.
[[nodiscard]] char* writeLongInteger(char* at, std::uint64_t value);
[[nodiscard]] inline char* writeInteger(char* at, std::uint64_t value) {
  return kEightDigitsAtOnce && value < 100'000'000 ? writeUpToEightDigits(at, value)
                                                   : writeLongInteger(at, value);
}
[[nodiscard]] char* writeSixDecimals(char* at, double value);

/// The number with which the text begins, behind any blanks and newlines; 0 where it begins with
/// none. What a number is says TextScanner.
double leadingDouble(std::string_view text);
float leadingFloat(std::string_view text);
std::int64_t leadingInteger(std::string_view text);

}  // namespace veq::internal
