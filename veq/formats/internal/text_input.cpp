#include "veq/formats/internal/text_input.hpp"

#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

#include "veq/base/internal/encodings.hpp"

namespace veq::internal {
namespace {

constexpr unsigned kEncodingCode = 60;

bool hasUtf16Mark(std::string_view bytes) {
  return bytes.substr(0, 2) == "\xFF\xFE" || bytes.substr(0, 2) == "\xFE\xFF";
}

}  // namespace

std::string decoded(std::string bytes, ReadContext& context) {
  const auto takenForLatin1 = [&](NoteKind kind, const char* why) {
    context.note(kEncodingCode, kind, {1, 1},
                 [&] { return std::string(why) + ": the text is taken for ISO-8859-1"; });
    return utf8FromLatin1(bytes);
  };
  if (isValidUtf8(bytes, context.team)) {
    const std::string_view text = withoutByteOrderMark(bytes);
    if (text.size() != bytes.size()) bytes.erase(0, bytes.size() - text.size());
    return bytes;
  }
  // A copy, because a mark that is broken leaves the bytes to be taken otherwise.
  if (std::optional<std::string> text = decodeAutomatically(std::string(bytes))) {
    return hasUtf16Mark(bytes) ? std::move(*text) : takenForLatin1(NoteKind::kTaken, "not UTF-8");
  }
  bytes.erase(0, hasUtf16Mark(bytes) ? 2 : 3);
  return takenForLatin1(NoteKind::kRepaired,
                        "what follows the byte-order mark is not what the mark says");
}

namespace {

/// Whether one stands in a piece of the text.
bool hasLoneReturn(std::string_view text, std::size_t begin, std::size_t end) {
  const std::string_view piece = text.substr(0, end);
  for (std::size_t at = piece.find('\r', begin); at != piece.npos; at = piece.find('\r', at + 1)) {
    if (at + 1 == text.size() || text[at + 1] != '\n') return true;
  }
  return false;
}

}  // namespace

bool hasLoneReturn(std::string_view text) { return hasLoneReturn(text, 0, text.size()); }

bool hasLoneReturn(std::string_view text, Team& team, std::size_t pieceSize) {
  std::atomic<bool> has{false};
  const std::uint64_t pieces = text.size() / pieceSize + 1;
  team.forEachPiece(pieces, text.size(), [&](std::uint64_t piece) {
    if (has.load(std::memory_order_relaxed)) return;
    const std::size_t begin = static_cast<std::size_t>(piece) * pieceSize;
    const std::size_t end = std::min(begin + pieceSize, text.size());
    if (hasLoneReturn(text, begin, end)) has.store(true, std::memory_order_relaxed);
  });
  return has.load(std::memory_order_relaxed);
}

TextInput::TextInput(ByteStream& bytes, ReadContext& context) : context_(&context) {
  const std::string_view head = bytes.head();
  // What has no lines or is none of ASCII's kin is decoded as a whole.
  const bool hasPieces = bytes.expected() == 0 && head.size() >= bytes.pieceSize() &&
                         head.find('\n') != head.npos && !hasUtf16Mark(head);
  if (!hasPieces) {
    std::string all = bytes.takeRest();
    context.setBytes(all.size());
    append(decoded(std::move(all), context), 0);
    return;
  }
  bytes_ = &bytes;
  context.expectMore();
}

std::string_view TextInput::piece(std::size_t index) {
  while (bytes_ && index >= pieces_.size() && readPiece()) {
  }
  if (index == 0 && pieces_.empty()) return only_;
  return index < pieces_.size() ? pieces_[index].text : std::string_view();
}

void TextInput::append(std::string bytes, std::size_t mark) {
  Piece& piece = pieces_.emplace_back();
  piece.bytes = std::move(bytes);
  piece.text = std::string_view(piece.bytes).substr(mark);
  piece.hasLoneReturns = hasLoneReturn(piece.text, context_->team);
}

bool TextInput::readPiece() {
  std::string piece = std::move(begun_);
  begun_.clear();
  std::size_t end = piece.npos;
  while (end == piece.npos) {
    const std::size_t filled = piece.size();
    piece.resize(filled + bytes_->pieceSize());
    const std::size_t count = bytes_->read(piece.data() + filled, bytes_->pieceSize());
    piece.resize(filled + count);
    context_->addBytes(count);
    if (count == 0) {
      bytes_ = nullptr;
      context_->expectNoMore();
      break;
    }
    end = std::string_view(piece).substr(filled).rfind('\n');
    if (end == piece.npos) continue;
    begun_ = piece.substr(filled + end + 1);
    piece.resize(filled + end + 1);
  }
  if (piece.empty()) return false;
  if (passesThrough_ && !pieces_.empty()) pieces_.back() = {};
  const bool isValid = passesThrough_ || isValidUtf8(piece, context_->team);
  const std::size_t mark = pieces_.empty() ? piece.size() - withoutByteOrderMark(piece).size() : 0;
  append(std::move(piece), mark);
  if (!isValid) throw NotUtf8{takeBytes()};
  return true;
}

std::string TextInput::takeBytes() {
  std::string bytes;
  for (Piece& piece : pieces_) {
    bytes += piece.bytes;
    piece = {};
  }
  bytes += begun_;
  if (bytes_) bytes += bytes_->takeRest();
  return bytes;
}

}  // namespace veq::internal
