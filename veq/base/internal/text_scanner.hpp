/// \file
/// The one scanner under every text format.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "veq/base/internal/decimal_text.hpp"
#include "veq/base/internal/digit_text.hpp"

namespace veq::internal {

/// What a byte means to the scanner. A lead byte may begin a blank or a newline outside ASCII.
enum CharacterClass : std::uint8_t {
  kBlankByte = 1,
  kNewlineByte = 2,
  kQuoteByte = 4,
  kLeadByte = 8,
};

constexpr std::array<std::uint8_t, 256> makeCharacterClasses() {
  std::array<std::uint8_t, 256> classes{};
  classes[' '] = classes['\t'] = kBlankByte;
  classes['\n'] = classes['\v'] = classes['\f'] = classes['\r'] = kNewlineByte;
  classes['"'] = kQuoteByte;
  classes[0xC2] = classes[0xE1] = classes[0xE2] = classes[0xE3] = kLeadByte;
  return classes;
}
inline constexpr std::array<std::uint8_t, 256> kCharacterClasses = makeCharacterClasses();

/// A blank or newline outside ASCII: its class and its bytes. Class 0 where there is none.
struct WideSpace {
  std::uint8_t characterClass = 0;
  std::uint8_t length = 1;
};
/// Looks at the bytes from `at`, of which there is at least one.
WideSpace wideSpaceAt(const char* at, const char* end);

/// Walks once over UTF-8 text, which must outlive the scanner and the views that it gives. Nothing
/// is skipped that is not asked for. Blanks are space, tab and the other whitespace of Unicode that
/// ends no line (U+00A0, U+1680, U+2000 to U+200A, U+202F, U+205F, U+3000). Newlines are LF, CR,
/// VT, FF, U+0085, U+2028 and U+2029. Every other byte, NUL too, is an ordinary character. All
/// operations together look at each byte a bounded number of times.
class TextScanner {
 public:
  explicit TextScanner(std::string_view text)
      : begin_(text.data()), at_(text.data()), end_(text.data() + text.size()) {}

  [[nodiscard]] bool atEnd() const { return at_ == end_; }
  /// Bytes consumed so far.
  [[nodiscard]] std::size_t position() const { return static_cast<std::size_t>(at_ - begin_); }
  [[nodiscard]] std::string_view rest() const { return viewOf(at_, end_); }
  [[nodiscard]] bool startsWith(char character) const { return at_ != end_ && *at_ == character; }

  /// Goes to where so many bytes are consumed, on or back.
  void goTo(std::size_t position) { at_ = begin_ + position; }
  /// Consumes the character if it is next.
  bool match(char character) {
    if (!startsWith(character)) return false;
    ++at_;
    return true;
  }
  /// Consumes the word if the text goes on with it, ASCII letters in any case. The text may go on
  /// directly behind it: "edges" matches in "#EdgesList" behind the "#".
  bool matchPrefix(std::string_view word);

  [[gnu::always_inline]] void skipBlanks() { skip<kBlankByte>(); }
  [[gnu::always_inline]] void skipNewlines() { skip<kNewlineByte>(); }
  void skipBlanksAndNewlines() { skip<kBlankByte | kNewlineByte>(); }
  void skipToNewline() { skipUntil<kNewlineByte>(); }
  /// Goes to the next newline and over the whole run of them, so that no blank line is ever seen.
  void finishLine() {
    skipToNewline();
    skipNewlines();
  }

  /// Each takes everything before the character that it names, which stays; empty if that is next.
  std::string_view takeUntilNewline() { return takeUntil<kNewlineByte>(); }
  std::string_view takeUntilQuoteOrNewline() { return takeUntil<kQuoteByte | kNewlineByte>(); }
  std::string_view takeUntilBlankOrNewline() { return takeUntil<kBlankByte | kNewlineByte>(); }

  /// Reads an optional sign and ASCII digits. Beyond 64 bits it gives the nearest of INT64_MIN and
  /// INT64_MAX. Nothing, and nothing consumed, where no integer is next; blanks are not skipped.
  std::optional<std::int64_t> readInteger();
  /// Reads an optional sign, ASCII digits with at most one point (at least one digit) and an
  /// optional exponent ("e" without digits behind it stays), rounded correctly. Overflow gives an
  /// infinity, underflow a zero, both with the sign. No "inf", no "nan", no hexadecimal, whatever
  /// the locale. Nothing, and nothing consumed, where no number is next; blanks are not skipped.
  std::optional<double> readDouble() { return readDecimalAs<double>(); }
  /// As readDouble, rounded once from the decimal text to a float.
  std::optional<float> readFloat() { return readDecimalAs<float>(); }

 private:
  static std::uint8_t classOf(char byte) {
    return kCharacterClasses[static_cast<unsigned char>(byte)];
  }
  static std::string_view viewOf(const char* from, const char* to) {
    return {from, static_cast<std::size_t>(to - from)};
  }

  template <unsigned kClasses>
  [[gnu::always_inline]] void skip() {
    for (; at_ != end_; ++at_) {
      const std::uint8_t found = classOf(*at_);
      if (found & kClasses) continue;
      if (!(found & kLeadByte)) return;
      const WideSpace wide = wideSpaceAt(at_, end_);
      if (!(wide.characterClass & kClasses)) return;
      at_ += wide.length - 1;
    }
  }
  template <unsigned kClasses>
  void skipUntil() {
    for (; at_ != end_; ++at_) {
      const std::uint8_t found = classOf(*at_);
      if (!(found & (kClasses | kLeadByte))) continue;
      if (found & kClasses) return;
      if (wideSpaceAt(at_, end_).characterClass & kClasses) return;
    }
  }
  template <unsigned kClasses>
  std::string_view takeUntil() {
    const char* const from = at_;
    skipUntil<kClasses>();
    return viewOf(from, at_);
  }

  // Here, so that no optional number is put together: written in parts and read whole, it keeps the
  // processor waiting.
  template <class Number>
  std::optional<Number> readDecimalAs() {
    Number value;
    const char* const behind = readDecimal(at_, end_, value);
    if (!behind) return std::nullopt;
    at_ = behind;
    return value;
  }

  const char* begin_;
  const char* at_;
  const char* end_;
};

inline std::optional<std::int64_t> TextScanner::readInteger() {
  const char* at = at_;
  const bool negative = at != end_ && *at == '-';
  if (at != end_ && (*at == '-' || *at == '+')) ++at;
  const char* const digits = at;
  std::uint64_t value = 0;
  if (kEightDigitsAtOnce && end_ - at >= 8) {
    const Digits first = leadingDigits(at);
    value = first.value;
    at += first.count;
  }
  // With so many digits behind those eight the value is still far from the limit.
  constexpr std::ptrdiff_t kSafe = 10;
  const char* const safe = end_ - at > kSafe ? at + kSafe : end_;
  for (; at != safe && isDigit(*at); ++at) value = value * 10 + digitOf(*at);
  const std::uint64_t limit = negative ? std::uint64_t{1} << 63 : (std::uint64_t{1} << 63) - 1;
  for (; at != end_ && isDigit(*at); ++at) {
    // Once clamped, limit / 10 is passed and stays passed.
    value = value > (limit - digitOf(*at)) / 10 ? limit : value * 10 + digitOf(*at);
  }
  if (at == digits) return std::nullopt;
  at_ = at;
  return static_cast<std::int64_t>(negative ? 0 - value : value);
}

}  // namespace veq::internal
