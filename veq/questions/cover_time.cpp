// Cover times. A walk is described by the set of vertices that it has visited and by where it is.
// The times of all places in a set follow from those of the sets with one vertex more, so the sets
// are solved from the largest on.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/questions/internal/elimination.hpp"
#include "veq/questions/internal/walk_times.hpp"

namespace veq {
namespace {

using internal::Block;
using internal::Flows;
using internal::kUnitRoundoff;
using internal::Pace;
using Matrix = WalkLaw::Matrix;

constexpr std::uint64_t kExactly = 18;
constexpr std::uint64_t kWithinBounds = 256;
constexpr std::uint64_t kSetsPerLook = 1024;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class SetTimes {
 public:
  SetTimes(const Matrix& matrix, Pace& pace)
      : matrix_(matrix),
        n_(matrix.count()),
        full_((std::uint64_t{1} << n_) - 1),
        times_((full_ + 1) * n_) {
    for (std::uint64_t set = full_; set-- > 1;) {
      if (set % kSetsPerLook == 0) pace.reach(full_ - set);
      solve(set);
    }
  }

  [[nodiscard]] CoverTime from(std::uint64_t start, bool startCounts) const {
    double steps = 0.0;
    if (startCounts) {
      steps = times_[(std::uint64_t{1} << start) * n_ + start];
    } else {
      const double stay = matrix_.stayAt(start);
      steps = 1.0;
      matrix_.forRow(start, [&](std::uint64_t to, double share) {
        const double arrives = to == start ? share - stay : share;
        if (arrives > 0.0) steps += arrives * times_[(std::uint64_t{1} << to) * n_ + to];
      });
      steps /= 1.0 - stay;
    }
    return {steps * (1.0 - error_), steps * (1.0 + error_)};
  }

 private:
  static bool has(std::uint64_t set, std::uint64_t vertex) { return (set >> vertex & 1) != 0; }

  void solve(std::uint64_t set) {
    gather(set);
    drop();
    Flows flows(members_.size());
    std::vector<double> gain(members_.size());
    for (std::size_t i = 0; i < members_.size(); ++i) {
      gain[i] = gain_[members_[i]];
      matrix_.forRow(members_[i], [&](std::uint64_t to, double share) {
        if (has(set, to)) {
          flows.at(i, place_[to]) = share;
        } else {
          flows.leaving[i] += share;
        }
      });
    }
    const std::vector<double> found = flows.collected(gain, nullptr);
    for (std::size_t i = 0; i < members_.size(); ++i) times_[set * n_ + members_[i]] = found[i];
    judge(set);
  }

  // The members, and what a step from each brings: itself, and the time of the set that it makes.
  void gather(std::uint64_t set) {
    members_.clear();
    for (std::uint64_t v = 0; v < n_; ++v) {
      if (!has(set, v)) continue;
      members_.push_back(v);
      gain_[v] = 1.0;
      leaves_[v] = false;
      matrix_.forRow(v, [&](std::uint64_t to, double share) {
        if (has(set, to)) return;
        leaves_[v] = true;
        gain_[v] += share * times_[(set | std::uint64_t{1} << to) * n_ + to];
      });
      endless_[v] = gain_[v] == kInfinity;
    }
    set_ = set;
  }

  // Takes those out of the members from which the walk may never end.
  void drop() {
    const auto spread = [&](auto& marks) {
      for (bool changed = true; changed;) {
        changed = false;
        for (const std::uint64_t v : members_) {
          if (marks[v]) continue;
          matrix_.forRow(v, [&](std::uint64_t to, double) {
            if (has(set_, to) && marks[to]) marks[v] = changed = true;
          });
        }
      }
    };
    spread(leaves_);
    for (const std::uint64_t v : members_) endless_[v] = endless_[v] || !leaves_[v];
    spread(endless_);
    for (const std::uint64_t v : members_) {
      if (endless_[v]) times_[set_ * n_ + v] = kInfinity;
    }
    std::erase_if(members_, [&](std::uint64_t v) { return endless_[v]; });
    for (std::size_t i = 0; i < members_.size(); ++i) place_[members_[i]] = i;
  }

  // What is left of the equations, as a part of what a step brings, bounds the error that this set
  // adds to those of the larger ones. The worst of each size is added up.
  void judge(std::uint64_t set) {
    double worst = 0.0;
    for (const std::uint64_t v : members_) {
      double sum = gain_[v];
      matrix_.forRow(v, [&](std::uint64_t to, double share) {
        if (has(set, to)) sum += share * times_[set * n_ + to];
      });
      const double time = times_[set * n_ + v];
      const double rounding = static_cast<double>(n_ + 2) * kUnitRoundoff * time;
      worst = std::max(worst, (std::abs(sum - time) + rounding) / gain_[v]);
    }
    double& ofSize = worst_[static_cast<std::size_t>(std::popcount(set))];
    if (worst <= ofSize) return;
    error_ += worst - ofSize;
    ofSize = worst;
  }

  const Matrix& matrix_;
  std::uint64_t n_;
  std::uint64_t full_;
  Block<double> times_;  // of each set and place
  double error_ = kUnitRoundoff * 32;
  double worst_[kExactly + 1]{};
  // Of the set at hand.
  std::uint64_t set_ = 0;
  std::vector<std::uint64_t> members_;
  std::size_t place_[kExactly]{};
  double gain_[kExactly]{};
  bool leaves_[kExactly]{};
  bool endless_[kExactly]{};
};

// In a random order of all vertices, the k-th is last of the first k with probability 1/k, and then
// takes at most the longest time from another, and at least the shortest.
CoverTime boundsFrom(const Matrix& matrix, std::uint64_t start, bool startCounts, Pace& pace) {
  const internal::BackwardRows backward(matrix.starts, matrix.targets);
  const std::uint64_t n = matrix.count();
  double longest = 0.0;
  double shortest = kInfinity;
  double farthest = 0.0;
  double back = 0.0;
  double error = 0.0;
  for (std::uint64_t target = 0; target < n; ++target) {
    pace.reach(target);
    HittingTimes times = internal::timesTo(matrix, backward, target, {}, pace);
    error = std::max(error, times.relativeErrorBound);
    if (target != start) farthest = std::max(farthest, times.steps[start]);
    if (target == start) back = times.steps[start];
    times.steps[target] = times.steps[target == 0 ? 1 : 0];
    const auto [least, most] = std::minmax_element(times.steps.begin(), times.steps.end());
    shortest = std::min(shortest, *least);
    longest = std::max(longest, *most);
  }
  double harmonic = 0.0;
  for (std::uint64_t k = 1; k < n; ++k) harmonic += 1.0 / static_cast<double>(k);
  CoverTime time{std::max(shortest * harmonic, farthest), longest * harmonic};
  if (!startCounts) {
    time.atLeast = std::max(time.atLeast, back);
    time.atMost += longest / static_cast<double>(n) + std::max(0.0, back - longest);
  }
  error += 0x1p-40;
  return {time.atLeast * (1.0 - error), time.atMost * (1.0 + error)};
}

}  // namespace

Result<CoverTime> WalkLaw::coverTime(std::uint64_t start, const CoverOptions& options) const {
  const std::uint64_t n = countVertices();
  internal::requireVertex(start, n);
  if (n > kWithinBounds) {
    return Error(ErrorKind::kUnsupported,
                 "cover times of " + std::to_string(n) + " vertices: walk and take the mean");
  }
  return internal::untilSettled({}, [&]() -> Result<CoverTime> {
    Pace pace(options.progress, n <= kExactly ? std::uint64_t{1} << n : n);
    if (n <= kExactly) return SetTimes(*matrix_, pace).from(start, options.startCounts);
    return boundsFrom(*matrix_, start, options.startCounts, pace);
  });
}

}  // namespace veq
