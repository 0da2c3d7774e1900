// The shares of the entries of a list are counted in the 2^31 numbers that decide a step: an entry
// is chosen by the numbers from where those of the entry before it end to where its own end.

#include "veq/questions/internal/walk_matrix.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {
namespace {

using internal::argumentError;
using internal::NetworkCore;
using internal::Pace;

constexpr std::uint64_t kNumbers = std::uint64_t{1} << 31;
// From so many intervals on the product of round((k - 1) x) is rounded itself.
constexpr std::uint64_t kExactChoices = std::uint64_t{1} << 22;
constexpr std::uint64_t kVerticesPerLook = 4096;

std::uint64_t quotientUp(std::uint64_t a, std::uint64_t b) { return a / b + (a % b != 0); }

// The first number from `guess` or near it for which the choice, which never falls, has gone past.
template <class IsPast>
std::uint64_t firstPast(std::uint64_t guess, IsPast isPast) {
  guess = std::min(guess, kNumbers);
  while (guess > 0 && isPast(guess - 1)) --guess;
  while (guess < kNumbers && !isPast(guess)) ++guess;
  return guess;
}

double numberOf(std::uint64_t draw) { return static_cast<double>(draw) * 0x1p-31; }

// Where the numbers end that choose entry j of k or one before it.
std::uint64_t publishedEnd(std::uint64_t j, std::uint64_t k) {
  if (j + 1 == k) return kNumbers;
  const std::uint64_t last = k - 1;
  // j + 1 <= last x / 2^31 + 1/2
  if (last < kExactChoices) return quotientUp((2 * j + 1) << 30, last);
  return firstPast(static_cast<std::uint64_t>((static_cast<double>(j) + 0.5) /
                                              static_cast<double>(last) * 0x1p31),
                   [=](std::uint64_t draw) {
                     return std::round(static_cast<double>(last) * numberOf(draw)) >
                            static_cast<double>(j);
                   });
}

std::uint64_t evenEnd(std::uint64_t j, std::uint64_t k) {
  return static_cast<std::uint64_t>((Uint128{j + 1} * kNumbers + k - 1) / k);
}

std::uint64_t weightedEnd(double weightSoFar, double total) {
  return firstPast(static_cast<std::uint64_t>(weightSoFar / total * 0x1p31),
                   [=](std::uint64_t draw) { return !(weightSoFar > total * numberOf(draw)); });
}

// Writes rows, one after the other.
class RowWriter {
 public:
  RowWriter(const NetworkCore& core, const WalkLawOptions& options)
      : core_(core),
        choice_(options.choice),
        restart_(std::ceil(options.restart * 0x1p31) * 0x1p-31),
        start_(options.start) {}

  template <class Row, class Edges>
  void write(std::uint64_t vertex, const Row& neighbours, const Edges& edges,
             std::vector<std::uint64_t>& targets, std::vector<double>& shares, bool& deadEnd) {
    row_.clear();
    const std::uint64_t k = neighbours.size();
    double total = 0.0;
    if (choice_ == Choice::kWeighted) {
      for (const auto edge : edges) total += weight(edge);
    }
    deadEnd = k == 0 || (choice_ == Choice::kWeighted && !(total > 0.0));
    if (deadEnd) {
      row_.emplace_back(vertex, kNumbers);
    } else {
      std::uint64_t begin = 0;
      double weightSoFar = 0.0;
      for (std::uint64_t j = 0; j < k; ++j) {
        if (choice_ == Choice::kWeighted) weightSoFar += weight(edges[j]);
        const std::uint64_t end = choice_ == Choice::kPublished ? publishedEnd(j, k)
                                  : choice_ == Choice::kEven    ? evenEnd(j, k)
                                                                : weightedEnd(weightSoFar, total);
        if (end > begin) row_.emplace_back(neighbours[j], end - begin);
        begin = end;
      }
    }
    merge();
    addTo(targets, shares);
  }

  [[nodiscard]] double stay() const { return 1.0 - restart_; }

 private:
  [[nodiscard]] double weight(std::uint64_t edge) const {
    return core_.edgesWeights ? static_cast<double>((*core_.edgesWeights)[edge]) : 1.0;
  }

  void merge() {
    std::sort(row_.begin(), row_.end());
    std::size_t kept = 0;
    for (std::size_t i = 1; i < row_.size(); ++i) {
      if (row_[i].first == row_[kept].first) {
        row_[kept].second += row_[i].second;
      } else {
        row_[++kept] = row_[i];
      }
    }
    row_.resize(kept + 1);
  }

