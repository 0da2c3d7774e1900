#include <gtest/gtest.h>

#include <filesystem>

#include "tests/formats/format_support.hpp"
#include "veq/base/internal/encodings.hpp"

namespace veq::test::pajek_files_test {
namespace {

std::string dataPath(std::string_view name) {
  return std::string(VEQ_TEST_DATA "/pajek/") + std::string(name);
}

Owned<VEQNetwork> readSample(std::string_view name) {
  auto network = VEQNetwork::initWithContentsOfPajekFile(dataPath(name));
  EXPECT_TRUE(network) << name;
  return network;
}

TEST(PajekFiles, LabelsWithBlanksShapesAndColours) {
  const auto network = readSample("letters.net");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("Ada Lovelace", "Charles Babbage",
                                                         "Mary Somerville", "Augustus De Morgan"));
  EXPECT_EQ(edgesOf(*network), "0>1 0>2 0>3");
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(3.0F, 1.0F, 2.5F));
  EXPECT_FALSE(network->isDirected());
  const auto& positions = **network->propertiesOfVertices()->find("Position");
  EXPECT_EQ(positions.objectAtIndex(0).vector3d()->x(), -5.0);
  EXPECT_EQ(positions.objectAtIndex(1).vector3d()->y(), 5.0);
  EXPECT_EQ(positions.objectAtIndex(2).vector3d()->y(), -5.0);
  EXPECT_EQ(positions.objectAtIndex(3).vector3d()->x(), 5.0);
  EXPECT_EQ(positions.objectAtIndex(3).vector3d()->z(), 0.0);
}

TEST(PajekFiles, TheSecondCountOfTwoModesIsIgnored) {
  const auto network = readSample("two_mode.net");
  EXPECT_EQ(network->countVertices(), 5U);
  EXPECT_EQ(edgesOf(*network), "2>0 3>0 3>1 4>1");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("Club A", "Club B", "Ann", "Bob", "Cy"));
}

// The vertices header of the partition starts the names afresh, and its classes are taken for the
// numbers of vertices without a name.
TEST(PajekFiles, APartitionBehindTheNetworkTakesItsNames) {
  const auto network = readSample("with_partition.net");
  EXPECT_EQ(network->countVertices(), 3U);
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
  EXPECT_TRUE(network->isDirected());
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("", "", ""));
}

TEST(PajekFiles, RelationsAreOneNetwork) {
  const auto network = readSample("relations.net");
  EXPECT_EQ(edgesOf(*network), "0>1 1>0 1>2");
  EXPECT_TRUE(network->isDirected());
  EXPECT_FALSE(network->isEdgeWeighted());
}

TEST(PajekFiles, TabsBlankLinesAndNoNewlineAtTheEnd) {
  const auto network = readSample("tabs_blank_lines.net");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("tab one", "tab two", "tab three"));
  EXPECT_THAT(vertexTexts(*network, "Position"), ElementsAre("-5 -5 0", "0 0 0", "5 5 0"));
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(4.0F, 5.0F));
}

TEST(PajekFiles, LabelsWithoutQuotesAreNoNames) {
  const auto network = readSample("unquoted.net");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("", "", "", ""));
  EXPECT_EQ(edgesOf(*network), "0>1 0>2 3>0");
}

TEST(PajekFiles, ArcsAndEdgesMix) {
  const auto network = readSample("mixed.net");
  EXPECT_EQ(edgesOf(*network), "0>1 1>2 2>1");
  EXPECT_TRUE(network->isDirected());
  EXPECT_FALSE(network->isEdgeWeighted());
  // With weights the second header has lost those of the first section.
  EXPECT_FALSE(VEQNetwork::initWithContentsOfPajekFile(dataPath("mixed_weighted.net")));
}

TEST(PajekFiles, ArcslistGivesFirstTargetsAndWeights) {
  const auto network = readSample("arcslist.net");
  EXPECT_EQ(edgesOf(*network), "0>1 1>3");
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(3.0F, 1.0F));
}

