#include <algorithm>

#include "veq/base/internal/digit_text.hpp"
#include "veq/base/internal/file_url.hpp"
#include "veq/base/internal/text_scanner.hpp"

namespace veq::internal {
namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// The length of "scheme:" at the beginning; 0 if there is none.
std::size_t schemeLength(std::string_view url) {
  if (url.empty() || !isLetter(url[0])) return 0;
  const auto end = std::find_if_not(url.begin(), url.end(), [](char c) {
    return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
  });
  return end != url.end() && *end == ':' ? static_cast<std::size_t>(end - url.begin()) + 1 : 0;
}

/// -1 for what is no hexadecimal digit.
int hexValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      out += text[i];
      continue;
    }
    if (text.size() - i < 3) return std::nullopt;
    const int high = hexValue(text[i + 1]);
    const int low = hexValue(text[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    out += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return out;
}

}  // namespace

std::optional<std::string> pathFromUrl(std::string_view url) {
  std::optional<std::string> path;
  if (schemeLength(url) == 0) {
    path = std::string(url);
  } else {
    TextScanner scanner(url);
    if (!scanner.matchPrefix("file:")) return std::nullopt;
    if (scanner.matchPrefix("//")) scanner.matchPrefix("localhost");
    // A query or fragment is no part of the path.
    const std::string_view encoded = scanner.rest().substr(0, scanner.rest().find_first_of("?#"));
    if (encoded.empty() || encoded[0] != '/') return std::nullopt;
    path = percentDecoded(encoded);
  }
  if (path && path->find('\0') != path->npos) return std::nullopt;
  return path;
}

}  // namespace veq::internal
