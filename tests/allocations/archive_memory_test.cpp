// How much memory an archive can make its reader ask for.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/archives.hpp"
#include "tests/support/failing_allocation.hpp"
#include "tests/support/hex.hpp"
#include "veq/formats/keyed_archiver.hpp"

namespace veq::test::archive_memory_test {
namespace {

constexpr std::size_t kMany = 20000;

std::string repeated(const std::string& bytes, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += bytes;
  return result;
}

std::string count4(std::size_t count) {
  std::string bytes;
  for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(count >> shift);
  return bytes;
}

// Texts of two bytes, all different.
std::string key(std::size_t number) {
  std::string bytes = fromHex("42");
  return bytes + static_cast<char>(number >> 8) + static_cast<char>(number);
}

// An archive of one entry under "k".
std::string archiveOf(const std::string& value) { return fromHex("a1 61") + "k" + value; }

// Takes everything out of an archive, and gives the bytes that this asked for.
std::uint64_t bytesAskedForBy(const std::string& archive) {
  const std::uint64_t before = FailingAllocation::allocatedBytes();
  VEQKeyedUnarchiver unarchiver(archive);
  static_cast<void>(unarchiver.decodeBool("k"));
  static_cast<void>(unarchiver.decodeNumberArray("k"));
  static_cast<void>(unarchiver.decodePropertyTable("k"));
  return FailingAllocation::allocatedBytes() - before;
}

struct Case {
  const char* name;
  std::string archive;
};

std::vector<Case> cases() {
  std::string distinctKeys;
  std::string columns;
  for (std::size_t i = 0; i < kMany; ++i) {
    distinctKeys += key(i) + fromHex("f6");
    columns += key(i) + fromHex("80");
  }
  const std::string nulls = fromHex("9a") + count4(kMany) + repeated(fromHex("f6"), kMany);
  const std::string vectors =
      fromHex("9a") + count4(kMany) +
      repeated(fromHex("a2 61") + "x" + fromHex("00 61") + "y" + fromHex("00"), kMany);
  return {
      {"keys of an archive", fromHex("ba") + count4(kMany) + distinctKeys},
      {"the same key again and again",
       fromHex("ba") + count4(kMany) + repeated(fromHex("60 f6"), kMany)},
      {"columns of a table", archiveOf(fromHex("ba") + count4(kMany) + columns)},
      {"null markers", archiveOf(fromHex("a1 61") + "c" + nulls)},
      {"null markers that end in nonsense",
       archiveOf(fromHex("a1 61") + "c" + fromHex("9a") + count4(kMany) +
                 repeated(fromHex("f6"), kMany - 1) + fromHex("f7"))},
      {"numbers", archiveOf(fromHex("d8 47 5a") + count4(8 * kMany) + std::string(8 * kMany, 'x'))},
      // Lengths that the bytes do not keep.
      {"a promised map", fromHex("bb 7fffffffffffffff")},
      {"a promised array", archiveOf(fromHex("9b 7fffffffffffffff"))},
      {"promised numbers", archiveOf(fromHex("d8 47 5b 7ffffffffffffff8"))},
      {"a promised text", archiveOf(fromHex("7b ffffffffffffffff"))},
      {"arrays of promised arrays", archiveOf(repeated(fromHex("9a 00ffffff"), kMany))},
      {"deep tags", archiveOf(repeated(fromHex("d8 47"), kMany) + fromHex("40"))},
      {"a network", archived(*threeEdges(true, Weighted::kBoth))},
  };
}

// What costs most is a table of many empty columns: four bytes of an archive make an entry and a
// column, some 70 times as much together with what was asked for while the table grew.
TEST(ArchiveMemory, FollowsTheBytesAndNotTheirPromises) {
  for (const Case& hostile : cases()) {
    SCOPED_TRACE(hostile.name);
    const std::uint64_t asked = bytesAskedForBy(hostile.archive);
    EXPECT_LE(asked, 1000 + 100 * hostile.archive.size());
  }
}

}  // namespace
}  // namespace veq::test::archive_memory_test
