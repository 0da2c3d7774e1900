#include "veq/models/internal/random_hits.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "veq/models/internal/random_jump.hpp"

namespace veq::internal {
namespace {

// Rare hits need not be met in order, so the run is cut into chunks, a chunk into segments of equal
// length, and all segments of a chunk are drawn side by side, each in a lane of its own: then even
// the plain recurrence is one addition for a vector of lanes. Each lane keeps its hits, and the
// lanes one after another give them in order.
constexpr std::size_t kLag = RandomStream::kLag;
// Three rows of so many sums fit into the registers of every processor meant here.
constexpr std::size_t kLanes = 16;
constexpr std::uint64_t kDrawsPerRound = kLanes * kLag;
// Long segments make the jumps between them cheap; they bound what the lanes must remember.
constexpr std::uint64_t kMostRounds = 8192;
constexpr std::uint64_t kFewestRounds = 64;
// Above this threshold, one draw in 32, hits are not rare.
constexpr std::uint32_t kRare = std::uint32_t{1} << 26;
// What a thread draws at once: so much that the jump there costs little, and so little that its
// hits take some megabytes at most.
constexpr std::uint64_t kRareStretch = std::uint64_t{1} << 24;
constexpr std::uint64_t kStretch = std::uint64_t{1} << 20;

template <std::size_t kBytes>
struct VectorOf {
  typedef std::uint32_t Type __attribute__((vector_size(kBytes), may_alias));
};

struct alignas(64) Lanes {
  std::uint32_t rows[kLag][kLanes];  // the 31 words drawn last, in every lane
  std::uint32_t below[kLanes];  // the top bit: whether one of the lane's words is below the limit
};

// Draws 31 words in every lane, marks the lanes with a word below the limit, which is at most 2^31,
// and answers whether there is one. word - limit then borrows into a top bit that the word itself
// lacks. The three chains of sums stay in registers only as vectors of just the processor's size;
// hence the size is said, and not left to the compiler.
template <std::size_t kBytes>
VEQ_INLINE bool drawRound(Lanes& lanes, std::uint32_t limit) {
  using Vector = typename VectorOf<kBytes>::Type;
  constexpr std::size_t kVectors = sizeof lanes.below / kBytes;
  Vector sums[3][kVectors];
  Vector below[kVectors] = {};
  for (std::size_t chain = 0; chain < 3; ++chain) {
    const Vector* const row = reinterpret_cast<const Vector*>(lanes.rows[28 + chain]);
    for (std::size_t v = 0; v < kVectors; ++v) sums[chain][v] = row[v];
  }
  const auto draw = [&](std::size_t k, std::size_t chain) __attribute__((always_inline)) {
    Vector* const row = reinterpret_cast<Vector*>(lanes.rows[k]);
    for (std::size_t v = 0; v < kVectors; ++v) {
      row[v] = sums[chain][v] += row[v];
      below[v] |= (sums[chain][v] - limit) & ~sums[chain][v];
    }
  };
  for (std::size_t k = 0; k + 3 <= kLag; k += 3) {
    draw(k, 0);
    draw(k + 1, 1);
    draw(k + 2, 2);
  }
  draw(30, 0);
  Vector any = {};
  for (std::size_t v = 0; v < kVectors; ++v) {
    reinterpret_cast<Vector*>(lanes.below)[v] = below[v];
    any |= below[v];
  }
  std::uint32_t bits = 0;
  for (std::size_t l = 0; l < kBytes / sizeof bits; ++l) bits |= any[l];
  return bits >> 31 != 0;
}

// Draws rounds until some lane is marked, `rounds` at most, and answers how many of them are left.
template <std::size_t kBytes>
VEQ_INLINE std::uint64_t drawRounds(Lanes& lanes, std::uint32_t limit, std::uint64_t rounds) {
  while (rounds > 0) {
    --rounds;
    if (drawRound<kBytes>(lanes, limit)) break;
  }
  return rounds;
}
std::uint64_t drawRoundsPlain(Lanes& lanes, std::uint32_t limit, std::uint64_t rounds) {
  return drawRounds<16>(lanes, limit, rounds);
}
VEQ_WIDE_VECTORS std::uint64_t drawRoundsWide(Lanes& lanes, std::uint32_t limit,
                                              std::uint64_t rounds) {
  return drawRounds<32>(lanes, limit, rounds);
}

class LaneScan {
 public:
  explicit LaneScan(bool wideVectors)
      : drawRounds_(wideVectors ? drawRoundsWide : drawRoundsPlain) {}

  // Names the hits in the next `rounds` rounds of all lanes and moves the stream past them.
  void scan(RandomStream& stream, std::uint64_t rounds, std::uint64_t start,
            std::uint32_t threshold, const HitSink& sink) {
    placeLanes(stream, rounds * kLag);
    const std::uint32_t limit = 2 * threshold;  // for words, which are not shifted
    for (std::uint64_t left = rounds; left > 0;) {
      left = drawRounds_(lanes_, limit, left);
      collect(start + (rounds - left - 1) * kLag, limit);
    }
    for (std::vector<std::uint64_t>& hits : hits_) {
      if (!hits.empty()) sink(hits);
      hits.clear();
    }
    RandomStream::Words end;
    for (std::size_t k = 0; k < kLag; ++k) end[k] = lanes_.rows[k][kLanes - 1];
    stream.setRecent(end);
  }

