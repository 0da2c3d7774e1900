#include "veq/base/internal/entropy.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "gtest/gtest.h"

namespace veq::internal::entropy_test {
namespace {

TEST(SystemEntropy, DiffersFromCallToCall) {
  std::vector<std::uint32_t> values(8);
  std::generate(values.begin(), values.end(), systemEntropy);
  // All eight equal: one chance in 2^224.
  EXPECT_NE(std::count(values.begin(), values.end(), values.front()), 8);
}

}  // namespace
}  // namespace veq::internal::entropy_test
