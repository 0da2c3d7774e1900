/// \file
/// What a compiler must be told before the rest can mean what it says. A header that nobody has
/// ends the compilation with the one error that matters; hundreds would follow it.
#pragma once

#if __cplusplus < 202002L
#error "VEQ needs C++20: compile with -std=c++20 or later."
#include "the end"
#endif

// Sums would keep more bits than a double has, and differ from those of other processors.
#if defined(__i386__) && defined(__FLT_EVAL_METHOD__) && __FLT_EVAL_METHOD__ != 0
#error "VEQ needs sums in doubles: compile with -msse2 -mfpmath=sse."
#include "the end"
#endif
