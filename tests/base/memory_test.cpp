#include "veq/base/internal/memory.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <utility>

namespace veq::internal::memory_test {
namespace {

using Number = std::uint32_t;

void fill(Block<Number>& block, Number value) {
  for (std::uint64_t i = 0; i < block.size(); ++i) block[i] = value;
}

bool holds(const Block<Number>& block, Number value) {
  for (std::uint64_t i = 0; i < block.size(); ++i) {
    if (block[i] != value) return false;
  }
  return true;
}

// Leaves memory of the size behind that is not zero, where the next block of that size may lie.
void leaveTraces(std::uint64_t count) {
  Block<Number> block(count);
  fill(block, 7);
}

// Memory of an owner that is not zero, and an arena over it.
struct OwnedArena {
  explicit OwnedArena(std::uint64_t count) : memory(count) { fill(memory, 7); }

  Block<Number> memory;
  Arena<Number> arena{std::span(memory.data(), memory.size())};
};

TEST(Arena, ItsBlocksLieOneBehindTheOther) {
  OwnedArena owned(9);
  const Block<Number> first = owned.arena.block<Number>(3);
  const Block<Number> second = owned.arena.zeroedBlock<Number>(6);
  EXPECT_EQ(first.size(), 3U);
  EXPECT_EQ(second.size(), 6U);
  EXPECT_EQ(first.data(), owned.memory.data());
  EXPECT_EQ(second.data(), first.data() + 3);
  EXPECT_TRUE(holds(second, 0));
}

TEST(Arena, ABlockForWhichTooLittleIsLeftIsByItself) {
  leaveTraces(5);
  OwnedArena owned(4);
  const Block<Number> first = owned.arena.block<Number>(3);
  const Block<Number> second = owned.arena.zeroedBlock<Number>(5);
  const Block<Number> third = owned.arena.block<Number>(1);
  EXPECT_EQ(second.size(), 5U);
  EXPECT_TRUE(holds(second, 0));
  EXPECT_EQ(third.data(), first.data() + 3);
}

TEST(Arena, WithoutMemoryGivesBlocksByThemselves) {
  Block<Number> block;
  {
    OwnedArena owned(0);
    block = owned.arena.zeroedBlock<Number>(3);
    EXPECT_TRUE(owned.arena.block<Number>(0).empty());
  }
  EXPECT_EQ(block.size(), 3U);
  EXPECT_TRUE(holds(block, 0));
}

TEST(Arena, ABlockThatIsResizedLeavesIt) {
  OwnedArena owned(6);
  Block<Number> larger = owned.arena.block<Number>(2);
  Block<Number> smaller = owned.arena.block<Number>(2);
  Block<Number> neighbour = owned.arena.block<Number>(2);
  fill(larger, 1);
  fill(smaller, 2);
  fill(neighbour, 3);
  const Number* const left = larger.data();
  larger.resize(100);
  smaller.resize(1);
  EXPECT_NE(larger.data(), left);
  EXPECT_EQ(larger.size(), 100U);
  fill(larger, larger[1]);
  EXPECT_EQ(larger[99], 1U);
  EXPECT_EQ(smaller.size(), 1U);
  EXPECT_EQ(smaller[0], 2U);
  EXPECT_TRUE(holds(neighbour, 3));
  larger.resize(0);
  EXPECT_TRUE(larger.empty());
}

TEST(Arena, ABlockMayBeMoved) {
  OwnedArena owned(2);
  Block<Number> first = owned.arena.block<Number>(2);
  fill(first, 5);
  Block<Number> second = std::move(first);
  Block<Number> third(1);
  third = std::move(second);
  EXPECT_EQ(third.size(), 2U);
  EXPECT_TRUE(holds(third, 5));
  third.reserve(2);
  EXPECT_EQ(owned.memory.data(), third.data());
}

}  // namespace
}  // namespace veq::internal::memory_test
