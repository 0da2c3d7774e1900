#include "veq/numeric/vector_arrays.hpp"

#include <stdexcept>

#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/text_scanner.hpp"
#include "veq/numeric/internal/element_storage.hpp"

namespace veq {
namespace {

std::array<double, 2> componentsOf(const VEQVector2d& vector) { return {vector.x(), vector.y()}; }
std::array<double, 3> componentsOf(const VEQVector3d& vector) {
  return {vector.x(), vector.y(), vector.z()};
}

VEQVector2d vectorOf(const std::array<double, 2>& components, Precision precision) {
  return {components[0], components[1], precision};
}
VEQVector3d vectorOf(const std::array<double, 3>& components, Precision precision) {
  return {components[0], components[1], components[2], precision};
}

template <std::size_t kAxes>
auto vectorIn(const PropertyValue& value) {
  if constexpr (kAxes == 2) {
    return value.vector2d();
  } else {
    return value.vector3d();
  }
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

template <std::size_t kAxes>
auto VectorArray<kAxes>::initWithSize_precision(std::uint64_t count, Precision precision)
    -> Owned<Array> {
  auto result = std::make_unique<Array>();
  VectorArray& made = *result;
  made.precision_ = precision;
  made.doAppendUnset(count);
  return result;
}

template <std::size_t kAxes>
void VectorArray<kAxes>::setVector_atIndex(const Vector& vector, std::uint64_t index) {
  requireEditable();
  requireIndex(index);
  const auto components = componentsOf(vector);
  for (std::size_t axis = 0; axis < kAxes; ++axis) axes_[axis][index] = components[axis];
}

template <std::size_t kAxes>
auto VectorArray<kAxes>::vectorAtIndex(std::uint64_t index) const -> Vector {
  requireIndex(index);
  std::array<double, kAxes> components;
  for (std::size_t axis = 0; axis < kAxes; ++axis) components[axis] = axes_[axis][index];
  return vectorOf(components, precision_);
}

template <std::size_t kAxes>
std::string VectorArray<kAxes>::stringValueWithVectorSeparator_elementsSeparator(
    std::string_view vectorSeparator, std::string_view elementsSeparator) const {
  std::string result;
  for (std::size_t index = 0; index < axes_[0].size(); ++index) {
    if (index > 0) result += vectorSeparator;
    for (std::size_t axis = 0; axis < kAxes; ++axis) {
      if (axis > 0) result += elementsSeparator;
      internal::appendShortest(result, axes_[axis][index]);
    }
  }
  return result;
}

template <std::size_t kAxes>
auto VectorArray<kAxes>::subarrayWithIndices(const VEQNumberArray& indices) const -> Owned<Array> {
  auto result = std::make_unique<Array>();
  VectorArray& made = *result;
  for (std::size_t axis = 0; axis < kAxes; ++axis) {
    made.axes_[axis] = internal::gather<std::vector<double>>(axes_[axis], indices);
  }
  made.precision_ = precision_;
  return result;
}

template <std::size_t kAxes>
auto VectorArray<kAxes>::editableCopy() const -> Owned<Array> {
  return std::make_unique<Array>(static_cast<const Array&>(*this));
}

template <std::size_t kAxes>
auto VectorArray<kAxes>::fixedCopy() const -> Owned<Array> {
  return internal::ownedAs<Array>(PropertyColumn::fixedCopy());
}

template <std::size_t kAxes>
PropertyValue VectorArray<kAxes>::doGet(std::uint64_t index) const {
  return vectorAtIndex(index);
}

template <std::size_t kAxes>
void VectorArray<kAxes>::doSet(std::uint64_t index, PropertyValue&& value) {
  const Vector* const vector = vectorIn<kAxes>(value);
  if (!vector && !value.isNull()) {
    throw std::invalid_argument(kAxes == 2 ? "A 2D vector array holds 2D vectors only."
                                           : "A 3D vector array holds 3D vectors only.");
  }
  setVector_atIndex(vector ? *vector : Vector(), index);
}

template <std::size_t kAxes>
void VectorArray<kAxes>::doReserve(std::uint64_t howManyMore) {
  for (auto& axis : axes_) internal::reserveMore(axis, howManyMore);
}

template <std::size_t kAxes>
void VectorArray<kAxes>::doAppendUnset(std::uint64_t howMany) {
  doReserve(howMany);
  for (auto& axis : axes_) internal::appendUnsetTo(axis, howMany);
}

template <std::size_t kAxes>
void VectorArray<kAxes>::doTruncate(std::uint64_t count) {
  for (auto& axis : axes_) axis.resize(count);
}

template <std::size_t kAxes>
Owned<PropertyColumn> VectorArray<kAxes>::doSubarray(const VEQNumberArray& indices) const {
  return subarrayWithIndices(indices);
}

template <std::size_t kAxes>
Owned<PropertyColumn> VectorArray<kAxes>::doCopy() const {
  return editableCopy();
}

template class VectorArray<2>;
template class VectorArray<3>;

Owned<VEQVector3dArray> VEQVector3dArray::initWithString(std::string_view text) {
  auto result = std::make_unique<VEQVector3dArray>();
  for (bool more = true; more;) {
    const std::size_t end = text.find(';');
    const std::string_view piece = text.substr(0, end);
    more = end != std::string_view::npos;
    if (more) text.remove_prefix(end + 1);
    if (!more && isBlank(piece)) break;
    const VEQVector3d vector = readVector(piece);
    result->axes_[0].push_back(vector.x());
    result->axes_[1].push_back(vector.y());
    result->axes_[2].push_back(vector.z());
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
  result->axes_[0].assign(x, x + size);
  result->axes_[1].assign(y, y + size);
  result->axes_[2].assign(z, z + size);
  return result;
}

}  // namespace veq
