#include "veq/base/internal/memory.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "veq/base/internal/memory_limit.hpp"

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace veq::internal {
namespace {

// From here on a block holds a huge page wherever it lies, and advising them pays.
constexpr std::uint64_t kLarge = std::uint64_t{4} << 20;

// No object is larger, whatever the allocator would say.
constexpr std::uint64_t kLargest = PTRDIFF_MAX;

}  // namespace

void adviseHugePages([[maybe_unused]] void* block, [[maybe_unused]] std::uint64_t bytes) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  if (bytes < kLarge) return;
  static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const auto begin = (address + page - 1) / page * page;
  const auto end = (address + static_cast<std::uintptr_t>(bytes)) / page * page;
  // A refusal costs speed only.
  if (begin < end) {
    madvise(static_cast<char*>(block) + (begin - address), end - begin, MADV_HUGEPAGE);
  }
#endif
}

void requireMemory(std::uint64_t count, std::uint64_t elementSize) {
  if (count > memoryLimit() / elementSize) throw std::bad_alloc();
}

void* allocateZeroed(std::uint64_t count, std::uint64_t elementSize) {
  if (count == 0) return nullptr;
  if (count > kLargest / elementSize) throw std::bad_alloc();
  void* block = std::calloc(static_cast<std::size_t>(count), static_cast<std::size_t>(elementSize));
  if (!block) throw std::bad_alloc();
  adviseHugePages(block, count * elementSize);
  return block;
}

void* reallocate(void* block, std::uint64_t count, std::uint64_t elementSize) {
  if (count > kLargest / elementSize) throw std::bad_alloc();
  const auto bytes = static_cast<std::size_t>(count * elementSize);
  if (bytes == 0) {
    release(block);
    return nullptr;
  }
  void* moved = std::realloc(block, bytes);
  if (!moved) throw std::bad_alloc();
  adviseHugePages(moved, bytes);
  return moved;
}

void release(void* block) noexcept { std::free(block); }

}  // namespace veq::internal
