// Writes the archive that read_archive.py expects to the path given: a network with every kind of
// column and value.

#include <cstdint>
#include <iostream>
#include <memory>
#include <vector>

#include "veq/formats/archive_file.hpp"
#include "veq/network/network.hpp"

namespace {

using namespace veq;

Owned<VEQNetwork> sample() {
  const VEQNumberArray vertices = VEQNumberArray::ofFloats({1.5F, 2.5F, 0.1F});
  const VEQNumberArray edges = VEQNumberArray::ofFloats({4.5F, -5.5F});
  auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0, 2}), VEQNumberArray::ofIndices({1, 0}), true, &vertices,
          &edges);
  network->setPropertiesOfVertices_forKey(
      std::make_shared<GenericArray>(std::vector<PropertyValue>{
          PropertyValue(), 5, -5, 5U, UINT64_MAX, 1.5F, 0.1, "gr\xc3\xbcn", "\xff",
          VEQVector2d(1, 2), VEQVector3d(1, 2, 3, kSinglePrecision)}),
      "values");
  network->setPropertiesOfVertices_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({0.1, 1e300})), "doubles");
  network->setPropertiesOfVertices_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({INT64_MIN, 7})), "integers");
  Shared<VEQVector3dArray> space = VEQVector3dArray::initWithSize_precision(2, kSinglePrecision);
  space->setVector_atIndex({1, 2, 3}, 1);
  network->setPropertiesOfVertices_forKey(space, "Position");
  Shared<VEQVector2dArray> plane = VEQVector2dArray::initWithSize_precision(1, kDoublePrecision);
  plane->setVector_atIndex({0.5, -0.5}, 0);
  network->setPropertiesOfEdges_forKey(plane, "plane");
  return network;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 || !veq::writeArchiveToFile(*sample(), argv[1], false)) {
    std::cerr << "usage: archive_sample FILE\n";
    return 1;
  }
}
