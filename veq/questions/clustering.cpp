#include "veq/questions/clustering.hpp"

#include <limits>

#include "veq/natural/internal/making.hpp"
#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::Pace;
using internal::SideLists;
using internal::SparsePace;
using internal::Topology;
using internal::untilStopped;

namespace {

// Who is whose neighbour, each pair once, at the end with fewer neighbours, and of equals the one
// with the lower index: so a hub has few of its neighbours in its list, and every triangle is met
// from one corner alone.
template <class Index>
class Neighbourhoods {
 public:
  Neighbourhoods(const AdjacencyStore& store, const Topology<Index>& topology, Pace& pace)
      : lists_(store, topology, Direction::kAll),
        degrees_(store.vertexCount()),
        starts_(store.vertexCount() + 1),
        marks_(store.vertexCount()),
        pace_(&pace) {
    const std::uint64_t n = store.vertexCount();
    for (std::uint64_t v = 0; v < n; ++v) {
      forEachOther(v, [&](std::uint64_t) { ++degrees_[v]; });
    }
    // Above what the first round left.
    round_ = 0;
    marks_ = Block<Index>(n);
    higher_.resize(store.edgeCount());
    std::uint64_t used = 0;
    for (std::uint64_t v = 0; v < n; ++v) {
      starts_[v] = used;
      forEachOther(v, [&](std::uint64_t other) {
        if (isHigher(other, v)) higher_[used++] = static_cast<Index>(other);
      });
    }
    starts_[n] = used;
  }

  [[nodiscard]] std::uint64_t degree(std::uint64_t vertex) const { return degrees_[vertex]; }

  // Calls f(a, b, c) for every triangle.
  template <class F>
  void forEachTriangle(F f) {
    const std::uint64_t n = degrees_.size();
    marks_ = Block<Index>(n);
    for (std::uint64_t a = 0; a < n; ++a) {
      pace_.advance(starts_[a + 1] - starts_[a]);
      if (starts_[a + 1] - starts_[a] < 2) continue;
      const auto mark = static_cast<Index>(a + 1);
      for (std::uint64_t i = starts_[a]; i < starts_[a + 1]; ++i) marks_[higher_[i]] = mark;
      for (std::uint64_t i = starts_[a]; i < starts_[a + 1]; ++i) {
        const std::uint64_t b = higher_[i];
        for (std::uint64_t j = starts_[b]; j < starts_[b + 1]; ++j) {
          if (marks_[higher_[j]] == mark) f(a, b, std::uint64_t{higher_[j]});
        }
      }
    }
  }

 private:
  [[nodiscard]] bool isHigher(std::uint64_t a, std::uint64_t b) const {
    return degrees_[a] != degrees_[b] ? degrees_[a] > degrees_[b] : a > b;
  }

  // Calls f(other) for all neighbours but the vertex itself, each once.
  template <class F>
  void forEachOther(std::uint64_t vertex, F f) {
    const auto mark = static_cast<Index>(++round_);
    pace_.advance(lists_.count(vertex));
    lists_.forEachNeighbour(vertex, [&](std::uint64_t other) {
      if (other == vertex || marks_[other] == mark) return;
      marks_[other] = mark;
      f(other);
    });
  }

  SideLists<Index> lists_;
  Block<Index> degrees_;
  Block<std::uint64_t> starts_;
  Block<Index> marks_;
  std::uint64_t round_ = 0;
  Block<Index> higher_;
  SparsePace pace_;
};

// Both ends of each edge are looked at twice before the triangles, of which each edge may be a
// side.
Pace paceOf(const NetworkCore& core, const Progress& progress) {
  Pace pace(progress, 5 * core.store.edgeCount());
  pace.reach(0);
  return pace;
}

// What is known of triangles once all were met.
struct TriangleCounts {
  std::vector<std::uint64_t> triangles;
  std::vector<std::uint64_t> degrees;

