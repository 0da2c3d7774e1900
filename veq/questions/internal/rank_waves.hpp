/// \file
/// In which order the ranks of a large network are computed anew.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "veq/network/internal/degree_sums.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Vertices that follow each other.
struct VertexRange {
  std::uint64_t begin;
  std::uint64_t end;

  [[nodiscard]] std::uint64_t size() const { return end - begin; }
  [[nodiscard]] bool has(std::uint64_t vertex) const { return vertex - begin < end - begin; }
};

/// The vertices of a large network in their order, cut into waves of about as much work each, and
/// these into pieces that threads take side by side. A piece sees its own new ranks and those of
/// the waves before it, and the old ones of all others, no matter which of them have been computed:
/// so ranks are the same with any number of threads, and converge nearly as fast as one by one.
class RankWaves {
 public:
  /// The vertices and the entries of their lists from which on a network is cut. Tests set it, so
  /// that small ones are.
  static inline std::uint64_t largeFrom = std::uint64_t{1} << 23;
  /// Of a piece, at least. Tests set it, too.
  static inline std::uint64_t leastWork = std::uint64_t{1} << 12;

  static constexpr std::uint64_t kPiecesOfWave = 32;

  explicit RankWaves(const NetworkCore& core) {
    const std::uint64_t entries = core.store.edgeCount() * (core.store.directed() ? 1 : 2);
    const std::uint64_t all = core.store.vertexCount() + entries;
    if (all < largeFrom) return;
    const std::uint64_t enough = std::max(leastWork, all / kMostPieces);
    std::uint64_t work = enough;
    forEachDegree(core, AdjacencyStore::Side::kIn, [&](std::uint64_t v, std::uint64_t degree) {
      if (work >= enough) {
        pieces_.push_back({v, v});
        work = 0;
      }
      pieces_.back().end = v + 1;
      work += 1 + degree;
    });
    workOfWave_ = kPiecesOfWave * enough;
  }

  /// Whether there are any.
  [[nodiscard]] bool empty() const { return pieces_.empty(); }
  /// Vertices and entries of one, about.
  [[nodiscard]] std::uint64_t workOfWave() const { return workOfWave_; }
  /// The vertices of the one that has most.
  [[nodiscard]] std::uint64_t widest() const {
    std::uint64_t most = 0;
    forEach([&](VertexRange wave, std::uint64_t, const VertexRange*) {
      most = std::max(most, wave.size());
    });
    return most;
  }

  /// Calls f(wave, count, pieces) for each wave.
  template <class F>
  void forEach(F f) const {
    for (std::size_t first = 0; first < pieces_.size(); first += kPiecesOfWave) {
      const std::uint64_t count = std::min(kPiecesOfWave, pieces_.size() - first);
      f(VertexRange{pieces_[first].begin, pieces_[first + count - 1].end}, count, &pieces_[first]);
    }
  }

 private:
  static constexpr std::uint64_t kMostPieces = std::uint64_t{1} << 14;

  std::vector<VertexRange> pieces_;
  std::uint64_t workOfWave_ = 0;
};

}  // namespace veq::internal
