// Networks of some of the vertices or edges of another.

#include <algorithm>
#include <type_traits>
#include <utility>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/network.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::Pace;

namespace {

std::string placeText(std::uint64_t place, const char* item, std::string number) {
  return "place " + std::to_string(place) + ": " + item + " " + std::move(number);
}

// The chosen indices, each below the count and there once; marks them, if they are.
Result<std::vector<std::uint64_t>> choice(const IndexSpan& chosen, std::uint64_t count,
                                          const char* item) {
  Block<std::uint8_t> marks(count);
  std::vector<std::uint64_t> result;
  result.reserve(std::min(chosen.count(), count));
  std::string text;
  std::uint64_t wrong = 0;
  for (std::uint64_t i = 0; i < chosen.count(); ++i) {
    const std::uint64_t index = chosen[i];
    if (index < count && marks[index] == 0) {
      marks[index] = 1;
      result.push_back(index);
    } else if (wrong++ == 0) {
      text = placeText(i, item, chosen.text(i)) +
             (index < count ? " for the second time" : " of " + std::to_string(count));
    }
  }
  if (wrong > 1) text += ", and " + std::to_string(wrong - 1) + " more";
  if (wrong > 0) return internal::argumentError(std::move(text));
  return result;
}

// The vertices within a distance, by breadth-first search.
class NeighbourhoodSearch {
 public:
  NeighbourhoodSearch(const NetworkCore& core, Direction direction)
      : core_(core),
        out_(!core.store.directed() || direction != Direction::kIn),
        in_(core.store.directed() && direction != Direction::kOut) {}

  std::vector<std::uint64_t> of(std::uint64_t vertex, std::uint64_t distance, Pace& pace) const {
    std::vector<std::uint64_t> reached{vertex};
    Block<std::uint8_t> marks(core_.store.vertexCount());
    marks[vertex] = 1;
    core_.store.visit([&](const auto& topology) {
      std::size_t first = 0;
      for (std::uint64_t d = 0; d < distance && first < reached.size(); ++d) {
        pace.reach(reached.size());
        for (const std::size_t last = reached.size(); first < last; ++first) {
          if (out_) reach(topology.out, reached[first], marks, reached);
          if (in_) reach(*topology.in, reached[first], marks, reached);
        }
      }
    });
    return reached;
  }

 private:
  template <class Lists>
  static void reach(const Lists& lists, std::uint64_t vertex, Block<std::uint8_t>& marks,
                    std::vector<std::uint64_t>& reached) {
    for (const auto neighbour : lists.neighbours(vertex)) {
      if (marks[neighbour] != 0) continue;
      marks[neighbour] = 1;
      reached.push_back(neighbour);
    }
  }

  const NetworkCore& core_;
  const bool out_;
  const bool in_;
};

// The ends of edges in the order of their indices, or all vertices.
std::vector<std::uint64_t> verticesOf(const AdjacencyStore& store,
                                      const std::vector<std::uint64_t>& edges, bool all) {
  Block<std::uint8_t> marks(store.vertexCount());
  for (const std::uint64_t edge : edges) marks[store.from(edge)] = marks[store.to(edge)] = 1;
  std::vector<std::uint64_t> vertices;
  for (std::uint64_t v = 0; v < store.vertexCount(); ++v) {
    if (all || marks[v] != 0) vertices.push_back(v);
  }
  return vertices;
}

DerivedNetwork ofEdges(const NetworkCore& core, std::vector<std::uint64_t> edges, bool allVertices,
                       Pace& pace) {
  std::vector<std::uint64_t> vertices = verticesOf(core.store, edges, allVertices);
  pace.reach(0);
  Block<std::uint64_t> places(core.store.vertexCount());
  for (std::uint64_t i = 0; i < vertices.size(); ++i) places[vertices[i]] = i;
  internal::Derivation derivation;
  derivation.ends.from.resize(edges.size());
  derivation.ends.to.resize(edges.size());
  for (std::uint64_t i = 0; i < edges.size(); ++i) {
    derivation.ends.from[i] = places[core.store.from(edges[i])];
    derivation.ends.to[i] = places[core.store.to(edges[i])];
  }
  derivation.directed = core.store.directed();
  derivation.vertices = &vertices;
  derivation.edges = &edges;
  Network network = internal::derived(core, std::move(derivation), pace);
  return {std::move(network), std::move(vertices), std::move(edges)};
}

}  // namespace

Result<DerivedNetwork> Network::subnetwork(const IndexSpan& vertices,
                                           const ChangeOptions& options) const {
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<DerivedNetwork> {
    Pace pace(options.progress, internal::kBuildingPasses * countEdges());
    pace.reach(0);
    auto chosen = choice(vertices, countVertices(), "vertex");
    if (!chosen) return chosen.error();
    return internal::inducedBy(CoreAccess::of(*published_), std::move(chosen.value()), pace);
  });
}

Result<DerivedNetwork> Network::subnetworkOfEdges(const IndexSpan& edges,
                                                  const EdgeSubnetworkOptions& options) const {
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<DerivedNetwork> {
    Pace pace(options.progress, internal::kBuildingPasses * edges.count());
    pace.reach(0);
    auto chosen = choice(edges, countEdges(), "edge");
    if (!chosen) return chosen.error();
    return ofEdges(CoreAccess::of(*published_), std::move(chosen.value()), options.keepAllVertices,
                   pace);
  });
}

Result<DerivedNetwork> Network::neighbourhood(std::uint64_t vertex,
                                              const NeighbourhoodOptions& options) const {
  internal::requireVertex(vertex, countVertices());
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<DerivedNetwork> {
    Pace pace(options.progress, internal::kBuildingPasses * countVertices());
    const NetworkCore& core = CoreAccess::of(*published_);
    return internal::inducedBy(
        core, NeighbourhoodSearch(core, options.direction).of(vertex, options.distance, pace),
        pace);
  });
}

}  // namespace veq
