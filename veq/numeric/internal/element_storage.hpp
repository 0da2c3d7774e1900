/// \file
/// What the four kinds of columns do with the vectors that hold their elements.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <stdexcept>
#include <string>

#include "veq/base/internal/number_text.hpp"
#include "veq/numeric/number.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// The count as a size of a vector of T. A count that no memory can hold throws std::bad_alloc,
/// like one that this machine's memory cannot, and not the std::length_error of std::vector.
template <class T>
std::size_t sizeOf(std::uint64_t count) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
  if (count > kMost) throw std::bad_alloc();
  return static_cast<std::size_t>(count);
}

/// Makes room for further elements. The storage at least doubles when it grows, so that a caller
/// who reserves for one element after the other pays for a constant number of moves of each.
template <class Vector>
void reserveMore(Vector& elements, std::uint64_t howManyMore) {
  const std::uint64_t size = elements.size();
  if (howManyMore <= elements.capacity() - size) return;
  if (howManyMore > std::numeric_limits<std::uint64_t>::max() - size) throw std::bad_alloc();
  const auto needed = sizeOf<typename Vector::value_type>(size + howManyMore);
  elements.reserve(std::max(needed, std::min<std::size_t>(2 * size, elements.max_size())));
}

/// Appends elements that are not set: zeros or null markers.
template <class Vector>
void appendUnsetTo(Vector& elements, std::uint64_t howMany) {
  reserveMore(elements, howMany);
  elements.resize(elements.size() + howMany, typename Vector::value_type{});
}

/// The elements at the given positions; std::out_of_range where a position is past the end. A
/// negative index is as far past the end as its unsigned value.
template <class Vector>
Vector gather(std::span<const typename Vector::value_type> elements,
              const VEQNumberArray& indices) {
  Vector result(sizeOf<typename Vector::value_type>(indices.count()));
  indices.visit([&](auto positions) {
    auto* to = result.data();
    for (const auto position : positions) {
      const auto from = convertNumber<std::uint64_t>(position);
      if (from >= elements.size()) {
        throw std::out_of_range("An index is past the end of the array.");
      }
      *to++ = elements[from];
    }
  });
  return result;
}

/// Appends the number in its shortest round-trip form; integers have no point.
template <class T>
void appendNumber(std::string& out, T value) {
  if constexpr (std::integral<T>) {
    appendInteger(out, value);
  } else {
    appendShortest(out, value);
  }
}

/// Gives the pointer the type that the object has.
template <class Column>
Owned<Column> ownedAs(Owned<PropertyColumn> column) {
  return Owned<Column>(static_cast<Column*>(column.release()));
}

}  // namespace veq::internal
