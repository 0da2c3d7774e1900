#include "veq/numeric/number_array.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "veq/numeric/generic_array.hpp"

namespace veq::number_array_test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kAbsurdCounts[] = {UINT64_MAX, std::uint64_t{1} << 63};

TEST(NumberArrayConstruction, ScalarsFillEveryElement) {
  const auto doubles = VEQNumberArray::initWithDoubleScalar_count(0.0, 3);
  EXPECT_EQ(doubles->elementType(), ElementType::kDouble);
  EXPECT_THAT(doubles->values<double>(), ElementsAre(0.0, 0.0, 0.0));
  const auto floats = VEQNumberArray::initWithFloatScalar_count(0.5F, 2);
  EXPECT_EQ(floats->elementType(), ElementType::kFloat);
  EXPECT_THAT(floats->values<float>(), ElementsAre(0.5F, 0.5F));
  const auto integers = VEQNumberArray::initWithIntegerScalar_count(-3, 2);
  EXPECT_EQ(integers->elementType(), ElementType::kInteger);
  EXPECT_THAT(integers->values<std::int64_t>(), ElementsAre(-3, -3));
}

TEST(NumberArrayConstruction, MinusOneSetsAllBits) {
  const auto array = VEQNumberArray::initWithIntegerScalar_count(-1, 3);
  const auto* bits = static_cast<const std::uint64_t*>(std::as_const(*array).VEQ_dataPointer());
  EXPECT_THAT(std::vector<std::uint64_t>(bits, bits + 3), Each(18446744073709551615U));
  std::uint64_t buffer[3] = {};
  array->getUnsignedIntegerValues_count(buffer, 3);
  EXPECT_THAT(buffer, Each(18446744073709551615U));
}

TEST(NumberArrayConstruction, BuffersAreCopied) {
  std::uint64_t integers[] = {7, UINT64_MAX};
  float floats[] = {0.5F, -1.0F};
  double doubles[] = {0.25, 1e300};
  const auto ownedIntegers = VEQNumberArray::initWithUnsignedIntegerArray_count(integers, 2);
  const auto ownedFloats = VEQNumberArray::initWithFloatArray_count(floats, 2);
  const auto sharedIntegers =
      VEQNumberArray::numberArrayWithUnsignedIntegerArray_count(integers, 2);
  const auto sharedFloats = VEQNumberArray::numberArrayWithFloatArray_count(floats, 2);
  const auto sharedDoubles = VEQNumberArray::numberArrayWithDoubleArray_count(doubles, 2);
  integers[0] = 0;
  floats[0] = 0;
  doubles[0] = 0;
  EXPECT_THAT(ownedIntegers->values<std::uint64_t>(), ElementsAre(7U, UINT64_MAX));
  EXPECT_THAT(sharedIntegers->values<std::uint64_t>(), ElementsAre(7U, UINT64_MAX));
  EXPECT_THAT(ownedFloats->values<float>(), ElementsAre(0.5F, -1.0F));
  EXPECT_THAT(sharedFloats->values<float>(), ElementsAre(0.5F, -1.0F));
  EXPECT_THAT(sharedDoubles->values<double>(), ElementsAre(0.25, 1e300));
}

TEST(NumberArrayConstruction, APointerIsNotReadWhereTheCountIsZero) {
  EXPECT_EQ(VEQNumberArray::numberArrayWithUnsignedIntegerArray_count(nullptr, 0)->count(), 0U);
  EXPECT_EQ(VEQNumberArray::numberArrayWithDoubleArray_count(nullptr, 0)->count(), 0U);
  EXPECT_EQ(VEQNumberArray::numberArrayWithFloatArray_count(nullptr, 0)->count(), 0U);
  EXPECT_EQ(VEQNumberArray::initWithUnsignedIntegerArray_count(nullptr, 0)->count(), 0U);
  EXPECT_EQ(VEQNumberArray::initWithFloatArray_count(nullptr, 0)->count(), 0U);
  const auto* nowhere = reinterpret_cast<const std::uint64_t*>(8);
  EXPECT_EQ(VEQNumberArray::numberArrayWithUnsignedIntegerArray_count(nowhere, 0)->count(), 0U);
}

