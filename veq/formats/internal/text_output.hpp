#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "veq/base/files.hpp"
#include "veq/base/internal/pace.hpp"

namespace veq::internal {

/// Thrown where a sink takes no more.
struct SinkClosed {};

/// A text on its way to a sink, in pieces.
class TextOutput {
 public:
  TextOutput(const ByteSink& sink, Pace& pace) : sink_(sink), pace_(pace) {}

  /// To be appended to.
  std::string text;

  /// To be called behind each row: hands over what has come together, if that is much. Throws
  /// SinkClosed, and Stopped.
  void endRow() {
    ++rows_;
    if (text.size() >= kPiece) flush();
  }
  void flush() {
    pace_.reach(rows_);
    if (!sink_(text)) throw SinkClosed{};
    text.clear();
  }

 private:
  static constexpr std::size_t kPiece = std::size_t{1} << 17;

  const ByteSink& sink_;
  Pace& pace_;
  std::uint64_t rows_ = 0;
};

}  // namespace veq::internal
