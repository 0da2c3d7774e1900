/// \file
/// Where the agents of a walk start.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// One vertex for each agent: agent i starts at the i-th of those that the value of --start lists,
/// and again at the first after the last. The value is one vertex, or a list "V,V,..." in which a
/// name with commas stands in double quotes, or else the name of a file with one vertex a line. A
/// vertex is called by its name, or else by its index. An empty value stands for all vertices;
/// "uniform" and "degree" draw one for each agent, from the state or the shared generator. What is
/// no vertex, empty or more than the agents ends the command.
[[nodiscard]] std::vector<std::uint64_t> startVertices(const Network& network,
                                                       const std::string& file,
                                                       const std::string& value,
                                                       std::uint64_t agents, RandomState* random);
/// The same where vertices have no names.
[[nodiscard]] std::vector<std::uint64_t> startVertices(const WalkNetwork& network,
                                                       const std::string& file,
                                                       const std::string& value,
                                                       std::uint64_t agents, RandomState* random);

}  // namespace veq::tool
