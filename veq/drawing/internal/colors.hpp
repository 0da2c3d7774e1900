/// \file
/// Colours that most people can tell apart.
#pragma once

#include <cstdint>
#include <string>

namespace veq::internal {

/// "#21918c": from dark violet for 0 over green to yellow for 1, evenly lighter.
[[nodiscard]] std::string scaleColor(double share);

inline constexpr std::uint64_t kClassColors = 12;
/// Of one of so many classes.
[[nodiscard]] std::string classColor(std::uint64_t number);

}  // namespace veq::internal
