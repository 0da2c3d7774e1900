#include "veq/numeric/property_column.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::property_column_test {
namespace {

using testing::ElementsAre;

std::vector<PropertyValue> valuesOf(const PropertyColumn& column) {
  std::vector<PropertyValue> values;
  for (std::uint64_t index = 0; index < column.count(); ++index) {
    values.push_back(column.objectAtIndex(index));
  }
  return values;
}

/// A column of one kind, the values that fill it, and what it makes of them.
struct Example {
  std::string name;
  Shared<PropertyColumn> (*make)();
  PropertyValue first;
  PropertyValue second;
  PropertyValue unset;
  /// Empty where the kind holds everything.
  std::vector<PropertyValue> unsuitable;
};

void PrintTo(const Example& example, std::ostream* out) { *out << example.name; }

template <class Column>
Shared<PropertyColumn> make() {
  return std::make_shared<Column>();
}

const Example kExamples[] = {
    {"Generic", make<GenericArray>, "a", 2.5, PropertyValue(), {}},
    {"Number", make<VEQNumberArray>, 1.5, -2.0, 0.0, {"1", VEQVector2d(), VEQVector3d()}},
    {"Vector2d",
     make<VEQVector2dArray>,
     VEQVector2d(1, 2),
     VEQVector2d(3, 4),
     VEQVector2d(0, 0),
     {"1 2", 1.0, VEQVector3d()}},
    {"Vector3d",
     make<VEQVector3dArray>,
     VEQVector3d(1, 2, 3),
     VEQVector3d(4, 5, 6),
     VEQVector3d(0, 0, 0),
     {"1 2 3", 1.0, VEQVector2d()}},
};

class PropertyColumns : public testing::TestWithParam<Example> {
 protected:
  [[nodiscard]] static Shared<PropertyColumn> twoValues() {
    auto column = GetParam().make();
    column->addObject(GetParam().first);
    column->addObject(GetParam().second);
    return column;
  }
  const PropertyValue& first_ = GetParam().first;
  const PropertyValue& second_ = GetParam().second;
  const PropertyValue& unset_ = GetParam().unset;
};

INSTANTIATE_TEST_SUITE_P(AllKinds, PropertyColumns, testing::ValuesIn(kExamples),
                         [](const auto& example) { return example.param.name; });

TEST_P(PropertyColumns, StartEmptyAndEditable) {
  const auto column = GetParam().make();
  EXPECT_EQ(column->count(), 0U);
  EXPECT_TRUE(column->isEditable());
}

TEST_P(PropertyColumns, ReplaceOneElement) {
  const auto column = twoValues();
  column->replaceObjectAtIndex_withObject(0, second_);
  column->replaceObject_atIndex(first_, 1);
  EXPECT_THAT(valuesOf(*column), ElementsAre(second_, first_));
}

TEST_P(PropertyColumns, ANullMarkerUnsetsAnElement) {
  const auto column = twoValues();
  column->replaceObjectAtIndex_withObject(1, PropertyValue());
  column->addObject(PropertyValue());
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, unset_, unset_));
}

TEST_P(PropertyColumns, PastTheEndIsOutOfRange) {
  const auto column = twoValues();
  for (const std::uint64_t index : {std::uint64_t{2}, std::uint64_t{3}, UINT64_MAX}) {
    EXPECT_THROW((void)column->objectAtIndex(index), std::out_of_range);
    EXPECT_THROW(column->replaceObjectAtIndex_withObject(index, first_), std::out_of_range);
    EXPECT_THROW(column->replaceObject_atIndex(first_, index), std::out_of_range);
  }
  EXPECT_THROW((void)GetParam().make()->objectAtIndex(0), std::out_of_range);
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_));
}

TEST_P(PropertyColumns, AnUnsuitableValueChangesNothing) {
  for (const PropertyValue& bad : GetParam().unsuitable) {
    const auto column = twoValues();
    EXPECT_THROW(column->replaceObjectAtIndex_withObject(0, bad), std::invalid_argument);
    EXPECT_THROW(column->addObject(bad), std::invalid_argument);
    EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_));
  }
}

TEST_P(PropertyColumns, RangeIsCheckedBeforeKind) {
  for (const PropertyValue& bad : GetParam().unsuitable) {
    EXPECT_THROW(twoValues()->replaceObjectAtIndex_withObject(2, bad), std::out_of_range);
  }
}

TEST_P(PropertyColumns, AppendTheElementsOfAnotherColumn) {
  const auto column = twoValues();
  column->addObjectsFromArray(*twoValues());
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_, first_, second_));
}

