// Lists that threads build, beside those of one thread and beside lists that grew entry by entry.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "tests/support/observers.hpp"
#include "tests/support/shared_work.hpp"
#include "veq/network/internal/adjacency_store.hpp"

namespace veq::test::shared_building_test {
namespace {

using internal::AdjacencyStore;
using internal::IndexList;
using internal::Pace;
using internal::Stopped;
using Side = AdjacencyStore::Side;

// Edges that are cut in three, and too many vertices for their lists to be filled at once.
constexpr std::uint64_t kVertices = 40000;
constexpr std::uint64_t kEdges = 300000;

struct Ends {
  Ends() {
    for (std::uint64_t e = 0; e < kEdges; ++e) {
      // Vertex 3 has every tenth edge, and those from 30,000 on have none.
      from.push_back(e % 10 == 0 ? 3 : e * 7919 % 30000);
      to.push_back(e * e * 104729 % 30000);
    }
  }
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
};

AdjacencyStore storeOf(const Ends& ends, bool directed, std::uint64_t narrowLimit,
                       Pace* pace = nullptr) {
  return {kVertices,
          IndexList(std::span(ends.from)),
          IndexList(std::span(ends.to)),
          directed,
          narrowLimit,
          pace};
}

// Everything that lies in memory, of the side.
std::vector<std::uint64_t> memoryOf(const AdjacencyStore& store, Side side) {
  return store.visit([&](const auto& topology) {
    std::vector<std::uint64_t> all(topology.from.data(), topology.from.data() + kEdges);
    all.insert(all.end(), topology.to.data(), topology.to.data() + kEdges);
    const auto& lists = store.lists(topology, side);
    const auto view = lists.view();
    for (std::uint64_t v = 0; v < kVertices; ++v) {
      all.push_back(lists.rows()[v].start);
      all.push_back(lists.rows()[v].count);
      for (const auto& column : {view.neighbours(v), view.edges(v)}) {
        all.insert(all.end(), column.begin(), column.end());
      }
    }
    return all;
  });
}

struct Grown {
  std::vector<std::vector<std::uint64_t>> neighbours{kVertices};
  std::vector<std::vector<std::uint64_t>> edges{kVertices};

  void append(std::uint64_t vertex, std::uint64_t neighbour, std::uint64_t edge) {
    neighbours[vertex].push_back(neighbour);
    edges[vertex].push_back(edge);
  }
};

void expectLists(const AdjacencyStore& store, Side side, const Grown& grown) {
  for (std::uint64_t v = 0; v < kVertices; ++v) {
    ASSERT_EQ(store.neighbours(v, side), grown.neighbours[v]) << v;
    ASSERT_EQ(store.edges(v, side), grown.edges[v]) << v;
  }
}

TEST(SharedBuilding, GivesTheListsOfOneThread) {
  const Ends ends;
  Grown out;
  Grown in;
  Grown both;
  for (std::uint64_t e = 0; e < kEdges; ++e) {
    out.append(ends.from[e], ends.to[e], e);
    in.append(ends.to[e], ends.from[e], e);
    both.append(ends.from[e], ends.to[e], e);
    both.append(ends.to[e], ends.from[e], e);
  }
  for (const std::uint64_t narrowLimit : {AdjacencyStore::kNarrowLimit, std::uint64_t{9}}) {
    const AdjacencyStore arcs = storeOf(ends, true, narrowLimit);
    const AdjacencyStore links = storeOf(ends, false, narrowLimit);
    expectLists(arcs, Side::kOut, out);
    expectLists(arcs, Side::kIn, in);
    expectLists(links, Side::kOut, both);
    const auto expectSame = [&] {
      for (const Side side : {Side::kOut, Side::kIn}) {
        EXPECT_TRUE(memoryOf(storeOf(ends, true, narrowLimit), side) == memoryOf(arcs, side));
      }
      EXPECT_TRUE(memoryOf(storeOf(ends, false, narrowLimit), Side::kOut) ==
                  memoryOf(links, Side::kOut));
    };
    for (const unsigned threads : {2U, 3U, 7U, 16U, 64U}) {
      const SharedWork shared(threads);
      expectSame();
    }
    const SharedWork reversed(3, SharedWork::InReverse());
    expectSame();
  }
}

TEST(SharedBuilding, OfMoreEdgesGivesTheListsOfAll) {
  const Ends ends;
  Ends first;
  first.from.resize(100);
  first.to.resize(100);
  const auto grown = [&] {
    AdjacencyStore store = storeOf(first, false, AdjacencyStore::kNarrowLimit);
    store.insert({std::span(ends.from).subspan(100), std::span(ends.to).subspan(100)});
    return memoryOf(store, Side::kOut);
  };
  const auto alone = grown();
  const SharedWork shared(3);
  EXPECT_TRUE(grown() == alone);
}

// A pace is asked by this thread, and everybody has met when it stops.
TEST(SharedBuilding, StopsWhereItIsAsked) {
  const Ends ends;
  const SharedWork shared(3);
  const auto built = [&](std::optional<std::uint64_t> stopAt) {
    return looks(10 * kEdges, stopAt, [&](Pace& pace) {
      const AdjacencyStore store = storeOf(ends, true, AdjacencyStore::kNarrowLimit, &pace);
      EXPECT_EQ(store.edgeCount(), kEdges);
    });
  };
  const std::uint64_t all = built(std::nullopt);
  EXPECT_GT(all, 10U);
  for (std::uint64_t stopAt = 0; stopAt < all; ++stopAt) EXPECT_THROW(built(stopAt), Stopped);
}

}  // namespace
}  // namespace veq::test::shared_building_test
