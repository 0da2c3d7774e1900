#include "veq/formats/keyed_archiver.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/hex.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::keyed_archiver_test {
namespace {

using test::fromHex;
using test::invalidArgumentText;
using test::packed;
using test::thrownText;
using test::toHex;

// The key of most entries here is "a".
constexpr const char* kMapOfA = "a1 6161 ";

std::string encoded(const VEQNumberArray& numbers) {
  VEQKeyedArchiver archiver;
  archiver.encodeNumberArray(numbers, "a");
  return toHex(archiver.bytes());
}

std::string encoded(const PropertyTable& table) {
  VEQKeyedArchiver archiver;
  archiver.encodePropertyTable(table, "a");
  return toHex(archiver.bytes());
}

// A table whose one column, "c", is this one, and what stands before it in an archive.
PropertyTable tableOf(Shared<PropertyColumn> column) {
  PropertyTable table;
  table.set("c", std::move(column));
  return table;
}
constexpr const char* kMapOfAOfC = "a1 6161 a1 6163 ";

std::string encodedValue(PropertyValue value) {
  return encoded(
      tableOf(std::make_shared<GenericArray>(std::vector<PropertyValue>{std::move(value)})));
}

std::string expectedValue(const std::string& hex) { return packed(kMapOfAOfC + ("81 " + hex)); }

TEST(KeyedArchiver, AnArchiveWithoutEntriesIsAnEmptyMap) {
  EXPECT_EQ(toHex(VEQKeyedArchiver().bytes()), "a0");
}

TEST(KeyedArchiver, EntriesKeepTheOrderOfEncoding) {
  VEQKeyedArchiver archiver;
  archiver.encodeBool(true, "b");
  archiver.encodeBool(false, "a");
  EXPECT_EQ(toHex(archiver.bytes()), packed("a2 6162 f5 6161 f4"));
}

TEST(KeyedArchiver, TheArchiveIsCompleteAfterEveryEntry) {
  VEQKeyedArchiver archiver;
  archiver.encodeBool(true, "b");
  EXPECT_EQ(toHex(archiver.bytes()), packed("a1 6162 f5"));
  archiver.encodeBool(true, "c");
  EXPECT_EQ(toHex(archiver.bytes()), packed("a2 6162 f5 6163 f5"));
}

TEST(KeyedArchiver, TwentyFourEntriesTakeAHeadOfTwoBytes) {
  VEQKeyedArchiver archiver;
  std::string expected = "b818";
  for (char key = 'a'; key < 'a' + 24; ++key) {
    archiver.encodeBool(true, std::string(1, key));
    expected += "61" + toHex(std::string(1, key)) + "f5";
  }
  EXPECT_EQ(toHex(archiver.bytes()), expected);
}

TEST(KeyedArchiver, NumberArraysAreLittleEndianTypedArrays) {
  EXPECT_EQ(encoded(VEQNumberArray::ofIndices({1, UINT64_MAX})),
            packed(kMapOfA + std::string("d847 50 0100000000000000 ffffffffffffffff")));
  EXPECT_EQ(encoded(VEQNumberArray::ofIntegers({-2})),
            packed(kMapOfA + std::string("d84f 48 feffffffffffffff")));
  EXPECT_EQ(encoded(VEQNumberArray::ofFloats({1.5F})),
            packed(kMapOfA + std::string("d855 44 0000c03f")));
  EXPECT_EQ(encoded(VEQNumberArray::ofDoubles({-2.0})),
            packed(kMapOfA + std::string("d856 48 00000000000000c0")));
  EXPECT_EQ(encoded(VEQNumberArray::ofFloats({})), packed(kMapOfA + std::string("d855 40")));
}

TEST(KeyedArchiver, LongArraysTakeTheShortestHeadThatHoldsTheirLength) {
  const auto head = [](std::uint64_t doubles) {
    return encoded(*VEQNumberArray::initWithDoubleScalar_count(0.0, doubles)).substr(6, 14);
  };
  EXPECT_EQ(head(2), packed("d856 50 0000000000").substr(0, 14));
  EXPECT_EQ(head(3), packed("d856 5818 00000000").substr(0, 14));
  EXPECT_EQ(head(32), packed("d856 590100 000000").substr(0, 14));
  EXPECT_EQ(head(8192), packed("d856 5a00010000"));
}

TEST(KeyedArchiver, ValuesOfEveryKind) {
  EXPECT_EQ(encodedValue(PropertyValue()), expectedValue("f6"));
  EXPECT_EQ(encodedValue("\xc3\xa9"), expectedValue("62 c3a9"));
  EXPECT_EQ(encodedValue(""), expectedValue("60"));
  EXPECT_EQ(encodedValue("\xff"), expectedValue("41 ff"));
  EXPECT_EQ(encodedValue(1.5F), expectedValue("fa 3fc00000"));
  EXPECT_EQ(encodedValue(1.5), expectedValue("fb 3ff8000000000000"));
  EXPECT_EQ(encodedValue(VEQVector2d(1.0, 2.0)),
            expectedValue("a3 69 707265636973696f6e 01 6178 fb3ff0000000000000"
                          "6179 fb4000000000000000"));
  EXPECT_EQ(encodedValue(VEQVector3d(1.0, 2.0, -1.0, kSinglePrecision)),
            expectedValue("a4 69 707265636973696f6e 00 6178 fb3ff0000000000000"
                          "6179 fb4000000000000000 617a fbbff0000000000000"));
}

TEST(KeyedArchiver, SignedIntegersAreIntegers) {
  EXPECT_EQ(encodedValue(0), expectedValue("00"));
  EXPECT_EQ(encodedValue(23), expectedValue("17"));
  EXPECT_EQ(encodedValue(24), expectedValue("1818"));
  EXPECT_EQ(encodedValue(255), expectedValue("18ff"));
  EXPECT_EQ(encodedValue(256), expectedValue("190100"));
  EXPECT_EQ(encodedValue(65535), expectedValue("19ffff"));
  EXPECT_EQ(encodedValue(65536), expectedValue("1a00010000"));
  EXPECT_EQ(encodedValue(4294967295), expectedValue("1affffffff"));
  EXPECT_EQ(encodedValue(std::int64_t{1} << 32), expectedValue("1b0000000100000000"));
  EXPECT_EQ(encodedValue(INT64_MAX), expectedValue("1b7fffffffffffffff"));
  EXPECT_EQ(encodedValue(-1), expectedValue("20"));
  EXPECT_EQ(encodedValue(-25), expectedValue("3818"));
  EXPECT_EQ(encodedValue(INT64_MIN), expectedValue("3b7fffffffffffffff"));
}

TEST(KeyedArchiver, UnsignedIntegersAreBignumsSoThatTheirKindSurvives) {
  EXPECT_EQ(encodedValue(5U), expectedValue("c2 48 0000000000000005"));
  EXPECT_EQ(encodedValue(UINT64_MAX), expectedValue("c2 48 ffffffffffffffff"));
}

TEST(KeyedArchiver, VectorArraysAreMapsOfTheirComponents) {
  Shared<VEQVector2dArray> plane = VEQVector2dArray::initWithSize_precision(2, kSinglePrecision);
  plane->setVector_atIndex({1.0, 2.0}, 0);
  plane->setVector_atIndex({3.0, 4.0}, 1);
  EXPECT_EQ(encoded(tableOf(plane)),
            packed(kMapOfAOfC + std::string("a3 69 707265636973696f6e 00"
                                            "6178 d856 50 000000000000f03f 0000000000000840"
                                            "6179 d856 50 0000000000000040 0000000000001040")));
  Shared<VEQVector3dArray> space = VEQVector3dArray::initWithSize_precision(1, kDoublePrecision);
  space->setVector_atIndex({1.0, 2.0, 3.0}, 0);
  EXPECT_EQ(encoded(tableOf(space)),
            packed(kMapOfAOfC + std::string("a4 69 707265636973696f6e 01"
                                            "6178 d856 48 000000000000f03f"
                                            "6179 d856 48 0000000000000040"
                                            "617a d856 48 0000000000000840")));
}

TEST(KeyedArchiver, TablesKeepTheOrderOfTheirKeys) {
  PropertyTable table;
  table.set("z", std::make_shared<VEQNumberArray>(VEQNumberArray::ofFloats({})));
  table.set("\xff", std::make_shared<GenericArray>());
  EXPECT_EQ(encoded(table), packed(kMapOfA + std::string("a2 617a d85540 41ff 80")));
  EXPECT_EQ(encoded(PropertyTable()), packed(kMapOfA + std::string("a0")));
}

TEST(KeyedArchiver, AFixedColumnIsArchivedLikeAnyOther) {
  EXPECT_EQ(encoded(tableOf(VEQNumberArray::ofFloats({1.5F}).fixedCopy())),
            packed(kMapOfAOfC + std::string("d855 44 0000c03f")));
}

TEST(KeyedArchiver, RefusesAKeyThatIsThere) {
  VEQKeyedArchiver archiver;
  archiver.encodeBool(true, "a");
  EXPECT_THROW(archiver.encodeNumberArray(VEQNumberArray(), "a"), std::invalid_argument);
  EXPECT_EQ(invalidArgumentText([&] { archiver.encodeBool(false, "a"); }),
            "The key is already in the archive.");
  EXPECT_EQ(toHex(archiver.bytes()), packed("a1 6161 f5"));
}

struct Unarchivable : PropertyObject {
  std::string description() const override { return "a stranger"; }
};

struct PointObject : PropertyObject {
  std::string description() const override { return "a place"; }
  PropertyValue archivedForm() const override { return VEQVector2d(1.0, 2.0); }
};

struct Pretender : PropertyObject {
  std::string description() const override { return "a pretender"; }
  PropertyValue archivedForm() const override { return std::make_shared<PointObject>(); }
};

TEST(KeyedArchiver, ARefusedObjectLeavesNoTrace) {
  for (const PropertyValue& value : {PropertyValue(std::make_shared<Unarchivable>()),
                                     PropertyValue(std::make_shared<Pretender>())}) {
    const PropertyTable table =
        tableOf(std::make_shared<GenericArray>(std::vector<PropertyValue>{"first", value}));
    VEQKeyedArchiver archiver;
    archiver.encodeBool(true, "b");
    EXPECT_THROW(archiver.encodePropertyTable(table, "a"), std::invalid_argument);
    EXPECT_EQ(invalidArgumentText([&] { archiver.encodePropertyTable(table, "a"); }),
              "A property cannot be archived.");
    EXPECT_EQ(toHex(archiver.bytes()), packed("a1 6162 f5"));
    archiver.encodeBool(false, "a");
    EXPECT_EQ(toHex(archiver.bytes()), packed("a2 6162 f5 6161 f4"));
  }
}

TEST(KeyedArchiver, RefusesATableWithoutAColumn) {
  EXPECT_EQ(invalidArgumentText([] { encoded(tableOf(nullptr)); }),
            "A property cannot be archived.");
}

TEST(KeyedArchiver, AnObjectIsReplacedByItsArchivedForm) {
  EXPECT_EQ(encodedValue(std::make_shared<PointObject>()), encodedValue(VEQVector2d(1.0, 2.0)));
}

TEST(KeyedArchiver, DoesNotDecode) {
  VEQKeyedArchiver archiver;
  EXPECT_EQ(thrownText<std::logic_error>([&] { static_cast<void>(archiver.decodeBool("a")); }),
            "This coder does not decode.");
  EXPECT_EQ(
      thrownText<std::logic_error>([&] { static_cast<void>(archiver.decodeNumberArray("a")); }),
      "This coder does not decode.");
  EXPECT_EQ(
      thrownText<std::logic_error>([&] { static_cast<void>(archiver.decodePropertyTable("a")); }),
      "This coder does not decode.");
}

}  // namespace
}  // namespace veq::keyed_archiver_test
