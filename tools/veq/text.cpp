#include "text.hpp"

#include <algorithm>
#include <cstdio>

namespace veq::tool {
namespace {

template <class... Arguments>
std::string formatted(const char* format, Arguments... arguments) {
  char buffer[400];  // A double in fixed form has up to 309 digits before its point.
  const int length = std::snprintf(buffer, sizeof buffer, format, arguments...);
  return std::string(buffer, static_cast<std::size_t>(std::max(length, 0)));
}

}  // namespace

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

std::string shortened(const std::string& text, std::size_t characters) {
  if (characterCount(text) <= characters) return text;
  std::size_t end = 0;
  for (std::size_t count = 0; count < characters; ++count) {
    // A character goes on in bytes of the form 10xxxxxx.
    do ++end;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80);
  }
  return text.substr(0, end) + "...";
}

std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
  }));
}

std::string shortNumber(double value) { return formatted("%.6g", value); }

std::string fixedNumber(double value, int decimals) { return formatted("%.*f", decimals, value); }

std::string bytesText(std::uint64_t bytes) {
  constexpr const char* kUnits[] = {" kB", " MB", " GB", " TB", " PB", " EB"};
  if (bytes < 1000) return counted(bytes, "byte", "bytes");
  double amount = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  for (; amount >= 999.5; amount /= 1000) ++unit;
  return fixedNumber(amount, amount < 9.95 ? 1 : 0) + kUnits[unit];
}

std::string percentage(double part, double whole) {
  return whole == 0 ? "-" : fixedNumber(100 * part / whole, 2) + " %";
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

}  // namespace veq::tool
