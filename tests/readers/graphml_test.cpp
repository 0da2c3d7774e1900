#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/formats/reading_support.hpp"
#include "veq/formats/writing.hpp"
#include "veq/numeric/vector_arrays.hpp"
#include "veq/readers/internal/reading_stream.hpp"
#include "veq/readers/reading.hpp"

namespace veq::test::graphml_test {
namespace {

Reading read(std::string text) { return readers::readNetworkText(std::move(text)); }

std::string graphMl(const std::string& inside) {
  return "<?xml version=\"1.0\"?>\n<graphml xmlns=\"http://graphml.graphdrawing.org/xmlns\">\n" +
         inside + "\n</graphml>\n";
}

/// The line that declares texts of nodes or edges.
std::string key(const std::string& id, const std::string& of, const std::string& name) {
  return "<key id=\"" + id + "\" for=\"" + of + "\" attr.name=\"" + name + "\"/>\n";
}

TEST(ReadingGraphMl, ReadsNodesAndEdgesWithAllTheirData) {
  const Reading reading = read(
      graphMl("<key id=\"d0\" for=\"node\" attr.name=\"age\" attr.type=\"int\"/>\n"
              "<key id=\"d1\" for=\"node\" attr.name=\"code\" attr.type=\"string\"/>\n"
              "<key id=\"d2\" for=\"edge\" attr.name=\"weight\" attr.type=\"double\"/>\n"
              "<key id=\"d3\" for=\"edge\" attr.name=\"kind\" attr.type=\"string\">"
              "<default>plain</default></key>\n"
              "<graph id=\"Town\" edgedefault=\"directed\">\n"
              "<node id=\"Ada\"><data key=\"d0\">36</data><data key=\"d1\">7</data></node>\n"
              "<node id=\"B&amp;C\"><data key=\"d0\">-1</data><data key=\"d1\">8</data></node>\n"
              "<edge source=\"Ada\" target=\"B&amp;C\"><data key=\"d2\">0.5</data></edge>\n"
              "<edge source=\"B&amp;C\" target=\"Ada\"><data key=\"d2\">2</data>"
              "<data key=\"d3\">x<!-- y -->z</data></edge>\n"
              "</graph>"));
  EXPECT_EQ(reading.format(), FileFormat::kGraphMl);
  EXPECT_EQ(reading.title(), "Town");
  EXPECT_EQ(summaryOf(reading), "directed 2: 0>1 1>0 w(0.5, 2)");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("Ada", "B&C"));
  EXPECT_THAT(vertexTexts(reading, "age"), ElementsAre("36", "-1"));
  EXPECT_EQ(vertexKind(*reading.value().published(), "age"), PropertyColumn::Kind::kNumber);
  EXPECT_EQ(vertexKind(*reading.value().published(), "code"), PropertyColumn::Kind::kGeneric);
  EXPECT_THAT(edgeTexts(reading, "kind"), ElementsAre("plain", "xz"));
  EXPECT_THAT(notesOf(reading), IsEmpty());
}

TEST(ReadingGraphMl, LeavesOutWhatNoNetworkHolds) {
  // Two lines stand before this.
  const Reading reading = read(graphMl(
      "<graph edgedefault=\"undirected\">\n<node id=\"a\"><graph/>\n<port name=\"p\"/></node>\n"
      "<node id=\"b\"><data key=\"none\">1</data></node>\n"
      "<hyperedge/>\n<edge source=\"a\" target=\"b\" sourceport=\"p\"/></graph>\n<graph/>"));
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("4:14 left out x1: a graph inside a node or an edge is left out",
                          "5:1 left out x2: the ports of edges are left out",
                          "6:14 left out x1: data of the key \"none\", which is not declared, is "
                          "left out",
                          "7:1 left out x1: an edge of more than two ends is left out",
                          "9:1 left out x1: a second graph is left out"));
}

TEST(ReadingGraphMl, LeavesOutWhatIsSaidOfTheGraph) {
  const Reading reading = read(
      "<graphml><key id=\"k\" for=\"graph\" attr.name=\"year\"/>\r<graph "
      "edgedefault=\"directed\">\r\n"
      "<data key=\"k\">1998</data><node id=\"n0\"/></graph></graphml>\r");
  EXPECT_EQ(summaryOf(reading), "directed 1:");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("3:1 left out x1: data of the graph as a whole are left out"));
}

