#include "veq/numeric/keyed_table.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace veq::keyed_table_test {
namespace {

using testing::ElementsAre;
using testing::Pair;

KeyedTable<int> threeKeys() {
  KeyedTable<int> table;
  table.set("Name", 1);
  table.set("Age", 2);
  table.set("City", 3);
  return table;
}

std::vector<std::pair<std::string, int>> entriesOf(const KeyedTable<int>& table) {
  return {table.begin(), table.end()};
}

TEST(KeyedTable, ThatIsEmptyCanBeCopiedAssignedAndAskedToForget) {
  const KeyedTable<int> empty;
  KeyedTable<int> copy = empty;
  copy.remove("Name");
  EXPECT_TRUE(copy.empty());
  copy.set("Name", 1);
  EXPECT_EQ(*copy.find("Name"), 1);
  copy = empty;
  EXPECT_EQ(copy.find("Name"), nullptr);
  EXPECT_TRUE(copy.empty());
}

TEST(KeyedTable, StartsEmpty) {
  const KeyedTable<int> table;
  EXPECT_TRUE(table.empty());
  EXPECT_EQ(table.size(), 0U);
  EXPECT_EQ(table.find(""), nullptr);
  EXPECT_FALSE(table.contains("Name"));
  EXPECT_THAT(table.keys(), ElementsAre());
}

TEST(KeyedTable, KeepsTheOrderInWhichKeysWereFirstSet) {
  const KeyedTable<int> table = threeKeys();
  EXPECT_THAT(table.keys(), ElementsAre("Name", "Age", "City"));
  EXPECT_THAT(entriesOf(table), ElementsAre(Pair("Name", 1), Pair("Age", 2), Pair("City", 3)));
}

TEST(KeyedTable, ReplacingAValueKeepsTheKeysPlace) {
  KeyedTable<int> table = threeKeys();
  table.set("Name", 9);
  EXPECT_THAT(entriesOf(table), ElementsAre(Pair("Name", 9), Pair("Age", 2), Pair("City", 3)));
}

TEST(KeyedTable, FindsEveryKeyAfterARemoval) {
  KeyedTable<int> table = threeKeys();
  table.remove("Age");
  EXPECT_THAT(entriesOf(table), ElementsAre(Pair("Name", 1), Pair("City", 3)));
  EXPECT_EQ(table.find("Age"), nullptr);
  ASSERT_NE(table.find("Name"), nullptr);
  EXPECT_EQ(*table.find("Name"), 1);
  ASSERT_NE(table.find("City"), nullptr);
  EXPECT_EQ(*table.find("City"), 3);
}

TEST(KeyedTable, ARemovedKeyComesBackAtTheEnd) {
  KeyedTable<int> table = threeKeys();
  table.remove("Name");
  table.set("Name", 4);
  EXPECT_THAT(entriesOf(table), ElementsAre(Pair("Age", 2), Pair("City", 3), Pair("Name", 4)));
}

TEST(KeyedTable, RemovingAKeyThatIsNotThereChangesNothing) {
  KeyedTable<int> table = threeKeys();
  table.remove("Street");
  EXPECT_THAT(table.keys(), ElementsAre("Name", "Age", "City"));
}

TEST(KeyedTable, WithManyKeysFindsThemAllAfterChangesAndInACopy) {
  KeyedTable<int> table;
  for (const char* key : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}) {
    table.set(key, static_cast<int>(table.size()));
  }
  table.set("b", 21);
  table.remove("a");
  table.remove("i");
  table.set("a", 30);
  table.remove("z");
  const auto entries =
      ElementsAre(Pair("b", 21), Pair("c", 2), Pair("d", 3), Pair("e", 4), Pair("f", 5),
                  Pair("g", 6), Pair("h", 7), Pair("j", 9), Pair("a", 30));
  EXPECT_THAT(entriesOf(table), entries);
  KeyedTable<int> copy = table;
  table.remove("b");
  EXPECT_THAT(entriesOf(copy), entries);
  EXPECT_EQ(*copy.find("b"), 21);
  EXPECT_EQ(*copy.find("j"), 9);
  EXPECT_EQ(*copy.find("a"), 30);
  EXPECT_EQ(copy.find("i"), nullptr);
  EXPECT_EQ(table.find("b"), nullptr);
  EXPECT_EQ(*table.find("c"), 2);
  copy.set("k", 40);
  copy.remove(copy.begin()->first);
  EXPECT_EQ(copy.find("b"), nullptr);
  EXPECT_EQ(*copy.find("c"), 2);
  EXPECT_EQ(*copy.find("k"), 40);
}

