#include "veq/numeric/vector_arrays.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::vector_arrays_test {
namespace {

using testing::ElementsAre;

std::vector<VEQVector3d> vectorsIn(const VEQVector3dArray& array) {
  std::vector<VEQVector3d> result;
  for (std::uint64_t index = 0; index < array.count(); ++index) {
    result.push_back(array.vectorAtIndex(index));
  }
  return result;
}

std::vector<VEQVector3d> vectorsIn(std::string_view text) {
  return vectorsIn(*VEQVector3dArray::initWithString(text));
}

TEST(VectorArrays, StartAsZeroVectorsOfThePrecisionAskedFor) {
  const auto plane = VEQVector2dArray::initWithSize_precision(2, kSinglePrecision);
  EXPECT_EQ(plane->count(), 2U);
  EXPECT_EQ(plane->precision(), 0);
  EXPECT_EQ(plane->vectorAtIndex(1), VEQVector2d(0, 0));
  EXPECT_EQ(plane->vectorAtIndex(1).precision(), 0);
  const auto space = VEQVector3dArray::initWithSize_precision(2, 1);
  EXPECT_EQ(space->count(), 2U);
  EXPECT_EQ(space->precision(), 1);
  EXPECT_EQ(space->vectorAtIndex(1), VEQVector3d(0, 0, 0));
  EXPECT_EQ(VEQVector3dArray::initWithSize_precision(0, 1)->count(), 0U);
}

TEST(VectorArrays, SizesThatNoMemoryHoldsAreBadAllocations) {
  const double one = 1.0;
  for (const std::uint64_t count : {UINT64_MAX, std::uint64_t{1} << 63}) {
    EXPECT_THROW((void)VEQVector2dArray::initWithSize_precision(count, 1), std::bad_alloc);
    EXPECT_THROW((void)VEQVector3dArray::initWithSize_precision(count, 1), std::bad_alloc);
    EXPECT_THROW((void)VEQVector3dArray::initWithXd_Yd_Zd_count(&one, &one, &one, count),
                 std::bad_alloc);
  }
}

TEST(VectorArrays, StoreAVectorAtAnIndex) {
  const auto plane = VEQVector2dArray::initWithSize_precision(2, 1);
  plane->setVector_atIndex({1, 2}, 1);
  EXPECT_EQ(plane->vectorAtIndex(0), VEQVector2d(0, 0));
  EXPECT_EQ(plane->vectorAtIndex(1), VEQVector2d(1, 2));
  const auto space = VEQVector3dArray::initWithSize_precision(2, 1);
  space->setVector_atIndex({1, 2, 3}, 0);
  EXPECT_THAT(vectorsIn(*space), ElementsAre(VEQVector3d(1, 2, 3), VEQVector3d(0, 0, 0)));
}

TEST(VectorArrays, PastTheEndIsOutOfRange) {
  const auto plane = VEQVector2dArray::initWithSize_precision(1, 1);
  const auto space = VEQVector3dArray::initWithSize_precision(1, 1);
  for (const std::uint64_t index : {std::uint64_t{1}, UINT64_MAX}) {
    EXPECT_THROW((void)plane->vectorAtIndex(index), std::out_of_range);
    EXPECT_THROW((void)space->vectorAtIndex(index), std::out_of_range);
    EXPECT_THROW(plane->setVector_atIndex({1, 2}, index), std::out_of_range);
    EXPECT_THROW(space->setVector_atIndex({1, 2, 3}, index), std::out_of_range);
  }
}

TEST(VectorArrays, AFixedCopyTakesNoVector) {
  const auto plane = VEQVector2dArray::initWithSize_precision(1, 1)->fixedCopy();
  const auto space = VEQVector3dArray::initWithSize_precision(1, 1)->fixedCopy();
  EXPECT_THROW(plane->setVector_atIndex({1, 2}, 0), std::invalid_argument);
  EXPECT_THROW(space->setVector_atIndex({1, 2, 3}, 0), std::invalid_argument);
  EXPECT_EQ(plane->vectorAtIndex(0), VEQVector2d(0, 0));
  EXPECT_EQ(space->vectorAtIndex(0), VEQVector3d(0, 0, 0));
}

TEST(VectorArrays, PrecisionFollowsCopiesAndSubarrays) {
  const auto plane = VEQVector2dArray::initWithSize_precision(1, kSinglePrecision);
  const auto space = VEQVector3dArray::initWithSize_precision(1, kSinglePrecision);
  const VEQNumberArray first = VEQNumberArray::ofIndices({0});
  EXPECT_EQ(plane->editableCopy()->precision(), 0);
  EXPECT_EQ(plane->subarrayWithIndices(first)->precision(), 0);
  EXPECT_EQ(space->fixedCopy()->precision(), 0);
  EXPECT_EQ(space->subarrayWithIndices(first)->precision(), 0);
}

TEST(VectorArrays, TextJoinsVectorsAndComponents) {
  const auto plane = VEQVector2dArray::initWithSize_precision(2, 1);
  plane->setVector_atIndex({0.1, -2}, 1);
  EXPECT_EQ(plane->stringValueWithVectorSeparator_elementsSeparator("\n", " "), "0 0\n0.1 -2");
  const auto space = VEQVector3dArray::initWithString("1 2 3; 4.5 0 -1");
  EXPECT_EQ(space->stringValueWithVectorSeparator_elementsSeparator("\n", " "), "1 2 3\n4.5 0 -1");
  EXPECT_EQ(space->stringValueWithVectorSeparator_elementsSeparator("; ", ","), "1,2,3; 4.5,0,-1");
  EXPECT_EQ(VEQVector3dArray().stringValueWithVectorSeparator_elementsSeparator("\n", " "), "");
}

TEST(VectorArrayParsing, ReadsVectorsBetweenSemicolons) {
  EXPECT_THAT(vectorsIn("1 2 3; -4 5.5 6e1"),
              ElementsAre(VEQVector3d(1, 2, 3), VEQVector3d(-4, 5.5, 60)));
  EXPECT_THAT(vectorsIn("\n 1\t2\n3 ;4 5 6"),
              ElementsAre(VEQVector3d(1, 2, 3), VEQVector3d(4, 5, 6)));
}

TEST(VectorArrayParsing, MissingComponentsAreZeroAndFurtherOnesIgnored) {
  EXPECT_THAT(vectorsIn("1 2; 01 2; 0"),
              ElementsAre(VEQVector3d(1, 2, 0), VEQVector3d(1, 2, 0), VEQVector3d(0, 0, 0)));
  EXPECT_THAT(vectorsIn("1 2 3 4 5"), ElementsAre(VEQVector3d(1, 2, 3)));
}

TEST(VectorArrayParsing, NothingBehindTheLastSemicolonIsNoVector) {
  EXPECT_THAT(vectorsIn("1 2 3;"), ElementsAre(VEQVector3d(1, 2, 3)));
  EXPECT_THAT(vectorsIn("1 2 3; \n"), ElementsAre(VEQVector3d(1, 2, 3)));
  EXPECT_THAT(vectorsIn(""), ElementsAre());
  EXPECT_THAT(vectorsIn(" \n "), ElementsAre());
}

TEST(VectorArrayParsing, AnEmptyPieceInTheMiddleIsTheZeroVector) {
  EXPECT_THAT(vectorsIn("1 2 3;;4 5 6"),
              ElementsAre(VEQVector3d(1, 2, 3), VEQVector3d(0, 0, 0), VEQVector3d(4, 5, 6)));
  EXPECT_THAT(vectorsIn(";"), ElementsAre(VEQVector3d(0, 0, 0)));
}

TEST(VectorArrayParsing, AMalformedComponentReadsAsFarAsItGoes) {
  EXPECT_THAT(vectorsIn("1x y 3"), ElementsAre(VEQVector3d(1, 0, 3)));
  EXPECT_THAT(vectorsIn("x"), ElementsAre(VEQVector3d(0, 0, 0)));
}

TEST(VectorArrayCopies, OfNoArrayAreEmpty) {
  EXPECT_EQ(VEQVector3dArray::initWithArray(nullptr)->count(), 0U);
}

TEST(VectorArrayCopies, OfAVectorArrayHaveTheirOwnStorage) {
  const auto original = VEQVector3dArray::initWithString("1 2 3");
  const auto copy = VEQVector3dArray::initWithArray(original->fixedCopy().get());
  EXPECT_TRUE(copy->isEditable());
  copy->setVector_atIndex({9, 9, 9}, 0);
  EXPECT_EQ(original->vectorAtIndex(0), VEQVector3d(1, 2, 3));
}

TEST(VectorArrayCopies, TakeVectorsFromAGenericArray) {
  const GenericArray vectors({VEQVector3d(1, 2, 3), PropertyValue()});
  EXPECT_THAT(vectorsIn(*VEQVector3dArray::initWithArray(&vectors)),
              ElementsAre(VEQVector3d(1, 2, 3), VEQVector3d(0, 0, 0)));
}

TEST(VectorArrayCopies, RefuseWhatIsNo3dVector) {
  const GenericArray mixed({VEQVector3d(1, 2, 3), VEQVector2d(1, 2)});
  EXPECT_THROW((void)VEQVector3dArray::initWithArray(&mixed), std::invalid_argument);
  const VEQNumberArray numbers = VEQNumberArray::ofDoubles({1});
  EXPECT_THROW((void)VEQVector3dArray::initWithArray(&numbers), std::invalid_argument);
}

TEST(VectorArrayComponents, AreCopiedFromThreeBuffers) {
  double x[] = {1, 4};
  const double y[] = {2, 5};
  const double z[] = {3, 6};
  const auto array = VEQVector3dArray::initWithXd_Yd_Zd_count(x, y, z, 2);
  x[0] = 9;
  EXPECT_THAT(vectorsIn(*array), ElementsAre(VEQVector3d(1, 2, 3), VEQVector3d(4, 5, 6)));
  EXPECT_EQ(VEQVector3dArray::initWithXd_Yd_Zd_count(nullptr, nullptr, nullptr, 0)->count(), 0U);
}

TEST(VectorArrayComponents, AreWritableInPlace) {
  const auto array = VEQVector3dArray::initWithSize_precision(2, 1);
  array->xd()[1] = 1;
  array->yd()[1] = 2;
  array->zd()[1] = 3;
  EXPECT_EQ(array->vectorAtIndex(1), VEQVector3d(1, 2, 3));
  EXPECT_THAT(array->xs(), ElementsAre(0, 1));
  EXPECT_THAT(array->ys(), ElementsAre(0, 2));
  EXPECT_THAT(array->zs(), ElementsAre(0, 3));
}

TEST(VectorArrayComponents, StayWhereTheyAreWithinReservedRoom) {
  const auto array = VEQVector3dArray::initWithSize_precision(1, 1);
  array->reserve(50);
  const double* const x = array->xd();
  const double* const z = array->zd();
  array->appendUnset(50);
  EXPECT_EQ(array->xd(), x);
  EXPECT_EQ(array->zd(), z);
}

}  // namespace
}  // namespace veq::vector_arrays_test
