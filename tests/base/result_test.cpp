#include "veq/base/result.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace veq::result_test {
namespace {

Result<int> half(int number) {
  if (number % 2 != 0) return Error(ErrorKind::kArgument, "3 is odd", Place{2, 7});
  return number / 2;
}

TEST(Result, GivesItsValue) {
  const Result<int> result = half(8);
  EXPECT_TRUE(result);
  EXPECT_EQ(result.value(), 4);
}

TEST(Result, ThrowsItsErrorWhereThereIsNoValue) {
  const Result<int> result = half(3);
  EXPECT_FALSE(result);
  EXPECT_EQ(result.error().kind(), ErrorKind::kArgument);
  try {
    static_cast<void>(result.value());
    FAIL();
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "3 is odd");
    EXPECT_EQ(error.place(), (Place{2, 7}));
  }
}

TEST(Result, GivesAwayWhatCannotBeCopied) {
  Result<std::unique_ptr<std::string>> result = std::make_unique<std::string>("mine");
  EXPECT_EQ(result->get()->size(), 4U);
  EXPECT_EQ(*std::move(result).value(), "mine");
}

TEST(Result, OfNothingOnlySucceedsOrFails) {
  const Outcome done = std::monostate{};
  const Outcome failed = Error(ErrorKind::kFile, "no such file");
  EXPECT_TRUE(done);
  EXPECT_FALSE(failed);
}

}  // namespace
}  // namespace veq::result_test
