/// \file
/// Texts line by line, and lines piece by piece.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>

#include "veq/base/internal/digit_text.hpp"
#include "veq/base/internal/text_scanner.hpp"
#include "veq/base/result.hpp"
#include "veq/formats/internal/text_input.hpp"

namespace veq::internal {

[[nodiscard]] constexpr bool isBlank(char byte) {
  return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\v' || byte == '\f';
}

[[nodiscard]] constexpr std::string_view withoutBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// Walks once over a line.
class LineCursor {
 public:
  explicit LineCursor(std::string_view line) : LineCursor(line, line.data() + line.size()) {}
  /// A line that something follows which is part of no number, in memory that goes on up to there:
  /// numbers are read faster where they are not the last bytes.
  LineCursor(std::string_view line, const char* readable)
      : at_(line.data()), end_(line.data() + line.size()), readable_(readable) {}

  [[nodiscard]] const char* at() const { return at_; }
  [[nodiscard]] bool atEnd() const { return at_ == end_; }
  [[nodiscard]] bool startsWith(char byte) const { return at_ != end_ && *at_ == byte; }
  [[nodiscard]] std::string_view rest() const {
    return {at_, static_cast<std::size_t>(end_ - at_)};
  }
  bool match(char byte) {
    if (!startsWith(byte)) return false;
    ++at_;
    return true;
  }
  void skipBlanks() {
    while (at_ != end_ && isBlank(*at_)) ++at_;
  }
  /// Up to the next blank.
  std::string_view takeWord() {
    const char* const from = at_;
    while (at_ != end_ && !isBlank(*at_)) ++at_;
    return {from, static_cast<std::size_t>(at_ - from)};
  }
  /// A quoted text, from behind its first quote to its last, or to the end of the line, which is
  /// told by `closed`.
  std::string_view takeQuoted(bool& closed) {
    const char* const from = at_;
    while (at_ != end_ && *at_ != '"') ++at_;
    const std::string_view text(from, static_cast<std::size_t>(at_ - from));
    closed = match('"');
    return text;
  }

  /// A word that is an integer of up to 18 digits, with a sign or not; it may also end before the
  /// given byte. Nothing, and nothing consumed, where there is another word.
  std::optional<std::int64_t> readInteger(char behind = ' ') {
    const char* at = at_;
    const bool negative = at != end_ && *at == '-';
    if (at != end_ && (*at == '-' || *at == '+')) ++at;
    std::int64_t value = 0;
    const char* const digits = at;
    if (kEightDigitsAtOnce && readable_ - at >= 8) {
      const Digits first = leadingDigits(at);
      value = static_cast<std::int64_t>(first.value);
      at += first.count;
    }
    constexpr std::ptrdiff_t kMostDigits = 18;
    for (; at != end_ && isDigit(*at); ++at) {
      if (at - digits >= kMostDigits) return std::nullopt;
      value = value * 10 + static_cast<std::int64_t>(digitOf(*at));
    }
    if (at == digits || (at != end_ && !isBlank(*at) && *at != behind)) return std::nullopt;
    at_ = at;
    return negative ? -value : value;
  }
  /// Whether the word is an integer of more digits than readInteger reads.
  [[nodiscard]] bool isAtHugeInteger() const {
    LineCursor word = *this;
    if (!word.match('-')) word.match('+');
    const std::string_view digits = word.takeWord();
    return digits.size() > 18 && digits.find_first_not_of("0123456789") == digits.npos;
  }
  /// As readInteger, but of all integers that 64 bits hold.
  std::optional<std::int64_t> readLongInteger(char behind = ' ') {
    if (const std::optional<std::int64_t> value = readInteger(behind)) return *value;
    const char* const from = at_ != end_ && *at_ == '+' ? at_ + 1 : at_;
    std::int64_t value = 0;
    const auto [at, error] = std::from_chars(from, end_, value);
    if (error != std::errc() || (at != end_ && !isBlank(*at) && *at != behind)) return std::nullopt;
    if (from != at_ && value < 0) return std::nullopt;
    at_ = at;
    return value;
  }
  /// A word that is a number. Nothing, and nothing consumed, where there is another word.
  std::optional<double> readNumber() {
    TextScanner scanner({at_, static_cast<std::size_t>(readable_ - at_)});
    const std::optional<double> value = scanner.readDouble();
    if (!value) return std::nullopt;
    const char* const behind = at_ + scanner.position();
    if (behind != end_ && !isBlank(*behind)) return std::nullopt;
    at_ = behind;
    return value;
  }

