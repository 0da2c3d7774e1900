// How much memory a Pajek text can make its reader ask for by a number of vertices alone.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/support/failing_allocation.hpp"
#include "tests/support/limits.hpp"
#include "veq/base/internal/memory_limit.hpp"
#include "veq/formats/reading.hpp"
#include "veq/network/network.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq::test::pajek_memory_test {
namespace {

constexpr std::uint64_t kLittle = std::uint64_t{1} << 20;

// Reads the text where large blocks cannot be had, lest one that is asked for be touched, and ends
// the process: with 0 where no network came of it and little was asked for.
template <class Read>
[[noreturn]] void readBy(Read reader) {
  const rlimit space{std::uint64_t{2} << 30, std::uint64_t{2} << 30};
  if (setrlimit(RLIMIT_AS, &space) != 0) std::_Exit(2);
  const std::uint64_t before = FailingAllocation::allocatedBytes();
  const bool read = reader();
  const std::uint64_t askedFor = FailingAllocation::allocatedBytes() - before;
  std::_Exit(read || askedFor > kLittle ? 1 : 0);
}

[[noreturn]] void read(const std::string& text) {
  readBy([&] { return VEQNetwork::initWithNetworkPajekFormattedString(text) != nullptr; });
}

// The same by the reader of any file, which gives the reason.
[[noreturn]] void readNaturally(const std::string& text) {
  readBy([&] {
    ReadOptions options;
    options.mostVertices = UINT64_MAX;
    const auto result = readNetworkText(text, options);
    return result.hasValue() || result.error().kind() != ErrorKind::kMemory;
  });
}

std::string verticesOf(std::uint64_t count, const std::string& line) {
  return "*Vertices " + std::to_string(count) + "\n" + line + "\n";
}

class PajekMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (kIsSanitized) GTEST_SKIP() << "Sanitizers need more addresses.";
  }
};

TEST_F(PajekMemory, PositionsBeyondItAreRefusedBeforeTheyAreAskedFor) {
  const std::uint64_t count = internal::memoryLimit() / (3 * sizeof(double)) + 1;
  EXPECT_EXIT(read(verticesOf(count, "1 0.5 0.5 0.5")), testing::ExitedWithCode(0), "");
}

TEST_F(PajekMemory, NamesBeyondItAreRefusedBeforeTheyAreAskedFor) {
  const std::uint64_t count = internal::memoryLimit() / sizeof(PropertyValue) + 1;
  EXPECT_EXIT(read(verticesOf(count, "1 \"a\"")), testing::ExitedWithCode(0), "");
}

// Each column alone would fit.
TEST_F(PajekMemory, NamesAndPositionsCountTogether) {
  const std::uint64_t larger = std::max<std::uint64_t>(sizeof(PropertyValue), 3 * sizeof(double));
  const std::uint64_t count = internal::memoryLimit() / (larger + 8);
  EXPECT_EXIT(read(verticesOf(count, "1 \"a\" 0.5 0.5 0.5")), testing::ExitedWithCode(0), "");
}

TEST_F(PajekMemory, TheReaderOfAnyFileRefusesThemAlike) {
  const std::uint64_t names = internal::memoryLimit() / sizeof(PropertyValue) + 1;
  EXPECT_EXIT(readNaturally(verticesOf(names, "1 \"a\"")), testing::ExitedWithCode(0), "");
  const std::uint64_t positions = internal::memoryLimit() / (3 * sizeof(double)) + 1;
  EXPECT_EXIT(readNaturally(verticesOf(positions, "1 \"\" 0.5 0.5 0.5")),
              testing::ExitedWithCode(0), "");
}

// A text that fails at its end, like one that needs no columns, costs nothing for its vertices.
TEST_F(PajekMemory, ColumnsAreNotAskedForBeforeTheTextHasEndedWell) {
  const std::string vertices = verticesOf(20'000'000, "1 \"a\" 0.5 0.5 0.5");
  EXPECT_EXIT(read(vertices + "*Vertices\n"), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace veq::test::pajek_memory_test
