#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/archives.hpp"

namespace veq::archive_test {
namespace {

using namespace test;

TEST(Archive, HoldsTheNineEntriesInTheirOrder) {
  const auto network = VEQNetwork::initWithLinksIndexedFrom_toIndices_directed(
      VEQNumberArray::ofIndices({0}), VEQNumberArray::ofIndices({1}), true);
  // Every key stands behind the head of its text; weights that the network lacks are zeros.
  const std::string expected =
      fromHex("a9 71") + "VEQ.xnet.directed" + fromHex("f5 75") + "VEQ.xnet.edgeWeighted" +
      fromHex("f4 77") + "VEQ.xnet.vertexWeighted" + fromHex("f4 7818") +
      "VEQ.xnet.edgesProperties" + fromHex("a0 781b") + "VEQ.xnet.verticesProperties" +
      fromHex("a0 71") + "VEQ.xnet.fromList" + fromHex("d847 48 0000000000000000 6f") +
      "VEQ.xnet.toList" + fromHex("d847 48 0100000000000000 7818") + "VEQ.xnet.verticesWeights" +
      fromHex("d855 48 00000000 00000000 75") + "VEQ.xnet.edgesWeights" +
      fromHex("d855 44 00000000");
  EXPECT_EQ(toHex(archived(*network)), toHex(expected));
}

TEST(Archive, HoldsWeightsAsFloats) {
  const std::string bytes = archived(*threeEdges(false, Weighted::kBoth));
  const std::string tail = fromHex("7818") + "VEQ.xnet.verticesWeights" +
                           fromHex("d855 4c 0000c03f 00002040 00006040 75") +
                           "VEQ.xnet.edgesWeights" + fromHex("d855 4c 00009040 0000b040 0000d040");
  ASSERT_GT(bytes.size(), tail.size());
  EXPECT_EQ(toHex(bytes.substr(bytes.size() - tail.size())), toHex(tail));
}

TEST(Archive, KeepsEverythingOfANetworkWithBothWeights) {
  auto network = threeEdges(true, Weighted::kBoth);
  network->setPropertyValue_forKey_atVertexIndex("b", "Name", 1);
  network->setPropertyValue_forKey_atVertexIndex(7, "size", 2);
  network->setPropertyValue_forKey_atEdgeIndex(2.5F, "since", 0);
  const auto back = throughArchive(*network);
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->isDirected());
  EXPECT_TRUE(back->isVertexWeighted());
  EXPECT_TRUE(back->isEdgeWeighted());
  EXPECT_TRUE(back->isEditable());
  EXPECT_EQ(back->countVertices(), 3U);
  EXPECT_EQ(endsOf(*back), (Ends{{0, 1}, {2, 0}, {1, 1}}));
  EXPECT_EQ(back->verticesWeightValues()->description(), "(1.5, 2.5, 3.5)");
  EXPECT_EQ(back->edgesWeightValues()->description(), "(4.5, 5.5, 6.5)");
  EXPECT_EQ(back->keysForPropertiesOfVertices(), (std::vector<std::string>{"Name", "size"}));
  EXPECT_EQ(back->keysForPropertiesOfEdges(), std::vector<std::string>{"since"});
  EXPECT_EQ(*back->propertiesOfVertexAtIndex(1).find("Name"), PropertyValue("b"));
  EXPECT_TRUE(back->propertiesOfVertexAtIndex(0).find("Name")->isNull());
  EXPECT_EQ(*back->propertiesOfVertexAtIndex(2).find("size"), PropertyValue(7.0));
  EXPECT_EQ(*back->propertiesOfEdgeAtIndex(0).find("since"), PropertyValue(2.5F));
  EXPECT_EQ(archived(*back), archived(*network));
}

TEST(Archive, KeepsANetworkWithoutWeights) {
  const auto back = throughArchive(*threeEdges(false, Weighted::kNot));
  ASSERT_TRUE(back);
  EXPECT_FALSE(back->isDirected());
  EXPECT_FALSE(back->isVertexWeighted());
  EXPECT_FALSE(back->isEdgeWeighted());
  EXPECT_EQ(endsOf(*back), (Ends{{0, 1}, {2, 0}, {1, 1}}));
}

TEST(Archive, VertexWeightsAloneComeBackAsTheZeroEdgeWeights) {
  const auto back = throughArchive(*threeEdges(true, Weighted::kVertices));
  ASSERT_TRUE(back);
  EXPECT_FALSE(back->isVertexWeighted());
  EXPECT_TRUE(back->isEdgeWeighted());
  EXPECT_EQ(back->edgesWeightValues()->description(), "(0, 0, 0)");
}

TEST(Archive, EdgeWeightsAloneComeBackAsTheZeroVertexWeights) {
  const auto back = throughArchive(*threeEdges(true, Weighted::kEdges));
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->isVertexWeighted());
  EXPECT_FALSE(back->isEdgeWeighted());
  EXPECT_EQ(back->verticesWeightValues()->description(), "(0, 0, 0)");
}

