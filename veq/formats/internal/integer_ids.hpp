#pragma once

#include <cstdint>

#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Turns ends that are numbers of any size into indices of vertices: the distinct numbers in
/// ascending order, which it gives. Expected O(numbers), and O(numbers log numbers) where they lie
/// far apart.
[[nodiscard]] RawVector<std::int64_t> numberVertices(RawVector<std::int64_t>& from,
                                                     RawVector<std::int64_t>& to);

/// The same memory read as indices; the numbers must not be negative.
[[nodiscard]] RawVector<std::uint64_t> asIndices(const RawVector<std::int64_t>& numbers);

}  // namespace veq::internal