TEST(ReadingGraphMl, KeepsDataOfOneNameApart) {
  // Two lines stand before the keys.
  const Reading reading =
      read(graphMl("<key id=\"a\" for=\"node\" attr.name=\"age\" attr.type=\"int\"/>\n"
                   "<key id=\"b\" for=\"node\" attr.name=\"age\" attr.type=\"int\"/>\n"
                   "<key id=\"c\" for=\"node\" attr.name=\"Edge From\" attr.type=\"int\"/>\n"
                   "<graph><node id=\"n0\"><data key=\"a\">1</data><data key=\"b\">2</data>"
                   "<data key=\"c\">3</data></node></graph>"));
  EXPECT_THAT(vertexTexts(reading, "age"), ElementsAre("1"));
  EXPECT_THAT(vertexTexts(reading, "age 2"), ElementsAre("2"));
  EXPECT_THAT(notesOf(reading),
              ElementsAre("4:1 taken x1: a further column \"age\" is called \"age 2\"",
                          "5:1 left out x1: the column \"Edge From\" is left out, because weights "
                          "and ends have such names"));
}

TEST(ReadingGraphMl, NumbersEveryFurtherColumnOfAName) {
  const Reading reading =
      read(graphMl(key("a", "node", "x") + key("b", "node", "x 2") + key("c", "node", "x") +
                   key("d", "node", "x") + key("e", "edge", "x") +
                   "<graph><node id=\"n0\"><data key=\"a\">1</data><data key=\"b\">2</data>"
                   "<data key=\"c\">3</data><data key=\"d\">4</data></node>"
                   "<edge source=\"n0\" target=\"n0\"><data key=\"e\">5</data></edge></graph>"));
  EXPECT_THAT(vertexTexts(reading, "x"), ElementsAre("1"));
  EXPECT_THAT(vertexTexts(reading, "x 2"), ElementsAre("2"));
  EXPECT_THAT(vertexTexts(reading, "x 3"), ElementsAre("3"));
  EXPECT_THAT(vertexTexts(reading, "x 4"), ElementsAre("4"));
  EXPECT_THAT(edgeTexts(reading, "x"), ElementsAre("5"));
  EXPECT_THAT(notesOf(reading),
              ElementsAre("5:1 taken x1: a further column \"x\" is called \"x 3\"",
                          "6:1 taken x1: a further column \"x\" is called \"x 4\""));
}

TEST(ReadingGraphMl, FindsTheColumnsOfDataInAnyOrder) {
  const Reading reading = read(
      graphMl(key("a", "node", "A") + key("b", "node", "B") +
              "<key id=\"c\" for=\"node\" attr.name=\"C\"><default>none</default></key>"
              "<graph><node id=\"n0\"><data key=\"b\">1</data><data key=\"a\">2</data></node>"
              "<node id=\"n1\"><data key=\"a\">3</data><data key=\"b\">4</data></node>"
              "<node id=\"n2\"><data key=\"c\">5</data><data key=\"b\">6</data></node></graph>"));
  EXPECT_THAT(vertexTexts(reading, "A"), ElementsAre("2", "3", "<null>"));
  EXPECT_THAT(vertexTexts(reading, "B"), ElementsAre("1", "4", "6"));
  EXPECT_THAT(vertexTexts(reading, "C"), ElementsAre("none", "none", "5"));
}

TEST(ReadingGraphMl, TakesASecondKeyOfTheWeightForAColumn) {
  const Reading reading =
      read(graphMl("<key id=\"a\" for=\"edge\" attr.name=\"weight\" attr.type=\"double\"/>"
                   "<key id=\"b\" for=\"edge\" attr.name=\"weight\" attr.type=\"double\"/>"
                   "<graph><node id=\"n0\"/><edge source=\"n0\" target=\"n0\">"
                   "<data key=\"a\">2.5</data><data key=\"b\">7</data></edge></graph>"));
  EXPECT_EQ(summaryOf(reading), "undirected 1: 0>0 w(2.5)");
  EXPECT_THAT(edgeTexts(reading, "weight"), ElementsAre("7"));
}

