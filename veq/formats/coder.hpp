/// \file
/// What a network is archived with.
#pragma once

#include <optional>
#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq {

/// Typed entries under string keys. A coder encodes or decodes; what it does not do throws
/// std::logic_error. VEQKeyedArchiver and VEQKeyedUnarchiver are the library's own.
/// \ingroup files
class VEQ_EXPORT VEQCoder {
 public:
  virtual ~VEQCoder() = default;

  /// \name Encoding
  /// Entries keep the order in which they are encoded. A call that throws encodes nothing.
  /// @{
  virtual void encodeBool(bool value, std::string_view key);
  virtual void encodeNumberArray(const VEQNumberArray& numbers, std::string_view key);
  /// Throws std::invalid_argument, "A property cannot be archived.", for an object that has no
  /// archived form.
  virtual void encodePropertyTable(const PropertyTable& table, std::string_view key);
  /// @}

  /// \name Decoding
  /// In any order, and as often as one likes. Nothing where there is no such entry, where it is of
  /// another type or malformed. Number arrays and columns come back editable.
  /// @{
  [[nodiscard]] virtual std::optional<bool> decodeBool(std::string_view key);
  [[nodiscard]] virtual Owned<VEQNumberArray> decodeNumberArray(std::string_view key);
  [[nodiscard]] virtual std::optional<PropertyTable> decodePropertyTable(std::string_view key);
  /// @}
};

}  // namespace veq
