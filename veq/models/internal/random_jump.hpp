/// \file
/// Jumping ahead in the additive-feedback sequence.
///
/// The recurrence is linear, so the word N places on is a fixed combination of 31 neighbours: its
/// coefficients are those of x^N modulo x^31 - x^28 - 1, over 32-bit integers. Squaring and
/// multiplying finds them in as many steps as N has bits.
#pragma once

#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_engine.hpp"

namespace veq::internal {

/// Coefficients of 1, x, ..., x^30.
using JumpPolynomial = RandomStream::Words;

/// x^count modulo x^31 - x^28 - 1.
[[nodiscard]] JumpPolynomial jumpPolynomial(Uint128 count);

/// The 31 words that lie as far after `words` as the polynomial's exponent says.
[[nodiscard]] RandomStream::Words jump(const JumpPolynomial& polynomial,
                                       const RandomStream::Words& words);

}  // namespace veq::internal
