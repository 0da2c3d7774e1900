/// \file
/// The values of one property: one for each vertex, edge or agent, in index order.
#pragma once

#include <cstdint>
#include <utility>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq {

class VEQNumberArray;

/// What the four kinds of columns have in common. A column starts editable; only fixedCopy() makes
/// one that is not, and every operation that would change a fixed column throws
/// std::invalid_argument. What is moved out of an editable column leaves it empty, of the same
/// element type and ready for use; out of a fixed one it is a copy, and the column stays as it is.
/// \ingroup values
class VEQ_EXPORT PropertyColumn {
 public:
  enum class Kind { kGeneric, kNumber, kVector2d, kVector3d };

  virtual ~PropertyColumn() = default;

  [[nodiscard]] Kind kind() const { return kind_; }
  [[nodiscard]] bool isEditable() const { return editable_; }
  [[nodiscard]] std::uint64_t count() const { return doCount(); }

  /// A copy of the element; std::out_of_range past the end.
  [[nodiscard]] PropertyValue objectAtIndex(std::uint64_t index) const;

  /// Replaces one element. A null marker becomes 0 or the zero vector in a typed column. Throws
  /// std::out_of_range past the end and std::invalid_argument for a value that the column's kind
  /// cannot hold; the column is then as it was. Takes no memory for a value that is moved in.
  void replaceObjectAtIndex_withObject(std::uint64_t index, PropertyValue value);
  void replaceObject_atIndex(PropertyValue value, std::uint64_t index) {
    replaceObjectAtIndex_withObject(index, std::move(value));
  }

  /// Appends one element, or all elements of another column, which may be this one; bad values as
  /// in replaceObjectAtIndex_withObject, and then nothing is appended.
  void addObject(const PropertyValue& value);
  void addObjectsFromArray(const PropertyColumn& other);

  /// Appends elements that are not set: null markers, zeros or zero vectors. Nothing can fail after
  /// reserve() with the same number.
  void appendUnset(std::uint64_t howMany);
  void reserve(std::uint64_t howManyMore) { doReserve(howManyMore); }

  /// The elements at the given positions, in that order, repetitions included; the result is
  /// editable. std::out_of_range where a position is past the end.
  [[nodiscard]] Owned<PropertyColumn> subarrayWithIndices(const VEQNumberArray& indices) const {
    return doSubarray(indices);
  }

  /// Copies with their own storage. An object value is shared between the copies.
  [[nodiscard]] Owned<PropertyColumn> editableCopy() const { return doCopy(); }
  [[nodiscard]] Owned<PropertyColumn> fixedCopy() const;

 protected:
  explicit PropertyColumn(Kind kind) noexcept : kind_(kind) {}
  /// A copy is editable.
  PropertyColumn(const PropertyColumn& other) noexcept : kind_(other.kind_) {}
  PropertyColumn& operator=(const PropertyColumn&) = delete;

  /// What a move takes out of `elements` of a column.
  template <class Elements>
  [[nodiscard]] static Elements taken(const PropertyColumn& column, Elements& elements) {
    if (column.editable_) return std::move(elements);
    return elements;
  }

  /// Throw where the column is fixed or the index is past the end.
  void requireEditable() const;
  void requireIndex(std::uint64_t index) const;

 private:
  [[nodiscard]] virtual std::uint64_t doCount() const = 0;
  [[nodiscard]] virtual PropertyValue doGet(std::uint64_t index) const = 0;
  /// Throws std::invalid_argument where the kind cannot hold the value, before it changes anything;
  /// nothing else can fail.
  virtual void doSet(std::uint64_t index, PropertyValue&& value) = 0;
  virtual void doReserve(std::uint64_t howManyMore) = 0;
  virtual void doAppendUnset(std::uint64_t howMany) = 0;
  virtual void doTruncate(std::uint64_t count) = 0;
  [[nodiscard]] virtual Owned<PropertyColumn> doSubarray(const VEQNumberArray& indices) const = 0;
  /// An editable copy.
  [[nodiscard]] virtual Owned<PropertyColumn> doCopy() const = 0;

  const Kind kind_;
  bool editable_ = true;
};

}  // namespace veq
