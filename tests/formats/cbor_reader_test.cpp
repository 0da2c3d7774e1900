#include "veq/formats/internal/cbor_reader.hpp"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/hex.hpp"

namespace veq::test::cbor_reader_test {
namespace {

using internal::CborReader;

// A map of 100 entries (b8 64) before so many bytes, each of which could be an item.
bool acceptsMapBefore(std::size_t bytes) {
  const std::string archive = fromHex("b864") + std::string(bytes, '\0');
  return CborReader(archive).readHead().has_value();
}

TEST(CborReader, AMapNeedsTwoBytesForEachEntry) {
  EXPECT_TRUE(acceptsMapBefore(200));
  EXPECT_FALSE(acceptsMapBefore(199));
  EXPECT_FALSE(acceptsMapBefore(100));
}

// Twice such a count is 0 in 64 bits, an empty map that could be skipped.
TEST(CborReader, AMapOfHalfOfAllCountsIsRefused) {
  const std::string archive = fromHex("bb 8000000000000000") + "and what follows";
  EXPECT_FALSE(CborReader(archive).readHead().has_value());
  EXPECT_FALSE(CborReader(archive).skipItem());
}

}  // namespace
}  // namespace veq::test::cbor_reader_test
