#pragma once

#include <cstdint>
#include <vector>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VEQ_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VEQ_TEST_SANITIZED 1
#endif
#endif

namespace veq::test {

/// Sanitizers touch the memory that they hand out, and stop the process where there is not enough.
#ifdef VEQ_TEST_SANITIZED
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

/// Numbers at and around the ends of what types hold, as indices of small things: whoever keeps too
/// few bits of one finds something at 0, 1 or 2.
inline const std::vector<std::uint64_t>& indicesFarBeyond() {
  static const std::vector<std::uint64_t> indices = [] {
    std::vector<std::uint64_t> made;
    for (const unsigned bits : {31U, 32U, 53U, 63U}) {
      const std::uint64_t power = std::uint64_t{1} << bits;
      for (const std::uint64_t at : {power - 1, power, power + 1, power + 2}) made.push_back(at);
    }
    made.push_back(UINT64_MAX - 1);
    made.push_back(UINT64_MAX);
    return made;
  }();
  return indices;
}

/// Sizes that no memory holds, at and around the same ends.
inline const std::vector<std::uint64_t>& sizesBeyondMemory() {
  static const std::vector<std::uint64_t> sizes = [] {
    std::vector<std::uint64_t> made;
    // Below, a sanitizer would stop the process.
    if (!kIsSanitized) made = {(std::uint64_t{1} << 53) - 1, std::uint64_t{1} << 53};
    for (const unsigned bits : {61U, 62U, 63U}) {
      const std::uint64_t power = std::uint64_t{1} << bits;
      for (const std::uint64_t size : {power - 1, power, power + 1}) {
        if (size >= std::uint64_t{1} << 61 || !kIsSanitized) made.push_back(size);
      }
    }
    made.push_back(UINT64_MAX - 1);
    made.push_back(UINT64_MAX);
    return made;
  }();
  return sizes;
}

}  // namespace veq::test
