#include "veq/questions/cores.hpp"

#include <algorithm>
#include <utility>

#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::SideLists;
using internal::Topology;

namespace {

// Takes away the vertex with the fewest edges again and again. Vertices stand in the order of how
// many they have left; when one loses an edge, it changes places with the first of its like, which
// makes it the last of those with one less.
template <class Index>
class Peeling {
 public:
  Peeling(const AdjacencyStore& store, const Topology<Index>& topology, Direction direction)
      : count_(store.vertexCount()),
        losers_(store, topology, internal::turned(direction)),
        left_(count_) {
    const SideLists<Index> lists(store, topology, direction);
    std::uint64_t largest = 0;
    for (std::uint64_t v = 0; v < count_; ++v) {
      std::uint64_t degree = lists.count(v);
      lists.forEachNeighbour(v, [&](std::uint64_t other) { degree -= other == v; });
      left_[v] = static_cast<Index>(degree);
      largest = std::max(largest, degree);
    }
    order(largest);
  }

  std::vector<std::uint64_t> run() && {
    std::vector<std::uint64_t> cores(count_);
    for (std::uint64_t i = 0; i < count_; ++i) {
      const std::uint64_t v = order_[i];
      cores[v] = left_[v];
      losers_.forEachNeighbour(v, [&](std::uint64_t other) {
        if (left_[other] > left_[v]) loseOne(other);
      });
    }
    return cores;
  }

 private:
  void order(std::uint64_t largest) {
    firsts_ = Block<Index>(largest + 2);
    for (std::uint64_t v = 0; v < count_; ++v) ++firsts_[left_[v] + 1u];
    for (std::uint64_t d = 0; d < largest; ++d) {
      firsts_[d + 1] = static_cast<Index>(firsts_[d + 1] + firsts_[d]);
    }
    order_.resize(count_);
    places_.resize(count_);
    for (std::uint64_t v = 0; v < count_; ++v) {
      places_[v] = firsts_[left_[v]]++;
      order_[places_[v]] = static_cast<Index>(v);
    }
    // Back to where each begins.
    for (std::uint64_t d = largest + 1; d > 0; --d) firsts_[d] = firsts_[d - 1];
    firsts_[0] = 0;
  }

  void loseOne(std::uint64_t vertex) {
    const Index first = firsts_[left_[vertex]]++;
    const Index place = places_[vertex];
    const Index other = order_[first];
    std::swap(order_[first], order_[place]);
    places_[other] = place;
    places_[vertex] = first;
    --left_[vertex];
  }

  std::uint64_t count_;
  SideLists<Index> losers_;  // Who loses an edge when a vertex is taken away.
  Block<Index> left_;        // How many edges each has left.
  Block<Index> firsts_;      // Where the vertices with so many left begin in the order.
  Block<Index> order_;
  Block<Index> places_;
};

}  // namespace

std::vector<std::uint64_t> coreNumbers(const Network& network, Direction direction) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  return core.store.visit(
      [&](const auto& topology) { return Peeling(core.store, topology, direction).run(); });
}

}  // namespace veq
