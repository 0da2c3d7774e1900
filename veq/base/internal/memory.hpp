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

/// Advises the system to put a block which is about to be written into huge pages, where it is
/// large: its pages appear several times faster then, and cost fewer misses when it is read in no
/// order.
VEQ_EXPORT void adviseHugePages(void* block, std::uint64_t bytes);

/// Zero-filled memory; where it is large, pages that nobody touches cost address space only, and
/// huge pages are advised. Null for 0 bytes; std::bad_alloc where it cannot be had.
[[nodiscard]] VEQ_EXPORT void* allocateZeroed(std::uint64_t count, std::uint64_t elementSize);

/// Resizes memory of allocateZeroed, keeping what fits; new bytes hold anything. std::bad_alloc
/// where it cannot be had, and the old block is then as it was.
[[nodiscard]] void* reallocate(void* block, std::uint64_t count, std::uint64_t elementSize);

VEQ_EXPORT void release(void* block) noexcept;

/// Has the processor fetch what will be read, or written, soon.
inline void prefetch(const void* address) { __builtin_prefetch(address); }
/// The same of an element; where there is none of that number nothing happens.
template <class T>
void prefetchElement(const T* elements, std::uint64_t number) {
  const auto bytes = static_cast<std::uintptr_t>(number * sizeof(T));
  prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(elements) + bytes));
}
inline void prefetchForWriting(const void* address) { __builtin_prefetch(address, 1); }

/// std::bad_alloc where the elements exceed the memory that there is (memoryLimit()), although an
/// allocator may promise it: for sizes that nothing but a number in a text stands for.
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
  /// Elements in memory that outlives the block, to which nobody may write through it.
  [[nodiscard]] static Block readOnly(std::span<const T> elements) {
    return borrowed(const_cast<T*>(elements.data()), elements.size());
  }
  /// Elements in memory that outlives the block, such as an arena.
  [[nodiscard]] static Block borrowed(T* data, std::uint64_t count) {
    Block block;
    block.data_ = data;
    block.extent_ = count | kBorrowed;
    return block;
  }
  Block(Block&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), extent_(std::exchange(other.extent_, 0)) {}
  Block& operator=(Block&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(extent_, other.extent_);
    return *this;
  }
  ~Block() {
    if (!isBorrowed()) release(data_);
  }

  [[nodiscard]] T* data() { return data_; }
  [[nodiscard]] const T* data() const { return data_; }
  [[nodiscard]] std::uint64_t size() const { return extent_ & ~kBorrowed; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] T& operator[](std::uint64_t index) { return data_[index]; }
  [[nodiscard]] const T& operator[](std::uint64_t index) const { return data_[index]; }

  /// New elements hold anything. std::bad_alloc leaves the block as it was.
  void resize(std::uint64_t count) {
    T* const own = isBorrowed() ? nullptr : data_;
    T* const resized = static_cast<T*>(reallocate(own, count, sizeof(T)));
    if (isBorrowed()) std::copy_n(data_, std::min(size(), count), resized);
    data_ = resized;
    extent_ = count;
  }

  /// Makes room for at least the count, growing geometrically so that appending stays cheap.
  void reserve(std::uint64_t count) {
    if (count > size()) resize(std::max(count, size() + size() / 2));
  }

 private:
  template <class Unit>
  friend class Arena;

  // Set in the extent of a block whose memory is another's. No block has so many elements.
  static constexpr std::uint64_t kBorrowed = std::uint64_t{1} << 63;

  [[nodiscard]] bool isBorrowed() const { return (extent_ & kBorrowed) != 0; }

  T* data_ = nullptr;
  std::uint64_t extent_ = 0;  // The number of elements, and kBorrowed.
};

/// Carves several blocks from the memory of somebody who outlives them: where small things are made
/// in great numbers, most of the time would go into asking for each block. A block for which it has
/// too little left is by itself, and one that is resized leaves the arena.
template <class Unit>
class Arena {
 public:
  explicit Arena(std::span<Unit> memory) : left_(memory) {}

  /// Holds anything.
  template <class T>
  [[nodiscard]] Block<T> block(std::uint64_t count) {
    Block<T> result;
    if (!carve(result, count)) result.resize(count);
    return result;
  }
  template <class T>
  [[nodiscard]] Block<T> zeroedBlock(std::uint64_t count) {
    Block<T> result;
    if (!carve(result, count)) return Block<T>(count);
    std::fill_n(result.data_, count, T{});
    return result;
  }

  /// Of the same size, with so many of the elements; the others hold anything.
  template <class T>
  [[nodiscard]] Block<T> copy(const Block<T>& of, std::uint64_t count) {
    Block<T> result = block<T>(of.size());
    std::copy_n(of.data(), count, result.data());
    return result;
  }

 private:
  template <class T>
  bool carve(Block<T>& block, std::uint64_t count) {
    static_assert(alignof(T) == alignof(Unit) && sizeof(T) % sizeof(Unit) == 0);
    if (count == 0 || count > left_.size_bytes() / sizeof(T)) return false;
    block = Block<T>::borrowed(reinterpret_cast<T*>(left_.data()), count);
    left_ = left_.subspan(count * (sizeof(T) / sizeof(Unit)));
    return true;
  }

  std::span<Unit> left_;
};

}  // namespace veq::internal
