#include "veq/numeric/vector_arrays.hpp"

#include <array>
#include <stdexcept>

#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/text_scanner.hpp"
#include "veq/numeric/internal/element_storage.hpp"

namespace veq {
namespace {

template <std::size_t kDimensions>
std::string textOf(const std::array<std::span<const double>, kDimensions>& components,
                   std::string_view vectorSeparator, std::string_view elementsSeparator) {
  std::string result;
  for (std::size_t index = 0; index < components[0].size(); ++index) {
    if (index > 0) result += vectorSeparator;
    for (std::size_t axis = 0; axis < kDimensions; ++axis) {
      if (axis > 0) result += elementsSeparator;
      internal::appendShortest(result, components[axis][index]);
    }
  }
  return result;
}

/// Up to three components; missing ones are 0.
VEQVector3d readVector(std::string_view piece) {
  std::array<double, 3> components{};
  internal::TextScanner scanner(piece);
  for (double& component : components) {
    scanner.skipBlanksAndNewlines();
    component = scanner.readDouble().value_or(0.0);
    scanner.takeUntilBlankOrNewline();
  }
  return {components[0], components[1], components[2]};
}

bool isBlank(std::string_view text) {
  internal::TextScanner scanner(text);
  scanner.skipBlanksAndNewlines();
  return scanner.atEnd();
}

}  // namespace

Owned<VEQVector2dArray> VEQVector2dArray::initWithSize_precision(std::uint64_t count,
                                                                 Precision precision) {
  auto result = std::make_unique<VEQVector2dArray>();
  result->precision_ = precision;
  result->doAppendUnset(count);
  return result;
}

void VEQVector2dArray::setVector_atIndex(const VEQVector2d& vector, std::uint64_t index) {
  requireEditable();
  requireIndex(index);
  x_[index] = vector.x();
  y_[index] = vector.y();
}

VEQVector2d VEQVector2dArray::vectorAtIndex(std::uint64_t index) const {
  requireIndex(index);
  return {x_[index], y_[index], precision_};
}

std::string VEQVector2dArray::stringValueWithVectorSeparator_elementsSeparator(
    std::string_view vectorSeparator, std::string_view elementsSeparator) const {
  return textOf<2>({x_, y_}, vectorSeparator, elementsSeparator);
}

Owned<VEQVector2dArray> VEQVector2dArray::subarrayWithIndices(const VEQNumberArray& indices) const {
  auto result = std::make_unique<VEQVector2dArray>();
  result->x_ = internal::gather(x_, indices);
  result->y_ = internal::gather(y_, indices);
  result->precision_ = precision_;
  return result;
}

Owned<VEQVector2dArray> VEQVector2dArray::editableCopy() const {
  return std::make_unique<VEQVector2dArray>(*this);
}

Owned<VEQVector2dArray> VEQVector2dArray::fixedCopy() const {
  return internal::ownedAs<VEQVector2dArray>(PropertyColumn::fixedCopy());
}

PropertyValue VEQVector2dArray::doGet(std::uint64_t index) const { return vectorAtIndex(index); }

void VEQVector2dArray::doSet(std::uint64_t index, PropertyValue&& value) {
  const VEQVector2d* const vector = value.vector2d();
  if (!vector && !value.isNull()) {
    throw std::invalid_argument("A 2D vector array holds 2D vectors only.");
  }
  setVector_atIndex(vector ? *vector : VEQVector2d(), index);
}

void VEQVector2dArray::doReserve(std::uint64_t howManyMore) {
  internal::reserveMore(x_, howManyMore);
  internal::reserveMore(y_, howManyMore);
}

void VEQVector2dArray::doAppendUnset(std::uint64_t howMany) {
  doReserve(howMany);
  internal::appendUnsetTo(x_, howMany);
  internal::appendUnsetTo(y_, howMany);
}

void VEQVector2dArray::doTruncate(std::uint64_t count) {
  x_.resize(count);
  y_.resize(count);
}

Owned<PropertyColumn> VEQVector2dArray::doSubarray(const VEQNumberArray& indices) const {
  return subarrayWithIndices(indices);
}

Owned<PropertyColumn> VEQVector2dArray::doCopy() const { return editableCopy(); }

Owned<VEQVector3dArray> VEQVector3dArray::initWithSize_precision(std::uint64_t count,
                                                                 Precision precision) {
  auto result = std::make_unique<VEQVector3dArray>();
  result->precision_ = precision;
  result->doAppendUnset(count);
  return result;
}

Owned<VEQVector3dArray> VEQVector3dArray::initWithString(std::string_view text) {
  auto result = std::make_unique<VEQVector3dArray>();
  for (bool more = true; more;) {
    const std::size_t end = text.find(';');
    const std::string_view piece = text.substr(0, end);
    more = end != std::string_view::npos;
    if (more) text.remove_prefix(end + 1);
    if (!more && isBlank(piece)) break;
    const VEQVector3d vector = readVector(piece);
    result->x_.push_back(vector.x());
    result->y_.push_back(vector.y());
    result->z_.push_back(vector.z());
  }
  return result;
}

Owned<VEQVector3dArray> VEQVector3dArray::initWithArray(const PropertyColumn* vectors) {
  if (const auto* same = dynamic_cast<const VEQVector3dArray*>(vectors)) {
    return same->editableCopy();
  }
  auto result = std::make_unique<VEQVector3dArray>();
  if (vectors) result->addObjectsFromArray(*vectors);
  return result;
}

Owned<VEQVector3dArray> VEQVector3dArray::initWithXd_Yd_Zd_count(const double* x, const double* y,
                                                                 const double* z,
                                                                 std::uint64_t count) {
  const std::size_t size = internal::sizeOf<double>(count);
  auto result = std::make_unique<VEQVector3dArray>();
  result->x_.assign(x, x + size);
  result->y_.assign(y, y + size);
  result->z_.assign(z, z + size);
  return result;
}

void VEQVector3dArray::setVector_atIndex(const VEQVector3d& vector, std::uint64_t index) {
  requireEditable();
  requireIndex(index);
  x_[index] = vector.x();
  y_[index] = vector.y();
  z_[index] = vector.z();
}

VEQVector3d VEQVector3dArray::vectorAtIndex(std::uint64_t index) const {
  requireIndex(index);
  return {x_[index], y_[index], z_[index], precision_};
}

std::string VEQVector3dArray::stringValueWithVectorSeparator_elementsSeparator(
    std::string_view vectorSeparator, std::string_view elementsSeparator) const {
  return textOf<3>({x_, y_, z_}, vectorSeparator, elementsSeparator);
}

Owned<VEQVector3dArray> VEQVector3dArray::subarrayWithIndices(const VEQNumberArray& indices) const {
  auto result = std::make_unique<VEQVector3dArray>();
  result->x_ = internal::gather(x_, indices);
  result->y_ = internal::gather(y_, indices);
  result->z_ = internal::gather(z_, indices);
  result->precision_ = precision_;
  return result;
}

Owned<VEQVector3dArray> VEQVector3dArray::editableCopy() const {
  return std::make_unique<VEQVector3dArray>(*this);
}

Owned<VEQVector3dArray> VEQVector3dArray::fixedCopy() const {
  return internal::ownedAs<VEQVector3dArray>(PropertyColumn::fixedCopy());
}

PropertyValue VEQVector3dArray::doGet(std::uint64_t index) const { return vectorAtIndex(index); }

void VEQVector3dArray::doSet(std::uint64_t index, PropertyValue&& value) {
  const VEQVector3d* const vector = value.vector3d();
  if (!vector && !value.isNull()) {
    throw std::invalid_argument("A 3D vector array holds 3D vectors only.");
  }
  setVector_atIndex(vector ? *vector : VEQVector3d(), index);
}

void VEQVector3dArray::doReserve(std::uint64_t howManyMore) {
  internal::reserveMore(x_, howManyMore);
  internal::reserveMore(y_, howManyMore);
  internal::reserveMore(z_, howManyMore);
}

void VEQVector3dArray::doAppendUnset(std::uint64_t howMany) {
  doReserve(howMany);
  internal::appendUnsetTo(x_, howMany);
  internal::appendUnsetTo(y_, howMany);
  internal::appendUnsetTo(z_, howMany);
}

void VEQVector3dArray::doTruncate(std::uint64_t count) {
  x_.resize(count);
  y_.resize(count);
  z_.resize(count);
}

Owned<PropertyColumn> VEQVector3dArray::doSubarray(const VEQNumberArray& indices) const {
  return subarrayWithIndices(indices);
}

Owned<PropertyColumn> VEQVector3dArray::doCopy() const { return editableCopy(); }

}  // namespace veq
