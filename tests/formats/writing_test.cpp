#include "veq/formats/writing.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/formats/reading_support.hpp"
#include "tests/support/observers.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/base/files.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::writing_test {
namespace {

Network networkOf(Owned<VEQNetwork> network) {
  return Network(Shared<VEQNetwork>(std::move(network)));
}

std::string textOf(const Network& network, FileFormat format) {
  return networkText(network, format).value();
}

/// 0 > 1 > 2 with weights of both kinds, names that need care, and columns of several kinds.
Network decorated() {
  const VEQNumberArray vertexWeights = VEQNumberArray::ofFloats({1, 2, 0.1F});
  const VEQNumberArray edgeWeights = VEQNumberArray::ofFloats({0.5, 2});
  Owned<VEQNetwork> network = path3(true, &vertexWeights, &edgeWeights);
  network->setPropertiesOfVertices_forKey(
      generic({PropertyValue("a & \"b\""), PropertyValue("\xC3\xA9"), PropertyValue()}), "Name");
  network->setPropertiesOfVertices_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({7, -8, 9})), "Age (y)");
  network->setPropertiesOfEdges_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({1e-7, 3})), "long");
  return networkOf(std::move(network));
}

TEST(Writing, GraphMl) {
  EXPECT_EQ(textOf(decorated(), FileFormat::kGraphMl),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<graphml xmlns=\"http://graphml.graphdrawing.org/xmlns\" xmlns:veq=\"urn:veq\">\n"
            "<key id=\"vw\" for=\"node\" attr.name=\"weight\" attr.type=\"float\" "
            "veq:kind=\"weight\"/>\n"
            "<key id=\"v0\" for=\"node\" attr.name=\"Name\" attr.type=\"string\"/>\n"
            "<key id=\"v1\" for=\"node\" attr.name=\"Age (y)\" attr.type=\"long\"/>\n"
            "<key id=\"ew\" for=\"edge\" attr.name=\"weight\" attr.type=\"float\" "
            "veq:kind=\"weight\"/>\n"
            "<key id=\"e0\" for=\"edge\" attr.name=\"long\" attr.type=\"double\"/>\n"
            "<graph edgedefault=\"directed\">\n"
            "<node id=\"n0\"><data key=\"vw\">1</data><data key=\"v0\">a &amp; &quot;b&quot;</data>"
            "<data key=\"v1\">7</data></node>\n"
            "<node id=\"n1\"><data key=\"vw\">2</data><data key=\"v0\">\xC3\xA9</data>"
            "<data key=\"v1\">-8</data></node>\n"
            "<node id=\"n2\"><data key=\"vw\">0.1</data><data key=\"v1\">9</data></node>\n"
            "<edge source=\"n0\" target=\"n1\"><data key=\"ew\">0.5</data>"
            "<data key=\"e0\">1e-07</data></edge>\n"
            "<edge source=\"n1\" target=\"n2\"><data key=\"ew\">2</data>"
            "<data key=\"e0\">3</data></edge>\n"
            "</graph>\n</graphml>\n");
}

TEST(Writing, GraphMlReplacesWhatXmlForbids) {
  Owned<VEQNetwork> network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      1, VEQNumberArray(), VEQNumberArray());
  network->setPropertiesOfVertices_forKey(
      generic({PropertyValue(std::string("\x01<\t>\n\xEF\xBF\xBF", 8))}), "Name");
  EXPECT_THAT(textOf(networkOf(std::move(network)), FileFormat::kGraphMl),
              testing::HasSubstr("<data key=\"v0\">?&lt;&#9;&gt;&#10;?</data>"));
}

TEST(Writing, Gml) {
  EXPECT_EQ(
      textOf(decorated(), FileFormat::kGml),
      "# node key Agey is \"Age (y)\"\n"
      "graph [\n  directed 1\n"
      "  node [\n    id 0\n    weight 1.0\n    label \"a &#38; &#34;b&#34;\"\n    Agey 7\n  ]\n"
      "  node [\n    id 1\n    weight 2.0\n    label \"&#233;\"\n    Agey -8\n  ]\n"
      "  node [\n    id 2\n    weight 0.1\n    Agey 9\n  ]\n"
      "  edge [\n    source 0\n    target 1\n    weight 0.5\n    long 1.0e-07\n  ]\n"
      "  edge [\n    source 1\n    target 2\n    weight 2.0\n    long 3.0\n  ]\n"
      "]\n");
}

TEST(Writing, GmlComesBack) {
  const Reading back = readNetworkText(textOf(decorated(), FileFormat::kGml));
  EXPECT_EQ(summaryOf(back), "directed 3: 0>1 1>2 w(0.5, 2)");
  EXPECT_THAT(vertexTexts(back, "Name"), ElementsAre("a & \"b\"", "\xC3\xA9", "<null>"));
  EXPECT_THAT(vertexTexts(back, "Age (y)"), ElementsAre("7", "-8", "9"));
  EXPECT_THAT(edgeTexts(back, "long"), ElementsAre("1e-07", "3"));
}