TEST(Archive, EachFlagDecidesAboutTheOtherWeights) {
  const char* vertices = "d855 48 0000c03f 00002040";
  const char* edges = "d855 44 00009040";
  const auto edgeFlag = restored(tinyArchive("f5", "f4", vertices, edges));
  ASSERT_TRUE(edgeFlag);
  EXPECT_FALSE(edgeFlag->isEdgeWeighted());
  EXPECT_EQ(edgeFlag->verticesWeightValues()->description(), "(1.5, 2.5)");
  const auto vertexFlag = restored(tinyArchive("f4", "f5", vertices, edges));
  ASSERT_TRUE(vertexFlag);
  EXPECT_FALSE(vertexFlag->isVertexWeighted());
  EXPECT_EQ(vertexFlag->edgesWeightValues()->description(), "(4.5)");
}

TEST(Archive, WeightsThatNoFlagAsksForAreNotRead) {
  const char* two = "d855 48 0000c03f 00002040";
  const char* one = "d855 44 00009040";
  EXPECT_TRUE(restored(tinyArchive("f4", "f4", "f6", "a0")));
  EXPECT_TRUE(restored(tinyArchive("f5", "f4", two, "f6")));
  EXPECT_TRUE(restored(tinyArchive("f4", "f5", "f6", one)));
  EXPECT_FALSE(restored(tinyArchive("f5", "f4", "f6", one)));
  EXPECT_FALSE(restored(tinyArchive("f4", "f5", two, "f6")));
}

TEST(Archive, WeightsThatDoNotFitGiveNoNetwork) {
  const char* two = "d855 48 0000c03f 00002040";
  const char* one = "d855 44 00009040";
  EXPECT_TRUE(restored(tinyArchive("f5", "f5", two, one)));
  EXPECT_FALSE(restored(tinyArchive("f5", "f5", one, one)));
  EXPECT_FALSE(restored(tinyArchive("f5", "f5", two, two)));
}

TEST(Archive, LastVerticesWithoutEdgesVanish) {
  const auto network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      5, VEQNumberArray::ofIndices({0}), VEQNumberArray::ofIndices({2}));
  const auto back = throughArchive(*network);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->countVertices(), 3U);
}

TEST(Archive, LastVerticesWithoutEdgesTakeTheNetworkAlongWhereVertexWeightsAreRead) {
  auto network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      5, VEQNumberArray::ofIndices({0}), VEQNumberArray::ofIndices({2}));
  network->setWeightValue_atVertexIndex(2.0F, 0);
  // Vertex weights alone are not read back, and so cannot be too many.
  ASSERT_TRUE(throughArchive(*network));
  network->setWeightValue_atEdgeIndex(2.0F, 0);
  EXPECT_FALSE(throughArchive(*network));
}

TEST(Archive, ANetworkWithoutVerticesComesBackWithOne) {
  const auto back = throughArchive(*VEQNetwork::initWithVertexCapacity_edgeCapacity(0, 0));
  ASSERT_TRUE(back);
  EXPECT_EQ(back->countVertices(), 1U);
  EXPECT_EQ(back->countEdges(), 0U);
}

TEST(Archive, ABlockedNetworkComesBackEditable) {
  auto network = threeEdges(false, Weighted::kNot);
  network->blockEditing();
  EXPECT_TRUE(throughArchive(*network)->isEditable());
}

TEST(Archive, HoldsEdgesThatWereInserted) {
  auto network = threeEdges(true, Weighted::kBoth);
  const std::uint64_t from[] = {2, 2};
  const std::uint64_t to[] = {1, 0};
  network->addEdgesFromVerticesIndices_toVerticesIndices_count(from, to, 2);
  const auto back = throughArchive(*network);
  ASSERT_TRUE(back);
  EXPECT_EQ(endsOf(*back), (Ends{{0, 1}, {2, 0}, {1, 1}, {2, 1}, {2, 0}}));
  EXPECT_EQ(back->edgesWeightValues()->description(), "(4.5, 5.5, 6.5, 1, 1)");
}

