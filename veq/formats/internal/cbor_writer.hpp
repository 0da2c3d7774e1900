#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "veq/base/internal/memory.hpp"
#include "veq/formats/internal/cbor.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// Appends CBOR items to a block of bytes. std::bad_alloc may leave a part of an item behind, which
/// truncate() removes.
class CborWriter {
 public:
  /// The longest head of an item.
  static constexpr std::uint64_t kHeadRoom = 9;

  void writeHead(CborMajor major, std::uint64_t argument);
  void writeBool(bool value);
  void writeNull();
  /// Text, or a byte string where the bytes are no UTF-8.
  void writeString(std::string_view text);
  /// Each kind of number in a form of its own, so that it can be told when it is read: a signed
  /// integer as an integer, an unsigned one as a bignum, floats and doubles in their own width.
  void writeNumber(std::int64_t value);
  void writeNumber(std::uint64_t value);
  void writeNumber(float value);
  void writeNumber(double value);
  void writeNumbers(const VEQNumberArray& numbers);
  template <class T>
  void writeNumbers(std::span<const T> numbers) {
    writeHead(CborMajor::kTag, kCborArrayOf<T>);
    writeHead(CborMajor::kBytes, numbers.size_bytes());
    copyLittleEndian<T>(extend(numbers.size_bytes()), numbers.data(), numbers.size());
  }

  [[nodiscard]] std::uint64_t size() const { return size_; }
  void truncate(std::uint64_t size) { size_ = size; }
  /// Room for further bytes, to be filled by the caller.
  unsigned char* extend(std::uint64_t howMany);
  /// Puts a head into bytes that are already there, so that it ends where they do; returns where it
  /// begins.
  std::uint64_t placeHead(std::uint64_t end, CborMajor major, std::uint64_t argument);

  [[nodiscard]] std::string_view bytes() const {
    return {reinterpret_cast<const char*>(block_.data()), static_cast<std::size_t>(size_)};
  }

 private:
  void writeFixed(unsigned char first, std::uint64_t bits, unsigned width);

  Block<unsigned char> block_;
  std::uint64_t size_ = 0;
};

}  // namespace veq::internal
