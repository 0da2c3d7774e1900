// What survives a round trip through each of the four formats?
//
// The network is the directed triangle 0 -> 1 -> 2 -> 0, and a vertex 3 without edges. The answer
// for each feature stands in docs/formats:
//
// - xnet keeps all but this: properties of edges come back as properties of vertices, and numbers
//   with six decimals.
// - Pajek has no place for weights of vertices and for properties other than names.
// - An edge list has lines of edges and nothing else. What reads it takes the indices for names, so
//   that a name of its own is there, but not the one that was; it cannot say that edges are
//   directed, and the reader has to; and vertex 3 stands on no line.
// - An archive keeps every number to the last bit, and weights where vertices and edges both have
//   some, as here, or neither; weights of one kind alone change sides. It does not keep the number
//   of vertices, which follows from the edges; with the weights of vertex 3 nothing comes back at
//   all, and so it is left out here.
#include <array>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>
#include <veq/veq.hpp>

namespace {

using veq::VEQNetwork;
using veq::VEQNumberArray;
using Network = veq::Shared<VEQNetwork>;

constexpr float kThird = 1.0F / 3.0F;

Network triangle(std::uint64_t vertices) {
  auto network = VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices_directed(
      vertices, VEQNumberArray::ofIndices({0, 1, 2}), VEQNumberArray::ofIndices({1, 2, 0}), true);
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({2.0F, 0.5F, kThird}));
  network->setVerticesWeightValues(VEQNumberArray::ofFloats({4.0F, 3.0F, 2.0F, 1.0F}));
  const std::vector<std::string> names = {"Ada", "Bo", "Cy", "Di"};
  for (std::uint64_t v = 0; v < vertices; ++v) {
    network->setPropertyValue_forKey_atVertexIndex(names[v], "Name", v);
  }
  network->setPropertyValue_forKey_atVertexIndex(7.0, "Age", 1);
  network->setPropertyValue_forKey_atEdgeIndex("red", "Colour", 2);
  return network;
}

Network throughXnet(const VEQNetwork& network) {
  return VEQNetwork::networkWithNetworkFormattedString(network.formattedStringValue());
}
Network throughPajek(const VEQNetwork& network) {
  return VEQNetwork::networkWithNetworkPajekFormattedString(network.pajekFormattedStringValue());
}
Network throughEdgeList(const VEQNetwork& network) {
  return VEQNetwork::networkWithEdgesListString_directed(network.edgesListFormattedStringValue(),
                                                         network.isDirected());
}
Network throughArchive(const VEQNetwork& network) {
  veq::VEQKeyedArchiver archiver;
  network.encodeWithCoder(archiver);
  veq::VEQKeyedUnarchiver unarchiver(archiver.bytes());
  return VEQNetwork::networkWithCoder(unarchiver);
}

bool sameEnds(const VEQNetwork& a, const VEQNetwork& b) {
  if (a.countEdges() != b.countEdges()) return false;
  for (std::uint64_t e = 0; e < a.countEdges(); ++e) {
    const auto left = a.edgeAtIndex(e);
    const auto right = b.edgeAtIndex(e);
    if (left->fromVertex()->identification() != right->fromVertex()->identification()) return false;
    if (left->toVertex()->identification() != right->toVertex()->identification()) return false;
  }
  return true;
}

float edgeWeight(const VEQNetwork& network, std::uint64_t e) {
  return network.edgeAtIndex(e)->weight();
}

struct Feature {
  std::string_view name;
  bool (*isKept)(const VEQNetwork& before, const VEQNetwork& after);
};

constexpr std::array<Feature, 9> kFeatures = {{
    {"edges and their order", sameEnds},
    {"direction",
     [](const VEQNetwork& a, const VEQNetwork& b) { return a.isDirected() == b.isDirected(); }},
    {"a vertex without edges",
     [](const VEQNetwork&, const VEQNetwork& b) { return b.countVertices() == 4; }},
    {"names",
     [](const VEQNetwork& a, const VEQNetwork& b) {
       return a.vertexAtIndex(1)->name() == b.vertexAtIndex(1)->name();
     }},
    {"edge weights 2 and 0.5",
     [](const VEQNetwork&, const VEQNetwork& b) {
       return edgeWeight(b, 0) == 2.0F && edgeWeight(b, 1) == 0.5F;
     }},
    {"an edge weight of 1/3",
     [](const VEQNetwork&, const VEQNetwork& b) { return edgeWeight(b, 2) == kThird; }},
    {"vertex weights",
     [](const VEQNetwork&, const VEQNetwork& b) { return b.vertexAtIndex(0)->weight() == 4.0F; }},
    {"a vertex property",
     [](const VEQNetwork&, const VEQNetwork& b) {
       const auto found = b.propertiesOfVertexAtIndex(1);
       const auto* age = found.find("Age");
       return age && *age == veq::PropertyValue(7.0);
     }},
    {"an edge property",
     [](const VEQNetwork&, const VEQNetwork& b) {
       const auto found = b.propertiesOfEdgeAtIndex(2);
       const auto* colour = found.find("Colour");
       return colour && *colour == veq::PropertyValue("red");
     }},
}};

}  // namespace

int main() {
  veq::setDiagnosticSink(nullptr);
  const auto network = triangle(4);
  const auto withoutLast = triangle(3);
  const auto xnet = throughXnet(*network);
  const auto pajek = throughPajek(*network);
  const auto edgeList = throughEdgeList(*network);
  const auto archive = throughArchive(*withoutLast);
  std::cout << "The archive of all four vertices gives "
            << (throughArchive(*network) ? "a network" : "no network") << ".\n\n"
            << "                           xnet  Pajek  edge list  archive\n";
  const auto word = [](bool kept) { return kept ? "kept" : "lost"; };
  for (const Feature& feature : kFeatures) {
    std::cout << std::left << std::setw(25) << feature.name << std::right << std::setw(6)
              << word(feature.isKept(*network, *xnet)) << std::setw(7)
              << word(feature.isKept(*network, *pajek)) << std::setw(11)
              << word(feature.isKept(*network, *edgeList)) << std::setw(9)
              << word(feature.isKept(*withoutLast, *archive)) << '\n';
  }
}
