#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "veq/base/files.hpp"
#include "veq/base/internal/pace.hpp"

namespace veq::internal {

/// Thrown where a sink takes no more.
struct SinkClosed {};

/// A text on its way to a sink, in pieces. Its work is the rows of a network, as many as it has
/// vertices and edges, whichever of them the format has.
class TextOutput {
 public:
  TextOutput(const ByteSink& sink, Pace& pace, std::uint64_t rows)
      : sink_(sink), pace_(pace), all_(rows) {}

  /// To be appended to.
  std::string text;

  /// To be called behind each row: hands over what has come together, if that is much. Throws
  /// SinkClosed, and Stopped.
  void endRow() { endRows(rows_ + 1); }
  /// The same behind several, with which so many are done.
  void endRows(std::uint64_t done) {
    rows_ = done;
    if (text.size() >= kPiece) flush();
  }
  /// To be called behind the last.
  void finish() {
    rows_ = all_;
    flush();
  }

 private:
  void flush() {
    pace_.reach(rows_);
    if (!sink_(text)) throw SinkClosed{};
    text.clear();
  }

  static constexpr std::size_t kPiece = std::size_t{1} << 17;

  const ByteSink& sink_;
  Pace& pace_;
  std::uint64_t all_;
  std::uint64_t rows_ = 0;
};

}  // namespace veq::internal
