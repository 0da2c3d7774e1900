// The configuration model. Every vertex stands in a list once for each of its edges. From the
// list's end on the last entry, at place i, is paired with the one at floor(i u / 2^62), whose
// place the last but one takes: every pairing comes with the same probability.

#include <map>
#include <numeric>
#include <utility>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/models/internal/rewiring.hpp"

namespace veq {
namespace {

using internal::Block;
using internal::DrawBlocks;
using internal::GrowingEnds;
using internal::Pace;

constexpr std::uint64_t kTriesPerEdge = 10;
constexpr std::uint64_t kAhead = 16;
constexpr std::uint64_t kPairsPerLook = 16384;

template <class Index>
GrowingEnds paired(std::span<const std::uint64_t> degrees, std::uint64_t m, DrawBlocks& draws,
                   Pace& pace) {
  Block<Index> list;
  list.resize(2 * m);
  std::uint64_t at = 0;
  for (std::uint64_t v = 0; v < degrees.size(); ++v) {
    for (std::uint64_t k = 0; k < degrees[v]; ++k) list[at++] = static_cast<Index>(v);
  }
  GrowingEnds ends;
  ends.from.resize(m);
  ends.to.resize(m);
  for (std::uint64_t e = 0; e < m; ++e) {
    if (e % kPairsPerLook == 0) pace.reach(e);
    const std::uint64_t last = 2 * (m - e) - 1;
    const std::uint64_t other = draws.below(last);
    if (last > 2 * kAhead) {
      const std::uint64_t later = DrawBlocks::scaled(last - 2 * kAhead, draws.ahead(kAhead - 1));
      internal::prefetchForWriting(&list[later]);
    }
    ends.from[e] = list[last];
    ends.to[e] = std::exchange(list[other], list[last - 1]);
  }
  return ends;
}

// The vertex that wants most takes those that want most of the others (Havel 1955, Hakimi 1962).
// Nothing where there are not enough of them, for then no such network exists.
std::optional<GrowingEnds> simple(std::span<const std::uint64_t> degrees, std::uint64_t m,
                                  Pace& pace) {
  std::map<std::uint64_t, std::vector<std::uint64_t>> wanting;
  for (std::uint64_t v = 0; v < degrees.size(); ++v) {
    if (degrees[v] != 0) wanting[degrees[v]].push_back(v);
  }
  const auto takeMostWanting = [&] {
    const auto most = std::prev(wanting.end());
    const std::pair taken(most->first, most->second.back());
    most->second.pop_back();
    if (most->second.empty()) wanting.erase(most);
    return taken;
  };
  GrowingEnds ends;
  ends.reserve(m);
  std::vector<std::pair<std::uint64_t, std::uint64_t>> taken;
  while (!wanting.empty()) {
    pace.reach(0);
    const auto [degree, vertex] = takeMostWanting();
    taken.clear();
    while (taken.size() < degree) {
      if (wanting.empty()) return std::nullopt;
      taken.push_back(takeMostWanting());
      ends.add(vertex, taken.back().second);
    }
    for (const auto& [wants, other] : taken) {
      if (wants > 1) wanting[wants - 1].push_back(other);
    }
  }
  return ends;
}

}  // namespace

Result<Network> configurationNetwork(std::span<const std::uint64_t> degrees, DegreeLaw law,
                                     const ModelOptions& options) {
  const std::uint64_t n = degrees.size();
  if (n == 0) return internal::argumentError("degrees: no vertex, give at least one");
  if (auto error = internal::countError(n, UINT32_MAX)) return *error;
  const double about = std::accumulate(degrees.begin(), degrees.end(), 0.0);
  if (auto error = internal::memoryError("degrees", static_cast<double>(n), about / 2)) {
    return *error;
  }
  const std::uint64_t sum = std::accumulate(degrees.begin(), degrees.end(), std::uint64_t{0});
  if (sum % 2 != 0) {
    return internal::argumentError("degrees: their sum " + std::to_string(sum) + " is odd");
  }
  const std::uint64_t m = sum / 2;
  if (law == DegreeLaw::kPairing) {
    return internal::generated(options, [&](DrawBlocks& draws) {
      Pace pace(options.progress, m);
      return internal::draftOf(n, paired<std::uint32_t>(degrees, m, draws, pace));
    });
  }
  const std::uint64_t tries = kTriesPerEdge * m;
  Pace pace(options.progress, tries);
  Result<GrowingEnds> ends = internal::untilStopped([&]() -> Result<GrowingEnds> {
    if (auto found = simple(degrees, m, pace)) return std::move(*found);
    return internal::argumentError("degrees: no network without loops and parallel edges has them");
  });
  if (!ends) return ends.error();
  return internal::generated(options, [&](DrawBlocks& draws) {
    internal::rewire(ends.value(), false, tries, draws, pace);
    return internal::draftOf(n, std::move(ends.value()));
  });
}

}  // namespace veq
