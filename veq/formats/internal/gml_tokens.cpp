#include "veq/formats/internal/gml_tokens.hpp"

#include <string>

#include "veq/base/internal/digit_text.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/read_context.hpp"

namespace veq::internal {
namespace {

bool endsWord(char byte) {
  return isBlank(byte) || byte == '\n' || byte == '[' || byte == ']' || byte == '"';
}

bool beginsNumber(char byte) { return isDigit(byte) || byte == '-' || byte == '+' || byte == '.'; }

}  // namespace

bool GmlTokens::nextPiece() {
  const std::string_view text = input_.piece(piece_ + 1);
  if (text.empty()) return false;
  ++piece_;
  before_ += text_.size();
  text_ = text;
  at_ = 0;
  return true;
}

void GmlTokens::skipSpace() {
  // A line of which # is the first character is a comment.
  while (hasMore()) {
    const char byte = text_[at_];
    if (byte == '\n' || (byte == '\r' && (at_ + 1 == text_.size() || text_[at_ + 1] != '\n'))) {
      ++line_;
      lineStart_ = before_ + ++at_;
    } else if (isBlank(byte)) {
      ++at_;
    } else if (byte == '#') {
      // Pieces end with lines.
      while (at_ < text_.size() && text_[at_] != '\n' && text_[at_] != '\r') ++at_;
    } else {
      return;
    }
  }
}

GmlTokens::Token GmlTokens::takeString() {
  Token token{Kind::kString, {}, place()};
  std::uint64_t begin = ++at_;
  std::string* joined = nullptr;
  for (;;) {
    if (at_ == text_.size()) {
      if (!joined) joined = &joined_.emplace_back();
      *joined += text_.substr(begin);
      if (!nextPiece()) failAt(token.place, "a quote that is not closed");
      begin = 0;
    }
    const char byte = text_[at_++];
    if (byte == '"') break;
    if (byte != '\n') continue;
    ++line_;
    lineStart_ = before_ + at_;
  }
  token.text = text_.substr(begin, at_ - 1 - begin);
  if (!joined) return token;
  *joined += token.text;
  token.text = *joined;
  return token;
}

GmlTokens::Token GmlTokens::next() {
  skipSpace();
  if (!hasMore()) return {Kind::kEnd, {}, place()};
  const char byte = text_[at_];
  if (byte == '"') return takeString();
  Token token{Kind::kOpen, text_.substr(at_, 1), place()};
  if (byte == '[' || byte == ']') {
    token.kind = byte == '[' ? Kind::kOpen : Kind::kClose;
    ++at_;
    return token;
  }
  const std::uint64_t begin = at_;
  while (at_ < text_.size() && !endsWord(text_[at_])) ++at_;
  token.text = text_.substr(begin, at_ - begin);
  token.kind = beginsNumber(byte) ? Kind::kNumber : Kind::kKey;
  if (token.kind == Kind::kNumber && !wholeNumber(token.text)) {
    failAt(token.place, "no number: " + shown(token.text));
  }
  return token;
}

}  // namespace veq::internal
