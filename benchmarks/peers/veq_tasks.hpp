/// \file
/// The tasks of this library in the comparison, through its public interface alone.
#pragma once

#include <cstdint>
#include <vector>

#include "program.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"
#include "workload.hpp"

namespace bench {

/// Doubles, preferential attachment and uniform random networks.
std::vector<Task> modelTasks();
/// Building, inserting, degrees, strengths, the matrix and components.
std::vector<Task> networkTasks();
/// Distances, ranks, triangles, cores and components.
std::vector<Task> questionTasks();
/// Files and archives.
std::vector<Task> formatTasks();
std::vector<Task> walkTasks();

veq::Owned<veq::VEQNumberArray> numberArrayOf(const std::vector<std::uint64_t>& values);

/// The network of the arguments' workload, weighted and named on demand.
veq::Owned<veq::VEQNetwork> networkOf(const Edges& edges, bool directed = false);
veq::Owned<veq::VEQNetwork> namedNetworkOf(const Edges& edges);

}  // namespace bench
