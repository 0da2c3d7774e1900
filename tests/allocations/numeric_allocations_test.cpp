// Values, columns, arrays and tables, each of whose allocations is made to fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_drawing.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::numeric_allocations_test {
namespace {

using testing::ElementsAre;

static_assert(std::is_nothrow_move_constructible_v<PropertyValue>,
              "a vector of values could not grow without risk to them");
static_assert(std::is_nothrow_move_assignable_v<PropertyValue>);

const std::string kLong(100, 'x');

/// The column that `make` gives has the elements `before`; after `change`, which fails with each of
/// its allocations, either the same or `after`. Gives the number of failures.
template <class Make, class Change>
std::uint64_t expectOldOrNew(Make make, const std::vector<std::string>& before, Change change,
                             const std::vector<std::string>& after) {
  return forEachFailingAllocation(make, change, [&](auto& column, bool failed) {
    if (failed) {
      EXPECT_EQ(texts(*column), before);
      change(column);
    }
    EXPECT_EQ(texts(*column), after);
  });
}

TEST(NumericAllocations, OfACopiedValueSpoilNothing) {
  const PropertyValue value = kLong;
  std::optional<PropertyValue> copy;
  EXPECT_EQ(forEachFailingAllocation([&] { copy.emplace(value); },
                                     [&](bool failed) {
                                       EXPECT_EQ(copy.has_value(), !failed);
                                       copy.reset();
                                     }),
            1U);
  EXPECT_EQ(forEachFailingAllocation([] { return PropertyValue(1); },
                                     [&](PropertyValue& target) { target = value; },
                                     [&](PropertyValue& target, bool failed) {
                                       EXPECT_EQ(target, failed ? PropertyValue(1) : value);
                                     }),
            1U);
}

TEST(NumericAllocations, LeaveAGenericColumnAsItWas) {
  const auto column = [] {
    return std::make_unique<GenericArray>(std::vector<PropertyValue>{"short", kLong});
  };
  const std::vector<std::string> before = {"short", kLong};
  const GenericArray other({kLong + "1", kLong + "2"});
  const PropertyValue value = kLong + "3";
  EXPECT_GE(expectOldOrNew(column, before, [&](auto& c) { c->addObjectsFromArray(other); },
                           {"short", kLong, kLong + "1", kLong + "2"}),
            3U);
  EXPECT_GE(expectOldOrNew(column, before, [](auto& c) { c->addObjectsFromArray(*c); },
                           {"short", kLong, "short", kLong}),
            2U);
  EXPECT_GE(expectOldOrNew(column, before, [&](auto& c) { c->addObject(value); },
                           {"short", kLong, kLong + "3"}),
            2U);
  EXPECT_GE(
      expectOldOrNew(column, before, [&](auto& c) { c->replaceObjectAtIndex_withObject(0, value); },
                     {kLong + "3", kLong}),
      1U);
  EXPECT_GE(expectOldOrNew(column, before, [](auto& c) { c->appendUnset(1); },
                           {"short", kLong, "<null>"}),
            1U);
}

TEST(NumericAllocations, LeaveANumberArrayAsItWas) {
  const auto array = [] {
    return std::make_unique<VEQNumberArray>(VEQNumberArray::ofFloats({1, 2}));
  };
  const VEQNumberArray other = VEQNumberArray::ofIndices({7});
  EXPECT_EQ(expectOldOrNew(array, {"1", "2"}, [](auto& a) { a->addObject(3.0F); }, {"1", "2", "3"}),
            1U);
  EXPECT_EQ(expectOldOrNew(array, {"1", "2"}, [&](auto& a) { a->addObjectsFromArray(other); },
                           {"1", "2", "7"}),
            1U);
  EXPECT_EQ(expectOldOrNew(array, {"1", "2"}, [&](auto& a) { *a = other; }, {"7"}), 1U);
}

TEST(NumericAllocations, KeepTheBlocksOfAVectorArrayTogether) {
  const auto space = [] { return VEQVector3dArray::initWithString("1 2 3"); };
  EXPECT_GE(expectOldOrNew(space, {"1 2 3"}, [](auto& a) { a->addObject(VEQVector3d(4, 5, 6)); },
                           {"1 2 3", "4 5 6"}),
            3U);
  const auto plane = [] { return VEQVector2dArray::initWithSize_precision(1, 1); };
  EXPECT_GE(expectOldOrNew(plane, {"0 0"}, [](auto& a) { a->addObject(VEQVector2d(4, 5)); },
                           {"0 0", "4 5"}),
            2U);
}

TEST(NumericAllocations, AreNotMadeForUnsetElementsInReservedRoom) {
  GenericArray generic({kLong});
  VEQNumberArray numbers = VEQNumberArray::ofIndices({1});
  const auto plane = VEQVector2dArray::initWithSize_precision(1, 1);
  const auto space = VEQVector3dArray::initWithSize_precision(1, 1);
  for (PropertyColumn* column :
       {static_cast<PropertyColumn*>(&generic), static_cast<PropertyColumn*>(&numbers),
        static_cast<PropertyColumn*>(plane.get()), static_cast<PropertyColumn*>(space.get())}) {
    column->reserve(40);  // for both rounds
    EXPECT_EQ(forEachFailingAllocation([column] { column->appendUnset(20); }, [](bool) {}), 0U);
    EXPECT_EQ(column->count(), 41U);
  }
}

TEST(NumericAllocations, LeaveATableAsItWas) {
  const auto table = [] {
    KeyedTable<int> made;
    made.set(kLong, 1);
    return made;
  };
  const std::string second = kLong + "2";
  EXPECT_GE(forEachFailingAllocation(
                table, [&](KeyedTable<int>& t) { t.set(second, 2); },
                [&](KeyedTable<int>& t, bool failed) {
                  EXPECT_EQ(*t.find(kLong), 1);
                  EXPECT_EQ(t.size(), failed ? 1U : 2U);
                  EXPECT_EQ(t.contains(second), !failed);
                }),
            2U);  // the key's text, and room for the entries

  KeyedTable<int> other;
  for (int i = 0; i < 3; ++i) other.set(kLong + std::to_string(i), i);
  EXPECT_GE(forEachFailingAllocation(
                table, [&](KeyedTable<int>& t) { t = other; },
                [&](KeyedTable<int>& t, bool failed) {
                  if (failed) {
                    EXPECT_THAT(t.keys(), ElementsAre(kLong));
                    EXPECT_EQ(*t.find(kLong), 1);
                    EXPECT_FALSE(t.contains(kLong + "0"));
                  } else {
                    EXPECT_THAT(t.keys(), ElementsAre(kLong + "0", kLong + "1", kLong + "2"));
                    EXPECT_EQ(*t.find(kLong + "2"), 2);
                  }
                }),
            4U);
}

// Every way in which an array comes into being, and every text of one: it is made whole, or
// std::bad_alloc is thrown.
TEST(NumericAllocations, OfConstructorsAndTextsThrow) {
  const std::vector<std::uint64_t> indices = {1, 2, 3};
  const std::vector<float> floats = {1, 2, 3};
  const std::vector<double> doubles = {1, 2, 3};
  const VEQNumberArray numbers = VEQNumberArray::ofIndices({2, 0});
  const GenericArray generic({kLong, 1, VEQVector2d(1, 2)});
  const auto plane = VEQVector2dArray::initWithSize_precision(3, 1);
  const auto space = VEQVector3dArray::initWithString("1 2 3; 4 5 6; 7 8 9");
  const std::string separator(20, ' ');
  using A = VEQNumberArray;
  using Column = Shared<PropertyColumn>;
  const std::vector<std::function<Column()>> columns = {
      [] { return A::initWithDoubleScalar_count(1, 3); },
      [] { return A::initWithFloatScalar_count(1, 3); },
      [] { return A::initWithIntegerScalar_count(1, 3); },
      [&] { return A::initWithUnsignedIntegerArray_count(indices.data(), 3); },
      [&] { return A::initWithFloatArray_count(floats.data(), 3); },
      [] { return A::initUnsignedIntegerArrayWithCapacity(3); },
      [] { return A::initFloatArrayWithCapacity(3); },
      [] { return A::initWithString("1 2 3"); },
      [] { return A::initWithString_separator_type("1,2,3", ",", 12); },
      [] { return A::initWithString_separator_type("1,2,3", ",", 13); },
      [] { return A::initWithString_separator_type("1,2,3", ",", 14); },
      [] { return A::initWithString_separator_type("1,2,3", ",", 15); },
      [&] { return A::numberArrayWithUnsignedIntegerArray_count(indices.data(), 3); },
      [&] { return A::numberArrayWithDoubleArray_count(doubles.data(), 3); },
      [&] { return A::numberArrayWithFloatArray_count(floats.data(), 3); },
      [] { return A::numberArrayWithNumber_count(7U, 3); },
      [&] {
        return numbers.subarrayWithIndices(A::ofIndices({1, 1}));
      },
      [&] { return numbers.editableCopy(); },
      [&] { return numbers.fixedCopy(); },
      [&] { return numbers.stringArray(); },
      [] { return GenericArray::nullFilled(3); },
      [&] { return generic.subarrayWithIndices(numbers); },
      [&] { return generic.editableCopy(); },
      [&] { return generic.fixedCopy(); },
      [&] { return plane->subarrayWithIndices(numbers); },
      [&] { return plane->editableCopy(); },
      [&] { return plane->fixedCopy(); },
      [] { return VEQVector3dArray::initWithSize_precision(3, 0); },
      [] { return VEQVector3dArray::initWithString("1 2 3; 4 5 6"); },
      [&] { return VEQVector3dArray::initWithArray(space.get()); },
      [&] {
        return VEQVector3dArray::initWithXd_Yd_Zd_count(doubles.data(), doubles.data(),
                                                        doubles.data(), 3);
      },
      [&] { return space->subarrayWithIndices(numbers); },
      [&] { return space->editableCopy(); },
      [&] { return space->fixedCopy(); },
  };
  for (std::size_t i = 0; i < columns.size(); ++i) {
    SCOPED_TRACE("column " + std::to_string(i));
    const std::vector<std::string> expected = texts(*columns[i]());
    Column made;
    EXPECT_GE(forEachFailingAllocation([&] { made = columns[i](); },
                                       [&](bool failed) {
                                         EXPECT_EQ(made == nullptr, failed);
                                         if (made) {
                                           EXPECT_EQ(texts(*made), expected);
                                         }
                                         made.reset();
                                       }),
              2U);
  }
  const std::vector<std::pair<std::function<std::string()>, std::string>> writers = {
      {[&] { return numbers.stringValueWithSeparator(separator); }, "2" + separator + "0"},
      {[&] {
         return A::ofIndices({1000000, 2000000, 3000000}).description();
       },
       "(1000000, 2000000, 3000000)"},
      {[&] { return plane->stringValueWithVectorSeparator_elementsSeparator("; ", separator); },
       "0" + separator + "0; 0" + separator + "0; 0" + separator + "0"},
      {[&] { return space->stringValueWithVectorSeparator_elementsSeparator(separator, " "); },
       "1 2 3" + separator + "4 5 6" + separator + "7 8 9"},
      {[&] { return VEQVector2d(1, 2).stringValueWithSeparator(separator); },
       "1" + separator + "2"},
      {[&] { return generic.objectAtIndex(0).text(); }, kLong},
  };
  for (std::size_t i = 0; i < writers.size(); ++i) {
    SCOPED_TRACE("text " + std::to_string(i));
    std::string text;
    EXPECT_GE(forEachFailingAllocation([&] { text = writers[i].first(); },
                                       [&](bool failed) {
                                         EXPECT_EQ(text, failed ? "" : writers[i].second);
                                         std::string().swap(text);
                                       }),
              1U);
  }
}

}  // namespace
}  // namespace veq::test::numeric_allocations_test
