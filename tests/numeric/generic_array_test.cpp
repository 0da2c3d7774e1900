#include "veq/numeric/generic_array.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

#include "veq/numeric/number_array.hpp"

namespace veq::generic_array_test {
namespace {

using testing::Each;
using testing::ElementsAre;

class Marker final : public PropertyObject {
 public:
  [[nodiscard]] std::string description() const override { return "marker"; }
};

TEST(GenericArray, CanStartFilledWithNullMarkers) {
  const auto array = GenericArray::nullFilled(3);
  EXPECT_EQ(array->count(), 3U);
  EXPECT_THAT(array->values(), Each(PropertyValue()));
  EXPECT_EQ(GenericArray::nullFilled(0)->count(), 0U);
}

TEST(GenericArray, MoreNullMarkersThanMemoryHoldsAreABadAllocation) {
  EXPECT_THROW((void)GenericArray::nullFilled(UINT64_MAX), std::bad_alloc);
  EXPECT_THROW((void)GenericArray::nullFilled(std::uint64_t{1} << 62), std::bad_alloc);
}

TEST(GenericArray, HoldsValuesOfEveryKind) {
  const auto marker = std::make_shared<Marker>();
  const GenericArray array(
      {PropertyValue(), 1, 2.5F, "x", VEQVector2d(1, 2), VEQVector3d(1, 2, 3), marker});
  EXPECT_THAT(array.values(),
              ElementsAre(PropertyValue(), PropertyValue(1), PropertyValue(2.5F),
                          PropertyValue("x"), PropertyValue(VEQVector2d(1, 2)),
                          PropertyValue(VEQVector3d(1, 2, 3)), PropertyValue(marker)));
}

TEST(GenericArray, ANumberKeepsItsOwnKind) {
  GenericArray array;
  array.addObjectsFromArray(VEQNumberArray::ofFloats({0.5F}));
  array.addObject(7U);
  EXPECT_EQ(array.values()[0].number()->type(), ElementType::kFloat);
  EXPECT_EQ(array.values()[1].number()->type(), ElementType::kUnsignedInteger);
}

TEST(GenericArray, CanAppendAndReplaceByItsOwnElements) {
  GenericArray array({std::string(40, 'a'), std::string(40, 'b')});
  for (int i = 0; i < 5; ++i) array.addObject(array.values()[0]);
  array.replaceObjectAtIndex_withObject(1, array.values()[0]);
  EXPECT_EQ(array.count(), 7U);
  EXPECT_THAT(array.values(), Each(PropertyValue(std::string(40, 'a'))));
}

TEST(GenericArray, ReservedRoomIsAllThatUnsetElementsNeed) {
  GenericArray array({"x"});
  array.reserve(10);
  const PropertyValue* const before = array.values().data();
  array.appendUnset(10);
  EXPECT_EQ(array.values().data(), before);
}

TEST(GenericArray, CopiesShareTheirObjects) {
  const auto marker = std::make_shared<Marker>();
  const GenericArray array({marker});
  const auto copy = array.editableCopy();
  EXPECT_EQ(copy->values()[0].object(), marker.get());
  EXPECT_EQ(array.fixedCopy()->values()[0].object(), marker.get());
}

TEST(GenericArray, SubarraysKeepOrderAndRepetitions) {
  const GenericArray array({"a", "b", "c"});
  const auto part = array.subarrayWithIndices(VEQNumberArray::ofIndices({2, 0, 2}));
  EXPECT_THAT(part->values(),
              ElementsAre(PropertyValue("c"), PropertyValue("a"), PropertyValue("c")));
}

}  // namespace
}  // namespace veq::generic_array_test
