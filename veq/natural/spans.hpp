/// \file
/// Views of the caller's numbers, whatever their type.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

#include "veq/base/export.hpp"

namespace veq {

/// Integers that can stand for indices: signed or unsigned, of 32 or 64 bits.
/// \ingroup build
template <class T>
concept IndexInteger = std::integral<T> && !std::same_as<T, wchar_t> &&
                       !std::same_as<T, char32_t> && (sizeof(T) == 4 || sizeof(T) == 8);

namespace internal {

template <class Range>
using ElementOf =
    std::remove_cv_t<std::remove_pointer_t<decltype(std::data(std::declval<const Range&>()))>>;

template <class Range>
concept FloatsThatStay = (std::same_as<ElementOf<Range>, float> ||
                          std::same_as<ElementOf<Range>, double>)&&  //
    (std::is_lvalue_reference_v<Range> || std::is_trivially_copyable_v<Range>);

/// Elements that lie a number of bytes apart. Read byte by byte, since integers of one size may be
/// of several types.
template <class T>
struct StridedElements {
  const std::byte* first;
  std::size_t stride;

  [[nodiscard]] T operator[](std::uint64_t index) const {
    T value;
    std::memcpy(&value, first + index * stride, sizeof(T));
    return value;
  }
};

}  // namespace internal

/// The caller's indices, read during the call they are given to: vectors, arrays and spans of
/// integers of 32 or 64 bits, signed or not; braces of integers; or one of the two sides of pairs.
/// \ingroup build
class VEQ_EXPORT IndexSpan {
 public:
  IndexSpan() = default;
  /// Whatever lies in one block.
  template <class Range>
  requires IndexInteger<internal::ElementOf<Range>> IndexSpan(const Range& range)
      : IndexSpan(std::data(range), std::size(range)) {}
  IndexSpan(std::initializer_list<std::int64_t> values)
      : IndexSpan(values.begin(), values.size()) {}
  /// Integers that lie a number of bytes apart.
  template <IndexInteger T>
  IndexSpan(const T* first, std::uint64_t count, std::size_t stride = sizeof(T))
      : first_(reinterpret_cast<const std::byte*>(first)),
        count_(count),
        stride_(stride),
        wide_(sizeof(T) == 8),
        signed_(std::is_signed_v<T>),
        inPlace_(stride == 8 && (std::same_as<T, std::int64_t> || std::same_as<T, std::uint64_t>)) {
  }

  [[nodiscard]] std::uint64_t count() const { return count_; }

  /// Calls f with something whose operator[] gives the integers in their own type.
  template <class F>
  decltype(auto) visit(F&& f) const {
    if (wide_) {
      return signed_ ? f(elements<std::int64_t>()) : f(elements<std::uint64_t>());
    }
    return signed_ ? f(elements<std::int32_t>()) : f(elements<std::uint32_t>());
  }

  /// One of them; a negative one wraps, so that it names nothing that can be.
  [[nodiscard]] std::uint64_t operator[](std::uint64_t index) const {
    return visit([index](auto values) { return static_cast<std::uint64_t>(values[index]); });
  }
  /// In decimal digits.
  [[nodiscard]] std::string text(std::uint64_t index) const {
    return visit([index](auto values) { return std::to_string(values[index]); });
  }

  /// The same bits as unsigned integers of 64 bits, where they lie in memory as such.
  [[nodiscard]] std::optional<std::span<const std::uint64_t>> inPlace() const {
    if (!inPlace_) return std::nullopt;
    return std::span(reinterpret_cast<const std::uint64_t*>(first_), count_);
  }

 private:
  template <class T>
  [[nodiscard]] internal::StridedElements<T> elements() const {
    return {first_, stride_};
  }

  const std::byte* first_ = nullptr;
  std::uint64_t count_ = 0;
  std::size_t stride_ = 0;
  bool wide_ = true;
  bool signed_ = false;
  bool inPlace_ = false;
};

/// The caller's floats or doubles, which must stay where they are until they were read, or none at
/// all, which is not the same as no numbers.
/// \ingroup build
class VEQ_EXPORT NumberSpan {
 public:
  NumberSpan() = default;
  /// Of what outlives the expression: a vector or array that somebody holds, or a span.
  template <class Range>
  // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): a NumberSpan is no such range.
  requires internal::FloatsThatStay<Range> NumberSpan(Range&& range)
      : data_(std::data(range)),
        count_(std::size(range)),
        given_(true),
        wide_(std::same_as<internal::ElementOf<Range>, double>) {}

  /// Whether numbers were given, be it none of them, and how many.
  [[nodiscard]] bool given() const { return given_; }
  [[nodiscard]] std::uint64_t count() const { return count_; }

  /// Calls f with the span of const float or const double.
  template <class F>
  decltype(auto) visit(F&& f) const {
    if (wide_) return f(std::span(static_cast<const double*>(data_), count_));
    return f(std::span(static_cast<const float*>(data_), count_));
  }

 private:
  const void* data_ = nullptr;
  std::uint64_t count_ = 0;
  bool given_ = false;
  bool wide_ = true;
};

}  // namespace veq
