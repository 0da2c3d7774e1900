#include "veq/models/internal/geometric_skips.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>

#include "veq/base/internal/uint128.hpp"

namespace veq::internal {
namespace {

constexpr Uint128 kOne = Uint128{1} << 127;
constexpr std::size_t kLanes = 8;

// a^2 in units of 2^-127, rounded down.
Uint128 squared(Uint128 a) {
  const Uint128 high = a >> 64;
  const Uint128 low = static_cast<std::uint64_t>(a);
  return (high * high << 1) + ((2 * high * low + (low * low >> 64)) >> 63);
}

std::uint64_t rounded(Uint128 a) {
  return static_cast<std::uint64_t>((a + (Uint128{1} << 63)) >> 64);
}

}  // namespace

GeometricSkips::GeometricSkips(double probability, std::uint64_t things) {
  Uint128 power = kOne - static_cast<Uint128>(probability * 0x1p127);
  const int most = std::min(63, static_cast<int>(std::bit_width(things)));
  for (levels_ = 0; levels_ < most; ++levels_, power = squared(power)) {
    powers_[static_cast<std::size_t>(levels_)] = rounded(power);
    if (rounded(power) == 0) break;  // and so would all higher ones
  }
}

std::uint64_t GeometricSkips::operator()(std::uint64_t u) const {
  std::uint64_t skip = 0;
  many({&u, 1}, &skip);
  return skip;
}

void GeometricSkips::many(std::span<const std::uint64_t> us, std::uint64_t* skips) const {
  for (std::size_t first = 0; first < us.size(); first += kLanes) {
    const std::size_t some = std::min(kLanes, us.size() - first);
    std::uint64_t wanted[kLanes]{};
    std::uint64_t reached[kLanes];
    std::uint64_t passed[kLanes]{};
    std::fill_n(reached, kLanes, std::uint64_t{1} << 63);
    for (std::size_t l = 0; l < some; ++l) wanted[l] = 2 * us[first + l] + 1;
    for (int level = levels_; level-- > 0;) {
      const std::uint64_t power = powers_[static_cast<std::size_t>(level)];
      for (std::size_t l = 0; l < kLanes; ++l) {
        const auto next = static_cast<std::uint64_t>(Uint128{reached[l]} * power >> 63);
        const bool farther = next > wanted[l];
        reached[l] = farther ? next : reached[l];
        passed[l] |= std::uint64_t{farther} << level;
      }
    }
    std::copy_n(passed, some, skips + first);
  }
}

}  // namespace veq::internal
