#include "tests/support/failing_allocation.hpp"

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

// The linker sends every call of these functions in the program's own objects and in the library to
// __wrap_..., and calls of __real_... to the functions themselves.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
}

namespace veq::test {
namespace {

// Of all threads, which take numbers by turns.
struct State {
  std::atomic<bool> armed{false};
  std::atomic<bool> happened{false};
  std::atomic<std::uint64_t> number{0};  // of the next allocation
  std::uint64_t failing = 0;
  bool allFrom = false;
  std::atomic<std::int64_t> blocks{0};
  std::atomic<std::int64_t> liveBytes{0};
  std::atomic<std::int64_t> peak{0};
  std::atomic<std::uint64_t> bytes{0};
};

constinit State state;
std::atomic<std::uint64_t> failedInAll{0};

/// Tells at the program's end how much these tests have tried.
class Report final : public testing::Environment {
  void TearDown() override {
    std::printf("%llu allocations were made to fail.\n",
                static_cast<unsigned long long>(failedInAll.load()));
  }
};
[[maybe_unused]] const testing::Environment* const report =
    testing::AddGlobalTestEnvironment(new Report);

bool mustFail() {
  if (!state.armed.load(std::memory_order_acquire)) return false;
  const std::uint64_t number = state.number.fetch_add(1, std::memory_order_relaxed);
  if (state.allFrom ? number < state.failing : number != state.failing) return false;
  state.happened = true;
  failedInAll.fetch_add(1, std::memory_order_relaxed);
  return true;
}

void count(std::int64_t blocks, std::int64_t bytes) {
  state.blocks.fetch_add(blocks, std::memory_order_relaxed);
  const std::int64_t live = state.liveBytes.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  std::int64_t peak = state.peak.load(std::memory_order_relaxed);
  while (live > peak && !state.peak.compare_exchange_weak(peak, live, std::memory_order_relaxed)) {
  }
}

std::int64_t sizeOf(void* block) { return static_cast<std::int64_t>(malloc_usable_size(block)); }

void* counted(void* block, std::size_t size) {
  state.bytes.fetch_add(size, std::memory_order_relaxed);
  if (block) count(1, sizeOf(block));
  return block;
}

void uncounted(void* block) {
  if (block) count(-1, -sizeOf(block));
}

}  // namespace

FailingAllocation::FailingAllocation(std::uint64_t n, Mode mode) {
  state.allFrom = mode == Mode::kAllFrom;
  state.failing = n;
  state.number = 0;
  state.happened = false;
  state.armed = true;
}

FailingAllocation::~FailingAllocation() { state.armed = false; }

bool FailingAllocation::happened() { return state.happened; }

LiveMemory FailingAllocation::liveMemory() { return {state.blocks, state.liveBytes}; }

std::int64_t FailingAllocation::takePeakBytes() { return state.peak.exchange(state.liveBytes); }

std::uint64_t FailingAllocation::allocatedBytes() { return state.bytes; }

}  // namespace veq::test

using veq::test::counted;
using veq::test::mustFail;
using veq::test::uncounted;

extern "C" {

void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);

void* __wrap_malloc(std::size_t size) {
  return mustFail() ? nullptr : counted(__real_malloc(size), size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return mustFail() ? nullptr : counted(__real_calloc(count, size), count * size);
}

void* __wrap_realloc(void* block, std::size_t size) {
  if (mustFail()) return nullptr;
  // Asked for first, for where it has moved nobody can.
  const std::int64_t before = block ? veq::test::sizeOf(block) : 0;
  void* const moved = __real_realloc(block, size);
  if (moved && block) veq::test::count(-1, -before);
  return counted(moved, size);
}

void __wrap_free(void* block) {
  uncounted(block);
  __real_free(block);
}
}

// The other forms of new and delete rest on these.
void* operator new(std::size_t size) {
  void* block = mustFail() ? nullptr : __real_malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return counted(block, size);
}

// Said here, too: a sanitizer's own form would not belong with the delete below.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* block) noexcept {
  uncounted(block);
  __real_free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
