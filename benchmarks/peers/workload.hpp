/// \file
/// The work that every program of the comparison is given: the same numbers on every machine.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "program.hpp"

namespace bench {

/// A small generator for the workloads alone, unrelated to those that are measured. (SplitMix64.)
class WorkloadRandom {
 public:
  explicit WorkloadRandom(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15U);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
  }
  /// At least 0 and below 1.
  double real() { return static_cast<double>(next() >> 11) * 0x1p-53; }
  std::uint64_t below(std::uint64_t bound) {
    __extension__ using Wide = unsigned __int128;
    return static_cast<std::uint64_t>((Wide{next()} * bound) >> 64);
  }

 private:
  std::uint64_t state_;
};

struct Edges {
  std::uint64_t vertices = 0;
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  std::vector<float> weights;

  [[nodiscard]] std::uint64_t count() const { return from.size(); }
};

namespace detail {

inline void drawUniformEnds(Edges& edges, WorkloadRandom& random) {
  for (std::uint64_t i = 0; i < edges.count(); ++i) {
    edges.from[i] = random.below(edges.vertices);
    edges.to[i] = random.below(edges.vertices);
  }
}

/// Both ends with density ~ rank^-1/2, which gives a degree exponent of about 3; the ranks are
/// scattered over the vertices.
inline void drawPowerLawEnds(Edges& edges, WorkloadRandom& random) {
  const std::uint64_t n = edges.vertices;
  std::vector<std::uint32_t> vertexOfRank(n);
  std::iota(vertexOfRank.begin(), vertexOfRank.end(), 0U);
  for (std::uint64_t i = n; i > 1; --i) {
    std::swap(vertexOfRank[i - 1], vertexOfRank[random.below(i)]);
  }
  const auto draw = [&] {
    const double x = random.real();
    const auto rank = static_cast<std::uint64_t>(x * x * static_cast<double>(n));
    return vertexOfRank[std::min(n - 1, rank)];
  };
  for (std::uint64_t i = 0; i < edges.count(); ++i) {
    edges.from[i] = draw();
    edges.to[i] = draw();
  }
}

}  // namespace detail

/// `m` edges between `n` (a fifth of m) vertices; kind=un: both ends uniform, kind=pl: a power law.
/// Self-loops and repetitions stay. The last vertex always occurs, so that all readers of a file
/// find the same number of vertices.
inline Edges edgesOf(const Arguments& arguments, bool weighted = false) {
  const std::uint64_t m = arguments.count("m", 100'000);
  Edges edges;
  edges.vertices = arguments.count("n", std::max<std::uint64_t>(1, m / 5));
  edges.from.resize(m);
  edges.to.resize(m);
  WorkloadRandom random(0x100000001b3U + edges.vertices * 31 + m);
  if (arguments.text("kind", "pl") == "un") {
    detail::drawUniformEnds(edges, random);
  } else {
    detail::drawPowerLawEnds(edges, random);
  }
  if (m > 0) edges.to[m - 1] = edges.vertices - 1;
  if (weighted) {
    edges.weights.resize(m);
    for (float& weight : edges.weights) {
      weight = static_cast<float>(1.0 + static_cast<double>(random.below(9'000'000)) * 1e-6);
    }
  }
  return edges;
}

/// Where walks start: vertices with edges, spread over the network.
inline std::vector<std::uint64_t> startsOf(const Edges& edges, std::uint64_t agents) {
  WorkloadRandom random(99);
  std::vector<std::uint64_t> starts(agents);
  for (std::uint64_t& start : starts) start = edges.from[random.below(edges.count())];
  return starts;
}

/// One number from where all agents stand.
template <class Position>
std::uint64_t checksumOfPositions(const std::vector<Position>& positions) {
  std::uint64_t checksum = 0;
  for (const Position position : positions) checksum = checksum * 31 + position;
  return checksum;
}

inline std::string nameOf(std::uint64_t vertex) {
  std::string name = "v";
  return name += std::to_string(vertex);
}

/// Degrees from 1 to 2 k - 1, each alike, with an even sum.
inline std::vector<std::uint64_t> degreesAround(std::uint64_t n, std::uint64_t k) {
  WorkloadRandom random(n);
  std::vector<std::uint64_t> degrees(n);
  for (std::uint64_t& degree : degrees) degree = 1 + random.below(2 * k - 1);
  if (std::accumulate(degrees.begin(), degrees.end(), std::uint64_t{0}) % 2 != 0) ++degrees[0];
  return degrees;
}

}  // namespace bench
