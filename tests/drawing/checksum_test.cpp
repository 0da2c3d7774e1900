#include "veq/drawing/internal/checksum.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace veq::test::checksum_test {
namespace {

TEST(Checksum, IsThatOfGzip) {
  internal::Crc32 none;
  EXPECT_EQ(none.value(), 0U);
  internal::Crc32 digits;
  digits.add("1234");
  digits.add("56789");
  EXPECT_EQ(digits.value(), 0xCBF43926U);
}

TEST(Checksum, TakesNumbersInEightBytes) {
  internal::Crc32 sum;
  sum.add(std::array<std::uint64_t, 3>{1, 2, std::uint64_t{1} << 40});
  EXPECT_EQ(sum.value(), 0xA486E053U);  // zlib.crc32(struct.pack("<3Q", 1, 2, 1 << 40))
}

}  // namespace
}  // namespace veq::test::checksum_test
