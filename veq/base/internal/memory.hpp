/// \file
/// Blocks of memory for the library's large arrays.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

#include "veq/base/export.hpp"

namespace veq::internal {

/// Asks that a block which is about to be written lie in huge pages, where it is large: its pages
/// appear several times faster then, and cost fewer misses when it is read in no order.
VEQ_EXPORT void askForHugePages(void* block, std::uint64_t bytes);

/// Zero-filled memory; where it is large, pages that nobody touches cost address space only, and
/// huge pages are asked for. Null for 0 bytes; std::bad_alloc where it cannot be had.
[[nodiscard]] VEQ_EXPORT void* allocateZeroed(std::uint64_t count, std::uint64_t elementSize);

/// Resizes memory of allocateZeroed, keeping what fits; new bytes hold anything. std::bad_alloc
/// where it cannot be had, and the old block is then as it was.
[[nodiscard]] void* reallocate(void* block, std::uint64_t count, std::uint64_t elementSize);

VEQ_EXPORT void release(void* block) noexcept;

/// std::bad_alloc where the elements exceed the memory that this machine has, which an allocator
/// may promise all the same: for sizes that nothing but a number in a text stands for.
void requireMemory(std::uint64_t count, std::uint64_t elementSize);

/// A block of elements for which all bytes zero is a value.
template <class T>
class Block {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  Block() = default;
  /// Zero-filled.
  explicit Block(std::uint64_t count)
      : data_(static_cast<T*>(allocateZeroed(count, sizeof(T)))), extent_(count) {}
  Block(Block&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), extent_(std::exchange(other.extent_, 0)) {}
  Block& operator=(Block&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(extent_, other.extent_);
    return *this;
  }
  ~Block() {
    if (!isLent()) release(data_);
  }

  [[nodiscard]] T* data() { return data_; }
  [[nodiscard]] const T* data() const { return data_; }
  [[nodiscard]] std::uint64_t size() const { return extent_ & ~kLent; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] T& operator[](std::uint64_t index) { return data_[index]; }
  [[nodiscard]] const T& operator[](std::uint64_t index) const { return data_[index]; }

  /// New elements hold anything. std::bad_alloc leaves the block as it was.
  void resize(std::uint64_t count) {
    T* const own = isLent() ? nullptr : data_;
    T* const resized = static_cast<T*>(reallocate(own, count, sizeof(T)));
    if (isLent()) std::copy_n(data_, std::min(size(), count), resized);
    data_ = resized;
    extent_ = count;
  }

  /// Makes room for at least the count, growing geometrically so that appending stays cheap.
  void reserve(std::uint64_t count) {
    if (count > size()) resize(std::max(count, size() + size() / 2));
  }

 private:
  template <class Unit>
  friend class Ground;

  // Set in the extent of a block that lies in a ground. No block has so many elements.
  static constexpr std::uint64_t kLent = std::uint64_t{1} << 63;

  [[nodiscard]] bool isLent() const { return (extent_ & kLent) != 0; }

  T* data_ = nullptr;
  std::uint64_t extent_ = 0;  // The number of elements, and kLent.
};

/// Carves several blocks from one, which must outlive them: where small things are made in great
/// numbers, most of the time would go into asking for each block. A block that is resized leaves
/// the ground.
template <class Unit>
class Ground {
 public:
  /// Lays out as many units as all blocks will take, or none, and then each is by itself.
  explicit Ground(std::uint64_t units) { memory_.resize(units); }

  /// Holds anything.
  template <class T>
  [[nodiscard]] Block<T> block(std::uint64_t count) {
    Block<T> result;
    if (!lend(result, count)) result.resize(count);
    return result;
  }
  template <class T>
  [[nodiscard]] Block<T> zeroedBlock(std::uint64_t count) {
    Block<T> result;
    if (!lend(result, count)) return Block<T>(count);
    std::fill_n(result.data_, count, T{});
    return result;
  }

  [[nodiscard]] Block<Unit> take() && { return std::move(memory_); }

 private:
  template <class T>
  bool lend(Block<T>& block, std::uint64_t count) {
    static_assert(alignof(T) == alignof(Unit));
    const std::uint64_t left = memory_.size() * sizeof(Unit) - usedBytes_;
    if (count == 0 || count > left / sizeof(T)) return false;
    block.data_ = reinterpret_cast<T*>(reinterpret_cast<std::byte*>(memory_.data()) + usedBytes_);
    block.extent_ = count | Block<T>::kLent;
    usedBytes_ += count * sizeof(T);
    return true;
  }

  Block<Unit> memory_;
  std::uint64_t usedBytes_ = 0;
};

}  // namespace veq::internal
