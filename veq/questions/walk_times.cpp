// Times to a target h solve h = 1 + Q h, where Q is the matrix without the target. Whatever way
// they were found, they are judged by what is left, s = 1 + Q h - h: since the inverse of 1 - Q
// turns ones into the true times and is nowhere below zero, |s| <= e means that h is wrong by at
// most e times the true times, everywhere.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "veq/natural/internal/complaints.hpp"
#include "veq/questions/internal/elimination.hpp"
#include "veq/questions/internal/walk_times.hpp"

namespace veq {
namespace internal {
namespace {

using Matrix = WalkLaw::Matrix;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t kRoundsPerLook = 8;

class Times {
 public:
  Times(const Matrix& matrix, const BackwardRows& backward, std::uint64_t target)
      : matrix_(matrix), target_(target), steps_(matrix.count(), 0.0) {
    const std::vector<bool> reaches = reaching(backward, {target});
    std::vector<std::uint64_t> lost;
    for (std::uint64_t v = 0; v < matrix.count(); ++v) {
      if (!reaches[v]) lost.push_back(v);
    }
    const std::vector<bool> mayBeLost = reaching(backward, lost, target);
    for (std::uint64_t v = 0; v < matrix.count(); ++v) {
      if (mayBeLost[v]) {
        steps_[v] = kInfinity;
      } else if (v != target) {
        unknown_.push_back(v);
      }
      longestRow_ = std::max(longestRow_, matrix.starts[v + 1] - matrix.starts[v]);
    }
  }

  HittingTimes find(const SolvingOptions& options, Pace& pace) {
    if (unknown_.size() <= options.solvedUpTo) {
      solve(pace);
    } else {
      iterate(options, pace);
    }
    const double bound = residual() + rounding();
    setReturnTime();
    return {std::move(steps_), bound / (1.0 - bound)};
  }

 private:
  void solve(Pace& pace) {
    std::vector<std::size_t> place(matrix_.count());
    for (std::size_t i = 0; i < unknown_.size(); ++i) place[unknown_[i]] = i;
    Flows flows(unknown_.size());
    for (std::size_t i = 0; i < unknown_.size(); ++i) {
      matrix_.forRow(unknown_[i], [&](std::uint64_t to, double share) {
        if (to == target_) {
          flows.leaving[i] = share;
        } else {
          flows.at(i, place[to]) = share;
        }
      });
    }
    const std::vector<double> found =
        flows.collected(std::vector<double>(unknown_.size(), 1.0), &pace);
    for (std::size_t i = 0; i < unknown_.size(); ++i) steps_[unknown_[i]] = found[i];
  }

  // From below, each time from the newest others.
  void iterate(const SolvingOptions& options, Pace& pace) {
    for (std::uint64_t round = 0; round < options.mostRounds; ++round) {
      pace.reach(round);
      for (const std::uint64_t v : unknown_) {
        double sum = 1.0;
        double stays = 0.0;
        matrix_.forRow(v, [&](std::uint64_t to, double share) {
          if (to == v) {
            stays = share;
          } else {
            sum += share * steps_[to];
          }
        });
        steps_[v] = sum / (1.0 - stays);
      }
      if (round % kRoundsPerLook == 0 &&
          residual() <= std::max(options.precision / 2, rounding())) {
        return;
      }
    }
    throw NotSettled{};
  }

  [[nodiscard]] double residual() const {
    double worst = 0.0;
    for (const std::uint64_t v : unknown_) {
      double sum = 1.0;
      matrix_.forRow(v, [&](std::uint64_t to, double share) { sum += share * steps_[to]; });
      worst = std::max(worst, std::abs(sum - steps_[v]));
    }
    return worst;
  }

  // By how much the residual itself may be wrong.
  [[nodiscard]] double rounding() const {
    double longest = 0.0;
    for (const std::uint64_t v : unknown_) longest = std::max(longest, steps_[v]);
    return static_cast<double>(longestRow_ + 2) * kUnitRoundoff * longest;
  }

  // The target's own time, where to stay is not to come back.
  void setReturnTime() {
    const double stay = matrix_.stayAt(target_);
    double sum = 1.0;
    matrix_.forRow(target_, [&](std::uint64_t to, double share) {
      if (to != target_) sum += share * steps_[to];
    });
    steps_[target_] = sum / (1.0 - stay);
  }

  const Matrix& matrix_;
  std::uint64_t target_;
  std::vector<double> steps_;
  std::vector<std::uint64_t> unknown_;
  std::uint64_t longestRow_ = 0;
};

}  // namespace

HittingTimes timesTo(const Matrix& matrix, const BackwardRows& backward, std::uint64_t target,
                     const SolvingOptions& options, Pace& pace) {
  return Times(matrix, backward, target).find(options, pace);
}

}  // namespace internal

Result<HittingTimes> WalkLaw::hittingTimes(std::uint64_t target,
                                           const SolvingOptions& options) const {
  internal::requireVertex(target, countVertices());
  return internal::untilSettled(options, [&]() -> Result<HittingTimes> {
    const internal::BackwardRows backward(rowStarts(), targets());
    internal::Pace pace(options.progress, std::max(countVertices(), options.mostRounds));
    return internal::timesTo(*matrix_, backward, target, options, pace);
  });
}

}  // namespace veq
