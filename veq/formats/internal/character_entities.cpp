#include "veq/formats/internal/character_entities.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <system_error>
#include <utility>

namespace veq::internal {
namespace {

constexpr std::array<std::pair<std::string_view, char>, 5> kNamed{
    {{"quot", '"'}, {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"apos", '\''}}};

/// The letters and signs of ISO-8859-1 from 160 on, by the names that GML has for them.
constexpr std::array<std::string_view, 96> kLatin1{
    "nbsp",   "iexcl",  "cent",   "pound",  "curren", "yen",    "brvbar", "sect",   "uml",
    "copy",   "ordf",   "laquo",  "not",    "shy",    "reg",    "macr",   "deg",    "plusmn",
    "sup2",   "sup3",   "acute",  "micro",  "para",   "middot", "cedil",  "sup1",   "ordm",
    "raquo",  "frac14", "frac12", "frac34", "iquest", "Agrave", "Aacute", "Acirc",  "Atilde",
    "Auml",   "Aring",  "AElig",  "Ccedil", "Egrave", "Eacute", "Ecirc",  "Euml",   "Igrave",
    "Iacute", "Icirc",  "Iuml",   "ETH",    "Ntilde", "Ograve", "Oacute", "Ocirc",  "Otilde",
    "Ouml",   "times",  "Oslash", "Ugrave", "Uacute", "Ucirc",  "Uuml",   "Yacute", "THORN",
    "szlig",  "agrave", "aacute", "acirc",  "atilde", "auml",   "aring",  "aelig",  "ccedil",
    "egrave", "eacute", "ecirc",  "euml",   "igrave", "iacute", "icirc",  "iuml",   "eth",
    "ntilde", "ograve", "oacute", "ocirc",  "otilde", "ouml",   "divide", "oslash", "ugrave",
    "uacute", "ucirc",  "uuml",   "yacute", "thorn",  "yuml"};

/// The character of what stands between "&" and ";".
std::optional<char32_t> characterOf(std::string_view name) {
  for (const auto& [word, character] : kNamed) {
    if (word == name) return static_cast<char32_t>(character);
  }
  const auto letter = std::find(kLatin1.begin(), kLatin1.end(), name);
  if (letter != kLatin1.end()) return static_cast<char32_t>(160 + (letter - kLatin1.begin()));
  if (name.size() < 2 || name.front() != '#') return std::nullopt;
  const bool isHexadecimal = name[1] == 'x' || name[1] == 'X';
  name.remove_prefix(isHexadecimal ? 2 : 1);
  std::uint32_t number = 0;
  const char* const end = name.data() + name.size();
  const auto [at, error] = std::from_chars(name.data(), end, number, isHexadecimal ? 16 : 10);
  const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
  if (error != std::errc() || at != end || number > 0x10FFFF || isSurrogate) return std::nullopt;
  return static_cast<char32_t>(number);
}

}  // namespace

void appendCharacter(std::string& text, char32_t character) {
  const auto byte = [&text](std::uint32_t bits) { text += static_cast<char>(bits); };
  const std::uint32_t code = character;
  if (code < 0x80) return byte(code);
  if (code < 0x800) {
    byte(0xC0 | code >> 6);
  } else {
    if (code < 0x10000) {
      byte(0xE0 | code >> 12);
    } else {
      byte(0xF0 | code >> 18);
      byte(0x80 | (code >> 12 & 0x3F));
    }
    byte(0x80 | (code >> 6 & 0x3F));
  }
  byte(0x80 | (code & 0x3F));
}

std::string withoutEntities(std::string_view text) {
  constexpr std::size_t kLongest = 10;
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t ampersand = text.find('&');
    result.append(text.substr(0, ampersand));
    if (ampersand == text.npos) break;
    text.remove_prefix(ampersand);
    const std::size_t end = text.substr(0, kLongest + 2).find(';');
    const auto character = end == text.npos ? std::nullopt : characterOf(text.substr(1, end - 1));
    if (character) {
      appendCharacter(result, *character);
      text.remove_prefix(end + 1);
    } else {
      result += '&';
      text.remove_prefix(1);
    }
  }
  return result;
}

}  // namespace veq::internal
