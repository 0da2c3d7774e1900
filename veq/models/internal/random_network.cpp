// Uniform random networks. The draws of all pairs are one run of the sequence, whatever batches
// they came in, so they are compared as they are made and never stored.

#include "veq/models/internal/random_network.hpp"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "veq/base/internal/team.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/models/internal/random_hits.hpp"
#include "veq/numeric/internal/element_storage.hpp"

namespace veq::internal {
namespace {

Uint128 pairCount(std::uint64_t n) { return n == 0 ? 0 : Uint128{n} * (n - 1) / 2; }

// The numbers in all batches drawn. A batch of none, which a negative degree can ask for, is never
// used up.
Uint128 drawCount(Uint128 pairs, std::uint64_t batch) {
  return batch == 0 ? 0 : batch * (pairs / batch + 1);
}

// The pairs in order, and the vertices of those that are linked.
class PairRows {
 public:
  explicit PairRows(std::uint64_t count) : rowLength_(count - 1) {}

  /// Pairs are named by ascending positions.
  void link(Uint128 position) {
    while (position - rowStart_ >= rowLength_) {
      rowStart_ += rowLength_--;
      ++row_;
    }
    from.push_back(row_);
    to.push_back(row_ + 1 + static_cast<std::uint64_t>(position - rowStart_));
  }

  RawVector<std::uint64_t> from;
  RawVector<std::uint64_t> to;

 private:
  std::uint64_t row_ = 0;
  std::uint64_t rowLength_;
  Uint128 rowStart_ = 0;
};

// Room for the edges to be expected, or std::bad_alloc; vectors grow if there are more.
void reserve(PairRows& rows, Uint128 pairs, double probability) {
  const double expected = static_cast<double>(pairs) * std::min(probability, 1.0);
  const double most = expected + 4 * std::sqrt(expected);
  if (most > 0x1p60) throw std::bad_alloc();
  const auto size = sizeOf<std::uint64_t>(static_cast<std::uint64_t>(most));
  rows.from.reserve(size);
  rows.to.reserve(size);
}

// A draw r stands for r x 2^-31, so p > r x 2^-31 means r < p x 2^31, which is exact.
void linkBelow(PairRows& rows, RandomStream stream, Uint128 pairs, double probability) {
  const auto threshold = static_cast<std::uint32_t>(std::ceil(probability * 0x1p31));
  constexpr std::uint64_t kStretch = std::uint64_t{1} << 62;
  Team team(parallelism());
  for (Uint128 start = 0; start < pairs;) {
    const auto stretch = static_cast<std::uint64_t>(std::min<Uint128>(pairs - start, kStretch));
    hitsBelow(
        stream, stretch, threshold,
        [&](std::span<const std::uint64_t> hits) {
          for (const std::uint64_t hit : hits) rows.link(start + hit);
        },
        team);
    start += stretch;
  }
}

}  // namespace

std::optional<NetworkDraft> randomNetwork(std::uint64_t count, double degree, RandomSource source) {
  const auto n = static_cast<double>(count);
  const auto batch = convertNumber<std::uint64_t>(n * degree + 1.0);
  const double probability = degree / n;
  const Uint128 pairs = pairCount(count);
  PairRows rows(count);
  const bool linksAny = pairs > 0 && probability > 0;  // Not a number links none.
  if (linksAny) reserve(rows, pairs, probability);
  const RandomStream stream = source.take(drawCount(pairs, batch));
  if (linksAny && probability < 1) linkBelow(rows, stream, pairs, probability);
  if (linksAny && probability >= 1) {
    for (Uint128 pair = 0; pair < pairs; ++pair) rows.link(pair);
  }
  NetworkDraft draft;
  draft.vertexCount = countVertices(0, rows.from, rows.to).value();
  draft.from = std::move(rows.from);
  draft.to = std::move(rows.to);
  return draft;
}

}  // namespace veq::internal
