// Distances between all vertices: their histogram and their largest.

#include "veq/questions/distances.hpp"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <limits>
#include <utility>
#include <vector>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/natural/internal/core_of.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/questions/internal/breadth_first.hpp"
#include "veq/questions/internal/strong_components.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::BreadthFirst;
using internal::coreOf;
using internal::NetworkCore;
using internal::Pace;
using internal::Team;
using internal::Topology;

namespace {

// What a search visits at most: all vertices and the entries of all their lists.
std::uint64_t visitsOfOne(const AdjacencyStore& store, Direction direction) {
  const bool both = !store.directed() || direction == Direction::kAll;
  return store.vertexCount() + (both ? 2 : 1) * store.edgeCount();
}

// Draws a number of vertices, all sets of so many alike, in their order: each with the probability
// that is left for it. The numbers are those of SplitMix64, the same on every machine.
class VertexSample {
 public:
  VertexSample(std::uint64_t count, std::uint64_t vertices, std::uint64_t seed)
      : wanted_(count), left_(vertices), state_(seed) {}

  // Whether the next vertex is among them.
  bool takesNext() {
    const bool takes = below(left_--) < wanted_;
    wanted_ -= takes;
    return takes;
  }

 private:
  std::uint64_t below(std::uint64_t bound) {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    z ^= z >> 31;
    return static_cast<std::uint64_t>((Uint128{z} * bound) >> 64);
  }

  std::uint64_t wanted_;
  std::uint64_t left_;
  std::uint64_t state_;
};

double meanOf(const std::vector<std::uint64_t>& pairs) {
  double sum = 0;
  double count = 0;
  for (std::uint64_t d = 1; d < pairs.size(); ++d) {
    sum += static_cast<double>(d) * static_cast<double>(pairs[d]);
    count += static_cast<double>(pairs[d]);
  }
  return count == 0 ? std::numeric_limits<double>::quiet_NaN() : sum / count;
}

// Searches from some of the sources, one after the other, and what they found together.
template <class Index>
class SomeSources {
 public:
  SomeSources(const AdjacencyStore& store, const Topology<Index>& topology, Direction direction)
      : vertices_(store.vertexCount()), search_(store, topology, direction) {}

  void searchFrom(std::uint64_t source) {
    search_.search(source, [this](std::uint64_t distance, auto reached) {
      if (distance == pairs_.size()) pairs_.push_back(0);
      pairs_[distance] += reached.size();
    });
    unreachable_ += vertices_ - search_.reached().size();
  }
  void addTo(DistanceHistogram& all) const {
    all.pairs.resize(std::max(all.pairs.size(), pairs_.size()));
    for (std::size_t d = 0; d < pairs_.size(); ++d) all.pairs[d] += pairs_[d];
    all.unreachablePairs += unreachable_;
  }

 private:
  std::uint64_t vertices_;
  BreadthFirst<Index> search_;
  std::vector<std::uint64_t> pairs_;
  std::uint64_t unreachable_ = 0;
};

template <class Index>
DistanceHistogram histogramOf(const AdjacencyStore& store, const Topology<Index>& topology,
                              const DistanceOptions& options) {
  const std::uint64_t n = store.vertexCount();
  const std::uint64_t visits = visitsOfOne(store, options.direction);
  DistanceHistogram result;
  result.sources =
      n == 0 ? 0 : std::min(n, std::max<std::uint64_t>(1, options.mostVisits / visits));
  result.sampled = result.sources < n;
  Pace pace(options.progress, result.sources);
  VertexSample sample(result.sources, n, options.seed);
  Team team(parallelism());
  std::deque<SomeSources<Index>> ofThread;
  while (ofThread.size() < std::min<std::uint64_t>(team.threads(), result.sources)) {
    ofThread.emplace_back(store, topology, options.direction);
  }
  // Enough for all threads, between one look of the pace and the next.
  const std::uint64_t atOnce =
      ofThread.size() < 2 ? 1 : ofThread.size() * (1 + Team::worthSharing / visits);
  std::vector<std::uint64_t> next;
  std::uint64_t done = 0;
  for (std::uint64_t v = 0; v < n; ++v) {
    if (!sample.takesNext()) continue;
    next.push_back(v);
    if (next.size() < std::min(atOnce, result.sources - done)) continue;
    pace.reach(done);
    team.forEachPiece(ofThread.size(), next.size() * visits, [&](std::uint64_t i) {
      for (std::uint64_t k = i; k < next.size(); k += ofThread.size()) {
        ofThread[i].searchFrom(next[k]);
      }
    });
    done += next.size();
    next.clear();
  }
  for (const SomeSources<Index>& some : ofThread) some.addTo(result);
  result.meanDistance = meanOf(result.pairs);
  return result;
}

// Bounds of how far it is from each vertex to the farthest that it reaches. If v and w are in one
// strong component, w reaches what v does, so that neither's largest distance exceeds the other's
// by more than the distance between them, in the direction of the way there.
template <class Index>
class DiameterSearch {
 public:
  DiameterSearch(const AdjacencyStore& store, const Topology<Index>& topology,
                 const DistanceOptions& options)
      : count_(store.vertexCount()),
        options_(options),
        symmetric_(!store.directed() || options.direction == Direction::kAll),
        components_(internal::componentsOf(store, topology, !symmetric_)),
        there_(store, topology, options.direction),
        back_(store, topology, internal::turned(options.direction)),
        atLeast_(count_),
        atMost_(count_),
        perSearch_(visitsOfOne(store, options.direction) * (symmetric_ ? 1 : 2)) {
    // Without knowing more: fewer than all vertices are passed on the way. (A strong component may
    // reach beyond itself.)
    for (std::uint64_t v = 0; v < count_; ++v) {
      atMost_[v] =
          static_cast<Index>(symmetric_ ? components_.sizes[components_.of(v)] - 1 : count_ - 1);
    }
  }

