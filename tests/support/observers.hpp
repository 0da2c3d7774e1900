/// \file
/// Observers that are told at every look, and that all of them are told of progress only.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "tests/support/temporarily.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/base/progress.hpp"

namespace veq::test {

/// As long as it lives, observers are left alone for so long between two calls.
struct ObserverInterval : Temporarily<std::chrono::milliseconds> {
  explicit ObserverInterval(std::chrono::milliseconds interval = std::chrono::milliseconds(0))
      : Temporarily(internal::Pace::usualInterval, interval) {}
};

/// Expects that what is done never becomes less, nor more than all. Calls then(k) with the number
/// of earlier calls.
inline auto climbing(std::function<void(std::uint64_t)> then) {
  return [then = std::move(then), calls = std::uint64_t{0}, before = std::uint64_t{0}](
             std::uint64_t done, std::uint64_t all) mutable {
    EXPECT_LE(before, done);
    EXPECT_LE(done, all);
    before = done;
    then(calls++);
  };
}

/// Calls work(pace) with one that is told of so much work at every look, and has it stop at the
/// given look; answers the number of looks.
template <class Work>
std::uint64_t looks(std::uint64_t all, std::optional<std::uint64_t> stopAt, Work work) {
  const ObserverInterval none;
  std::uint64_t count = 0;
  const StopSource source;
  Progress progress;
  progress.stop = source.token();
  progress.observer = climbing([&](std::uint64_t look) {
    count = look + 1;
    if (look == stopAt) source.requestStop();
  });
  internal::Pace pace(progress, all);
  work(pace);
  return count;
}

}  // namespace veq::test
