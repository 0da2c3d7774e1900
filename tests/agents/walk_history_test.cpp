#include "veq/agents/internal/walk_history.hpp"

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

constexpr std::uint32_t kNone = kStayed<std::uint32_t>;

template <class Index>
void append(WalkHistory& history, std::uint64_t agents, const std::vector<Index>& moves) {
  auto block = std::make_shared<MoveBlock>();
  Block<Index> entries(moves.size());
  std::copy(moves.begin(), moves.end(), entries.data());
  block->moves = std::move(entries);
  block->steps = moves.size() / agents;
  block->walk = history.currentWalk();
  history.reserve();
  history.append(std::move(block));
}

void foldAll(WalkHistory& history) {
  while (history.foldSome() != 0) {
  }
}

TEST(WalkHistory, CountsAndStampsArrivalsInOrder) {
  WalkHistory history(4, 2, 0);
  append<std::uint32_t>(history, 2, {1, 3, 2, kNone, 1, 0});
  history.endWalk();
  EXPECT_EQ(integers(*history.arraysOf(0).visits), (Integers{0, 2, 1, 0}));
  EXPECT_EQ(integers(*history.arraysOf(0).order), (Integers{0, 2, 1, 0}));
  EXPECT_EQ(integers(*history.arraysOf(1).visits), (Integers{1, 0, 0, 1}));
  EXPECT_EQ(integers(*history.arraysOf(1).order), (Integers{1, 0, 0, 0}));
  EXPECT_EQ(integers(*history.totals()), (Integers{1, 2, 1, 1}));
}

TEST(WalkHistory, FoldingEmptiesTheLogAndChangesNothing) {
  for (const bool fold : {false, true}) {
    WalkHistory history(4, 2, 1);
    append<std::uint32_t>(history, 2, {1, 3, 2, kNone});
    history.endWalk();
    if (fold) foldAll(history);
    append<std::uint64_t>(history, 2, {1, kStayed<std::uint64_t>});
    history.endWalk();
    if (fold) {
      foldAll(history);
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
  WalkHistory history(90, 1, 0);
  std::vector<std::uint32_t> moves;
  for (std::uint32_t v = 0; v < 60; ++v) moves.push_back(v);
  append(history, 1, moves);
  append(history, 1, moves);
  foldAll(history);
  EXPECT_EQ(history.compactBytes(), 60U * 12);
  append<std::uint32_t>(history, 1, {60});
  foldAll(history);
  EXPECT_EQ(history.compactBytes(), 90U * 8);
  // Arrays that are out count no longer.
  EXPECT_EQ(integers(*history.arraysOf(0).visits)[59], 2);
  EXPECT_EQ(integers(*history.arraysOf(0).order)[60], 120);
  EXPECT_EQ(history.compactBytes(), 0U);
}

// Tells whether two histories have come to the same.
void expectSame(WalkHistory& one, WalkHistory& other, std::uint64_t agents) {
  EXPECT_EQ(integers(one.totals()), integers(other.totals()));
  for (std::uint64_t a = 0; a < agents; ++a) {
    ASSERT_EQ(integers(*one.arraysOf(a).visits), integers(*other.arraysOf(a).visits)) << a;
    ASSERT_EQ(integers(*one.arraysOf(a).order), integers(*other.arraysOf(a).order)) << a;
  }
}

// With a word limit far below that of 32 bits, arrivals outgrow their words and networks theirs.
TEST(WalkHistory, DoesNotDependOnTheWidthOfItsWords) {
  constexpr std::uint64_t kAgents = 20;
  for (const std::uint64_t vertices : std::initializer_list<std::uint64_t>{10, 400}) {
    WalkHistory usual(vertices, kAgents, 1);
    WalkHistory small(vertices, kAgents, 1, HistoryLimits{50, 0});
    std::mt19937 draw(7);
    for (int walk = 0; walk < 6; ++walk) {
      for (int block = 0; block < 3; ++block) {
        std::vector<std::uint32_t> moves(kAgents * 5);
        for (auto& to : moves) {
          to = draw() % 5 == 0 ? kNone : static_cast<std::uint32_t>(draw() % vertices);
        }
        append(usual, kAgents, moves);
        append(small, kAgents, moves);
      }
      foldAll(small);
      usual.endWalk();
      small.endWalk();
      if (walk == 3) (void)small.arraysOf(4);
    }
    expectSame(usual, small, kAgents);
  }
}

TEST(WalkHistory, CanBeAskedInTheMiddleOfAFolding) {
  constexpr std::uint64_t kAgents = 40;
  constexpr std::uint64_t kVertices = 100;
  WalkHistory usual(kVertices, kAgents, 0);
  WalkHistory folded(kVertices, kAgents, 0);
  std::mt19937 draw(8);
  for (int walk = 0; walk < 10; ++walk) {
    std::vector<std::uint32_t> moves(kAgents * 3);
    for (auto& to : moves) to = static_cast<std::uint32_t>(draw() % kVertices);
    append(usual, kAgents, moves);
    append(folded, kAgents, moves);
    (void)folded.foldSome();
    (void)folded.foldSome();
    if (walk == 4) (void)folded.arraysOf(3);
    if (walk == 5) (void)folded.arraysOf(39);
    if (walk == 6) (void)folded.totals();
    usual.endWalk();
    folded.endWalk();
  }
  foldAll(folded);
  expectSame(usual, folded, kAgents);
}

TEST(WalkHistory, OfAWalkUnderWayCountsIntoTheTotalsAtItsEnd) {
  WalkHistory history(2, 1, 0);
  append<std::uint32_t>(history, 1, {1});
  EXPECT_EQ(integers(history.totals()), (Integers{0, 0}));
  history.endWalk();
  EXPECT_EQ(integers(history.totals()), (Integers{0, 1}));
  history.endWalk();
  EXPECT_EQ(integers(history.totals()), (Integers{0, 2}));
}

// The size at which a log of 10 agents is to be folded.
std::uint64_t bytesBeforeFolding(std::uint64_t vertices) {
  WalkHistory history(vertices, 10, 0);
  while (!history.shouldFold()) append(history, 10, std::vector<std::uint32_t>(100000, 1));
  return history.logBytes();
}

TEST(WalkHistory, AsksToBeFoldedBeforeTheLogOutgrowsTheArrays) {
  // In blocks of 0.4 MB: 16 MiB however small the arrays are, 5 bytes for each agent and vertex
  // where the arrays take 16, and 45 MiB however large the arrays are.
  EXPECT_NEAR(static_cast<double>(bytesBeforeFolding(100)), 17.0e6, 0.25e6);
  EXPECT_NEAR(static_cast<double>(bytesBeforeFolding(500000)), 25.2e6, 0.25e6);
  EXPECT_NEAR(static_cast<double>(bytesBeforeFolding(100000000)), 47.4e6, 0.25e6);
}

TEST(WalkHistory, MayBeOfMoreAgentsAndVerticesThanCanBeMultiplied) {
  const WalkHistory history(std::uint64_t{1} << 62, 4, 0);
  EXPECT_EQ(history.bytesPerBlock(), 8388608U);
}

TEST(WalkHistory, NeedsNoMoreFoldingOnceTheLogIsFolded) {
  WalkHistory history(10, 10, 0, HistoryLimits{UINT32_MAX, 100});
  append(history, 10, std::vector<std::uint32_t>(1000, 1));
  EXPECT_TRUE(history.shouldFold());
  foldAll(history);
  EXPECT_FALSE(history.shouldFold());
}

}  // namespace
}  // namespace veq::internal
