#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "veq/numeric/property_column.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq::internal {

/// The elements of a column as writers put them between double quotes.
class ColumnText {
 public:
  explicit ColumnText(const PropertyColumn& column);

  /// Appends the escaped text of an element, with its quotes; "<null>" past the end of the column.
  void appendQuoted(std::string& out, std::uint64_t index) const;

 private:
  const PropertyColumn& column_;
  /// The elements in place, where the column has them as values.
  const std::vector<PropertyValue>* values_ = nullptr;
};

}  // namespace veq::internal