TEST(Writing, MatrixMarket) {
  EXPECT_EQ(textOf(decorated(), FileFormat::kMatrixMarket),
            "%%MatrixMarket matrix coordinate real general\n3 3 2\n1 2 0.5\n2 3 2\n");
  EXPECT_EQ(textOf(networkOf(path3()), FileFormat::kMatrixMarket),
            "%%MatrixMarket matrix coordinate pattern symmetric\n3 3 2\n2 1\n3 2\n");
}

TEST(Writing, CsvCallsVerticesByIndexWhereOneHasNoName) {
  EXPECT_EQ(textOf(decorated(), FileFormat::kCsv),
            "Source,Target,Type,Weight,long\n0,1,Directed,0.5,1e-07\n1,2,Directed,2,3\n");
  EXPECT_EQ(vertexTableText(decorated()).value(),
            "Id,Weight,Label,Age (y)\n0,1,\"a & \"\"b\"\"\",7\n1,2,\xC3\xA9,-8\n2,0.1,,9\n");
}

TEST(Writing, CsvCallsVerticesByTheirNames) {
  Owned<VEQNetwork> network = path3();
  network->setPropertiesOfVertices_forKey(
      generic({PropertyValue("x,y"), PropertyValue(" b"), PropertyValue("#c")}), "Name");
  const Network named = networkOf(std::move(network));
  const std::string text = textOf(named, FileFormat::kCsv);
  EXPECT_EQ(text, "Source,Target,Type\n\"x,y\",\" b\",Undirected\n\" b\",\"#c\",Undirected\n");
  const Reading back = readNetworkText(text);
  EXPECT_EQ(summaryOf(back), "undirected 3: 0>1 1>2");
  EXPECT_THAT(vertexTexts(back, "Name"), ElementsAre("x,y", " b", "#c"));
  EXPECT_EQ(vertexTableText(named).value(),
            "Id,Label\n\"x,y\",\"x,y\"\n\" b\",\" b\"\n\"#c\",\"#c\"\n");
}

TEST(Writing, CsvKeepsTextsThatLookLikeNumbers) {
  Owned<VEQNetwork> network = path3();
  network->setPropertiesOfEdges_forKey(generic({PropertyValue("1.50"), PropertyValue("")}), "text");
  network->setPropertiesOfEdges_forKey(generic({PropertyValue("a\r\nb"), PropertyValue()}), "none");
  const Network kept = networkOf(std::move(network));
  const std::string text = textOf(kept, FileFormat::kCsv);
  EXPECT_EQ(text,
            "Source,Target,Type,text,none\n0,1,Undirected,\"1.50\",\"a\r\nb\"\n"
            "1,2,Undirected,\"\",\n");
  const Reading back = readNetworkText(text);
  EXPECT_THAT(edgeTexts(back, "text"), ElementsAre("1.50", ""));
  EXPECT_THAT(edgeTexts(back, "none"), ElementsAre("a\r\nb", "<null>"));
  EXPECT_EQ(edgeKind(*back.value().published(), "text"), PropertyColumn::Kind::kGeneric);
}

TEST(Writing, PublishedFormatsAsTheirOwnWriters) {
  const Network network = networkOf(path3());
  EXPECT_EQ(textOf(network, FileFormat::kXnet), network.published()->formattedStringValue());
  EXPECT_EQ(textOf(network, FileFormat::kPajek), network.published()->pajekFormattedStringValue());
  EXPECT_EQ(textOf(network, FileFormat::kList), "0 1\r\n1 2\r\n");
}

TEST(Writing, WritesFilesByTheirSuffix) {
  const TemporaryFolder folder;
  const std::string path = folder.path("net.mtx");
  EXPECT_TRUE(writeNetwork(networkOf(path3()), path));
  EXPECT_EQ(summaryOf(readNetwork(path)), "undirected 3: 1>0 2>1");
}

TEST(Writing, RefusesASuffixThatItDoesNotKnow) {
  const Outcome outcome = writeNetwork(networkOf(path3()), "net.foo");
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().kind(), ErrorKind::kArgument);
  EXPECT_EQ(outcome.error().text(),
            "no format goes with this name; known are .xnet .net .edges .mtx .gml .graphml .veqa "
            ".csv");
}

TEST(Writing, RefusesANumberThatIsNoFormat) {
  constexpr auto kNone = static_cast<FileFormat>(99);
  const Result<std::string> text = networkText(networkOf(path3()), kNone);
  ASSERT_FALSE(text);
  EXPECT_EQ(text.error().text(), "there is no such format");
  const Outcome outcome = writeNetwork(networkOf(path3()), "net.gml", {.format = kNone});
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().text(), "there is no such format");
}

