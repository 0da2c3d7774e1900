#include "veq/formats/internal/integer_list_pass.hpp"

#include <algorithm>
#include <string>

namespace veq::internal {
namespace {

// So many that threads share them, and no more memory than that for some 16 MiB of text.
constexpr std::size_t kPiecesAtOnce = 64;

}  // namespace

void IntegerListPass::read(TextInput& text, const EdgeReceiver& receiver) {
  std::string_view piece = text.piece(0);
  for (std::size_t i = 0; !piece.empty(); piece = text.piece(++i)) {
    loneReturns_ = text.hasLoneReturns(i);
    whole_.setLoneReturns(loneReturns_);
    LineReader header(piece, loneReturns_);
    while (lines_ + header.number() < shape_.headerLine && header.next()) {
    }
    lines_ += header.number();
    piece.remove_prefix(static_cast<std::size_t>(header.position()));
    while (!piece.empty()) piece.remove_prefix(readSome(piece, receiver));
  }
}

std::size_t IntegerListPass::readSome(std::string_view text, const EdgeReceiver& receiver) {
  cut_.cut(text, kPiecesAtOnce);
  // A long line is read with all that follows.
  const std::size_t count = std::max<std::size_t>(cut_.count(), 1);
  const std::size_t size = cut_.count() == 0 ? text.size() : cut_.size();
  const auto piece = [&](std::size_t i) { return cut_.count() == 0 ? text : cut_.at(i); };
  if (pieces_.size() < count) pieces_.resize(count);
  std::vector<char> isRead(count);
  context_.team.forEachPiece(count, size, [&](std::uint64_t i) {
    pieces_[i].begin(whole_);
    isRead[i] =
        IntegerEdges::readPiece(piece(i), pieces_[i]) == piece(i).size() && areVertices(pieces_[i]);
  });
  for (std::size_t i = 0; i < count; ++i) {
    if (!isRead[i]) failIn(piece(i), lines_);
    lines_ += pieces_[i].lines;
  }
  from_.clear();
  to_.clear();
  for (std::size_t i = 0; i < count; ++i) {
    from_.insert(from_.end(), pieces_[i].from.begin(), pieces_[i].from.end());
    to_.insert(to_.end(), pieces_[i].to.begin(), pieces_[i].to.end());
  }
  receiver(from_, to_);
  return size;
}

bool IntegerListPass::areVertices(const IntegerEdges& edges) const {
  const auto isVertex = [this](std::uint64_t end) { return end < mostVertices_; };
  return std::all_of(edges.from.begin(), edges.from.end(), isVertex) &&
         std::all_of(edges.to.begin(), edges.to.end(), isVertex);
}

void IntegerListPass::failIn(std::string_view piece, std::uint64_t linesBefore) {
  LineReader lines(piece, loneReturns_);
  IntegerEdges edges;
  do {
    edges.begin(whole_);
    if (edges.read(lines, 1)) continue;
    throw Error(ErrorKind::kUnsupported,
                shown(withoutBlanks(lines.line())) +
                    " is not two integers, with or without a weight: a walk-only network has "
                    "neither names nor columns",
                Place{linesBefore + lines.number(), 1});
  } while (areVertices(edges));
  const Place place{linesBefore + lines.number(), 1};
  const std::uint64_t end = std::max(edges.from[0], edges.to[0]);
  if (static_cast<std::int64_t>(end) < 0) {
    failAt(place, "the id " + std::to_string(static_cast<std::int64_t>(end)) + " is no index");
  }
  context_.requireVertices(end + 1, place);
  failAt(place, "the id " + std::to_string(end) + " is beyond " + std::to_string(mostVertices_) +
                    " vertices");
}

}  // namespace veq::internal
