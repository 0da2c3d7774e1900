#include "veq/numeric/vectors.hpp"

#include <gtest/gtest.h>

namespace veq::vectors_test {
namespace {

TEST(Vectors, ADefaultVectorIsZeroAndOfDoublePrecision) {
  EXPECT_EQ(VEQVector2d(), VEQVector2d(0.0, 0.0));
  EXPECT_EQ(VEQVector3d(), VEQVector3d(0.0, 0.0, 0.0));
  EXPECT_EQ(VEQVector2d().precision(), 1);
  EXPECT_EQ(VEQVector3d().precision(), 1);
}

TEST(Vectors, MadeFromFloatsIsOfSinglePrecisionAndReadAsDoubles) {
  const VEQVector3d vector = VEQVector3d::initWithXf_Yf_Zf(0.5F, -2.0F, 0.1F);
  EXPECT_EQ(vector.precision(), 0);
  EXPECT_EQ(vector.x(), 0.5);
  EXPECT_EQ(vector.y(), -2.0);
  EXPECT_EQ(vector.z(), 0.100000001490116119384765625);
}

TEST(Vectors, TextJoinsTheComponents) {
  EXPECT_EQ(VEQVector3d(1.0, -2.5, 0.1).stringValueWithSeparator(" "), "1 -2.5 0.1");
  EXPECT_EQ(VEQVector2d(3.0, 0.25).stringValueWithSeparator(", "), "3, 0.25");
  EXPECT_EQ(VEQVector2d(3.0, 4.0).stringValueWithSeparator(""), "34");
}

TEST(Vectors, EqualityLooksAtTheComponentsAlone) {
  EXPECT_EQ(VEQVector3d(1, 2, 3, 0), VEQVector3d(1, 2, 3, 1));
  EXPECT_FALSE(VEQVector3d(1, 2, 3) == VEQVector3d(1, 2, 4));
  EXPECT_FALSE(VEQVector2d(1, 2) == VEQVector2d(2, 2));
}

}  // namespace
}  // namespace veq::vectors_test
