/// \file
/// The engine behind every random number of the library: the additive-feedback generator
/// r[i] = r[i-3] + r[i-31] (mod 2^32), whose draw is r[i] >> 1. For every seed it gives the numbers
/// that the C library's random() gives, so that a seed means the same networks and walks on every
/// platform.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "veq/base/internal/uint128.hpp"

namespace veq::internal {

/// A private stream of draws: a value that can be copied, and that no other thread moves.
class RandomStream {
 public:
  /// The distance of the longer lag: this many consecutive words determine all later ones.
  static constexpr std::size_t kLag = 31;
  using Words = std::array<std::uint32_t, kLag>;

  /// The stream that starts where the C library's does after srandom(seed). Seed 0 counts as 1.
  [[nodiscard]] static RandomStream seeded(std::uint32_t seed);

  /// The next draw, from 0 to 2^31 - 1.
  std::uint32_t next() {
    if (position_ == kLag) nextRound();
    return words_[position_++] >> 1;
  }

  /// Skips `count` draws: stepping over few, and over many in microseconds whatever their number.
  void advance(Uint128 count);

  /// The next `count` draws in order. Value is std::uint32_t or std::int64_t (the draw itself),
  /// double or float (fromDraw). Short runs cost half a nanosecond a draw and runs of some
  /// thousands a quarter, so a hot loop draws into a small array and reads from there.
  template <class Value>
  void fill(Value* out, std::uint64_t count);

  /// The 31 words drawn last, unshifted (those before the beginning for a stream that starts
  /// there).
  [[nodiscard]] Words recent() const;
  /// Goes on after `words`, as if they had been drawn last.
  void setRecent(const Words& words) {
    words_ = words;
    position_ = kLag;
  }

  /// Whether both will give the same draws for ever.
  friend bool operator==(const RandomStream& a, const RandomStream& b) {
    return a.recent() == b.recent();
  }

 private:
  RandomStream() = default;
  void nextRound();

  Words words_;                  // 31 consecutive words
  std::size_t position_ = kLag;  // how many of them have been drawn
};

/// What a draw becomes: itself, or scaled by 2^-31. A float is the draw rounded to a float before
/// it is scaled, so that it may be exactly 1.
template <class Value>
[[nodiscard]] constexpr Value fromDraw(std::uint32_t draw) {
  return static_cast<Value>(draw);
}
template <>
[[nodiscard]] constexpr double fromDraw<double>(std::uint32_t draw) {
  return static_cast<std::int32_t>(draw) * 0x1p-31;  // signed, which vector units convert directly
}
template <>
[[nodiscard]] constexpr float fromDraw<float>(std::uint32_t draw) {
  return static_cast<float>(static_cast<std::int32_t>(draw)) * 0x1p-31F;
}

}  // namespace veq::internal