TEST(NumberArrayConstruction, ACapacityMakesAnEmptyArrayOfItsType) {
  const auto integers = VEQNumberArray::initUnsignedIntegerArrayWithCapacity(0);
  EXPECT_EQ(integers->elementType(), ElementType::kUnsignedInteger);
  EXPECT_EQ(integers->count(), 0U);
  const auto floats = VEQNumberArray::initFloatArrayWithCapacity(10);
  EXPECT_EQ(floats->elementType(), ElementType::kFloat);
  EXPECT_EQ(floats->count(), 0U);
  floats->addObject(0.1);
  EXPECT_THAT(floats->values<float>(), ElementsAre(0.1F));
}

TEST(NumberArrayConstruction, CopiesOfANumberHaveItsType) {
  EXPECT_THAT(VEQNumberArray::numberArrayWithNumber_count(1.0, 2)->values<double>(),
              ElementsAre(1.0, 1.0));
  EXPECT_THAT(VEQNumberArray::numberArrayWithNumber_count(true, 2)->values<std::int64_t>(),
              ElementsAre(1, 1));
  EXPECT_THAT(VEQNumberArray::numberArrayWithNumber_count(false, 1)->values<std::int64_t>(),
              ElementsAre(0));
  EXPECT_THAT(VEQNumberArray::numberArrayWithNumber_count(2.5F, 1)->values<float>(),
              ElementsAre(2.5F));
  EXPECT_THAT(VEQNumberArray::numberArrayWithNumber_count(2U, 1)->values<std::uint64_t>(),
              ElementsAre(2U));
  EXPECT_EQ(VEQNumberArray::numberArrayWithNumber_count(1.0, 0)->count(), 0U);
}

TEST(NumberArrayConstruction, CountsThatNoMemoryHoldsAreBadAllocations) {
  const std::uint64_t integer = 1;
  const float real = 1.0F;
  for (const std::uint64_t count : kAbsurdCounts) {
    EXPECT_THROW((void)VEQNumberArray::initWithDoubleScalar_count(0.0, count), std::bad_alloc);
    EXPECT_THROW((void)VEQNumberArray::initWithFloatScalar_count(0.0F, count), std::bad_alloc);
    EXPECT_THROW((void)VEQNumberArray::initWithIntegerScalar_count(-1, count), std::bad_alloc);
    EXPECT_THROW((void)VEQNumberArray::initWithUnsignedIntegerArray_count(&integer, count),
                 std::bad_alloc);
    EXPECT_THROW((void)VEQNumberArray::initWithFloatArray_count(&real, count), std::bad_alloc);
    EXPECT_THROW((void)VEQNumberArray::initUnsignedIntegerArrayWithCapacity(count), std::bad_alloc);
    EXPECT_THROW((void)VEQNumberArray::initFloatArrayWithCapacity(count), std::bad_alloc);
    EXPECT_THROW((void)VEQNumberArray::numberArrayWithNumber_count(1.0, count), std::bad_alloc);
  }
}

TEST(NumberArrayConstruction, ShortFormsTakeTheirTypeFromTheirName) {
  EXPECT_EQ(VEQNumberArray().elementType(), ElementType::kDouble);
  const auto indices = VEQNumberArray::ofIndices({3, 1});
  EXPECT_THAT(indices.values<std::uint64_t>(), ElementsAre(3U, 1U));
  const auto integers = VEQNumberArray::ofIntegers({-3});
  EXPECT_THAT(integers.values<std::int64_t>(), ElementsAre(-3));
  const auto floats = VEQNumberArray::ofFloats({0.5F});
  EXPECT_THAT(floats.values<float>(), ElementsAre(0.5F));
  const auto doubles = VEQNumberArray::ofDoubles({0.5});
  EXPECT_THAT(doubles.values<double>(), ElementsAre(0.5));
}

