/// \file
/// Where the agents of a walk start.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// One vertex for each agent: agent i starts at the i-th of the listed vertices, "V,V,...", each a
/// name or else an index, and again at the first after the last. An empty list stands for all
/// vertices. Failure, naming the network's file, for a vertex that the network lacks.
[[nodiscard]] std::vector<std::uint64_t> startVertices(const VEQNetwork& network,
                                                       const std::string& file,
                                                       std::string_view list, std::uint64_t agents);

}  // namespace veq::tool
