#include "veq/base/internal/text_escapes.hpp"

namespace veq::internal {
namespace {

constexpr std::string_view kNewline = "<newline>";
constexpr std::string_view kQuote = "<quote>";

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  std::size_t plain = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\n' && text[i] != '"') continue;
    out.append(text, plain, i - plain);
    out += text[i] == '\n' ? kNewline : kQuote;
    plain = i + 1;
  }
  out.append(text, plain);
}

// One pass does what replacing first the one and then the other would do: neither mark can overlap
// the other, and what replaces them is in neither.
std::string unescaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t plain = 0;
  for (std::size_t i = text.find('<'); i != text.npos; i = text.find('<', i)) {
    const std::string_view rest = text.substr(i);
    const bool isNewline = rest.substr(0, kNewline.size()) == kNewline;
    const bool isQuote = rest.substr(0, kQuote.size()) == kQuote;
    if (!isNewline && !isQuote) {
      ++i;
      continue;
    }
    out.append(text, plain, i - plain);
    out += isNewline ? '\n' : '"';
    i += isNewline ? kNewline.size() : kQuote.size();
    plain = i;
  }
  out.append(text, plain);
  return out;
}

}  // namespace veq::internal