  [[nodiscard]] double pairs(std::uint64_t vertex) const {
    const auto k = static_cast<double>(degrees[vertex]);
    return k < 2 ? 0 : k * (k - 1) / 2;
  }
  [[nodiscard]] double clustering(std::uint64_t vertex) const {
    return degrees[vertex] < 2 ? 0 : static_cast<double>(triangles[vertex]) / pairs(vertex);
  }
};

TriangleCounts triangleCountsOf(const Network& network, const Progress& progress) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  Pace pace = paceOf(core, progress);
  TriangleCounts corners;
  const std::uint64_t n = core.store.vertexCount();
  corners.triangles.resize(n);
  corners.degrees.resize(n);
  core.store.visit([&](const auto& topology) {
    Neighbourhoods neighbourhoods(core.store, topology, pace);
    neighbourhoods.forEachTriangle([&](std::uint64_t a, std::uint64_t b, std::uint64_t c) {
      ++corners.triangles[a];
      ++corners.triangles[b];
      ++corners.triangles[c];
    });
    for (std::uint64_t v = 0; v < n; ++v) corners.degrees[v] = neighbourhoods.degree(v);
  });
  return corners;
}

}  // namespace

Result<std::vector<std::uint64_t>> triangles(const Network& network, const Progress& progress) {
  return untilStopped([&]() -> Result<std::vector<std::uint64_t>> {
    return triangleCountsOf(network, progress).triangles;
  });
}

Result<std::uint64_t> countTriangles(const Network& network, const Progress& progress) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  return untilStopped([&]() -> Result<std::uint64_t> {
    Pace pace = paceOf(core, progress);
    return core.store.visit([&](const auto& topology) {
      std::uint64_t count = 0;
      Neighbourhoods neighbourhoods(core.store, topology, pace);
      neighbourhoods.forEachTriangle([&](auto...) { ++count; });
      return count;
    });
  });
}

Result<std::vector<double>> localClustering(const Network& network, const Progress& progress) {
  return untilStopped([&]() -> Result<std::vector<double>> {
    const TriangleCounts corners = triangleCountsOf(network, progress);
    std::vector<double> result(corners.degrees.size());
    for (std::uint64_t v = 0; v < result.size(); ++v) result[v] = corners.clustering(v);
    return result;
  });
}

Result<double> averageClustering(const Network& network, WithoutPairs withoutPairs,
                                 const Progress& progress) {
  return untilStopped([&]() -> Result<double> {
    const TriangleCounts corners = triangleCountsOf(network, progress);
    double sum = 0;
    std::uint64_t count = 0;
    for (std::uint64_t v = 0; v < corners.degrees.size(); ++v) {
      if (withoutPairs == WithoutPairs::kLeftOut && corners.degrees[v] < 2) continue;
      sum += corners.clustering(v);
      ++count;
    }
    if (count == 0) return std::numeric_limits<double>::quiet_NaN();
    return sum / static_cast<double>(count);
  });
}

Result<double> transitivity(const Network& network, const Progress& progress) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  return untilStopped([&]() -> Result<double> {
    Pace pace = paceOf(core, progress);
    std::uint64_t count = 0;
    double pairs = 0;
    core.store.visit([&](const auto& topology) {
      Neighbourhoods neighbourhoods(core.store, topology, pace);
      neighbourhoods.forEachTriangle([&](auto...) { ++count; });
      for (std::uint64_t v = 0; v < core.store.vertexCount(); ++v) {
        const auto k = static_cast<double>(neighbourhoods.degree(v));
        if (k >= 2) pairs += k * (k - 1) / 2;
      }
    });
    return pairs == 0 ? 0 : 3 * static_cast<double>(count) / pairs;
  });
}

std::vector<std::uint64_t> triangles(const Network& network) {
  return triangles(network, Progress()).value();
}

std::uint64_t countTriangles(const Network& network) {
  return countTriangles(network, Progress()).value();
}

std::vector<double> localClustering(const Network& network) {
  return localClustering(network, Progress()).value();
}

double averageClustering(const Network& network, WithoutPairs withoutPairs) {
  return averageClustering(network, withoutPairs, Progress()).value();
}

double transitivity(const Network& network) { return transitivity(network, Progress()).value(); }

}  // namespace veq
