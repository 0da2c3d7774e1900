/// \file
/// One loop, compiled twice: for every x86-64 processor, and for those with 256-bit integer
/// vectors.
///
/// Write the loop once as a VEQ_INLINE function, call it from a plain function and from one marked
/// VEQ_WIDE_VECTORS, and choose at run time with wideVectorsRun(). A plain branch needs no help
/// from the linker, so it works under every sanitizer and in position-independent code. Fused
/// multiply-adds stay off in both, so both give the same bits. Elsewhere both are the plain form.
#pragma once

#define VEQ_INLINE __attribute__((always_inline)) inline

#if defined(__x86_64__)
#define VEQ_WIDE_VECTORS __attribute__((target("avx2")))
#else
#define VEQ_WIDE_VECTORS
#endif

namespace veq::internal {

/// Whether this processor runs what is marked VEQ_WIDE_VECTORS.
[[nodiscard]] inline bool wideVectorsRun() {
#if defined(__x86_64__)
  return __builtin_cpu_supports("avx2");
#else
  return false;
#endif
}

}  // namespace veq::internal
