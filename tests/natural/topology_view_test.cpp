#include "veq/natural/topology_view.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/threads.hpp"
#include "veq/natural/network.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::test::topology_view_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Network drawn(const std::string& edges, bool directed, std::uint64_t vertices = 0) {
  return Network(draw(edges, directed, vertices));
}

std::vector<std::uint64_t> values(auto indices) { return {indices.begin(), indices.end()}; }

// Where the topology of a network lies now.
const void* placeOf(const Network& network) {
  return internal::CoreAccess::of(*network.published())
      .store.visit([](const auto& topology) -> const void* { return &topology; });
}

TEST(TopologyView, GivesEndsAndListsOfADirectedNetwork) {
  const Network network = drawn("0-1 0-2 2-1 1-1", true, 4);
  const TopologyView view = network.topology();
  EXPECT_EQ(view.countVertices(), 4U);
  EXPECT_EQ(view.countEdges(), 4U);
  EXPECT_TRUE(view.isDirected());
  EXPECT_EQ(view.indexBytes(), 4U);
  view.visit([](const auto& arrays) {
    EXPECT_THAT(values(arrays.from), ElementsAre(0, 0, 2, 1));
    EXPECT_THAT(values(arrays.to), ElementsAre(1, 2, 1, 1));
    EXPECT_THAT(values(arrays.out.neighbours(0)), ElementsAre(1, 2));
    EXPECT_THAT(values(arrays.out.edges(0)), ElementsAre(0, 1));
    EXPECT_THAT(values(arrays.in.neighbours(1)), ElementsAre(0, 2, 1));
    EXPECT_THAT(values(arrays.in.edges(1)), ElementsAre(0, 2, 3));
    EXPECT_EQ(arrays.in.count(1), 3U);
    EXPECT_THAT(values(arrays.out.neighbours(3)), IsEmpty());
    EXPECT_THAT(values(arrays.in.neighbours(0)), IsEmpty());
  });
}

TEST(TopologyView, BothDirectionsOfAnUndirectedNetworkAreItsLists) {
  const TopologyView view = drawn("0-1 1-1", false).topology();
  EXPECT_FALSE(view.isDirected());
  view.visit([](const auto& arrays) {
    for (const auto& side : {arrays.out, arrays.in}) {
      EXPECT_THAT(values(side.neighbours(0)), ElementsAre(1));
      EXPECT_THAT(values(side.neighbours(1)), ElementsAre(0, 1, 1));
      EXPECT_THAT(values(side.edges(1)), ElementsAre(0, 1, 1));
    }
  });
}

TEST(TopologyView, WideIndicesHaveEightBytes) {
  const Network network(networkOf(3, {{0, 1}, {2, 1}}, true, 0));
  const TopologyView view = network.topology();
  EXPECT_EQ(view.indexBytes(), 8U);
  view.visit([]<class Index>(const TopologyArrays<Index>& arrays) {
    EXPECT_EQ(sizeof(Index), 8U);
    EXPECT_THAT(values(arrays.in.neighbours(1)), ElementsAre(0, 2));
  });
  view.visitPacked([](const auto& packed) {
    EXPECT_THAT(values(packed.in.offsets), ElementsAre(0, 0, 2, 2));
    EXPECT_THAT(values(packed.in.edges), ElementsAre(0, 1));
  });
}

TEST(TopologyView, WithoutVerticesThereIsNothingToSee) {
  const Network network(VEQNetwork::networkWithVertexCapacity_edgeCapacity(5, 5));
  const TopologyView view = network.topology();
  EXPECT_EQ(view.countVertices(), 0U);
  view.visit([](const auto& arrays) { EXPECT_TRUE(arrays.from.empty()); });
  view.visitPacked([](const auto& packed) {
    EXPECT_THAT(values(packed.out.offsets), ElementsAre(0));
    EXPECT_TRUE(packed.out.neighbours.empty());
  });
}