TEST_P(PropertyColumns, CanBeAppendedToThemselves) {
  const auto column = twoValues();
  column->addObjectsFromArray(*column);
  column->addObjectsFromArray(*column);
  EXPECT_THAT(valuesOf(*column),
              ElementsAre(first_, second_, first_, second_, first_, second_, first_, second_));
}

TEST_P(PropertyColumns, AnUnsuitableElementOfAnotherColumnAppendsNothing) {
  for (const PropertyValue& bad : GetParam().unsuitable) {
    const auto column = twoValues();
    EXPECT_THROW(column->addObjectsFromArray(GenericArray({second_, bad})), std::invalid_argument);
    EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_));
  }
}

TEST_P(PropertyColumns, AGenericColumnTakesTheElementsOfAny) {
  GenericArray generic({"x"});
  generic.addObjectsFromArray(*twoValues());
  EXPECT_THAT(generic.values(), ElementsAre(PropertyValue("x"), first_, second_));
}

TEST_P(PropertyColumns, AppendUnsetElements) {
  const auto column = twoValues();
  column->appendUnset(2);
  column->appendUnset(0);
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_, unset_, unset_));
}

TEST_P(PropertyColumns, ReservingChangesNoElement) {
  const auto column = twoValues();
  column->reserve(1000);
  column->reserve(0);
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_));
}

TEST_P(PropertyColumns, CountsThatNoMemoryHoldsChangeNothing) {
  const auto column = twoValues();
  for (const std::uint64_t count : {UINT64_MAX, UINT64_MAX - 1, std::uint64_t{1} << 63}) {
    EXPECT_THROW(column->reserve(count), std::bad_alloc);
    EXPECT_THROW(column->appendUnset(count), std::bad_alloc);
  }
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_));
}

TEST_P(PropertyColumns, SubarraysKeepOrderAndRepetitions) {
  const auto column = twoValues();
  const auto part = column->subarrayWithIndices(VEQNumberArray::ofIndices({1, 0, 1, 1}));
  EXPECT_EQ(part->kind(), column->kind());
  EXPECT_THAT(valuesOf(*part), ElementsAre(second_, first_, second_, second_));
  EXPECT_EQ(column->subarrayWithIndices(VEQNumberArray())->count(), 0U);
}

TEST_P(PropertyColumns, SubarraysTakeIndicesOfAnyElementType) {
  const auto column = twoValues();
  EXPECT_THAT(valuesOf(*column->subarrayWithIndices(VEQNumberArray::ofIntegers({1, 0}))),
              ElementsAre(second_, first_));
  EXPECT_THAT(valuesOf(*column->subarrayWithIndices(VEQNumberArray::ofFloats({1.0F, 0.9F}))),
              ElementsAre(second_, first_));
  EXPECT_THAT(valuesOf(*column->subarrayWithIndices(VEQNumberArray::ofDoubles({1.9, -0.5}))),
              ElementsAre(second_, first_));
}

TEST_P(PropertyColumns, SubarraysRefuseIndicesPastTheEnd) {
  const auto column = twoValues();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_THROW((void)column->subarrayWithIndices(VEQNumberArray::ofIndices({0, 2})),
               std::out_of_range);
  EXPECT_THROW((void)column->subarrayWithIndices(VEQNumberArray::ofIndices({UINT64_MAX})),
               std::out_of_range);
  EXPECT_THROW((void)column->subarrayWithIndices(VEQNumberArray::ofIntegers({0, -1})),
               std::out_of_range);
  for (const double bad : {-1.0, 2.0, nan, infinity, -infinity, 1e300}) {
    EXPECT_THROW((void)column->subarrayWithIndices(VEQNumberArray::ofDoubles({0.0, bad})),
                 std::out_of_range)
        << bad;
    EXPECT_THROW((void)column->subarrayWithIndices(
                     VEQNumberArray::ofFloats({0.0F, static_cast<float>(bad)})),
                 std::out_of_range)
        << bad;
  }
}

TEST_P(PropertyColumns, CopiesHaveTheirOwnStorage) {
  const auto column = twoValues();
  const auto copy = column->editableCopy();
  copy->replaceObjectAtIndex_withObject(0, second_);
  copy->addObject(first_);
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_));
  EXPECT_THAT(valuesOf(*copy), ElementsAre(second_, second_, first_));
  EXPECT_EQ(copy->kind(), column->kind());
}

