/// \file
/// The bytes of a network's image: sections at multiples of 64 bytes, in one order, in which they
/// are written and read.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "veq/base/ownership.hpp"
#include "veq/base/result.hpp"
#include "veq/numeric/keyed_table.hpp"

namespace veq::internal {

/// Thrown where the bytes end too early or mean nothing; caught where the image is attached.
struct DamagedImage {};

constexpr std::uint64_t kSectionAlignment = 64;

/// Writes an image, or without memory only measures it.
class ImageWriter {
 public:
  explicit ImageWriter(std::byte* to) : to_(to) {}

  [[nodiscard]] std::uint64_t size() const { return size_; }

  /// A section to be filled; null where it is only measured, or empty.
  template <class T>
  [[nodiscard]] T* section(std::uint64_t count) {
    const std::uint64_t start =
        (size_ + kSectionAlignment - 1) / kSectionAlignment * kSectionAlignment;
    if (to_) std::memset(to_ + size_, 0, start - size_);
    size_ = start + count * sizeof(T);
    return to_ && count != 0 ? reinterpret_cast<T*>(to_ + start) : nullptr;
  }
  /// Appends to the section.
  void append(const void* bytes, std::uint64_t count) {
    if (to_ && count != 0) std::memcpy(to_ + size_, bytes, count);
    size_ += count;
  }
  template <class T>
  void append(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    append(&value, sizeof(T));
  }

 private:
  std::byte* to_;
  std::uint64_t size_ = 0;
};

/// Reads an image; throws DamagedImage beyond its end.
class ImageReader {
 public:
  explicit ImageReader(std::span<const std::byte> image) : image_(image) {}

  template <class T>
  [[nodiscard]] std::span<const T> section(std::uint64_t count) {
    const std::uint64_t start =
        (at_ + kSectionAlignment - 1) / kSectionAlignment * kSectionAlignment;
    if (start > image_.size() || count > (image_.size() - start) / sizeof(T)) throw DamagedImage{};
    at_ = start + count * sizeof(T);
    return {reinterpret_cast<const T*>(image_.data() + start), static_cast<std::size_t>(count)};
  }
  [[nodiscard]] std::string_view next(std::uint64_t count) {
    if (count > image_.size() - at_) throw DamagedImage{};
    at_ += count;
    return {reinterpret_cast<const char*>(image_.data() + at_ - count),
            static_cast<std::size_t>(count)};
  }
  template <class T>
  [[nodiscard]] T next() {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    std::memcpy(&value, next(sizeof(T)).data(), sizeof(T));
    return value;
  }
  /// Whether so many things can follow, each of a byte at least.
  void requireLeft(std::uint64_t count) const {
    if (count > image_.size() - at_) throw DamagedImage{};
  }

 private:
  std::span<const std::byte> image_;
  std::uint64_t at_ = 0;
};

/// All columns of a table; what is wrong is a value without archived form.
[[nodiscard]] std::optional<Error> writeColumns(ImageWriter& image, const PropertyTable& table);
/// So many columns. Those of numbers stand on the image, whose owner they hold.
[[nodiscard]] PropertyTable readColumns(ImageReader& image, std::uint64_t count,
                                        const Shared<const void>& owner);

}  // namespace veq::internal