  void addTo(std::vector<std::uint64_t>& targets, std::vector<double>& shares) const {
    bool restarts = restart_ > 0.0;
    const auto add = [&](std::uint64_t target, double share) {
      targets.push_back(target);
      shares.push_back(share);
    };
    for (const auto& [target, numbers] : row_) {
      if (restarts && start_ < target) {
        add(start_, restart_);
        restarts = false;
      }
      double share = static_cast<double>(numbers) * 0x1p-31 * (1.0 - restart_);
      if (restarts && start_ == target) {
        share += restart_;
        restarts = false;
      }
      if (share > 0.0) add(target, share);
    }
    if (restarts) add(start_, restart_);
  }

  const NetworkCore& core_;
  Choice choice_;
  double restart_;
  std::uint64_t start_;
  std::vector<std::pair<std::uint64_t, std::uint64_t>>
      row_;  // targets, and numbers that lead there
};

template <class Number>
std::string shortText(Number value) {
  std::string text;
  internal::appendShortest(text, value);
  return text;
}

std::optional<Error> inputError(const NetworkCore& core, const WalkLawOptions& options) {
  const std::uint64_t n = core.store.vertexCount();
  if (n == 0) return argumentError("the network has no vertices");
  if (!(options.restart >= 0.0 && options.restart <= 1.0)) {
    return argumentError("restart " + shortText(options.restart) + ": give 0 to 1");
  }
  if (options.restart > 0.0 && options.start >= n) {
    return argumentError("start " + std::to_string(options.start) + " of " + std::to_string(n) +
                         " vertices");
  }
  if (options.choice != Choice::kWeighted || !core.edgesWeights) return std::nullopt;
  for (std::uint64_t e = 0; e < core.edgesWeights->size(); ++e) {
    const float weight = (*core.edgesWeights)[e];
    if (weight >= 0.0F && std::isfinite(weight)) continue;
    return argumentError("edge " + std::to_string(e) + ": weight " + shortText(weight));
  }
  return std::nullopt;
}

}  // namespace

bool WalkLaw::Matrix::isDeadEnd(std::uint64_t vertex) const {
  return std::binary_search(deadEnds.begin(), deadEnds.end(), vertex);
}

Result<WalkLaw> WalkLaw::of(const Network& network, const WalkLawOptions& options) {
  const NetworkCore& core = internal::CoreAccess::of(*network.published());
  if (const auto error = inputError(core, options)) return *error;
  const std::uint64_t n = core.store.vertexCount();
  auto matrix = std::make_shared<Matrix>();
  RowWriter writer(core, options);
  matrix->stay = writer.stay();
  matrix->starts.reserve(n + 1);
  return internal::untilStopped([&]() -> Result<WalkLaw> {
    Pace pace(options.progress, n);
    core.store.visit([&](const auto& topology) {
      for (std::uint64_t v = 0; v < n; ++v) {
        if (v % kVerticesPerLook == 0) pace.reach(v);
        bool deadEnd = false;
        writer.write(v, topology.out.neighbours(v), topology.out.edges(v), matrix->targets,
                     matrix->shares, deadEnd);
        if (deadEnd) matrix->deadEnds.push_back(v);
        matrix->starts.push_back(matrix->targets.size());
      }
    });
    return WalkLaw(std::move(matrix));
  });
}

std::uint64_t WalkLaw::countVertices() const { return matrix_->count(); }
std::span<const std::uint64_t> WalkLaw::rowStarts() const { return matrix_->starts; }
std::span<const std::uint64_t> WalkLaw::targets() const { return matrix_->targets; }
std::span<const double> WalkLaw::shares() const { return matrix_->shares; }
std::span<const std::uint64_t> WalkLaw::deadEnds() const { return matrix_->deadEnds; }

namespace internal {

BackwardRows::BackwardRows(std::span<const std::uint64_t> rowStarts,
                           std::span<const std::uint64_t> targets)
    : starts(rowStarts.size()), sources(targets.size()) {
  for (const std::uint64_t target : targets) ++starts[target + 1];
  for (std::size_t v = 1; v < starts.size(); ++v) starts[v] += starts[v - 1];
  std::vector<std::uint64_t> next(starts.begin(), starts.end() - 1);
  for (std::uint64_t v = 0; v + 1 < rowStarts.size(); ++v) {
    for (std::uint64_t i = rowStarts[v]; i < rowStarts[v + 1]; ++i) {
      sources[next[targets[i]]++] = v;
    }
  }
}

std::vector<bool> reaching(const BackwardRows& rows, const std::vector<std::uint64_t>& goals,
                           std::uint64_t barrier) {
  std::vector<bool> found(rows.starts.size() - 1);
  std::vector<std::uint64_t> queue = goals;
  for (const std::uint64_t goal : goals) found[goal] = true;
  while (!queue.empty()) {
    const std::uint64_t v = queue.back();
    queue.pop_back();
    for (std::uint64_t i = rows.starts[v]; i < rows.starts[v + 1]; ++i) {
      const std::uint64_t u = rows.sources[i];
      if (found[u] || u == barrier) continue;
      found[u] = true;
      queue.push_back(u);
    }
  }
  return found;
}

}  // namespace internal
}  // namespace veq
