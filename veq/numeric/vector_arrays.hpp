/// \file
/// Growable arrays of vectors.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/numeric/property_column.hpp"
#include "veq/numeric/vectors.hpp"

namespace veq {

class VEQVector2dArray;
class VEQVector3dArray;

namespace internal {

/// What stands for vectors of so many components.
template <std::size_t kAxes>
struct VectorTypes;
template <>
struct VectorTypes<2> {
  using Vector = VEQVector2d;
  using Array = VEQVector2dArray;
};
template <>
struct VectorTypes<3> {
  using Vector = VEQVector3d;
  using Array = VEQVector3dArray;
};

}  // namespace internal

/// What arrays of vectors of the plane and of space have in common: a block of doubles for each
/// component.
/// \ingroup values
template <std::size_t kAxes>
class VEQ_EXPORT VectorArray : public PropertyColumn {
 public:
  /// A vector, and an array of such vectors.
  using Vector = typename internal::VectorTypes<kAxes>::Vector;
  using Array = typename internal::VectorTypes<kAxes>::Array;

  /// Zero vectors; std::bad_alloc where the memory cannot be had.
  [[nodiscard]] static Owned<Array> initWithSize_precision(std::uint64_t count,
                                                           Precision precision);

  [[nodiscard]] Precision precision() const { return precision_; }

  /// std::out_of_range past the end.
  void setVector_atIndex(const Vector& vector, std::uint64_t index);
  [[nodiscard]] Vector vectorAtIndex(std::uint64_t index) const;

  /// The vectors, their components in shortest round-trip form.
  [[nodiscard]] std::string stringValueWithVectorSeparator_elementsSeparator(
      std::string_view vectorSeparator, std::string_view elementsSeparator) const;

  /// As PropertyColumn has them, with their own type.
  [[nodiscard]] Owned<Array> subarrayWithIndices(const VEQNumberArray& indices) const;
  [[nodiscard]] Owned<Array> editableCopy() const;
  [[nodiscard]] Owned<Array> fixedCopy() const;

 protected:
  /// For the two kinds of arrays.
  VectorArray() : PropertyColumn(kAxes == 2 ? Kind::kVector2d : Kind::kVector3d) {}
  VectorArray(const VectorArray&) = default;
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): a fixed one is copied.
  VectorArray(VectorArray&& other)
      : PropertyColumn(other), axes_(taken(other, other.axes_)), precision_(other.precision_) {}

  /// The components, each in a block of its own.
  std::array<std::vector<double>, kAxes> axes_;

 private:
  std::uint64_t doCount() const override { return axes_[0].size(); }
  PropertyValue doGet(std::uint64_t index) const override;
  void doSet(std::uint64_t index, PropertyValue&& value) override;
  void doReserve(std::uint64_t howManyMore) override;
  void doAppendUnset(std::uint64_t howMany) override;
  void doTruncate(std::uint64_t count) override;
  Owned<PropertyColumn> doSubarray(const VEQNumberArray& indices) const override;
  Owned<PropertyColumn> doCopy() const override;

  Precision precision_ = kDoublePrecision;
};

extern template class VectorArray<2>;
extern template class VectorArray<3>;

/// Vectors of the plane.
/// \ingroup values
class VEQ_EXPORT VEQVector2dArray final : public VectorArray<2> {};

/// Vectors of space.
/// \ingroup values
class VEQ_EXPORT VEQVector3dArray final : public VectorArray<3> {
 public:
  /// \name Constructors
  /// std::bad_alloc where the memory cannot be had. A pointer is not read where the count is 0.
  /// @{
  /// "x y z; x y z". A component that is no number reads as far as it goes, as 0 where it goes
  /// nowhere; missing components are 0, further ones are ignored; what follows the last ";" is a
  /// vector only if it holds something other than blanks.
  [[nodiscard]] static Owned<VEQVector3dArray> initWithString(std::string_view text);
  /// A copy; null gives an empty array. An element that is no 3D vector throws
  /// std::invalid_argument, except a null marker, which is the zero vector.
  [[nodiscard]] static Owned<VEQVector3dArray> initWithArray(const PropertyColumn* vectors);
  [[nodiscard]] static Owned<VEQVector3dArray> initWithXd_Yd_Zd_count(const double* x,
                                                                      const double* y,
                                                                      const double* z,
                                                                      std::uint64_t count);
  /// @}

  /// The components, count() of each; they move when the array grows.
  [[nodiscard]] double* xd() { return axes_[0].data(); }
  [[nodiscard]] double* yd() { return axes_[1].data(); }
  [[nodiscard]] double* zd() { return axes_[2].data(); }
  [[nodiscard]] std::span<const double> xs() const { return axes_[0]; }
  [[nodiscard]] std::span<const double> ys() const { return axes_[1]; }
  [[nodiscard]] std::span<const double> zs() const { return axes_[2]; }
};

}  // namespace veq
