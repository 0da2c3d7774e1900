#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include "tests/support/hex.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/formats/internal/cbor_reader.hpp"
#include "veq/formats/internal/property_cbor.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::keyed_unarchiver_test {
namespace {

using test::fromHex;
using test::thrownText;

// The key of most entries here is "a", and that of columns "c".
constexpr const char* kMapOfA = "a1 6161 ";
constexpr const char* kMapOfAOfC = "a1 6161 a1 6163 ";

Shared<PropertyColumn> decodedColumn(const std::string& hex) {
  const std::string bytes = fromHex(kMapOfAOfC + hex);
  VEQKeyedUnarchiver unarchiver(bytes);
  EXPECT_TRUE(unarchiver.isValid()) << hex;
  const auto table = unarchiver.decodePropertyTable("a");
  return table ? *table->find("c") : nullptr;
}

PropertyValue decodedValue(const std::string& hex) {
  const Shared<PropertyColumn> column = decodedColumn("81 " + hex);
  return column ? column->objectAtIndex(0) : PropertyValue("nothing");
}

bool isValid(const std::string& bytes) { return VEQKeyedUnarchiver(bytes).isValid(); }

TEST(KeyedUnarchiver, DoesNotEncode) {
  VEQKeyedUnarchiver unarchiver("\xa0");
  EXPECT_EQ(thrownText<std::logic_error>([&] { unarchiver.encodeBool(true, "a"); }),
            "This coder does not encode.");
  EXPECT_EQ(
      thrownText<std::logic_error>([&] { unarchiver.encodeNumberArray(VEQNumberArray(), "a"); }),
      "This coder does not encode.");
  EXPECT_EQ(
      thrownText<std::logic_error>([&] { unarchiver.encodePropertyTable(PropertyTable(), "a"); }),
      "This coder does not encode.");
}

TEST(KeyedUnarchiver, FindsEntriesInAnyOrderAndMoreThanOnce) {
  const std::string bytes = fromHex("a3 6162 f5 6161 f4 6163 d855 44 0000c03f");
  VEQKeyedUnarchiver unarchiver(bytes);
  EXPECT_TRUE(unarchiver.isValid());
  EXPECT_EQ(unarchiver.decodeBool("a"), false);
  EXPECT_EQ(unarchiver.decodeBool("b"), true);
  EXPECT_EQ(unarchiver.decodeBool("b"), true);
  const auto floats = unarchiver.decodeNumberArray("c");
  ASSERT_TRUE(floats);
  EXPECT_EQ(floats->elementType(), ElementType::kFloat);
  EXPECT_EQ(floats->description(), "(1.5)");
  EXPECT_TRUE(floats->isEditable());
}

TEST(KeyedUnarchiver, AnEntryOfAnotherTypeOrNoneGivesNothing) {
  const std::string bytes = fromHex("a4 6162 f5 6174 a0 6161 d85540 6169 01");
  VEQKeyedUnarchiver unarchiver(bytes);
  ASSERT_TRUE(unarchiver.isValid());
  for (const char* key : {"t", "a", "i", "none", ""}) {
    EXPECT_EQ(unarchiver.decodeBool(key), std::nullopt) << key;
  }
  for (const char* key : {"t", "b", "i", "none", ""}) {
    EXPECT_EQ(unarchiver.decodeNumberArray(key), nullptr) << key;
  }
  for (const char* key : {"a", "b", "i", "none", ""}) {
    EXPECT_FALSE(unarchiver.decodePropertyTable(key)) << key;
  }
}

TEST(KeyedUnarchiver, SkipsEntriesThatItDoesNotKnow) {
  for (const char* value :
       {"01", "20", "f7", "f97e00", "f8ff", "c0 60", "82 01 82 02 03", "a1 01 81 a0",
        "d9ffff d855 41 00", "5b0000000000000001 00", "7801 61", "1b0000000000000000"}) {
    const std::string bytes = fromHex("a2 6175 " + std::string(value) + " 6162 f5");
    VEQKeyedUnarchiver unarchiver(bytes);
    EXPECT_EQ(unarchiver.decodeBool("b"), true) << value;
  }
}

TEST(KeyedUnarchiver, BytesThatAreNoArchiveHoldNothing) {
  const char* const kBroken[] = {
      "",  // no byte
      "80",
      "01",
      "60",
      "f5",
      "f6",  // no map
      "a1",
      "a1 61",
      "a1 6161",  // cut off
      "a1 6161 18",
      "a1 6161 d855",   //
      "a1 6161 f5 00",  // a byte too many
      "bf ff",
      "bf 6161 f5 ff",  // indefinite lengths
      "a1 6161 5f ff",
      "a1 6161 9f ff",
      "a1 6161 bf ff",
      "a1 6161 ff",
      "a1 6161 1c",
      "a1 6161 fe",
      "ac",                  // reserved or cut off
      "a1 6161 f814",        // a simple value that has a shorter form
      "a2 6161 f5 6161 f5",  // a key twice
      "a2 6161 f5 4161 f5",  // also in its other form
      "a1 01 f5",
      "a1 f6 f5",                    // keys that are no strings
      "a1 61ff f5",                  // text that is no UTF-8
      "a1 6161 9bffffffffffffffff",  // more items than bytes
      "a1 6161 bb8000000000000000 00",
      "bbffffffffffffffff",
      "a1 6161 5bffffffffffffffff 00",
      "a1 7bffffffffffffffff 61",
      "a1 6161 9a00010000 00",
  };
  for (const char* hex : kBroken) {
    const std::string bytes = fromHex(hex);
    VEQKeyedUnarchiver unarchiver(bytes);
    EXPECT_FALSE(unarchiver.isValid()) << hex;
    EXPECT_EQ(unarchiver.decodeBool("a"), std::nullopt) << hex;
  }
}

TEST(KeyedUnarchiver, NestingIsBounded) {
  // 15 arrays around an item are 16 levels.
  const std::string key = fromHex(kMapOfA);
  EXPECT_TRUE(isValid(key + std::string(15, '\x81') + '\0'));
  EXPECT_FALSE(isValid(key + std::string(16, '\x81') + '\0'));
  EXPECT_FALSE(isValid(key + std::string(1000000, '\x81') + '\0'));
  EXPECT_FALSE(isValid(key + std::string(1000000, '\xc1') + '\0'));
}

TEST(KeyedUnarchiver, MalformedNumberArraysGiveNothing) {
  for (const char* hex :
       {"d847 47 00000000000000", "d855 43 000000", "d843 48 0000000000000000", "d855 64 00000000",
        "d855 84 00000000", "d855 00", "44 00000000", "d855 d855 44 00000000"}) {
    const std::string bytes = fromHex(kMapOfA + std::string(hex));
    VEQKeyedUnarchiver unarchiver(bytes);
    EXPECT_TRUE(unarchiver.isValid()) << hex;
    EXPECT_EQ(unarchiver.decodeNumberArray("a"), nullptr) << hex;
  }
}

TEST(KeyedUnarchiver, ReadsNumbersOfEveryKind) {
  const auto expectNumber = [](const std::string& hex, Number expected) {
    EXPECT_EQ(decodedValue(hex), PropertyValue(expected)) << hex;
  };
  expectNumber("05", 5);
  expectNumber("1805", 5);
  expectNumber("24", -5);
  expectNumber("1b7fffffffffffffff", INT64_MAX);
  expectNumber("3b7fffffffffffffff", INT64_MIN);
  expectNumber("1b8000000000000000", std::uint64_t{1} << 63);
  expectNumber("c2 48 0000000000000005", 5U);
  expectNumber("c2 48 ffffffffffffffff", UINT64_MAX);
  expectNumber("c2 41 05", 5U);
  expectNumber("c2 40", 0U);
  expectNumber("fa 3fc00000", 1.5F);
  expectNumber("fb 3ff8000000000000", 1.5);
}

TEST(KeyedUnarchiver, FloatsKeepTheirBits) {
  EXPECT_TRUE(std::signbit(decodedValue("fa 80000000").number()->as<float>()));
  EXPECT_TRUE(std::isnan(decodedValue("fb 7ff8000000000000").number()->as<double>()));
  EXPECT_EQ(decodedValue("fa ff800000"), PropertyValue(-std::numeric_limits<float>::infinity()));
  EXPECT_EQ(decodedValue("fa 00000001"), PropertyValue(std::numeric_limits<float>::denorm_min()));
}

TEST(KeyedUnarchiver, ReadsTheOtherValues) {
  EXPECT_EQ(decodedValue("f6"), PropertyValue());
  EXPECT_EQ(decodedValue("62 c3a9"), PropertyValue("\xc3\xa9"));
  EXPECT_EQ(decodedValue("41 ff"), PropertyValue("\xff"));
  EXPECT_EQ(decodedValue("60"), PropertyValue(""));
  const PropertyValue plane =
      decodedValue("a3 6179 fb4000000000000000 69 707265636973696f6e 00 6178 fb3ff0000000000000");
  EXPECT_EQ(plane, PropertyValue(VEQVector2d(1.0, 2.0)));
  EXPECT_EQ(plane.vector2d()->precision(), kSinglePrecision);
  const PropertyValue space = decodedValue(
      "a4 69 707265636973696f6e 26 6178 fb3ff0000000000000 6179 fb4000000000000000"
      "617a fbbff0000000000000");
  EXPECT_EQ(space, PropertyValue(VEQVector3d(1.0, 2.0, -1.0)));
  EXPECT_EQ(space.vector3d()->precision(), -7);
}

TEST(KeyedUnarchiver, ReadsColumnsOfEveryKind) {
  const Shared<PropertyColumn> numbers = decodedColumn("d84f 48 feffffffffffffff");
  ASSERT_TRUE(numbers);
  EXPECT_EQ(numbers->kind(), PropertyColumn::Kind::kNumber);
  EXPECT_EQ(numbers->objectAtIndex(0), PropertyValue(-2));
  const Shared<PropertyColumn> generic = decodedColumn("82 f6 05");
  ASSERT_TRUE(generic);
  EXPECT_EQ(generic->kind(), PropertyColumn::Kind::kGeneric);
  EXPECT_EQ(generic->count(), 2U);
  const Shared<PropertyColumn> plane = decodedColumn(
      "a3 69 707265636973696f6e 00 6178 d856 50 000000000000f03f 0000000000000840"
      "6179 d856 50 0000000000000040 0000000000001040");
  ASSERT_TRUE(plane);
  EXPECT_EQ(plane->kind(), PropertyColumn::Kind::kVector2d);
  EXPECT_EQ(static_cast<const VEQVector2dArray&>(*plane).precision(), kSinglePrecision);
  EXPECT_EQ(plane->objectAtIndex(1), PropertyValue(VEQVector2d(3.0, 4.0)));
  const Shared<PropertyColumn> space = decodedColumn(
      "a4 617a d856 48 0000000000000840 6178 d856 48 000000000000f03f"
      "6179 d856 48 0000000000000040 69 707265636973696f6e 01");
  ASSERT_TRUE(space);
  EXPECT_EQ(space->kind(), PropertyColumn::Kind::kVector3d);
  EXPECT_EQ(space->objectAtIndex(0), PropertyValue(VEQVector3d(1.0, 2.0, 3.0)));
}

TEST(KeyedUnarchiver, MalformedPropertiesGiveNothing) {
  for (const char* hex : {
           "05",
           "60",
           "f6",
           "f5",  // no columns
           "81 f5",
           "81 f7",
           "81 f93c00",
           "81 80",  // no values
           "81 61ff",
           "81 c249 000000000000000005",
           "81 c26105",
           "81 c341 05",
           "81 3b8000000000000000",
           "81 d85540",
           "a0",
           "a1 6178 d85640",
           "81 a0",                       // no vectors
           "a2 6178 d85640 6179 d85640",  // no precision
           "a3 6178 d85640 6179 d85640 617a d85640",
           "a3 69 707265636973696f6e 01 6178 d85640 617a d85640",
           "a3 69 707265636973696f6e 01 6178 d85640 6178 d85640",
           "a3 69 707265636973696f6e 01 69 707265636973696f6e 01 6179 d85640",
           "a3 69 707265636973696f6e f6 6178 d85640 6179 d85640",
           "a3 69 707265636973696f6e 1a80000000 6178 d85640 6179 d85640",
           "a3 69 707265636973696f6e 3a80000000 6178 d85640 6179 d85640",
           "a5 69 707265636973696f6e 01 6178 d85640 6179 d85640 617a d85640 6177 d85640",
           "a3 69 707265636973696f6e c240 6178 d85640 6179 d85640",
           "a3 69 707265636973696f6e 01 6178 d85540 6179 d85640",  // floats
           "a3 69 707265636973696f6e 01 6178 d85640 6179 d85648 0000000000000000",
           "a3 01 01 6178 d85640 6179 d85640",
           "81 a3 69 707265636973696f6e 01 6178 fb3ff0000000000000 6179 fa3fc00000",
           "81 a3 69 707265636973696f6e 01 6178 fb3ff0000000000000 6179 01",
           "81 a3 69 707265636973696f6e 01 6178 d85640 6179 d85640",
       }) {
    const std::string bytes = fromHex(kMapOfAOfC + std::string(hex));
    VEQKeyedUnarchiver unarchiver(bytes);
    EXPECT_TRUE(unarchiver.isValid()) << hex;
    EXPECT_FALSE(unarchiver.decodePropertyTable("a")) << hex;
  }
}

// No unarchiver shows one, as it skips whole entries first.
TEST(CborReader, PropertiesThatEndInTheMiddleGiveNothing) {
  for (const char* hex : {
           "",
           "a1 6163",        // no column
           "a1 6163 81 82",  // no value
           "a1 6163 81 c2",  // no bytes of a number
           "a1 6163 d856",   // no bytes of numbers
           "a1 6163 a3 6178 6179 6179",
           "a1 6163 a3 6178 d85640 6179 d85640 6170",
           "a1 6163 81 a3 6178 fb3ff0000000000000 6179",
           "a1 6163 a3 6178 d85640 6179 d85640 69 707265636973696f6e",
           "a1 6163 a3 69 707265636973696f6e 01 6178 d85640 6179",
           "a1 6163 81 a3 69 707265636973696f6e 01 6178 fb3ff0000000000000 6179",
       }) {
    const std::string bytes = fromHex(hex);
    internal::CborReader in(bytes);
    EXPECT_FALSE(internal::readTable(in)) << hex;
  }
}

TEST(KeyedUnarchiver, ATableWithAKeyTwiceGivesNothing) {
  for (const char* hex : {"a2 6163 80 6163 80", "a2 6163 80 4163 80", "a1 01 80", "a1 61ff 80"}) {
    const std::string bytes = fromHex(kMapOfA + std::string(hex));
    VEQKeyedUnarchiver unarchiver(bytes);
    EXPECT_TRUE(unarchiver.isValid()) << hex;
    EXPECT_FALSE(unarchiver.decodePropertyTable("a")) << hex;
  }
}

}  // namespace
}  // namespace veq::keyed_unarchiver_test
