#include "veq/numeric/property_value.hpp"

namespace veq {

PropertyValue PropertyObject::archivedForm() const { return {}; }

std::string PropertyValue::text() const {
  if (const auto* const itsNumber = number()) return itsNumber->text();
  if (const auto* const itsString = string()) return *itsString;
  if (const auto* const vector = vector2d()) return vector->stringValueWithSeparator(" ");
  if (const auto* const vector = vector3d()) return vector->stringValueWithSeparator(" ");
  if (const auto* const itsObject = object()) return itsObject->description();
  return "<null>";
}

}  // namespace veq
