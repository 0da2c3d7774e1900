#include "veq/formats/internal/network_text.hpp"

#include <algorithm>

#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/parallelism.hpp"

namespace veq::internal {
namespace {

// More than the suffix and the line end of any style.
constexpr std::size_t kLongestEnding = 16;
// "-340282346638528859811704183484516925440.000000"
constexpr std::size_t kLongestWeight = 47;
constexpr std::size_t kLongestLine = 2 * (kLongestInteger + 1) + kLongestWeight + kLongestEnding;
// So many are worth a meeting of the threads.
constexpr std::uint64_t kPiecesEach = 8;
constexpr std::uint64_t kMostPieces = 256;
constexpr std::uint64_t kUsualLine = 16;

char* write(char* at, std::string_view text) { return std::copy(text.begin(), text.end(), at); }

}  // namespace

NetworkText::NetworkText(const NetworkCore& core, const EdgeLineStyle& style)
    : core_(core), style_(style) {
  const std::uint64_t edges = core.store.edgeCount();
  threads_ = edges * kUsualLine < Team::worthSharing ? 1 : parallelism();
  const std::uint64_t side = threads_ > 1 ? 2 * kPiecesEach * threads_ : 1;
  if (edges != 0) lengths_.resize(std::min(side, kMostPieces));
  roomOfPiece_ = std::min(edges, edgesOfPiece) * kLongestLine;
  pieces_.resize(lengths_.size() * roomOfPiece_);
}

std::string NetworkText::whole() {
  std::string text;
  text.reserve(expectedSize());
  adviseHugePages(text.data(), text.capacity());
  static_cast<void>(giveTo([&text](std::string_view piece) {
    text += piece;
    return true;
  }));
  return text;
}

bool NetworkText::giveTo(const ByteSink& sink) {
  return sink(beforeEdges) && giveEdgesTo(sink) && sink(behindEdges);
}

// While the sink takes one batch, the next is made in the other half of the pieces.
bool NetworkText::giveEdgesTo(const ByteSink& sink) {
  const std::uint64_t edges = core_.store.edgeCount();
  if (edges == 0) return true;
  Team team(threads_);
  const std::uint64_t atOnce = std::max<std::uint64_t>(lengths_.size() / 2, 1);
  Batch made;
  bool isTaken = true;
  do {
    Batch next;
    next.begin = made.end;
    next.end = made.end + std::min(edges - made.end, atOnce * edgesOfPiece);
    next.place = made.place == 0 && lengths_.size() > 1 ? atOnce : 0;
    team.forEachPieceWhile(
        piecesOf(next.end - next.begin), (next.end - next.begin) * kUsualLine,
        [&](std::uint64_t piece) { writePiece(next, piece); }, [&] { isTaken = give(made, sink); });
    made = next;
  } while (isTaken && made.end < edges);
  return isTaken && give(made, sink);
}

bool NetworkText::give(const Batch& batch, const ByteSink& sink) {
  for (std::uint64_t piece = 0; piece < piecesOf(batch.end - batch.begin); ++piece) {
    edgesGiven_ = std::min(batch.begin + (piece + 1) * edgesOfPiece, batch.end);
    const std::uint64_t place = batch.place + piece;
    if (!sink({pieces_.data() + place * roomOfPiece_, lengths_[place]})) return false;
  }
  return true;
}

void NetworkText::writePiece(const Batch& batch, std::uint64_t piece) {
  const std::uint64_t begin = batch.begin + piece * edgesOfPiece;
  const std::uint64_t place = batch.place + piece;
  lengths_[place] = writeEdges(pieces_.data() + place * roomOfPiece_, begin,
                               std::min(begin + edgesOfPiece, batch.end));
}

std::size_t NetworkText::writeEdges(char* piece, std::uint64_t begin, std::uint64_t end) const {
  return core_.store.visit([&](const auto& topology) {
    char* at = piece;
    for (std::uint64_t edge = begin; edge < end; ++edge) {
      at = writeInteger(at, topology.from[edge] + style_.firstVertex);
      *at++ = ' ';
      at = writeInteger(at, topology.to[edge] + style_.firstVertex);
      if (core_.edgesWeights) {
        *at++ = ' ';
        at = writeSixDecimals(at, (*core_.edgesWeights)[edge]);
      } else {
        at = write(at, style_.unweightedSuffix);
      }
      at = write(at, style_.lineEnd);
    }
    return static_cast<std::size_t>(at - piece);
  });
}

// With weights below 10, so that the text need not move while it grows. Pages that are never
// written to cost nothing.
std::size_t NetworkText::expectedSize() const {
  char digits[kLongestInteger];
  const auto vertex = writeInteger(digits, core_.store.vertexCount() + style_.firstVertex) - digits;
  const std::size_t line = 2 * static_cast<std::size_t>(vertex) + sizeof("  9.999999\r\n");
  return beforeEdges.size() + line * core_.store.edgeCount() + behindEdges.size();
}

}  // namespace veq::internal
