#include "veq/models/internal/random_jump.hpp"

#include <cstddef>
#include <cstdint>

namespace veq::internal {
namespace {

constexpr std::size_t kTerms = RandomStream::kLag;

JumpPolynomial squared(const JumpPolynomial& a) {
  std::uint32_t product[2 * kTerms] = {};
  for (std::size_t i = 0; i < kTerms; ++i) {
    for (std::size_t j = 0; j < kTerms; ++j) product[i + j] += a[i] * a[j];
  }
  // x^d = x^(d-3) + x^(d-31), from the highest power down.
  for (std::size_t d = 2 * kTerms - 2; d >= kTerms; --d) {
    product[d - 3] += product[d];
    product[d - kTerms] += product[d];
  }
  JumpPolynomial result;
  for (std::size_t i = 0; i < kTerms; ++i) result[i] = product[i];
  return result;
}

JumpPolynomial timesX(const JumpPolynomial& a) {
  JumpPolynomial result;
  result[0] = a[kTerms - 1];
  for (std::size_t i = 1; i < kTerms; ++i) result[i] = a[i - 1];
  result[kTerms - 3] += a[kTerms - 1];
  return result;
}

}  // namespace

JumpPolynomial jumpPolynomial(Uint128 count) {
  // The leading bits that make a power below 31 need no arithmetic.
  int bits = 0;
  while ((count >> bits) >= kTerms) ++bits;
  JumpPolynomial power{};
  power[static_cast<std::size_t>(count >> bits)] = 1;
  while (bits-- > 0) {
    power = squared(power);
    if ((count >> bits & 1) != 0) power = timesX(power);
  }
  return power;
}

RandomStream::Words jump(const JumpPolynomial& polynomial, const RandomStream::Words& words) {
  std::uint32_t sequence[2 * kTerms];
  for (std::size_t i = 0; i < kTerms; ++i) sequence[i] = words[i];
  for (std::size_t i = kTerms; i < 2 * kTerms; ++i)
    sequence[i] = sequence[i - 3] + sequence[i - kTerms];
  RandomStream::Words result{};
  for (std::size_t k = 0; k < kTerms; ++k) {
    for (std::size_t j = 0; j < kTerms; ++j) result[j] += polynomial[k] * sequence[j + k];
  }
  return result;
}

}  // namespace veq::internal
