#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "veq/formats/internal/cbor.hpp"
#include "veq/numeric/number.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

struct CborHead {
  CborMajor major;
  std::uint8_t information;
  /// The value, length, count or tag; of a simple value its number, of a float its bits.
  std::uint64_t argument;

  [[nodiscard]] bool isSimple(CborInformation value) const {
    return major == CborMajor::kSimple && information == value;
  }
};

/// Reads CBOR items of definite length. A length or count that the bytes left cannot hold is
/// refused with the head that states it, so that nobody allocates for it. Nothing can be read after
/// a failure.
class CborReader {
 public:
  explicit CborReader(std::string_view bytes) : rest_(bytes) {}

  [[nodiscard]] bool atEnd() const { return rest_.empty(); }
  /// The bytes not yet read.
  [[nodiscard]] std::string_view rest() const { return rest_; }

  [[nodiscard]] std::optional<CborHead> readHead();
  /// Skips a whole item that is well formed and not nested more deeply than archives are.
  [[nodiscard]] bool skipItem() { return skipItem(kDeepest); }

  /// Text that is UTF-8, or a byte string.
  [[nodiscard]] std::optional<std::string_view> readString();

  /// \name The rest of an item whose head has been read
  /// @{
  [[nodiscard]] std::optional<std::string_view> readString(const CborHead& head);
  /// A number of any of the kinds that CborWriter writes.
  [[nodiscard]] std::optional<Number> readNumber(const CborHead& head);
  /// A typed array; null for another item.
  [[nodiscard]] Owned<VEQNumberArray> readNumbers(const CborHead& head);
  /// @}

 private:
  static constexpr int kDeepest = 16;

  [[nodiscard]] bool skipItem(int depth);
  [[nodiscard]] std::string_view take(std::uint64_t length);
  [[nodiscard]] std::optional<std::uint64_t> readBigEndian(unsigned width);
  template <class T>
  [[nodiscard]] Owned<VEQNumberArray> readArrayOf();

  std::string_view rest_;
};

}  // namespace veq::internal
