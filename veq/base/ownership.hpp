/// \file
/// The two words that signatures use for ownership.
#pragma once

#include <memory>
#include <new>
#include <utility>

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

/// What a factory makes of its constructor's result. The count of references wants memory of its
/// own; a factory that cannot have it has made nothing, like its constructor.
template <class T>
[[nodiscard]] Shared<T> sharedOrNull(Owned<T> object) {
  try {
    return Shared<T>(std::move(object));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace internal

}  // namespace veq
