// Does memory help a walker to see everything sooner?
//
// It avoids the vertices that it remembers while it knows a neighbour that it does not remember,
// and it does not remember where it started. How long it takes without memory, cover_time.cpp
// derives.
//
// A memory of 1 holds the vertex on which the walker stands, and so changes nothing.
//
// A memory of 2 keeps it from turning back.
// - Cycle of n: it goes round, or steps back onto its start once and goes round the other way. Both
//   end after exactly n steps.
// - Path of n from an end: half of the walks step back onto the start at once and then go straight
//   to the far end, n + 1 steps; the others go to the far end and all the way back, 2(n - 1). The
//   mean is (3n - 1)/2.
// - Star of 3 leaves from the hub: it never takes the same leaf twice in a row. The second leaf is
//   new, and from then on each has probability 1/2 of being the third: 2 + 2 visits of leaves, 7
//   steps.
//
// A memory of everything is not better than that of everything that matters.
// - Cycle: n steps again.
// - Path: half of the walks take n + 1 steps as before. The others reach the far end after n - 1,
//   remember every neighbour from then on, wander like a walker without memory until vertex 1 is
//   reached after (n - 2)^2 steps on average, and find the start, which they do not remember, with
//   the next one. The mean is ((n - 1) + (n - 2)^2 + 1 + (n + 1))/2.
// - Star: a new leaf every time, 5 steps.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>
#include <veq/veq.hpp>

namespace {

constexpr std::uint64_t kWalks = 2000;
constexpr std::uint64_t kMostSteps = 1'000'000;
constexpr std::uint64_t kEverything = 10'000;
constexpr std::array<std::uint64_t, 3> kMemories = {1, 2, kEverything};

using Network = veq::Shared<const veq::VEQNetwork>;
using veq::VEQNumberArray;

// Links every vertex to the next one.
Network chain(std::uint64_t count, bool closed) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  for (std::uint64_t v = 0; v + (closed ? 0 : 1) < count; ++v) {
    from.push_back(v);
    to.push_back((v + 1) % count);
  }
  return veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(VEQNumberArray::ofIndices(from),
                                                                VEQNumberArray::ofIndices(to));
}

Network star() {
  return veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      VEQNumberArray::ofIndices({0, 0, 0}), VEQNumberArray::ofIndices({1, 2, 3}));
}

double meanCoverTime(const Network& network, std::uint64_t memory) {
  veq::VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  std::uint64_t steps = 0;
  for (std::uint64_t walk = 0; walk < kWalks; ++walk) {
    // One agent at vertex 0, which nobody listens to and which makes no errors.
    const auto walker = veq::VEQNetworkDynamicAgentsGroup::
        initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
            network, VEQNumberArray::ofIndices({0}), nullptr, VEQNumberArray::ofDoubles({0.0}),
            VEQNumberArray::ofIndices({memory}));
    walker->walkForSteps_returnPath_untilReach(kMostSteps, false, 1.0F);
    if (!walker->reachedWalkPercentage()) {
      std::cerr << "A walk did not cover the network.\n";
      std::exit(EXIT_FAILURE);
    }
    steps += walker->walkCount();
  }
  return static_cast<double>(steps) / kWalks;
}

void printRow(const std::string& name, const Network& network,
              const std::array<double, kMemories.size()>& expected) {
  std::cout << std::left << std::setw(18) << name << std::right;
  for (std::size_t i = 0; i < kMemories.size(); ++i) {
    std::cout << std::setw(8) << meanCoverTime(network, kMemories[i]) << " (" << std::setw(5)
              << expected[i] << ')';
  }
  std::cout << '\n';
}

}  // namespace

int main() {
  std::cout << "Mean steps until every vertex has been visited, over " << kWalks
            << " walks (expected)\n\n"
            << "memory                          1               2      everything\n"
            << std::fixed << std::setprecision(1);
  printRow("cycle of 20", chain(20, true), {191.0, 20.0, 20.0});
  printRow("path of 20", chain(20, false), {380.0, 29.5, 182.5});
  printRow("star of 3 leaves", star(), {35.0 / 3.0, 7.0, 5.0});
}
