#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/writers.hpp"

namespace veq::internal {
namespace {

void requireFinite(const HeldWeights& weights) {
  const auto wrong = std::find_if_not(weights.begin(), weights.end(),
                                      [](float weight) { return std::isfinite(weight); });
  if (wrong == weights.end()) return;
  std::string text = "Matrix Market cannot hold the weight of edge ";
  appendInteger(text, static_cast<std::uint64_t>(wrong - weights.begin()));
  appendShortest(text += ", which is ", *wrong);
  throw Error(ErrorKind::kUnsupported, std::move(text));
}

}  // namespace

/// Of an undirected edge the entry below the diagonal stands for both.
void writeMatrixMarket(const NetworkCore& core, TextOutput& out) {
  const bool directed = core.store.directed();
  if (core.edgesWeights) requireFinite(*core.edgesWeights);
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
  out.finish();
}

}  // namespace veq::internal
