#include "veq/formats/internal/table_columns.hpp"

#include <algorithm>

#include "veq/network/internal/property_columns.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {
namespace {

ValueKind kindOf(ElementType type) {
  const bool isInteger = type == ElementType::kInteger || type == ElementType::kUnsignedInteger;
  return isInteger ? ValueKind::kInteger : ValueKind::kNumber;
}

/// Integers only, numbers only, or anything.
ValueKind kindOf(const GenericArray& column) {
  ValueKind kind = ValueKind::kInteger;
  bool any = false;
  for (const PropertyValue& value : column.values()) {
    if (value.isNull()) continue;
    any = true;
    if (!value.number()) return ValueKind::kText;
    kind = std::max(kind, kindOf(value.number()->type()));
  }
  return any ? kind : ValueKind::kText;
}

ValueKind kindOf(const PropertyColumn& column) {
  switch (column.kind()) {
    case PropertyColumn::Kind::kNumber:
      return kindOf(static_cast<const VEQNumberArray&>(column).elementType());
    case PropertyColumn::Kind::kVector2d:
      return ValueKind::kVector2d;
    case PropertyColumn::Kind::kVector3d:
      return ValueKind::kVector3d;
    case PropertyColumn::Kind::kGeneric:
      break;
  }
  return kindOf(static_cast<const GenericArray&>(column));
}

}  // namespace

std::vector<TableColumn> columnsOf(const PropertyTable& table) {
  std::vector<TableColumn> columns;
  for (const auto& [key, column] : table) {
    if (!isReservedKey(key)) columns.push_back({key, column.get(), kindOf(*column)});
  }
  return columns;
}

}  // namespace veq::internal
