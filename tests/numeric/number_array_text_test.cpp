#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::number_array_text_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<double> numbersIn(std::string_view text) {
  const auto array = VEQNumberArray::initWithString(text);
  const auto values = array->values<double>();
  return {values.begin(), values.end()};
}

TEST(NumberArrayParsing, ReadsDoublesBetweenBlanksAndLineEnds) {
  EXPECT_THAT(numbersIn("1 2.5\n-3"), ElementsAre(1.0, 2.5, -3.0));
  EXPECT_THAT(numbersIn(" \t\n 1 \r\n\r\n 2\v3\f4\n"), ElementsAre(1.0, 2.0, 3.0, 4.0));
  EXPECT_THAT(numbersIn("1\xC2\xA0"
                        "2\xE2\x80\xA8"
                        "3"),
              ElementsAre(1.0, 2.0, 3.0));
}

TEST(NumberArrayParsing, AnEmptyOrBlankTextHasNoNumber) {
  EXPECT_THAT(numbersIn(""), IsEmpty());
  EXPECT_THAT(numbersIn(" \n\t \r\n"), IsEmpty());
  EXPECT_THAT(numbersIn(std::string_view()), IsEmpty());
}

TEST(NumberArrayParsing, UnderstandsSignsPointsAndExponents) {
  EXPECT_THAT(numbersIn("+1 -2 .5 5. 1e3 1E-2 -.25e+1"),
              ElementsAre(1.0, -2.0, 0.5, 5.0, 1000.0, 0.01, -2.5));
}

TEST(NumberArrayParsing, APieceReadsAsFarAsItGoes) {
  EXPECT_THAT(numbersIn("12abc 1.2.3 3e 4e+x 7,5 1-2"), ElementsAre(12.0, 1.2, 3.0, 4.0, 7.0, 1.0));
}

