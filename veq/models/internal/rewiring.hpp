/// \file
/// Exchanges of edge ends that keep all degrees.
#pragma once

#include <cstdint>

#include "veq/models/internal/generating.hpp"

namespace veq::internal {

/// As rewiredNetwork says. Vertices are below 2^32 - 1.
void rewire(GrowingEnds& ends, bool directed, std::uint64_t tries, DrawBlocks& draws, Pace& pace);

}  // namespace veq::internal
