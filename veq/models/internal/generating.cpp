#include "veq/models/internal/generating.hpp"

#include <algorithm>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/number_text.hpp"

namespace veq::internal {
namespace {

// Of a network as it lies in memory once it is built, and what a model keeps besides.
constexpr double kBytesPerLinkedVertex = 16;
constexpr double kBytesPerEdge = 32;

}  // namespace

std::string namedNumber(const std::string& name, double value) {
  std::string text = name + " = ";
  appendShortest(text, value);
  return text;
}

std::optional<Error> countError(std::uint64_t n, std::uint64_t most) {
  if (n == 0) return argumentError("n = 0: give at least 1");
  if (n <= most) return std::nullopt;
  return argumentError(namedNumber("n", n) + ": give at most " + std::to_string(most));
}

std::optional<Error> probabilityError(const std::string& name, double p) {
  if (p >= 0.0 && p <= 1.0) return std::nullopt;
  return argumentError(namedNumber(name, p) + ": give 0 to 1");
}

std::optional<Error> memoryError(const std::string& arguments, double vertices, double edges,
                                 double bytesPerVertex) {
  const double bytes = kBytesPerLinkedVertex * std::min(vertices, 2 * edges) +
                       kBytesPerEdge * edges + bytesPerVertex * vertices;
  try {
    if (bytes >= 0x1p63) throw std::bad_alloc();
    requireMemory(static_cast<std::uint64_t>(bytes), 1);
    return std::nullopt;
  } catch (const std::bad_alloc&) {
    std::string text = arguments + ": about ";
    appendShortest(text, static_cast<double>(static_cast<Uint128>(edges)));
    return Error(ErrorKind::kMemory, text + " edges, more than memory holds");
  }
}

NetworkDraft draftOf(std::uint64_t vertices, GrowingEnds ends, bool directed) {
  NetworkDraft draft;
  draft.vertexCount = vertices;
  draft.from = std::move(ends.from);
  draft.to = std::move(ends.to);
  draft.directed = directed;
  return draft;
}

}  // namespace veq::internal
