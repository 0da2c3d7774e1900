// Agents, steps, indices and probabilities at and around the ends of what types hold.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "tests/support/agents.hpp"
#include "tests/support/limits.hpp"
#include "veq/agents/dynamic_agents_group.hpp"

namespace veq::test::limits_test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

Shared<VEQNetwork> triangle() { return networkOf(3, {{0, 1}, {1, 2}, {2, 0}}, true); }

Owned<VEQNetworkDynamicAgentsGroup> lone(const VEQNumberArray& errors,
                                         const VEQNumberArray& sizes) {
  return VEQNetworkDynamicAgentsGroup::
      initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
          triangle(), VEQNumberArray::ofIndices({0}), nullptr, errors, sizes);
}

TEST(AgentsLimits, AgentsFarBeyondAreOutOfRange) {
  const auto group = groupAt(triangle(), {0, 1});
  group->setPropertyValue_forKey_forAgent(1, "Key", 0);
  const auto vertex = triangle()->vertexAtIndex(0);
  for (const std::uint64_t agent : indicesFarBeyond()) {
    SCOPED_TRACE(agent);
    const auto asSigned = static_cast<std::int64_t>(agent);
    EXPECT_THROW(static_cast<void>(group->currentVertexOfAgent(agent)), std::out_of_range);
    EXPECT_THROW(group->setCurrentVertex_forAgent(*vertex, agent), std::out_of_range);
    EXPECT_THROW(static_cast<void>(group->visitFrequencyOfVerticesForAgent(asSigned)),
                 std::out_of_range);
    EXPECT_THROW(static_cast<void>(group->orderOfVisitedVerticesForAgent(asSigned)),
                 std::out_of_range);
    EXPECT_THROW(group->setPropertyValue_forKey_forAgent(2, "Key", agent), std::out_of_range);
    EXPECT_THROW(group->setPropertyValue_forKey_forAgent(2, "new", agent), std::out_of_range);
    // Without an entry of its own it is answered with the whole column.
    EXPECT_TRUE(std::holds_alternative<Shared<PropertyColumn>>(
        *group->propertyValueForAgent_forKey(agent, "Key")));
    EXPECT_THROW(static_cast<void>(group->walkForSteps(1).objectAtIndex(agent)), std::out_of_range);
  }
  EXPECT_EQ(group->properties()->keys(), (std::vector<std::string>{"Key"}));
}

TEST(AgentsLimits, PlacesFarBeyondAreFoundOutBeforeAnythingIsDrawn) {
  for (const std::uint64_t place : indicesFarBeyond()) {
    SCOPED_TRACE(place);
    const auto group = groupAt(triangle(), {0, place});
    const auto placed = groupAt(triangle(), {0, 0});
    placed->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices({place, 0}));
    for (const auto& outside : {group.get(), placed.get()}) {
      seed(1);
      EXPECT_THROW(outside->walkForSteps_returnPath(1, false), std::out_of_range);
      EXPECT_THROW(static_cast<void>(outside->agentsCurrentVerticesList()), std::out_of_range);
      EXPECT_EQ(VEQRandomGenerator::sharedRandomGenerator()->randomInteger(), 1804289383);
      EXPECT_FALSE(outside->isWorking());
    }
  }
}

// Where nobody can move a walk of any length takes no time, and uses up its numbers all the same.
TEST(AgentsLimits, StepsOfAnyNumberAreTaken) {
  const auto group = groupAt(networkOf(2, {}, true), {0, 1});
  for (const std::uint64_t steps : indicesFarBeyond()) {
    SCOPED_TRACE(steps);
    EXPECT_FALSE(group->walkForSteps_returnPath(steps, false));
    EXPECT_EQ(static_cast<std::uint64_t>(group->currentProgress()), steps);
    EXPECT_EQ(static_cast<std::uint64_t>(group->currentWork()), steps);
    EXPECT_FALSE(group->isWorking());
  }
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{0, 0}));
}

