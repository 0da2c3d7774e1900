// How long does a walker take to have been everywhere?
//
// The vertex that it starts on counts once it has been stepped onto.
//
// - Cycle of n vertices. With k visited ones in a row and the walker at one end of the row, the
//   next new vertex lies 1 step to one side and k to the other, and a fair walk leaves an interval
//   after (distance) x (distance) = k steps on average. For k = 1 to n - 1 these sum to n(n - 1)/2.
//   Only a walker that never came back to its start still has to: from the start's neighbour it
//   reaches the last vertex first with probability 1/(n - 1), and from there the start is n - 1
//   steps away on average, which adds 1.
// - Path of n vertices, walked from an end. The far end is (n - 1)^2 steps away on average. A
//   walker that has not been back at its start then, which again has probability 1/(n - 1), has as
//   much before it once more: n(n - 1) in all.
// - Star of hub and 3 leaves, walked from the hub. Every other step ends at a leaf, and the leaves
//   come with probabilities 1/4, 1/2, 1/4 (the first and the last of a list come half as often).
//   All have come after 4 + 2 + 4 - (4/3 + 2 + 4/3) + 1 = 19/3 visits of leaves on average (by
//   inclusion and exclusion of what is still missing), and with the hub between, after 2 x 19/3 - 1
//   = 35/3 steps.
//
// The mean over some thousand walks should lie within two or three of its standard errors.
#include <cmath>
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

using Network = veq::Shared<const veq::VEQNetwork>;

// Links every vertex to the next one.
Network chain(std::uint64_t count, bool closed) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  for (std::uint64_t v = 0; v + (closed ? 0 : 1) < count; ++v) {
    from.push_back(v);
    to.push_back((v + 1) % count);
  }
  return veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      veq::VEQNumberArray::ofIndices(from), veq::VEQNumberArray::ofIndices(to));
}

Network star() {
  return veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      veq::VEQNumberArray::ofIndices({0, 0, 0}), veq::VEQNumberArray::ofIndices({1, 2, 3}));
}

double coverTime(const Network& network) {
  const auto walker = veq::VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      network, veq::VEQNumberArray::ofIndices({0}));
  walker->walkForSteps_returnPath_untilReach(kMostSteps, false, 1.0F);
  if (!walker->reachedWalkPercentage()) {
    std::cerr << "A walk did not cover the network.\n";
    std::exit(EXIT_FAILURE);
  }
  return static_cast<double>(walker->walkCount());
}

void printRow(const std::string& name, const Network& network, double expected) {
  veq::VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  double sum = 0.0;
  double squares = 0.0;
  for (std::uint64_t walk = 0; walk < kWalks; ++walk) {
    const double steps = coverTime(network);
    sum += steps;
    squares += steps * steps;
  }
  const double mean = sum / kWalks;
  const double error = std::sqrt((squares / kWalks - mean * mean) / kWalks);
  std::cout << std::left << std::setw(18) << name << std::right << std::setw(10) << mean
            << std::setw(10) << error << std::setw(10) << expected << '\n';
}

}  // namespace

int main() {
  std::cout << "Steps until every vertex has been visited, over " << kWalks << " walks\n\n"
            << "network                 mean     error  expected\n"
            << std::fixed << std::setprecision(1);
  printRow("cycle of 10", chain(10, true), 46.0);
  printRow("cycle of 20", chain(20, true), 191.0);
  printRow("path of 10", chain(10, false), 90.0);
  printRow("path of 20", chain(20, false), 380.0);
  printRow("star of 3 leaves", star(), 35.0 / 3.0);
}
