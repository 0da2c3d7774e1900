#include "veq/questions/walk_law.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "veq/questions/internal/elimination.hpp"
#include "veq/questions/internal/walk_matrix.hpp"
#include "veq/questions/internal/walk_times.hpp"

namespace veq {
namespace {

using internal::BackwardRows;
using internal::Flows;
using internal::kUnitRoundoff;
using internal::NotSettled;
using internal::Pace;

constexpr std::uint64_t kRoundsPerLook = 8;

// The closed class in which a walk from this vertex may end: the strongly connected component that
// a search in depth completes first, for no edge leads out of it. Ascending.
class ClosedClass {
 public:
  static std::vector<std::uint64_t> reachedFrom(const WalkLaw& law, std::uint64_t root) {
    return ClosedClass(law).search(root);
  }

 private:
  explicit ClosedClass(const WalkLaw& law)
      : law_(law), number_(law.countVertices()), low_(law.countVertices()) {}

  void enter(std::uint64_t vertex) {
    number_[vertex] = low_[vertex] = ++numbered_;
    open_.push_back(vertex);
    path_.push_back({vertex, law_.rowStarts()[vertex]});
  }

  std::vector<std::uint64_t> search(std::uint64_t root) {
    enter(root);
    for (;;) {
      auto& [vertex, next] = path_.back();
      if (next < law_.rowStarts()[vertex + 1]) {
        const std::uint64_t to = law_.targets()[next++];
        if (number_[to] == 0) {
          enter(to);
        } else {
          low_[vertex] = std::min(low_[vertex], number_[to]);
        }
        continue;
      }
      if (low_[vertex] == number_[vertex]) break;
      const std::uint64_t done = vertex;
      path_.pop_back();
      low_[path_.back().vertex] = std::min(low_[path_.back().vertex], low_[done]);
    }
    const auto first = std::find(open_.begin(), open_.end(), path_.back().vertex);
    std::vector<std::uint64_t> members(first, open_.end());
    std::sort(members.begin(), members.end());
    return members;
  }

  struct Visit {
    std::uint64_t vertex;
    std::uint64_t next;
  };
  const WalkLaw& law_;
  std::vector<std::uint64_t> number_;  // in the order in which they were met, from 1
  std::vector<std::uint64_t> low_;     // the lowest number known to be reached
  std::uint64_t numbered_ = 0;
  std::vector<std::uint64_t> open_;
  std::vector<Visit> path_;
};

// The class in which every walk ends.
Result<std::vector<std::uint64_t>> onlyClosedClass(const WalkLaw& law, bool restarts,
                                                   const BackwardRows& backward) {
  if (!law.deadEnds().empty() && !restarts) {
    return Error(ErrorKind::kArgument, "vertex " + std::to_string(law.deadEnds()[0]) +
                                           " cannot be left, so there is no long run; " +
                                           std::to_string(law.deadEnds().size()) + " such " +
                                           (law.deadEnds().size() == 1 ? "vertex" : "vertices"));
  }
  std::vector<std::uint64_t> one = ClosedClass::reachedFrom(law, 0);
  const std::vector<bool> comesThere = internal::reaching(backward, {one[0]});
  const auto stranger = std::find(comesThere.begin(), comesThere.end(), false);
  if (stranger == comesThere.end()) return one;
  const std::vector<std::uint64_t> other =
      ClosedClass::reachedFrom(law, static_cast<std::uint64_t>(stranger - comesThere.begin()));
  const auto [first, second] = std::minmax(one[0], other[0]);
  return Error(ErrorKind::kArgument, "a walk that has come to vertex " + std::to_string(first) +
                                         " never reaches vertex " + std::to_string(second) +
                                         ", and the other way round");
}

// One row vector times the matrix.
std::vector<double> stepped(const WalkLaw::Matrix& matrix,
                            const std::vector<std::uint64_t>& members,
                            const std::vector<double>& shares) {
  std::vector<double> next(shares.size());
  for (const std::uint64_t v : members) {
    matrix.forRow(v, [&](std::uint64_t to, double share) { next[to] += share * shares[v]; });
  }
  return next;
}

// The error of shares x whose next step is x + r, by the times h to one vertex: the sum of all
// |error| is at most 2 sum |r| h, since r times the mean visits on the way to that vertex leads
// from x to a multiple of the true shares, and these visits add up to h.
class ErrorBound {
 public:
  ErrorBound(std::vector<double> times, double relativeError, std::uint64_t longestSum)
      : times_(std::move(times)),
        relativeError_(relativeError),
        rounding_(static_cast<double>(longestSum + 3) * kUnitRoundoff) {}

