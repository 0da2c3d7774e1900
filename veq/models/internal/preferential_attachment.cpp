// Preferential attachment: a draw chooses an entry of a pool in which every vertex stands once for
// each of its edges, and initial vertices once more.

#include "veq/models/internal/preferential_attachment.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <utility>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/numeric/internal/element_storage.hpp"

namespace veq::internal {
namespace {

// The targets of one new vertex at a time, in a table small enough to stay in the cache.
class TargetSet {
 public:
  explicit TargetSet(std::uint64_t capacity)
      : slots_(std::bit_ceil(4 * capacity)), mask_(slots_.size() - 1) {}

  /// False if the target is there already. The owner, a number above 0, stands for the new vertex.
  bool insert(std::uint64_t owner, std::uint64_t target) {
    std::uint64_t at = target & mask_;
    for (; slots_[at].owner == owner; at = (at + 1) & mask_) {
      if (slots_[at].target == target) return false;
    }
    slots_[at] = {owner, target};
    return true;
  }

 private:
  struct Slot {
    std::uint64_t owner;
    std::uint64_t target;
  };
  std::vector<Slot> slots_;
  std::uint64_t mask_;
};

// Draws r as shares r / (2^31 - 1) of a range. How many will be needed is not known, as some are
// rejected; but those that are certainly needed can be taken from their source at once.
class Shares {
 public:
  explicit Shares(RandomSource source) : source_(source) {}

  double next(std::uint64_t certain) {
    if (at_ == end_) refill(certain);
    return shares_[at_++];
  }
  /// A later one, as far as it is known already.
  [[nodiscard]] double ahead() const { return shares_[std::min(at_ + kAhead, end_ - 1)]; }

 private:
  static constexpr std::size_t kBlock = 1024;
  static constexpr std::size_t kAhead = 24;

  void refill(std::uint64_t certain) {
    if (taken_ == 0) {
      stream_ = source_.take(certain);
      taken_ = certain;
    }
    end_ = static_cast<std::size_t>(std::min<std::uint64_t>(taken_, kBlock));
    taken_ -= end_;
    std::array<std::uint32_t, kBlock> draws;
    stream_.fill(draws.data(), end_);
    for (std::size_t i = 0; i < end_; ++i) {
      shares_[i] = static_cast<std::int32_t>(draws[i]) / 2147483647.0;
    }
    at_ = 0;
  }

  RandomSource source_;
  RandomStream stream_ = RandomStream::seeded(1);
  std::uint64_t taken_ = 0;
  std::array<double, kBlock> shares_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
};

// round(last x share), which is below 2^53: halves away from zero.
std::uint64_t choose(std::uint64_t last, double share) {
  const double exact = static_cast<double>(static_cast<std::int64_t>(last)) * share;
  const auto below = static_cast<std::int64_t>(exact);
  return static_cast<std::uint64_t>(below + (exact - static_cast<double>(below) >= 0.5));
}

// Beyond this no pool can be told by doubles, and no memory could hold the network.
constexpr std::uint64_t kMostEntries = std::uint64_t{1} << 53;

// The edges of all new vertices. Index is wide enough for all vertices.
template <class Index>
NetworkDraft grow(std::uint64_t initialVertices, std::uint64_t degreeGrowth,
                  std::uint64_t iterations, RandomSource source) {
  const std::uint64_t edges = degreeGrowth * iterations;
  RawVector<std::uint64_t> from(sizeOf<std::uint64_t>(edges));
  RawVector<std::uint64_t> to(from.size());
  Block<Index> pool(initialVertices + 2 * edges);
  for (std::uint64_t v = 0; v < initialVertices; ++v) pool[v] = static_cast<Index>(v);
  TargetSet targets(degreeGrowth);
  Shares shares(source);
  std::uint64_t edge = 0;
  std::uint64_t count = initialVertices;  // entries of the pool
  for (std::uint64_t v = initialVertices; v < initialVertices + iterations; ++v) {
    for (const std::uint64_t end = edge + degreeGrowth; edge < end;) {
      const double share = shares.next(edges - edge);
      // The pool will have grown when that share's turn comes, which moves its choice a little.
      prefetch(&pool[choose(count - 1, shares.ahead())]);
      const Index target = pool[choose(count - 1, share)];
      if (!targets.insert(v, target)) continue;
      from[edge] = v;
      to[edge++] = target;
      pool[count++] = target;
    }
    for (std::uint64_t k = 0; k < degreeGrowth; ++k) pool[count++] = static_cast<Index>(v);
  }
  NetworkDraft draft;
  draft.vertexCount = initialVertices + iterations;
  draft.from = std::move(from);
  draft.to = std::move(to);
  return draft;
}

bool fits(std::uint64_t initialVertices, std::uint64_t degreeGrowth, std::uint64_t iterations) {
  return initialVertices <= kMostEntries / 2 && iterations <= kMostEntries / 4 / degreeGrowth;
}

}  // namespace

std::optional<NetworkDraft> preferentialAttachment(std::uint64_t initialVertices,
                                                   std::uint64_t degreeGrowth,
                                                   std::uint64_t iterations, RandomSource source) {
  if (degreeGrowth == 0 || iterations == 0) {
    NetworkDraft single;
    single.vertexCount = 1;
    return single;
  }
  if (degreeGrowth > initialVertices) return std::nullopt;
  if (!fits(initialVertices, degreeGrowth, iterations)) return std::nullopt;
  return initialVertices + iterations <= UINT32_MAX
             ? grow<std::uint32_t>(initialVertices, degreeGrowth, iterations, source)
             : grow<std::uint64_t>(initialVertices, degreeGrowth, iterations, source);
}

}  // namespace veq::internal
