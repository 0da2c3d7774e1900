#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/agents.hpp"
#include "veq/agents/agents_property_table.hpp"
#include "veq/numeric/generic_array.hpp"

namespace veq::test::agents_properties_test {
namespace {

Owned<VEQNetworkAgentsGroup> threeAgents() {
  return groupAt(networkOf(2, {{0, 1}}, false), {0, 1, 0});
}

Shared<PropertyColumn> numbers(std::initializer_list<double> values) {
  return std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles(values));
}

Shared<PropertyColumn> columnUnder(const VEQNetworkAgentsGroup& group, std::string_view key) {
  return std::get<Shared<PropertyColumn>>(*group.propertyValuesForKey(key));
}

TEST(AgentsProperties, ANewKeyMakesAColumnOfNullMarkers) {
  const auto group = threeAgents();
  group->setPropertyValue_forKey_forAgent("red", "colour", 1);
  const auto column = columnUnder(*group, "colour");
  ASSERT_EQ(column->count(), 3U);
  EXPECT_TRUE(column->objectAtIndex(0).isNull());
  EXPECT_EQ(column->objectAtIndex(1), PropertyValue("red"));
  EXPECT_TRUE(column->objectAtIndex(2).isNull());
  group->setPropertyValue_forKey_forAgent(3, "colour", 2);
  EXPECT_EQ(column->objectAtIndex(2), PropertyValue(3));
}

TEST(AgentsProperties, ABadAgentLeavesNoColumnBehind) {
  const auto group = threeAgents();
  EXPECT_THROW(group->setPropertyValue_forKey_forAgent(1, "new", 3), std::out_of_range);
  EXPECT_FALSE(group->properties()->contains("new"));
  EXPECT_FALSE(group->propertyValuesForKey("new").has_value());
}

TEST(AgentsProperties, StoredColumnsAreSharedAndOfAnyLength) {
  const auto group = threeAgents();
  const auto column = numbers({1.0, 2.0});
  group->setPropertyValues_forKey(column, "weight");
  EXPECT_EQ(columnUnder(*group, "weight"), column);
  group->setPropertyValue_forKey_forAgent(5.0, "weight", 0);
  EXPECT_EQ(column->objectAtIndex(0), PropertyValue(5.0));
  EXPECT_THROW(group->setPropertyValue_forKey_forAgent(5.0, "weight", 2), std::out_of_range);
  EXPECT_THROW(group->setPropertyValue_forKey_forAgent("text", "weight", 0), std::invalid_argument);
  EXPECT_THROW(group->setPropertyValues_forKey(Shared<PropertyColumn>(), "weight"),
               std::invalid_argument);
  EXPECT_EQ(columnUnder(*group, "weight"), column);
}

TEST(AgentsProperties, AnEntryThatIsMissingGivesTheWholeStoredValue) {
  const auto group = threeAgents();
  EXPECT_FALSE(group->propertyValueForAgent_forKey(0, "unknown").has_value());
  const auto column = numbers({1.0, 2.0});
  group->setPropertyValues_forKey(column, "weight");
  EXPECT_EQ(group->propertyValueForAgent_forKey(1, "weight"), AgentsProperty(PropertyValue(2.0)));
  EXPECT_EQ(group->propertyValueForAgent_forKey(2, "weight"), AgentsProperty(column));
  group->setPropertyValues_forKey(PropertyValue("all"), "team");
  EXPECT_EQ(group->propertyValueForAgent_forKey(2, "team"), AgentsProperty(PropertyValue("all")));
  group->setPropertyValue_forKey_forAgent(1, "some", 0);
  EXPECT_EQ(group->propertyValueForAgent_forKey(2, "some"), AgentsProperty(PropertyValue()));
}

TEST(AgentsProperties, OneValueForAllHasNoEntriesToSet) {
  const auto group = threeAgents();
  group->setPropertyValues_forKey(PropertyValue("all"), "team");
  EXPECT_THROW(group->setPropertyValue_forKey_forAgent("one", "team", 0), std::invalid_argument);
  EXPECT_EQ(*group->propertyValuesForKey("team"), AgentsProperty(PropertyValue("all")));
}

TEST(AgentsProperties, OfOneAgentAreAMapOverAllKeys) {
  const auto group = threeAgents();
  const auto column = numbers({1.0});
  group->setPropertyValues_forKey(column, "weight");
  group->setPropertyValues_forKey(PropertyValue("all"), "team");
  const AgentsPropertyTable first = group->propertiesForAgent(0);
  EXPECT_THAT(first.keys(), ::testing::ElementsAre("weight", "team"));
  EXPECT_EQ(*first.find("weight"), AgentsProperty(PropertyValue(1.0)));
  EXPECT_EQ(*first.find("team"), AgentsProperty(PropertyValue("all")));
  EXPECT_EQ(*group->propertiesForAgent(1).find("weight"), AgentsProperty(column));
  EXPECT_FALSE(first.isFrozen());
}

TEST(AgentsProperties, OfOneAgentCanBeSetTogether) {
  const auto group = threeAgents();
  PropertyMap values;
  values.set("colour", "red");
  values.set("age", 7);
  group->setProperties_forAgent(values, 2);
  EXPECT_EQ(columnUnder(*group, "colour")->objectAtIndex(2), PropertyValue("red"));
  EXPECT_EQ(columnUnder(*group, "age")->objectAtIndex(2), PropertyValue(7));
}

TEST(AgentsProperties, TheTableIsLive) {
  const auto group = threeAgents();
  const auto table = group->properties();
  EXPECT_TRUE(table->empty());
  group->setPropertyValue_forKey_forAgent(1, "age", 0);
  EXPECT_EQ(table->size(), 1U);
  EXPECT_EQ(group->properties(), table);
}

TEST(AgentsProperties, InstallingATableFreezesACopyThatSharesTheColumns) {
  const auto group = threeAgents();
  const auto before = group->properties();
  const auto column = numbers({1.0, 2.0, 3.0});
  AgentsPropertyTable table;
  table.set("weight", column);
  group->setProperties(table);

  table.set("later", PropertyValue(1));
  EXPECT_NE(group->properties(), before);
  EXPECT_TRUE(before->empty());
  EXPECT_THAT(group->properties()->keys(), ::testing::ElementsAre("weight"));
  EXPECT_TRUE(group->properties()->isFrozen());
  // No key can be added or replaced, but an element of a column can.
  EXPECT_THROW(group->setPropertyValue_forKey_forAgent(1, "new", 0), std::invalid_argument);
  EXPECT_THROW(group->setPropertyValues_forKey(column, "new"), std::invalid_argument);
  EXPECT_THROW(group->setPropertyValues_forKey(column, "weight"), std::invalid_argument);
  EXPECT_EQ(group->properties()->size(), 1U);
  group->setPropertyValue_forKey_forAgent(9.0, "weight", 1);
  EXPECT_EQ(column->objectAtIndex(1), PropertyValue(9.0));
}

TEST(AgentsProperties, InstallingTheTableThatIsHeldDoesNothing) {
  const auto group = threeAgents();
  const auto table = group->properties();
  group->setProperties(*table);
  EXPECT_EQ(group->properties(), table);
  EXPECT_FALSE(table->isFrozen());
  group->setPropertyValue_forKey_forAgent(1, "age", 0);
  EXPECT_EQ(group->properties()->size(), 1U);
}

TEST(AgentsProperties, ACopyOfAFrozenTableCanBeChanged) {
  const auto group = threeAgents();
  group->setProperties(AgentsPropertyTable());
  AgentsPropertyTable copy = *group->properties();
  copy.set("age", PropertyValue(1));
  group->setProperties(copy);
  EXPECT_TRUE(group->properties()->contains("age"));
}

}  // namespace
}  // namespace veq::test::agents_properties_test
