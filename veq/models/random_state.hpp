/// \file
/// A place in a sequence of random numbers, as a value.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "veq/base/export.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/base/result.hpp"
#include "veq/models/internal/random_stream.hpp"

namespace veq {

namespace internal {
struct StateAccess;
}  // namespace internal

/// A number of draws, up to 2^128 - 1: high x 2^64 + low.
/// \ingroup random
struct DrawCount {
  std::uint64_t high = 0;
  std::uint64_t low = 0;

  constexpr DrawCount() = default;
  /// An ordinary integer is a number of draws.
  constexpr DrawCount(std::uint64_t draws) : low(draws) {}
  constexpr DrawCount(std::uint64_t highPart, std::uint64_t lowPart)
      : high(highPart), low(lowPart) {}
  /// Of the compiler's own type, which GCC and Clang have.
  [[nodiscard]] static constexpr DrawCount of(Uint128 draws) {
    return {static_cast<std::uint64_t>(draws >> 64), static_cast<std::uint64_t>(draws)};
  }
  /// Any two factors: one draw for each of `a` agents in `b` steps.
  [[nodiscard]] static constexpr DrawCount product(std::uint64_t a, std::uint64_t b) {
    return of(Uint128{a} * b);
  }
  [[nodiscard]] constexpr Uint128 all() const { return Uint128{high} << 64 | low; }

  friend constexpr auto operator<=>(const DrawCount&, const DrawCount&) = default;
};

/// A place in the sequence of VEQRandomGenerator, to draw from without touching that of the
/// process: a value like any other, of some 150 bytes. Models and walks that are given one take
/// their draws there, move it past them, and leave the process's sequence alone.
///
/// Two threads must not use one state at once, but each may have its copy.
///
/// A substream ends where the next begins. Taking a draw beyond its end throws std::out_of_range,
/// "The substream has 2 draws left, not 3.", and leaves the state as it was.
/// \ingroup random
class VEQ_EXPORT RandomState {
 public:
  /// How far apart substreams begin: 2^40 - 87, a prime, since after a power of two of draws the
  /// lowest bits would be sums of earlier ones.
  static constexpr std::uint64_t kSubstreamSpacing = 1099511627689;
  /// The substreams of a state: 2^22, after which the sequence would soon repeat.
  static constexpr std::uint64_t kSubstreams = std::uint64_t{1} << 22;
  /// The words that determine all later ones.
  static constexpr std::size_t kWords = internal::RandomStream::kLag;
  using Words = std::array<std::uint32_t, kWords>;

  /// Where setRandomSeed(seed) sets the process's sequence. An error of kind kArgument for 0, "seed
  /// 0: it would be the same as seed 1; give 1 to 4294967295", and for what is larger, "seed
  /// 4294967296: seeds have 32 bits; give 1 to 4294967295".
  [[nodiscard]] static Result<RandomState> seeded(std::uint64_t seed);

  /// The state after that many draws. Microseconds, whatever the count.
  [[nodiscard]] RandomState after(DrawCount draws) const;

  /// after(k x kSubstreamSpacing), with that many draws of its own: task k of a list draws the same
  /// numbers whatever other tasks there are, and whoever does them in whatever order.
  /// std::out_of_range from k = kSubstreams on, "Substream 4194304 of 4194304.", and for a
  /// substream of a substream, "A substream has no substreams.", which would be another's.
  [[nodiscard]] RandomState substream(std::uint64_t k) const;
  /// How many draws a substream has left; nothing for a state that is none and has no end.
  [[nodiscard]] std::optional<std::uint64_t> drawsLeft() const;

  /// \name To and from words
  /// The 31 words of 32 bits drawn last, with the bit that a draw does not show. They do not tell
  /// whether a state is a substream.
  /// @{
  [[nodiscard]] Words words() const;
  /// An error of kind kArgument for another number of them, "30 words, not 31", and if all are
  /// even, "31 even words, which no seed leads to": what follows would be even for ever, and the
  /// sequence half as long at best.
  [[nodiscard]] static Result<RandomState> fromWords(std::span<const std::uint32_t> words);
  /// @}

  /// \name Numbers
  /// The laws are exact, and the same on every platform.
  /// @{
  /// The next draw r, from 0 to 2^31 - 1, each alike.
  std::uint32_t nextDraw();
  /// r x 2^-31: one draw.
  double nextDouble();
  /// An integer from 0 to n - 1: floor(n u / 2^62), where u = r 2^31 + r' of two draws, so that
  /// each has a share of 1/n within 2^-62. Beyond n = 2^62 only 2^62 of the integers can come.
  /// std::out_of_range for n = 0, "No integer lies below 0.".
  std::uint64_t nextBelow(std::uint64_t n);
  /// As many draws as there is room for, in order, at a quarter of a nanosecond each where they are
  /// many.
  void nextDraws(std::span<std::uint32_t> draws);
  /// @}

  /// Whether both will give the same numbers, as long as they last.
  friend bool operator==(const RandomState& a, const RandomState& b) {
    return a.words() == b.words();
  }

 private:
  friend struct internal::StateAccess;
  static constexpr std::uint64_t kEndless = UINT64_MAX;

  explicit RandomState(const internal::RandomStream& stream) : stream_(stream) {}
  void use(Uint128 draws);

  internal::RandomStream stream_;
  std::uint64_t left_ = kEndless;
};

}  // namespace veq