TEST(Writing, RefusesNamesThatAFormatCannotHold) {
  Owned<VEQNetwork> network = path3();
  network->setPropertyValue_forKey_atVertexIndex(PropertyValue("\xE2\x82\xAC"), "Name", 0);
  const Result<std::string> text = networkText(networkOf(std::move(network)), FileFormat::kPajek);
  ASSERT_FALSE(text);
  EXPECT_EQ(text.error().text(), "Pajek cannot hold a name beyond ISO-8859-1");
}

TEST(Writing, RefusesAWeightThatMatrixMarketCannotHold) {
  Owned<VEQNetwork> network = path3();
  network->setEdgesWeightValues(
      VEQNumberArray::ofFloats({1, std::numeric_limits<float>::infinity()}));
  const Result<std::string> text =
      networkText(networkOf(std::move(network)), FileFormat::kMatrixMarket);
  ASSERT_FALSE(text);
  EXPECT_EQ(text.error().text(), "Matrix Market cannot hold the weight of edge 1, which is inf");
}

TEST(Writing, StopsAndLeavesTheOldFile) {
  const TemporaryFolder folder;
  const std::string path = folder.path("net.csv");
  ASSERT_TRUE(writeFile(path, "old"));
  const StopSource source;
  source.requestStop();
  WriteOptions options;
  options.progress.stop = source.token();
  const Outcome outcome = writeNetwork(networkOf(path3()), path, options);
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(readFile(path).value(), "old");
}

// A ring of 40,000: 80,000 rows with its edges, which take several pieces of any format.
TEST(Writing, TellsHowManyRowsAreDone) {
  const ObserverInterval none;
  std::vector<std::uint64_t> from(40000);
  std::iota(from.begin(), from.end(), 0U);
  std::vector<std::uint64_t> to = from;
  std::rotate(to.begin(), to.begin() + 1, to.end());
  const Network ring = Network::build(from, to).value();
  for (const FileFormat format :
       {FileFormat::kXnet, FileFormat::kPajek, FileFormat::kList, FileFormat::kMatrixMarket,
        FileFormat::kGml, FileFormat::kGraphMl, FileFormat::kArchive, FileFormat::kCsv}) {
    std::vector<std::uint64_t> told;
    auto climbs = climbing([](std::uint64_t) {});
    Progress progress;
    progress.observer = [&, climbs](std::uint64_t done, std::uint64_t all) mutable {
      climbs(done, all);
      EXPECT_EQ(all, 80000U);
      told.push_back(done);
    };
    ASSERT_TRUE(networkText(ring, format, progress));
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.back(), 80000U);
    if (format == FileFormat::kArchive) continue;  // is made at once
    ASSERT_GE(told.size(), 3U) << static_cast<int>(format);
    EXPECT_GT(told[told.size() - 2], 20000U) << static_cast<int>(format);
  }
}

TEST(Writing, CsvCallsVerticesByIdsWhereThereAreNoNames) {
  const Reading ids = readNetworkText("10 20\n20 30\n");
  EXPECT_EQ(textOf(ids.value(), FileFormat::kCsv),
            "Source,Target,Type\n10,20,Undirected\n20,30,Undirected\n");
  EXPECT_EQ(vertexTableText(ids.value()).value(), "Id\n10\n20\n30\n");
  // Where names are the ends, ids are a column like others under another name.
  const Reading both = readNetworkText(
      "graph [ node [ id 5 label \"a\" ] node [ id 7 label \"b\" ] edge [ source 5 target 7 ] ]");
  EXPECT_EQ(textOf(both.value(), FileFormat::kCsv), "Source,Target,Type\na,b,Undirected\n");
  EXPECT_EQ(vertexTableText(both.value()).value(), "Id,Id 2,Label\na,5,a\nb,7,b\n");
  // Names that two share tell nobody apart, and then the ids do.
  const Reading twice = readNetworkText(
      "graph [ node [ id 5 label \"a\" ] node [ id 7 label \"a\" ] edge [ source 5 target 7 ] ]");
  EXPECT_EQ(textOf(twice.value(), FileFormat::kCsv), "Source,Target,Type\n5,7,Undirected\n");
  EXPECT_EQ(vertexTableText(twice.value()).value(), "Id,Label\n5,a\n7,a\n");
}

TEST(Writing, GmlSaysWhereEdgesAreParallel) {
  const Reading reversed = readNetworkText("# Directed graph\n0 1\n1 0\n");
  EXPECT_THAT(textOf(reversed.value(), FileFormat::kGml),
              testing::Not(testing::HasSubstr("multigraph")));
  const Reading undirected = readNetworkText("0 1\n1 0\n");
  EXPECT_THAT(textOf(undirected.value(), FileFormat::kGml),
              testing::HasSubstr("graph [\n  directed 0\n  multigraph 1\n"));
}

TEST(Writing, GmlWeightsOfVerticesComeBack) {
  const Reading back = readNetworkText(textOf(decorated(), FileFormat::kGml));
  EXPECT_EQ(vertexWeightsOf(*back.value().published()), (std::vector<float>{1, 2, 0.1F}));
}

}  // namespace
}  // namespace veq::test::writing_test
