/// \file
/// The value of one property of one vertex, edge or agent.
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/number.hpp"
#include "veq/numeric/vectors.hpp"

namespace veq {

class PropertyValue;

/// Base of whatever else a caller wants to store as a property. Such values live in memory and in
/// texts, through their description; an archive refuses those that have no archived form.
/// \ingroup values
class VEQ_EXPORT PropertyObject {
 public:
  virtual ~PropertyObject() = default;

  /// The text by which writers represent the object.
  [[nodiscard]] virtual std::string description() const = 0;

  /// The number, string or vector that stands for the object in an archive and comes back from
  /// there in its place; the null marker, or another object, where there is none.
  [[nodiscard]] virtual PropertyValue archivedForm() const;
};

/// The null marker (not set), a number, a string, a vector, or any other object.
/// \ingroup values
class VEQ_EXPORT PropertyValue {
 public:
  /// The null marker.
  PropertyValue() = default;
  PropertyValue(std::nullptr_t) = delete;

  /// Whatever can be a value becomes one by itself.
  /// @{
  PropertyValue(Number number) : value_(number) {}
  template <class T>
  requires std::integral<T> || std::same_as<T, float> || std::same_as<T, double> PropertyValue(
      T number)
      : value_(Number(number)) {}
  PropertyValue(std::string text) : value_(Text{std::move(text)}) {}
  PropertyValue(std::string_view text) : PropertyValue(std::string(text)) {}
  PropertyValue(const char* text) : PropertyValue(std::string(text)) {}
  PropertyValue(const VEQVector2d& vector) : value_(vector) {}
  PropertyValue(const VEQVector3d& vector) : value_(vector) {}
  /// @}
  /// A null pointer is the null marker.
  template <std::derived_from<PropertyObject> T>
  PropertyValue(Shared<T> object) {
    if (object) value_ = Shared<const PropertyObject>(std::move(object));
  }

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(value_); }

  /// Each gives the value of its kind, or null where the value is of another kind.
  [[nodiscard]] const Number* number() const { return std::get_if<Number>(&value_); }
  [[nodiscard]] const std::string* string() const {
    const Text* const text = std::get_if<Text>(&value_);
    return text ? &text->value : nullptr;
  }
  [[nodiscard]] const VEQVector2d* vector2d() const { return std::get_if<VEQVector2d>(&value_); }
  [[nodiscard]] const VEQVector3d* vector3d() const { return std::get_if<VEQVector3d>(&value_); }
  [[nodiscard]] const PropertyObject* object() const {
    const auto* object = std::get_if<Shared<const PropertyObject>>(&value_);
    return object ? object->get() : nullptr;
  }

  /// The text that writers use: a string as it is, a number in its shortest decimal form, a
  /// vector's components separated by blanks, an object's description, and "<null>" for the null
  /// marker.
  [[nodiscard]] std::string text() const;

  /// Objects are equal when they are the same object.
  friend bool operator==(const PropertyValue&, const PropertyValue&) = default;

 private:
  /// Not the bare string: of strings and shared pointers GCC 12's library believes that a variant
  /// of them always holds something, and destroys what is not there when a copy runs out of memory.
  struct Text {
    std::string value;
    friend bool operator==(const Text&, const Text&) = default;
  };

  std::variant<std::monostate, Number, Text, VEQVector2d, VEQVector3d, Shared<const PropertyObject>>
      value_;
};

}  // namespace veq