  Diameter run() {
    Pace pace(options_.progress, count_);
    std::uint64_t open = countOpen();
    std::uint64_t visits = 0;
    bool high = true;
    while (open > 0) {
      pace.reach(count_ - open);
      if (result_.searches > 0 && visits + perSearch_ > options_.mostVisits) break;
      searchFrom(next(std::exchange(high, !high)));
      visits += perSearch_;
      open = countOpen();
    }
    result_.most = result_.least;
    for (std::uint64_t v = 0; v < count_; ++v) {
      if (isOpen(v)) result_.most = std::max<std::uint64_t>(result_.most, atMost_[v]);
    }
    return result_;
  }

 private:
  // Whether a path from here can still be longer than the longest one known.
  [[nodiscard]] bool isOpen(std::uint64_t v) const { return atMost_[v] > result_.least; }

  // In turns the vertex that promises the longest paths and the one with the shortest ones, which
  // is near the middle and bounds all others best.
  [[nodiscard]] std::uint64_t next(bool high) const {
    std::uint64_t best = count_;
    for (std::uint64_t v = 0; v < count_; ++v) {
      if (!isOpen(v)) continue;
      if (best == count_ || (high ? atMost_[v] > atMost_[best] : atLeast_[v] < atLeast_[best])) {
        best = v;
      }
    }
    return best;
  }

  void searchFrom(std::uint64_t v) {
    const std::uint64_t farthest = there_.search(v);
    ++result_.searches;
    if (farthest > result_.least) {
      result_.least = farthest;
      result_.from = v;
      result_.to = there_.reached().back();
    }
    atLeast_[v] = atMost_[v] = static_cast<Index>(farthest);
    if (!symmetric_) back_.search(v);
    BreadthFirst<Index>& back = symmetric_ ? there_ : back_;
    for (const Index w : back.reached()) {
      if (w == v || components_.of(w) != components_.of(v)) continue;
      const std::uint64_t from = there_.distanceTo(w);
      const std::uint64_t to = back.distanceTo(w);
      atMost_[w] = std::min(atMost_[w], static_cast<Index>(std::min(to + farthest, count_)));
      const std::uint64_t least = std::max(from < farthest ? farthest - from : 0, to);
      atLeast_[w] = std::max(atLeast_[w], static_cast<Index>(least));
    }
  }

  [[nodiscard]] std::uint64_t countOpen() const {
    std::uint64_t open = 0;
    for (std::uint64_t v = 0; v < count_; ++v) open += isOpen(v);
    return open;
  }

  std::uint64_t count_;
  const DistanceOptions& options_;
  bool symmetric_;
  internal::Components<Index> components_;
  BreadthFirst<Index> there_;
  BreadthFirst<Index> back_;
  Block<Index> atLeast_;
  Block<Index> atMost_;
  std::uint64_t perSearch_;
  Diameter result_;
};

}  // namespace

Result<DistanceHistogram> distanceHistogram(const Network& network,
                                            const DistanceOptions& options) {
  const AdjacencyStore& store = coreOf(network).store;
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<DistanceHistogram> {
    return store.visit([&](const auto& topology) { return histogramOf(store, topology, options); });
  });
}

Result<Diameter> diameter(const Network& network, const DistanceOptions& options) {
  const AdjacencyStore& store = coreOf(network).store;
  return internal::untilStopped([&]() -> Result<Diameter> {
    return store.visit(
        [&](const auto& topology) { return DiameterSearch(store, topology, options).run(); });
  });
}

}  // namespace veq
