#include "tests/support/failing_allocation.hpp"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

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

struct State {
  bool armed = false;
  bool all = false;
  bool happened = false;
  std::uint64_t countdown = 0;
  LiveMemory live;
  std::int64_t peak = 0;
  std::uint64_t bytes = 0;
};

thread_local State state;
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
  if (!state.armed) return false;
  if (state.countdown > 0) {
    --state.countdown;
    return false;
  }
  state.happened = true;
  failedInAll.fetch_add(1, std::memory_order_relaxed);
  if (!state.all) state.armed = false;
  return true;
}

void* counted(void* block, std::size_t size) {
  state.bytes += size;
  if (block) {
    ++state.live.blocks;
    state.live.bytes += static_cast<std::int64_t>(malloc_usable_size(block));
    state.peak = std::max(state.peak, state.live.bytes);
  }
  return block;
}

void uncounted(void* block) {
  if (!block) return;
  --state.live.blocks;
  state.live.bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
}

}  // namespace

FailingAllocation::FailingAllocation(std::uint64_t n, Mode mode) {
  state.all = mode == Mode::kAllFrom;
  state.happened = false;
  state.countdown = n;
  state.armed = true;
}

FailingAllocation::~FailingAllocation() { state.armed = false; }

bool FailingAllocation::happened() { return state.happened; }

LiveMemory FailingAllocation::liveMemory() { return state.live; }

std::int64_t FailingAllocation::takePeakBytes() {
  return std::exchange(state.peak, state.live.bytes);
}

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
  // Counted off first, for its size cannot be asked for once it has moved.
  const veq::test::LiveMemory before = veq::test::FailingAllocation::liveMemory();
  uncounted(block);
  void* moved = __real_realloc(block, size);
  if (!moved) veq::test::state.live = before;
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
