#include "veq/formats/file_format.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/formats/reading_support.hpp"
#include "veq/formats/writing.hpp"

namespace veq::test::file_format_test {
namespace {

constexpr auto kNone = static_cast<FileFormat>(99);

TEST(FileFormats, HaveNamesAndSuffixes) {
  std::vector<std::string> all;
  for (const FileFormat format : fileFormats()) {
    all.push_back(std::string(nameOf(format)) + std::string(suffixOf(format)));
    EXPECT_EQ(fileFormatNamed(nameOf(format)), format) << all.back();
    EXPECT_EQ(fileFormatOfSuffix("a.b" + std::string(suffixOf(format))), format) << all.back();
  }
  EXPECT_THAT(all, testing::ElementsAre("xnet.xnet", "pajek.net", "list.edges", "matrix-market.mtx",
                                        "gml.gml", "graphml.graphml", "archive.veqa", "csv.csv"));
}

TEST(FileFormats, HaveFurtherSuffixesInAnyCase) {
  EXPECT_EQ(fileFormatOfSuffix("a.paj"), FileFormat::kPajek);
  EXPECT_EQ(fileFormatOfSuffix("A.TXT"), FileFormat::kList);
  EXPECT_EQ(fileFormatOfSuffix("a.tsv"), FileFormat::kList);
  EXPECT_EQ(fileFormatOfSuffix("a."), std::nullopt);
  EXPECT_EQ(fileFormatOfSuffix("gml"), std::nullopt);
}

// A format that was declared but is not handled everywhere shows here.
TEST(FileFormats, AreAllWrittenAndReadBack) {
  const Network network = Network::build({{0, 1}, {1, 2}}).value();
  for (const FileFormat format : fileFormats()) {
    const Result<std::string> text = networkText(network, format);
    ASSERT_TRUE(text) << nameOf(format);
    const Reading back = readNetworkText(text.value(), {.format = format});
    if (format == FileFormat::kGraphMl) {
      ASSERT_FALSE(back);
      EXPECT_EQ(back.error().text(), "graphml is read by the library veq::readers");
    } else {
      ASSERT_TRUE(back) << nameOf(format) << ": " << back.error().text();
      EXPECT_EQ(back.value().countEdges(), 2U) << nameOf(format);
    }
  }
}

TEST(FileFormats, ANumberThatIsNoFormatIsRefused) {
  EXPECT_EQ(nameOf(kNone), "");
  EXPECT_EQ(suffixOf(kNone), "");
  const Reading reading = readNetworkText("0 1\n", {.format = kNone});
  ASSERT_FALSE(reading);
  EXPECT_EQ(reading.error().text(), "there is no such format");
}

}  // namespace
}  // namespace veq::test::file_format_test
