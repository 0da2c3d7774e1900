#include "veq/numeric/number_array.hpp"

#include <algorithm>
#include <stdexcept>

#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/internal/element_storage.hpp"

namespace veq {
namespace {

using internal::RawVector;

template <class T>
RawVector<T> filled(T value, std::uint64_t count) {
  return RawVector<T>(internal::sizeOf<T>(count), value);
}

template <class T>
RawVector<T> copied(const T* values, std::uint64_t count) {
  return RawVector<T>(values, values + internal::sizeOf<T>(count));
}

template <class T>
RawVector<T> withCapacity(std::uint64_t capacity) {
  RawVector<T> result;
  result.reserve(internal::sizeOf<T>(capacity));
  return result;
}

template <class T>
Owned<VEQNumberArray> owned(RawVector<T> elements) {
  return std::make_unique<VEQNumberArray>(std::move(elements));
}

template <class T>
Shared<VEQNumberArray> shared(RawVector<T> elements) {
  return std::make_shared<VEQNumberArray>(std::move(elements));
}

/// Converts the first elements into the caller's buffer.
template <class T>
void copyOut(const VEQNumberArray& array, T* buffer, std::uint64_t count) {
  if (count > array.count()) throw std::out_of_range("The array has fewer elements than that.");
  array.visit([buffer, count](auto elements) {
    std::transform(elements.data(), elements.data() + count, buffer,
                   [](auto element) { return convertNumber<T>(element); });
  });
}

}  // namespace

const char* WrongElementType::what() const noexcept {
  switch (held_) {
    case ElementType::kDouble:
      return "The array holds doubles.";
    case ElementType::kInteger:
      return "The array holds integers.";
    case ElementType::kFloat:
      return "The array holds floats.";
    case ElementType::kUnsignedInteger:
      return "The array holds unsigned integers.";
  }
  return "The array holds numbers of another type.";
}

// The elements are copied outside the variant: GCC 12's library believes that a variant of vectors
// always holds one, and destroys what is not there when a copy inside it runs out of memory.
VEQNumberArray::VEQNumberArray(const VEQNumberArray& other)
    : PropertyColumn(other),
      storage_(
          std::visit([](auto elements) { return Storage(std::move(elements)); }, other.storage_)) {}

VEQNumberArray VEQNumberArray::ofIndices(std::initializer_list<std::uint64_t> values) {
  return VEQNumberArray(RawVector<std::uint64_t>(values));
}

VEQNumberArray VEQNumberArray::ofIndices(std::span<const std::uint64_t> values) {
  return VEQNumberArray(RawVector<std::uint64_t>(values.begin(), values.end()));
}

VEQNumberArray VEQNumberArray::ofIntegers(std::initializer_list<std::int64_t> values) {
  return VEQNumberArray(RawVector<std::int64_t>(values));
}

VEQNumberArray VEQNumberArray::ofIntegers(std::span<const std::int64_t> values) {
  return VEQNumberArray(RawVector<std::int64_t>(values.begin(), values.end()));
}

VEQNumberArray VEQNumberArray::ofFloats(std::initializer_list<float> values) {
  return VEQNumberArray(RawVector<float>(values));
}

VEQNumberArray VEQNumberArray::ofFloats(std::span<const float> values) {
  return VEQNumberArray(RawVector<float>(values.begin(), values.end()));
}

VEQNumberArray VEQNumberArray::ofDoubles(std::initializer_list<double> values) {
  return VEQNumberArray(RawVector<double>(values));
}

VEQNumberArray VEQNumberArray::ofDoubles(std::span<const double> values) {
  return VEQNumberArray(RawVector<double>(values.begin(), values.end()));
}

Owned<VEQNumberArray> VEQNumberArray::initWithDoubleScalar_count(double value,
                                                                 std::uint64_t count) {
  return owned(filled(value, count));
}

Owned<VEQNumberArray> VEQNumberArray::initWithFloatScalar_count(float value, std::uint64_t count) {
  return owned(filled(value, count));
}

Owned<VEQNumberArray> VEQNumberArray::initWithIntegerScalar_count(std::int64_t value,
                                                                  std::uint64_t count) {
  return owned(filled(value, count));
}

Owned<VEQNumberArray> VEQNumberArray::initWithUnsignedIntegerArray_count(
    const std::uint64_t* values, std::uint64_t count) {
  return owned(copied(values, count));
}

Owned<VEQNumberArray> VEQNumberArray::initWithFloatArray_count(const float* values,
                                                               std::uint64_t count) {
  return owned(copied(values, count));
}

Owned<VEQNumberArray> VEQNumberArray::initUnsignedIntegerArrayWithCapacity(std::uint64_t capacity) {
  return owned(withCapacity<std::uint64_t>(capacity));
}

Owned<VEQNumberArray> VEQNumberArray::initFloatArrayWithCapacity(std::uint64_t capacity) {
  return owned(withCapacity<float>(capacity));
}

Shared<VEQNumberArray> VEQNumberArray::numberArrayWithUnsignedIntegerArray_count(
    const std::uint64_t* values, std::uint64_t count) {
  return shared(copied(values, count));
}

Shared<VEQNumberArray> VEQNumberArray::numberArrayWithDoubleArray_count(const double* values,
                                                                        std::uint64_t count) {
  return shared(copied(values, count));
}

Shared<VEQNumberArray> VEQNumberArray::numberArrayWithFloatArray_count(const float* values,
                                                                       std::uint64_t count) {
  return shared(copied(values, count));
}

Shared<VEQNumberArray> VEQNumberArray::numberArrayWithNumber_count(Number number,
                                                                   std::uint64_t count) {
  return std::visit([count](auto value) { return shared(filled(value, count)); }, number.value());
}

ElementType VEQNumberArray::elementType() const {
  return static_cast<ElementType>(static_cast<int>(ElementType::kDouble) +
                                  static_cast<int>(storage_.index() % kElementTypes));
}

Number VEQNumberArray::numberAtIndex(std::uint64_t index) const {
  requireIndex(index);
  return visit([index](auto elements) { return Number(elements[index]); });
}

std::int64_t VEQNumberArray::integerValueAtIndex(std::uint64_t index) const {
  return numberAtIndex(index).as<std::int64_t>();
}

void VEQNumberArray::setIntegerValue_atIndex(std::int64_t value, std::uint64_t index) {
  requireEditable();
  requireIndex(index);
  doSet(index, value);
}

void VEQNumberArray::getFloatValues(float* buffer) const { copyOut(*this, buffer, doCount()); }

void VEQNumberArray::getFloatValues_count(float* buffer, std::uint64_t count) const {
  copyOut(*this, buffer, count);
}

void VEQNumberArray::getIntegerValues_count(std::int64_t* buffer, std::uint64_t count) const {
  copyOut(*this, buffer, count);
}

void VEQNumberArray::getUnsignedIntegerValues_count(std::uint64_t* buffer,
                                                    std::uint64_t count) const {
  copyOut(*this, buffer, count);
}

Owned<VEQNumberArray> VEQNumberArray::subarrayWithIndices(const VEQNumberArray& indices) const {
  return visit([&indices]<class T>(std::span<const T> elements) {
    return owned(internal::gather<RawVector<T>>(elements, indices));
  });
}

Owned<VEQNumberArray> VEQNumberArray::editableCopy() const {
  return std::make_unique<VEQNumberArray>(*this);
}

Owned<VEQNumberArray> VEQNumberArray::fixedCopy() const {
  return internal::ownedAs<VEQNumberArray>(PropertyColumn::fixedCopy());
}

void* VEQNumberArray::VEQ_dataPointer() {
  void* data = nullptr;
  change([&data](auto& elements) { data = elements.data(); });
  return data;
}

const void* VEQNumberArray::VEQ_dataPointer() const {
  return visit([](auto elements) -> const void* { return elements.data(); });
}

void VEQNumberArray::copyForeign() {
  storage_ = visit([]<class T>(std::span<const T> elements) {
    return Storage(RawVector<T>(elements.begin(), elements.end()));
  });
}

template <class F>
void VEQNumberArray::change(F f) {
  own();
  std::visit(
      [&f](auto& elements) {
        if constexpr (requires { elements.capacity(); }) f(elements);
      },
      storage_);
}

std::uint64_t VEQNumberArray::doCount() const {
  return visit([](auto elements) -> std::uint64_t { return elements.size(); });
}

PropertyValue VEQNumberArray::doGet(std::uint64_t index) const {
  return visit([index](auto elements) { return PropertyValue(elements[index]); });
}

void VEQNumberArray::doSet(std::uint64_t index, PropertyValue&& value) {
  const Number* const number = value.number();
  if (!number && !value.isNull()) {
    throw std::invalid_argument("A number array holds numbers only.");
  }
  change([index, number](auto& elements) {
    using T = typename std::decay_t<decltype(elements)>::value_type;
    elements[index] = number ? number->as<T>() : T{};
  });
}

void VEQNumberArray::doReserve(std::uint64_t howManyMore) {
  change([howManyMore](auto& elements) { internal::reserveMore(elements, howManyMore); });
}

void VEQNumberArray::doAppendUnset(std::uint64_t howMany) {
  change([howMany](auto& elements) { internal::appendUnsetTo(elements, howMany); });
}

void VEQNumberArray::doTruncate(std::uint64_t count) {
  change([count](auto& elements) { elements.resize(count); });
}

Owned<PropertyColumn> VEQNumberArray::doSubarray(const VEQNumberArray& indices) const {
  return subarrayWithIndices(indices);
}

Owned<PropertyColumn> VEQNumberArray::doCopy() const { return editableCopy(); }

}  // namespace veq
