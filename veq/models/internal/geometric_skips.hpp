/// \file
/// How many things are passed over until one is chosen, each being chosen with probability p.
///
/// The law, in integers. p counts as floor(p 2^127) 2^-127. Q[i] is (1 - p)^(2^i) in units of
/// 2^-63, rounded to the nearest; it comes from squares in units of 2^-127, each rounded down. A
/// number u of 62 bits stands for w = 2 u + 1 in units of 2^-63, and passes over the greatest k,
/// below 2^levels, with R(k) > w. Here R(k) is the product, from the highest binary digit of k to
/// the lowest, of Q[i] for each digit i that is 1, each product rounded down; the digits are found
/// in this order, each being 1 if R still exceeds w then.
///
/// So at least k are passed over with probability (1 - p)^k, but for less than 2^-57: 64 roundings
/// of at most 2^-63, and 2^-62 for the numbers u. No logarithm, whose last bit nobody promises.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace veq::internal {

class GeometricSkips {
 public:
  /// For 0 <= probability <= 1 and at most 2^63 things. Where fewer are left than a skip says, none
  /// is chosen any more.
  GeometricSkips(double probability, std::uint64_t things);

  [[nodiscard]] std::uint64_t operator()(std::uint64_t u) const;
  /// The same for each u; several at a time, whose multiplications need not wait for one another.
  void many(std::span<const std::uint64_t> us, std::uint64_t* skips) const;

 private:
  std::array<std::uint64_t, 64> powers_{};
  int levels_ = 0;
};

}  // namespace veq::internal
