#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

#include "veq/base/internal/team.hpp"
#include "veq/base/parallelism.hpp"

namespace veq::test {

/// While this lives, so many threads share also the smallest work.
class SharedWork {
 public:
  explicit SharedWork(unsigned threads, std::uint64_t worthSharing = 0)
      : before_(std::exchange(internal::Team::worthSharing, worthSharing)) {
    setParallelism(threads);
  }
  /// Their pieces are done by this thread, from the last to the first.
  struct InReverse {};
  SharedWork(unsigned threads, InReverse) : SharedWork(threads) {
    setParallelRunner([](std::size_t pieces, const std::function<void(std::size_t)>& piece) {
      while (pieces > 0) piece(--pieces);
    });
  }
  /// One thread, several, or one by one in reverse, by turns.
  [[nodiscard]] static SharedWork inTurn(int round) {
    if (round % 3 == 0) return SharedWork(1);
    if (round % 3 == 1) return SharedWork(3);
    return {7, InReverse()};
  }
  ~SharedWork() {
    internal::Team::worthSharing = before_;
    setParallelism(1);
    setParallelRunner(nullptr);
  }
  SharedWork(const SharedWork&) = delete;
  SharedWork& operator=(const SharedWork&) = delete;

 private:
  std::uint64_t before_;
};

}  // namespace veq::test
