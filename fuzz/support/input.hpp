#pragma once

#include <cstdint>
#include <string_view>

namespace veq::fuzz {

/// Decodes choices from the bytes of an input, one byte each, so that a mutated byte changes one
/// choice and leaves the others. Behind the end every byte is 0.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  [[nodiscard]] bool atEnd() const { return at_ == end_; }
  [[nodiscard]] std::uint8_t byte() { return atEnd() ? std::uint8_t{0} : *at_++; }
  [[nodiscard]] bool flag() { return (byte() & 1) != 0; }
  /// Below the limit.
  [[nodiscard]] std::uint64_t below(std::uint64_t limit) { return byte() % limit; }

  /// What comes before the next byte of this value, which is skipped, or else all.
  [[nodiscard]] std::string_view textUntil(char end) {
    const std::string_view all = rest();
    const std::string_view text = all.substr(0, all.find(end));
    at_ += text.size() + (text.size() < all.size() ? 1 : 0);
    return text;
  }
  [[nodiscard]] std::string_view rest() const {
    return {reinterpret_cast<const char*>(at_), static_cast<std::size_t>(end_ - at_)};
  }

 private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

/// The bytes of an input as text.
[[nodiscard]] inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace veq::fuzz
