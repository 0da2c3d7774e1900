#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <string>

namespace veq::test {

/// What all threads have allocated, less what they have freed.
struct LiveMemory {
  std::int64_t blocks = 0;
  std::int64_t bytes = 0;
};

/// Makes allocations fail, in whichever thread: those of operator new, malloc, calloc and realloc
/// in the test program and the library. Linked only into the program of these tests, see
/// tests/CMakeLists.txt.
class FailingAllocation {
 public:
  /// kOne: the n-th allocation from now on fails, n counting from 0. kAllFrom: all later ones, too.
  enum class Mode { kOne, kAllFrom };

  FailingAllocation(std::uint64_t n, Mode mode);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// Whether an allocation was made to fail.
  static bool happened();

  static LiveMemory liveMemory();

  /// The most bytes that liveMemory() has told of since the last call.
  static std::int64_t takePeakBytes();

  /// Bytes that have been asked for so far, whether or not they have been freed.
  static std::uint64_t allocatedBytes();
};

/// Runs `operate(fixture)` on a fresh fixture from `make()` with the n-th allocation failing, for
/// n = 0, 1, ... until it makes fewer than n, and then once more for all allocations from the n-th
/// on. std::bad_alloc may come out; after it `check(fixture, failed)` is called with whether it did
/// come out, and once the fixture has died all memory must have been given back. Gives the number
/// of allocations that were made to fail in the first round. Of an operation that makes very many
/// each `stride`-th fails.
template <class Make, class Operate, class Check>
std::uint64_t forEachFailingAllocation(Make make, Operate operate, Check check,
                                       std::uint64_t stride = 1) {
  std::uint64_t failures = 0;
  for (const auto mode : {FailingAllocation::Mode::kOne, FailingAllocation::Mode::kAllFrom}) {
    bool happened = true;
    for (std::uint64_t n = 0; happened && n < 100000; n += stride) {
      SCOPED_TRACE("allocation " + std::to_string(n));
      const LiveMemory before = FailingAllocation::liveMemory();
      {
        auto fixture = make();
        bool failed = false;
        {
          const FailingAllocation failing(n, mode);
          try {
            operate(fixture);
          } catch (const std::bad_alloc&) {
            failed = true;
          }
          happened = FailingAllocation::happened();
        }
        EXPECT_TRUE(happened || !failed) << "It failed although all allocations succeeded.";
        check(fixture, failed);
      }
      const LiveMemory after = FailingAllocation::liveMemory();
      EXPECT_EQ(after.blocks, before.blocks) << "Memory leaks.";
      EXPECT_EQ(after.bytes, before.bytes) << "Memory leaks.";
      if (testing::Test::HasFailure()) return failures;
      if (happened && mode == FailingAllocation::Mode::kOne) ++failures;
    }
    EXPECT_FALSE(happened) << "The operation makes too many allocations to fail each.";
  }
  return failures;
}

/// The same for operations that need no fixture: `operate()`, then `check(failed)`.
template <class Operate, class Check>
std::uint64_t forEachFailingAllocation(Operate operate, Check check) {
  return forEachFailingAllocation([] { return 0; }, [&](int) { operate(); },
                                  [&](int, bool failed) { check(failed); });
}

}  // namespace veq::test
