/// \file
/// The paths of a walk as a table for other programs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// Writes a CSV file, "agent,step,index,name", with one line for each agent and step; step 0 is the
/// start, to a file or to standard output for "-". Failure where not everything can be written; the
/// old file, if there is one, stays.
void writePaths(const std::string& file, const VEQNetwork& network,
                const std::vector<std::uint64_t>& starts, const VEQVertexPaths& paths);

}  // namespace veq::tool
