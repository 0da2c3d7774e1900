/// \file
/// Atomic access to plain objects, of which some standard libraries have none.
#pragma once

#include <atomic>
#include <type_traits>

namespace veq::internal {

#if defined(__cpp_lib_atomic_ref)

template <class T>
using AtomicRef = std::atomic_ref<T>;

#else

/// What this library uses of std::atomic_ref, by the builtins of GCC and Clang, in the strongest of
/// the memory orders whichever is asked for.
template <class T>
class AtomicRef {
  static_assert(std::is_integral_v<T> || std::is_pointer_v<T>);

 public:
  explicit AtomicRef(T& object) : object_(object) {}

  [[nodiscard]] T load(std::memory_order /*order*/) const {
    return __atomic_load_n(&object_, __ATOMIC_SEQ_CST);
  }
  void store(T value, std::memory_order /*order*/) const {
    __atomic_store_n(&object_, value, __ATOMIC_SEQ_CST);
  }
  // NOLINTNEXTLINE(readability-identifier-naming): the standard's name
  T fetch_add(T more, std::memory_order /*order*/) const {
    return __atomic_fetch_add(&object_, more, __ATOMIC_SEQ_CST);
  }
  // NOLINTNEXTLINE(readability-identifier-naming): the standard's name
  bool compare_exchange_strong(T& expected, T desired, std::memory_order /*order*/) const {
    return __atomic_compare_exchange_n(&object_, &expected, desired, false, __ATOMIC_SEQ_CST,
                                       __ATOMIC_SEQ_CST);
  }

 private:
  T& object_;
};

#endif

}  // namespace veq::internal