TEST(ReadingGraphMl, LeavesOutEdgesOfNodesThatAreLeftOut) {
  const Reading reading = read(graphMl(
      "<graph edgedefault=\"directed\">\n<node id=\"n0\">\n<graph><node id=\"x\"/><node id=\"y\">"
      "<graph><node id=\"z\"/></graph></node></graph></node>\n<node id=\"n1\"/>\n"
      "<edge source=\"n0\" target=\"n1\"/>\n<edge source=\"n0\" target=\"z\"/>\n"
      "<edge source=\"x\" target=\"n1\"/>\n<edge source=\"n1\" target=\"n0\"/>\n</graph>"));
  EXPECT_EQ(summaryOf(reading), "directed 2: 0>1 1>0");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("5:1 left out x1: a graph inside a node or an edge is left out",
                          "8:1 left out x2: edges of nodes of a graph inside a node are left out"));
}

TEST(ReadingGraphMl, TakesMixedEdgesForDirected) {
  const Reading reading = read(
      graphMl("<graph edgedefault=\"undirected\"><node id=\"a\"/><edge source=\"a\" target=\"a\"/>"
              "<edge source=\"a\" target=\"a\" directed=\"true\"/></graph>"));
  EXPECT_EQ(summaryOf(reading), "directed 1: 0>0 0>0");
  EXPECT_THAT(notesOf(reading), ElementsAre("3:47 repaired x1: directed and undirected edges: all "
                                            "are taken for directed"));
}

TEST(ReadingGraphMl, ReadsUtf16OfEitherByteOrderWithAMarkOrWithout) {
  const std::string text =
      "<graphml><graph edgedefault=\"directed\"><node id=\"a\"/></graph></graphml>";
  std::string little;
  std::string big;
  for (const char byte : text) {
    little += std::string{byte, '\0'};
    big += std::string{'\0', byte};
  }
  for (const std::string& bytes : {little, big, "\xFF\xFE" + little, "\xFE\xFF" + big}) {
    EXPECT_EQ(summaryOf(read(bytes)), "directed 1:");
  }
}

TEST(ReadingGraphMl, RefusesWhatIsNoGraph) {
  EXPECT_EQ(summaryOf(read("<graphml><graph>\n<node/></graph></graphml>")),
            "error 2:1 a node without an id");
  EXPECT_EQ(summaryOf(read("<html></html>")), "error 1:1 XML, but no GraphML");
  EXPECT_EQ(summaryOf(read(graphMl(""))), "error 2:1 GraphML without a graph");
  EXPECT_EQ(summaryOf(read(graphMl("<graph><edge source=\"a\" target=\"b\"/></graph>"))),
            "error 3:22 an edge of node \"a\", which is not there");
  EXPECT_EQ(summaryOf(read(graphMl("<graph>\n<edge source=\"a\"/></graph>"))),
            "error 4:1 an edge without a source or a target");
  EXPECT_EQ(summaryOf(read(graphMl("<graph><node id=\"a\"/><node id=\"a\"/></graph>"))),
            "error 3:22 a second node \"a\"");
  EXPECT_THAT(summaryOf(read(graphMl("<graph>\n<node id=\"a\">"))),
              testing::StartsWith("error 5:3 XML: "));
}

TEST(ReadingGraphMl, RefusesACharacterOfCodeZero) {
  const std::string zero(1, '\0');
  ReadOptions options;
  options.format = FileFormat::kGraphMl;
  const Reading reading = readers::readNetworkText(
      graphMl("<graph><node id=\"a\"/>" + zero + "<node id=\"b\"/></graph>"), options);
  EXPECT_EQ(summaryOf(reading), "error 3:22 XML: a character with the code 0");
}