  double of(const std::vector<std::uint64_t>& members, const std::vector<double>& shares,
            const std::vector<double>& next) const {
    double sum = 0.0;
    for (const std::uint64_t v : members) {
      sum += (std::abs(next[v] - shares[v]) + rounding_ * next[v]) * times_[v];
    }
    return 2.0 * sum * (1.0 + relativeError_) + 0x1p-50;
  }
  // What remains of it however long one iterates.
  double least(const std::vector<std::uint64_t>& members, const std::vector<double>& shares) const {
    return of(members, shares, shares);
  }

 private:
  std::vector<double> times_;
  double relativeError_;
  double rounding_;
};

void solve(const WalkLaw::Matrix& matrix, const std::vector<std::uint64_t>& members,
           std::vector<double>& shares, Pace& pace) {
  std::vector<std::size_t> place(shares.size());
  for (std::size_t i = 0; i < members.size(); ++i) place[members[i]] = i;
  Flows flows(members.size());
  for (std::size_t i = 0; i < members.size(); ++i) {
    matrix.forRow(members[i],
                  [&](std::uint64_t to, double share) { flows.at(i, place[to]) = share; });
  }
  const std::vector<double> found = flows.stationary(&pace);
  for (std::size_t i = 0; i < members.size(); ++i) shares[members[i]] = found[i];
}

// A step that stays with probability 1/2.
void stepLazily(const WalkLaw::Matrix& matrix, const std::vector<std::uint64_t>& members,
                std::vector<double>& shares) {
  const std::vector<double> next = stepped(matrix, members, shares);
  double total = 0.0;
  for (const std::uint64_t v : members) total += (next[v] + shares[v]) / 2;
  for (const std::uint64_t v : members) shares[v] = (next[v] + shares[v]) / 2 / total;
}

// Where the walk mostly is after some steps.
std::uint64_t fullest(const std::vector<double>& shares) {
  return static_cast<std::uint64_t>(std::max_element(shares.begin(), shares.end()) -
                                    shares.begin());
}

ErrorBound errorBound(const WalkLaw::Matrix& matrix, const BackwardRows& backward,
                      std::uint64_t towards, const SolvingOptions& options, Pace& pace) {
  HittingTimes times = internal::timesTo(matrix, backward, towards, options, pace);
  times.steps[towards] = 0.0;
  std::uint64_t longest = 0;
  for (std::size_t v = 0; v + 1 < backward.starts.size(); ++v) {
    longest = std::max(longest, backward.starts[v + 1] - backward.starts[v]);
  }
  return {std::move(times.steps), times.relativeErrorBound, longest};
}

StationaryShares longRun(const WalkLaw::Matrix& matrix, const std::vector<std::uint64_t>& members,
                         const BackwardRows& backward, const SolvingOptions& options) {
  Pace pace(options.progress, std::max(matrix.count(), options.mostRounds));
  std::vector<double> shares(matrix.count());
  if (members.size() <= options.solvedUpTo) {
    solve(matrix, members, shares, pace);
    const ErrorBound bound = errorBound(matrix, backward, fullest(shares), options, pace);
    const double error = bound.of(members, shares, stepped(matrix, members, shares));
    return {std::move(shares), error};
  }
  for (const std::uint64_t v : members) shares[v] = 1.0 / static_cast<double>(members.size());
  for (int step = 0; step < 32; ++step) stepLazily(matrix, members, shares);
  const ErrorBound bound = errorBound(matrix, backward, fullest(shares), options, pace);
  for (std::uint64_t round = 0; round < options.mostRounds; ++round) {
    pace.reach(round);
    if (round % kRoundsPerLook == 0) {
      const double error = bound.of(members, shares, stepped(matrix, members, shares));
      if (error <= std::max(options.precision, 2.0 * bound.least(members, shares))) {
        return {std::move(shares), error};
      }
    }
    stepLazily(matrix, members, shares);
  }
  throw NotSettled{};
}

}  // namespace

Result<StationaryShares> WalkLaw::stationary(const SolvingOptions& options) const {
  return internal::untilSettled(options, [&]() -> Result<StationaryShares> {
    const BackwardRows backward(rowStarts(), targets());
    const auto members = onlyClosedClass(*this, matrix_->stay < 1.0, backward);
    if (!members) return members.error();
    return longRun(*matrix_, members.value(), backward, options);
  });
}

}  // namespace veq
