/// \file
/// The words of CBOR (RFC 8949) and of its typed arrays (RFC 8746), as far as archives use them.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veq::internal {

enum class CborMajor : std::uint8_t {
  kUnsigned = 0,
  kNegative = 1,
  kBytes = 2,
  kText = 3,
  kArray = 4,
  kMap = 5,
  kTag = 6,
  kSimple = 7,
};

/// What the low five bits of an item's first byte say.
enum CborInformation : std::uint8_t {
  kCborOneByte = 24,
  kCborTwoBytes = 25,
  kCborFourBytes = 26,
  kCborEightBytes = 27,
  kCborFalse = 20,
  kCborTrue = 21,
  kCborNull = 22,
};

enum CborTag : std::uint64_t {
  kCborUnsignedBignum = 2,
  kCborUnsignedArray = 71,  // 64-bit, little-endian, like all below
  kCborIntegerArray = 79,
  kCborFloatArray = 85,
  kCborDoubleArray = 86,
};

/// The tag of an array of elements of this type.
template <class T>
inline constexpr CborTag kCborArrayOf = kCborDoubleArray;
template <>
inline constexpr CborTag kCborArrayOf<float> = kCborFloatArray;
template <>
inline constexpr CborTag kCborArrayOf<std::int64_t> = kCborIntegerArray;
template <>
inline constexpr CborTag kCborArrayOf<std::uint64_t> = kCborUnsignedArray;

/// Copies elements between memory and a typed array, in either direction. Here alone the byte order
/// of the machine matters.
template <class T>
void copyLittleEndian(void* to, const void* from, std::size_t count) {
  if (count == 0) return;
  std::memcpy(to, from, count * sizeof(T));
  if constexpr (std::endian::native == std::endian::big) {
    auto* bytes = static_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < count; ++i, bytes += sizeof(T)) {
      std::reverse(bytes, bytes + sizeof(T));
    }
  }
}

}  // namespace veq::internal
