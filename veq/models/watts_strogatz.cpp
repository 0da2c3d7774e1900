// Small worlds. Edge (d - 1) n + v of the ring leads from v to v + d. Which edges are drawn again
// say the skips of geometric_skips.hpp over these numbers; the new end is floor(n u / 2^62), again
// until it is neither the vertex itself nor linked to it.

#include <utility>
#include <vector>

#include "veq/models/internal/edge_set.hpp"
#include "veq/models/internal/generating.hpp"
#include "veq/models/internal/geometric_skips.hpp"

namespace veq {
namespace {

using internal::DrawBlocks;
using internal::GrowingEnds;
using internal::namedNumber;
using internal::Pace;

constexpr std::uint64_t kMostVertices = UINT32_MAX;
constexpr std::uint64_t kEdgesPerLook = 16384;

class SmallWorld {
 public:
  SmallWorld(std::uint64_t n, std::uint64_t k, double expectedMoves)
      : n_(n),
        k_(k),
        moved_(n * k),
        movedEdges_(false, static_cast<std::uint64_t>(expectedMoves)),
        degrees_(n, static_cast<std::uint32_t>(2 * k)) {
    ends_.from.resize(n * k);
    ends_.to.resize(n * k);
    for (std::uint64_t d = 1, e = 0; d <= k; ++d) {
      for (std::uint64_t v = 0; v < n; ++v, ++e) {
        ends_.from[e] = v;
        ends_.to[e] = v + d < n ? v + d : v + d - n;
      }
    }
  }

  void move(std::uint64_t edge, DrawBlocks& draws) {
    const std::uint64_t v = ends_.from[edge];
    if (degrees_[v] == n_ - 1) return;
    std::uint64_t to = draws.below(n_);
    while (to == v || areLinked(v, to)) to = draws.below(n_);
    --degrees_[ends_.to[edge]];
    ++degrees_[to];
    moved_[edge] = true;
    movedEdges_.insert(v, to);
    ends_.to[edge] = to;
  }

  [[nodiscard]] GrowingEnds takeEnds() { return std::move(ends_); }

 private:
  [[nodiscard]] bool areLinked(std::uint64_t a, std::uint64_t b) const {
    const std::uint64_t forward = b >= a ? b - a : b + n_ - a;
    const std::uint64_t backward = n_ - forward;
    if (forward <= k_ && !moved_[(forward - 1) * n_ + a]) return true;
    if (backward <= k_ && !moved_[(backward - 1) * n_ + b]) return true;
    return movedEdges_.contains(a, b);
  }

  std::uint64_t n_;
  std::uint64_t k_;
  std::vector<bool> moved_;
  internal::EdgeSet movedEdges_;
  std::vector<std::uint32_t> degrees_;
  GrowingEnds ends_;
};

}  // namespace

Result<Network> wattsStrogatzNetwork(std::uint64_t n, std::uint64_t k, double p,
                                     const ModelOptions& options) {
  if (auto error = internal::countError(n, kMostVertices)) return *error;
  if (k > (n - 1) / 2) {
    return internal::argumentError(namedNumber("k", k) +
                                   ": give at most (n - 1) / 2 = " + std::to_string((n - 1) / 2));
  }
  if (auto error = internal::probabilityError("p", p)) return *error;
  const double about = static_cast<double>(n) * static_cast<double>(k);
  if (auto error = internal::memoryError(namedNumber("n", n) + ", " + namedNumber("k", k),
                                         static_cast<double>(n), about, 4)) {
    return *error;
  }
  return internal::generated(options, [&](DrawBlocks& draws) {
    const std::uint64_t edges = n * k;
    Pace pace(options.progress, edges);
    SmallWorld world(n, k, p * about);
    const internal::GeometricSkips skips(p, edges);
    std::uint64_t looked = 0;
    for (std::uint64_t edge = 0; p > 0.0 && edge < edges; ++edge) {
      const std::uint64_t skip = skips(draws.next());
      if (skip >= edges - edge) break;
      edge += skip;
      if (edge >= looked) {
        pace.reach(edge);
        looked = edge + kEdgesPerLook;
      }
      world.move(edge, draws);
    }
    return internal::draftOf(n, world.takeEnds());
  });
}

}  // namespace veq
