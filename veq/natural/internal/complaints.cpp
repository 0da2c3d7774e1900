#include "veq/natural/internal/complaints.hpp"

#include <algorithm>
#include <stdexcept>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {
namespace {

// From here on a number is a negative one or could not be counted up to.
constexpr std::uint64_t kNoIndex = std::uint64_t{1} << 63;

std::uint64_t largestOf(const IndexSpan& indices, Pace* pace) {
  return indices.visit([count = indices.count(), pace](auto values) {
    std::uint64_t largest = 0;
    forEachTile(count, pace, [&](std::uint64_t begin, std::uint64_t end) {
      for (std::uint64_t i = begin; i < end; ++i) {
        largest = std::max(largest, static_cast<std::uint64_t>(values[i]));
      }
    });
    return largest;
  });
}

std::string endText(const char* which, const IndexSpan& ends, std::uint64_t edge,
                    std::optional<std::uint64_t> vertices) {
  std::string text = "edge " + std::to_string(edge) + ": " + which + " " + ends.text(edge);
  if (vertices && ends[edge] < kNoIndex) text += " of " + counted(*vertices, Item::kVertex);
  return text;
}

}  // namespace

std::string counted(std::uint64_t count, Item item) {
  const char* const one = item == Item::kVertex ? " vertex" : " edge";
  const char* const many = item == Item::kVertex ? " vertices" : " edges";
  return std::to_string(count) + (count == 1 ? one : many);
}

void requireVertex(std::uint64_t vertex, std::uint64_t count) {
  if (vertex < count) return;
  throw std::out_of_range("vertex " + std::to_string(vertex) + " of " + std::to_string(count));
}

void requireEdge(std::uint64_t edge, std::uint64_t count) {
  if (edge < count) return;
  throw std::out_of_range("edge " + std::to_string(edge) + " of " + std::to_string(count));
}

std::optional<Error> endsError(const IndexSpan& sources, const IndexSpan& targets,
                               std::optional<std::uint64_t> vertices, Pace* pace) {
  if (sources.count() != targets.count()) {
    return argumentError(std::to_string(sources.count()) + " sources for " +
                         std::to_string(targets.count()) + " targets");
  }
  if (sources.count() == 0) return std::nullopt;
  const std::uint64_t limit = std::min(vertices.value_or(kNoIndex), kNoIndex);
  if (std::max(largestOf(sources, pace), largestOf(targets, pace)) < limit) return std::nullopt;
  std::string text;
  std::uint64_t wrong = 0;
  for (std::uint64_t e = 0; e < sources.count(); ++e) {
    const bool source = sources[e] >= limit;
    if (!source && targets[e] < limit) continue;
    if (wrong++ == 0) {
      text = source ? endText("source", sources, e, vertices)
                    : endText("target", targets, e, vertices);
    }
  }
  if (wrong > 1) text += ", and " + std::to_string(wrong - 1) + " more";
  return argumentError(std::move(text));
}

std::optional<Error> weightsError(const NumberSpan& weights, std::uint64_t count, Item item) {
  if (!weights.given() || weights.count() == count) return std::nullopt;
  const std::uint64_t given = weights.count();
  return argumentError(std::to_string(given) + (given == 1 ? " weight for " : " weights for ") +
                       counted(count, item));
}

std::optional<Error> columnError(std::string_view key, const PropertyColumn* column,
                                 std::uint64_t count, Item item) {
  const std::string name = "column " + std::string(key) + ": ";
  if (isReservedKey(key)) return argumentError(name + "a reserved name");
  if (!column) return argumentError(name + "no values");
  const std::uint64_t given = column->count();
  if (given == count) return std::nullopt;
  return argumentError(name + std::to_string(given) +
                       (given == 1 ? " value for " : " values for ") + counted(count, item));
}

std::optional<Error> columnsError(const PropertyTable& columns, std::uint64_t count, Item item) {
  for (const auto& [key, column] : columns) {
    if (auto error = columnError(key, column.get(), count, item)) return error;
  }
  return std::nullopt;
}

}  // namespace veq::internal
