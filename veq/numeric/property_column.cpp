#include "veq/numeric/property_column.hpp"

#include <stdexcept>
#include <utility>

namespace veq {

PropertyValue PropertyColumn::objectAtIndex(std::uint64_t index) const {
  requireIndex(index);
  return doGet(index);
}

void PropertyColumn::replaceObjectAtIndex_withObject(std::uint64_t index, PropertyValue value) {
  requireEditable();
  requireIndex(index);
  doSet(index, std::move(value));
}

void PropertyColumn::addObject(const PropertyValue& value) {
  requireEditable();
  // The value may lie in this very column, whose elements move when it grows.
  PropertyValue kept = value;
  const std::uint64_t end = doCount();
  doAppendUnset(1);
  try {
    doSet(end, std::move(kept));
  } catch (...) {
    doTruncate(end);
    throw;
  }
}

void PropertyColumn::addObjectsFromArray(const PropertyColumn& other) {
  requireEditable();
  const std::uint64_t end = doCount();
  const std::uint64_t added = other.doCount();
  doAppendUnset(added);
  try {
    for (std::uint64_t index = 0; index < added; ++index) doSet(end + index, other.doGet(index));
  } catch (...) {
    doTruncate(end);
    throw;
  }
}

void PropertyColumn::appendUnset(std::uint64_t howMany) {
  requireEditable();
  doAppendUnset(howMany);
}

Owned<PropertyColumn> PropertyColumn::fixedCopy() const {
  Owned<PropertyColumn> copy = doCopy();
  copy->editable_ = false;
  return copy;
}

void PropertyColumn::requireEditable() const {
  if (!editable_) throw std::invalid_argument("The array is not editable.");
}

void PropertyColumn::requireIndex(std::uint64_t index) const {
  if (index >= doCount()) throw std::out_of_range("The index is past the end of the array.");
}

}  // namespace veq
