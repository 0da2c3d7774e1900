/// \file
/// Allocations that fail when a test wants them to. Replaces the program's operator new: include it
/// in one source file of a test program.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace veq::test {

/// Counts down to the allocation of this thread that fails; 0 where none will.
inline thread_local std::size_t allocationsToFailure = 0;

inline void* allocate(std::size_t size) noexcept {
  if (allocationsToFailure > 0 && --allocationsToFailure == 0) return nullptr;
  return std::malloc(size > 0 ? size : 1);
}

inline void* allocateOrThrow(std::size_t size) {
  void* const memory = allocate(size);
  if (!memory) throw std::bad_alloc();
  return memory;
}

/// Calls the function with its first allocation failing, then with its second, and so on until it
/// gets by; after each failure calls `check`. Answers how many calls failed. What the function
/// throws, other than std::bad_alloc, goes through.
template <class Function, class Check>
std::size_t failEachAllocation(Function function, Check check) {
  for (std::size_t failures = 0;; ++failures) {
    allocationsToFailure = failures + 1;
    try {
      function();
      allocationsToFailure = 0;
      return failures;
    } catch (const std::bad_alloc&) {
      allocationsToFailure = 0;
      check();
    } catch (...) {
      allocationsToFailure = 0;
      throw;
    }
  }
}

}  // namespace veq::test

void* operator new(std::size_t size) { return veq::test::allocateOrThrow(size); }
void* operator new[](std::size_t size) { return veq::test::allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return veq::test::allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return veq::test::allocate(size);
}

// Inlined, a free() would look to GCC like the wrong partner of a new.
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
