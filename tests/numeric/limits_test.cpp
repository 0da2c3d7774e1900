// Counts, indices and values at and around the ends of what types hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/limits.hpp"
#include "tests/support/network_drawing.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::limits_test {
namespace {

using A = VEQNumberArray;

// Three elements of each kind.
std::vector<Shared<PropertyColumn>> columns() {
  return {std::make_shared<A>(A::ofDoubles({1, 2, 3})),
          std::make_shared<A>(A::ofIndices({1, 2, 3})),
          std::make_shared<A>(A::ofIntegers({1, 2, 3})),
          std::make_shared<A>(A::ofFloats({1, 2, 3})),
          GenericArray::nullFilled(3),
          VEQVector2dArray::initWithSize_precision(3, kDoublePrecision),
          VEQVector3dArray::initWithSize_precision(3, kDoublePrecision)};
}

TEST(NumericLimits, IndicesFarBeyondAreOutOfRangeInEveryColumn) {
  for (const auto& column : columns()) {
    const std::vector<std::string> before = texts(*column);
    for (const std::uint64_t index : indicesFarBeyond()) {
      EXPECT_THROW(static_cast<void>(column->objectAtIndex(index)), std::out_of_range) << index;
      EXPECT_THROW(column->replaceObjectAtIndex_withObject(index, PropertyValue()),
                   std::out_of_range)
          << index;
      EXPECT_THROW(static_cast<void>(column->subarrayWithIndices(A::ofIndices({0, index}))),
                   std::out_of_range)
          << index;
    }
    // As signed and as floating numbers, which round to a power of two at most.
    for (const std::int64_t index : {INT64_MIN, std::int64_t{-1}, INT64_MAX}) {
      EXPECT_THROW(static_cast<void>(column->subarrayWithIndices(A::ofIntegers({index}))),
                   std::out_of_range);
      EXPECT_THROW(static_cast<void>(
                       column->subarrayWithIndices(A::ofDoubles({static_cast<double>(index)}))),
                   std::out_of_range);
    }
    EXPECT_EQ(texts(*column), before);
  }
}

TEST(NumericLimits, SizesBeyondMemoryAreBadAllocationsThatChangeNothing) {
  for (const auto& column : columns()) {
    const std::vector<std::string> before = texts(*column);
    for (const std::uint64_t size : sizesBeyondMemory()) {
      EXPECT_THROW(column->reserve(size), std::bad_alloc) << size;
      EXPECT_THROW(column->appendUnset(size), std::bad_alloc) << size;
    }
    EXPECT_EQ(texts(*column), before);
  }
  for (const std::uint64_t size : sizesBeyondMemory()) {
    EXPECT_THROW(static_cast<void>(A::initWithDoubleScalar_count(1, size)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(A::initWithIntegerScalar_count(1, size)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(A::initUnsignedIntegerArrayWithCapacity(size)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(A::numberArrayWithNumber_count(1U, size)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(GenericArray::nullFilled(size)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(VEQVector2dArray::initWithSize_precision(size, 1)),
                 std::bad_alloc);
    EXPECT_THROW(static_cast<void>(VEQVector3dArray::initWithSize_precision(size, 1)),
                 std::bad_alloc);
    const double one = 1;
    std::uint64_t buffer = 7;
    EXPECT_THROW(A::ofDoubles({one}).getUnsignedIntegerValues_count(&buffer, size),
                 std::out_of_range);
    EXPECT_EQ(buffer, 7U);
  }
}

// Each element type gives each value to each other one by the rules of conversion, none of which is
// undefined.
TEST(NumericLimits, UnusualValuesGoFromEveryTypeToEveryOther) {
  const double infinity = std::numeric_limits<double>::infinity();
  const auto doubles =
      A::ofDoubles({9223372036854775807.0, 18446744073709551615.0, -0.0, 5e-324, infinity,
                    -infinity, std::nan(""), 4294967296.5, -9223372036854775809.0});
  std::vector<std::int64_t> integers(9);
  doubles.getIntegerValues_count(integers.data(), 9);
  EXPECT_THAT(integers, testing::ElementsAre(INT64_MAX, INT64_MAX, 0, 0, INT64_MAX, INT64_MIN,
                                             INT64_MIN, 4294967296, INT64_MIN));
  std::vector<std::uint64_t> indices(9);
  doubles.getUnsignedIntegerValues_count(indices.data(), 9);
  const std::uint64_t kTwoTo63 = std::uint64_t{1} << 63;
  EXPECT_THAT(indices, testing::ElementsAre(kTwoTo63, UINT64_MAX, 0U, 0U, UINT64_MAX, kTwoTo63,
                                            kTwoTo63, 4294967296U, kTwoTo63));
  std::vector<float> floats(9);
  doubles.getFloatValues(floats.data());
  EXPECT_EQ(floats[0], 9223372036854775808.0F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(floats[2]), 0x80000000U);
  EXPECT_EQ(floats[3], 0.0F);
  EXPECT_TRUE(std::isinf(floats[4]) && std::isinf(floats[5]) && std::isnan(floats[6]));

  // Stored one by one into an array of each type.
  for (const auto& column : columns()) {
    if (column->kind() != PropertyColumn::Kind::kNumber) continue;
    for (std::uint64_t i = 0; i < 9; ++i) {
      column->replaceObjectAtIndex_withObject(1, doubles.objectAtIndex(i));
    }
    EXPECT_EQ(column->objectAtIndex(1).number()->as<std::int64_t>(), INT64_MIN);
  }
}

TEST(NumericLimits, UnusualValuesAreWrittenAndReadAsTheyAre) {
  const auto values = A::ofDoubles({-0.0, 5e-324, 1.7976931348623157e308, 9007199254740993.0});
  EXPECT_EQ(values.description(), "(-0, 5e-324, 1.7976931348623157e+308, 9007199254740992)");
  const auto read = A::initWithString("-0 5e-324 1.7976931348623157e308 1e309 -1e309 1e-400 nan");
  const auto back = read->values<double>();
  EXPECT_TRUE(back[0] == 0 && std::signbit(back[0]));
  EXPECT_EQ(back[1], 5e-324);
  EXPECT_EQ(back[2], 1.7976931348623157e308);
  EXPECT_EQ(back[3], std::numeric_limits<double>::infinity());
  EXPECT_EQ(back[4], -std::numeric_limits<double>::infinity());
  EXPECT_EQ(back[5], 0);
  EXPECT_EQ(back[6], 0);
  const std::string edges =
      "9223372036854775807;9223372036854775808;18446744073709551615;"
      "18446744073709551616;-9223372036854775808;-9223372036854775809";
  EXPECT_EQ(A::initWithString_separator_type(edges, ";", 13)->description(),
            "(9223372036854775807, 9223372036854775807, 9223372036854775807, 9223372036854775807, "
            "-9223372036854775808, -9223372036854775808)");
  EXPECT_EQ(A::initWithString_separator_type(edges, ";", 15)->description(),
            "(9223372036854775807, 9223372036854775808, 18446744073709551615, "
            "18446744073709551615, 9223372036854775808, 9223372036854775808)");
}

}  // namespace
}  // namespace veq::test::limits_test
