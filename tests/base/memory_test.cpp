#include "veq/base/internal/memory.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

namespace veq::internal {
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

TEST(Ground, ItsBlocksLieOneBehindTheOther) {
  leaveTraces(9);
  Ground<Number> ground(9);
  const Block<Number> first = ground.block<Number>(3);
  const Block<Number> second = ground.zeroedBlock<Number>(6);
  EXPECT_EQ(first.size(), 3U);
  EXPECT_EQ(second.size(), 6U);
  EXPECT_EQ(second.data(), first.data() + 3);
  EXPECT_TRUE(holds(second, 0));
  const Block<Number> memory = std::move(ground).take();
  EXPECT_EQ(memory.size(), 9U);
  EXPECT_EQ(memory.data(), first.data());
}

TEST(Ground, ABlockForWhichItHasNoRoomIsByItself) {
  leaveTraces(5);
  Ground<Number> ground(4);
  const Block<Number> first = ground.block<Number>(3);
  const Block<Number> second = ground.zeroedBlock<Number>(5);
  const Block<Number> third = ground.block<Number>(1);
  EXPECT_EQ(second.size(), 5U);
  EXPECT_TRUE(holds(second, 0));
  EXPECT_EQ(third.data(), first.data() + 3);
}

TEST(Ground, WithoutUnitsGivesBlocksByThemselves) {
  Block<Number> block;
  {
    Ground<Number> ground(0);
    block = ground.zeroedBlock<Number>(3);
    EXPECT_TRUE(ground.block<Number>(0).empty());
  }
  EXPECT_EQ(block.size(), 3U);
  EXPECT_TRUE(holds(block, 0));
}

TEST(Ground, ABlockThatIsResizedLeavesIt) {
  Ground<Number> ground(6);
  Block<Number> larger = ground.block<Number>(2);
  Block<Number> smaller = ground.block<Number>(2);
  Block<Number> neighbour = ground.block<Number>(2);
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

TEST(Ground, ABlockMayBeMoved) {
  Ground<Number> ground(2);
  Block<Number> first = ground.block<Number>(2);
  fill(first, 5);
  Block<Number> second = std::move(first);
  Block<Number> third(1);
  third = std::move(second);
  EXPECT_EQ(third.size(), 2U);
  EXPECT_TRUE(holds(third, 5));
  third.reserve(2);
  EXPECT_EQ(std::move(ground).take().data(), third.data());
}

}  // namespace
}  // namespace veq::internal
