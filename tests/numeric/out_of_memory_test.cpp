#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/failing_allocations.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq {
namespace {

using test::failEachAllocation;
using testing::ElementsAre;

static_assert(std::is_nothrow_move_constructible_v<PropertyValue>,
              "a vector of values could not grow without risk to them");
static_assert(std::is_nothrow_move_assignable_v<PropertyValue>);

const std::string kLong(100, 'x');

TEST(OutOfMemory, IsSafeInTheMiddleOfACopy) {
  const PropertyValue value = kLong;
  PropertyValue target = 1;
  EXPECT_EQ(failEachAllocation([&] { const PropertyValue copy = value; }, [] {}), 1U);
  EXPECT_EQ(
      failEachAllocation([&] { target = value; }, [&] { EXPECT_EQ(target, PropertyValue(1)); }),
      1U);
  EXPECT_EQ(target, value);
}

TEST(OutOfMemory, LeavesAGenericColumnAsItWas) {
  GenericArray array({kLong});
  const GenericArray other({kLong + "1", kLong + "2"});
  const auto unchanged = [&array] {
    EXPECT_THAT(array.values(), ElementsAre(PropertyValue(kLong)));
  };
  EXPECT_GE(failEachAllocation([&] { array.addObjectsFromArray(other); }, unchanged), 3U);
  EXPECT_EQ(array.count(), 3U);
}

TEST(OutOfMemory, LeavesAReplacedElementAsItWas) {
  GenericArray array({"short"});
  const PropertyValue value = kLong;
  EXPECT_GE(
      failEachAllocation([&] { array.replaceObjectAtIndex_withObject(0, value); },
                         [&] { EXPECT_THAT(array.values(), ElementsAre(PropertyValue("short"))); }),
      1U);
  EXPECT_THAT(array.values(), ElementsAre(value));
}

TEST(OutOfMemory, LeavesANumberArrayAsItWas) {
  VEQNumberArray array = VEQNumberArray::ofFloats({1, 2});
  const auto unchanged = [&array] { EXPECT_THAT(array.values<float>(), ElementsAre(1, 2)); };
  EXPECT_EQ(failEachAllocation([&] { array.addObject(3.0F); }, unchanged), 1U);
  EXPECT_THAT(array.values<float>(), ElementsAre(1, 2, 3));
  const VEQNumberArray other = VEQNumberArray::ofIndices({7});
  const auto still = [&array] { EXPECT_THAT(array.values<float>(), ElementsAre(1, 2, 3)); };
  EXPECT_EQ(failEachAllocation([&] { array = other; }, still), 1U);
  EXPECT_THAT(array.values<std::uint64_t>(), ElementsAre(7U));
}

TEST(OutOfMemory, KeepsTheThreeBlocksOfAVectorArrayTogether) {
  const auto array = VEQVector3dArray::initWithString("1 2 3");
  const auto unchanged = [&array] {
    EXPECT_THAT(array->xs(), ElementsAre(1));
    EXPECT_THAT(array->ys(), ElementsAre(2));
    EXPECT_THAT(array->zs(), ElementsAre(3));
  };
  // A block that grew before the failure keeps its room, so that the next attempt starts further
  // on.
  EXPECT_GE(failEachAllocation([&] { array->addObject(VEQVector3d(4, 5, 6)); }, unchanged), 2U);
  EXPECT_EQ(array->vectorAtIndex(1), VEQVector3d(4, 5, 6));
}

TEST(OutOfMemory, DoesNotConcernUnsetElementsInReservedRoom) {
  GenericArray generic({kLong});
  VEQNumberArray numbers = VEQNumberArray::ofIndices({1});
  const auto plane = VEQVector2dArray::initWithSize_precision(1, 1);
  const auto space = VEQVector3dArray::initWithSize_precision(1, 1);
  for (PropertyColumn* column :
       {static_cast<PropertyColumn*>(&generic), static_cast<PropertyColumn*>(&numbers),
        static_cast<PropertyColumn*>(plane.get()), static_cast<PropertyColumn*>(space.get())}) {
    column->reserve(20);
    EXPECT_EQ(failEachAllocation([column] { column->appendUnset(20); }, [] {}), 0U);
    EXPECT_EQ(column->count(), 21U);
  }
}

TEST(OutOfMemory, LeavesATableAsItWas) {
  KeyedTable<int> table;
  table.set(kLong, 1);
  const std::string second = kLong + "2";
  const auto unchanged = [&] {
    EXPECT_EQ(table.size(), 1U);
    EXPECT_EQ(*table.find(kLong), 1);
    EXPECT_EQ(table.find(second), nullptr);
  };
  EXPECT_GE(failEachAllocation([&] { table.set(second, 2); }, unchanged), 3U);
  EXPECT_EQ(*table.find(second), 2);
}

TEST(OutOfMemory, LeavesATableThatIsAssignedToAsItWas) {
  KeyedTable<int> table;
  table.set(kLong, 1);
  KeyedTable<int> other;
  for (int i = 0; i < 3; ++i) other.set(kLong + std::to_string(i), i);
  const auto unchanged = [&] {
    EXPECT_THAT(table.keys(), ElementsAre(kLong));
    EXPECT_EQ(*table.find(kLong), 1);
    EXPECT_EQ(table.find(kLong + "0"), nullptr);
  };
  EXPECT_GE(failEachAllocation([&] { table = other; }, unchanged), 4U);
  EXPECT_THAT(table.keys(), ElementsAre(kLong + "0", kLong + "1", kLong + "2"));
  EXPECT_EQ(*table.find(kLong + "2"), 2);
}

TEST(OutOfMemory, ParsingThrowsAndLeaksNothing) {
  EXPECT_GE(failEachAllocation(
                [] { EXPECT_EQ(VEQNumberArray::initWithString("1 2 3")->count(), 3U); }, [] {}),
            2U);
  EXPECT_GE(failEachAllocation(
                [] { EXPECT_EQ(VEQVector3dArray::initWithString("1 2 3")->count(), 1U); }, [] {}),
            4U);
}

}  // namespace
}  // namespace veq
