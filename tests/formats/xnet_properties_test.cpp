#include <gtest/gtest.h>

#include "tests/formats/format_support.hpp"
#include "tests/support/log_capture.hpp"
#include "veq/formats/reading.hpp"

namespace veq::test::xnet_properties_test {
namespace {

Owned<VEQNetwork> read(std::string_view text) {
  return VEQNetwork::initWithNetworkFormattedString(text);
}

TEST(XnetProperties, SectionsWithoutLinesAreEmptyColumns) {
  const LogCapture quiet;
  for (const std::string type : {"n", "v2", "v3", "s"}) {
    const auto network = read("#v a " + type + "\n#e b " + type + "\n\n");
    ASSERT_TRUE(network);
    EXPECT_THAT(vertexTexts(*network, "a"), IsEmpty());
    EXPECT_THAT(edgeTexts(*network, "b"), IsEmpty());
  }
}

TEST(XnetProperties, ColumnsOfAnyLengthAreInstalled) {
  const auto network = read("#vertices 2\n#v short n\n1\n#v long n\n1\n2\n3\n");
  EXPECT_THAT(vertexTexts(*network, "short"), ElementsAre("1"));
  EXPECT_THAT(vertexTexts(*network, "long"), ElementsAre("1", "2", "3"));
}

TEST(XnetProperties, ALaterSectionReplacesAnEarlierOneInItsPlace) {
  const auto network = read("#v a n\n1\n#v b n\n2\n#v a s\nx\n");
  EXPECT_THAT(vertexTexts(*network, "a"), ElementsAre("x"));
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("a", "b"));
}

TEST(XnetProperties, ReservedKeysAreDropped) {
  const auto network = read(
      "#v \"Edge Weight\" n\n1\n#v \"Vertex Weight\" n\n1\n#v \"Edge From\" n\n1\n"
      "#v \"Edge To\" n\n1\n#e \"Edge To\" n\n1\n");
  ASSERT_TRUE(network);
  EXPECT_THAT(network->keysForPropertiesOfVertices(), IsEmpty());
  EXPECT_THAT(network->keysForPropertiesOfEdges(), IsEmpty());
}

TEST(XnetProperties, ASectionCanReplaceTheNames) {
  EXPECT_THAT(vertexTexts(*read("#vertices 1\n\"a\"\n#v \"Name\" s\n\"b\"\n"), "Name"),
              ElementsAre("b"));
  EXPECT_THAT(vertexTexts(*read("#v \"Name\" s\n\"b\"\n#vertices 1\n\"a\"\n"), "Name"),
              ElementsAre("a"));
  EXPECT_THAT(vertexTexts(*read("#vertices 1\n\"a\"\n#vertices 1\n"), "Name"), ElementsAre("a"));
}

TEST(XnetProperties, PropertyNumbersKeepSixDecimals) {
  const auto network =
      read("#v k n\n1e-7\n0.1234565\n2.5e-7\n-1e-9\n123456789.1234567\n1e400\nx\n");
  EXPECT_THAT(vertexTexts(*network, "k"),
              ElementsAre("0", "0.123456", "0", "-0", "123456789.123457", "0", "0"));
}

TEST(XnetProperties, PropertyNumbersMayHave309Digits) {
  EXPECT_THAT(vertexTexts(*read("#v k n\n1e308\n-1.7976931348623157e308\n"), "k"),
              ElementsAre("1e+308", "-1.7976931348623157e+308"));
}

TEST(XnetProperties, VectorsOfThePlaneComeBackInSpace) {
  const auto network = read("#v k v2\n1 2\n3\t-4 9\n5\n\"6\" 7\n");
  EXPECT_EQ(vertexKind(*network, "k"), PropertyColumn::Kind::kVector3d);
  EXPECT_THAT(vertexTexts(*network, "k"), ElementsAre("1 2 0", "3 -4 0", "5 0 0", "0 0 0"));
}

TEST(XnetProperties, VectorsOfSpaceAreLogged) {
  LogCapture log;
  const auto network = read("#v k v3\n1 2 3\n1e-7 0.5 1e999\n#e k v3\n4 5 6\n");
  EXPECT_THAT(vertexTexts(*network, "k"), ElementsAre("1 2 3", "0 0.5 0"));
  EXPECT_THAT(edgeTexts(*network, "k"), ElementsAre("4 5 6"));
  EXPECT_THAT(log.lines(), ElementsAre("vector 3D data"));
}

TEST(XnetProperties, TheReaderOfAnyFormatLogsNothing) {
  LogCapture log;
  const Reading reading = readNetworkText("#vertices 1\n#v k v3\n1 2 3\n");
  ASSERT_TRUE(reading);
  EXPECT_THAT(vertexTexts(*reading.value().published(), "k"), ElementsAre("1 2 3"));
  EXPECT_THAT(log.lines(), ElementsAre());
}

TEST(XnetProperties, OtherSectionsLogNothing) {
  LogCapture log;
  EXPECT_TRUE(read("#vertices 1\n#v a v2\n1 2\n#e b v3\n1 2 3\n#v c n\n"));
  EXPECT_THAT(log.lines(), IsEmpty());
}

// The text of the lines below is "1 2; 03 4; 0-5 6; 07 8;": the zero behind each vector runs into
// the next number, and "0-5" reads as 0.
TEST(XnetProperties, VectorsOfThePlaneOfEdgesRunIntoEachOther) {
  const auto network = read("#e k v2\n1 2\n3 4\n-5 6\n7 8\n");
  EXPECT_THAT(edgeTexts(*network, "k"), ElementsAre("1 2 0", "3 4 0", "0 6 0", "7 8 0"));
  EXPECT_THAT(edgeTexts(*read("#e k v2\n-1 2\n"), "k"), ElementsAre("-1 2 0"));
}

TEST(XnetProperties, AnEmptyValueOfAnEdgeCountsTwice) {
  EXPECT_THAT(edgeTexts(*read("#e k s\n\"a\"\n\"\"\n\"b\"\n \n"), "k"),
              ElementsAre("a", "", "", "b", "", ""));
  EXPECT_THAT(vertexTexts(*read("#v k s\n\"a\"\n\"\"\n\"b\"\n"), "k"), ElementsAre("a", "", "b"));
}

}  // namespace
}  // namespace veq::test::xnet_properties_test
