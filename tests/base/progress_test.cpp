#include "veq/base/progress.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "veq/base/internal/pace.hpp"

namespace veq::progress_test {
namespace {

using internal::Pace;

TEST(Progress, NeverStopsWithoutASource) {
  const Progress progress;
  Pace pace(progress, 10);
  EXPECT_FALSE(pace.shallStop(5));
}

TEST(Progress, StopsWhateverHoldsATokenOfTheSource) {
  const StopSource source;
  const Progress progress{{}, source.token()};
  Pace pace(progress, 10);
  EXPECT_FALSE(pace.shallStop(1));
  std::thread([copy = source] { copy.requestStop(); }).join();
  EXPECT_TRUE(source.stopRequested());
  EXPECT_TRUE(pace.shallStop(2));
  EXPECT_THROW(pace.reach(3), internal::Stopped);
}

TEST(Progress, TellsTheObserverAtMostEveryFiftyMilliseconds) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> told;
  const Progress progress{
      [&](std::uint64_t done, std::uint64_t all) { told.emplace_back(done, all); }, {}};
  Pace pace(progress, 10);
  std::this_thread::sleep_for(std::chrono::milliseconds(51));
  EXPECT_FALSE(pace.shallStop(4));
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], (std::pair<std::uint64_t, std::uint64_t>{4, 10}));
}

// Nobody on the way takes it for an exception of the work.
TEST(Progress, WrapsWhatTheObserverThrows) {
  const Progress progress{[](std::uint64_t, std::uint64_t) { throw std::runtime_error("enough"); },
                          {}};
  Pace pace(progress, 10);
  std::this_thread::sleep_for(std::chrono::milliseconds(51));
  EXPECT_THROW(pace.reach(4), internal::ObserverThrew);
}

}  // namespace
}  // namespace veq::progress_test
