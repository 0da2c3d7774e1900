// Networks over memory that is somebody else's.

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/network.hpp"

namespace veq {

using internal::argumentError;
using internal::HeldWeights;
using internal::Item;
using internal::Pace;

namespace {

// How many vertices or edges are looked at between two questions whether to stop.
constexpr std::uint64_t kTile = std::uint64_t{1} << 16;

std::string text(std::uint64_t number) { return std::to_string(number); }

// What only lengths tell.
template <class Index>
std::optional<Error> lengthsError(const TopologyMemory<Index>& memory) {
  if (memory.from.size() != memory.to.size()) {
    return argumentError(text(memory.from.size()) + " sources for " + text(memory.to.size()) +
                         " targets");
  }
  const std::uint64_t vertices = memory.out.rows.size();
  std::uint64_t largest = std::max<std::uint64_t>(vertices, memory.from.size());
  for (const ListMemory<Index>* lists : {&memory.out, &memory.in}) {
    if (lists == &memory.in && !memory.directed) continue;
    if (lists->rows.size() != vertices) {
      return argumentError(text(lists->rows.size()) + " lists for " +
                           internal::counted(vertices, Item::kVertex));
    }
    if (lists->neighbours.size() != lists->edges.size()) {
      return argumentError(text(lists->neighbours.size()) + " neighbours for " +
                           text(lists->edges.size()) + " edges in lists");
    }
    largest = std::max<std::uint64_t>(largest, lists->edges.size());
  }
  // All bits set stay free for marks, as in networks that are built.
  if (largest <= std::numeric_limits<Index>::max()) return std::nullopt;
  return argumentError(text(largest) + " places for indices of this width");
}

// The lists of the edges whose ends are in `at`, or of all edges at a vertex. An edge stands in a
// list once, and a loop of an undirected network twice, so that lists whose entries are all right
// are whole if there are enough of them.
template <class Index>
class ListCheck {
 public:
  ListCheck(const ListMemory<Index>& lists, std::span<const Index> at,
            std::span<const Index> neighbour, bool bothWays)
      : lists_(lists), at_(at), neighbour_(neighbour), bothWays_(bothWays) {}

  std::optional<Error> error(Pace& pace) const {
    std::uint64_t entries = 0;
    std::uint64_t nextLook = kTile;
    for (std::uint64_t v = 0; v < lists_.rows.size(); ++v) {
      if (auto error = rowError(v)) return error;
      entries += lists_.rows[v].count;
      if (v + entries < nextLook) continue;
      pace.reach(v);
      nextLook = v + entries + kTile;
    }
    if (entries == (bothWays_ ? 2 : 1) * std::uint64_t{at_.size()}) return std::nullopt;
    return argumentError(text(entries) + " entries in the lists of " +
                         internal::counted(at_.size(), Item::kEdge));
  }

 private:
  static std::string listOf(std::uint64_t vertex) {
    return "list of vertex " + text(vertex) + ": ";
  }

  std::optional<Error> rowError(std::uint64_t vertex) const {
    const auto [start, count] = lists_.rows[vertex];
    if (count == 0) return std::nullopt;
    const std::uint64_t places = lists_.edges.size();
    if (start > places || count > places - start) {
      return argumentError(listOf(vertex) + text(count) + " entries from place " + text(start) +
                           " of " + text(places));
    }
    for (std::uint64_t k = 0; k < count; ++k) {
      if (!isEntry(vertex, start, k)) {
        return argumentError(listOf(vertex) + "entry " + text(k) + " is not its edge");
      }
    }
    return std::nullopt;
  }

  // Whether entry k is an edge of the vertex, and stands there in its turn.
  bool isEntry(std::uint64_t vertex, std::uint64_t start, std::uint64_t k) const {
    const Index* const edges = lists_.edges.data() + start;
    const std::uint64_t e = edges[k];
    if (e >= at_.size()) return false;
    const std::uint64_t to = lists_.neighbours[start + k];
    const bool forth = at_[e] == vertex && neighbour_[e] == to;
    const bool back = bothWays_ && neighbour_[e] == vertex && at_[e] == to;
    if (!forth && !back) return false;
    if (k == 0 || edges[k - 1] < e) return true;
    return forth && back && edges[k - 1] == e && (k == 1 || edges[k - 2] != e);
  }

  const ListMemory<Index>& lists_;
  std::span<const Index> at_;
  std::span<const Index> neighbour_;
  bool bothWays_;
};

template <class Index>
std::optional<Error> topologyError(const TopologyMemory<Index>& memory, Pace& pace) {
  const std::uint64_t vertices = memory.out.rows.size();
  if (auto error = internal::endsError(IndexSpan(memory.from), IndexSpan(memory.to), vertices)) {
    return error;
  }
  pace.reach(0);
  auto error = ListCheck<Index>(memory.out, memory.from, memory.to, !memory.directed).error(pace);
  if (error || !memory.directed) return error;
  return ListCheck<Index>(memory.in, memory.to, memory.from, false).error(pace);
}

std::optional<Error> restError(const OverOptions& options, std::uint64_t n, std::uint64_t m) {
  const auto weightsError = [](const std::optional<std::span<const float>>& weights,
                               std::uint64_t count, Item item) {
    return internal::weightsError(weights ? NumberSpan(*weights) : NumberSpan(), count, item);
  };
  if (auto error = weightsError(options.vertexWeights, n, Item::kVertex)) return error;
  if (auto error = weightsError(options.edgeWeights, m, Item::kEdge)) return error;
  if (auto error = internal::columnsError(options.vertexColumns, n, Item::kVertex)) return error;
  return internal::columnsError(options.edgeColumns, m, Item::kEdge);
}

std::optional<HeldWeights> held(const std::optional<std::span<const float>>& weights,
                                const Shared<const void>& owner) {
  if (!weights) return std::nullopt;
  return HeldWeights(*weights, owner);
}

template <class Index>
Result<Network> networkOver(const TopologyMemory<Index>& memory, const Shared<const void>& owner,
                            const OverOptions& options) {
  return internal::untilStopped([&]() -> Result<Network> {
    const std::uint64_t vertices = memory.out.rows.size();
    const std::uint64_t edges = memory.from.size();
    Pace pace(options.progress, vertices);
    pace.reach(0);
    if (auto error = lengthsError(memory)) return *error;
    if (auto error = restError(options, vertices, edges)) return *error;
    if (!options.trusted) {
      if (auto error = topologyError(memory, pace)) return *error;
    }
    internal::ForeignParts parts;
    parts.topology = {
        internal::TopologyShare(internal::ForeignTopology<Index>::make(memory, owner)), vertices,
        edges, memory.directed, sizeof(Index) == sizeof(std::uint32_t)};
    parts.verticesWeights = held(options.vertexWeights, owner);
    parts.edgesWeights = held(options.edgeWeights, owner);
    parts.properties = {options.vertexColumns, options.edgeColumns};
    return Network(internal::CoreAccess::buildShared(std::move(parts)));
  });
}

}  // namespace

Result<Network> Network::over(const TopologyMemory<std::uint32_t>& memory, Shared<const void> owner,
                              const OverOptions& options) {
  return networkOver(memory, owner, options);
}

Result<Network> Network::over(const TopologyMemory<std::uint64_t>& memory, Shared<const void> owner,
                              const OverOptions& options) {
  return networkOver(memory, owner, options);
}

}  // namespace veq