TEST(Archive, KeepsColumnsAndValuesOfEveryKindInTheirOrder) {
  auto network = threeEdges(false, Weighted::kNot);
  setAllKindsOfColumns(*network);
  const auto back = throughArchive(*network);
  ASSERT_TRUE(back);
  EXPECT_EQ(
      back->keysForPropertiesOfVertices(),
      (std::vector<std::string>{"values", "doubles", "integers", "floats", "indices", "no numbers",
                                "no values", "plane", "space", "fixed", "", "\xff"}));
  expectSameTable(*back->propertiesOfVertices(), *network->propertiesOfVertices());
  expectSameTable(*back->propertiesOfEdges(), *network->propertiesOfEdges());
  for (const auto& [key, column] : *back->propertiesOfVertices()) {
    EXPECT_TRUE(column->isEditable()) << key;
  }
}

TEST(Archive, AColumnUnderAReservedKeyIsNotRestored) {
  auto network = threeEdges(false, Weighted::kNot);
  network->setPropertyValue_forKey_atVertexIndex(1, "Vertex Weight", 0);
  network->setPropertyValue_forKey_atVertexIndex(1, "size", 0);
  EXPECT_EQ(throughArchive(*network)->keysForPropertiesOfVertices(),
            std::vector<std::string>{"size"});
}

TEST(Archive, AnObjectIsRefusedBeforeAnythingIsEncoded) {
  for (const bool onEdge : {false, true}) {
    auto network = threeEdges(false, Weighted::kNot);
    if (onEdge) {
      network->setPropertyValue_forKey_atEdgeIndex(std::make_shared<Stranger>(), "who", 2);
    } else {
      network->setPropertyValue_forKey_atVertexIndex(std::make_shared<Stranger>(), "who", 2);
    }
    VEQKeyedArchiver archiver;
    try {
      network->encodeWithCoder(archiver);
      ADD_FAILURE() << "nothing thrown";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "A property cannot be archived.");
    }
    EXPECT_EQ(toHex(archiver.bytes()), "a0");
  }
}

// A coder of the caller's own, which notes what it is asked for.
class NotingCoder final : public VEQCoder {
 public:
  NotingCoder() = default;
  NotingCoder(bool edgeWeighted, bool vertexWeighted)
      : edgeWeighted_(edgeWeighted), vertexWeighted_(vertexWeighted) {}

  const std::vector<std::string>& notes() const { return notes_; }

  void encodeBool(bool, std::string_view key) override { note("bool", key); }
  void encodeNumberArray(const VEQNumberArray& numbers, std::string_view key) override {
    note("type " + std::to_string(static_cast<int>(numbers.elementType())), key);
  }
  void encodePropertyTable(const PropertyTable&, std::string_view key) override {
    note("table", key);
  }

  std::optional<bool> decodeBool(std::string_view key) override {
    note("bool", key);
    return key == "VEQ.xnet.edgeWeighted" ? edgeWeighted_ : vertexWeighted_;
  }
  Owned<VEQNumberArray> decodeNumberArray(std::string_view key) override {
    note("numbers", key);
    return VEQNumberArray::initWithDoubleScalar_count(0.0, 1);
  }
  std::optional<PropertyTable> decodePropertyTable(std::string_view key) override {
    note("table", key);
    return PropertyTable();
  }

 private:
  void note(const std::string& what, std::string_view key) {
    notes_.push_back(what + " " + std::string(key));
  }

  std::vector<std::string> notes_;
  bool edgeWeighted_ = false;
  bool vertexWeighted_ = false;
};

TEST(Archive, AnyCoderIsGivenTheNineEntries) {
  NotingCoder coder;
  threeEdges(false, Weighted::kNot)->encodeWithCoder(coder);
  EXPECT_EQ(coder.notes(), (std::vector<std::string>{
                               "bool VEQ.xnet.directed", "bool VEQ.xnet.edgeWeighted",
                               "bool VEQ.xnet.vertexWeighted", "table VEQ.xnet.edgesProperties",
                               "table VEQ.xnet.verticesProperties", "type 15 VEQ.xnet.fromList",
                               "type 15 VEQ.xnet.toList", "type 14 VEQ.xnet.verticesWeights",
                               "type 14 VEQ.xnet.edgesWeights"}));
}

