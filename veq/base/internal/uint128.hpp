/// \file
/// The count type for products of two 64-bit counts.
#pragma once

namespace veq {

/// GCC and Clang have it on every 64-bit target; the keyword keeps pedantic builds quiet about it.
__extension__ typedef unsigned __int128 Uint128;

}  // namespace veq
