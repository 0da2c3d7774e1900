/// \file
/// Compressed rows and the random words, as a plain program for this one purpose would have them.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace bench {

struct Rows {
  std::vector<std::uint64_t> begin;  // of each vertex's entries; one more than vertices
  std::vector<std::uint32_t> neighbours;
  std::vector<std::uint32_t> edges;
};

/// A network without capacities, flags, weights or handles.
struct PlainNetwork {
  Rows out;
  Rows in;
  std::vector<std::uint32_t> from;
  std::vector<std::uint32_t> to;
};

/// Entries in edge order. They go to buckets of neighbouring rows first, so that each bucket can be
/// placed within the cache.
inline Rows partitionedRows(std::uint64_t n, const std::vector<std::uint64_t>& from,
                            const std::vector<std::uint64_t>& to, bool bothWays) {
  struct Item {
    std::uint32_t row;
    std::uint32_t neighbour;
    std::uint32_t edge;
  };
  const std::uint64_t m = from.size();
  const std::uint64_t entries = bothWays ? 2 * m : m;
  int shift = 0;
  while ((n >> shift) > 256) ++shift;
  const std::uint64_t buckets = (n >> shift) + 1;

  std::vector<std::uint64_t> start(buckets + 1);
  for (std::uint64_t e = 0; e < m; ++e) {
    ++start[(from[e] >> shift) + 1];
    if (bothWays) ++start[(to[e] >> shift) + 1];
  }
  for (std::uint64_t b = 0; b < buckets; ++b) start[b + 1] += start[b];

  const std::unique_ptr<Item[]> items(new Item[entries + 1]);
  std::vector<std::uint64_t> next(start.begin(), start.end() - 1);
  const auto add = [&](std::uint64_t row, std::uint64_t neighbour, std::uint64_t edge) {
    items[next[row >> shift]++] = {static_cast<std::uint32_t>(row),
                                   static_cast<std::uint32_t>(neighbour),
                                   static_cast<std::uint32_t>(edge)};
  };
  for (std::uint64_t e = 0; e < m; ++e) {
    add(from[e], to[e], e);
    if (bothWays) add(to[e], from[e], e);
  }

  Rows rows;
  rows.begin.resize(n + 1);
  rows.neighbours.resize(entries);
  rows.edges.resize(entries);
  std::vector<std::uint64_t> place(std::uint64_t{1} << shift);
  std::uint64_t total = 0;
  for (std::uint64_t b = 0; b < buckets; ++b) {
    const std::uint64_t first = b << shift;
    const std::uint64_t last = std::min(n, (b + 1) << shift);
    std::fill(place.begin(), place.end(), 0);
    for (std::uint64_t i = start[b]; i < start[b + 1]; ++i) ++place[items[i].row - first];
    for (std::uint64_t v = first; v < last; ++v) {
      const std::uint64_t count = place[v - first];
      rows.begin[v] = place[v - first] = total;
      total += count;
    }
    for (std::uint64_t i = start[b]; i < start[b + 1]; ++i) {
      const std::uint64_t at = place[items[i].row - first]++;
      rows.neighbours[at] = items[i].neighbour;
      rows.edges[at] = items[i].edge;
    }
  }
  rows.begin[n] = total;
  return rows;
}

inline std::unique_ptr<PlainNetwork> plainNetworkOf(std::uint64_t n,
                                                    const std::vector<std::uint64_t>& from,
                                                    const std::vector<std::uint64_t>& to,
                                                    bool directed) {
  auto network = std::make_unique<PlainNetwork>();
  network->from.assign(from.begin(), from.end());
  network->to.assign(to.begin(), to.end());
  network->out = partitionedRows(n, from, to, !directed);
  if (directed) network->in = partitionedRows(n, to, from, false);
  return network;
}

/// The words r[i] = r[i-3] + r[i-31] of the C library's random(), which returns r >> 1.
class RandomWords {
 public:
  explicit RandomWords(std::uint32_t seed) {
    std::array<std::uint32_t, 31> seeds;
    std::uint64_t x = seed;
    for (std::uint32_t& word : seeds) {
      word = static_cast<std::uint32_t>(x);
      x = 16807 * x % 2147483647;
    }
    // The C library begins at the fourth word and throws the first 310 away.
    for (std::size_t i = 0; i < 31; ++i) ring_[i] = seeds[(i + 3) % 31];
    for (int i = 0; i < 10; ++i) turn();
  }

  std::uint32_t next() {
    if (position_ == block_.size()) {
      for (std::size_t i = 0; i < block_.size(); i += 31) {
        turn();
        std::memcpy(&block_[i], ring_.data(), sizeof(ring_));
      }
      position_ = 0;
    }
    return block_[position_++];
  }

 private:
  /// 31 new words in the place of the old ones.
  void turn() {
    for (std::size_t i = 0; i < 3; ++i) ring_[i] += ring_[i + 28];
    for (std::size_t i = 3; i < 31; ++i) ring_[i] += ring_[i - 3];
  }

  std::array<std::uint32_t, 31> ring_;
  std::array<std::uint32_t, 31 * 64> block_;
  std::size_t position_ = block_.size();
};

}  // namespace bench
