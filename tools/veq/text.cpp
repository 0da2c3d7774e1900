#include "text.hpp"

#include <algorithm>
#include <cstdio>

namespace veq::tool {
namespace {

/// The length of the well-formed UTF-8 character at the beginning of the bytes, 0 if there is none.
std::size_t utf8Length(std::string_view bytes) {
  const auto byte = [&bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || bytes.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return 0;
  }
  // Longer forms than needed, surrogates, and numbers beyond the last character.
  const unsigned char second = byte(1);
  if ((first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f)) return 0;
  if ((first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f)) return 0;
  return length;
}

template <class... Arguments>
std::string formatted(const char* format, Arguments... arguments) {
  char buffer[400];  // A double in fixed form has up to 309 digits before its point.
  const int length = std::snprintf(buffer, sizeof buffer, format, arguments...);
  return std::string(buffer, static_cast<std::size_t>(std::max(length, 0)));
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = utf8Length(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string printable(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0u;
    if (byte < 0x20 || byte == 0x7f) {
      result += '?';
    } else if (byte == 0xc2 && next >= 0x80 && next < 0xa0) {  // U+0080 to U+009F
      result += '?';
      ++i;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
  }));
}

std::string shortNumber(double value) { return formatted("%.6g", value); }

std::string fixedNumber(double value, int decimals) { return formatted("%.*f", decimals, value); }

std::string percentage(double part, double whole) {
  return whole == 0 ? "-" : fixedNumber(100 * part / whole, 2) + " %";
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

}  // namespace veq::tool
