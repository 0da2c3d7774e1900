#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

namespace veq::internal {

/// What a walk tells other threads about itself, and what they ask of it. The lock is held for a
/// few stores where a walk begins and ends, and where its progress is read, so that nobody sees
/// half of a beginning; every member is a whole word besides, and may be read and written without
/// it.
class WorkControl {
 public:
  void begin(std::uint64_t steps) {
    const std::lock_guard guard(lock_);
    isWorking_.store(true, kRelaxed);
    isWaiting_.store(false, kRelaxed);
    totalWork_.store(static_cast<std::int64_t>(steps), kRelaxed);
    currentProgress_.store(0, kRelaxed);
  }
  void reach(std::uint64_t steps) {
    currentProgress_.store(static_cast<std::int64_t>(steps), kRelaxed);
  }
  void end(std::uint64_t steps) {
    const std::lock_guard guard(lock_);
    // Whoever sees the end sees what the walk has done.
    isWorking_.store(false, std::memory_order_release);
    totalWork_.store(static_cast<std::int64_t>(steps), kRelaxed);
  }

  void pause() { shouldWait_.store(true, kRelaxed); }
  void resume() { shouldResume_.store(true, kRelaxed); }
  void cancel() {
    isWorking_.store(false, kRelaxed);
    isWaiting_.store(false, kRelaxed);
    shouldWait_.store(false, kRelaxed);
    shouldResume_.store(false, kRelaxed);
    currentProgress_.store(0, kRelaxed);
    totalWork_.store(0, kRelaxed);
  }

  [[nodiscard]] bool isWorking() const { return isWorking_.load(std::memory_order_acquire); }
  [[nodiscard]] bool isWaiting() const { return isWaiting_.load(kRelaxed); }
  [[nodiscard]] std::int64_t currentProgress() const {
    const std::lock_guard guard(lock_);
    return currentProgress_.load(kRelaxed);
  }
  [[nodiscard]] std::int64_t currentWork() const {
    const std::lock_guard guard(lock_);
    return totalWork_.load(kRelaxed);
  }

  void setSynchronizationSteps(std::uint64_t steps) {
    synchronizationSteps_.store(steps, kRelaxed);
  }
  [[nodiscard]] std::uint64_t synchronizationSteps() const {
    return synchronizationSteps_.load(kRelaxed);
  }

 private:
  static constexpr std::memory_order kRelaxed = std::memory_order_relaxed;

  mutable std::mutex lock_;
  std::atomic<std::int64_t> currentProgress_{0};
  std::atomic<std::int64_t> totalWork_{0};
  std::atomic<bool> shouldWait_{false};
  std::atomic<bool> shouldResume_{false};
  std::atomic<bool> isWaiting_{false};
  std::atomic<bool> isWorking_{false};
  std::atomic<std::uint64_t> synchronizationSteps_{1};
};

}  // namespace veq::internal
