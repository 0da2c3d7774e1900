/// \file
/// How a walk chooses where to go.
#pragma once

#include <cstdint>

#include "veq/base/requirements.hpp"

namespace veq {

/// How a walker at a vertex whose list has k entries chooses one of them with a number x of 31
/// bits, at least 0 and below 1. So all shares are multiples of 2^-31.
/// \ingroup walks
enum class Choice : std::uint8_t {
  kPublished,  ///< Entry round((k - 1) x): the first and the last are taken half as often.
  kEven,       ///< Entry floor(k x): each alike.
  kWeighted,   ///< The first entry whose weight together with those before it, added in doubles,
               ///< exceeds x times the sum of all; an entry of weight 0 is never taken.
};

}  // namespace veq
