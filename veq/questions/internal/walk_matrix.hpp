/// \file
/// The matrix behind a walk's law.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/questions/walk_law.hpp"

namespace veq {

struct WalkLaw::Matrix {
  std::vector<std::uint64_t> starts{0};
  std::vector<std::uint64_t> targets;
  std::vector<double> shares;
  std::vector<std::uint64_t> deadEnds;
  /// What a dead end keeps: 1 without restarts.
  double stay = 1.0;

  [[nodiscard]] std::uint64_t count() const { return starts.size() - 1; }
  [[nodiscard]] bool isDeadEnd(std::uint64_t vertex) const;
  /// The probability of a step that is no arrival.
  [[nodiscard]] double stayAt(std::uint64_t vertex) const { return isDeadEnd(vertex) ? stay : 0.0; }
  /// Calls f(target, share) for a row.
  template <class F>
  void forRow(std::uint64_t vertex, F f) const {
    for (std::uint64_t i = starts[vertex]; i < starts[vertex + 1]; ++i) f(targets[i], shares[i]);
  }
};

namespace internal {

/// The vertices that lead to each, as rows: the same graph backwards.
struct BackwardRows {
  explicit BackwardRows(std::span<const std::uint64_t> starts,
                        std::span<const std::uint64_t> targets);

  std::vector<std::uint64_t> starts;
  std::vector<std::uint64_t> sources;
};

/// The vertices from which one of `goals` can be reached without passing `barrier` (which is none
/// of them), as marks; no barrier is UINT64_MAX.
[[nodiscard]] std::vector<bool> reaching(const BackwardRows& rows,
                                         const std::vector<std::uint64_t>& goals,
                                         std::uint64_t barrier = UINT64_MAX);

}  // namespace internal
}  // namespace veq
