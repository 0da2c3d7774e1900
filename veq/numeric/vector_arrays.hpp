/// \file
/// Growable arrays of vectors.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/numeric/property_column.hpp"
#include "veq/numeric/vectors.hpp"

namespace veq {

/// Vectors of the plane.
/// \ingroup values
class VEQ_EXPORT VEQVector2dArray final : public PropertyColumn {
 public:
  VEQVector2dArray() : PropertyColumn(Kind::kVector2d) {}
  VEQVector2dArray(const VEQVector2dArray&) = default;
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): a fixed one is copied.
  VEQVector2dArray(VEQVector2dArray&& other)
      : PropertyColumn(other),
        x_(taken(other, other.x_)),
        y_(taken(other, other.y_)),
        precision_(other.precision_) {}

  /// Zero vectors; std::bad_alloc where the memory cannot be had.
  [[nodiscard]] static Owned<VEQVector2dArray> initWithSize_precision(std::uint64_t count,
                                                                      Precision precision);

  /// The precision of all its vectors.
  [[nodiscard]] Precision precision() const { return precision_; }

  /// std::out_of_range past the end.
  void setVector_atIndex(const VEQVector2d& vector, std::uint64_t index);
  [[nodiscard]] VEQVector2d vectorAtIndex(std::uint64_t index) const;

  /// The vectors, their components in shortest round-trip form.
  [[nodiscard]] std::string stringValueWithVectorSeparator_elementsSeparator(
      std::string_view vectorSeparator, std::string_view elementsSeparator) const;

  /// As PropertyColumn has them, with their own type.
  [[nodiscard]] Owned<VEQVector2dArray> subarrayWithIndices(const VEQNumberArray& indices) const;
  [[nodiscard]] Owned<VEQVector2dArray> editableCopy() const;
  [[nodiscard]] Owned<VEQVector2dArray> fixedCopy() const;

 private:
  std::uint64_t doCount() const override { return x_.size(); }
  PropertyValue doGet(std::uint64_t index) const override;
  void doSet(std::uint64_t index, PropertyValue&& value) override;
  void doReserve(std::uint64_t howManyMore) override;
  void doAppendUnset(std::uint64_t howMany) override;
  void doTruncate(std::uint64_t count) override;
  Owned<PropertyColumn> doSubarray(const VEQNumberArray& indices) const override;
  Owned<PropertyColumn> doCopy() const override;

  std::vector<double> x_;
  std::vector<double> y_;
  Precision precision_ = kDoublePrecision;
};

/// Vectors of space, kept as three blocks of doubles.
/// \ingroup values
class VEQ_EXPORT VEQVector3dArray final : public PropertyColumn {
 public:
  VEQVector3dArray() : PropertyColumn(Kind::kVector3d) {}
  VEQVector3dArray(const VEQVector3dArray&) = default;
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): a fixed one is copied.
  VEQVector3dArray(VEQVector3dArray&& other)
      : PropertyColumn(other),
        x_(taken(other, other.x_)),
        y_(taken(other, other.y_)),
        z_(taken(other, other.z_)),
        precision_(other.precision_) {}

  /// \name Constructors
  /// std::bad_alloc where the memory cannot be had. A pointer is not read where the count is 0.
  /// @{
  [[nodiscard]] static Owned<VEQVector3dArray> initWithSize_precision(std::uint64_t count,
                                                                      Precision precision);
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

  /// The precision of all its vectors.
  [[nodiscard]] Precision precision() const { return precision_; }

  /// std::out_of_range past the end.
  void setVector_atIndex(const VEQVector3d& vector, std::uint64_t index);
  [[nodiscard]] VEQVector3d vectorAtIndex(std::uint64_t index) const;

  /// The components, count() of each; they move when the array grows.
  [[nodiscard]] double* xd() { return x_.data(); }
  [[nodiscard]] double* yd() { return y_.data(); }
  [[nodiscard]] double* zd() { return z_.data(); }
  [[nodiscard]] std::span<const double> xs() const { return x_; }
  [[nodiscard]] std::span<const double> ys() const { return y_; }
  [[nodiscard]] std::span<const double> zs() const { return z_; }

  /// The vectors, their components in shortest round-trip form.
  [[nodiscard]] std::string stringValueWithVectorSeparator_elementsSeparator(
      std::string_view vectorSeparator, std::string_view elementsSeparator) const;

  /// As PropertyColumn has them, with their own type.
  [[nodiscard]] Owned<VEQVector3dArray> subarrayWithIndices(const VEQNumberArray& indices) const;
  [[nodiscard]] Owned<VEQVector3dArray> editableCopy() const;
  [[nodiscard]] Owned<VEQVector3dArray> fixedCopy() const;

 private:
  std::uint64_t doCount() const override { return x_.size(); }
  PropertyValue doGet(std::uint64_t index) const override;
  void doSet(std::uint64_t index, PropertyValue&& value) override;
  void doReserve(std::uint64_t howManyMore) override;
  void doAppendUnset(std::uint64_t howMany) override;
  void doTruncate(std::uint64_t count) override;
  Owned<PropertyColumn> doSubarray(const VEQNumberArray& indices) const override;
  Owned<PropertyColumn> doCopy() const override;

  std::vector<double> x_;
  std::vector<double> y_;
  std::vector<double> z_;
  Precision precision_ = kDoublePrecision;
};

}  // namespace veq
