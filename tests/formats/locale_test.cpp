// A locale with a decimal comma in the whole process changes nothing in any format.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>

#include "tests/support/archives.hpp"
#include "tests/support/comma_locale.hpp"
#include "tests/support/log_capture.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/network_dump.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::locale_test {
namespace {

using N = VEQNetwork;

// 1234 -> 0 with weights and a column of every kind.
Owned<VEQNetwork> network() {
  Owned<VEQNetwork> made = drawDirected("1234-0 0-1");
  made->setEdgesWeightValues(VEQNumberArray::ofFloats({1234.5F, 0.25F}));
  made->setPropertyValue_forKey_atVertexIndex(VEQVector2d(0.5, 1234567.5), "Plane", 0);
  made->setPropertyValue_forKey_atVertexIndex(VEQVector3d(0.5, 1234567.5, -1e-3), "Space", 0);
  made->setPropertyValue_forKey_atVertexIndex(1234567.5, "Number", 0);
  made->setPropertyValue_forKey_atEdgeIndex(2.5, "Value", 0);
  return made;
}

/// All texts of the network and all that is read back from them.
std::string everything() {
  const LogCapture log;
  const Owned<VEQNetwork> made = network();
  const std::string xnet = made->formattedStringValue();
  const std::string pajek = made->pajekFormattedStringValue();
  const std::string edges = made->edgesListFormattedStringValue();
  std::string all = xnet + pajek + edges + made->description() +
                    made->largestConnectedSubNetwork()->description();
  all += drawDirected("0-1")->VEQ_MatrixDebug();
  for (const std::string& line : log.lines()) all += line;
  all += dump(N::initWithNetworkFormattedString(xnet).get());
  all += dump(N::initWithNetworkPajekFormattedString(pajek).get());
  all += dump(N::initWithEdgesListString_directed(edges, true).get());
  all += dump(throughArchive(*made).get());
  all += VEQNumberArray::ofDoubles({1234567.5, 0.5, 1e300}).description();
  all += VEQNumberArray::initWithString("1.5 1,5 1e3")->description();
  all += VEQNumberArray::initWithString_separator_type("2.5;2,5", ";", 12)->description();
  all += VEQVector3dArray::initWithString("1.5 2.5 3,5")
             ->stringValueWithVectorSeparator_elementsSeparator(";", " ");
  all += PropertyValue(1234.5).text() + Number(0.1F).text();
  all += N::initWithVerticesString_edgesString("a\nb", "a b")->vertexAtIndex(1)->description();
  all += invalidArgumentText([&] { insert(*made, "5000-1"); });
  return all;
}

TEST(Locale, WithADecimalCommaChangesNothing) {
  const std::string plain = everything();
  EXPECT_NE(plain.find("1234 0 1234.500000\n"), std::string::npos);
  EXPECT_NE(plain.find("0.5 1234567.5 -0.001\n"), std::string::npos);
  EXPECT_NE(plain.find("from 5000 to 1 (max vertex inddex:1235)"), std::string::npos);
  const CommaLocale comma;
  if (!comma) GTEST_SKIP() << "no localedef on this machine";
  // That it is in force, for C and for streams.
  char text[20];
  std::snprintf(text, sizeof text, "%.1f", 2.5);
  EXPECT_EQ(std::string(text), "2,5");
  std::ostringstream stream;
  stream << 1234.5;
  EXPECT_EQ(stream.str(), "1.234,5");
  EXPECT_EQ(everything(), plain);
}

}  // namespace
}  // namespace veq::test::locale_test
