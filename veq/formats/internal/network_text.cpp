#include "veq/formats/internal/network_text.hpp"

#include <algorithm>

#include "veq/base/internal/number_text.hpp"

namespace veq::internal {
namespace {

// More than the suffix and the line end of any style.
constexpr std::size_t kLongestEnding = 16;
constexpr std::size_t kLongestLine =
    2 * (kLongestInteger + 1) + kLongestSixDecimals + kLongestEnding;
// What a processor keeps at hand, and enough for a call of the operating system.
constexpr std::size_t kPieceSize = std::size_t{1} << 17;

char* write(char* at, std::string_view text) { return std::copy(text.begin(), text.end(), at); }

}  // namespace

NetworkText::NetworkText(const NetworkCore& core, const EdgeLineStyle& style)
    : core_(core), style_(style) {
  if (core.store.edgeCount() != 0) piece_.resize(kPieceSize + kLongestLine);
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

bool NetworkText::giveEdgesTo(const ByteSink& sink) {
  char* const begin = piece_.data();
  return core_.store.visit([&](const auto& topology) {
    char* end = begin;
    for (std::uint64_t edge = 0; edge < core_.store.edgeCount(); ++edge) {
      end = writeInteger(end, topology.from[edge] + style_.firstVertex);
      *end++ = ' ';
      end = writeInteger(end, topology.to[edge] + style_.firstVertex);
      if (core_.edgesWeights) {
        *end++ = ' ';
        end = writeSixDecimals(end, (*core_.edgesWeights)[edge]);
      } else {
        end = write(end, style_.unweightedSuffix);
      }
      end = write(end, style_.lineEnd);
      const auto length = static_cast<std::size_t>(end - begin);
      if (length < kPieceSize) continue;
      edgesGiven_ = edge + 1;
      if (!sink({begin, length})) return false;
      end = begin;
    }
    edgesGiven_ = core_.store.edgeCount();
    return sink({begin, static_cast<std::size_t>(end - begin)});
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