TEST(KeyedTable, CanRemoveAndSetAKeyThroughItsOwnEntry) {
  KeyedTable<int> table = threeKeys();
  table.set(table.begin()->first, 5);
  EXPECT_EQ(*table.find("Name"), 5);
  table.remove(table.begin()->first);
  EXPECT_THAT(table.keys(), ElementsAre("Age", "City"));
}

TEST(KeyedTable, KeysMayBeEmptyOrHoldNulCharacters) {
  KeyedTable<int> table;
  table.set("", 1);
  table.set(std::string_view("a\0b", 3), 2);
  table.set("a", 3);
  EXPECT_EQ(table.size(), 3U);
  EXPECT_EQ(*table.find(""), 1);
  EXPECT_EQ(*table.find(std::string_view("a\0b", 3)), 2);
}

TEST(KeyedTable, ACopyIsIndependent) {
  const KeyedTable<int> table = threeKeys();
  KeyedTable<int> copy = table;
  copy.remove("Name");
  copy.set("City", 8);
  EXPECT_EQ(*table.find("Name"), 1);
  EXPECT_EQ(*table.find("City"), 3);
}

TEST(KeyedTable, AMapOfPropertiesHoldsTheNullMarkerAsAValue) {
  PropertyMap map;
  map.set("Name", PropertyValue());
  ASSERT_NE(map.find("Name"), nullptr);
  EXPECT_TRUE(map.find("Name")->isNull());
}

// Keys "0" to "n - 1" with their own numbers.
KeyedTable<int> manyKeys(int n) {
  KeyedTable<int> table;
  for (int i = 0; i < n; ++i) table.set(std::to_string(i), i);
  return table;
}

// A handful is searched one by one, and more of them otherwise.
TEST(KeyedTable, FindsEachOfFewAndOfManyKeys) {
  for (const int n : {7, 8, 9, 10, 1000}) {
    KeyedTable<int> table = manyKeys(n);
    table.set("3", 33);
    const KeyedTable<int> copy = table;
    for (int i = 0; i < n; ++i) {
      ASSERT_NE(copy.find(std::to_string(i)), nullptr);
      EXPECT_EQ(*copy.find(std::to_string(i)), i == 3 ? 33 : i);
    }
    EXPECT_EQ(copy.find(std::to_string(n)), nullptr);
    EXPECT_EQ(copy.size(), static_cast<std::size_t>(n));
  }
}

TEST(KeyedTable, ForgetsKeysUntilFewAreLeftAndTakesNewOnes) {
  KeyedTable<int> table = manyKeys(12);
  for (int i = 0; i < 6; ++i) {
    table.remove(std::to_string(2 * i));
    EXPECT_EQ(table.find(std::to_string(2 * i)), nullptr);
    EXPECT_EQ(*table.find("11"), 11);
    EXPECT_EQ(*table.find("1"), 1);
  }
  for (int i = 20; i < 26; ++i) table.set(std::to_string(i), i);
  EXPECT_THAT(table.keys(),
              ElementsAre("1", "3", "5", "7", "9", "11", "20", "21", "22", "23", "24", "25"));
  for (const std::string& key : table.keys()) EXPECT_EQ(std::to_string(*table.find(key)), key);
}

}  // namespace
}  // namespace veq::keyed_table_test
