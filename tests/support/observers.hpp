/// \file
/// Observers that are told at every look, and that all of them are told of progress only.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <utility>

#include "veq/base/internal/pace.hpp"
#include "veq/base/progress.hpp"

namespace veq::test {

/// As long as it lives, observers are left alone for so long between two calls.
class ObserverInterval {
 public:
  explicit ObserverInterval(std::chrono::milliseconds interval = std::chrono::milliseconds(0))
      : usual_(std::exchange(internal::Pace::usualInterval, interval)) {}
  ~ObserverInterval() { internal::Pace::usualInterval = usual_; }
  ObserverInterval(const ObserverInterval&) = delete;
  ObserverInterval& operator=(const ObserverInterval&) = delete;

 private:
  std::chrono::milliseconds usual_;
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

}  // namespace veq::test
