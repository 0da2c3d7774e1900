#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <utility>

#include "tests/formats/format_support.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::xnet_writer_test {
namespace {

using internal::CoreAccess;

TEST(XnetWriter, ANamelessUnweightedNetworkHasNoVertexLines) {
  EXPECT_EQ(path3()->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n");
  EXPECT_EQ(path3(true)->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted directed\n0 1\n1 2\n");
}

TEST(XnetWriter, WritesTheExample) {
  const auto vertexWeights = VEQNumberArray::ofFloats({1.0F, 2.5F, 1.0F});
  const auto network = path3(false, &vertexWeights);
  network->setPropertiesOfVertices_forKey(generic({"a", "say \"hi\"", "two\nlines"}), "Name");
  network->setPropertiesOfVertices_forKey(generic({"red", "green", "blue"}), "color");
  network->setPropertiesOfVertices_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({1.0, 0.1, 1e-7})), "size");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 weighted\n"
            "\"a\" 1.000000\n"
            "\"say <quote>hi<quote>\" 2.500000\n"
            "\"two<newline>lines\" 1.000000\n"
            "#edges nonweighted undirected\n"
            "0 1\n"
            "1 2\n"
            "#v \"color\" s\n"
            "\"red\"\n"
            "\"green\"\n"
            "\"blue\"\n"
            "#v \"size\" n\n"
            "1\n0.1\n1e-07\n");
}

TEST(XnetWriter, WritesWeightsWithSixDecimals) {
  const auto vertexWeights = VEQNumberArray::ofFloats({0.1F, -2.0F, 1e-7F});
  const auto edgeWeights = VEQNumberArray::ofFloats({0.3F, 16777216.0F});
  EXPECT_EQ(path3(true, &vertexWeights, &edgeWeights)->formattedStringValue(),
            "#vertices 3 weighted\n0.100000\n-2.000000\n0.000000\n"
            "#edges weighted directed\n0 1 0.300000\n1 2 16777216.000000\n");
}

TEST(XnetWriter, WritesNamesWithoutWeights) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(generic({"a", PropertyValue(), 7}), "Name");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n\"a\"\n\"<null>\"\n\"7\"\n"
            "#edges nonweighted undirected\n0 1\n1 2\n");
}

TEST(XnetWriter, NamesMayBeNumbersOrVectors) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({1.5, 2, 3})), "Name");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n\"1.5\"\n\"2\"\n\"3\"\n"
            "#edges nonweighted undirected\n0 1\n1 2\n");
}

TEST(XnetWriter, WritesAsManyNamesAsVertices) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(generic({"a"}), "Name");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n\"a\"\n\"<null>\"\n\"<null>\"\n"
            "#edges nonweighted undirected\n0 1\n1 2\n");
  network->setPropertiesOfVertices_forKey(generic({"a", "b", "c", "d"}), "Name");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n\"a\"\n\"b\"\n\"c\"\n"
            "#edges nonweighted undirected\n0 1\n1 2\n");
}

TEST(XnetWriter, WritesWholeColumnsWhateverTheirLength) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(generic({"1", "2", "3", "4"}), "long");
  network->setPropertiesOfVertices_forKey(generic({}), "empty");
  network->setPropertiesOfVertices_forKey(std::make_shared<VEQNumberArray>(), "none");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n"
            "#v \"long\" s\n\"1\"\n\"2\"\n\"3\"\n\"4\"\n#v \"empty\" s\n#v \"none\" n\n\n");
}

TEST(XnetWriter, WritesVectors) {
  const auto network = path3();
  auto plane = VEQVector2dArray::initWithSize_precision(2, kDoublePrecision);
  plane->setVector_atIndex({1, -2.5}, 1);
  auto space = VEQVector3dArray::initWithString("1 2 3; 4.5 0 1e300");
  network->setPropertiesOfVertices_forKey(std::move(plane), "p");
  network->setPropertiesOfEdges_forKey(std::move(space), "q");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n"
            "#v \"p\" v2\n0 0\n1 -2.5\n#v \"q\" v3\n1 2 3\n4.5 0 1e+300\n");
}

TEST(XnetWriter, ValuesOfAnyKindAreTexts) {
  struct Colour : PropertyObject {
    std::string description() const override { return "a \"colour\""; }
  };
  const auto network = path3();
  std::vector<PropertyValue> values;
  values.emplace_back();
  values.emplace_back(2.5);
  values.emplace_back(VEQVector3d(1, 2, 3));
  values.emplace_back(std::make_shared<Colour>());
  values.emplace_back("\r");
  network->setPropertiesOfEdges_forKey(generic(std::move(values)), "k");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n"
            "#v \"k\" s\n\"<null>\"\n\"2.5\"\n\"1 2 3\"\n\"a <quote>colour<quote>\"\n\"\r\"\n");
}

TEST(XnetWriter, KeysAreNotEscaped) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(generic({}), "a\"b\n");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n#v \"a\"b\n\" s\n");
}

