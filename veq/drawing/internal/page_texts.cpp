#include "veq/drawing/internal/page_texts.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "veq/base/encodings.hpp"

namespace veq::internal {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// How many bytes the character has with which the text begins; 0 where it begins with none.
std::size_t characterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  return length <= text.size() && isUtf8(text.substr(0, length)) ? length : 0;
}

// C0, DEL and C1, whose first byte in UTF-8 is C2.
bool isControl(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (character.size() == 1) return first < 0x20 || first == 0x7F;
  return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

// Calls f with each character, or with the sign that stands for a byte of none.
template <class F>
void forEachCharacter(std::string_view text, F f) {
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    f(length == 0 ? kReplacement : text.substr(0, length));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
}

}  // namespace

std::string asUtf8(std::string_view bytes) {
  if (isUtf8(bytes)) return std::string(bytes);
  std::string text;
  forEachCharacter(bytes, [&text](std::string_view character) { text += character; });
  return text;
}

std::string markupText(std::string_view bytes) {
  std::string text;
  forEachCharacter(bytes, [&text](std::string_view character) {
    switch (character[0]) {
      case '&':
        text += "&amp;";
        break;
      case '<':
        text += "&lt;";
        break;
      case '>':
        text += "&gt;";
        break;
      case '"':
        text += "&quot;";
        break;
      case '\'':
        text += "&#39;";
        break;
      default:
        text += isControl(character) ? kReplacement : character;
    }
  });
  return text;
}

void appendJsonText(std::string& out, std::string_view bytes) {
  out += '"';
  forEachCharacter(bytes, [&out](std::string_view character) {
    if (isControl(character)) {
      constexpr std::string_view kDigits = "0123456789abcdef";
      const auto code = static_cast<unsigned char>(character.back());
      out += "\\u00";
      out += kDigits[code >> 4];
      out += kDigits[code & 15];
      return;
    }
    if (character[0] == '"' || character[0] == '\\') out += '\\';
    out += character;
  });
  out += '"';
}

std::string base64(std::string_view bytes) {
  constexpr std::string_view kSigns =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t given = std::min<std::size_t>(bytes.size() - i, 3);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8 | (k < given ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= given ? kSigns[bits >> (18 - 6 * k) & 63] : '=';
    }
  }
  return text;
}

}  // namespace veq::internal
