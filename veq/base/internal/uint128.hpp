/// \file
/// The count type for products of two 64-bit counts.
#pragma once

#if !defined(__SIZEOF_INT128__)
#include "veq/base/internal/portable_uint128.hpp"
#endif

namespace veq {

/// What GCC and Clang have on every 64-bit target; the keyword keeps pedantic builds quiet about
/// it.
#if defined(__SIZEOF_INT128__)
__extension__ typedef unsigned __int128 Uint128;
#else
using Uint128 = internal::PortableUint128;
#endif

}  // namespace veq
