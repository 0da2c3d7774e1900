/// \file
/// Blocks of memory for the library's large arrays.
#pragma once

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
      : data_(static_cast<T*>(allocateZeroed(count, sizeof(T)))), size_(count) {}
  Block(Block&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  Block& operator=(Block&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
  }
  ~Block() { release(data_); }

  [[nodiscard]] T* data() { return data_; }
  [[nodiscard]] const T* data() const { return data_; }
  [[nodiscard]] std::uint64_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] T& operator[](std::uint64_t index) { return data_[index]; }
  [[nodiscard]] const T& operator[](std::uint64_t index) const { return data_[index]; }

  /// New elements hold anything. std::bad_alloc leaves the block as it was.
  void resize(std::uint64_t count) {
    data_ = static_cast<T*>(reallocate(data_, count, sizeof(T)));
    size_ = count;
  }

  /// Makes room for at least the count, growing geometrically so that appending stays cheap.
  void reserve(std::uint64_t count) {
    if (count > size_) resize(count > size_ + size_ / 2 ? count : size_ + size_ / 2);
  }

 private:
  T* data_ = nullptr;
  std::uint64_t size_ = 0;
};

}  // namespace veq::internal
