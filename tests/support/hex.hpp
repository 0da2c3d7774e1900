#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace veq::test {

/// The bytes that hexadecimal digits stand for; blanks are skipped.
inline std::string fromHex(std::string_view digits) {
  std::string result;
  int high = -1;
  for (const char c : digits) {
    if (c == ' ') continue;
    const int digit = c <= '9' ? c - '0' : c - 'a' + 10;
    if (high < 0) {
      high = digit;
    } else {
      result += static_cast<char>(high * 16 + digit);
      high = -1;
    }
  }
  return result;
}

inline std::string toHex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    result += kDigits[byte >> 4];
    result += kDigits[byte & 15];
  }
  return result;
}

/// The digits without the blanks between them.
inline std::string packed(std::string_view digits) { return toHex(fromHex(digits)); }

}  // namespace veq::test