 private:
  void placeLanes(const RandomStream& stream, std::uint64_t segment) {
    if (segment_ != segment) polynomial_ = jumpPolynomial(segment);
    segment_ = segment;
    RandomStream::Words words = stream.recent();
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      if (lane > 0) words = jump(polynomial_, words);
      for (std::size_t k = 0; k < kLag; ++k) lanes_.rows[k][lane] = words[k];
    }
  }

  void collect(std::uint64_t start, std::uint32_t limit) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      if (lanes_.below[lane] >> 31 == 0) continue;
      for (std::size_t k = 0; k < kLag; ++k) {
        if (lanes_.rows[k][lane] < limit) hits_[lane].push_back(start + lane * segment_ + k);
      }
    }
  }

  Lanes lanes_{};
  decltype(&drawRoundsPlain) drawRounds_;
  std::array<std::vector<std::uint64_t>, kLanes> hits_;
  std::uint64_t segment_ = 0;  // the draws of one lane, which the polynomial skips
  JumpPolynomial polynomial_{};
};

// The same, draw by draw.
void scanInOrder(RandomStream& stream, std::uint64_t start, std::uint64_t total,
                 std::uint32_t threshold, const HitSink& sink) {
  constexpr std::size_t kBlock = 2048;
  std::array<std::uint32_t, kBlock> draws;
  std::array<std::uint64_t, kBlock> hits;
  for (std::uint64_t done = 0; done < total;) {
    const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(total - done, kBlock));
    stream.fill(draws.data(), part);
    std::size_t count = 0;
    for (std::size_t i = 0; i < part; ++i) {  // no branch to mispredict
      hits[count] = start + done + i;
      count += draws[i] < threshold;
    }
    if (count > 0) sink({hits.data(), count});
    done += part;
  }
}

}  // namespace

void hitsBelow(RandomStream& stream, std::uint64_t total, std::uint32_t threshold,
               const HitSink& sink, bool wideVectors) {
  RandomStream current = stream;
  std::uint64_t done = 0;
  if (threshold <= kRare && total >= kFewestRounds * kDrawsPerRound) {
    LaneScan lanes(wideVectors);
    while (total - done >= kFewestRounds * kDrawsPerRound) {
      const std::uint64_t rounds = std::min(kMostRounds, (total - done) / kDrawsPerRound);
      lanes.scan(current, rounds, done, threshold, sink);
      done += rounds * kDrawsPerRound;
    }
  }
  scanInOrder(current, done, total - done, threshold, sink);
  stream = current;
}

void hitsBelow(RandomStream& stream, std::uint64_t total, std::uint32_t threshold,
               const HitSink& sink, Team& team) {
  const std::uint64_t most = threshold <= kRare ? kRareStretch : kStretch;
  if (team.threads() == 1 || total <= most) return hitsBelow(stream, total, threshold, sink);
  RandomStream current = stream;
  // As many for each thread, and of equal length, so that none waits for another at the end.
  const std::uint64_t stretches = (total / most / team.threads() + 1) * team.threads();
  const std::uint64_t stretch = total / stretches + 1;
  // So many at once that threads seldom wait for each other, and that hits are few at a time.
  constexpr std::uint64_t kPiecesOfThread = 4;
  std::vector<std::vector<std::uint64_t>> hits(kPiecesOfThread * team.threads());
  std::vector<std::vector<std::uint64_t>> earlier(hits.size());
  // This thread passes on what was found before while others find more.
  const auto passOn = [&] {
    for (std::vector<std::uint64_t>& found : earlier) {
      if (!found.empty()) sink(found);
      found.clear();
    }
  };
  for (std::uint64_t done = 0; done < total;) {
    const std::uint64_t left = total - done;
    const std::uint64_t pieces =
        std::min<std::uint64_t>(hits.size(), left / stretch + (left % stretch != 0 ? 1 : 0));
    const auto find = [&](std::uint64_t piece) {
      const std::uint64_t skipped = piece * stretch;
      RandomStream own = current;
      own.advance(skipped);
      hitsBelow(own, std::min(stretch, left - skipped), threshold,
                [&](std::span<const std::uint64_t> some) {
                  for (const std::uint64_t hit : some) hits[piece].push_back(done + skipped + hit);
                });
    };
    team.forEachPieceWhile(pieces, pieces * stretch, find, passOn);
    std::swap(hits, earlier);
    const std::uint64_t drawn = std::min(left, pieces * stretch);
    current.advance(drawn);
    done += drawn;
  }
  passOn();
  stream = current;
}

}  // namespace veq::internal
