#include "veq/network/internal/adjacency_store.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>
#include <vector>

#include "tests/support/network_drawing.hpp"

namespace veq::test::adjacency_store_test {
namespace {

using internal::AdjacencyStore;
using internal::EdgeEnds;
using internal::IndexList;
using internal::listCapacity;
using testing::ElementsAre;
using Side = AdjacencyStore::Side;

EdgeEnds ends(const DrawnEdges& edges) { return {edges.from, edges.to}; }

AdjacencyStore storeOf(std::uint64_t vertices, const std::vector<std::uint64_t>& from,
                       const std::vector<std::uint64_t>& to, bool directed,
                       std::uint64_t narrowLimit = AdjacencyStore::kNarrowLimit) {
  return {vertices, IndexList(std::span(from)), IndexList(std::span(to)), directed, narrowLimit};
}

AdjacencyStore storeOf(std::uint64_t vertices, const std::string& edges, bool directed,
                       std::uint64_t narrowLimit = AdjacencyStore::kNarrowLimit) {
  const DrawnEdges drawn(edges);
  return storeOf(vertices, drawn.from, drawn.to, directed, narrowLimit);
}

void insertInto(AdjacencyStore& store, const std::string& edges) {
  store.insert(ends(DrawnEdges(edges)));
}

// The pool entries that lists have taken so far, counting the one that belongs to none.
std::uint64_t poolOf(const AdjacencyStore& store, Side side = Side::kOut) {
  return store.visit(
      [&](const auto& topology) { return store.lists(topology, side).poolSizeWith(0); });
}

TEST(AdjacencyStore, ListCapacitiesAreTwiceTheCountThatOutgrewTheLastOne) {
  const std::uint64_t expected[] = {0, 2, 2, 6, 6, 6, 6, 14, 14, 14, 14, 14, 14, 14, 14, 30};
  std::uint64_t capacity = 0;
  for (std::uint64_t count = 0; count < 16; ++count) {
    if (count > capacity) capacity = 2 * count;
    EXPECT_EQ(capacity, expected[count]);
    EXPECT_EQ(listCapacity(count), expected[count]);
  }
}

TEST(AdjacencyStore, ConstructionPacksTheLists) {
  EXPECT_EQ(poolOf(storeOf(3, "", true)), 1U);
  EXPECT_EQ(poolOf(storeOf(3, "0-1", true)), 2U);
  EXPECT_EQ(poolOf(storeOf(3, "0-1 0-1 0-1", true)), 4U);
  EXPECT_EQ(poolOf(storeOf(3, "0-1 0-1 0-1", true), Side::kIn), 4U);
  EXPECT_EQ(poolOf(storeOf(3, "0-1", false)), 3U);
  EXPECT_EQ(poolOf(storeOf(3, "2-2", false)), 3U);
}

TEST(AdjacencyStore, TheFirstInsertionRelocatesAPackedListToASlotOfItsCapacity) {
  AdjacencyStore store = storeOf(4, "0-1 1-0 0-2 1-2 0-3", true);
  EXPECT_EQ(poolOf(store), 6U);
  // Three entries and places for three more.
  insertInto(store, "0-1");
  EXPECT_EQ(poolOf(store), 12U);
  insertInto(store, "0-2");
  EXPECT_EQ(poolOf(store), 12U);
  // Two entries fill their slot, so that the third goes to one of 6 at once ...
  insertInto(store, "1-3");
  EXPECT_EQ(poolOf(store), 20U);
  // ... and the slot of 2 waits for this list.
  insertInto(store, "2-3");
  EXPECT_EQ(poolOf(store), 20U);
  EXPECT_THAT(store.edges(0, Side::kOut), ElementsAre(0, 2, 4, 5, 6));
  EXPECT_THAT(store.neighbours(0, Side::kOut), ElementsAre(1, 2, 3, 1, 2));
  EXPECT_THAT(store.edges(1, Side::kOut), ElementsAre(1, 3, 7));
  EXPECT_THAT(store.edges(2, Side::kOut), ElementsAre(8));
}

// A slot for the hub is asked for once, and not for each of its new entries.
TEST(AdjacencyStore, AHubGrowsByWhatIsInserted) {
  std::vector<std::uint64_t> hub(100, 0);
  const std::vector<std::uint64_t> to(100, 1);
  AdjacencyStore store = storeOf(2, hub, to, true);
  EXPECT_EQ(poolOf(store), 101U);
  hub.resize(40);
  store.insert({hub, {to.data(), 40}});
  // It moves to a slot of 126, and then to one of 254.
  EXPECT_EQ(poolOf(store), 101U + 126U + 254U);
  EXPECT_EQ(store.count(0, Side::kOut), 140U);
}

TEST(AdjacencyStore, AnAbandonedSlotGoesToTheNextListOfItsSize) {
  AdjacencyStore store = storeOf(4, "", true);
  insertInto(store, "0-1");
  insertInto(store, "0-1");
  EXPECT_EQ(poolOf(store), 3U);
  // The third entry moves the list to a slot of 6 and leaves one of 2 ...
  insertInto(store, "0-1");
  EXPECT_EQ(poolOf(store), 9U);
  // ... which the next list takes.
  insertInto(store, "1-0");
  EXPECT_EQ(poolOf(store), 9U);
  insertInto(store, "2-0");
  EXPECT_EQ(poolOf(store), 11U);
  EXPECT_THAT(store.edges(0, Side::kOut), ElementsAre(0, 1, 2));
  EXPECT_THAT(store.edges(1, Side::kOut), ElementsAre(3));
  EXPECT_THAT(store.edges(2, Side::kOut), ElementsAre(4));
}

TEST(AdjacencyStore, APoolStaysWithinAFewTimesItsEntries) {
  constexpr std::uint64_t kVertices = 64;
  AdjacencyStore store = storeOf(kVertices, "", false);
  std::uint64_t edges = 0;
  for (std::uint64_t round = 0; round < 300; ++round) {
    for (std::uint64_t v = 0; v < kVertices; v += 1 + round % 3) {
      const std::uint64_t to = (v * 7 + round) % kVertices;
      store.insert({{&v, 1}, {&to, 1}});
      ++edges;
    }
    // Twice to grow into, and twice again for the slots that lists of all sizes left behind.
    ASSERT_LE(poolOf(store), 4 * 2 * edges + 2 * kVertices + 1);
  }
}

TEST(AdjacencyStore, ListsAreTheSameHoweverTheEdgesCame) {
  const std::string first = "0-1 1-2 2-2 0-1";
  const std::string second = "3-0 0-0 1-2";
  for (const bool directed : {false, true}) {
    for (const std::uint64_t limit : {AdjacencyStore::kNarrowLimit, std::uint64_t{0}}) {
      const AdjacencyStore whole = storeOf(4, first + ' ' + second, directed, limit);
      AdjacencyStore grown = storeOf(4, first, directed, limit);
      insertInto(grown, second);
      EXPECT_EQ(whole.isNarrow(), limit != 0);
      EXPECT_EQ(grown.isNarrow(), limit != 0);
      for (std::uint64_t v = 0; v < 4; ++v) {
        for (const Side side : {Side::kOut, Side::kIn}) {
          EXPECT_EQ(grown.edges(v, side), whole.edges(v, side));
          EXPECT_EQ(grown.neighbours(v, side), whole.neighbours(v, side));
        }
      }
    }
  }
}

TEST(AdjacencyStore, BecomesWideWhileEdgesAreInserted) {
  for (const bool directed : {false, true}) {
    for (const std::uint64_t limit : {8U, 20U, 40U, 100U, 200U}) {
      AdjacencyStore store = storeOf(4, "0-1", directed, limit);
      std::vector<std::uint64_t> toOfZero{1};
      bool wasWide = !store.isNarrow();
      for (std::uint64_t i = 0; i < 60; ++i) {
        const std::uint64_t from = 0;
        const std::uint64_t to = 1 + i % 3;
        store.insert({{&from, 1}, {&to, 1}});
        toOfZero.push_back(to);
        EXPECT_TRUE(!wasWide || !store.isNarrow());
        wasWide = !store.isNarrow();
        ASSERT_EQ(store.neighbours(0, Side::kOut), toOfZero);
        ASSERT_EQ(store.edges(0, Side::kOut).back(), i + 1);
        ASSERT_EQ(store.to(i + 1), to);
        ASSERT_EQ(store.from(i + 1), 0U);
        ASSERT_TRUE(!store.isNarrow() || poolOf(store) <= limit);
      }
      EXPECT_TRUE(wasWide || limit == 200);
    }
  }
}

TEST(AdjacencyStore, MoreVerticesThanTheLimitAreWide) {
  EXPECT_TRUE(storeOf(40, "0-1", true, 40).isNarrow());
  EXPECT_FALSE(storeOf(41, "0-1", true, 40).isNarrow());
}

// From 64 edges on, an insertion that is more than half of what is there builds all lists anew.
TEST(AdjacencyStore, LargeInsertionsKeepWhatWasThere) {
  for (const bool directed : {false, true}) {
    for (const std::uint64_t more : {63U, 64U, 65U, 200U}) {
      AdjacencyStore store = storeOf(10, "3-4 4-4 4-3", directed);
      std::vector<std::uint64_t> from;
      std::vector<std::uint64_t> to;
      for (std::uint64_t i = 0; i < more; ++i) {
        from.push_back(i * i % 10);
        to.push_back(i * 3 % 10);
      }
      std::vector<std::uint64_t> expected =
          directed ? std::vector<std::uint64_t>{1, 2} : std::vector<std::uint64_t>{0, 1, 1, 2};
      for (std::uint64_t i = 0; i < more; ++i) {
        if (from[i] == 4) expected.push_back(3 + i);
        if (!directed && to[i] == 4) expected.push_back(3 + i);
      }
      store.insert({from, to});
      EXPECT_EQ(store.edgeCount(), 3 + more);
      EXPECT_EQ(store.edges(4, Side::kOut), expected);
      EXPECT_EQ(store.from(2), 4U);
      EXPECT_EQ(store.to(3 + 5), 5U);
    }
  }
}

// Large enough for entries to be sorted into ranges of vertices first.
TEST(AdjacencyStore, ALargeConstructionKeepsEdgeOrder) {
  constexpr std::uint64_t kVertices = (std::uint64_t{1} << 15) + 3;
  constexpr std::uint64_t kEdges = (std::uint64_t{1} << 16) + 5;
  std::vector<std::uint64_t> from(kEdges);
  std::vector<std::uint64_t> to(kEdges);
  for (std::uint64_t e = 0; e < kEdges; ++e) {
    from[e] = e % 11 == 0 ? 5 : e * 2654435761 % kVertices;
    to[e] = e % 7 == 0 ? from[e] : e * 40503 % kVertices;
  }
  for (const bool directed : {false, true}) {
    for (const std::uint64_t limit : {AdjacencyStore::kNarrowLimit, std::uint64_t{0}}) {
      std::vector<std::vector<std::uint64_t>> outEdges(kVertices);
      std::vector<std::vector<std::uint64_t>> inEdges(kVertices);
      for (std::uint64_t e = 0; e < kEdges; ++e) {
        outEdges[from[e]].push_back(e);
        (directed ? inEdges : outEdges)[to[e]].push_back(e);
      }
      const AdjacencyStore store = storeOf(kVertices, from, to, directed, limit);
      bool same = true;
      for (std::uint64_t v = 0; v < kVertices; ++v) {
        same = same && store.edges(v, Side::kOut) == outEdges[v];
        same = same && store.edges(v, Side::kIn) == (directed ? inEdges : outEdges)[v];
        const auto neighbours = store.neighbours(v, Side::kOut);
        for (std::uint64_t k = 0; same && k < neighbours.size(); ++k) {
          const std::uint64_t e = outEdges[v][k];
          same = neighbours[k] == (from[e] == v ? to[e] : from[e]);
        }
      }
      EXPECT_TRUE(same);
    }
  }
}

// In a directed network the in-lists have pools of their own, which can be full before the others.
// The hub's slots are of 2, 6, 14 and 30 places behind the one that belongs to none, 23 until the
// fifteenth edge wants the last of them; each source has one of 2, 31 places by then.
TEST(AdjacencyStore, InListsAloneOutgrowTheNarrowWidth) {
  AdjacencyStore store = storeOf(31, "", true, 40);
  std::vector<std::uint64_t> sources;
  while (store.isNarrow() && sources.size() < 30) {
    const std::uint64_t from = 1 + sources.size();
    const std::uint64_t hub = 0;
    store.insert({{&from, 1}, {&hub, 1}});
    sources.push_back(from);
  }
  EXPECT_EQ(sources.size(), 15U);
  EXPECT_EQ(store.neighbours(0, Side::kIn), sources);
}

}  // namespace
}  // namespace veq::test::adjacency_store_test
