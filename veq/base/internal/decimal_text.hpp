#pragma once

#include "veq/base/export.hpp"

namespace veq::internal {

/// Reads the number at `at` (a sign, digits with at most one point, an exponent) and answers where
/// it ends; null if there is none. The value is the nearest number, ties to even; an infinity
/// beyond the range, a zero below it.
VEQ_EXPORT const char* readDecimal(const char* at, const char* end, double& value);
const char* readDecimal(const char* at, const char* end, float& value);

}  // namespace veq::internal
