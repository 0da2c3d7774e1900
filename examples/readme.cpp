#include <iostream>
#include <veq/veq.hpp>

int main() {
  const auto network = veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      veq::VEQNumberArray::ofIndices({0, 1, 2, 2}), veq::VEQNumberArray::ofIndices({1, 2, 0, 3}));
  veq::VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  const auto agents = veq::VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      network, veq::VEQNumberArray::ofIndices({3}));
  agents->walkForSteps_returnPath(1000, false);
  std::cout << agents->globalVisitFrequencyOfVertices()->description() << '\n';
}
