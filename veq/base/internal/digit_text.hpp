/// \file
/// Decimal digits, also eight at a time: the numbers of a text differ in length, and a loop over
/// their digits ends where the processor does not expect it.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace veq::internal {

inline bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }
inline std::uint64_t digitOf(char byte) { return static_cast<std::uint64_t>(byte - '0'); }

/// The functions below want the first byte of a word to be its lowest.
inline constexpr bool kEightDigitsAtOnce = std::endian::native == std::endian::little;

struct Digits {
  std::uint64_t value;
  unsigned count;
};

/// The digits, from none to all, with which eight bytes begin.
inline Digits leadingDigits(const char* eight) {
  std::uint64_t bytes;
  std::memcpy(&bytes, eight, sizeof bytes);
  const std::uint64_t values = bytes ^ 0x3030303030303030u;
  // The highest bit of each byte that is no digit, up to the first such byte: what is above 9 comes
  // to 0x80 or more, and what this carries goes to later bytes.
  const std::uint64_t others = ((values + 0x7676767676767676u) | values) & 0x8080808080808080u;
  const auto count = static_cast<unsigned>(std::countr_zero(others)) / 8;
  if (count == 0) return {0, 0};
  // Behind zeros for the missing digits, as eight numbers below 10, four below 100, two below 10^4,
  // and one.
  std::uint64_t value = values << (64 - 8 * count);
  value = (value * 10 + (value >> 8)) & 0x00FF00FF00FF00FFu;
  value = (value * 100 + (value >> 16)) & 0x0000FFFF0000FFFFu;
  value = (value * 10000 + (value >> 32)) & 0xFFFFFFFFu;
  return {value, count};
}

/// The eight digits of a number below 10^8, as numbers, the first in the lowest byte.
inline std::uint64_t eightDigitsOf(std::uint64_t value) {
  // One number, two below 10^4, four below 100, and eight below 10. The factors divide by 100 and
  // 10 what is that small.
  const std::uint64_t fours = value / 10000 | (value % 10000) << 32;
  const std::uint64_t hundreds = (fours * 10486 >> 20) & 0x0000007F0000007Fu;
  const std::uint64_t twos = hundreds | (fours - hundreds * 100) << 16;
  const std::uint64_t tens = (twos * 103 >> 10) & 0x000F000F000F000Fu;
  return tens | (twos - tens * 10) << 8;
}

/// Writes a number below 10^8 without leading zeros, and answers where it ends. Eight bytes are
/// written.
inline char* writeUpToEightDigits(char* at, std::uint64_t value) {
  const std::uint64_t digits = eightDigitsOf(value);
  // Zero is one digit.
  const int zeros = std::countr_zero(digits | std::uint64_t{1} << 56) / 8;
  const std::uint64_t text = (digits | 0x3030303030303030u) >> (8 * zeros);
  std::memcpy(at, &text, sizeof text);
  return at + 8 - zeros;
}

}  // namespace veq::internal
