#include "veq/drawing/picture.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.hpp"
#include "veq/drawing/internal/colors.hpp"
#include "veq/numeric/generic_array.hpp"

namespace veq::test::picture_test {
namespace {

Network withColumn(Network network, const std::string& key, std::vector<PropertyValue> values) {
  network.setVertexColumn(key, std::make_shared<GenericArray>(std::move(values))).value();
  return network;
}

template <class T>
std::string errorOf(const Result<T>& result) {
  return result ? "none" : result.error().text();
}

// 0 at the lower left corner of the drawing, 2 at the upper right one.
Network diagonal(bool directed = false) {
  return withColumn(Network::build({{0, 1}, {1, 2}, {2, 2}}, {.directed = directed}).value(),
                    "Position", {VEQVector2d(0, 0), VEQVector2d(1, 1), VEQVector2d(2, 2)});
}

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(Picture, HasLinesAndCirclesWhereVerticesAre) {
  const std::string text = svgOf(diagonal(), {.title = "<A>", .size = "constant"}).value();
  EXPECT_TRUE(has(text, "<title>&lt;A&gt;</title>"));
  // y grows downwards here; the drawing takes 10000 and has 400 of room on each side.
  EXPECT_TRUE(has(text, "<line x1=\"400\" y1=\"10400\" x2=\"5400\" y2=\"5400\"/>"));
  EXPECT_TRUE(has(text, "<line x1=\"5400\" y1=\"5400\" x2=\"10400\" y2=\"400\"/>"));
  // Radius 120 x (1/2 + 3/2 sqrt(1/2)) = 187.28 in the middle of no range; the loop above it.
  EXPECT_TRUE(has(text, "<circle cx=\"10400\" cy=\"213\" r=\"187\"/>"));
  EXPECT_TRUE(has(text,
                  "<circle cx=\"5400\" cy=\"5400\" r=\"187\" fill=\"#21618c\"><title>1</title>"
                  "</circle>"));
  EXPECT_FALSE(has(text, "r=\"18\""));
}

TEST(Picture, ShowsWhereArcsArrive) {
  const std::string text = svgOf(diagonal(true), {.size = "constant"}).value();
  // 187 + 30 before (5400, 5400), which is 217 / sqrt(2) = 153.4 to the left and below.
  EXPECT_TRUE(has(text, "<circle cx=\"5247\" cy=\"5553\" r=\"18\" fill=\"#5a5a5a\"/>"));
}

TEST(Picture, ColoursAreByColumns) {
  const Network numbers = withColumn(diagonal(), "Age", {0, PropertyValue(), 10});
  const std::string text = svgOf(numbers, {.color = "Age", .size = "Age"}).value();
  EXPECT_TRUE(has(text, "r=\"60\" fill=\"#440154\""));
  EXPECT_TRUE(has(text, "r=\"60\" fill=\"#cccccc\""));  // 120 x 1/2, where there is no number
  EXPECT_TRUE(has(text, "r=\"240\" fill=\"#fde725\""));
  const Network towns = withColumn(diagonal(), "Town", {"a", "b", "a"});
  const std::string classes = svgOf(towns, {.color = "Town"}).value();
  EXPECT_TRUE(has(classes, "fill=\"#0072b2\""));
  EXPECT_TRUE(has(classes, "fill=\"#e69f00\""));
  EXPECT_FALSE(has(classes, "fill=\"#009e73\""));
}

TEST(Picture, TheScaleRunsThroughItsFiveColours) {
  EXPECT_EQ(internal::scaleColor(0.25), "#3b528b");
  EXPECT_EQ(internal::scaleColor(0.5), "#21918c");
  EXPECT_EQ(internal::scaleColor(0.75), "#5ec962");
  // Half way from (33, 145, 140) to (94, 201, 98): (63.5, 173, 119), halves up.
  EXPECT_EQ(internal::scaleColor(0.625), "#40ad77");
  EXPECT_EQ(internal::scaleColor(-1), "#440154");
  EXPECT_EQ(internal::scaleColor(2), "#fde725");
}

TEST(Picture, NamesAreText) {
  const Network network = withColumn(diagonal(), "Name", {"</svg><script>", "a&b", "\xFF"});
  const std::string text = svgOf(network).value();
  EXPECT_FALSE(has(text, "<script"));
  EXPECT_TRUE(has(text, "&lt;/svg&gt;&lt;script&gt;</text>"));
  EXPECT_TRUE(has(text, "<title>a&amp;b</title>"));
  EXPECT_TRUE(has(text, "<title>\xEF\xBF\xBD</title>"));
}

TEST(Picture, OfNothingIsEmpty) {
  const std::string text = svgOf(Network::build({}).value(), {.title = "none"}).value();
  EXPECT_TRUE(has(text, "<title>none</title>"));
  EXPECT_FALSE(has(text, "<line"));
  EXPECT_TRUE(has(text, "</svg>\n"));
}

TEST(Picture, WhatItCannotShowIsRefused) {
  const Network large = Network::build({{0, 1}}, {.vertices = 20'000}).value();
  EXPECT_EQ(errorOf(svgOf(large)),
            "20000 vertices and 1 edges are more than a picture shows (20000): write a page, or "
            "choose some");
  EXPECT_TRUE(svgOf(Network::build({}, {.vertices = 20'000}).value(), {.layout = Layout::kCircle}));
  EXPECT_EQ(errorOf(svgOf(diagonal(), {.color = "Age"})), "no column Age");
  EXPECT_EQ(errorOf(svgOf(diagonal(), {.size = "Age"})), "no column Age");
  std::vector<PropertyValue> texts;
  for (int i = 0; i < 13; ++i) texts.emplace_back("t" + std::to_string(i));
  const Network towns = withColumn(Network::build({}, {.vertices = 13}).value(), "Town", texts);
  EXPECT_EQ(errorOf(svgOf(towns, {.color = "Town"})),
            "column Town: 13 different texts are more than there are colours (12)");
  EXPECT_EQ(errorOf(svgOf(towns, {.size = "Town"})), "column Town: sizes need numbers");
}

TEST(Picture, IsWrittenToAFile) {
  const TemporaryFolder folder;
  EXPECT_TRUE(writeSvg(folder.path("a.svg"), diagonal()));
  EXPECT_EQ(bytesOf(folder.path("a.svg")), svgOf(diagonal()).value());
  EXPECT_EQ(errorOf(writeSvg(folder.path("b.svg"), diagonal(), {.color = "Age"})), "no column Age");
  EXPECT_EQ(folder.countFiles(), 1U);
}

}  // namespace
}  // namespace veq::test::picture_test
