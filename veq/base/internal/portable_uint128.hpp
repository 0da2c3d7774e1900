#pragma once

#include <bit>
#include <cmath>
#include <compare>
#include <concepts>
#include <cstdint>

namespace veq::internal {

/// Unsigned integers of 128 bits in two words, with the operators and conversions that the
/// compiler's own type has on 64-bit targets.
class PortableUint128 {
 public:
  PortableUint128() = default;
  /// Any integer, modulo 2^128.
  template <std::integral T>
  constexpr PortableUint128(T value)
      : high_(value < T{} ? UINT64_MAX : 0), low_(static_cast<std::uint64_t>(value)) {}

  /// A double from 0 to below 2^128 without its fraction. Both steps are exact.
  constexpr explicit PortableUint128(double value)
      : high_(static_cast<std::uint64_t>(value * 0x1p-64)),
        low_(static_cast<std::uint64_t>(value - static_cast<double>(high_) * 0x1p64)) {}

  template <std::integral T>
  constexpr explicit operator T() const {
    return static_cast<T>(low_);
  }
  /// The nearest double, ties to even.
  explicit operator double() const {
    if (high_ == 0) return static_cast<double>(low_);
    // 64 significant bits, the last of which also stands for all that are cut off, round alike.
    const auto shift = static_cast<int>(std::bit_width(high_));
    const PortableUint128 kept = *this >> shift;
    const bool isInexact = (kept << shift) != *this;
    return std::ldexp(static_cast<double>(kept.low_ | std::uint64_t{isInexact}), shift);
  }

  friend constexpr bool operator==(const PortableUint128&, const PortableUint128&) = default;
  /// The higher word is compared first.
  friend constexpr std::strong_ordering operator<=>(const PortableUint128&,
                                                    const PortableUint128&) = default;

  friend constexpr PortableUint128 operator+(PortableUint128 a, PortableUint128 b) {
    const std::uint64_t low = a.low_ + b.low_;
    return {a.high_ + b.high_ + (low < a.low_), low};
  }
  friend constexpr PortableUint128 operator-(PortableUint128 a, PortableUint128 b) {
    return {a.high_ - b.high_ - (a.low_ < b.low_), a.low_ - b.low_};
  }
  friend constexpr PortableUint128 operator*(PortableUint128 a, PortableUint128 b) {
    PortableUint128 product = productOf(a.low_, b.low_);
    product.high_ += a.high_ * b.low_ + a.low_ * b.high_;
    return product;
  }
  /// Bit by bit.
  friend constexpr PortableUint128 operator/(PortableUint128 a, PortableUint128 b) {
    PortableUint128 quotient = 0;
    PortableUint128 rest = 0;
    for (int bit = 127; bit >= 0; --bit) {
      const bool isFull = rest.high_ >> 63 != 0;
      rest = rest << 1 | (a >> bit & 1);
      quotient = quotient << 1;
      if (!isFull && rest < b) continue;
      rest = rest - b;
      quotient = quotient | 1;
    }
    return quotient;
  }
  friend constexpr PortableUint128 operator%(PortableUint128 a, PortableUint128 b) {
    return a - a / b * b;
  }
  friend constexpr PortableUint128 operator&(PortableUint128 a, PortableUint128 b) {
    return {a.high_ & b.high_, a.low_ & b.low_};
  }
  friend constexpr PortableUint128 operator|(PortableUint128 a, PortableUint128 b) {
    return {a.high_ | b.high_, a.low_ | b.low_};
  }
  constexpr PortableUint128 operator~() const { return {~high_, ~low_}; }
  /// By 0 to 127 bits.
  constexpr PortableUint128 operator<<(int bits) const {
    if (bits == 0) return *this;
    if (bits >= 64) return {low_ << (bits - 64), 0};
    return {high_ << bits | low_ >> (64 - bits), low_ << bits};
  }
  constexpr PortableUint128 operator>>(int bits) const {
    if (bits == 0) return *this;
    if (bits >= 64) return {0, high_ >> (bits - 64)};
    return {high_ >> bits, high_ << (64 - bits) | low_ >> bits};
  }
  constexpr PortableUint128& operator+=(PortableUint128 other) { return *this = *this + other; }
  constexpr PortableUint128& operator/=(PortableUint128 other) { return *this = *this / other; }
  constexpr PortableUint128& operator++() { return *this += 1; }

 private:
  constexpr PortableUint128(std::uint64_t high, std::uint64_t low) : high_(high), low_(low) {}

  static constexpr PortableUint128 productOf(std::uint64_t a, std::uint64_t b) {
    constexpr std::uint64_t kHalf = UINT32_MAX;
    const std::uint64_t low = (a & kHalf) * (b & kHalf);
    // Two middle products; the first takes what the lowest one carries, and neither overflows.
    const std::uint64_t first = (a >> 32) * (b & kHalf) + (low >> 32);
    const std::uint64_t second = (a & kHalf) * (b >> 32) + (first & kHalf);
    return {(a >> 32) * (b >> 32) + (first >> 32) + (second >> 32), second << 32 | (low & kHalf)};
  }

  std::uint64_t high_;
  std::uint64_t low_;
};

}  // namespace veq::internal