 private:
  const char* at_;
  const char* end_;
  const char* readable_;
};

/// The lines of a text, each of which ends with LF, CR LF or CR.
class LineReader {
 public:
  explicit LineReader(std::string_view text) { take(text, hasLoneReturn(text)); }
  /// Of a text that is read while it arrives, and outlives this.
  explicit LineReader(TextInput& input) : input_(&input) {
    take(input.piece(0), input.hasLoneReturns(0));
  }

  /// Of a piece of a text in which a CR alone ends lines or does not.
  LineReader(std::string_view text, bool loneReturns) { take(text, loneReturns); }

  /// What lies ahead in this piece of the text, from the beginning of a line on.
  [[nodiscard]] std::string_view rest() const {
    return {at_, static_cast<std::size_t>(end_ - at_)};
  }
  [[nodiscard]] bool hasLoneReturns() const { return loneReturns_; }
  /// Goes on behind so many bytes, which were so many lines.
  void skip(std::size_t bytes, std::uint64_t lines) {
    at_ += bytes;
    number_ += lines;
  }

  /// Goes to the next line; false behind the last one.
  bool next() {
    if (at_ == end_ && !nextPiece()) return false;
    ++number_;
    if (loneReturns_) return takeLine();
    const auto left = static_cast<std::size_t>(end_ - at_);
    const auto* newline = static_cast<const char*>(std::memchr(at_, '\n', left));
    line_ = {at_, newline ? static_cast<std::size_t>(newline - at_) : left};
    at_ = newline ? newline + 1 : end_;
    if (!line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
    return true;
  }
  [[nodiscard]] std::string_view line() const { return line_; }
  /// With its end.
  [[nodiscard]] std::string_view wholeLine() const {
    return {line_.data(), static_cast<std::size_t>(at_ - line_.data())};
  }
  /// At the beginning of the line.
  [[nodiscard]] LineCursor cursor() const { return {line_, end_}; }
  /// The bytes up to behind this line.
  [[nodiscard]] std::uint64_t position() const {
    return before_ + static_cast<std::uint64_t>(at_ - begin_);
  }
  /// From 1.
  [[nodiscard]] std::uint64_t number() const { return number_; }
  /// The place of something that stands in this line.
  [[nodiscard]] Place placeOf(const char* at) const {
    return {number_, static_cast<std::uint64_t>(at - line_.data()) + 1};
  }
  [[nodiscard]] Place place() const { return {number_, 1}; }
  /// The place of what may be a piece of this line; otherwise that of the line.
  [[nodiscard]] Place placeOf(std::string_view piece) const {
    const std::less<> before;
    const bool isHere =
        !before(piece.data(), line_.data()) && !before(line_.data() + line_.size(), piece.data());
    return isHere ? placeOf(piece.data()) : place();
  }

 private:
  void take(std::string_view text, bool loneReturns) {
    begin_ = at_ = text.data();
    end_ = at_ + text.size();
    loneReturns_ = loneReturns;
  }
  /// Of a text in which a CR alone ends lines, too.
  bool takeLine() {
    const char* at = at_;
    while (at != end_ && *at != '\n' && *at != '\r') ++at;
    line_ = {at_, static_cast<std::size_t>(at - at_)};
    if (at != end_) at += *at == '\r' && end_ - at > 1 && at[1] == '\n' ? 2 : 1;
    at_ = at;
    return true;
  }
  bool nextPiece() {
    const std::string_view text = input_ ? input_->piece(++piece_) : std::string_view();
    if (text.empty()) return false;
    before_ = position();
    take(text, input_->hasLoneReturns(piece_));
    return true;
  }

  TextInput* input_ = nullptr;
  std::size_t piece_ = 0;
  std::uint64_t before_ = 0;
  const char* begin_ = nullptr;
  const char* at_ = nullptr;
  const char* end_ = nullptr;
  bool loneReturns_ = false;
  std::string_view line_;
  std::uint64_t number_ = 0;
};

/// The whole text as a number; nothing where it is none.
[[nodiscard]] inline std::optional<double> wholeNumber(std::string_view text) {
  TextScanner scanner(text);
  const std::optional<double> value = scanner.readDouble();
  return value && scanner.atEnd() ? value : std::nullopt;
}

/// Whether texts are the same but for the case of ASCII letters.
[[nodiscard]] constexpr char lowerAscii(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}
[[nodiscard]] constexpr bool isLetter(char byte) {
  return lowerAscii(byte) >= 'a' && lowerAscii(byte) <= 'z';
}
[[nodiscard]] constexpr bool sameWord(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (lowerAscii(a[i]) != lowerAscii(b[i])) return false;
  }
  return true;
}

}  // namespace veq::internal
