// Preferential attachment. Before vertex v comes there are E = m (v - m) edges. A number u of 62
// bits chooses entry floor(2 E u / 2^62) of their ends, first all sources and then all targets. The
// sources need no memory: entry e of them is m + floor(e / m), and hence m + floor(2 (v - m) u /
// 2^62).

#include <algorithm>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/models/internal/generating.hpp"

namespace veq {
namespace {

using internal::DrawBlocks;
using internal::GrowingEnds;
using internal::namedNumber;
using internal::Pace;

constexpr std::uint64_t kVerticesPerLook = 4096;
// Up to so many targets of a vertex are looked through, one by one.
constexpr std::uint64_t kFewTargets = 24;
// So many numbers ahead what they will choose is fetched.
constexpr std::uint64_t kAhead = 24;

class AttachmentProcess {
 public:
  AttachmentProcess(DrawBlocks& draws, std::uint64_t n, std::uint64_t m)
      : draws_(draws), n_(n), m_(m) {
    ends_.from.resize(m * (n - m));
    ends_.to.resize(m * (n - m));
    if (m > kFewTargets) chosenBy_.resize(n);
  }

  GrowingEnds grow(Pace& pace) {
    std::uint64_t* const from = ends_.from.data();
    std::uint64_t* const to = ends_.to.data();
    for (std::uint64_t v = 0; v < m_; ++v) to[v] = v;
    std::fill_n(from, m_, m_);
    for (std::uint64_t v = m_ + 1; v < n_; ++v) {
      if (v % kVerticesPerLook == 0) pace.reach(v);
      const std::uint64_t rounds = v - m_;
      std::uint64_t* const mine = to + m_ * rounds;
      for (std::uint64_t slot = 0; slot < m_;) {
        const std::uint64_t u = draws_.next();
        fetch(rounds + (slot + kAhead) / m_);
        const std::uint64_t source = DrawBlocks::scaled(2 * rounds, u);
        const std::uint64_t target = source < rounds
                                         ? m_ + source
                                         : to[DrawBlocks::scaled(2 * m_ * rounds, u) - m_ * rounds];
        if (isTaken(v, target, mine, slot)) continue;
        mine[slot++] = target;
      }
      std::fill_n(from + m_ * rounds, m_, v);
    }
    return std::move(ends_);
  }

 private:
  // What a later number will choose, if none of those before it is rejected.
  void fetch(std::uint64_t rounds) const {
    const std::uint64_t u = draws_.ahead(kAhead - 1);
    const std::uint64_t entry = DrawBlocks::scaled(2 * m_ * rounds, u);
    if (entry >= m_ * rounds) internal::prefetch(ends_.to.data() + (entry - m_ * rounds));
  }

  bool isTaken(std::uint64_t v, std::uint64_t target, const std::uint64_t* mine,
               std::uint64_t count) {
    if (m_ <= kFewTargets) return std::find(mine, mine + count, target) != mine + count;
    return std::exchange(chosenBy_[target], v) == v;
  }

  DrawBlocks& draws_;
  std::uint64_t n_;
  std::uint64_t m_;
  GrowingEnds ends_;
  std::vector<std::uint64_t> chosenBy_;
};

}  // namespace

Result<Network> barabasiAlbertNetwork(std::uint64_t n, std::uint64_t m,
                                      const ModelOptions& options) {
  if (auto error = internal::countError(n, internal::kMostPaired)) return *error;
  if (m >= n) {
    return internal::argumentError(namedNumber("m", m) +
                                   ": give at most n - 1 = " + std::to_string(n - 1));
  }
  if (auto error =
          internal::memoryError(namedNumber("n", n) + ", " + namedNumber("m", m),
                                static_cast<double>(n), static_cast<double>(m * (n - m)))) {
    return *error;
  }
  return internal::generated(options, [&](DrawBlocks& draws) {
    if (m == 0) return internal::draftOf(n, {});
    Pace pace(options.progress, n);
    return internal::draftOf(n, AttachmentProcess(draws, n, m).grow(pace));
  });
}

}  // namespace veq