TEST(AgentsLimits, PathsThatNothingHoldsAreRefusedBeforeAnythingIsDrawn) {
  const auto group = groupAt(triangle(), {0, 1, 2, 0});
  for (const std::uint64_t steps : {std::uint64_t{1} << 62, (std::uint64_t{1} << 62) + 1,
                                    std::uint64_t{1} << 63, UINT64_MAX - 1, UINT64_MAX}) {
    seed(1);
    EXPECT_THROW(group->walkForSteps(steps), std::length_error) << steps;
    EXPECT_EQ(VEQRandomGenerator::sharedRandomGenerator()->randomInteger(), 1804289383);
  }
  for (const std::uint64_t steps :
       {std::uint64_t{1} << 53, std::uint64_t{1} << 60, (std::uint64_t{1} << 62) - 1}) {
    seed(1);
    EXPECT_THROW(group->walkForSteps(steps), std::bad_alloc) << steps;
    EXPECT_EQ(VEQRandomGenerator::sharedRandomGenerator()->randomInteger(), 1804289383);
  }
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{0, 1, 2, 0}));
}

TEST(AgentsLimits, UnusualTargetsAreNoneOrNeverMetOrMetAtOnce) {
  const float least = std::numeric_limits<float>::denorm_min();
  for (const float none : {std::nanf(""), -std::nanf(""), -kInfinity, -0.0F, 0.0F, -least}) {
    const auto group = groupAt(triangle(), {0});
    group->walkForSteps_returnPath_untilReach(5, false, none);
    EXPECT_EQ(group->walkCount(), 0U) << none;
    EXPECT_EQ(group->currentProgress(), 5);
  }
  const auto never = groupAt(triangle(), {0});
  for (const float target : {kInfinity, std::numeric_limits<float>::max(), 1.0000001F}) {
    never->walkForSteps_returnPath_untilReach(5, false, target);
    EXPECT_FALSE(never->reachedWalkPercentage()) << target;
  }
  EXPECT_EQ(never->walkCount(), 15U);
  const auto atOnce = groupAt(triangle(), {0});
  atOnce->walkForSteps_returnPath_untilReach(5, false, least);
  EXPECT_TRUE(atOnce->reachedWalkPercentage());
  EXPECT_EQ(atOnce->walkCount(), 1U);
}

// With an error the lone agent of a ring of one remembers a vertex drawn from all; without, none.
TEST(AgentsLimits, UnusualErrorProbabilitiesAreNoneOrAllOrAlmostNone) {
  const float least = std::numeric_limits<float>::denorm_min();
  for (const float error : {std::nanf(""), -kInfinity, kInfinity, -0.0F, least, 1e30F, -1.0F}) {
    const auto group = lone(VEQNumberArray::ofFloats({error}), VEQNumberArray::ofIndices({2}));
    ASSERT_TRUE(group) << error;
    seed(1);
    group->walkForSteps_returnPath(100, false);
    EXPECT_EQ(group->currentVertexOfAgent(0)->identification(), 1U) << error;
  }
  // Doubles beyond the floats among them.
  EXPECT_TRUE(lone(VEQNumberArray::ofDoubles({1e300}), VEQNumberArray::ofIndices({2})));
}

TEST(AgentsLimits, RingsThatNothingHoldsAreNoGroup) {
  const auto errors = VEQNumberArray::ofFloats({0});
  for (const std::uint64_t size : sizesBeyondMemory()) {
    EXPECT_FALSE(lone(errors, VEQNumberArray::ofIndices({size}))) << size;
  }
  for (const std::int64_t size : {INT64_MIN, std::int64_t{-1}, std::int64_t{0}}) {
    EXPECT_FALSE(lone(errors, VEQNumberArray::ofIntegers({size}))) << size;
  }
  for (const double size : {std::nan(""), HUGE_VAL, -HUGE_VAL, -1.0, 0.5, -0.0, 1e300}) {
    EXPECT_FALSE(lone(errors, VEQNumberArray::ofDoubles({size}))) << size;
  }
  if (kIsSanitized) return;  // it touches the memory that it hands out
  for (const std::uint64_t bits : {31U, 32U}) {
    for (const std::uint64_t size : {(std::uint64_t{1} << bits) - 1, std::uint64_t{1} << bits}) {
      const auto group = lone(errors, VEQNumberArray::ofIndices({size}));
      if (!group) continue;  // this machine does not promise as much
      group->walkForSteps_returnPath(4, false);
      EXPECT_EQ(group->currentVertexOfAgent(0)->identification(), 1U) << size;
    }
  }
}

TEST(AgentsLimits, ANumberThatIsUsedForNothingIsKept) {
  const auto group = groupAt(triangle(), {0});
  for (const std::uint64_t number : indicesFarBeyond()) {
    group->setSynchronizationSteps(number);
    EXPECT_EQ(group->synchronizationSteps(), number);
  }
}

}  // namespace
}  // namespace veq::test::limits_test