TEST(TopologyView, StaysAsItIsWhateverIsInserted) {
  for (const bool directed : {false, true}) {
    const Network network = drawn("0-1 1-2", directed);
    const TopologyView before = network.topology();
    insert(*network.published(), "0-2");
    const TopologyView between = network.topology();
    std::string many;
    for (int i = 0; i < 100; ++i) many += "1-0 ";
    insert(*network.published(), many);

    EXPECT_EQ(before.countEdges(), 2U);
    EXPECT_EQ(between.countEdges(), 3U);
    EXPECT_EQ(network.topology().countEdges(), 103U);
    before.visit([](const auto& arrays) {
      EXPECT_THAT(values(arrays.from), ElementsAre(0, 1));
      EXPECT_THAT(values(arrays.out.neighbours(0)), ElementsAre(1));
    });
    between.visit([](const auto& arrays) {
      EXPECT_THAT(values(arrays.from), ElementsAre(0, 1, 0));
      EXPECT_THAT(values(arrays.out.neighbours(0)), ElementsAre(1, 2));
    });
  }
}

TEST(TopologyView, AnInsertionCopiesOnceForEachView) {
  const Network network = drawn("0-1 1-2", true);
  const void* const first = placeOf(network);
  insert(*network.published(), "0-2");
  EXPECT_EQ(placeOf(network), first);

  std::optional<TopologyView> view = network.topology();
  insert(*network.published(), "0-2");
  const void* const second = placeOf(network);
  EXPECT_NE(second, first);
  insert(*network.published(), "0-2");
  EXPECT_EQ(placeOf(network), second);

  // A copy holds it as well as the view that it was copied from.
  view = network.topology();
  const TopologyView copy = *view;
  view.reset();
  insert(*network.published(), "0-2");
  EXPECT_NE(placeOf(network), second);
  EXPECT_EQ(copy.countEdges(), 5U);

  const void* const third = placeOf(network);
  static_cast<void>(network.topology());
  insert(*network.published(), "0-2");
  EXPECT_EQ(placeOf(network), third);
}

TEST(TopologyView, OutlivesTheNetwork) {
  std::optional<Network> network = drawn("0-1 1-2", true);
  TopologyView view = network->topology();
  network.reset();
  view = TopologyView(view);
  view.visit([](const auto& arrays) { EXPECT_THAT(values(arrays.to), ElementsAre(1, 2)); });
}

// Vertex 2 comes first in edge order, so that its list lies before the others in the pools.
TEST(TopologyView, PackedListsLieInTheOrderOfTheVertices) {
  const Network network = drawn("2-0 0-1 0-2 2-2", true, 4);
  const TopologyView view = network.topology();
  view.visitPacked([](const auto& packed) {
    EXPECT_THAT(values(packed.out.offsets), ElementsAre(0, 2, 2, 4, 4));
    EXPECT_THAT(values(packed.out.neighbours), ElementsAre(1, 2, 0, 2));
    EXPECT_THAT(values(packed.out.edges), ElementsAre(1, 2, 0, 3));
    EXPECT_THAT(values(packed.in.offsets), ElementsAre(0, 1, 2, 4, 4));
    EXPECT_THAT(values(packed.in.neighbours), ElementsAre(2, 0, 0, 2));
    EXPECT_THAT(values(packed.in.edges), ElementsAre(0, 1, 2, 3));
  });
}

TEST(TopologyView, PackedListsAreKeptUntilTheNetworkChanges) {
  const Network network = drawn("0-1 1-2", false);
  const auto packedPlace = [&network] {
    return network.topology().visitPacked(
        [](const auto& packed) -> const void* { return packed.out.edges.data(); });
  };
  EXPECT_EQ(packedPlace(), packedPlace());
  // Nobody holds a view, so that the insertion changes the topology in its place.
  insert(*network.published(), "2-0");
  network.topology().visitPacked([](const auto& packed) {
    EXPECT_THAT(values(packed.out.offsets), ElementsAre(0, 2, 4, 6));
    EXPECT_THAT(values(packed.out.neighbours), ElementsAre(1, 2, 0, 2, 1, 0));
    EXPECT_THAT(values(packed.in.edges), ElementsAre(0, 2, 0, 1, 1, 2));
  });
}