TEST(Archive, AnyCoderIsAskedForTheEntriesThatAreReadAndNoOthers) {
  const std::vector<std::string> always{"bool VEQ.xnet.directed",
                                        "bool VEQ.xnet.edgeWeighted",
                                        "bool VEQ.xnet.vertexWeighted",
                                        "table VEQ.xnet.edgesProperties",
                                        "table VEQ.xnet.verticesProperties",
                                        "numbers VEQ.xnet.fromList",
                                        "numbers VEQ.xnet.toList"};
  for (const bool edgeWeighted : {false, true}) {
    for (const bool vertexWeighted : {false, true}) {
      NotingCoder coder(edgeWeighted, vertexWeighted);
      const auto network = VEQNetwork::initWithCoder(coder);
      ASSERT_TRUE(network);
      EXPECT_EQ(endsOf(*network), (Ends{{0, 0}}));
      std::vector<std::string> expected = always;
      if (edgeWeighted) expected.push_back("numbers VEQ.xnet.verticesWeights");
      if (vertexWeighted) expected.push_back("numbers VEQ.xnet.edgesWeights");
      EXPECT_EQ(coder.notes(), expected);
    }
  }
}

TEST(Archive, NoCoderIsGivenPartOfANetworkWithAStranger) {
  auto network = threeEdges(false, Weighted::kNot);
  network->setPropertyValue_forKey_atVertexIndex(std::make_shared<Stranger>(), "who", 0);
  NotingCoder coder;
  EXPECT_THROW(network->encodeWithCoder(coder), std::invalid_argument);
  EXPECT_TRUE(coder.notes().empty());
}

TEST(Archive, TheFactorySharesWhatTheConstructorMakes) {
  const std::string bytes = archived(*threeEdges(true, Weighted::kNot));
  VEQKeyedUnarchiver unarchiver(bytes);
  const Shared<VEQNetwork> network = VEQNetwork::networkWithCoder(unarchiver);
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countEdges(), 3U);
  VEQKeyedUnarchiver empty("");
  EXPECT_FALSE(VEQNetwork::networkWithCoder(empty));
}

// Lists of any kind of numbers describe edges.
TEST(Archive, ListsMayHoldOtherNumbers) {
  std::string bytes = tinyArchive("f4", "f4", "f6", "f6");
  const std::string list = fromHex("d847 48 0100000000000000");
  bytes.replace(bytes.find(list), list.size(), fromHex("d855 44 00000040"));
  const auto network = restored(bytes);
  ASSERT_TRUE(network);
  EXPECT_EQ(endsOf(*network), (Ends{{0, 2}}));
}

Owned<VEQNetwork> withTarget(const std::string& target) {
  std::string bytes = tinyArchive("f4", "f4", "f6", "f6");
  const std::string list = fromHex("d847 48 0100000000000000");
  return restored(bytes.replace(bytes.find(list), list.size(), fromHex(target)));
}

TEST(Archive, ListsOfDifferentLengthsGiveNoNetwork) {
  EXPECT_FALSE(withTarget("d847 40"));
  EXPECT_FALSE(withTarget("d847 50 01000000000000000100000000000000"));
}

TEST(Archive, AnIndexThatCannotBeGivesNoNetwork) {
  EXPECT_FALSE(withTarget("d847 48 ffffffffffffffff"));
  EXPECT_FALSE(withTarget("d84f 48 ffffffffffffffff"));
  EXPECT_FALSE(withTarget("d847 48 feffffffffffffff"));
  EXPECT_FALSE(withTarget("d847 48 ffffffffffffff7f"));
}

TEST(Archive, EveryEntryThatIsReadMustBeThere) {
  const std::string whole = archived(*threeEdges(true, Weighted::kBoth));
  for (const char* key :
       {"directed", "edgeWeighted", "vertexWeighted", "edgesProperties", "verticesProperties",
        "fromList", "toList", "verticesWeights", "edgesWeights"}) {
    std::string bytes = whole;
    bytes[bytes.find(std::string("VEQ.xnet.") + key)] = 'v';
    EXPECT_FALSE(restored(bytes)) << key;
  }
}

TEST(Archive, MalformedPropertiesGiveNoNetwork) {
  auto network = threeEdges(true, Weighted::kNot);
  network->setPropertyValue_forKey_atVertexIndex("abc", "Name", 0);
  std::string bytes = archived(*network);
  ASSERT_TRUE(restored(bytes));
  bytes[bytes.find("abc")] = '\xff';
  EXPECT_FALSE(restored(bytes));
}

}  // namespace
}  // namespace veq::archive_test
