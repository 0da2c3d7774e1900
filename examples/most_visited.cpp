// Who is visited most, and why?
//
// A walker that takes each of its k links with probability 1/k visits a vertex in proportion to its
// degree: its share is degree / 2m, for such shares leave along every link what comes in along it.
// The walkers of this library take a link in the middle of a list with probability 1 / (k - 1), and
// the first and the last one with half of that. Up to degree 2 this is the same thing; from degree
// 3 on it is not, and the shares p follow from the balance p(v) = sum of p(u) P(u -> v):
//
// - Path 0-1-2-3-4: no degree above 2, so degree / 2m holds.
// - Triangle 0-1-2 with a tail 2-3. The list of 2 is (1, 0, 3), taken with 1/4, 1/2, 1/4. With
//   p2 = 1: p3 = 1/4; p0 = p1/2 + 1/2 and p1 = p0/2 + 1/4, hence p0 = 5/6 and p1 = 2/3. The sum is
//   33/12, and the shares are 10/33, 8/33, 12/33, 3/33.
// - Star of hub 0 and leaves 1, 2, 3: every other step ends at the hub, and of the others 1/4, 1/2
//   and 1/4 at the leaves. The leaves have one degree and yet different shares.
// - The star again with its first link once more at the end. The hub's list is (1, 2, 3, 1), taken
//   with 1/6, 1/3, 1/3, 1/6, and the leaves are equals: 1/6 of all steps each.
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>
#include <veq/veq.hpp>

namespace {

constexpr std::uint64_t kSteps = 1'000'000;

struct Case {
  std::string name;
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  std::vector<double> expectedShares;
};

std::vector<Case> cases() {
  return {
      {"Path", {0, 1, 2, 3}, {1, 2, 3, 4}, {1 / 8., 2 / 8., 2 / 8., 2 / 8., 1 / 8.}},
      {"Triangle with a tail", {0, 1, 2, 2}, {1, 2, 0, 3}, {10 / 33., 8 / 33., 12 / 33., 3 / 33.}},
      {"Star", {0, 0, 0}, {1, 2, 3}, {1 / 2., 1 / 8., 1 / 4., 1 / 8.}},
      {"Star, first link repeated", {0, 0, 0, 0}, {1, 2, 3, 1}, {1 / 2., 1 / 6., 1 / 6., 1 / 6.}}};
}

void printPercent(double share) { std::cout << std::setw(10) << 100 * share; }

void walk(const Case& given) {
  const auto network = veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      veq::VEQNumberArray::ofIndices(given.from), veq::VEQNumberArray::ofIndices(given.to));
  veq::VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  const auto walker = veq::VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      network, veq::VEQNumberArray::ofIndices({0}));
  walker->walkForSteps_returnPath(kSteps, false);
  const auto visits = walker->globalVisitFrequencyOfVertices();

  std::cout << given.name << "\nvertex    degree   visited  expected  degree/2m\n";
  for (std::uint64_t v = 0; v < network->countVertices(); ++v) {
    const std::uint64_t degree = network->countEdgesOfVertexAtIndex(v);
    std::cout << std::setw(6) << v << std::setw(10) << degree;
    printPercent(static_cast<double>(visits->integerValueAtIndex(v)) / kSteps);
    printPercent(given.expectedShares[v]);
    printPercent(static_cast<double>(degree) / static_cast<double>(2 * network->countEdges()));
    std::cout << '\n';
  }
  std::cout << '\n';
}

}  // namespace

int main() {
  std::cout << "Who is visited most: percent of " << kSteps << " steps\n\n"
            << std::fixed << std::setprecision(1);
  for (const Case& given : cases()) walk(given);
}
