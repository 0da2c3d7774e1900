/// \file
/// Lines that several threads read side by side.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/internal/team.hpp"

namespace veq::internal {

/// Texts cut behind line feeds.
class TextPieces {
 public:
  /// How many bytes a piece has before the line that is its last. Tests lower it, so that texts are
  /// cut at every line.
  static inline std::size_t pieceSize = std::size_t{1} << 18;

  /// Cuts the beginning of a text into at most so many; what lies behind the last may go on with a
  /// line that is longer than pieces are.
  void cut(std::string_view text, std::size_t most);

  [[nodiscard]] std::size_t count() const { return ends_.size(); }
  [[nodiscard]] std::string_view at(std::size_t piece) const {
    const std::size_t begin = piece == 0 ? 0 : ends_[piece - 1];
    return text_.substr(begin, ends_[piece] - begin);
  }
  [[nodiscard]] std::size_t size() const { return ends_.empty() ? 0 : ends_.back(); }

 private:
  std::string_view text_;
  std::vector<std::size_t> ends_;
};

/// Has all threads of a team read lines, for a reader that otherwise reads them one by one. Each
/// thread reads pieces up to the first line that is more than numbers: one that begins a section,
/// that lacks something, or that something is to be said about. What has been read up to the first
/// such line of all counts, and there the reader goes on by itself; so neither cuts nor threads
/// show in what comes out.
///
/// What lines say has
///   void begin(const Whole& whole)    to be empty, and read as the whole goes on,
///   std::uint64_t count() const       to say how many entries there are;
/// and the whole, which may be of the same class,
///   std::uint64_t count() const       the same,
///   void reserve(std::uint64_t count) to expect so many,
///   void resize(std::uint64_t count)  to make room for entries, which are then
///   void copy(const Lines& piece, std::uint64_t at)    set, from several threads, and
///   void follow(const Lines& piece, std::uint64_t at)  to take the rest, piece by piece.
template <class Lines>
class LinesAhead {
 public:
  /// The team must outlive this.
  explicit LinesAhead(Team& team) : team_(team) {}

  /// Appends to the whole what lines from the beginning of a text on say, which is that of a line
  /// and has so many bytes before it. Answers how many bytes it has read; readPiece(piece,
  /// lines) answers it for one piece.
  template <class Whole, class Read>
  std::size_t read(std::string_view text, std::uint64_t position, Whole& whole, Read readPiece) {
    if (team_.threads() == 1 || position < waitsUntil_ || text.size() < Team::worthSharing) {
      return 0;
    }
    cut_.cut(text, std::min<std::size_t>(kPiecesEach * team_.threads(), kMostPieces));
    if (cut_.count() < 2) return 0;
    if (pieces_.size() < cut_.count()) pieces_ = std::vector<Piece>(cut_.count());
    team_.forEachPiece(cut_.count(), cut_.size(), [&](std::uint64_t i) {
      pieces_[i].lines.begin(whole);
      pieces_[i].bytes = readPiece(cut_.at(i), pieces_[i].lines);
    });
    const std::size_t bytes = take(whole, text.size());
    waitAfter(bytes, position);
    return bytes;
  }

 private:
  // So many that one which takes longer keeps nobody waiting, and no more memory than that for some
  // 64 MiB of text.
  static constexpr std::size_t kPiecesEach = 16;
  static constexpr std::size_t kMostPieces = 256;

  // Of lines of a cache, so that threads are not in each other's way.
  struct alignas(128) Piece {
    Lines lines;
    std::size_t bytes = 0;
    std::uint64_t at = 0;
  };

  /// Puts together what counts, of a text of which so much is left.
  template <class Whole>
  std::size_t take(Whole& whole, std::size_t left) {
    std::size_t used = 0;
    std::size_t bytes = 0;
    std::uint64_t count = whole.count();
    bool isWhole = true;
    while (isWhole && used < cut_.count()) {
      Piece& piece = pieces_[used];
      piece.at = count;
      count += piece.lines.count();
      bytes += piece.bytes;
      isWhole = piece.bytes == cut_.at(used++).size();
    }
    if (bytes > 0) {
      reserveOnce(whole, static_cast<double>(count - whole.count()) * static_cast<double>(left) /
                             static_cast<double>(bytes));
    }
    whole.resize(count);
    team_.forEachPiece(used, bytes,
                       [&](std::uint64_t i) { whole.copy(pieces_[i].lines, pieces_[i].at); });
    for (std::size_t i = 0; i < used; ++i) whole.follow(pieces_[i].lines, pieces_[i].at);
    return bytes;
  }

  /// For as many more entries as come if all lines are alike, and for some that are shorter.
  template <class Whole>
  void reserveOnce(Whole& whole, double more) {
    if (std::exchange(isReserved_, true)) return;
    try {
      whole.reserve(whole.count() + static_cast<std::uint64_t>(more + more / 64));
    } catch (const std::exception&) {  // They may be longer, and then there is no need of it.
    }
  }

  /// Where most was read in vain, a reader by itself is better for a while.
  void waitAfter(std::size_t bytes, std::uint64_t position) {
    const std::size_t all = cut_.size();
    wait_ = bytes == all ? 0 : bytes < all / 2 ? std::max<std::uint64_t>(2 * wait_, all) : wait_;
    // The line where it stopped is the reader's in any case.
    waitsUntil_ = position + bytes + std::max<std::uint64_t>(wait_, bytes == all ? 0 : 1);
  }

  Team& team_;
  TextPieces cut_;
  std::vector<Piece> pieces_;
  bool isReserved_ = false;
  std::uint64_t wait_ = 0;
  std::uint64_t waitsUntil_ = 0;
};

}  // namespace veq::internal
