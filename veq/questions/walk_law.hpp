/// \file
/// The law of a walk as numbers: what its visits tend to.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/choice.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// Which walk is meant: that of one agent without memory.
/// \ingroup laws
struct WalkLawOptions {
  Choice choice = Choice::kPublished;
  /// The probability with which a step leads back to `start` instead. It counts as the multiple of
  /// 2^-31 that is not below it.
  double restart = 0.0;
  /// Where restarts lead. Not asked for without restarts.
  std::uint64_t start = 0;
  /// Of making the matrix.
  Progress progress{};
};

/// How to solve or iterate.
/// \ingroup laws
struct SolvingOptions {
  /// Above so many unknowns equations are iterated, not solved: solving takes a third of their cube
  /// in operations, and the square in memory.
  std::uint64_t solvedUpTo = 1500;
  /// An iteration ends when its error is below this, in the sense of the result, or as rounding
  /// permits; one that is not there after so many rounds over all entries gives an error.
  double precision = 1e-10;
  std::uint64_t mostRounds = 100000;
  Progress progress{};
};

/// Where a walk is in the long run.
/// \ingroup laws
struct StationaryShares {
  /// The share of its steps that end at each vertex. They sum to 1.
  std::vector<double> shares;
  /// The sum of the absolute errors of all shares is at most this.
  double errorBound = 0.0;
};

/// How long a walk takes to a vertex.
/// \ingroup laws
struct HittingTimes {
  /// The mean number of steps from each vertex to the first arrival at the target, from the target
  /// itself until it comes back. Infinite where it may never come there.
  std::vector<double> steps;
  /// No finite time is wrong by more than this part of it.
  double relativeErrorBound = 0.0;
};

/// How long a walk takes to have been everywhere, on average. Both are the same, but for rounding,
/// where the time is known.
/// \ingroup laws
struct CoverTime {
  double atLeast = 0.0;
  double atMost = 0.0;
};

/// How to ask for a cover time.
/// \ingroup laws
struct CoverOptions {
  /// Whether the vertex where the walk begins counts as visited. It does not for the reach target
  /// of walks: there it has to be come back to.
  bool startCounts = false;
  Progress progress{};
};

/// The transition probabilities of a walk, exact as the numbers of 31 bits that decide it make
/// them, and what follows from them. Copies share one matrix. It does not change when the network
/// does. Any number of threads may ask.
/// \ingroup laws
class VEQ_EXPORT WalkLaw {
 public:
  /// Errors of kind kArgument: "the network has no vertices", "restart 1.5: give 0 to 1", "start 12
  /// of 10 vertices", and for weighted choices "edge 3: weight -1", which must be a finite number
  /// not below 0. O(n + m log d) for lists of up to d entries.
  [[nodiscard]] static Result<WalkLaw> of(const Network& network,
                                          const WalkLawOptions& options = {});

  /// \name The matrix, row by row
  /// Entry i of row v, for rowStarts()[v] <= i < rowStarts()[v + 1], says that a step from v leads
  /// to targets()[i] with probability shares()[i]. Each target stands once, in ascending order,
  /// with the sum of what parallel edges give it; impossible ones do not. Without restarts the
  /// shares are exact, and each row sums to exactly 1. A vertex that cannot be left leads to
  /// itself.
  /// @{
  [[nodiscard]] std::uint64_t countVertices() const;
  [[nodiscard]] std::span<const std::uint64_t> rowStarts() const;
  [[nodiscard]] std::span<const std::uint64_t> targets() const;
  [[nodiscard]] std::span<const double> shares() const;
  /// The vertices where a walk stays for want of edges (or of weights above 0) except for restarts,
  /// ascending. These steps are no arrivals.
  [[nodiscard]] std::span<const std::uint64_t> deadEnds() const;
  /// @}

  /// The shares of its steps that a walk spends at each vertex in the long run, from wherever it
  /// begins; 0 for those that it leaves for ever. Solved by elimination without subtraction, so
  /// that no period matters; above SolvingOptions::solvedUpTo vertices iterated in steps that stay
  /// with probability 1/2, which has the same shares and no period.
  ///
  /// Errors of kind kArgument where they depend on where the walk begins: "vertex 7 cannot be left,
  /// so there is no long run; 3 such vertices" without restarts, "a walk that has come to vertex 2
  /// never reaches vertex 5, and the other way round". kUnsupported where the iteration does not
  /// settle: "not settled after 100000 rounds".
  [[nodiscard]] Result<StationaryShares> stationary(const SolvingOptions& options = {}) const;

  /// The times to one vertex. std::out_of_range, "vertex 12 of 10". kUnsupported as above.
  [[nodiscard]] Result<HittingTimes> hittingTimes(std::uint64_t target,
                                                  const SolvingOptions& options = {}) const;

  /// The mean number of steps until a walk from `start` has been everywhere: solved over all sets
  /// of visited vertices for up to 18 vertices, within bounds by hitting times (of Matthews) for up
  /// to 256. Infinite where it may never be. An error of kind kUnsupported for more, "cover times
  /// of 257 vertices: walk and take the mean". std::out_of_range for the start. O(2^n n^3) and
  /// O(n^4).
  [[nodiscard]] Result<CoverTime> coverTime(std::uint64_t start,
                                            const CoverOptions& options = {}) const;

  /// The library's own.
  struct Matrix;

 private:
  explicit WalkLaw(Shared<const Matrix> matrix) : matrix_(std::move(matrix)) {}

  Shared<const Matrix> matrix_;
};

}  // namespace veq
