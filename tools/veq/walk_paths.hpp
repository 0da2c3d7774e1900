/// \file
/// What a walk did, step by step, as tables for other programs.
#pragma once

#include <string>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// Writes a CSV file, "agent,step,index,name", with one line for each agent and step; step 0 is the
/// start, and an agent that cannot move stays. Failure where not everything can be written; the old
/// file, if there is one, stays.
void writePaths(const std::string& file, const VEQNetwork& network, const WalkPaths& paths);

/// The same for "step,vertices": the steps in which vertices were reached for the first time, and
/// how many had been by then.
void writeCoverage(const std::string& file, const std::vector<Coverage>& coverage);

}  // namespace veq::tool
