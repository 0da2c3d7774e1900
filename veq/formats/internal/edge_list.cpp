#include "veq/formats/internal/edge_list.hpp"

#include <stdexcept>
#include <utility>

#include "veq/base/internal/text_scanner.hpp"
#include "veq/formats/internal/distinct_ends.hpp"
#include "veq/formats/internal/name_lists.hpp"
#include "veq/formats/internal/six_decimals.hpp"

namespace veq::internal {

NetworkDraft readEdgeList(std::string_view text, bool directed) {
  DistinctEnds ends;
  Weights weights;
  bool weighted = false;
  TextScanner scanner(text);
  for (scanner.skipBlanksAndNewlines(); !scanner.atEnd(); scanner.skipBlanksAndNewlines()) {
    const std::string_view source = scanner.takeUntilBlankOrNewline();
    scanner.skipBlanksAndNewlines();
    if (scanner.atEnd()) break;
    const std::string_view target = scanner.takeUntilBlankOrNewline();
    ends.add(source, target);
    // Line ends are skipped, too: where a line has no weight, the whole next line is taken for it.
    scanner.skipBlanksAndNewlines();
    weighted |= !scanner.atEnd();
    weights.push_back(scanner.atEnd() ? 1.0F : throughSixDecimals(scanner.readFloat().value_or(0)));
    scanner.skipToNewline();
  }
  ends.finish();
  if (weights.empty()) throw std::out_of_range("An edge list needs at least one edge.");
  NetworkDraft draft = draftOfNames(ends.names(), ends.takeFrom(), ends.takeTo(), directed);
  if (weighted) draft.edgesWeights = std::move(weights);
  return draft;
}

NetworkText writeEdgeList(const NetworkCore& core) { return {core, {0, "", "\r\n"}}; }

}  // namespace veq::internal
