/// \file
/// Texts that are read while they arrive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/internal/byte_stream.hpp"
#include "veq/formats/internal/read_context.hpp"

namespace veq::internal {

/// Whether a CR stands there without an LF behind it.
[[nodiscard]] bool hasLoneReturn(std::string_view text);
/// The same on all threads of a team, in pieces of so many bytes.
[[nodiscard]] bool hasLoneReturn(std::string_view text, Team& team,
                                 std::size_t pieceSize = std::size_t{1} << 18);

/// A text in UTF-8, whatever the file has. It is one piece where its size is known; what comes
/// through a pipe comes in pieces of whole lines, each of which is read when it is asked for. All
/// pieces stay where they are, so that views of them stay valid and a text can be read once more.
class VEQ_EXPORT TextInput {
 public:
  /// A text that outlives this.
  explicit TextInput(std::string_view text) : only_(text) {}
  /// Reads from what outlives this.
  TextInput(ByteStream& bytes, ReadContext& context);

  /// No address behind the last piece. Throws NotUtf8 where a text that began as UTF-8 does not go
  /// on so.
  [[nodiscard]] std::string_view piece(std::size_t index);
  /// Whether lines of the piece, which has been asked for, end with a CR alone.
  [[nodiscard]] bool hasLoneReturns(std::size_t index) const {
    return index < pieces_.size() ? pieces_[index].hasLoneReturns : hasLoneReturn(only_);
  }
  /// From now on pieces are passed through: each is forgotten when one behind it is asked for, and
  /// whether it is UTF-8 does not matter.
  void passThrough() { passesThrough_ = true; }
  /// How long the text is, as far as that is known; 0 where it is not.
  [[nodiscard]] std::uint64_t expectedSize() const {
    return bytes_ ? 0 : pieces_.empty() ? only_.size() : pieces_.front().text.size();
  }

 private:
  bool readPiece();
  /// All bytes, from the first on.
  [[nodiscard]] std::string takeBytes();

  struct Piece {
    std::string bytes;
    /// Without a byte-order mark.
    std::string_view text;
    bool hasLoneReturns = false;
  };
  void append(std::string bytes, std::size_t mark);

  std::string_view only_;
  /// Nothing where all is here.
  ByteStream* bytes_ = nullptr;
  ReadContext* context_ = nullptr;
  std::deque<Piece> pieces_;
  bool passesThrough_ = false;
  /// The beginning of a line whose end has not come.
  std::string begun_;
};

/// The text in UTF-8, whatever the bytes are: that, UTF-16 with a mark, or else ISO-8859-1, as a
/// note says.
[[nodiscard]] VEQ_EXPORT std::string decoded(std::string bytes, ReadContext& context);

/// Thrown where it turns out late that a text is not UTF-8, so that it must be read anew.
struct NotUtf8 {
  std::string bytes;
};

}  // namespace veq::internal
