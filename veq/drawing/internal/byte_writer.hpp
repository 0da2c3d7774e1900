/// \file
/// Little-endian bytes, as the block of a page has them.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace veq::internal {

/// Appends to a string.
class ByteWriter {
 public:
  void u8(std::uint8_t value) { bytes_.push_back(static_cast<char>(value)); }
  void u16(std::uint16_t value) { littleEndian(value, 2); }
  void u32(std::uint32_t value) { littleEndian(value, 4); }
  void u64(std::uint64_t value) { littleEndian(value, 8); }
  void f32(float value) { u32(std::bit_cast<std::uint32_t>(value)); }
  void f64(double value) { u64(std::bit_cast<std::uint64_t>(value)); }
  /// Seven bits a byte, the lowest first.
  void varint(std::uint64_t value) {
    for (; value >= 0x80; value >>= 7) u8(static_cast<std::uint8_t>(value | 0x80));
    u8(static_cast<std::uint8_t>(value));
  }
  /// 2 d for d >= 0 and -2 d - 1 below, where d is the difference.
  void difference(std::uint64_t value, std::uint64_t before) {
    varint(value >= before ? 2 * (value - before) : 2 * (before - value) - 1);
  }
  void raw(std::string_view bytes) { bytes_.append(bytes); }
  void text(std::string_view bytes) {
    varint(bytes.size());
    raw(bytes);
  }
  void section(std::uint8_t tag, const ByteWriter& payload) {
    u8(tag);
    text(payload.bytes_);
  }

  [[nodiscard]] const std::string& bytes() const { return bytes_; }
  [[nodiscard]] std::string take() { return std::move(bytes_); }

 private:
  void littleEndian(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i, value >>= 8) u8(static_cast<std::uint8_t>(value));
  }

  std::string bytes_;
};

}  // namespace veq::internal
