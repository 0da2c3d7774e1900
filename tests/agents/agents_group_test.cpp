#include "veq/agents/agents_group.hpp"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/agents.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/agents/agent_information.hpp"

namespace veq::test::agents_group_test {
namespace {

// 0 -> 1 -> 2 -> 0.
Shared<VEQNetwork> triangle() { return networkOf(3, {{0, 1}, {1, 2}, {2, 0}}, true); }

TEST(AgentsGroup, StandsWhereItIsToldByIndexOrHandle) {
  const auto network = triangle();
  const auto byIndex = groupAt(network, {2, 0, 2});
  EXPECT_EQ(byIndex->countAgents(), 3);
  EXPECT_EQ(indices(byIndex->agentsCurrentVerticesList()), (Indices{2, 0, 2}));
  const auto byHandle = VEQNetworkAgentsGroup::initAtNetwork_initialVertices(
      network, {network->vertexAtIndex(1), network->vertexAtIndex(0)});
  ASSERT_NE(byHandle, nullptr);
  EXPECT_EQ(byHandle->countAgents(), 2);
  EXPECT_EQ(byHandle->currentVertexOfAgent(0), network->vertexAtIndex(1));
  EXPECT_EQ(byHandle->agentsCurrentVerticesList().objectAtIndex(1), network->vertexAtIndex(0));
}

TEST(AgentsGroup, IsNotMadeWithoutANetwork) {
  EXPECT_EQ(groupAt(nullptr, {0}), nullptr);
  EXPECT_EQ(VEQNetworkAgentsGroup::initAtNetwork_initialVertices(nullptr, {}), nullptr);
}

TEST(AgentsGroup, OfNobodyIsAGroup) {
  const auto group = groupAt(triangle(), {});
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->countAgents(), 0);
  EXPECT_TRUE(group->agentsCurrentVerticesList().empty());
  EXPECT_TRUE(group->flushWalkHistory());
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{0, 0, 0}));
}

TEST(AgentsGroup, KeepsItsNetworkAlive) {
  auto network = triangle();
  const std::weak_ptr<VEQNetwork> watched = network;
  auto group = groupAt(std::move(network), {0});
  EXPECT_FALSE(watched.expired());
  group.reset();
  EXPECT_TRUE(watched.expired());
}

TEST(AgentsGroup, DoesNotKeepTheCallersArray) {
  auto start = VEQNumberArray::ofIndices({0, 1});
  const auto group = VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(triangle(), start);
  group->walkForSteps(1);
  EXPECT_EQ(integers(start), (Integers{0, 1}));
  start.setIntegerValue_atIndex(2, 0);
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{1, 2}));
}

TEST(AgentsGroup, TakesStartsOutsideTheNetworkUntilSomebodyAsks) {
  const auto group = VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      triangle(), VEQNumberArray::ofIntegers({-1, 3, 1}));
  ASSERT_NE(group, nullptr);
  EXPECT_THROW((void)group->agentsCurrentVerticesList(), std::out_of_range);
  EXPECT_THROW((void)group->currentVertexOfAgent(0), std::out_of_range);
  EXPECT_THROW((void)group->currentVertexOfAgent(1), std::out_of_range);
  EXPECT_EQ(group->currentVertexOfAgent(2)->identification(), 1U);
}

constexpr char kTooShort[] =
    "New current vertices list shall be a array of vertices with at least the size of the number "
    "of agents.";

TEST(Placement, RefusesAListThatIsShorterThanTheGroup) {
  const auto network = triangle();
  const auto group = groupAt(network, {0, 1});
  EXPECT_EQ(
      invalidArgumentText([&] { group->setAgentsCurrentVertices({network->vertexAtIndex(2)}); }),
      kTooShort);
  EXPECT_EQ(invalidArgumentText(
                [&] { group->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices({2})); }),
            kTooShort);
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{0, 1}));
}

TEST(Placement, KeepsAllOfALongerList) {
  const auto network = triangle();
  const auto group = groupAt(network, {0, 1});
  group->setAgentsCurrentVertices({network->vertexAtIndex(2), network->vertexAtIndex(2)});
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{2, 2}));
  group->setAgentsCurrentVerticesIndices(VEQNumberArray::ofIndices({1, 0, 2, 1}));
  EXPECT_EQ(group->countAgents(), 2);
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{1, 0}));
  EXPECT_EQ(group->currentVertexOfAgent(2)->identification(), 2U);
  EXPECT_EQ(group->currentVertexOfAgent(3)->identification(), 1U);
  EXPECT_THROW((void)group->currentVertexOfAgent(4), std::out_of_range);
  group->setCurrentVertex_forAgent(*network->vertexAtIndex(0), 3);
  EXPECT_EQ(group->currentVertexOfAgent(3)->identification(), 0U);
  // A walk moves the agents alone.
  group->walkForSteps(1);
  EXPECT_EQ(group->currentVertexOfAgent(0)->identification(), 2U);
  EXPECT_EQ(group->currentVertexOfAgent(2)->identification(), 2U);
}

