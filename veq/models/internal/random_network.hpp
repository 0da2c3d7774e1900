/// \file
/// Uniform random networks.
#pragma once

#include <cstdint>
#include <optional>

#include "veq/models/internal/random_source.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Every pair of vertices, row by row, linked where degree / count exceeds the pair's draw. Draws
/// come in whole batches of count x degree + 1, converted by the rules of convertNumber: one to
/// begin with, and another whenever one is used up. std::bad_alloc, and nothing drawn, where memory
/// cannot hold as many edges as are to be expected; std::out_of_range where a substream is shorter.
/// O(count^2), but O(edges) where the degree decides every pair.
[[nodiscard]] std::optional<NetworkDraft> randomNetwork(std::uint64_t count, double degree,
                                                        RandomSource source);

}  // namespace veq::internal
