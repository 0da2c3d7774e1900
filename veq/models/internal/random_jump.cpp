#include "veq/models/internal/random_jump.hpp"

#include <cstddef>
#include <cstdint>

namespace veq::internal {
namespace {

constexpr std::size_t kLag = RandomStream::kLag;

JumpPolynomial squared(const JumpPolynomial& a) {
  std::uint32_t product[2 * kLag] = {};
  for (std::size_t i = 0; i < kLag; ++i) {
    for (std::size_t j = 0; j < kLag; ++j) product[i + j] += a[i] * a[j];
  }
  // x^d = x^(d-3) + x^(d-31), from the highest power down.
  for (std::size_t d = 2 * kLag - 2; d >= kLag; --d) {
    product[d - 3] += product[d];
    product[d - kLag] += product[d];
  }
  JumpPolynomial result;
  for (std::size_t i = 0; i < kLag; ++i) result[i] = product[i];
  return result;
}

JumpPolynomial timesX(const JumpPolynomial& a) {
  JumpPolynomial result;
  result[0] = a[kLag - 1];
  for (std::size_t i = 1; i < kLag; ++i) result[i] = a[i - 1];
  result[kLag - 3] += a[kLag - 1];
  return result;
}

}  // namespace

JumpPolynomial jumpPolynomial(Uint128 count) {
  // The leading bits that make a power below 31 need no arithmetic.
  int bits = 0;
  while ((count >> bits) >= kLag) ++bits;
  JumpPolynomial power{};
  power[static_cast<std::size_t>(count >> bits)] = 1;
  while (bits-- > 0) {
    power = squared(power);
    if ((count >> bits & 1) != 0) power = timesX(power);
  }
  return power;
}

RandomStream::Words jump(const JumpPolynomial& polynomial, const RandomStream::Words& words) {
  std::uint32_t sequence[2 * kLag];
  for (std::size_t i = 0; i < kLag; ++i) sequence[i] = words[i];
  for (std::size_t i = kLag; i < 2 * kLag; ++i) sequence[i] = sequence[i - 3] + sequence[i - kLag];
  RandomStream::Words result{};
  for (std::size_t k = 0; k < kLag; ++k) {
    for (std::size_t j = 0; j < kLag; ++j) result[j] += polynomial[k] * sequence[j + k];
  }
  return result;
}

}  // namespace veq::internal
