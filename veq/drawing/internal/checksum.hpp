/// \file
/// The CRC-32 of gzip and PNG.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace veq::internal {

class Crc32 {
 public:
  void add(std::string_view bytes);
  /// Each number as 8 bytes, little-endian.
  void add(std::span<const std::uint64_t> numbers);
  [[nodiscard]] std::uint32_t value() const { return ~state_; }

 private:
  std::uint32_t state_ = 0xFFFFFFFF;
};

}  // namespace veq::internal