TEST(TopologyView, PackedListsOfBothDirectionsFollowAChange) {
  const Network network = drawn("0-1 1-2", true);
  network.topology().visitPacked([](const auto& packed) {
    EXPECT_THAT(values(packed.out.edges), ElementsAre(0, 1));
    EXPECT_THAT(values(packed.in.edges), ElementsAre(0, 1));
  });
  insert(*network.published(), "2-0");
  network.topology().visitPacked([](const auto& packed) {
    EXPECT_THAT(values(packed.out.edges), ElementsAre(0, 1, 2));
    EXPECT_THAT(values(packed.in.edges), ElementsAre(2, 0, 1));
  });
}

// Edge e of the network that is inserted into below.
constexpr std::uint64_t kRing = 7;
std::uint64_t sourceOf(std::uint64_t e) { return e % kRing; }
std::uint64_t targetOf(std::uint64_t e) { return e * 3 % kRing; }

// Whether the view shows the first edges of that network, all of them whole.
bool isWhole(const TopologyView& view) {
  return view.visit([&view](const auto& arrays) {
    std::uint64_t entries = 0;
    for (std::uint64_t e = 0; e < view.countEdges(); ++e) {
      if (arrays.from[e] != sourceOf(e) || arrays.to[e] != targetOf(e)) return false;
    }
    for (std::uint64_t v = 0; v < kRing; ++v) {
      const auto edges = arrays.out.edges(v);
      const auto neighbours = arrays.out.neighbours(v);
      for (std::size_t k = 0; k < edges.size(); ++k) {
        if (edges[k] != v + k * kRing || neighbours[k] != targetOf(edges[k])) return false;
      }
      entries += edges.size();
    }
    return entries == view.countEdges();
  });
}

void insertEdge(const Network& network, std::uint64_t e) {
  const std::uint64_t from = sourceOf(e);
  const std::uint64_t to = targetOf(e);
  network.published()->addEdgesFromVerticesIndices_toVerticesIndices_count(&from, &to, 1);
}

// Runs `first` in a thread of its own and `second` here as soon as that is over, which the two tell
// each other without any order: only what they do to the network orders them, and the thread
// sanitizer sees where it does not.
template <class First, class Second>
void inTurnWithoutOrder(First first, Second second) {
  std::atomic<bool> over{false};
  std::thread thread([&] {
    first();
    over.store(true, std::memory_order_relaxed);
  });
  while (!over.load(std::memory_order_relaxed)) std::this_thread::yield();
  second();
  thread.join();
}

TEST(TopologyView, HasBeenReadWhenAnInsertionFindsItGone) {
  const Network network = drawn("", true, kRing);
  for (std::uint64_t e = 0; e < 20; ++e) insertEdge(network, e);
  const void* const place = placeOf(network);
  bool whole = false;
  inTurnWithoutOrder([&] { whole = isWhole(network.topology()); },
                     [&] { insertEdge(network, 20); });
  EXPECT_TRUE(whole);
  EXPECT_EQ(placeOf(network), place);
}

TEST(TopologyView, ShowsAllOfTheInsertionBeforeIt) {
  const Network network = drawn("", true, kRing);
  bool whole = false;
  inTurnWithoutOrder(
      [&] {
        for (std::uint64_t e = 0; e < 20; ++e) insertEdge(network, e);
      },
      [&] { whole = isWhole(network.topology()); });
  EXPECT_TRUE(whole);
}

// The thread sanitizer sees whether an insertion writes to what a view may still be read from.
TEST(TopologyView, IsTakenReadAndLetGoOfWhileAnotherThreadInserts) {
  const Network network = drawn("", true, kRing);
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0};
  inThreads(3, [&](int thread) {
    if (thread == 0) {
      for (std::uint64_t e = 0; e < 2000; ++e) insertEdge(network, e);
      done = true;
      return;
    }
    while (!done) {
      const TopologyView view = network.topology();
      const TopologyView copy = view;
      if (!isWhole(copy)) ++wrong;
      view.visitPacked([&](const auto& packed) {
        if (packed.out.edges.size() != view.countEdges()) ++wrong;
      });
    }
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(network.countEdges(), 2000U);
  EXPECT_TRUE(isWhole(network.topology()));
}

}  // namespace
}  // namespace veq::test::topology_view_test
