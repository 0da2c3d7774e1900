/// \file
/// Which entry of a list a draw chooses.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/network/internal/adjacency_lists.hpp"

namespace veq::internal {

/// Lists shorter than this allow the choice in integers.
inline constexpr std::uint64_t kExactChoices = std::uint64_t{1} << 22;

/// round((k - 1) x) for the number x = draw * 2^-31, where k is a list's length, at least 1, and
/// the product is formed and rounded in double, halves away from zero.
///
/// For k - 1 < 2^22 the product (k - 1) * draw is below 2^53 and hence exact also in double, so
/// that the result is floor((k - 1) * draw / 2^31 + 1/2), which integers give without any
/// conversion.
[[nodiscard]] inline std::uint64_t chooseEntry(std::uint64_t k, std::uint32_t draw) {
  if (k - 1 < kExactChoices) return ((k - 1) * draw + (std::uint64_t{1} << 30)) >> 31;
  return static_cast<std::uint64_t>(
      std::round(static_cast<double>(k - 1) * fromDraw<double>(draw)));
}

/// floor(k x), exactly.
[[nodiscard]] inline std::uint64_t chooseEvenly(std::uint64_t k, std::uint32_t draw) {
  if (k <= UINT32_MAX) return k * draw >> 31;
  return static_cast<std::uint64_t>(Uint128{k} * draw >> 31);
}

/// What stands for no place in a pool, whose size is at most this. Lists in foreign memory may
/// begin at any place below.
template <class Index>
inline constexpr Index kNoPlace = std::numeric_limits<Index>::max();

/// Choices that depend on a list's length alone, by one of the functions above.
///
/// Every choice answers for a list with the place of an entry in the pool of neighbours, or with
/// kNoPlace if there is none to take; and among() does where some vertices are to be left out,
/// unless they are all that there is.
template <auto kEntry>
struct CountingChoice {
  template <class Index>
  [[nodiscard]] Index operator()(Row<Index> row, std::uint32_t draw) const {
    // One comparison finds that a list is neither empty nor long.
    const Index last = row.count - 1;
    if (last < kExactChoices)
      return static_cast<Index>(row.start + kEntry(std::uint64_t{last} + 1, draw));
    return row.count == 0 ? kNoPlace<Index>
                          : static_cast<Index>(row.start + kEntry(row.count, draw));
  }

  // Counting the candidates and then looking for the chosen one takes no memory, which a walk could
  // run out of in the middle of a step.
  template <class Index, class LeaveOut>
  [[nodiscard]] Index among(Row<Index> row, const Index* neighbours, std::uint32_t draw,
                            LeaveOut leaveOut) const {
    const Index* const first = neighbours + row.start;
    const Index* const end = first + row.count;
    std::uint64_t candidates = 0;
    for (const Index* entry = first; entry != end; ++entry) candidates += !leaveOut(*entry);
    if (candidates == 0 || candidates == row.count) return (*this)(row, draw);
    std::uint64_t left = kEntry(candidates, draw);
    for (const Index* entry = first;; ++entry) {
      if (!leaveOut(*entry) && left-- == 0) return static_cast<Index>(entry - neighbours);
    }
  }
};
using PublishedChoice = CountingChoice<chooseEntry>;
using EvenChoice = CountingChoice<chooseEvenly>;

/// The first entry whose weight together with those before it exceeds x times the sum of all.
struct WeightedChoice {
  /// For each place in the pool the weight of its entry, and the sum from its list's first entry.
  struct Entry {
    double sum;
    double weight;
  };
  std::span<const Entry> entries;

  template <class Index>
  [[nodiscard]] Index operator()(Row<Index> row, std::uint32_t draw) const {
    if (row.count == 0) return kNoPlace<Index>;
    const Entry* const first = entries.data() + row.start;
    const double total = first[row.count - 1].sum;
    if (!(total > 0.0)) return kNoPlace<Index>;
    const double limit = total * fromDraw<double>(draw);
    const Entry* const chosen = std::partition_point(
        first, first + row.count, [limit](const Entry& entry) { return !(entry.sum > limit); });
    return static_cast<Index>(chosen - entries.data());
  }

  // An entry of weight 0 is as good as none, so it is no candidate.
  template <class Index, class LeaveOut>
  [[nodiscard]] Index among(Row<Index> row, const Index* neighbours, std::uint32_t draw,
                            LeaveOut leaveOut) const {
    const Entry* const of = entries.data();
    const auto isCandidate = [&](Index place) { return !leaveOut(neighbours[place]); };
    const auto end = static_cast<Index>(row.start + row.count);
    double total = 0.0;
    for (Index place = row.start; place < end; ++place) {
      if (isCandidate(place)) total += of[place].weight;
    }
    if (!(total > 0.0)) return (*this)(row, draw);
    const double limit = total * fromDraw<double>(draw);
    double sum = 0.0;
    for (Index place = row.start;; ++place) {
      if (!isCandidate(place)) continue;
      sum += of[place].weight;
      if (sum > limit) return place;
    }
  }
};

}  // namespace veq::internal
