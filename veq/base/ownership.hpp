/// \file
/// The two words that signatures use for ownership.
#pragma once

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "veq/base/requirements.hpp"

namespace veq {

/// A result that belongs to the caller alone. Null where the operation made nothing.
/// \ingroup process
template <class T>
using Owned = std::unique_ptr<T>;

/// A result that is shared, and released when nobody refers to it any longer.
/// \ingroup process
template <class T>
using Shared = std::shared_ptr<T>;

namespace internal {

/// What `make()` gives, or nothing where memory for it cannot be had: the one place that turns
/// lacking memory into "not made", for networks, groups and whatever else a constructor gives.
template <class Make>
[[nodiscard]] auto orNothing(Make make) -> decltype(make()) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    return {};
  } catch (const std::length_error&) {  // More elements than a standard container can count.
    return {};
  }
}

/// What a factory makes of its constructor's result. The count of references wants memory of its
/// own; a factory that cannot have it has made nothing, like its constructor.
template <class T>
[[nodiscard]] Shared<T> sharedOrNull(Owned<T> object) {
  return orNothing([&object] { return Shared<T>(std::move(object)); });
}

}  // namespace internal

}  // namespace veq
