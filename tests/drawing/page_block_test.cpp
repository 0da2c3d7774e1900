// The blocks of pages, byte by byte, and as somebody reads them who knows docs/formats/page.md
// alone.
#include "veq/drawing/internal/page_block.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/hex.hpp"
#include "tests/support/page_reader.hpp"
#include "veq/drawing/internal/checksum.hpp"
#include "veq/drawing/internal/page_template.hpp"
#include "veq/drawing/page.hpp"
#include "veq/models.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/walkers.hpp"

namespace veq::test::page_block_test {
namespace {

Network named(Network network, const std::string& key, std::vector<PropertyValue> values) {
  network.setVertexColumn(key, std::make_shared<GenericArray>(std::move(values))).value();
  return network;
}

std::string blockFor(const Network& network, const PageOptions& options = {},
                     const WalkRecord* walk = nullptr) {
  return blockOf(pageOf(network, options, walk).value());
}

TEST(PageBlock, IsTheExampleOfItsDescription) {
  const Network network = named(Network::build({{0, 1}}).value(), "Name", {"a", "b"});
  PageOptions options;
  options.title = "T";
  options.layout = Layout::kCircle;
  const std::string meta =
      R"({"title":"T","veq":"0.9.0","n":2,"m":1,"directed":false,"edgeWeighted":false,)"
      R"("call":"","layout":"circle","columns":[],"color":null,"size":null})";
  if (internal::libraryVersion() != "0.9.0") GTEST_SKIP() << "the example is that of 0.9.0";
  EXPECT_EQ(toHex(blockFor(network, options)),
            packed("56 45 51 50 01 01 8f 01") + toHex(meta) +
                packed("02 02 00 01 03 08 ff ff 00 80 00 00 00 80 04 04 01 61 01 62 7f 04 69 63 4d "
                       "6b"));
}

TEST(PageBlock, EndsWithACheckOfAllBefore) {
  const std::string block = blockFor(Network::build({{0, 1}, {1, 2}}).value());
  internal::Crc32 sum;
  sum.add(block.substr(0, block.size() - 6));
  PageBytes end(std::string_view(block).substr(block.size() - 6));
  EXPECT_EQ(end.number(1), 127U);
  EXPECT_EQ(end.number(1), 4U);
  EXPECT_EQ(end.number(4), sum.value());
}

TEST(PageBlock, KeepsEdgesInTheirOrder) {
  BuildOptions options;
  options.directed = true;
  const std::vector<float> weights{0.5F, 1, 2, 4};
  options.edgeWeights = weights;
  const PageSections sections(
      blockFor(Network::build({{2, 1}, {0, 2}, {0, 0}, {130, 2}}, options).value()));
  // Sources 2, 0, 0, 130: +2, -2, 0, +130 as 4, 3, 0, 260 = 84 02; then the targets.
  EXPECT_EQ(toHex(sections.of.at(2)[0]), packed("04 03 00 84 02 01 02 00 02"));
  EXPECT_EQ(toHex(sections.of.at(8)[0]), packed("0000003f 0000803f 00000040 00008040"));
}

TEST(PageBlock, HasColumnsOfEveryKind) {
  Network network = Network::build({{0, 1}, {1, 2}}).value();
  const double nan = std::nan("");
  network
      .setVertexColumn("whole", std::make_shared<VEQNumberArray>(
                                    VEQNumberArray::ofDoubles({0, 300, 4294967295.0})))
      .value();
  network
      .setVertexColumn("floats",
                       std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({0.5, nan, -1})))
      .value();
  network
      .setVertexColumn("doubles", std::make_shared<VEQNumberArray>(
                                      VEQNumberArray::ofDoubles({0.1, 1, INFINITY})))
      .value();
  network = named(network, "texts", {"y", PropertyValue(), "y"});
  network = named(network, "some", {PropertyValue(), 2, PropertyValue()});
  const PageSections sections(blockFor(network));
  const auto& columns = sections.of.at(5);
  ASSERT_EQ(columns.size(), 5U);
  EXPECT_EQ(toHex(columns[0]), packed("02 00 ac02 ffffffff0f"));
  EXPECT_EQ(toHex(columns[1]), packed("01 0000003f 0000c07f 000080bf"));
  EXPECT_EQ(toHex(columns[2]), packed("04 9a9999999999b93f 000000000000f03f 000000000000f07f"));
  EXPECT_EQ(toHex(columns[3]), packed("03 01 01 79 01 00 01"));
  EXPECT_EQ(toHex(columns[4]), packed("01 0000c07f 00000040 0000c07f"));
  EXPECT_NE(sections.of.at(1)[0].find(
                R"("columns":[{"key":"whole","kind":"number"},{"key":"floats","kind":"number"},)"
                R"({"key":"doubles","kind":"number"},{"key":"texts","kind":"text"},)"
                R"({"key":"some","kind":"number"}])"),
            std::string::npos);
}

TEST(PageBlock, NamesAreThoseOfTheColumn) {
  const Network network = named(Network::build({{0, 1}, {1, 2}}).value(), "Name",
                                {"\xFF", PropertyValue(), "</script>"});
  const PageSections sections(blockFor(network));
  PageBytes names = sections.at(4);
  EXPECT_EQ(names.text(), "\xEF\xBF\xBD");
  EXPECT_EQ(names.text(), "1");
  EXPECT_EQ(names.text(), "</script>");
  EXPECT_FALSE(PageSections(blockFor(Network::build({{0, 1}}).value())).has(4));
}

// Of every kind of walk: what is walked again from the block alone is what was walked.
struct WalkCase {
  std::string name;
  Choice choice;
  double restart;
  std::uint64_t steps;  // 0 for none, and a target
  bool directed;
};

class PageWalks : public testing::TestWithParam<WalkCase> {};

Network walked(bool directed) {
  const std::vector<float> weights{1, 2.5F, 0, 4, 0.5F, 3, 1.5F, 2, 0.1F};
  BuildOptions options;
  options.directed = directed;
  options.edgeWeights = weights;
  return Network::build({{0, 1}, {0, 2}, {1, 2}, {2, 3}, {3, 0}, {1, 3}, {2, 2}, {3, 2}, {3, 4}},
                        options)
      .value();
}

void expectAgreement(const PageWalk& again, const PageSections& sections, const Walkers& walkers,
                     const std::vector<std::uint64_t>& visits) {
  EXPECT_EQ(again.positions, walkers.positions());
  EXPECT_EQ(again.arrivals, visits);
  PageBytes arrivals = sections.at(9);
  EXPECT_EQ(arrivals.varints(visits.size()), visits);
  internal::Crc32 sum;
  sum.add(visits);
  EXPECT_EQ(again.arrivalsSum, sum.value());
  internal::Crc32 ends;
  ends.add(walkers.positions());
  EXPECT_EQ(again.endsSum, ends.value());
}

TEST_P(PageWalks, AreWalkedAgain) {
  const WalkCase& how = GetParam();
  const Network network = walked(how.directed);
  Walkers walkers = Walkers::at(network, std::vector<std::uint64_t>{0, 3, 3}).value();
  RandomState state = RandomState::seeded(4294967295U).value();
  WalkOptions options;
  options.choice = how.choice;
  options.restart = how.restart;
  options.random = &state;
  if (how.steps != 0) {
    options.steps = how.steps;
  } else {
    options.target = 0.8;
  }
  // A first walk, whose visits and places are not those of the second.
  WalkOptions first = options;
  first.steps = 10;
  first.target.reset();
  walkers.walk(first).value();
  const std::vector<std::uint64_t> before = walkers.visits();
  const WalkRecord record = walkers.record(options).value();
  std::vector<std::uint64_t> visits = walkers.visits();
  for (std::size_t v = 0; v < visits.size(); ++v) visits[v] -= before[v];
  const PageSections sections(blockFor(network, {}, &record));
  const PageWalk again(sections, 5, 9, how.directed);
  EXPECT_EQ(again.steps, record.outcome().steps);
  EXPECT_EQ(again.asked, how.steps);
  EXPECT_EQ(again.target, how.steps != 0 ? 0.0 : 0.8);
  expectAgreement(again, sections, walkers, visits);
}

INSTANTIATE_TEST_SUITE_P(
    All, PageWalks,
    testing::Values(WalkCase{"published", Choice::kPublished, 0, 500, false},
                    WalkCase{"even", Choice::kEven, 0, 500, false},
                    WalkCase{"weighted", Choice::kWeighted, 0, 500, false},
                    WalkCase{"publishedRestart", Choice::kPublished, 0.2, 500, false},
                    WalkCase{"weightedRestart", Choice::kWeighted, 0.2, 500, true},
                    WalkCase{"directed", Choice::kPublished, 0, 500, true},
                    WalkCase{"endless", Choice::kEven, 0, 0, false},
                    WalkCase{"endlessRestart", Choice::kWeighted, 0.2, 0, false},
                    WalkCase{"always", Choice::kPublished, 1, 20, false}),
    [](const auto& each) { return each.param.name; });

struct MemoryCase {
  std::string name;
  std::vector<float> errors;
  bool listeners;
  double restart;
};

class PageMemories : public testing::TestWithParam<MemoryCase> {};

TEST_P(PageMemories, AreFollowed) {
  const MemoryCase& how = GetParam();
  const Network network = walked(false);
  MemoryOptions memory;
  memory.sizes = {2, 3, 1};
  memory.errors = how.errors;
  if (how.listeners) memory.listeners = Network::build({{0, 1}, {1, 2}, {2, 2}, {0, 1}}).value();
  Walkers walkers =
      Walkers::withMemory(network, std::vector<std::uint64_t>{0, 3, 3}, memory).value();
  RandomState state = RandomState::seeded(7).value();
  WalkOptions options;
  options.steps = 100;
  options.restart = how.restart;
  options.random = &state;
  std::vector<std::uint64_t> before(5);
  // The second walk begins with what was remembered in the first.
  for (int walk = 0; walk < 2; ++walk) {
    const WalkRecord record = walkers.record(options).value();
    std::vector<std::uint64_t> visits = walkers.visits();
    for (std::size_t v = 0; v < visits.size(); ++v) visits[v] -= before[v];
    const PageSections sections(blockFor(network, {}, &record));
    const PageWalk again(sections, 5, 9, false);
    expectAgreement(again, sections, walkers, visits);
    for (std::uint64_t a = 0; a < 3; ++a) {
      EXPECT_EQ(again.remembered(a), walkers.remembered(a)) << "walk " << walk << " agent " << a;
    }
    before = walkers.visits();
  }
}

INSTANTIATE_TEST_SUITE_P(All, PageMemories,
                         testing::Values(MemoryCase{"plain", {}, false, 0},
                                         MemoryCase{"restart", {}, false, 0.2},
                                         MemoryCase{"errors", {0.5F}, false, 0},
                                         MemoryCase{"telling", {}, true, 0},
                                         MemoryCase{"all", {0.3F, 0, 1}, true, 0.1}),
                         [](const auto& each) { return each.param.name; });

TEST(PageBlock, TellsOfTheWalk) {
  const Network network = walked(false);
  MemoryOptions memory;
  memory.sizes = {2};
  memory.errors = {0.05F};
  Walkers walkers = Walkers::withMemory(network, std::vector<std::uint64_t>{0, 3}, memory).value();
  RandomState state = RandomState::seeded(7).value();
  WalkOptions options;
  options.steps = 5;
  options.restart = 0.25;
  options.random = &state;
  const WalkRecord record = walkers.record(options).value();
  PageOptions page;
  page.seed = 7;
  page.starts = "0,3";
  page.color = "visits";
  page.size = "strength";
  const PageSections sections(blockFor(network, page, &record));
  EXPECT_NE(sections.of.at(1)[0].find(
                R"("color":{"by":"visits"},"size":{"by":"strength"},"walk":{"seed":7,)"
                R"("substream":null,"starts":"0,3","restart":0.25,"errors":[0.05]}})"),
            std::string::npos)
      << sections.of.at(1)[0];
}

}  // namespace
}  // namespace veq::test::page_block_test
