#include "veq/drawing/page.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/page_reader.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/drawing/internal/page_block.hpp"
#include "veq/drawing/internal/page_template.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"
#include "veq/walkers.hpp"

namespace veq::test::page_test {
namespace {

Network path() { return Network::build({{0, 1}, {1, 2}, {2, 3}}).value(); }

Network withColumn(Network network, const std::string& key, std::vector<PropertyValue> values) {
  network.setVertexColumn(key, std::make_shared<GenericArray>(std::move(values))).value();
  return network;
}

template <class T>
std::string errorOf(const Result<T>& result) {
  return result ? "none" : result.error().text();
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

std::string templateText() {
  std::string text;
  for (const std::string_view piece : internal::pageTemplatePieces()) text += piece;
  return text;
}

TEST(PageTemplate, HasEachSlotOnceAndOneScriptOfData) {
  const std::string text = templateText();
  EXPECT_EQ(countOf(text, "@@VEQ-TITLE@@"), 1U);
  EXPECT_EQ(countOf(text, "@@VEQ-DATA@@"), 1U);
  EXPECT_EQ(countOf(text, "<title>@@VEQ-TITLE@@</title>"), 1U);
  EXPECT_EQ(countOf(text,
                    "<script id=\"data\" type=\"application/octet-stream\">@@VEQ-DATA@@"
                    "</script>"),
            1U);
  EXPECT_LE(text.size(), 400'000U);
  EXPECT_EQ(text.find('\0'), std::string::npos);
}

// Whatever bytes there are, the page is the template with a title and base64.
TEST(Page, AllBytesGoIntoTheSlotsAsText) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  all += "@@VEQ-DATA@@ </title><script>";
  Network network = withColumn(path(), "Name", {all, all, "", all});
  network = withColumn(network, all, {all, PropertyValue(), 1, all});
  PageOptions options;
  options.title = all;
  options.call = all;
  options.color = all;
  const std::string page = pageOf(network, options).value();
  const std::string text = templateText();
  const std::size_t title = text.find("@@VEQ-TITLE@@");
  const std::string behindTitle = text.substr(title + 13);
  const std::size_t data = behindTitle.find("@@VEQ-DATA@@");
  ASSERT_EQ(page.substr(0, title), text.substr(0, title));
  const std::string middle = behindTitle.substr(0, data);
  const std::size_t titleEnd = page.find(middle, title);
  ASSERT_NE(titleEnd, std::string::npos);
  EXPECT_EQ(page.substr(title, titleEnd - title).find_first_of("<>\"'"), std::string::npos);
  const std::string end = behindTitle.substr(data + 12);
  ASSERT_EQ(page.substr(page.size() - end.size()), end);
  const std::size_t block = titleEnd + middle.size();
  const std::string base64 = page.substr(block, page.size() - end.size() - block);
  EXPECT_EQ(base64.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                     "0123456789+/="),
            std::string::npos);
}

std::string positionsOf(const Network& network, Layout layout) {
  PageOptions options;
  options.layout = layout;
  const PageSections sections(blockOf(pageOf(network, options).value()));
  PageBytes bytes = sections.at(3);
  std::string text;
  for (std::uint64_t v = 0; v < network.countVertices(); ++v) {
    text += std::to_string(bytes.number(2)) + ",";
    text += std::to_string(bytes.number(2)) + " ";
  }
  return text;
}

TEST(Page, PositionsAreGivenOnes) {
  // 8 wide and 4 high, so that it fills the square's width and the middle half of its height.
  const Network network =
      withColumn(path(), "Position",
                 {VEQVector2d(-3, 2), VEQVector2d(5, 2), VEQVector2d(1, 6), VEQVector3d(1, 4, 9)});
  EXPECT_EQ(positionsOf(network, Layout::kAutomatic),
            "0,16384 65535,16384 32768,49151 32768,32768 ");
  EXPECT_EQ(positionsOf(network, Layout::kGiven), positionsOf(network, Layout::kAutomatic));
  EXPECT_NE(positionsOf(network, Layout::kForce), positionsOf(network, Layout::kAutomatic));
  EXPECT_EQ(positionsOf(network, Layout::kCircle), "65535,32768 32768,65535 0,32768 32768,0 ");
}

TEST(Page, AllInOnePlaceAreInTheMiddle) {
  const Network network = withColumn(path(), "Position", {4, VEQVector2d(1, 1), 4, 4});
  EXPECT_EQ(errorOf(pageOf(network, {.layout = Layout::kGiven})),
            "column Position: vertex 0 has no position");
  const Network same =
      withColumn(path(), "Position", std::vector<PropertyValue>(4, VEQVector2d(1e308, -1e308)));
  EXPECT_EQ(positionsOf(same, Layout::kGiven), "32768,32768 32768,32768 32768,32768 32768,32768 ");
}

TEST(Page, PositionsFarApartStayFinite) {
  const Network network = withColumn(
      path(), "Position",
      {VEQVector2d(-1.7e308, 0), VEQVector2d(1.7e308, 0), VEQVector2d(0, 0), VEQVector2d(0, 0)});
  EXPECT_EQ(positionsOf(network, Layout::kGiven), "0,32768 65535,32768 32768,32768 32768,32768 ");
}

TEST(Page, ColumnsThatCannotBeShownAreRefused) {
  const Network network = withColumn(path(), "Town", {"a", "b", "c", "d"});
  EXPECT_EQ(errorOf(pageOf(network, {.columns = std::vector<std::string>{"Age"}})),
            "no column Age");
  EXPECT_EQ(errorOf(pageOf(network, {.color = "Age"})), "no column Age");
  EXPECT_EQ(errorOf(pageOf(network, {.size = "Town"})), "column Town: sizes need numbers");
  EXPECT_EQ(errorOf(pageOf(network, {.color = "visits"})), "no walk whose visits could be shown");
  EXPECT_EQ(errorOf(pageOf(network, {.size = "visits"})), "no walk whose visits could be shown");
  EXPECT_EQ(errorOf(pageOf(path(), {.layout = Layout::kGiven})), "no column Position");
  const Network nowhere = withColumn(
      path(), "Position",
      {VEQVector2d(0, 0), VEQVector2d(0, INFINITY), VEQVector2d(0, 0), VEQVector2d(0, 0)});
  EXPECT_EQ(errorOf(pageOf(nowhere, {.layout = Layout::kGiven})),
            "column Position: vertex 1 is at no finite place");
  EXPECT_EQ(errorOf(checkPage(nowhere, {.layout = Layout::kGiven})),
            "column Position: vertex 1 is at no finite place");
  EXPECT_EQ(positionsOf(nowhere, Layout::kAutomatic), positionsOf(nowhere, Layout::kForce));
}

TEST(Page, ColumnsAreTheFirstEightOrThoseChosen) {
  Network network = path();
  for (const char* key : {"Name", "Position", "a", "b", "c", "d", "e", "f", "g", "h", "i"}) {
    network = withColumn(network, key, std::vector<PropertyValue>(4, 1));
  }
  const auto keys = [&](const PageOptions& options) {
    const PageSections sections(blockOf(pageOf(network, options).value()));
    const std::string& meta = sections.of.at(1)[0];
    std::string found;
    for (std::size_t at = meta.find("\"key\":\""); at != std::string::npos;
         at = meta.find("\"key\":\"", at + 1)) {
      found += meta[at + 7];
    }
    return found;
  };
  EXPECT_EQ(keys({.layout = Layout::kCircle}), "abcdefgh");
  EXPECT_EQ(keys({.layout = Layout::kCircle,
                  .columns = std::vector<std::string>{"i", "b", "i"},
                  .color = "a",
                  .size = "b"}),
            "iba");
  EXPECT_EQ(keys({.layout = Layout::kCircle, .columns = std::vector<std::string>{}}), "");
}

TEST(Page, WhatIsTooLargeIsRefusedWithWhatToDo) {
  BuildOptions many;
  many.vertices = 200'001;
  const Network vertices = Network::build({}, many).value();
  EXPECT_EQ(errorOf(pageOf(vertices)),
            "200001 vertices are more than a page can draw (200000): choose some, as a component");
  EXPECT_EQ(errorOf(checkPage(vertices)), errorOf(pageOf(vertices)));
  const Network edges =
      Network::build(std::vector<std::pair<std::uint32_t, std::uint32_t>>(1'000'001, {0U, 1U}))
          .value();
  EXPECT_EQ(errorOf(pageOf(edges)),
            "1000001 edges are more than a page can draw (1000000): choose some, as a component");
  std::vector<std::string> keys;
  Network columns = path();
  for (int k = 0; k < 65; ++k) {
    keys.push_back("c" + std::to_string(k));
    columns = withColumn(columns, keys.back(), std::vector<PropertyValue>(4, k));
  }
  EXPECT_EQ(errorOf(pageOf(columns, {.columns = keys})),
            "65 columns are more than a page can show (64): choose some");
}

WalkRecord recordOf(const Network& network, std::uint64_t agents) {
  RandomState state = RandomState::seeded(1).value();
  WalkOptions options;
  options.steps = 1;
  options.random = &state;
  return Walkers::at(network, std::vector<std::uint64_t>(agents)).value().record(options).value();
}

TEST(Page, WalksThatItCannotShowAreRefused) {
  const WalkRecord elsewhere = recordOf(Network::build({{0, 1}}).value(), 1);
  EXPECT_EQ(errorOf(pageOf(path(), {}, &elsewhere)),
            "the walk was on a network of 2 vertices and 1 edges");
  const WalkRecord nobody = recordOf(path(), 0);
  EXPECT_EQ(errorOf(pageOf(path(), {}, &nobody)), "nobody walked");
  const WalkRecord crowd = recordOf(path(), 100'001);
  EXPECT_EQ(errorOf(pageOf(path(), {}, &crowd)),
            "100001 agents are more than a page can draw (100000): let fewer walk");
  // Nobody can move, so that any number of steps is made at once.
  const Network still = Network::build({}, {.vertices = 4}).value();
  RandomState state = RandomState::seeded(1).value();
  WalkOptions options;
  options.steps = std::uint64_t{1} << 53;
  options.random = &state;
  const WalkRecord endless =
      Walkers::at(still, std::vector<std::uint64_t>{0}).value().record(options).value();
  EXPECT_EQ(errorOf(pageOf(still, {}, &endless)),
            "the walk has 2^53 moves or more, which a page cannot count: take fewer steps");
}

TEST(Page, CanBeStopped) {
  StopSource source;
  source.requestStop();
  PageOptions options;
  options.progress.stop = source.token();
  const auto page = pageOf(path(), options);
  ASSERT_FALSE(page);
  EXPECT_EQ(page.error().kind(), ErrorKind::kStopped);
}

TEST(Page, IsWrittenWholeOrNotAtAll) {
  const TemporaryFolder folder;
  const std::string file = folder.path("page.html");
  EXPECT_TRUE(writePage(file, path()));
  EXPECT_EQ(bytesOf(file), pageOf(path()).value());
  EXPECT_EQ(errorOf(writePage(file, path(), {.color = "Age"})), "no column Age");
  EXPECT_EQ(bytesOf(file), pageOf(path()).value());
  const Outcome outcome = writePage(folder.path("none/page.html"), path());
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().kind(), ErrorKind::kFile);
  EXPECT_EQ(outcome.error().text(), "No such file or directory");
  EXPECT_EQ(folder.countFiles(), 1U);
}

}  // namespace
}  // namespace veq::test::page_test
