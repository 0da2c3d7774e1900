#include "veq/numeric/generic_array.hpp"

#include "veq/numeric/internal/element_storage.hpp"

namespace veq {

Owned<GenericArray> GenericArray::nullFilled(std::uint64_t count) {
  return std::make_unique<GenericArray>(
      std::vector<PropertyValue>(internal::sizeOf<PropertyValue>(count)));
}

Owned<GenericArray> GenericArray::subarrayWithIndices(const VEQNumberArray& indices) const {
  return std::make_unique<GenericArray>(
      internal::gather<std::vector<PropertyValue>>(values_, indices));
}

Owned<GenericArray> GenericArray::editableCopy() const {
  return std::make_unique<GenericArray>(*this);
}

Owned<GenericArray> GenericArray::fixedCopy() const {
  return internal::ownedAs<GenericArray>(PropertyColumn::fixedCopy());
}

void GenericArray::doSet(std::uint64_t index, PropertyValue&& value) {
  values_[index] = std::move(value);
}

void GenericArray::doReserve(std::uint64_t howManyMore) {
  internal::reserveMore(values_, howManyMore);
}

void GenericArray::doAppendUnset(std::uint64_t howMany) {
  internal::appendUnsetTo(values_, howMany);
}

void GenericArray::doTruncate(std::uint64_t count) { values_.resize(count); }

Owned<PropertyColumn> GenericArray::doSubarray(const VEQNumberArray& indices) const {
  return subarrayWithIndices(indices);
}

Owned<PropertyColumn> GenericArray::doCopy() const { return editableCopy(); }

}  // namespace veq
