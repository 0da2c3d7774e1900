/// \file
/// One number that remembers what kind of number it is.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <variant>

#include "veq/base/export.hpp"

namespace veq {

/// The element types of a number array; the values are the published element-type codes.
/// \ingroup values
enum class ElementType : int { kDouble = 12, kInteger = 13, kFloat = 14, kUnsignedInteger = 15 };

/// An integer, a 32-bit float or a double. A bool is the integer 0 or 1.
/// \ingroup values
class VEQ_EXPORT Number {
 public:
  /// Any integer but a bool.
  template <std::signed_integral T>
  Number(T value) : value_(static_cast<std::int64_t>(value)) {}
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) Number(T value) : value_(static_cast<std::uint64_t>(value)) {}
  /// A template, so that no pointer passes for a bool.
  template <std::same_as<bool> T>
  Number(T value) : value_(static_cast<std::int64_t>(value)) {}
  /// Either keeps its own type.
  Number(float value) : value_(value) {}
  Number(double value) : value_(value) {}

  [[nodiscard]] ElementType type() const;

  /// The value as T: double, float, std::int64_t or std::uint64_t, by the rules of convertNumber.
  template <class T>
  [[nodiscard]] T as() const;

  /// The shortest decimal text that reads back as the same value; integers have no point.
  [[nodiscard]] std::string text() const;

  /// The value in its own type, for std::visit.
  using Value = std::variant<double, std::int64_t, float, std::uint64_t>;
  [[nodiscard]] const Value& value() const { return value_; }

  friend bool operator==(const Number&, const Number&) = default;

 private:
  Value value_;
};

/// Converts between the element types. From a float type to an integer the value is truncated and
/// saturates; what is negative becomes unsigned as a 64-bit integer does, by wrapping; a NaN
/// becomes the smallest integer, which as an index or a size names nothing that can be.
/// \ingroup values
template <class To, class From>
[[nodiscard]] constexpr To convertNumber(From from) noexcept {
  if constexpr (std::floating_point<To> || std::integral<From>) {
    return static_cast<To>(from);
  } else {
    constexpr From kTwoTo63 = static_cast<From>(9223372036854775808.0);
    if constexpr (std::same_as<To, std::uint64_t>) {
      if (from >= 2 * kTwoTo63) return UINT64_MAX;
      if (from >= kTwoTo63) return static_cast<std::uint64_t>(from);
      return static_cast<std::uint64_t>(convertNumber<std::int64_t>(from));
    } else {
      if (from >= kTwoTo63) return INT64_MAX;
      if (!(from >= -kTwoTo63)) return INT64_MIN;
      return static_cast<std::int64_t>(from);
    }
  }
}

template <class T>
T Number::as() const {
  return std::visit([](auto value) { return convertNumber<T>(value); }, value_);
}

}  // namespace veq
