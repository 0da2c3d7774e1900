/// \file
/// A column that can hold a value of any kind.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/numeric/property_column.hpp"

namespace veq {

/// Values of any kind.
/// \ingroup values
class VEQ_EXPORT GenericArray final : public PropertyColumn {
 public:
  GenericArray() : PropertyColumn(Kind::kGeneric) {}
  GenericArray(const GenericArray&) = default;
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): a fixed one is copied.
  GenericArray(GenericArray&& other)
      : PropertyColumn(other), values_(taken(other, other.values_)) {}
  /// Takes the values as they are.
  explicit GenericArray(std::vector<PropertyValue> values)
      : PropertyColumn(Kind::kGeneric), values_(std::move(values)) {}

  /// A column of null markers.
  [[nodiscard]] static Owned<GenericArray> nullFilled(std::uint64_t count);

  /// As PropertyColumn has them, with their own type.
  [[nodiscard]] Owned<GenericArray> subarrayWithIndices(const VEQNumberArray& indices) const;
  [[nodiscard]] Owned<GenericArray> editableCopy() const;
  [[nodiscard]] Owned<GenericArray> fixedCopy() const;

  /// The values in place; they move when the column grows.
  [[nodiscard]] const std::vector<PropertyValue>& values() const { return values_; }

 private:
  std::uint64_t doCount() const override { return values_.size(); }
  PropertyValue doGet(std::uint64_t index) const override { return values_[index]; }
  void doSet(std::uint64_t index, PropertyValue&& value) override;
  void doReserve(std::uint64_t howManyMore) override;
  void doAppendUnset(std::uint64_t howMany) override;
  void doTruncate(std::uint64_t count) override;
  Owned<PropertyColumn> doSubarray(const VEQNumberArray& indices) const override;
  Owned<PropertyColumn> doCopy() const override;

  std::vector<PropertyValue> values_;
};

}  // namespace veq
