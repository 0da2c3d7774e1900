/// \file
/// What vertices are called.
#pragma once

#include <cstdint>
#include <string>

#include <veq/veq.hpp>

namespace veq::tool {

/// The column of what vertices are called, "Name" or else "Id"; null where there is neither.
[[nodiscard]] Shared<const PropertyColumn> columnOfNames(const VEQNetwork& network);

/// The name of a vertex, or else its id; its index where it has neither.
[[nodiscard]] std::string vertexName(const VEQNetwork& network, std::uint64_t index);

/// How many vertices have no name or an empty one in a network that calls others by one, or that
/// has ids that are no names.
[[nodiscard]] std::uint64_t countNameless(const VEQNetwork& network);

/// Calls each such vertex by its id, or else by its index, and all of them where there are no names
/// at all. Gives how many it has named.
std::uint64_t numberNames(VEQNetwork& network);

}  // namespace veq::tool
