#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "veq/base/result.hpp"
#include "veq/formats/internal/text_input.hpp"

namespace veq::internal {

class GmlTokens {
 public:
  enum class Kind { kKey, kNumber, kString, kOpen, kClose, kEnd };

  struct Token {
    Kind kind = Kind::kEnd;
    /// A string is without its quotes, and with its entities as they stand. Lives as long as this
    /// and the input.
    std::string_view text;
    Place place;
  };

  explicit GmlTokens(TextInput& input) : input_(input), text_(input.piece(0)) {}

  /// Throws Error where no token can be made.
  Token next();
  [[nodiscard]] std::uint64_t position() const { return before_ + at_; }

 private:
  [[nodiscard]] Place place() const { return {line_, before_ + at_ - lineStart_ + 1}; }
  void skipSpace();
  Token takeString();
  /// Whether there is more text, if need be in the next piece.
  bool hasMore() { return at_ < text_.size() || nextPiece(); }
  bool nextPiece();

  TextInput& input_;
  std::size_t piece_ = 0;
  std::string_view text_;
  std::uint64_t at_ = 0;
  /// The bytes of the pieces before this one.
  std::uint64_t before_ = 0;
  std::uint64_t line_ = 1;
  std::uint64_t lineStart_ = 0;
  /// Strings that go on from one piece into another.
  std::deque<std::string> joined_;
};

}  // namespace veq::internal
