#include <algorithm>

#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/writers.hpp"

namespace veq::internal {

/// Of an undirected edge the entry below the diagonal stands for both.
void writeMatrixMarket(const NetworkCore& core, TextOutput& out) {
  const bool directed = core.store.directed();
  out.text.append("%%MatrixMarket matrix coordinate ")
      .append(core.edgesWeights ? "real " : "pattern ")
      .append(directed ? "general\n" : "symmetric\n");
  for (const std::uint64_t number :
       {core.store.vertexCount(), core.store.vertexCount(), core.store.edgeCount()}) {
    appendInteger(out.text, number);
    out.text += ' ';
  }
  out.text.back() = '\n';
  for (std::uint64_t edge = 0; edge < core.store.edgeCount(); ++edge) {
    std::uint64_t row = core.store.from(edge);
    std::uint64_t column = core.store.to(edge);
    if (!directed && row < column) std::swap(row, column);
    appendInteger(out.text, row + 1);
    out.text += ' ';
    appendInteger(out.text, column + 1);
    if (core.edgesWeights) {
      out.text += ' ';
      appendShortest(out.text, (*core.edgesWeights)[edge]);
    }
    out.text += '\n';
    out.endRow();
  }
  out.flush();
}

}  // namespace veq::internal
