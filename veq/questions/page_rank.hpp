/// \file
/// How important vertices are to somebody who follows edges.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"
#include "veq/natural/spans.hpp"

namespace veq {

/// How somebody follows edges.
/// \ingroup ask
struct PageRankOptions {
  /// The probability of a restart before each step, above 0 and at most 1.
  double restart = 0.15;
  /// Where a restart leads: one number for each vertex, in whatever unit; to all alike by default.
  NumberSpan personalisation{};
  /// Edges are chosen by weight, where the network has edge weights.
  bool weighted = true;
  /// The sum of the absolute errors of all ranks to come below, as far as doubles allow.
  double tolerance = 1e-10;
  /// How often at most all ranks are computed anew.
  std::uint64_t mostSweeps = 1000;
  /// As in BuildOptions.
  std::optional<unsigned> threads{};
  Progress progress{};
};

/// The shares of time spent on each vertex.
/// \ingroup ask
struct PageRank {
  /// Their sum is 1, but for rounding.
  std::vector<double> ranks;
  std::uint64_t sweeps = 0;
  /// A bound of the sum of all absolute errors, and whether it came below the tolerance.
  double error = 0;
  bool converged = false;
};

/// The stationary law of a walk along edges, each entry of a list being chosen alike or by weight,
/// with restarts; one that can follow no edge restarts. Parallel edges count, and loops, undirected
/// ones twice. Errors: "restart 0: not above 0 and at most 1"; "tolerance 0: not above 0"; "4
/// weights for 5 vertices"; "vertex 3: personalisation -1"; "the personalisation sums to 0"; "edge
/// 7: weight -1"; a stop. All sums are formed in a fixed order, so that the result is the same on
/// every machine. (Page and others, 1999; by Gauss-Seidel sweeps over vertices in their order, of
/// large networks some thousand at once, the whole rescaled after each.) O((n + m) sweeps).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<PageRank> pageRank(const Network& network,
                                                   const PageRankOptions& options = {});

}  // namespace veq
