#include "veq/numeric/property_value.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace veq::property_value_test {
namespace {

class Colour final : public PropertyObject {
 public:
  [[nodiscard]] std::string description() const override { return "a colour"; }
};

static_assert(!std::is_constructible_v<PropertyValue, std::nullptr_t>,
              "a null pointer would be taken for a text");
static_assert(!std::is_convertible_v<std::nullptr_t, PropertyValue>);
static_assert(!std::is_constructible_v<PropertyValue, int*>, "a pointer is no bool");

TEST(PropertyValue, StartsAsTheNullMarker) {
  const PropertyValue value;
  EXPECT_TRUE(value.isNull());
  EXPECT_EQ(value.number(), nullptr);
  EXPECT_EQ(value.string(), nullptr);
  EXPECT_EQ(value.vector2d(), nullptr);
  EXPECT_EQ(value.vector3d(), nullptr);
  EXPECT_EQ(value.object(), nullptr);
  EXPECT_EQ(value.text(), "<null>");
}

TEST(PropertyValue, ANumberKeepsItsKind) {
  const PropertyValue integer = 3;
  const PropertyValue single = 0.1F;
  const PropertyValue real = 2.5;
  ASSERT_NE(integer.number(), nullptr);
  EXPECT_EQ(*integer.number(), Number(3));
  EXPECT_EQ(single.number()->type(), ElementType::kFloat);
  EXPECT_EQ(real.number()->type(), ElementType::kDouble);
  EXPECT_FALSE(integer.isNull());
  EXPECT_EQ(integer.string(), nullptr);
  EXPECT_EQ(integer.text(), "3");
  EXPECT_EQ(single.text(), "0.1");
  EXPECT_EQ(real.text(), "2.5");
}

TEST(PropertyValue, ABoolIsTheIntegerZeroOrOne) {
  const PropertyValue yes = true;
  ASSERT_NE(yes.number(), nullptr);
  EXPECT_EQ(*yes.number(), Number(1));
  EXPECT_EQ(PropertyValue(false).text(), "0");
}

TEST(PropertyValue, ALiteralIsAString) {
  const PropertyValue literal = "Ada";
  ASSERT_NE(literal.string(), nullptr);
  EXPECT_EQ(*literal.string(), "Ada");
  EXPECT_EQ(literal.number(), nullptr);
  EXPECT_EQ(literal.text(), "Ada");
  EXPECT_EQ(literal, PropertyValue(std::string("Ada")));
  EXPECT_EQ(literal, PropertyValue(std::string_view("Ada")));
}

TEST(PropertyValue, AStringThatReadsLikeTheNullMarkerIsNotNull) {
  EXPECT_FALSE(PropertyValue("<null>").isNull());
  EXPECT_FALSE(PropertyValue("").isNull());
  EXPECT_NE(PropertyValue("<null>"), PropertyValue());
}

TEST(PropertyValue, VectorsStandAsTheirComponents) {
  const PropertyValue plane = VEQVector2d(1.0, 2.5);
  const PropertyValue space = VEQVector3d(1.0, 2.5, -3.0);
  ASSERT_NE(plane.vector2d(), nullptr);
  EXPECT_EQ(plane.vector3d(), nullptr);
  ASSERT_NE(space.vector3d(), nullptr);
  EXPECT_EQ(space.vector2d(), nullptr);
  EXPECT_EQ(plane.text(), "1 2.5");
  EXPECT_EQ(space.text(), "1 2.5 -3");
}

TEST(PropertyValue, AnObjectIsSharedAndDescribesItself) {
  const auto colour = std::make_shared<Colour>();
  const PropertyValue value = colour;
  const PropertyValue copy = value;
  EXPECT_EQ(value.object(), colour.get());
  EXPECT_EQ(copy.object(), colour.get());
  EXPECT_EQ(value.text(), "a colour");
  EXPECT_EQ(value, copy);
  EXPECT_NE(value, PropertyValue(std::make_shared<Colour>()));
}

TEST(PropertyValue, ANullObjectIsTheNullMarker) {
  EXPECT_TRUE(PropertyValue(Shared<Colour>()).isNull());
  EXPECT_TRUE(PropertyValue(Shared<const PropertyObject>()).isNull());
}

TEST(PropertyValue, ValuesOfDifferentKindsDiffer) {
  EXPECT_NE(PropertyValue(1), PropertyValue("1"));
  EXPECT_NE(PropertyValue(0), PropertyValue());
  EXPECT_NE(PropertyValue(VEQVector2d()), PropertyValue(VEQVector3d()));
}

}  // namespace
}  // namespace veq::property_value_test
