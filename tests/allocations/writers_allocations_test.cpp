// Writing to files, each of whose allocations is made to fail: the old file stands whole and
// nothing else lies beside it.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/formats/format_support.hpp"
#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/writers.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/network/network.hpp"

namespace veq::test::writers_allocations_test {
namespace {

class EveryWriter : public testing::TestWithParam<Writer> {};

TEST_P(EveryWriter, WritesTheWholeFileOrNone) {
  const Writer& writer = GetParam();
  const Owned<VEQNetwork> network = drawDirected("0-1 1-2 2-2");
  network->setPropertyValue_forKey_atVertexIndex(std::string(50, 'n'), "Name", 1);
  const TemporaryFolder folder;
  // By a symbolic link and by its name, over an old file and where there is none.
  std::filesystem::create_symlink("target", folder.path("link"));
  ASSERT_TRUE(writer.write(*network, folder.path("target"), true));
  const std::string whole = bytesOf(folder.path("target"));
  for (const bool atomically : {false, true}) {
    for (const bool old : {false, true}) {
      const std::string path = folder.path(old ? "link" : "target");
      bool written = false;
      const std::uint64_t failures = forEachFailingAllocation(
          [&] {
            if (old) {
              static_cast<void>(folder.write("target", "old"));
            } else {
              std::filesystem::remove(folder.path("target"));
            }
            return 0;
          },
          [&](int) { written = writer.write(*network, path, atomically); },
          [&](int, bool failed) {
            EXPECT_TRUE(failed || written);
            EXPECT_EQ(bytesOf(folder.path("target")), failed ? (old ? "old" : "") : whole);
            EXPECT_EQ(folder.countFiles(), failed && !old ? 1U : 2U);
            EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
            written = false;
          });
      EXPECT_GE(failures, 2U);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, EveryWriter, testing::ValuesIn(kWriters), nameOfWriter);

// A call that throws encodes nothing, so that it can be made again.
TEST(ArchiveAllocations, OfOneEntryLeaveTheArchiveAsItWas) {
  const VEQNumberArray numbers = VEQNumberArray::ofIndices({1, 2, 3});
  PropertyTable table;
  table.set(std::string(50, 'k'),
            std::make_shared<GenericArray>(std::vector<PropertyValue>{"x", 1, VEQVector2d(1, 2)}));
  const auto start = [] {
    auto archiver = std::make_unique<VEQKeyedArchiver>();
    archiver->encodeBool(true, "first");
    return archiver;
  };
  const std::string before(start()->bytes());
  const std::string key(50, 'x');
  for (const int kind : {0, 1, 2}) {
    const auto encode = [&](std::unique_ptr<VEQKeyedArchiver>& archiver) {
      if (kind == 0) archiver->encodeBool(false, key);
      if (kind == 1) archiver->encodeNumberArray(numbers, key);
      if (kind == 2) archiver->encodePropertyTable(table, key);
    };
    auto reference = start();
    encode(reference);
    const std::string after(reference->bytes());
    EXPECT_GE(
        forEachFailingAllocation(start, encode,
                                 [&](std::unique_ptr<VEQKeyedArchiver>& archiver, bool failed) {
                                   if (failed) {
                                     EXPECT_EQ(archiver->bytes(), before);
                                     encode(archiver);
                                   }
                                   EXPECT_EQ(archiver->bytes(), after);
                                 }),
        2U);
  }
}

}  // namespace
}  // namespace veq::test::writers_allocations_test
