#include "veq/base/internal/text_scanner.hpp"

namespace veq::internal {
namespace {

char lowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

WideSpace wideSpaceAt(const char* at, const char* end) {
  const auto byteAt = [&](std::ptrdiff_t offset) -> unsigned {
    return end - at > offset ? static_cast<unsigned char>(at[offset]) : 0;
  };
  if (byteAt(0) == 0xC2) {
    if (byteAt(1) == 0x85) return {kNewlineByte, 2};
    if (byteAt(1) == 0xA0) return {kBlankByte, 2};
    return {};
  }
  switch (byteAt(0) << 16 | byteAt(1) << 8 | byteAt(2)) {
    case 0xE280A8:  // U+2028
    case 0xE280A9:  // U+2029
      return {kNewlineByte, 3};
    case 0xE19A80:  // U+1680
    case 0xE280AF:  // U+202F
    case 0xE2819F:  // U+205F
    case 0xE38080:  // U+3000
      return {kBlankByte, 3};
    default:
      break;
  }
  const bool between2000And200A =
      byteAt(0) == 0xE2 && byteAt(1) == 0x80 && byteAt(2) >= 0x80 && byteAt(2) <= 0x8A;
  return between2000And200A ? WideSpace{kBlankByte, 3} : WideSpace{};
}

bool TextScanner::matchPrefix(std::string_view word) {
  if (rest().size() < word.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (lowerCase(at_[i]) != lowerCase(word[i])) return false;
  }
  at_ += word.size();
  return true;
}

}  // namespace veq::internal
