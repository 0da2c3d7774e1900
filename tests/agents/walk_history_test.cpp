#include "veq/agents/internal/walk_history.hpp"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <random>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/agents.hpp"

namespace veq::internal::walk_history_test {
namespace {

using test::Integers;
using test::integers;

using Narrow = WalkHistory<std::uint32_t>;
using Wide = WalkHistory<std::uint64_t>;

constexpr std::uint32_t kNone = kStayed<std::uint32_t>;
constexpr HistoryLimits kNoLog{.log = 0};

template <class Word>
void append(WalkHistory<Word>& history, std::uint64_t agents,
            const std::vector<std::uint32_t>& moves) {
  const std::uint64_t steps = moves.size() / agents;
  MoveRoom<Word> room;
  while (room.steps == 0) room = history.roomFor(steps, true);
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
    }
    EXPECT_EQ(integers(*history.totals()), (Integers{0, 3, 2, 2}));
    EXPECT_EQ(integers(*history.arraysOf(0).visits), (Integers{0, 2, 1, 0}));
    EXPECT_EQ(integers(*history.arraysOf(0).order), (Integers{0, 3, 2, 0}));
    EXPECT_EQ(integers(*history.arraysOf(1).order), (Integers{0, 0, 0, 1}));
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

// Of 1500 steps the first agent stays in place in every second one, so that it does not outgrow
// its tallies as its neighbours do.
TEST(WalkHistory, GoesOnInArraysWhereArrivalsOutgrowTallies) {
  constexpr std::uint64_t kAgents = 3;
  for (const std::uint64_t log : {std::uint64_t{0}, UINT64_MAX}) {
    Narrow usual(5, kAgents, 1);
    Narrow small(5, kAgents, 1, {.log = log, .arrivals = 1000});
    std::mt19937 draw(9);
    for (std::uint32_t s = 0; s < 1500; s += 100) {
      std::vector<std::uint32_t> moves(kAgents * 100);
      for (auto& to : moves) to = static_cast<std::uint32_t>(draw() % 5);
      for (std::size_t i = 0; i < moves.size(); i += 2 * kAgents) moves[i] = kNone;
      append(usual, kAgents, moves);
      append(small, kAgents, moves);
      small.fold();
    }
    usual.endWalk();
    small.endWalk();
    expectSame(usual, small, kAgents);
  }
}

// Walks of 40 moves a step, of which the log has room for so many that some are counted as they go,
// some fold what lies there, and some do nothing.
TEST(WalkHistory, CanBeAskedWhateverFormItsMovesHave) {
  constexpr std::uint64_t kAgents = 40;
  constexpr std::uint64_t kVertices = 100;
  for (const std::uint64_t steps : {0U, 3U, 5U, 8U, 30U}) {
    Narrow usual(kVertices, kAgents, 0);
    Narrow folded(kVertices, kAgents, 0, {.log = 4 * kAgents * steps});
    std::mt19937 draw(8);
    for (std::size_t walk = 0; walk < 24; ++walk) {
      std::vector<std::uint32_t> moves(kAgents * (walk % 7 == 0 ? 9 : 1 + walk % 3));
      for (auto& to : moves) to = static_cast<std::uint32_t>(draw() % kVertices);
      for (std::size_t part = 0; part <= walk % 2; ++part) {
        append(usual, kAgents, moves);
        append(folded, kAgents, moves);
      }
      if (walk == 9) (void)folded.arraysOf(3);
      if (walk == 13) (void)folded.arraysOf(39);
      if (walk == 15 && steps != 3) (void)folded.totals();
      if (walk == 21) {
        EXPECT_EQ(folded.visits(), usual.visits());
      }
      EXPECT_EQ(folded.visitsOf(3), usual.visitsOf(3));
      usual.endWalk();
      folded.endWalk();
    }
    expectSame(usual, folded, kAgents);
    EXPECT_EQ(folded.visits(), usual.visits());
  }
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

// What is left of a log of 10 agents after so many steps, 1000 in each walk.
std::uint64_t logAfter(std::uint64_t vertices, std::uint64_t walks) {
  Narrow history(vertices, 10, 0);
  const std::vector<std::uint32_t> moves(10000, 1);
  for (std::uint64_t walk = 0; walk < walks; ++walk) {
    append(history, 10, moves);
    history.endWalk();
  }
  return history.logBytes();
}

// Tallies leave half of the arrays, which take 160 bytes a vertex: 1.6 million for 20000 vertices.
// Beyond these the log may take half a MiB. A walk takes 40000 bytes.
TEST(WalkHistory, FoldsTheLogBeforeItOutgrowsWhatTalliesLeaveOfTheArrays) {
  EXPECT_GE(logAfter(20000, 40), 40 * 40000U);
  std::uint64_t most = 0;
  std::uint64_t least = UINT64_MAX;
  for (std::uint64_t walks = 41; walks < 80; ++walks) {
    most = std::max(most, logAfter(20000, walks));
    least = std::min(least, logAfter(20000, walks));
  }
  EXPECT_LE(most, 1600000U + 524288U);
  EXPECT_LE(least, 80000U);
}

TEST(WalkHistory, CountsAWalkAsItGoesThatTheLogHasNoRoomFor) {
  Narrow history(100, 10, 0);
  const MoveRoom<std::uint32_t> room = history.roomFor(1000000, false);
  EXPECT_EQ(room.steps, history.stepsPerRun());
  std::fill_n(room.first, 10 * room.steps, 7);
  history.append(room.steps);
  // It is counted before there is room again.
  EXPECT_EQ(history.roomFor(1000000, false).steps, 0U);
  EXPECT_EQ(history.roomFor(1000000, false).first, room.first);
  EXPECT_EQ(history.logBytes(), 0U);
  EXPECT_EQ(history.visitsOf(9)[7], room.steps);
  EXPECT_EQ(history.visits()[7], 10 * room.steps);
}

// 300,000 moves of 40 agents, which are more than are counted at once.
TEST(WalkHistory, CountsALongLogInPiecesBetweenWhichAWalkMayBeStopped) {
  constexpr std::uint64_t kAgents = 40;
  Narrow usual(5000, kAgents, 1);
  Narrow stopped(5000, kAgents, 1, {.log = 4 * 300000});
  std::mt19937 draw(6);
  std::vector<std::uint32_t> moves(300000);
  for (auto& to : moves) to = static_cast<std::uint32_t>(draw() % 5000);
  append(usual, kAgents, moves);
  usual.endWalk();
  append(stopped, kAgents, moves);
  stopped.endWalk();
  // The next walk has no room in the log, and is stopped before it has any elsewhere.
  EXPECT_EQ(stopped.roomFor(1000000, false).steps, 0U);
  EXPECT_EQ(stopped.roomFor(1000000, false).steps, 0U);
  stopped.endWalk(true);
  usual.endWalk();
  EXPECT_GT(stopped.logBytes(), 0U);
  EXPECT_EQ(stopped.visitsOf(39), usual.visitsOf(39));
  EXPECT_EQ(stopped.visits(), usual.visits());
  // Of the next one what is counted as it goes is left, too.
  for (const bool inHaste : {false, true}) {
    append(usual, kAgents, moves);
    append(usual, kAgents, moves);
    usual.endWalk();
    append(stopped, kAgents, moves);
    append(stopped, kAgents, moves);
    stopped.endWalk(inHaste);
    EXPECT_EQ(stopped.logBytes() > 0, inHaste);
  }
  append(usual, kAgents, {moves.begin(), moves.begin() + 400});
  append(stopped, kAgents, {moves.begin(), moves.begin() + 400});
  usual.endWalk();
  stopped.endWalk();
  expectSame(usual, stopped, kAgents);
  EXPECT_EQ(usual.visits(), stopped.visits());
}

TEST(WalkHistory, MayBeOfMoreAgentsAndVerticesThanCanBeMultiplied) {
  const Wide history(std::uint64_t{1} << 62, 4, 0);
  EXPECT_EQ(history.stepsPerRun(), 8388608U / 32);
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
}  // namespace veq::internal::walk_history_test
