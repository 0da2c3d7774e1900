#include <malloc.h>

#include "veq/agents/agents_group.hpp"
#include "veq/agents/dynamic_agents_group.hpp"
#include "veq/models/random_generator.hpp"
#include "veq_tasks.hpp"

namespace bench {
namespace {

using veq::VEQNetworkAgentsGroup;
using veq::VEQNetworkDynamicAgentsGroup;
using veq::VEQRandomGenerator;

/// A network with a group on it, and where its agents start.
struct Scene {
  explicit Scene(const Arguments& arguments)
      : agents(arguments.count("A", 1)), steps(arguments.count("S", 1000)) {
    const Edges edges = edgesOf(arguments);
    starts = numberArrayOf(startsOf(edges, agents));
    network = networkOf(edges);
    const std::uint64_t memory = arguments.count("memory");
    group = memory == 0
                ? VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(network, *starts)
                : VEQNetworkDynamicAgentsGroup::
                      initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
                          network, *starts, nullptr,
                          *veq::VEQNumberArray::initWithIntegerScalar_count(0, agents),
                          *veq::VEQNumberArray::initWithIntegerScalar_count(
                              static_cast<std::int64_t>(memory), agents));
  }

  void begin() const {
    VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(7);
    group->setAgentsCurrentVerticesIndices(*starts);
  }
  [[nodiscard]] std::uint64_t checksum() const {
    std::vector<std::uint64_t> positions;
    for (std::uint64_t agent = 0; agent < agents; ++agent) {
      positions.push_back(group->currentVertexOfAgent(agent)->identification());
    }
    return checksumOfPositions(positions);
  }

  std::uint64_t agents;
  std::uint64_t steps;
  veq::Owned<veq::VEQNumberArray> starts;
  veq::Shared<veq::VEQNetwork> network;
  veq::Owned<VEQNetworkAgentsGroup> group;
};

/// paths=1 asks for paths, reach= for a target, memory= for agents that remember so many visits.
/// Every walk is a group's first one.
bool measureWalk(const Arguments& arguments, Measurement& measurement) {
  const Scene scene(arguments);
  const bool paths = arguments.count("paths") != 0;
  const auto reach = static_cast<float>(arguments.real("reach", 0));
  measurement.time(
      [&] {
        scene.begin();
        return scene.group->walkForSteps_returnPath_untilReach(scene.steps, paths, reach);
      },
      [&](const auto&) {
        const std::uint64_t checksum = scene.checksum();
        scene.group->flushWalkHistory();
        return checksum;
      });
  measurement.addNanoseconds("ns_per_step", static_cast<double>(scene.agents * scene.steps));
  return true;
}

/// What a walk adds to the peak of resident memory. A fresh process for each measurement: reps=1.
bool measureMemory(const Arguments& arguments, Measurement& measurement) {
  const Scene scene(arguments);
  const bool paths = arguments.count("paths") != 0;
  malloc_trim(0);
  const std::uint64_t before = residentKilobytes();
  // The kernel's peak would otherwise be that of making the network.
  std::ofstream("/proc/self/clear_refs") << 5;
  measurement.time(
      [&] {
        scene.begin();
        return scene.group->walkForSteps_returnPath_untilReach(scene.steps, paths, 0);
      },
      [&](const auto&) { return scene.checksum(); });
  const auto bytes = 1024 * (static_cast<double>(peakKilobytes()) - static_cast<double>(before));
  measurement.add("peak_MB", bytes * 1e-6);
  measurement.add("bytes_per_move", bytes / static_cast<double>(scene.agents * scene.steps));
  return true;
}

/// One call for each step, with its paths.
bool measureSingleSteps(const Arguments& arguments, Measurement& measurement) {
  const Scene scene(arguments);
  measurement.time(
      [&] {
        scene.begin();
        std::uint64_t paths = 0;
        for (std::uint64_t step = 0; step < scene.steps; ++step) {
          paths += scene.group->tellAgentsToWalkToNextVertices().count();
        }
        return paths;
      },
      [&](std::uint64_t) {
        const std::uint64_t checksum = scene.checksum();
        scene.group->flushWalkHistory();
        return checksum;
      });
  measurement.addNanoseconds("ns_per_step", static_cast<double>(scene.agents * scene.steps));
  return true;
}

}  // namespace

std::vector<Task> walkTasks() {
  return {
      {"walk", measureWalk}, {"walk_memory", measureMemory}, {"single_steps", measureSingleSteps}};
}

}  // namespace bench
