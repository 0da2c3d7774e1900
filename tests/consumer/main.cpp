// Uses the library as somebody else's program does, with an eye on what may break between a program
// and a shared library: exceptions, types looked up at run time, classes derived from the
// library's, and what the headers themselves call.
#include <iostream>
#include <stdexcept>
#include <string>
#include <veq/veq.hpp>

namespace {

class Colour final : public veq::PropertyObject {
 public:
  std::string description() const override { return "green"; }
};

void build() {
  // 0 -> 1 -> 2 -> 0, and 2 -> 2.
  const auto network = veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed(
      veq::VEQNumberArray::ofIndices({0, 1, 2, 2}), veq::VEQNumberArray::ofIndices({1, 2, 0, 2}),
      true);
  std::cout << network->countVertices() << " vertices, " << network->countEdges() << " edges\n";
  for (const veq::VEQVertex& vertex : network->vertices()) {
    std::cout << vertex.description() << ": " << vertex.countEdges() << '\n';
  }

  try {
    network->setWeightValue_atVertexIndex(1.0F, 3);
  } catch (const std::invalid_argument& error) {
    std::cout << error.what() << '\n';
  }

  network->setPropertyValue_forKey_atVertexIndex(std::make_shared<Colour>(), "Colour", 1);
  const auto colours = *network->propertiesOfVertices()->find("Colour");
  std::cout << colours->objectAtIndex(1).text() << '\n';
  const bool generic = dynamic_cast<const veq::GenericArray*>(colours.get()) != nullptr;
  const bool number = dynamic_cast<const veq::VEQNumberArray*>(colours.get()) != nullptr;
  std::cout << "generic " << generic << ", number " << number << '\n';
}

void draw() {
  veq::VEQRandomGenerator* const generator = veq::VEQRandomGenerator::sharedRandomGenerator();
  generator->setRandomSeed(1);
  std::cout << generator->randomInteger() << '\n';
}

// On a ring of which every vertex has one successor, a walk leaves nothing to chance.
void walk() {
  const auto ring = veq::VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed(
      veq::VEQNumberArray::ofIndices({0, 1, 2}), veq::VEQNumberArray::ofIndices({1, 2, 0}), true);
  const auto agents = veq::VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      ring, veq::VEQNumberArray::ofIndices({0}));
  const veq::VEQVertexPaths paths = agents->walkForSteps(4);
  for (const veq::VEQVertex& vertex : paths[0]) std::cout << vertex.identification() << ' ';
  std::cout << '\n' << agents->globalVisitFrequencyOfVertices()->description() << '\n';
}

}  // namespace

int main() {
  build();
  draw();
  walk();
}
