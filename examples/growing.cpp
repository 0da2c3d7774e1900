// What does a network become that grows under the feet of its walker?
//
// Vertices are never added, so a network that will grow is made with all the vertices that it will
// have, and those without edges wait. A group may not walk while edges are inserted; one step at a
// time leaves room between.
//
// - Newcomers: in every turn the walker takes a step, and the next waiting vertex is linked to the
//   vertex on which it stands. Each turn adds a vertex and an edge to one connected whole, so with
//   the pair 0-1 at the start it is a tree: n - 1 edges, one component, and degrees that sum to
//   2(n - 1).
// - Friends of friends: on a cycle, whenever two steps took the walker to a vertex that is not
//   linked with the one from where it came, that link is made. As long as a pair is missing, some
//   pair at distance two is missing, and the walker will come by: in the end every pair is linked,
//   n(n - 1)/2 edges, and every degree is n - 1.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <vector>
#include <veq/veq.hpp>

namespace {

using veq::VEQNetwork;
using veq::VEQNetworkAgentsGroup;
using veq::VEQNumberArray;
using Network = veq::Shared<VEQNetwork>;

void link(VEQNetwork& network, std::uint64_t from, std::uint64_t to) {
  network.addEdgesFromVerticesIndices_toVerticesIndices_count(&from, &to, 1);
}

bool areLinked(const VEQNetwork& network, std::uint64_t a, std::uint64_t b) {
  const auto neighbours = network.indicesOfVerticesLinkedFromVertexAtIndex(a);
  const auto values = neighbours->values<std::uint64_t>();
  return std::find(values.begin(), values.end(), b) != values.end();
}

std::uint64_t placeAfterStep(VEQNetworkAgentsGroup& walker) {
  walker.walkForSteps_returnPath(1, false);
  return walker.currentVertexOfAgent(0)->identification();
}

void growTree(std::uint64_t count) {
  const Network network = VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices(
      count, VEQNumberArray::ofIndices({0}), VEQNumberArray::ofIndices({1}));
  const auto walker = VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      network, VEQNumberArray::ofIndices({0}));
  for (std::uint64_t newcomer = 2; newcomer < count; ++newcomer) {
    link(*network, newcomer, placeAfterStep(*walker));
  }
  std::uint64_t degrees = 0;
  for (const veq::VEQVertex& vertex : network->vertices()) degrees += vertex.countEdges();
  std::cout << "Newcomers, " << count << " vertices\n"
            << "edges       " << network->countEdges() << ", expected " << count - 1 << '\n'
            << "components  " << network->connectedSubNetworksArray().size() << ", expected 1\n"
            << "degrees     " << degrees << ", expected " << 2 * (count - 1) << "\n\n";
}

void closeTriangles(std::uint64_t count) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  for (std::uint64_t v = 0; v < count; ++v) {
    from.push_back(v);
    to.push_back((v + 1) % count);
  }
  const Network network = VEQNetwork::networkWithLinksIndexedFrom_toIndices(
      VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to));
  const auto walker = VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      network, VEQNumberArray::ofIndices({0}));
  std::uint64_t before = 0;
  std::uint64_t last = placeAfterStep(*walker);
  for (int turn = 0; turn < 20'000; ++turn) {
    const std::uint64_t now = placeAfterStep(*walker);
    if (now != before && !areLinked(*network, now, before)) link(*network, before, now);
    before = last;
    last = now;
  }
  const auto array = network->calcDegrees();
  const auto degrees = array->values<double>();
  const auto [least, most] = std::minmax_element(degrees.begin(), degrees.end());
  std::cout << "Friends of friends, " << count << " vertices\n"
            << "edges       " << network->countEdges() << ", expected " << count * (count - 1) / 2
            << '\n'
            << "degrees     " << *least << " to " << *most << ", expected " << count - 1 << '\n';
}

}  // namespace

int main() {
  veq::setDiagnosticSink(nullptr);
  veq::VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  growTree(1000);
  closeTriangles(20);
}
