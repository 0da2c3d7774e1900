#include <gtest/gtest.h>

#include "veq/base/encodings.hpp"

namespace veq::test::public_encodings_test {
namespace {

TEST(PublicEncodings, TellUtf8FromOtherBytes) {
  EXPECT_TRUE(isUtf8(""));
  EXPECT_TRUE(isUtf8("caf\xc3\xa9"));
  EXPECT_FALSE(isUtf8("caf\xe9"));
  EXPECT_FALSE(isUtf8("\xed\xa0\x80"));  // a surrogate
}

}  // namespace
}  // namespace veq::test::public_encodings_test