TEST(NumberArrayConstruction, ShortFormsTakeVectorsArraysAndSpans) {
  const std::vector<std::uint64_t> indices = {4, 5};
  EXPECT_THAT(VEQNumberArray::ofIndices(indices).toVector<std::uint64_t>(), ElementsAre(4U, 5U));
  const std::array<std::int64_t, 2> integers = {-4, 5};
  EXPECT_EQ(VEQNumberArray::ofIntegers(integers).elementType(), ElementType::kInteger);
  EXPECT_THAT(VEQNumberArray::ofIntegers(integers).toVector<std::int64_t>(), ElementsAre(-4, 5));
  const std::vector<float> floats = {0.5F, 0.25F};
  EXPECT_EQ(VEQNumberArray::ofFloats(floats).elementType(), ElementType::kFloat);
  EXPECT_THAT(VEQNumberArray::ofFloats(floats).toVector<float>(), ElementsAre(0.5F, 0.25F));
  const std::vector<double> doubles = {0.1};
  EXPECT_EQ(VEQNumberArray::ofDoubles(doubles).elementType(), ElementType::kDouble);
  EXPECT_THAT(VEQNumberArray::ofDoubles(std::span(doubles)).toVector(), ElementsAre(0.1));
  EXPECT_THAT(VEQNumberArray::ofDoubles(std::vector<double>()).toVector(), IsEmpty());
}

TEST(NumberArrayElements, AreReadAsAnyTypeByOneAccessor) {
  const auto array = VEQNumberArray::ofDoubles({2.9, -1.5});
  EXPECT_EQ(array.at(0), 2.9);
  EXPECT_EQ(array.at<std::int64_t>(0), 2);  // truncated, as convertNumber says
  EXPECT_EQ(array.at<std::int64_t>(1), -1);
  EXPECT_EQ(array.at<float>(1), -1.5F);
  EXPECT_EQ(VEQNumberArray::ofIndices({7}).at(0), 7.0);
  EXPECT_THROW((void)array.at(2), std::out_of_range);
  EXPECT_THROW((void)array.at(UINT64_MAX), std::out_of_range);
}

TEST(NumberArrayElements, AreCopiedAsAnyType) {
  EXPECT_THAT(VEQNumberArray::ofDoubles({2.9, -1.5}).toVector<std::int64_t>(), ElementsAre(2, -1));
  EXPECT_THAT(VEQNumberArray::ofIndices({7, 8}).toVector(), ElementsAre(7.0, 8.0));
  double sum = 0;
  for (const double value : VEQNumberArray::initWithDoubleScalar_count(1.5, 4)->toVector()) {
    sum += value;
  }
  EXPECT_EQ(sum, 6.0);
}

TEST(NumberArrayElements, AreConvertedOnTheWayIn) {
  VEQNumberArray integers = VEQNumberArray::ofIntegers({1, 2, 3, 4});
  integers.replaceObjectAtIndex_withObject(0, -2.9);
  integers.replaceObjectAtIndex_withObject(1, std::numeric_limits<double>::infinity());
  integers.replaceObjectAtIndex_withObject(2, true);
  integers.replaceObjectAtIndex_withObject(3, UINT64_MAX);
  EXPECT_THAT(integers.values<std::int64_t>(),
              ElementsAre(-2, std::numeric_limits<std::int64_t>::max(), 1, -1));
  VEQNumberArray indices = VEQNumberArray::ofIndices({7});
  indices.setIntegerValue_atIndex(-1, 0);
  EXPECT_THAT(indices.values<std::uint64_t>(), ElementsAre(UINT64_MAX));
  VEQNumberArray floats = VEQNumberArray::ofFloats({0.0F});
  floats.setIntegerValue_atIndex(16777217, 0);
  EXPECT_THAT(floats.values<float>(), ElementsAre(16777216.0F));
}

