// What building asks of a pace, and that a stop at any of these places leaves all as it was.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "tests/support/observers.hpp"
#include "veq/network/internal/adjacency_store.hpp"

namespace veq::test::building_progress_test {
namespace {

using internal::AdjacencyStore;
using internal::IndexList;
using internal::Pace;
using internal::Stopped;

constexpr std::uint64_t kEdges = std::uint64_t{1} << 20;

// Ends of as many edges among so many vertices, in no order.
std::vector<std::uint64_t> ends(std::uint64_t vertices, std::uint64_t step) {
  std::vector<std::uint64_t> result(kEdges);
  for (std::uint64_t e = 0; e < kEdges; ++e) result[e] = e * step % vertices;
  return result;
}

// More than is told of in any of these.
constexpr std::uint64_t kAllWork = 10 * kEdges;

void expectStoppable(std::uint64_t vertices, bool directed) {
  const auto from = ends(vertices, 7919);
  const auto to = ends(vertices, 104729);
  const auto make = [&](Pace& pace) {
    const AdjacencyStore store(vertices, IndexList(std::span(from)), IndexList(std::span(to)),
                               directed, AdjacencyStore::kNarrowLimit, &pace);
    EXPECT_EQ(store.edgeCount(), kEdges);
  };
  // At least the ends of 2^18 edges at a time, which is 4 looks at each of two lists of ends, and
  // at the entries, of which there are as many again, twice.
  const std::uint64_t all = looks(kAllWork, std::nullopt, make);
  EXPECT_GE(all, 4U * 2 + 4U * 2 * (directed ? 2 : 1));
  AdjacencyStore grown(vertices, IndexList(std::span(from).first(10)),
                       IndexList(std::span(to).first(10)), directed);
  for (const std::uint64_t stopAt : {std::uint64_t{0}, all / 3, all - 1}) {
    EXPECT_THROW(looks(kAllWork, stopAt, make), Stopped);
    EXPECT_THROW(looks(kAllWork, stopAt,
                       [&](Pace& pace) {
                         grown.insert({from, to}, &pace);
                       }),
                 Stopped);
    EXPECT_EQ(grown.edgeCount(), 10U);
  }
  // More for the ends that are there.
  EXPECT_GT(looks(kAllWork, std::nullopt,
                  [&](Pace& pace) {
                    grown.insert({from, to}, &pace);
                  }),
            all);
  EXPECT_EQ(grown.edgeCount(), kEdges + 10);
  EXPECT_EQ(grown.from(kEdges + 9), from[kEdges - 1]);
}

TEST(BuildingProgress, OfFewVerticesCanBeStoppedAnywhere) {
  expectStoppable(100, false);
  expectStoppable(100, true);
}

TEST(BuildingProgress, OfManyVerticesCanBeStoppedAnywhere) {
  expectStoppable(100000, false);
  expectStoppable(100000, true);
}

// An insertion that is small against what is there takes place in its lists, and looks nowhere.
TEST(BuildingProgress, OfASmallInsertionIsNone) {
  const auto from = ends(1000, 7919);
  const auto to = ends(1000, 104729);
  AdjacencyStore store(1000, IndexList(std::span(from)), IndexList(std::span(to)), true);
  const std::span some = std::span(from).first(kEdges / 4);
  EXPECT_EQ(looks(kAllWork, std::nullopt,
                  [&](Pace& pace) {
                    store.insert({some, some}, &pace);
                  }),
            0U);
  EXPECT_GT(looks(kAllWork, std::nullopt,
                  [&](Pace& pace) {
                    store.insert({from, to}, &pace);
                  }),
            0U);
}

}  // namespace
}  // namespace veq::test::building_progress_test
