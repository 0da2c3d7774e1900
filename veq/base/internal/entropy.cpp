#include "veq/base/internal/entropy.hpp"

#include <chrono>
#include <exception>
#include <random>

#if __has_include(<unistd.h>)
#include <unistd.h>
#endif
#if __has_include(<sys/random.h>)
#include <sys/random.h>
#define VEQ_HAS_GETENTROPY 1
#endif

namespace veq::internal {

std::uint32_t systemEntropy() {
#ifdef VEQ_HAS_GETENTROPY
  std::uint32_t bits = 0;
  if (::getentropy(&bits, sizeof bits) == 0) return bits;
#endif
  try {
    return static_cast<std::uint32_t>(std::random_device{}());
  } catch (const std::exception&) {  // no device file, as in a bare chroot: the clock still differs
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    return static_cast<std::uint32_t>(ticks) ^ static_cast<std::uint32_t>(ticks >> 32);
  }
}

}  // namespace veq::internal