TEST(Placement, OfOneAgentIsNotCheckedAgainstTheNetwork) {
  const auto group = groupAt(triangle(), {0});
  const auto other = networkOf(5, {{3, 4}}, false);
  group->setCurrentVertex_forAgent(*other->vertexAtIndex(2), 0);
  EXPECT_EQ(group->currentVertexOfAgent(0)->identification(), 2U);
  group->setCurrentVertex_forAgent(*other->vertexAtIndex(4), 0);
  EXPECT_THROW((void)group->currentVertexOfAgent(0), std::out_of_range);
  EXPECT_THROW(group->setCurrentVertex_forAgent(*other->vertexAtIndex(2), 1), std::out_of_range);
}

TEST(History, StampsBeginAtZeroInANewGroupAndAtOneAfterAFlush) {
  const auto group = groupAt(triangle(), {0});
  group->walkForSteps(1);
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{0, 0, 0}));
  group->walkForSteps(1);
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{0, 0, 1}));
  group->flushWalkHistory();
  group->walkForSteps(1);
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{1, 0, 0}));
  group->walkForSteps(3);
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{4, 2, 3}));
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{2, 1, 1}));
}

TEST(History, ArraysAreLiveUntilAFlushReplacesThem) {
  const auto group = groupAt(triangle(), {0, 1});
  const auto totals = group->globalVisitFrequencyOfVertices();
  const auto zeros = group->globalOrderOfVisitedVertices();
  const auto visits = group->visitFrequencyOfVerticesForAgent(0);
  const auto order = group->orderOfVisitedVerticesForAgent(0);
  EXPECT_EQ(visits->elementType(), ElementType::kInteger);
  EXPECT_EQ(totals->elementType(), ElementType::kInteger);
  group->walkForSteps_returnPath(2, false);
  EXPECT_EQ(integers(visits), (Integers{0, 1, 1}));
  EXPECT_EQ(integers(order), (Integers{0, 0, 1}));
  EXPECT_EQ(integers(totals), (Integers{1, 1, 2}));
  group->walkForSteps_returnPath(1, false);
  EXPECT_EQ(integers(visits), (Integers{1, 1, 1}));
  EXPECT_EQ(integers(order), (Integers{2, 0, 1}));
  EXPECT_EQ(integers(totals), (Integers{3, 3, 4}));
  EXPECT_EQ(group->globalVisitFrequencyOfVertices(), totals);
  EXPECT_EQ(group->visitFrequencyOfVerticesForAgent(0), visits);
  EXPECT_EQ(group->orderOfVisitedVerticesForAgent(0), order);
  EXPECT_EQ(group->globalOrderOfVisitedVertices(), zeros);

  ASSERT_TRUE(group->flushWalkHistory());
  group->walkForSteps_returnPath(1, false);
  EXPECT_EQ(integers(visits), (Integers{1, 1, 1}));
  EXPECT_EQ(integers(totals), (Integers{3, 3, 4}));
  EXPECT_NE(group->visitFrequencyOfVerticesForAgent(0), visits);
  EXPECT_NE(group->globalVisitFrequencyOfVertices(), totals);
  EXPECT_NE(group->globalOrderOfVisitedVertices(), zeros);
  EXPECT_EQ(integers(group->globalOrderOfVisitedVertices()), (Integers{0, 0, 0}));
}

TEST(History, OfAnAgentThatIsNotThereIsARangeError) {
  const auto group = groupAt(triangle(), {0, 1});
  EXPECT_THROW((void)group->visitFrequencyOfVerticesForAgent(2), std::out_of_range);
  EXPECT_THROW((void)group->visitFrequencyOfVerticesForAgent(-1), std::out_of_range);
  EXPECT_THROW((void)group->orderOfVisitedVerticesForAgent(2), std::out_of_range);
  EXPECT_THROW((void)group->orderOfVisitedVerticesForAgent(INT64_MIN), std::out_of_range);
}

TEST(History, AFlushLeavesPositionsPropertiesAndSettings) {
  const auto group = groupAt(triangle(), {0});
  group->walkForSteps(2);
  group->setPropertyValue_forKey_forAgent(1.5, "speed", 0);
  group->setSynchronizationSteps(7);
  ASSERT_TRUE(group->flushWalkHistory());
  EXPECT_EQ(indices(group->agentsCurrentVerticesList()), (Indices{2}));
  EXPECT_TRUE(group->properties()->contains("speed"));
  EXPECT_EQ(group->synchronizationSteps(), 7U);
  EXPECT_EQ(group->currentProgress(), 2);
  EXPECT_EQ(group->currentWork(), 2);
  EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), (Integers{0, 0, 0}));
  EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{0, 0, 0}));
  EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{0, 0, 0}));
}

TEST(AgentInformation, BeginsEmptyAndIsReleasedByValue) {
  VEQAgentInformation information = newVEQAgentInformation();
  EXPECT_EQ(information.visitedVertices, nullptr);
  EXPECT_FALSE(information.finished);
  EXPECT_EQ(information.walkCount, 0U);
  deleteVEQAgentInformation(information);
  information.visitedVertices = static_cast<unsigned char*>(std::calloc(4, 1));
  const unsigned char* const address = information.visitedVertices;
  deleteVEQAgentInformation(information);
  EXPECT_EQ(information.visitedVertices, address);
}

}  // namespace
}  // namespace veq::test::agents_group_test
