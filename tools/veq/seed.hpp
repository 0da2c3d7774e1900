/// \file
/// The random numbers of a run.
#pragma once

#include <cstdint>
#include <optional>

#include <veq/veq.hpp>

namespace veq::tool {

/// Seeds the shared random generator with the given number or one of its own choice, and returns
/// that number, so that every run can be repeated.
std::uint64_t useSeed(std::optional<std::uint64_t> seed);

/// The sequence that the seed begins, or one of its substreams; seed 0 counts as 1.
[[nodiscard]] RandomState stateOf(std::uint64_t seed, std::optional<std::uint64_t> substream);

}  // namespace veq::tool
