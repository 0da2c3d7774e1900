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

}  // namespace veq::tool
