#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/hex.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/network/network.hpp"

namespace veq::test {

enum class Weighted { kNot, kVertices, kEdges, kBoth };

// 0 -> 1, 2 -> 0, 1 -> 1.
inline Owned<VEQNetwork> threeEdges(bool directed, Weighted weighted) {
  const VEQNumberArray vertices = VEQNumberArray::ofFloats({1.5F, 2.5F, 3.5F});
  const VEQNumberArray edges = VEQNumberArray::ofFloats({4.5F, 5.5F, 6.5F});
  const bool both = weighted == Weighted::kBoth;
  return VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      VEQNumberArray::ofIndices({0, 2, 1}), VEQNumberArray::ofIndices({1, 0, 1}), directed,
      both || weighted == Weighted::kVertices ? &vertices : nullptr,
      both || weighted == Weighted::kEdges ? &edges : nullptr);
}

inline std::string archived(const VEQNetwork& network) {
  VEQKeyedArchiver archiver;
  network.encodeWithCoder(archiver);
  return std::string(archiver.bytes());
}

inline Owned<VEQNetwork> restored(std::string_view bytes) {
  // Exactly as much memory as there are bytes, so that a sanitizer sees the first one too many.
  const auto exact = std::make_unique<char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), exact.get());
  VEQKeyedUnarchiver unarchiver({exact.get(), bytes.size()});
  return VEQNetwork::initWithCoder(unarchiver);
}

inline Owned<VEQNetwork> throughArchive(const VEQNetwork& network) {
  return restored(archived(network));
}

using Ends = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

inline Ends endsOf(const VEQNetwork& network) {
  Ends ends;
  for (std::uint64_t e = 0; e < network.countEdges(); ++e) {
    const Shared<VEQEdge> edge = network.edgeAtIndex(e);
    ends.emplace_back(edge->fromVertex()->identification(), edge->toVertex()->identification());
  }
  return ends;
}

inline void expectSameColumn(const PropertyColumn& a, const PropertyColumn& b) {
  ASSERT_EQ(a.kind(), b.kind());
  ASSERT_EQ(a.count(), b.count());
  for (std::uint64_t i = 0; i < a.count(); ++i) {
    const PropertyValue x = a.objectAtIndex(i);
    const PropertyValue y = b.objectAtIndex(i);
    EXPECT_EQ(x, y) << i;
    if (x.vector2d() && y.vector2d()) {
      EXPECT_EQ(x.vector2d()->precision(), y.vector2d()->precision());
    }
    if (x.vector3d() && y.vector3d()) {
      EXPECT_EQ(x.vector3d()->precision(), y.vector3d()->precision());
    }
  }
  if (a.kind() == PropertyColumn::Kind::kNumber) {
    EXPECT_EQ(static_cast<const VEQNumberArray&>(a).elementType(),
              static_cast<const VEQNumberArray&>(b).elementType());
  }
}

inline void expectSameTable(const PropertyTable& a, const PropertyTable& b) {
  EXPECT_EQ(a.keys(), b.keys());
  for (const auto& [key, column] : a) {
    const Shared<PropertyColumn>* other = b.find(key);
    if (other) expectSameColumn(*column, **other);
  }
}

// Two vertices and one edge, by hand: its weights are 1.5 and 2.5, and 4.5.
inline std::string tinyArchive(const char* edgeWeighted, const char* vertexWeighted,
                               const std::string& verticesWeights,
                               const std::string& edgesWeights) {
  return fromHex("a9 71") + "VEQ.xnet.directed" + fromHex("f4 75") + "VEQ.xnet.edgeWeighted" +
         fromHex(edgeWeighted) + fromHex("77") + "VEQ.xnet.vertexWeighted" +
         fromHex(vertexWeighted) + fromHex("7818") + "VEQ.xnet.edgesProperties" +
         fromHex("a0 781b") + "VEQ.xnet.verticesProperties" + fromHex("a0 71") +
         "VEQ.xnet.fromList" + fromHex("d847 48 0000000000000000 6f") + "VEQ.xnet.toList" +
         fromHex("d847 48 0100000000000000 7818") + "VEQ.xnet.verticesWeights" +
         fromHex(verticesWeights) + fromHex("75") + "VEQ.xnet.edgesWeights" + fromHex(edgesWeights);
}

inline Shared<PropertyColumn> allKindsOfValues() {
  return std::make_shared<GenericArray>(
      std::vector<PropertyValue>{PropertyValue(),
                                 5,
                                 -5,
                                 INT64_MIN,
                                 INT64_MAX,
                                 5U,
                                 UINT64_MAX,
                                 1.5F,
                                 1.5,
                                 0.1,
                                 std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<float>::denorm_min(),
                                 "text",
                                 "",
                                 "gr\xc3\xbc\xc3\x9f",
                                 "\xff\xfe no UTF-8",
                                 std::string("a\0b", 3),
                                 VEQVector2d(1, 2),
                                 VEQVector2d(3, 4, kSinglePrecision),
                                 VEQVector3d(1, 2, 3),
                                 VEQVector3d(4, 5, 6, kSinglePrecision),
                                 true});
}

inline void setAllKindsOfColumns(VEQNetwork& network) {
  const auto set = [&network](const char* key, const Shared<PropertyColumn>& column) {
    network.setPropertiesOfVertices_forKey(column, key);
    network.setPropertiesOfEdges_forKey(column, std::string("edge ") + key);
  };
  set("values", allKindsOfValues());
  set("doubles", std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({0.1, -0.0, 1e300})));
  set("integers",
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({INT64_MIN, INT64_MAX})));
  set("floats", std::make_shared<VEQNumberArray>(VEQNumberArray::ofFloats({0.1F})));
  set("indices", std::make_shared<VEQNumberArray>(VEQNumberArray::ofIndices({UINT64_MAX, 0})));
  set("no numbers", std::make_shared<VEQNumberArray>());
  set("no values", std::make_shared<GenericArray>());
  Shared<VEQVector2dArray> plane = VEQVector2dArray::initWithSize_precision(3, kSinglePrecision);
  plane->setVector_atIndex({0.1, -2}, 1);
  set("plane", plane);
  Shared<VEQVector3dArray> space = VEQVector3dArray::initWithSize_precision(2, kDoublePrecision);
  space->setVector_atIndex({0.1, -2, 1e-300}, 1);
  set("space", space);
  set("fixed", VEQNumberArray::ofFloats({2.5F, 3.5F}).fixedCopy());
  set("", std::make_shared<GenericArray>(std::vector<PropertyValue>{"an empty key"}));
  set("\xff", std::make_shared<GenericArray>(std::vector<PropertyValue>{"a key of any bytes"}));
}

struct Stranger : PropertyObject {
  std::string description() const override { return "a stranger"; }
};

}  // namespace veq::test
