#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

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
  /// Their pieces are done by this thread, in the order with that number: of few pieces each order
  /// has one below the number of orders, and of many each number means some order.
  struct InOrder {
    std::uint64_t number;
  };
  SharedWork(unsigned threads, InOrder order, std::uint64_t worthSharing = 0)
      : SharedWork(threads, worthSharing) {
    setParallelRunner([order](std::size_t pieces, const std::function<void(std::size_t)>& piece) {
      for (const std::size_t next : ordered(pieces, order.number)) piece(next);
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
  // Of what is left, the one that the next digit of the number says, or of many some random one's.
  static std::vector<std::size_t> ordered(std::size_t pieces, std::uint64_t number) {
    std::vector<std::size_t> left(pieces);
    std::iota(left.begin(), left.end(), 0);
    std::vector<std::size_t> order;
    std::mt19937_64 draw(number);
    while (!left.empty()) {
      const std::uint64_t chosen = (pieces > 5 ? draw() : number) % left.size();
      number /= left.size();
      order.push_back(left[chosen]);
      left.erase(left.begin() + static_cast<std::ptrdiff_t>(chosen));
    }
    return order;
  }

  std::uint64_t before_;
};

}  // namespace veq::test
