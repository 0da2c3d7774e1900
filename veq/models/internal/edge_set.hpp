/// \file
/// The edges that a network has, to be asked and changed.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>
#include <vector>

#include "veq/base/internal/memory.hpp"

namespace veq::internal {

/// Edges between vertices below 2^32 - 1, each any number of times. Undirected ones are the same
/// either way round. Expected O(1) each.
class EdgeSet {
 public:
  EdgeSet(bool directed, std::uint64_t expected)
      : directed_(directed), slots_(std::bit_ceil(std::max<std::uint64_t>(2 * expected, 16))) {}

  [[nodiscard]] bool contains(std::uint64_t a, std::uint64_t b) const {
    return slots_[find(keyOf(a, b))].times != 0;
  }
  void fetch(std::uint64_t a, std::uint64_t b) const { prefetch(&slots_[home(keyOf(a, b))]); }
  void insert(std::uint64_t a, std::uint64_t b) {
    if (2 * used_ >= slots_.size()) grow();
    add(keyOf(a, b), 1);
  }
  /// One that is there.
  void erase(std::uint64_t a, std::uint64_t b) {
    std::uint64_t hole = find(keyOf(a, b));
    if (--slots_[hole].times != 0) return;
    --used_;
    // What follows without a gap moves up, unless it would come to lie before its home.
    for (std::uint64_t at = next(hole); slots_[at].times != 0; at = next(at)) {
      const std::uint64_t wanted = home(slots_[at].key);
      if (((at - wanted) & mask()) < ((at - hole) & mask())) continue;
      slots_[hole] = std::exchange(slots_[at], Slot{});
      hole = at;
    }
  }

 private:
  struct Slot {
    std::uint64_t key = 0;
    std::uint64_t times = 0;
  };

  [[nodiscard]] std::uint64_t keyOf(std::uint64_t a, std::uint64_t b) const {
    if (!directed_ && b < a) std::swap(a, b);
    return a << 32 | b;
  }
  [[nodiscard]] std::uint64_t mask() const { return slots_.size() - 1; }
  [[nodiscard]] std::uint64_t next(std::uint64_t at) const { return (at + 1) & mask(); }
  [[nodiscard]] std::uint64_t home(std::uint64_t key) const {
    // The upper bits of a product with an odd constant depend on all bits of the key.
    return (key * 0x9e3779b97f4a7c15U) >> (64 - std::countr_zero(slots_.size()));
  }
  /// Where the key is, or the free slot where it would be.
  [[nodiscard]] std::uint64_t find(std::uint64_t key) const {
    std::uint64_t at = home(key);
    while (slots_[at].times != 0 && slots_[at].key != key) at = next(at);
    return at;
  }
  void add(std::uint64_t key, std::uint64_t times) {
    Slot& slot = slots_[find(key)];
    if (slot.times == 0) ++used_;
    slot.key = key;
    slot.times += times;
  }
  void grow() {
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
    used_ = 0;
    for (const Slot& slot : old) {
      if (slot.times != 0) add(slot.key, slot.times);
    }
  }

  bool directed_;
  std::vector<Slot> slots_;
  std::uint64_t used_ = 0;
};

}  // namespace veq::internal
