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

/// A substream of the sequence that the seed begins; seed 0 counts as 1.
[[nodiscard]] RandomState substreamOf(std::uint64_t seed, std::uint64_t number);

}  // namespace veq::tool
