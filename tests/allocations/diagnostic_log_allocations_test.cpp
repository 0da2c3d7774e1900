// The diagnostic log where memory is lacking.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "tests/support/failing_allocation.hpp"
#include "veq/base/diagnostic_log.hpp"

namespace veq::test::diagnostic_log_allocations_test {
namespace {

/// Too large to lie within a sink, so that every copy of the sink takes memory.
struct LargeSink {
  std::array<const char*, 8> names;
  int* lines;

  void operator()(std::string_view) const { ++*lines; }
};

TEST(DiagnosticLogAllocations, NoLineTakesMemory) {
  // Also the very first line of a program, which this is where the test runs by itself.
  EXPECT_EQ(forEachFailingAllocation([] { logDiagnostic("a line that takes no memory"); },
                                     [](bool failed) { EXPECT_FALSE(failed); }),
            0U);
}

class InstalledSink {
 public:
  explicit InstalledSink(DiagnosticSink sink) : previous_(setDiagnosticSink(std::move(sink))) {}
  ~InstalledSink() { setDiagnosticSink(std::move(previous_)); }
  InstalledSink(const InstalledSink&) = delete;
  InstalledSink& operator=(const InstalledSink&) = delete;

 private:
  DiagnosticSink previous_;
};

TEST(DiagnosticLogAllocations, LeaveTheSinkAsItWas) {
  setDiagnosticSink(setDiagnosticSink({}));  // what a sink lies in is there from now on
  int first = 0;
  int second = 0;
  const auto failures = forEachFailingAllocation(
      [&] {
        return std::make_unique<InstalledSink>(LargeSink{{}, &first});
      },
      [next = DiagnosticSink(LargeSink{{}, &second})](auto&) { setDiagnosticSink(next); },
      [&](auto&, bool failed) {
        first = second = 0;
        logDiagnostic("line");
        EXPECT_EQ(first, failed ? 1 : 0);
        EXPECT_EQ(second, failed ? 0 : 1);
      });
  EXPECT_GE(failures, 3U);
}

}  // namespace
}  // namespace veq::test::diagnostic_log_allocations_test