TEST(NumberArrayParsing, APieceThatIsNoNumberIsZero) {
  EXPECT_THAT(numbersIn("abc - + . e5 -- +-3"), ElementsAre(0, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(numbersIn(std::string_view("\0 5", 3)), ElementsAre(0.0, 5.0));
}

TEST(NumberArrayParsing, KnowsNoInfinityNoNanAndNoHexadecimal) {
  EXPECT_THAT(numbersIn("inf nan -inf infinity NaN 0x10 Nancy Info"),
              ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(NumberArrayParsing, OverflowIsInfiniteAndUnderflowZero) {
  EXPECT_THAT(numbersIn("1e999 -1e999 1e-999"), ElementsAre(kInfinity, -kInfinity, 0.0));
}

TEST(NumberArrayParsing, MakesAnEditableArrayOfDoubles) {
  const auto array = VEQNumberArray::initWithString("1");
  EXPECT_EQ(array->elementType(), ElementType::kDouble);
  EXPECT_TRUE(array->isEditable());
}

TEST(NumberArrayPieces, EachHoldsOneNumber) {
  const auto floats = VEQNumberArray::initWithString_separator_type("1\n2.5\n-3", "\n", 14);
  EXPECT_EQ(floats->elementType(), ElementType::kFloat);
  EXPECT_THAT(floats->values<float>(), ElementsAre(1.0F, 2.5F, -3.0F));
  EXPECT_THAT(VEQNumberArray::initWithString_separator_type("1.5, 2", ", ", 12)->values<double>(),
              ElementsAre(1.5, 2.0));
}

TEST(NumberArrayPieces, AnEmptyPieceIsZeroAndAnEmptyTextHasNone) {
  EXPECT_THAT(VEQNumberArray::initWithString_separator_type("1\n\n3\n", "\n", 14)->values<float>(),
              ElementsAre(1.0F, 0.0F, 3.0F, 0.0F));
  EXPECT_THAT(VEQNumberArray::initWithString_separator_type("\n", "\n", 14)->values<float>(),
              ElementsAre(0.0F, 0.0F));
  EXPECT_THAT(VEQNumberArray::initWithString_separator_type("", "\n", 14)->values<float>(),
              IsEmpty());
}

TEST(NumberArrayPieces, BlanksSeparateNothingAndHideNothing) {
  EXPECT_THAT(
      VEQNumberArray::initWithString_separator_type(" 1 2;\t3x;y", ";", 14)->values<float>(),
      ElementsAre(1.0F, 3.0F, 0.0F));
}

TEST(NumberArrayPieces, FloatsAreRoundedOnce) {
  // Just above the middle of two floats: by way of a double it would fall on the middle exactly and
  // then to the even float below.
  const auto array =
      VEQNumberArray::initWithString_separator_type("1.00000005960464477540 0.1", " ", 14);
  EXPECT_THAT(array->values<float>(), ElementsAre(1.00000011920928955078125F, 0.1F));
}

TEST(NumberArrayPieces, IntegersAreReadWholeAndClamped) {
  EXPECT_THAT(VEQNumberArray::initWithString_separator_type(
                  "-5;2.9;9223372036854775807;9223372036854775808;-9223372036854775809;x", ";", 13)
                  ->values<std::int64_t>(),
              ElementsAre(-5, 2, 9223372036854775807, 9223372036854775807,
                          std::numeric_limits<std::int64_t>::min(), 0));
}

TEST(NumberArrayPieces, UnsignedIntegersReachTheirLargestAndWrapBelowZero) {
  EXPECT_THAT(VEQNumberArray::initWithString_separator_type(
                  "18446744073709551615;18446744073709551616;+7;-1;+-3; 9x;x;-", ";", 15)
                  ->values<std::uint64_t>(),
              ElementsAre(18446744073709551615U, 18446744073709551615U, 7U, 18446744073709551615U,
                          0U, 9U, 0U, 0U));
}

TEST(NumberArrayPieces, RefuseAnUnknownTypeOrNoSeparator) {
  for (const int type : {0, 11, 16, -1, std::numeric_limits<int>::max()}) {
    EXPECT_THROW((void)VEQNumberArray::initWithString_separator_type("1", "\n", type),
                 std::invalid_argument);
  }
  EXPECT_THROW((void)VEQNumberArray::initWithString_separator_type("1", "", 14),
               std::invalid_argument);
}

TEST(NumberArrayText, JoinsTheNumbers) {
  EXPECT_EQ(VEQNumberArray::ofDoubles({1, 2.5, -0.1}).stringValueWithSeparator("\n"),
            "1\n2.5\n-0.1");
  EXPECT_EQ(VEQNumberArray::ofIntegers({-1, 0}).stringValueWithSeparator(", "), "-1, 0");
  EXPECT_EQ(VEQNumberArray::ofIndices({UINT64_MAX, 3}).stringValueWithSeparator(""),
            "184467440737095516153");
  EXPECT_EQ(VEQNumberArray().stringValueWithSeparator("\n"), "");
}

TEST(NumberArrayText, WritesFloatsAsFloats) {
  EXPECT_EQ(VEQNumberArray::ofFloats({0.1F, 16777216.0F}).stringValueWithSeparator(" "),
            "0.1 16777216");
}

TEST(NumberArrayText, ReadsBackAsTheSameNumbers) {
  const double values[] = {0.1, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, -0.0, 123456789.125};
  const auto array = VEQNumberArray::numberArrayWithDoubleArray_count(values, 6);
  const auto again = VEQNumberArray::initWithString(array->stringValueWithSeparator("\n"));
  EXPECT_THAT(again->values<double>(), testing::ElementsAreArray(values));
}

TEST(NumberArrayText, DescriptionStandsInParentheses) {
  EXPECT_EQ(VEQNumberArray::ofIntegers({1, 2, 3}).description(), "(1, 2, 3)");
  EXPECT_EQ(VEQNumberArray::ofDoubles({0.5}).description(), "(0.5)");
  EXPECT_EQ(VEQNumberArray().description(), "()");
}

TEST(NumberArrayText, StringArrayHoldsOneStringAnElement) {
  const auto names = VEQNumberArray::ofIndices({3, 5}).stringArray();
  EXPECT_THAT(names->values(), ElementsAre(PropertyValue("3"), PropertyValue("5")));
  EXPECT_TRUE(names->isEditable());
  EXPECT_EQ(VEQNumberArray().stringArray()->count(), 0U);
}

}  // namespace
}  // namespace veq::number_array_text_test