TEST(XnetWriter, EdgeColumnsFollowUnderTheHeaderOfVertices) {
  const auto network = path3();
  network->setPropertiesOfEdges_forKey(generic({"x", "y"}), "Name");
  network->setPropertiesOfVertices_forKey(generic({"z"}), "k");
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n"
            "#v \"k\" s\n\"z\"\n#v \"Name\" s\n\"x\"\n\"y\"\n");
}

TEST(XnetWriter, ReservedKeysAreSkipped) {
  const auto network = path3();
  for (const char* const key : {"Edge Weight", "Vertex Weight", "Edge From", "Edge To"}) {
    network->setPropertyValue_forKey_atVertexIndex(1.0, key, 0);
    network->setPropertyValue_forKey_atEdgeIndex(1.0, key, 0);
  }
  ASSERT_EQ(network->keysForPropertiesOfVertices().size(), 4U);
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n");
}

TEST(XnetWriter, WritesAnEmptyNetwork) {
  const auto network = VEQNetwork::initWithVertexCapacity_edgeCapacity(3, 3);
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 0 nonweighted\n#edges nonweighted undirected\n");
}

TEST(XnetWriter, WritesFilesAndUrls) {
  const TemporaryFolder folder;
  const std::string text = "#vertices 3 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n";
  for (const bool atomically : {false, true}) {
    const std::string name = atomically ? "a b.xnet" : "c d.xnet";
    EXPECT_TRUE(path3()->writeToFile_atomically(folder.path(name), atomically));
    EXPECT_EQ(bytesOf(folder.path(name)), text);
    std::filesystem::remove(folder.path(name));
    EXPECT_TRUE(path3()->writeToURL_atomically(
        "file://" + folder.path(atomically ? "a%20b.xnet" : "c%20d.xnet"), atomically));
    EXPECT_EQ(bytesOf(folder.path(name)), text);
    EXPECT_FALSE(path3()->writeToFile_atomically(folder.path("no/such/folder"), atomically));
    EXPECT_FALSE(path3()->writeToURL_atomically("http://example.org/a.xnet", atomically));
  }
}

TEST(XnetWriter, TextThatIsNotUtf8IsNotWritten) {
  const TemporaryFolder folder;
  const auto network = path3();
  network->setPropertyValue_forKey_atVertexIndex("\xFF", "Name", 0);
  EXPECT_THAT(network->formattedStringValue(), testing::HasSubstr("\"\xFF\"\n"));
  const std::string path = folder.write("old.xnet", "old");
  for (const bool atomically : {false, true}) {
    EXPECT_FALSE(network->writeToFile_atomically(path, atomically));
    EXPECT_EQ(bytesOf(path), "old");
    EXPECT_FALSE(network->writeToFile_atomically(folder.path("new.xnet"), atomically));
  }
  EXPECT_EQ(folder.countFiles(), 1U);
}

TEST(XnetWriter, ReadsFilesAndUrls) {
  const TemporaryFolder folder;
  const std::string path = folder.write("n.xnet", "\xEF\xBB\xBF#vertices 2\n\"\xC3\xA4\"\n");
  for (const Shared<VEQNetwork>& network : {
           Shared<VEQNetwork>(VEQNetwork::initWithContentsOfFile(path)),
           Shared<VEQNetwork>(VEQNetwork::initWithContentsOfURL("file://" + path)),
           Shared<VEQNetwork>(VEQNetwork::initWithContentsOfURL(path)),
           VEQNetwork::networkWithContentsOfFile(path),
           VEQNetwork::networkWithContentsOfURL(path),
           VEQNetwork::numberArrayWithContentsOfURL(path),
       }) {
    ASSERT_TRUE(network);
    EXPECT_EQ(network->countVertices(), 2U);
    EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("\xC3\xA4"));
  }
}

TEST(XnetWriter, WhatCannotBeReadIsNoNetwork) {
  const TemporaryFolder folder;
  EXPECT_FALSE(VEQNetwork::initWithContentsOfFile(folder.path("missing")));
  EXPECT_FALSE(VEQNetwork::initWithContentsOfFile(folder.path("")));
  EXPECT_FALSE(VEQNetwork::initWithContentsOfFile(folder.write("latin1", "#vertices 1\n\"\xE4\"")));
  EXPECT_FALSE(VEQNetwork::initWithContentsOfFile(folder.write("utf16", "\xFF\xFE#\0")));
  EXPECT_FALSE(VEQNetwork::initWithContentsOfURL("ftp://example.org/n.xnet"));
  EXPECT_FALSE(VEQNetwork::networkWithContentsOfFile(folder.path("missing")));
  EXPECT_FALSE(VEQNetwork::networkWithContentsOfURL(folder.path("missing")));
  EXPECT_FALSE(VEQNetwork::numberArrayWithContentsOfURL(folder.path("missing")));
  const auto empty = VEQNetwork::initWithContentsOfFile(folder.write("empty", ""));
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->countVertices(), 1U);
}

}  // namespace
}  // namespace veq::test::xnet_writer_test
