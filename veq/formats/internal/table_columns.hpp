/// \file
/// The columns of a network as formats with typed attributes see them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {

/// What all values of a column that are set have in common.
enum class ValueKind { kInteger, kNumber, kText, kVector2d, kVector3d };

struct TableColumn {
  std::string key;
  const PropertyColumn* column;
  ValueKind kind;

  /// The value, null where it is unset or beyond the column's end.
  [[nodiscard]] PropertyValue at(std::uint64_t row) const { return valueOrNull(*column, row); }
};

/// The columns of a table that are no weights and ends, in their order.
[[nodiscard]] std::vector<TableColumn> columnsOf(const PropertyTable& table);

}  // namespace veq::internal
