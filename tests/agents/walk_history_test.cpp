#include "veq/agents/internal/walk_history.hpp"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <random>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/agents.hpp"

namespace veq::internal {
namespace {

using test::Integers;
using test::integers;

using Narrow = WalkHistory<std::uint32_t>;
using Wide = WalkHistory<std::uint64_t>;

constexpr std::uint32_t kNone = kStayed<std::uint32_t>;
constexpr HistoryLimits kNoLog{0, 0, 0, 0};

template <class Word>
void append(WalkHistory<Word>& history, std::uint64_t agents,
            const std::vector<std::uint32_t>& moves) {
  const std::uint64_t steps = moves.size() / agents;
  const MoveRoom<Word> room = history.roomFor(steps, true);
  std::transform(moves.begin(), moves.end(), room.first, [](std::uint32_t to) {
    return to == kNone ? kStayed<Word> : static_cast<Word>(to);
  });
  history.append(steps);
}

TEST(WalkHistory, CountsAndStampsArrivalsInOrder) {
  Narrow history(4, 2, 0);
  append(history, 2, {1, 3, 2, kNone, 1, 0});
  history.endWalk();
  EXPECT_EQ(integers(*history.arraysOf(0).visits), (Integers{0, 2, 1, 0}));
  EXPECT_EQ(integers(*history.arraysOf(0).order), (Integers{0, 2, 1, 0}));
  EXPECT_EQ(integers(*history.arraysOf(1).visits), (Integers{1, 0, 0, 1}));
  EXPECT_EQ(integers(*history.arraysOf(1).order), (Integers{1, 0, 0, 0}));
  EXPECT_EQ(integers(*history.totals()), (Integers{1, 2, 1, 1}));
}

TEST(WalkHistory, FoldingEmptiesTheLogAndChangesNothing) {
  for (const bool fold : {false, true}) {
    Narrow history(4, 2, 1);
    append(history, 2, {1, 3, 2, kNone});
    history.endWalk();
    if (fold) history.fold();
    append(history, 2, {1, kNone});
    history.endWalk();
    if (fold) {
      history.fold();
      EXPECT_EQ(history.logBytes(), 0U);
      EXPECT_GT(history.compactBytes(), 0U);
    }
    EXPECT_EQ(integers(*history.totals()), (Integers{0, 3, 2, 2}));
    EXPECT_EQ(integers(*history.arraysOf(0).visits), (Integers{0, 2, 1, 0}));
    EXPECT_EQ(integers(*history.arraysOf(0).order), (Integers{0, 3, 2, 0}));
    EXPECT_EQ(integers(*history.arraysOf(1).order), (Integers{0, 0, 0, 1}));
  }
}

TEST(WalkHistory, TakesTwelveBytesForEachVertexVisitedAndEightForEachThereIsWhenDense) {
  Narrow history(90, 1, 0);
  std::vector<std::uint32_t> moves;
  // From the last on, so that no tally lies where it belongs once all vertices have one.
  for (std::uint32_t v = 60; v-- > 0;) moves.push_back(89 - v);
  append(history, 1, moves);
  append(history, 1, moves);
  history.fold();
  EXPECT_EQ(history.compactBytes(), 60U * 12);
  append(history, 1, {29});
  history.fold();
  EXPECT_EQ(history.compactBytes(), 90U * 8);
  append(history, 1, {29});
  history.fold();
  // Arrays that are out count no longer.
  const Integers visits = integers(*history.arraysOf(0).visits);
  const Integers order = integers(*history.arraysOf(0).order);
  EXPECT_EQ(history.compactBytes(), 0U);
  for (std::size_t v = 0; v < 90; ++v) {
    EXPECT_EQ(visits[v], v < 29 ? 0 : 2) << v;
    EXPECT_EQ(order[v], v < 29 ? 0 : v == 29 ? 121 : static_cast<std::int64_t>(v) + 30) << v;
  }
}

// Tells whether two histories have come to the same.
template <class Word, class OtherWord>
void expectSame(WalkHistory<Word>& one, WalkHistory<OtherWord>& other, std::uint64_t agents) {
  EXPECT_EQ(integers(one.totals()), integers(other.totals()));
  for (std::uint64_t a = 0; a < agents; ++a) {
    ASSERT_EQ(integers(*one.arraysOf(a).visits), integers(*other.arraysOf(a).visits)) << a;
    ASSERT_EQ(integers(*one.arraysOf(a).order), integers(*other.arraysOf(a).order)) << a;
  }
}

TEST(WalkHistory, DoesNotDependOnTheWidthOfItsWords) {
  constexpr std::uint64_t kAgents = 20;
  for (const std::uint64_t vertices : std::initializer_list<std::uint64_t>{10, 400}) {
    Narrow usual(vertices, kAgents, 1);
    Wide wide(vertices, kAgents, 1, kNoLog);
    std::mt19937 draw(7);
    for (int walk = 0; walk < 6; ++walk) {
      for (int block = 0; block < 3; ++block) {
        std::vector<std::uint32_t> moves(kAgents * 5);
        for (auto& to : moves) {
          to = draw() % 5 == 0 ? kNone : static_cast<std::uint32_t>(draw() % vertices);
        }
        append(usual, kAgents, moves);
        append(wide, kAgents, moves);
      }
      usual.endWalk();
      wide.endWalk();
      if (walk == 4) (void)wide.arraysOf(19);
    }
    expectSame(usual, wide, kAgents);
  }
}

// With words of 16 bits, which hold 65535 arrivals. Of 70000 steps the first agent stays in place
// in every second one, so that it does not outgrow them as its neighbours do.
TEST(WalkHistory, GoesOnInArraysWhereArrivalsOutgrowTheirWords) {
  constexpr std::uint64_t kAgents = 3;
  Narrow usual(5, kAgents, 1);
  WalkHistory<std::uint16_t> small(5, kAgents, 1, kNoLog);
  std::mt19937 draw(9);
  for (std::uint32_t s = 0; s < 70000; s += 1000) {
    std::vector<std::uint32_t> moves(kAgents * 1000);
    for (auto& to : moves) to = static_cast<std::uint32_t>(draw() % 5);
    for (std::size_t i = 0; i < moves.size(); i += 2 * kAgents) moves[i] = kNone;
    append(usual, kAgents, moves);
    append(small, kAgents, moves);
  }
  usual.endWalk();
  small.endWalk();
  EXPECT_EQ(small.compactBytes(), 5U * 4);  // of the first agent, two words for each vertex
  expectSame(usual, small, kAgents);
}

TEST(WalkHistory, CanBeAskedBetweenFoldings) {
  constexpr std::uint64_t kAgents = 40;
  constexpr std::uint64_t kVertices = 100;
  Narrow usual(kVertices, kAgents, 0);
  Narrow folded(kVertices, kAgents, 0, kNoLog);
  std::mt19937 draw(8);
  for (int walk = 0; walk < 10; ++walk) {
    std::vector<std::uint32_t> moves(kAgents * 3);
    for (auto& to : moves) to = static_cast<std::uint32_t>(draw() % kVertices);
    append(usual, kAgents, moves);
    append(folded, kAgents, moves);
    if (walk == 4) (void)folded.arraysOf(3);
    if (walk == 5) (void)folded.arraysOf(39);
    if (walk == 6) (void)folded.totals();
    usual.endWalk();
    folded.endWalk();
  }
  folded.fold();
  expectSame(usual, folded, kAgents);
}

TEST(WalkHistory, OfAWalkUnderWayCountsIntoTheTotalsAtItsEnd) {
  Narrow history(2, 1, 0);
  append(history, 1, {1});
  EXPECT_EQ(integers(history.totals()), (Integers{0, 0}));
  history.endWalk();
  EXPECT_EQ(integers(history.totals()), (Integers{0, 1}));
  history.endWalk();
  EXPECT_EQ(integers(history.totals()), (Integers{0, 2}));
}

// The most that the log of 10 agents holds in the course of 1.2 million steps in blocks of 0.4 MB,
// and what is left of it after the walk.
struct LogSizes {
  std::uint64_t most = 0;
  std::uint64_t left = 0;
};
LogSizes logSizes(std::uint64_t vertices) {
  Narrow history(vertices, 10, 0);
  LogSizes sizes;
  const std::vector<std::uint32_t> moves(100000, 1);
  for (int i = 0; i < 120; ++i) {
    append(history, 10, moves);
    sizes.most = std::max(sizes.most, history.logBytes());
  }
  history.endWalk();
  sizes.left = history.logBytes();
  return sizes;
}

// 1 MiB however small the arrays are, and what tallies would take otherwise, up to 12 MiB; besides
// half of the arrays of all agents but one, which all together take 160 bytes a vertex.
TEST(WalkHistory, FoldsTheLogBeforeItOutgrowsWhatTheArraysLeave) {
  const LogSizes small = logSizes(100);
  EXPECT_NEAR(static_cast<double>(small.most), 1.0e6, 0.41e6);
  EXPECT_LE(small.left, 524288U + 8000U);
  const LogSizes medium = logSizes(200000);
  EXPECT_NEAR(static_cast<double>(medium.most), 27.0e6, 0.41e6);
  EXPECT_LE(medium.left, 16500000U);
}

// A move takes 4 bytes, and a tally 12: while few vertices are visited again, counting takes more.
TEST(WalkHistory, KeepsMovesAsTheyAreWhereTalliesWouldTakeMore) {
  Narrow history(100000, 1000, 0);
  std::vector<std::uint32_t> step(1000);
  for (std::uint32_t s = 0; s < 40000; ++s) {
    const MoveRoom<std::uint32_t> room = history.roomFor(1, false);
    std::fill_n(room.first, 1000, s);
    history.append(1);
    history.endWalk();
  }
  EXPECT_EQ(history.compactBytes(), 0U);
  EXPECT_LT(history.logBytes(), 162000000U);
}

TEST(WalkHistory, MayBeOfMoreAgentsAndVerticesThanCanBeMultiplied) {
  const Wide history(std::uint64_t{1} << 62, 4, 0);
  EXPECT_EQ(history.stepsPerRun(), 8388608U / 32);
}

TEST(WalkHistory, NeedsNoMoreFoldingOnceTheLogIsFolded) {
  Narrow history(10, 10, 0, kNoLog);
  append(history, 10, std::vector<std::uint32_t>(1000, 1));
  EXPECT_EQ(history.logBytes(), 0U);
  EXPECT_EQ(history.compactBytes(), 10U * 12);
}

// Paths are views of the block in which the moves lie, and nobody may write there again.
TEST(WalkHistory, WritesABlockAgainUnlessItIsHeld) {
  Narrow history(10, 1, 0, kNoLog);
  append(history, 1, {1, 2, 3});
  const std::uint32_t* const first = history.roomFor(3, true).first;
  append(history, 1, {4, 5, 6});
  EXPECT_EQ(history.roomFor(3, true).first, first);
  const Shared<const void> held = history.block();
  append(history, 1, {7, 8, 9});
  EXPECT_NE(history.roomFor(3, true).first, first);
  EXPECT_EQ(first[0], 7U);
  history.endWalk();
  EXPECT_EQ(integers(history.totals()), (Integers{0, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
}

}  // namespace
}  // namespace veq::internal