TEST(ReadingGraphMl, TakesWhatIsNoUtf8ForLatin1) {
  // A letter of one byte in a name and in a key that is not declared.
  const std::string graph =
      "<graph><node id=\"K\xF6ln\"><data key=\"\xE9\">1</data></node></graph>";
  const Reading reading = read(graphMl(graph));
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("K\xC3\xB6ln"));
  EXPECT_THAT(
      notesOf(reading),
      ElementsAre("3:19 taken x1: not UTF-8: from here on the text is taken for ISO-8859-1",
                  "3:25 left out x1: data of the key \"\xC3\xA9\", which is not declared, is "
                  "left out"));
  // Where the file says so there is nothing to be said.
  const Reading declared = read(
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><graphml><graph>"
      "<node id=\"K\xF6ln\"/></graph></graphml>");
  EXPECT_THAT(vertexTexts(declared, "Name"), ElementsAre("K\xC3\xB6ln"));
  EXPECT_THAT(notesOf(declared), IsEmpty());
}

TEST(ReadingGraphMl, IsHarmedByNoHostileXml) {
  // Entities of its own stay as they are, so that none grows without end or opens a file.
  const Reading bomb = read(
      "<!DOCTYPE graphml [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">"
      "<!ENTITY f SYSTEM \"file:///etc/hostname\">]>\n"
      "<graphml><graph edgedefault=\"directed\"><node id=\"&b;\"/><node id=\"&f;\"/></graph>"
      "</graphml>");
  EXPECT_EQ(summaryOf(bomb), "directed 2:");
  EXPECT_THAT(vertexTexts(bomb, "Name"), ElementsAre("&b;", "&f;"));
  std::string deep = "<graphml><graph>";
  for (int depth = 0; depth < 1'000'000; ++depth) deep += "<a>";
  EXPECT_FALSE(read(deep));
}

/// A text that arrives some bytes at a time, as through a pipe, and goes on for ever if it is to.
Reading readByPieces(std::string_view text, std::size_t piece, std::string_view further = "",
                     std::size_t* bytes = nullptr) {
  std::size_t read = 0;
  internal::ByteStream stream(
      [&](char* into, std::size_t capacity) {
        std::size_t count = 0;
        for (; count < capacity; ++count, ++read) {
          if (read < text.size()) {
            into[count] = text[read];
          } else if (further.empty()) {
            break;
          } else {
            into[count] = further[(read - text.size()) % further.size()];
          }
        }
        if (read > 100'000'000) throw Error(ErrorKind::kFile, "read on and on");
        return count;
      },
      0, piece);
  Reading reading = readers::readStream(stream, {}, "");
  if (bytes) *bytes = read;
  return reading;
}

TEST(ReadingGraphMl, GivesByPiecesWhatTheWholeTextGives) {
  const std::string texts[] = {
      graphMl("<key id=\"w\" for=\"edge\" attr.name=\"weight\" attr.type=\"double\"/>\n"
              "<graph edgedefault=\"directed\">\n<!-- <node id=\"c\"> and <edge -->\n"
              "<edge source=\"b\" target=\"a\"><data key=\"w\">16777217</data></edge>\n"
              "<node id=\"a\"/>\n<node id=\"b\"><![CDATA[<node id=\"a\"/>]]></node>\n"
              "<node id=\"c &lt;node\"/><edge source=\"a\" target=\"a\" directed=\"false\"/>\n"
              "<node id=\"d\"><graph><node id=\"e\"/><node id=\"f\"/></graph></node>"
              "<edge source=\"a\" target=\"d\"><data key=\"no\"/></edge>\n</graph>"),
      graphMl("<graph><node id=\"a\"/><node id=\"b\"/></graph>\n<graph><node id=\"a\"/></graph>"),
      graphMl("<graph edgedefault=\"directed\"></graph>"),
      graphMl("<graph><node id=\"a\"/>\n<node id=\"b\"/><edge source=\"a\" target=\"x\"/></graph>"),
      graphMl("<graph><node id=\"a\"/>\n<node id=\"b\"/>\n<node id=\"a\"/></graph>"),
      graphMl("<graph><node id=\"a\"/>\n<node id=\"b\"></edge></graph>"),
  };
  for (const std::string& text : texts) {
    const Reading whole = read(text);
    for (const std::size_t piece : {1U, 5U, 16U, 60U, 100U}) {
      const Reading pieces = readByPieces(text, piece);
      EXPECT_EQ(summaryOf(pieces), summaryOf(whole)) << piece;
      EXPECT_EQ(notesOf(pieces), notesOf(whole)) << piece;
      if (whole) {
        EXPECT_EQ(vertexTexts(pieces, "Name"), vertexTexts(whole, "Name"));
      }
    }
  }
  EXPECT_EQ(summaryOf(read(texts[0])), "directed 4: 1>0 0>0 0>3 w(16777216, 1, 1)");
}