TEST(PajekFiles, EveryEncodingReadsTheSame) {
  for (const char* const name :
       {"latin1.net", "utf8.net", "utf8_mark.net", "utf16_little.net", "utf16_big.net"}) {
    const auto network = readSample(name);
    EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("K\xC3\xB6ln", "Z\xC3\xBCrich")) << name;
    EXPECT_EQ(edgesOf(*network), "0>1") << name;
  }
}

TEST(PajekFiles, EncodingsAreToldApartByTheirBytes) {
  const TemporaryFolder folder;
  const auto nameIn = [&folder](std::string_view bytes) {
    const auto network = VEQNetwork::initWithContentsOfPajekFile(folder.write("n.net", bytes));
    return network ? vertexTexts(*network, "Name") : Texts{"no network"};
  };
  EXPECT_THAT(nameIn("*Vertices 1\n1 \"\xC3\xA4\""), ElementsAre("\xC3\xA4"));
  // C3 alone is no UTF-8, and then every byte is a character.
  EXPECT_THAT(nameIn("*Vertices 1\n1 \"\xC3\xA4\xC3\""), ElementsAre("\xC3\x83\xC2\xA4\xC3\x83"));
  EXPECT_THAT(nameIn("*Vertices 1\n1 \"\xFF\""), ElementsAre("\xC3\xBF"));
  // Behind a mark there is no other choice.
  EXPECT_THAT(nameIn("\xEF\xBB\xBF*Vertices 1\n1 \"\xFF\""), ElementsAre("no network"));
  EXPECT_THAT(nameIn("\xFF\xFE*"), ElementsAre("no network"));
  using namespace std::string_view_literals;
  EXPECT_THAT(nameIn("\xFE\xFF\xD8\0"sv), ElementsAre("no network"));
  // U+0085 is one byte in ISO-8859-1, and ends a line.
  EXPECT_THAT(nameIn("*Vertices 1\x85"
                     "1 \"a\xE4\""),
              ElementsAre("a\xC3\xA4"));
}

TEST(PajekFiles, UrlsAndFactoriesReadTheSame) {
  const std::string path = dataPath("relations.net");
  for (const Shared<VEQNetwork>& network : {
           Shared<VEQNetwork>(VEQNetwork::initWithContentsOfPajekURL("file://" + path)),
           Shared<VEQNetwork>(VEQNetwork::initWithContentsOfPajekURL(path)),
           VEQNetwork::networkWithContentsOfPajekFile(path),
           VEQNetwork::networkWithContentsOfPajekURL("file://" + path),
           VEQNetwork::numverArrayWithContentsOfPajekURL("file:" + path),
       }) {
    ASSERT_TRUE(network);
    EXPECT_EQ(edgesOf(*network), "0>1 1>0 1>2");
  }
}

TEST(PajekFiles, WhatCannotBeReadIsNoNetwork) {
  const std::string missing = dataPath("missing.net");
  EXPECT_FALSE(VEQNetwork::initWithContentsOfPajekFile(missing));
  EXPECT_FALSE(VEQNetwork::initWithContentsOfPajekFile(dataPath("")));
  EXPECT_FALSE(VEQNetwork::initWithContentsOfPajekURL("file://" + missing));
  EXPECT_FALSE(VEQNetwork::initWithContentsOfPajekURL("ftp://host/a.net"));
  EXPECT_FALSE(VEQNetwork::networkWithContentsOfPajekFile(missing));
  EXPECT_FALSE(VEQNetwork::networkWithContentsOfPajekURL(missing));
  EXPECT_FALSE(VEQNetwork::numverArrayWithContentsOfPajekURL(missing));
}

TEST(PajekFiles, DamagedFilesEndInANetworkOrNone) {
  for (const auto& entry : std::filesystem::directory_iterator(dataPath(""))) {
    forMutationsOf(bytesOf(entry.path().string()), {"*", "\"", "*Arcs\n", "\n", "-", " ", "%"},
                   [](const std::string& bytes) {
                     const auto text = internal::decodeAutomatically(bytes);
                     if (!text) return;
                     const auto network = VEQNetwork::initWithNetworkPajekFormattedString(*text);
                     if (network) {
                       EXPECT_GE(network->countVertices(), 1U);
                     }
                   });
  }
}

}  // namespace
}  // namespace veq::test::pajek_files_test
