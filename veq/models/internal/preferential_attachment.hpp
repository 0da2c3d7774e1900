/// \file
/// Networks that grow by preferential attachment.
#pragma once

#include <cstdint>
#include <optional>

#include "veq/models/internal/random_source.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// The edges of `iterations` new vertices, each linked to `degreeGrowth` different older ones.
/// std::out_of_range where a substream ends before.
/// Nothing, and nothing drawn, where a new vertex could never find enough of them, or where no
/// memory could hold the result. Expected O(edges).
[[nodiscard]] std::optional<NetworkDraft> preferentialAttachment(std::uint64_t initialVertices,
                                                                 std::uint64_t degreeGrowth,
                                                                 std::uint64_t iterations,
                                                                 RandomSource source);

}  // namespace veq::internal
