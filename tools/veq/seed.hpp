/// \file
/// The seed of a run.
#pragma once

#include <cstdint>
#include <optional>

namespace veq::tool {

/// Seeds the shared random generator with the given number or one of its own choice, and returns
/// that number, so that every run can be repeated.
std::uint64_t useSeed(std::optional<std::uint64_t> seed);

}  // namespace veq::tool
