/// \file
/// How deep in the network vertices are.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// For each vertex the largest k for which it is in the k-core: in what is left when vertices with
/// fewer than k edges to others that are left are taken away until there are none. Parallel edges
/// count one by one, loops not at all; edges count at both ends unless a direction is given, which
/// makes a difference in directed networks only. (Seidman, 1983; Batagelj and Zaversnik, 2003.)
/// O(n + m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::vector<std::uint64_t> coreNumbers(
    const Network& network, Direction direction = Direction::kAll);

/// The same for who follows it or may stop it. The only error is a stop.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<std::vector<std::uint64_t>> coreNumbers(const Network& network,
                                                                        Direction direction,
                                                                        const Progress& progress);

}  // namespace veq
