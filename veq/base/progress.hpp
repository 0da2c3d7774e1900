/// \file
/// Watching and stopping work that takes long.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "veq/base/ownership.hpp"

namespace veq {

/// Asks whether the work that holds it is to stop. One that was made without a source never stops.
/// Copies ask the same. May be asked by any thread, and copied like any value.
/// \ingroup long
class StopToken {
 public:
  StopToken() = default;

  [[nodiscard]] bool stopRequested() const noexcept {
    return flag_ && flag_->load(std::memory_order_acquire);
  }

  /// Whether there is a source that may ask for it.
  [[nodiscard]] bool canStop() const noexcept { return flag_ != nullptr; }

 private:
  friend class StopSource;
  explicit StopToken(Shared<const std::atomic<bool>> flag) : flag_(std::move(flag)) {}

  Shared<const std::atomic<bool>> flag_;
};

/// Stops the work that holds its tokens, from any thread, once and for ever. Copies are the same
/// source.
/// \ingroup long
class StopSource {
 public:
  StopSource() : flag_(std::make_shared<std::atomic<bool>>(false)) {}

  [[nodiscard]] StopToken token() const { return StopToken(flag_); }
  void requestStop() const noexcept { flag_->store(true, std::memory_order_release); }
  [[nodiscard]] bool stopRequested() const noexcept {
    return flag_->load(std::memory_order_acquire);
  }

 private:
  Shared<std::atomic<bool>> flag_;
};

/// How to follow work that takes long, and how to stop it. What stopping leaves is said by each
/// operation: a walk ends after a whole step, all other work leaves its object as it was and gives
/// an error of kind kStopped.
/// \ingroup long
struct Progress {
  /// Called from the thread that works, never under a lock and at most every 50 ms, with how much
  /// is done of how much. What it throws ends the work as a stop does, and passes through.
  std::function<void(std::uint64_t done, std::uint64_t all)> observer{};
  StopToken stop{};
};

}  // namespace veq
