// How do strength and degree relate?
//
// The strength of a vertex is the sum of the weights of its links.
//
// - Equal weights w: strength = w x degree.
// - Groups in which everybody knows everybody, and each pair met as often as each of them has
//   acquaintances: k links of weight k make strength = degree^2. Strength then says more than
//   degree does.
// - Weights that have nothing to do with the links: deal the weights of all links out anew, and a
//   vertex can expect degree x (mean weight). In Les Misérables 254 links carry a weight of 820 in
//   all, 3.228 on average. Valjean has 36 links and would have a strength of 116.2; counting his
//   lines in the file gives 158. Who knows many meets each of them more often.
#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <numeric>
#include <utility>
#include <vector>
#include <veq/veq.hpp>

namespace {

using veq::VEQNetwork;
using veq::VEQNumberArray;

// Groups of 2, 3, 4, 5 and 6 acquainted people; the weights come from the number of acquaintances.
template <class Weight>
void printGroups(const char* title, Weight weight) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  std::vector<float> weights;
  std::uint64_t first = 0;
  for (std::uint64_t size = 2; size <= 6; first += size, ++size) {
    for (std::uint64_t i = 0; i < size; ++i) {
      for (std::uint64_t j = i + 1; j < size; ++j) {
        from.push_back(first + i);
        to.push_back(first + j);
        weights.push_back(weight(size - 1));
      }
    }
  }
  const auto network = VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to));
  network->setEdgesWeightValues(
      *VEQNumberArray::numberArrayWithFloatArray_count(weights.data(), weights.size()));
  const auto strengths = network->calcStrengths();
  std::cout << title << "\ndegree  strength  expected\n";
  first = 0;
  for (std::uint64_t size = 2; size <= 6; first += size, ++size) {
    const std::uint64_t degree = size - 1;
    std::cout << std::setw(6) << degree << std::setw(10) << strengths->values<double>()[first]
              << std::setw(10) << weight(degree) * static_cast<float>(degree) << '\n';
  }
  std::cout << '\n';
}

// The mean strengths after many random dealings of the weights that the links have.
std::vector<double> strengthsByChance(VEQNetwork& network, int dealings) {
  auto& random = *veq::VEQRandomGenerator::sharedRandomGenerator();
  random.setRandomSeed(1);
  const auto weights = network.edgesWeightValues();
  const auto values = weights->values<float>();
  std::vector<double> means(network.countVertices(), 0.0);
  for (int dealing = 0; dealing < dealings; ++dealing) {
    for (std::size_t left = values.size(); left > 1; --left) {
      // Not randomIntegerFrom_to, whose ends come half as often.
      const auto other =
          static_cast<std::size_t>(random.randomDouble() * static_cast<double>(left));
      std::swap(values[left - 1], values[other]);
    }
    network.setEdgesWeightValues(*weights);
    const auto strengths = network.calcStrengths();
    for (std::size_t v = 0; v < means.size(); ++v) {
      means[v] += strengths->values<double>()[v] / dealings;
    }
  }
  return means;
}

void printCharacters() {
  const auto network = VEQNetwork::networkWithContentsOfFile(VEQ_DATA "/lesmis.xnet");
  const auto degrees = network->calcDegrees();
  const auto strengths = network->calcStrengths();
  const auto byChance = strengthsByChance(*network, 1000);
  std::vector<std::uint64_t> order(network->countVertices());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](std::uint64_t a, std::uint64_t b) {
    return degrees->values<double>()[a] > degrees->values<double>()[b];
  });
  std::cout << "Les Misérables\nname        degree  strength  by chance  expected\n";
  for (std::size_t i = 0; i < 5; ++i) {
    const std::uint64_t v = order[i];
    const double degree = degrees->values<double>()[v];
    std::cout << std::left << std::setw(10) << network->vertexAtIndex(v)->description()
              << std::right << std::setprecision(0) << std::setw(8) << degree << std::setw(10)
              << strengths->values<double>()[v] << std::setprecision(1) << std::setw(11)
              << byChance[v] << std::setw(10) << degree * 820 / 254 << '\n';
  }
}

}  // namespace

int main() {
  veq::setDiagnosticSink(nullptr);
  std::cout << std::fixed << std::setprecision(0);
  printGroups("Every pair met 3 times", [](std::uint64_t) { return 3.0F; });
  printGroups("Every pair met as often as each has acquaintances",
              [](std::uint64_t degree) { return static_cast<float>(degree); });
  printCharacters();
}
