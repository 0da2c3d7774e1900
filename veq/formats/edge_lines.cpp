#include "veq/formats/internal/edge_lines.hpp"

#include <algorithm>

#include "veq/base/memory.hpp"
#include "veq/base/number_text.hpp"

namespace veq::internal {
namespace {

// More than the suffix and the line end of any style.
constexpr std::size_t kLongestEnding = 16;

char* write(char* at, std::string_view text) { return std::copy(text.begin(), text.end(), at); }

// Room for all lines with weights below 10, so that the text need not move while it grows. Pages
// that are never written to cost nothing.
void reserveLines(std::string& out, const NetworkCore& core, const EdgeLineStyle& style) {
  char digits[kLongestInteger];
  const auto vertex = writeInteger(digits, core.store.vertexCount() + style.firstVertex) - digits;
  const std::size_t line = 2 * static_cast<std::size_t>(vertex) + sizeof("  9.999999\r\n");
  out.reserve(out.size() + line * core.store.edgeCount());
  askForHugePages(out.data(), out.capacity());
}

}  // namespace

void appendEdgeLines(std::string& out, const NetworkCore& core, const EdgeLineStyle& style) {
  reserveLines(out, core, style);
  char line[2 * (kLongestInteger + 1) + kLongestSixDecimals + kLongestEnding];
  core.store.visit([&](const auto& topology) {
    for (std::uint64_t edge = 0; edge < core.store.edgeCount(); ++edge) {
      char* end = writeInteger(line, topology.from[edge] + style.firstVertex);
      *end++ = ' ';
      end = writeInteger(end, topology.to[edge] + style.firstVertex);
      if (core.edgesWeights) {
        *end++ = ' ';
        end = writeSixDecimals(end, (*core.edgesWeights)[edge]);
      } else {
        end = write(end, style.unweightedSuffix);
      }
      out.append(line, write(end, style.lineEnd));
    }
  });
}

}  // namespace veq::internal
