// How many steps a walker takes to have been everywhere, against how much it remembers.
//
// The mean cover time of a cycle of n vertices without memory is n (n - 1) / 2 (Lovasz, Random
// walks on graphs: a survey, 1993), and here one step more, for the start counts only once it has
// been stepped onto: 4951 for n = 100. A walker that remembers two vertices never turns back and
// covers a cycle in n steps: a walk with restricted reversals (Domb and Fisher, 1958) or without
// backtracking (Alon, Benjamini, Lubetzky and Sodin, 2007). A long memory makes it a walk that
// avoids itself where it can, also known as a kinetic growth walk (Herrero, 2005); no walk covers
// n vertices in fewer than n steps.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>
#include <veq/veq.hpp>

namespace {

constexpr std::uint64_t kVertices = 100;
constexpr std::uint64_t kWalks = 200;
constexpr std::uint64_t kMostSteps = 1'000'000;
constexpr std::array<std::uint64_t, 9> kMemories = {0, 1, 2, 4, 8, 16, 32, 64, 100};

using Network = veq::Shared<const veq::VEQNetwork>;

// Every vertex linked to the nearest ones on both sides.
Network ringLattice(std::uint64_t degree) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  for (std::uint64_t v = 0; v < kVertices; ++v) {
    for (std::uint64_t distance = 1; distance <= degree / 2; ++distance) {
      from.push_back(v);
      to.push_back((v + distance) % kVertices);
    }
  }
  return veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      veq::VEQNumberArray::ofIndices(from), veq::VEQNumberArray::ofIndices(to));
}

veq::Owned<veq::VEQNetworkAgentsGroup> walker(const Network& network, std::uint64_t start,
                                              std::uint64_t memory) {
  using veq::VEQNumberArray;
  const auto place = VEQNumberArray::ofIndices({start});
  if (memory == 0) {
    return veq::VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(network, place);
  }
  return veq::VEQNetworkDynamicAgentsGroup::
      initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
          network, place, nullptr, VEQNumberArray::ofDoubles({0.0}),
          VEQNumberArray::ofIndices({memory}));
}

double meanCoverTime(const Network& network, std::uint64_t memory) {
  std::uint64_t steps = 0;
  for (std::uint64_t walk = 0; walk < kWalks; ++walk) {
    const auto group = walker(network, walk % network->countVertices(), memory);
    group->walkForSteps_returnPath_untilReach(kMostSteps, false, 1.0F);
    if (!group->reachedWalkPercentage()) {
      std::cerr << "A walk did not cover the network.\n";
      std::exit(EXIT_FAILURE);
    }
    steps += group->walkCount();
  }
  return static_cast<double>(steps) / static_cast<double>(kWalks);
}

void printRow(const std::string& name, const Network& network) {
  veq::VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  std::cout << std::left << std::setw(26) << name << std::right << std::setw(4)
            << network->countVertices();
  for (const std::uint64_t memory : kMemories) {
    std::cout << std::setw(8) << meanCoverTime(network, memory);
  }
  std::cout << '\n';
}

}  // namespace

int main() {
  veq::setDiagnosticSink(nullptr);
  std::cout
      << "Mean steps until a walker has stepped onto every vertex, over " << kWalks
      << " walks,\nagainst the number of vertices that it remembers and avoids. See on cover\n"
         "times Lovasz (1993), on finite memory Domb and Fisher (1958), Alon et al. (2007)\n"
         "and Herrero (2005).\n\n"
      << std::left << std::setw(26) << "network" << std::right << std::setw(4) << "n";
  for (const std::uint64_t memory : kMemories) std::cout << std::setw(8) << memory;
  std::cout << '\n' << std::fixed << std::setprecision(1);

  auto& random = *veq::VEQRandomGenerator::sharedRandomGenerator();
  printRow("ring lattice, degree 2", ringLattice(2));
  printRow("ring lattice, degree 6", ringLattice(6));
  random.setRandomSeed(1);
  printRow("random, degree 6",
           veq::VEQNetwork::randomNetworkWithNumberOfVertices_degree(kVertices, 6.0)
               ->largestConnectedSubNetwork());
  random.setRandomSeed(1);
  printRow("preferential attachment, 6",
           veq::VEQNetwork::barabasiNetworkWitNumberOfVertices_approximateDegree(kVertices, 6)
               ->largestConnectedSubNetwork());
}
