#include "veq/base/internal/name_table.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "veq/formats/internal/distinct_ends.hpp"

namespace veq::internal::name_table_test {
namespace {

TEST(NameTable, KeepsTheFirstIndexOfAName) {
  NameTable table;
  EXPECT_EQ(table.insert("a", 5), 5U);
  EXPECT_EQ(table.insert("a", 7), 5U);
  EXPECT_EQ(table.insert("", 0), 0U);
  EXPECT_EQ(table.find("a"), 5U);
  EXPECT_EQ(table.find(""), 0U);
  EXPECT_EQ(table.find("b"), std::nullopt);
}

TEST(NameTable, TellsNamesOfEqualBeginningsApart) {
  NameTable table;
  std::vector<std::string> names;
  for (std::size_t length = 0; length < 40; ++length) names.emplace_back(length, 'x');
  for (std::size_t length = 0; length < 40; ++length) names.emplace_back(length + 1, '\0');
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(table.insert(names[i], i), i);
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(table.find(names[i]), i);
}

TEST(NameTable, AgreesWithAMap) {
  std::mt19937 random(3);
  std::vector<std::string> names;
  for (int i = 0; i < 5000; ++i) names.push_back(std::to_string(random() % 3000));
  std::map<std::string, std::uint64_t> expected;
  NameTable table;
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(table.insert(names[i], i), expected.emplace(names[i], i).first->second);
  }
  for (const auto& [name, index] : expected) EXPECT_EQ(table.find(name), index);
}

TEST(NameTable, VisitsNamesInTheirOrder) {
  for (const std::size_t count : {0U, 1U, 15U, 16U, 17U, 100U}) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) names.push_back(std::to_string(i));
    std::string visited, expected;
    NameTable().forEach(std::vector<std::string_view>(names.begin(), names.end()),
                        [&](const NameTable::Hashed& name) { visited += name.name; });
    for (const std::string& name : names) expected += name;
    EXPECT_EQ(visited, expected);
  }
}

TEST(DistinctEnds, AreNumberedByFirstAppearance) {
  DistinctEnds ends;
  ends.add("b", "a");
  ends.add("b", "c");
  ends.add("c", "c");
  ends.finish();
  EXPECT_EQ(ends.names(), (std::vector<std::string_view>{"b", "a", "c"}));
  EXPECT_EQ(ends.takeFrom(), (RawVector<std::uint64_t>{0, 0, 2}));
  EXPECT_EQ(ends.takeTo(), (RawVector<std::uint64_t>{1, 2, 2}));
}

TEST(DistinctEnds, MayBeMany) {
  DistinctEnds ends;
  std::vector<std::string> names;
  for (int i = 0; i < 3001; ++i) names.push_back("vertex number " + std::to_string(i));
  for (int i = 0; i < 3000; ++i)
    ends.add(names[static_cast<std::size_t>(i)], names[static_cast<std::size_t>(i) + 1]);
  ends.finish();
  ASSERT_EQ(ends.names().size(), 3001U);
  const auto from = ends.takeFrom();
  const auto to = ends.takeTo();
  for (std::uint64_t i = 0; i < 3000; ++i) {
    EXPECT_EQ(from[i], i);
    EXPECT_EQ(to[i], i + 1);
  }
}

}  // namespace
}  // namespace veq::internal::name_table_test
