// Do the visits of a walk follow its law?
//
// Where a walk is in the long run follows from the probabilities of its steps alone: the shares p
// of its visits are balanced, p(v) = sum of p(u) P(u -> v). For three networks the answer is known:
//
// - Ring of n vertices: lists of two, whose entries are halves, so all vertices are alike, 1/n
// each,
//   and a vertex at distance d is d(n - d) steps away on average. 0.2 and, from the vertex opposite
//   of 6, 9 steps.
// - Star of hub 0 and leaves 1, 2, 3: every other step ends at the hub; the leaves share the other
//   half by the hub's choice, which is 1/4, 1/2, 1/4 as published and 1/3 each where it is even.
// - Complete network of n vertices, each chosen alike: 1/n, and every other vertex is n - 1 steps
//   away. (The choice as published prefers the middle of a list, and here these are the vertices in
//   the middle, except that a vertex is missing in its own list.)
//
// The karate club has no such answer. For even choices p is degree / 2m: along every edge as much
// comes as goes. For the published ones the 34 balances are solved as linear equations. A walk of
// 10^6 steps then visits each member as often as its share says, but for chance: about the root of
// p / 10^6, some more where the walk returns soon. So no difference should exceed a few times 0.03
// %.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <numeric>
#include <string>
#include <vector>
#include <veq/veq.hpp>

namespace {

constexpr std::uint64_t kSteps = 1'000'000;

using Indices = std::vector<std::uint64_t>;

veq::Network networkOf(const Indices& from, const Indices& to) {
  return veq::Network(veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      veq::VEQNumberArray::ofIndices(from), veq::VEQNumberArray::ofIndices(to)));
}

veq::WalkLaw lawOf(const veq::Network& network, veq::Choice choice) {
  veq::WalkLawOptions options;
  options.choice = choice;
  return veq::WalkLaw::of(network, options).value();
}

void printShares(const std::string& name, const veq::Network& network, veq::Choice choice) {
  std::cout << std::left << std::setw(20) << name << std::right;
  for (const double share : lawOf(network, choice).stationary().value().shares) {
    std::cout << std::setw(8) << share;
  }
  std::cout << '\n';
}

void printSteps(const std::string& name, const veq::Network& network, veq::Choice choice,
                std::uint64_t from, std::uint64_t to) {
  const double steps = lawOf(network, choice).hittingTimes(to).value().steps[from];
  std::cout << "From " << from << " to " << to << " in the " << name << ": " << steps << " steps\n";
}

void printKnownNetworks() {
  const veq::Network ring5 = networkOf({0, 1, 2, 3, 4}, {1, 2, 3, 4, 0});
  const veq::Network ring6 = networkOf({0, 1, 2, 3, 4, 5}, {1, 2, 3, 4, 5, 0});
  const veq::Network star = networkOf({0, 0, 0}, {1, 2, 3});
  const veq::Network complete = networkOf({0, 0, 0, 1, 1, 2}, {1, 2, 3, 2, 3, 3});
  std::cout << "Shares of visits, vertex by vertex\n";
  std::cout << std::fixed << std::setprecision(4);
  printShares("ring of 5", ring5, veq::Choice::kPublished);
  printShares("star, published", star, veq::Choice::kPublished);
  printShares("star, even", star, veq::Choice::kEven);
  printShares("complete of 4, even", complete, veq::Choice::kEven);
  std::cout << std::setprecision(1);
  printSteps("ring of 6", ring6, veq::Choice::kPublished, 3, 0);
  printSteps("complete network", complete, veq::Choice::kEven, 2, 1);
}

std::vector<double> visitedShares(const veq::Network& network) {
  veq::VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  const auto walker = veq::VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      network.published(), veq::VEQNumberArray::ofIndices({0}));
  walker->walkForSteps_returnPath(kSteps, false);
  const auto visits = walker->globalVisitFrequencyOfVertices();
  std::vector<double> shares;
  for (std::uint64_t v = 0; v < network.countVertices(); ++v) {
    shares.push_back(static_cast<double>(visits->integerValueAtIndex(v)) / kSteps);
  }
  return shares;
}

void printKarateClub() {
  const veq::Network club(veq::VEQNetwork::networkWithContentsOfFile(VEQ_DATA "/karate.xnet"));
  const auto shares = lawOf(club, veq::Choice::kPublished).stationary().value().shares;
  const std::vector<double> visited = visitedShares(club);
  Indices order(club.countVertices());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](auto a, auto b) { return shares[a] > shares[b]; });
  std::cout << "\nThe five most visited of the karate club, in percent\n"
            << "vertex  degree/2m       law   visited\n"
            << std::setprecision(2);
  double worst = 0.0;
  for (const std::uint64_t v : order) {
    worst = std::max(worst, std::abs(visited[v] - shares[v]));
  }
  for (const std::uint64_t v : Indices(order.begin(), order.begin() + 5)) {
    const auto degree = static_cast<double>(club.published()->countEdgesOfVertexAtIndex(v));
    std::cout << std::setw(6) << v << std::setw(11)
              << 100 * degree / static_cast<double>(2 * club.countEdges()) << std::setw(10)
              << 100 * shares[v] << std::setw(10) << 100 * visited[v] << '\n';
  }
  std::cout << "No share differs from the law by more than " << 100 * worst << ".\n";
}

}  // namespace

int main() {
  printKnownNetworks();
  printKarateClub();
}