TEST_P(PropertyColumns, AFixedCopyRefusesEveryChange) {
  const auto fixed = twoValues()->fixedCopy();
  EXPECT_FALSE(fixed->isEditable());
  EXPECT_THROW(fixed->replaceObjectAtIndex_withObject(0, second_), std::invalid_argument);
  EXPECT_THROW(fixed->replaceObject_atIndex(second_, 0), std::invalid_argument);
  EXPECT_THROW(fixed->addObject(second_), std::invalid_argument);
  EXPECT_THROW(fixed->addObjectsFromArray(*twoValues()), std::invalid_argument);
  EXPECT_THROW(fixed->addObjectsFromArray(*GetParam().make()), std::invalid_argument);
  EXPECT_THROW(fixed->appendUnset(1), std::invalid_argument);
  EXPECT_THAT(valuesOf(*fixed), ElementsAre(first_, second_));
}

TEST_P(PropertyColumns, BeingFixedIsCheckedBeforeTheRange) {
  EXPECT_THROW(twoValues()->fixedCopy()->replaceObjectAtIndex_withObject(2, first_),
               std::invalid_argument);
}

TEST_P(PropertyColumns, WhatIsTakenFromAFixedColumnIsEditable) {
  const auto fixed = twoValues()->fixedCopy();
  EXPECT_TRUE(fixed->editableCopy()->isEditable());
  EXPECT_TRUE(fixed->subarrayWithIndices(VEQNumberArray::ofIndices({0}))->isEditable());
}

TEST_P(PropertyColumns, AFixedCopyDoesNotSeeLaterChanges) {
  const auto column = twoValues();
  const auto fixed = column->fixedCopy();
  column->replaceObjectAtIndex_withObject(0, second_);
  EXPECT_THAT(valuesOf(*fixed), ElementsAre(first_, second_));
}

/// Claims to have more elements than any memory holds.
class EndlessColumn final : public PropertyColumn {
 public:
  EndlessColumn() : PropertyColumn(Kind::kGeneric) {}

 private:
  std::uint64_t doCount() const override { return UINT64_MAX - 1; }
  PropertyValue doGet(std::uint64_t) const override { return {}; }
  void doSet(std::uint64_t, PropertyValue&&) override {}
  void doReserve(std::uint64_t) override {}
  void doAppendUnset(std::uint64_t) override {}
  void doTruncate(std::uint64_t) override {}
  Owned<PropertyColumn> doSubarray(const VEQNumberArray&) const override { return nullptr; }
  Owned<PropertyColumn> doCopy() const override { return std::make_unique<EndlessColumn>(); }
};

TEST_P(PropertyColumns, AppendingMoreThanMemoryHoldsChangesNothing) {
  const auto column = twoValues();
  EXPECT_THROW(column->addObjectsFromArray(EndlessColumn()), std::bad_alloc);
  EXPECT_THAT(valuesOf(*column), ElementsAre(first_, second_));
}

template <class Column>
class MovedColumn : public testing::Test {};
using Columns = testing::Types<GenericArray, VEQNumberArray, VEQVector2dArray, VEQVector3dArray>;
TYPED_TEST_SUITE(MovedColumn, Columns);

TYPED_TEST(MovedColumn, OutOfAnEditableOneIsItsElementsAndLeavesItEmpty) {
  TypeParam from;
  from.appendUnset(3);
  TypeParam to = std::move(from);
  EXPECT_EQ(to.count(), 3U);
  EXPECT_EQ(from.count(), 0U);  // NOLINT(bugprone-use-after-move): it says what it then is
  from.appendUnset(1);
  EXPECT_EQ(from.count(), 1U);
}

TYPED_TEST(MovedColumn, OutOfAFixedOneIsACopyAndLeavesItWhole) {
  TypeParam original;
  original.appendUnset(3);
  const Owned<TypeParam> fixed = original.fixedCopy();
  TypeParam to = std::move(*fixed);
  EXPECT_TRUE(to.isEditable());
  EXPECT_EQ(to.count(), 3U);
  EXPECT_FALSE(fixed->isEditable());
  EXPECT_EQ(fixed->count(), 3U);
  EXPECT_THROW(fixed->appendUnset(1), std::invalid_argument);
}

TEST(MovedNumberArray, KeepsItsElementType) {
  VEQNumberArray from = VEQNumberArray::ofFloats({0.5F});
  const VEQNumberArray to = std::move(from);
  EXPECT_THAT(to.values<float>(), ElementsAre(0.5F));
  EXPECT_EQ(from.elementType(), ElementType::kFloat);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(from.count(), 0U);
}

TEST(MovedNumberArray, IntoAnotherLeavesAFixedOneWhole) {
  const Owned<VEQNumberArray> fixed = VEQNumberArray::ofIntegers({1, 2}).fixedCopy();
  VEQNumberArray to;
  to = std::move(*fixed);
  EXPECT_THAT(to.values<std::int64_t>(), ElementsAre(1, 2));
  EXPECT_THAT(fixed->values<std::int64_t>(), ElementsAre(1, 2));
}

}  // namespace
}  // namespace veq::property_column_test
