/// \file
/// What an operation gives that can fail by its input, and why it did.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "veq/base/export.hpp"

namespace veq {

/// What kind of thing went wrong.
/// \ingroup errors
enum class ErrorKind {
  kArgument,     ///< An argument that cannot be: a negative index, too few weights, a limit.
  kFile,         ///< A file that cannot be opened, read or written.
  kFormat,       ///< A text that is not what its format asks for.
  kUnsupported,  ///< Something understood that this part of the library cannot do.
  kMemory,       ///< Memory that could not be had.
  kStopped,      ///< The work was stopped by its StopToken.
};

/// Where in a text something stands. Lines and columns count from 1; a column counts bytes, and 0
/// means that only the line is known.
/// \ingroup errors
struct Place {
  std::uint64_t line = 0;
  std::uint64_t column = 0;

  friend bool operator==(const Place&, const Place&) = default;
};

/// Why there is no result: a kind for programs, a sentence for people, and the place in the text
/// where there is one. Result::value() throws it.
/// \ingroup errors
class VEQ_EXPORT Error : public std::exception {
 public:
  Error(ErrorKind kind, std::string text, std::optional<Place> place = std::nullopt)
      : kind_(kind), text_(std::move(text)), place_(place) {}

  [[nodiscard]] ErrorKind kind() const noexcept { return kind_; }
  /// Without a full stop: "edge 7: target -1", "4 weights for 5 edges".
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  [[nodiscard]] const std::optional<Place>& place() const noexcept { return place_; }
  [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

 private:
  ErrorKind kind_;
  std::string text_;
  std::optional<Place> place_;
};

/// A T, or the Error that says why there is none.
/// \ingroup errors
template <class T>
class [[nodiscard]] Result {
 public:
  /// Either becomes one by itself.
  Result(T held) : either_(std::in_place_index<0>, std::move(held)) {}
  Result(Error error) : either_(std::in_place_index<1>, std::move(error)) {}

  [[nodiscard]] bool hasValue() const noexcept { return either_.index() == 0; }
  [[nodiscard]] explicit operator bool() const noexcept { return hasValue(); }

  /// \name The value
  /// Throws the error where there is none, which may be all that is wanted: `walk(...).value();`.
  /// @{
  [[nodiscard]] T& value() & {
    requireValue();
    return *std::get_if<0>(&either_);
  }
  [[nodiscard]] const T& value() const& {
    requireValue();
    return *std::get_if<0>(&either_);
  }
  T value() && {
    requireValue();
    return std::move(*std::get_if<0>(&either_));
  }
  [[nodiscard]] T* operator->() { return &value(); }
  [[nodiscard]] const T* operator->() const { return &value(); }
  /// @}

  /// Why there is no value; std::bad_variant_access where there is one.
  [[nodiscard]] const Error& error() const { return std::get<1>(either_); }

 private:
  void requireValue() const {
    if (const Error* error = std::get_if<1>(&either_)) throw *error;
  }

  std::variant<T, Error> either_;
};

/// For operations that only succeed or fail.
/// \ingroup errors
using Outcome = Result<std::monostate>;

}  // namespace veq
