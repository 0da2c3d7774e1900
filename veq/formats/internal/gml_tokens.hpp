#pragma once

#include <cstdint>
#include <string_view>

#include "veq/base/result.hpp"

namespace veq::internal {

class GmlTokens {
 public:
  enum class Kind { kKey, kNumber, kString, kOpen, kClose, kEnd };

  struct Token {
    Kind kind = Kind::kEnd;
    /// A string is without its quotes, and with its entities as they stand.
    std::string_view text;
    Place place;
  };

  explicit GmlTokens(std::string_view text) : text_(text) {}

  /// Throws Error where no token can be made.
  Token next();
  [[nodiscard]] std::uint64_t position() const { return at_; }

 private:
  [[nodiscard]] Place place() const { return {line_, at_ - lineStart_ + 1}; }
  void skipSpace();
  Token takeString();

  std::string_view text_;
  std::uint64_t at_ = 0;
  std::uint64_t line_ = 1;
  std::uint64_t lineStart_ = 0;
};

}  // namespace veq::internal
