#pragma once

#include <cstdint>

#include "veq/base/internal/team.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Turns ends that are signed integers of any size, as they are in memory, into indices of
/// vertices: the distinct integers in ascending order, which it gives. Expected O(numbers), and
/// O(numbers log numbers) where they lie far apart. All threads of the team do everything but sort.
[[nodiscard]] RawVector<std::int64_t> numberVertices(RawVector<std::uint64_t>& from,
                                                     RawVector<std::uint64_t>& to, Team& team);

}  // namespace veq::internal