TEST(ReadingGraphMl, IsNeverFarAheadOfTheReader) {
  std::size_t bytes = 0;
  const std::string begin = graphMl("").substr(0, 78) + "<graph>\n<node id=\"a\"/>\n";
  EXPECT_EQ(summaryOf(readByPieces(begin + "<node id=\"a\"/>", std::size_t{1} << 18,
                                   "<node id=\"b\"/>\n", &bytes)),
            "error 5:1 a second node \"a\"");
  EXPECT_LE(bytes, std::size_t{1} << 20);
  EXPECT_THAT(summaryOf(readByPieces(begin + "<node id=\"c\"></edge>", std::size_t{1} << 18,
                                     "<node id=\"b\"/>\n", &bytes)),
              testing::StartsWith("error 5:"));
  EXPECT_LE(bytes, std::size_t{1} << 20);
  EXPECT_EQ(summaryOf(readByPieces("<?xml version=\"1.0\"?>\n<!-- <graphml> -->\n<!DOCTYPE html>"
                                   "<html><body>",
                                   std::size_t{1} << 18, "<p>text\n", &bytes)),
            "error 3:16 XML, but no GraphML");
  EXPECT_LE(bytes, std::size_t{1} << 20);
}

TEST(ReadingGraphMl, TakesNoElementOfAnEntityForTheFirst) {
  const std::string text = "<!DOCTYPE graphml [<!ENTITY a \"<b>c</b>\">]><g:graphml><graph>" +
                           std::string(100, ' ') + "<node id=\"a\"/></graph></g:graphml>";
  EXPECT_EQ(summaryOf(readByPieces(text, 60)), "undirected 1:");
}

TEST(ReadingGraphMl, BringsBackAllThatIsWritten) {
  const VEQNumberArray vertexWeights = VEQNumberArray::ofFloats({1, 2, 0.1F});
  const VEQNumberArray edgeWeights = VEQNumberArray::ofFloats({0.5, 2});
  Shared<VEQNetwork> network = path3(true, &vertexWeights, &edgeWeights);
  network->setPropertiesOfVertices_forKey(
      generic({PropertyValue("a & \"b\"\n"), PropertyValue("\xC3\xA9"), PropertyValue()}), "Name");
  const double x[] = {0.1, 0.2, 0.3};
  network->setPropertiesOfVertices_forKey(
      Shared<PropertyColumn>(VEQVector3dArray::initWithXd_Yd_Zd_count(x, x, x, 3)), "Position");
  network->setPropertiesOfEdges_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({7, -8})), "n");
  const Reading back = read(networkText(Network(network), FileFormat::kGraphMl).value());
  EXPECT_EQ(summaryOf(back), "directed 3: 0>1 1>2 w(0.5, 2)");
  EXPECT_EQ(vertexWeightsOf(*back.value().published()), (std::vector<float>{1, 2, 0.1F}));
  EXPECT_THAT(vertexTexts(back, "Name"), ElementsAre("a & \"b\"\n", "\xC3\xA9", "<null>"));
  EXPECT_THAT(vertexTexts(back, "Position"),
              ElementsAre("0.1 0.1 0.1", "0.2 0.2 0.2", "0.3 0.3 0.3"));
  EXPECT_EQ(vertexKind(*back.value().published(), "Position"), PropertyColumn::Kind::kVector3d);
  EXPECT_THAT(vertexTexts(back, "Id"), ElementsAre("no column"));
  EXPECT_THAT(edgeTexts(back, "n"), ElementsAre("7", "-8"));
}

}  // namespace
}  // namespace veq::test::graphml_test
