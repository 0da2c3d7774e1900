/// \file
/// One point or vector of the plane or of space.
#pragma once

#include <string>
#include <string_view>

#include "veq/base/export.hpp"

namespace veq {

/// The storage that a vector says its components came from. It is kept and reported; components are
/// doubles whatever it says.
/// \ingroup values
using Precision = int;
inline constexpr Precision kSinglePrecision = 0;
inline constexpr Precision kDoublePrecision = 1;

/// A point or vector of the plane; zero where nothing is given.
/// \ingroup values
class VEQ_EXPORT VEQVector2d {
 public:
  VEQVector2d() = default;
  /// Keeps what it is given.
  VEQVector2d(double x, double y, Precision precision = kDoublePrecision)
      : x_(x), y_(y), precision_(precision) {}

  /// What it was given.
  [[nodiscard]] double x() const { return x_; }
  [[nodiscard]] double y() const { return y_; }
  [[nodiscard]] Precision precision() const { return precision_; }

  /// The components in their shortest round-trip form, joined by the separator.
  [[nodiscard]] std::string stringValueWithSeparator(std::string_view separator) const;

  /// Compares the components, not the precision.
  friend bool operator==(const VEQVector2d& a, const VEQVector2d& b) {
    return a.x_ == b.x_ && a.y_ == b.y_;
  }

 private:
  double x_ = 0.0;
  double y_ = 0.0;
  Precision precision_ = kDoublePrecision;
};

/// A point or vector of space; zero where nothing is given.
/// \ingroup values
class VEQ_EXPORT VEQVector3d {
 public:
  VEQVector3d() = default;
  /// Keeps what it is given.
  VEQVector3d(double x, double y, double z, Precision precision = kDoublePrecision)
      : x_(x), y_(y), z_(z), precision_(precision) {}

  /// A vector of single precision.
  [[nodiscard]] static VEQVector3d initWithXf_Yf_Zf(float x, float y, float z) {
    return {x, y, z, kSinglePrecision};
  }

  /// What it was given.
  [[nodiscard]] double x() const { return x_; }
  [[nodiscard]] double y() const { return y_; }
  [[nodiscard]] double z() const { return z_; }
  [[nodiscard]] Precision precision() const { return precision_; }

  /// The components in their shortest round-trip form, joined by the separator.
  [[nodiscard]] std::string stringValueWithSeparator(std::string_view separator) const;

  /// Compares the components, not the precision.
  friend bool operator==(const VEQVector3d& a, const VEQVector3d& b) {
    return a.x_ == b.x_ && a.y_ == b.y_ && a.z_ == b.z_;
  }

 private:
  double x_ = 0.0;
  double y_ = 0.0;
  double z_ = 0.0;
  Precision precision_ = kDoublePrecision;
};

}  // namespace veq