TEST(NumberArrayElements, AreConvertedOnTheWayOut) {
  const VEQNumberArray doubles = VEQNumberArray::ofDoubles({2.9, -2.9, 1e300});
  EXPECT_EQ(doubles.integerValueAtIndex(0), 2);
  EXPECT_EQ(doubles.integerValueAtIndex(1), -2);
  EXPECT_EQ(doubles.integerValueAtIndex(2), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(doubles.numberAtIndex(1), Number(-2.9));
  EXPECT_EQ(VEQNumberArray::ofIndices({UINT64_MAX}).integerValueAtIndex(0), -1);
}

TEST(NumberArrayElements, PastTheEndAreOutOfRange) {
  VEQNumberArray array = VEQNumberArray::ofIntegers({5});
  for (const std::uint64_t index : {std::uint64_t{1}, UINT64_MAX}) {
    EXPECT_THROW((void)array.integerValueAtIndex(index), std::out_of_range);
    EXPECT_THROW((void)array.numberAtIndex(index), std::out_of_range);
    EXPECT_THROW(array.setIntegerValue_atIndex(1, index), std::out_of_range);
  }
  EXPECT_THAT(array.values<std::int64_t>(), ElementsAre(5));
}

TEST(NumberArrayElements, OfAFixedArrayStay) {
  const auto fixed = VEQNumberArray::ofIntegers({5}).fixedCopy();
  EXPECT_FALSE(fixed->isEditable());
  EXPECT_THROW(fixed->setIntegerValue_atIndex(1, 0), std::invalid_argument);
  EXPECT_THROW(fixed->setIntegerValue_atIndex(1, 9), std::invalid_argument);
  EXPECT_THROW(*fixed = VEQNumberArray::ofIntegers({6, 7}), std::invalid_argument);
  EXPECT_THAT(fixed->values<std::int64_t>(), ElementsAre(5));
}

TEST(NumberArrayElements, AppendedFromAnotherTypeAreConverted) {
  VEQNumberArray integers = VEQNumberArray::ofIntegers({1});
  integers.addObjectsFromArray(VEQNumberArray::ofDoubles({2.9, -1.5}));
  EXPECT_THAT(integers.values<std::int64_t>(), ElementsAre(1, 2, -1));
  integers.addObjectsFromArray(GenericArray({PropertyValue(), 4.0F}));
  EXPECT_THAT(integers.values<std::int64_t>(), ElementsAre(1, 2, -1, 0, 4));
}

TEST(NumberArrayBuffers, ReceiveConvertedElements) {
  const VEQNumberArray doubles = VEQNumberArray::ofDoubles({1.5, -1.0, 1e300});
  float floats[3] = {};
  doubles.getFloatValues(floats);
  EXPECT_THAT(floats, ElementsAre(1.5F, -1.0F, std::numeric_limits<float>::infinity()));
  std::int64_t integers[2] = {};
  doubles.getIntegerValues_count(integers, 2);
  EXPECT_THAT(integers, ElementsAre(1, -1));
  std::uint64_t indices[2] = {};
  doubles.getUnsignedIntegerValues_count(indices, 2);
  EXPECT_THAT(indices, ElementsAre(1U, UINT64_MAX));
}

TEST(NumberArrayBuffers, AreWrittenAsFarAsTheCountAsksOnly) {
  const VEQNumberArray array = VEQNumberArray::ofFloats({1, 2, 3});
  float buffer[3] = {-1, -1, -1};
  array.getFloatValues_count(buffer, 2);
  EXPECT_THAT(buffer, ElementsAre(1, 2, -1));
  array.getFloatValues_count(nullptr, 0);
}

TEST(NumberArrayBuffers, AreNotTouchedWhenTheCountIsTooLarge) {
  const VEQNumberArray array = VEQNumberArray::ofIntegers({1, 2});
  for (const std::uint64_t count : {std::uint64_t{3}, UINT64_MAX}) {
    float floats[3] = {-1, -1, -1};
    std::int64_t integers[3] = {-1, -1, -1};
    std::uint64_t indices[3] = {9, 9, 9};
    EXPECT_THROW(array.getFloatValues_count(floats, count), std::out_of_range);
    EXPECT_THROW(array.getIntegerValues_count(integers, count), std::out_of_range);
    EXPECT_THROW(array.getUnsignedIntegerValues_count(indices, count), std::out_of_range);
    EXPECT_THAT(floats, Each(-1.0F));
    EXPECT_THAT(integers, Each(-1));
    EXPECT_THAT(indices, Each(9U));
  }
}

TEST(NumberArrayStorage, IsWritableThroughItsPointer) {
  VEQNumberArray array = VEQNumberArray::ofFloats({1, 2});
  static_cast<float*>(array.VEQ_dataPointer())[1] = 7.5F;
  EXPECT_EQ(array.numberAtIndex(1), Number(7.5F));
  array.values<float>()[0] = 3.0F;
  EXPECT_EQ(array.numberAtIndex(0), Number(3.0F));
}

TEST(NumberArrayStorage, ACopyIsWrittenWithoutTouchingTheOriginal) {
  const VEQNumberArray array = VEQNumberArray::ofIndices({1, 2});
  const auto copy = array.copy();
  static_cast<std::uint64_t*>(copy->VEQ_dataPointer())[0] = 9;
  EXPECT_EQ(copy->elementType(), ElementType::kUnsignedInteger);
  EXPECT_THAT(copy->values<std::uint64_t>(), ElementsAre(9U, 2U));
  EXPECT_THAT(array.values<std::uint64_t>(), ElementsAre(1U, 2U));
}

TEST(NumberArrayStorage, StaysWhereItIsWhileTheArrayDoesNotGrow) {
  VEQNumberArray array = VEQNumberArray::ofDoubles({1, 2});
  const void* const before = array.VEQ_dataPointer();
  array.replaceObjectAtIndex_withObject(0, 5);
  array.setIntegerValue_atIndex(6, 1);
  EXPECT_EQ(array.VEQ_dataPointer(), before);
}

TEST(NumberArrayStorage, ReservedRoomIsAllThatUnsetElementsNeed) {
  VEQNumberArray array = VEQNumberArray::ofDoubles({1, 2});
  array.reserve(100);
  const void* const before = array.VEQ_dataPointer();
  array.appendUnset(60);
  array.appendUnset(40);
  EXPECT_EQ(array.VEQ_dataPointer(), before);
  EXPECT_EQ(array.count(), 102U);
}

TEST(NumberArrayStorage, ReservingOneByOneMovesTheBlockSeldom) {
  VEQNumberArray array;
  int moves = 0;
  for (int i = 0; i < 1000; ++i) {
    const void* const before = array.VEQ_dataPointer();
    array.reserve(1);
    moves += array.VEQ_dataPointer() != before;
    array.appendUnset(1);
  }
  EXPECT_LE(moves, 11);  // 1, 2, 4, ... 1024
}

TEST(NumberArrayStorage, UnsetElementsAreZeroAlsoWhereOldOnesLay) {
  VEQNumberArray array = VEQNumberArray::ofIndices({7});
  EXPECT_THROW(array.addObjectsFromArray(GenericArray({8, 9, "x"})), std::invalid_argument);
  array.appendUnset(3);
  EXPECT_THAT(array.values<std::uint64_t>(), ElementsAre(7U, 0U, 0U, 0U));
}

template <class T>
std::string complaintAbout(const VEQNumberArray& array) {
  try {
    (void)array.values<T>();
  } catch (const std::bad_variant_access& error) {
    return error.what();
  }
  return "none";
}

TEST(NumberArrayStorage, HasOnlyItsOwnTypeAndSaysWhich) {
  EXPECT_EQ(complaintAbout<double>(VEQNumberArray()), "none");
  EXPECT_EQ(complaintAbout<float>(VEQNumberArray()), "The array holds doubles.");
  EXPECT_EQ(complaintAbout<double>(VEQNumberArray::ofIntegers({1})), "The array holds integers.");
  EXPECT_EQ(complaintAbout<double>(VEQNumberArray::ofFloats({1})), "The array holds floats.");
  EXPECT_EQ(complaintAbout<double>(VEQNumberArray::ofIndices({1})),
            "The array holds unsigned integers.");
  try {
    (void)VEQNumberArray::initWithFloatScalar_count(1.0F, 1)->values<double>();
    FAIL();
  } catch (const WrongElementType& error) {
    EXPECT_EQ(error.held(), ElementType::kFloat);
  }
}

TEST(NumberArraySubarray, KeepsTheElementType) {
  const auto part =
      VEQNumberArray::ofFloats({10, 20, 30}).subarrayWithIndices(VEQNumberArray::ofIndices({2, 2}));
  EXPECT_EQ(part->elementType(), ElementType::kFloat);
  EXPECT_THAT(part->values<float>(), ElementsAre(30, 30));
}

TEST(NumberArrayValues, CanBeCopiedAndMovedLikeAnyValue) {
  VEQNumberArray array = VEQNumberArray::ofIntegers({1, 2});
  VEQNumberArray copy = array;
  copy.setIntegerValue_atIndex(9, 0);
  EXPECT_EQ(array.integerValueAtIndex(0), 1);
  const VEQNumberArray moved = std::move(copy);
  EXPECT_THAT(moved.values<std::int64_t>(), ElementsAre(9, 2));
  array = VEQNumberArray::ofFloats({0.5F});
  EXPECT_THAT(array.values<float>(), ElementsAre(0.5F));
}

TEST(NumberArrayValues, ACopyOfAFixedArrayIsEditable) {
  const auto fixed = VEQNumberArray::ofIntegers({1}).fixedCopy();
  VEQNumberArray copy = *fixed;
  EXPECT_TRUE(copy.isEditable());
  copy.setIntegerValue_atIndex(2, 0);
  EXPECT_EQ(fixed->integerValueAtIndex(0), 1);
}

TEST(NumberArrayValues, EmptyOnesHaveNothingToVisit) {
  const VEQNumberArray empty;
  EXPECT_THAT(empty.values<double>(), IsEmpty());
}

TEST(ForeignNumberArray, IsReadWhereItLies) {
  const std::vector<std::int64_t> numbers{4, -5, 6};
  const auto owner = std::make_shared<int>(0);
  const auto array = VEQNumberArray::over(std::span<const std::int64_t>(numbers), owner);
  const VEQNumberArray& read = *array;
  EXPECT_EQ(array->count(), 3U);
  EXPECT_EQ(array->elementType(), ElementType::kInteger);
  EXPECT_TRUE(array->isEditable());
  EXPECT_EQ(read.values<std::int64_t>().data(), numbers.data());
  EXPECT_EQ(read.VEQ_dataPointer(), numbers.data());
  EXPECT_EQ(array->integerValueAtIndex(1), -5);
  EXPECT_EQ(array->objectAtIndex(2), PropertyValue(6));
  EXPECT_THAT(array->toVector(), ElementsAre(4.0, -5.0, 6.0));
  EXPECT_THAT(array->subarrayWithIndices(VEQNumberArray::ofIndices({2, 0}))->toVector(),
              ElementsAre(6.0, 4.0));
  EXPECT_EQ(array->stringValueWithSeparator(","), "4,-5,6");
  EXPECT_THROW(static_cast<void>(read.values<double>()), WrongElementType);
  EXPECT_THROW(static_cast<void>(array->values<double>()), WrongElementType);
  EXPECT_THROW(static_cast<void>(array->numberAtIndex(3)), std::out_of_range);
  EXPECT_EQ(owner.use_count(), 2);
}

TEST(ForeignNumberArray, IsCopiedByEveryChange) {
  const std::vector<double> numbers{4, 5};
  const std::vector<std::function<void(VEQNumberArray&)>> changes{
      [](VEQNumberArray& a) { a.setIntegerValue_atIndex(9, 0); },
      [](VEQNumberArray& a) { a.replaceObjectAtIndex_withObject(0, 9); },
      [](VEQNumberArray& a) { a.addObject(9); },
      [](VEQNumberArray& a) { a.addObjectsFromArray(a); },
      [](VEQNumberArray& a) { a.appendUnset(1); },
      [](VEQNumberArray& a) { a.values<double>()[0] = 9; },
      [](VEQNumberArray& a) { *static_cast<double*>(a.VEQ_dataPointer()) = 9; }};
  for (const auto& change : changes) {
    const auto owner = std::make_shared<int>(0);
    const auto array = VEQNumberArray::over(std::span<const double>(numbers), owner);
    change(*array);
    EXPECT_EQ(owner.use_count(), 1);
    EXPECT_EQ(array->elementType(), ElementType::kDouble);
    EXPECT_TRUE(array->count() > 2 || array->integerValueAtIndex(0) == 9);
    EXPECT_EQ(array->integerValueAtIndex(1), 5);
    EXPECT_THAT(numbers, ElementsAre(4, 5));
  }
}

TEST(ForeignNumberArray, IsCopiedAndMovedAsAValue) {
  const std::vector<float> numbers{1, 2};
  const auto owner = std::make_shared<int>(0);
  VEQNumberArray array = *VEQNumberArray::over(std::span<const float>(numbers), owner);
  const VEQNumberArray copy = array;
  const VEQNumberArray moved = std::move(array);
  EXPECT_EQ(copy.values<float>().data(), numbers.data());
  EXPECT_EQ(moved.values<float>().data(), numbers.data());
  // NOLINTNEXTLINE(bugprone-use-after-move): empty, of its type and ready for use.
  EXPECT_EQ(array.count(), 0U);
  array.addObject(7);
  EXPECT_THAT(array.values<float>(), ElementsAre(7));
  const auto fixed = copy.fixedCopy();
  EXPECT_THROW(fixed->addObject(1), std::invalid_argument);
  EXPECT_EQ(static_cast<const VEQNumberArray&>(*fixed).VEQ_dataPointer(), numbers.data());
  EXPECT_EQ(owner.use_count(), 4);
}

}  // namespace
}  // namespace veq::number_array_test
