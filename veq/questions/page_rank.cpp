#include "veq/questions/page_rank.hpp"

#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/network/internal/degree_sums.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/questions/internal/edge_weights.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::argumentError;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::Pace;
using Side = AdjacencyStore::Side;

namespace {

// The share of each vertex among restarts, or what is wrong with what they are made of.
Result<std::vector<double>> restartShares(const NumberSpan& given, std::uint64_t n) {
  if (!given.given()) return std::vector<double>(n, n == 0 ? 0 : 1 / static_cast<double>(n));
  if (auto error = internal::weightsError(given, n, internal::Item::kVertex)) return *error;
  std::vector<double> shares(n);
  double sum = 0;
  std::optional<std::uint64_t> wrong;
  given.visit([&](auto values) {
    for (std::uint64_t v = 0; v < n; ++v) {
      shares[v] = static_cast<double>(values[v]);
      sum += shares[v];
      if (!wrong && !(shares[v] >= 0 && std::isfinite(shares[v]))) wrong = v;
    }
  });
  if (wrong) {
    return argumentError("vertex " + std::to_string(*wrong) + ": personalisation " +
                         Number(shares[*wrong]).text());
  }
  if (n > 0 && !(sum > 0 && std::isfinite(sum))) {
    return argumentError("the personalisation sums to " + Number(sum).text());
  }
  for (double& share : shares) share /= sum;
  return shares;
}

std::optional<Error> optionsError(const NetworkCore& core, const PageRankOptions& options) {
  if (!(options.restart > 0 && options.restart <= 1)) {
    return argumentError("restart " + Number(options.restart).text() +
                         ": not above 0 and at most 1");
  }
  if (!(options.tolerance > 0)) {
    return argumentError("tolerance " + Number(options.tolerance).text() + ": not above 0");
  }
  return options.weighted ? internal::edgeWeightsError(core) : std::nullopt;
}

// The ranks x solve x = p + f A x, p being the shares of restarts, f the probability to follow an
// edge and A the law by which edges are followed; vertices without a way out lose what they have.
// Normalised, that is the walk in which these restart, too.
class RankSweeps {
 public:
  RankSweeps(const NetworkCore& core, std::vector<double> shares, double follow, bool weighted)
      : core_(core),
        shares_(std::move(shares)),
        follow_(follow),
        weights_(weighted && core.edgesWeights ? core.edgesWeights->data() : nullptr),
        perUnit_(shares_.size()),
        ranks_(shares_),
        passedOn_(shares_.size()) {
    if (weights_) {
      internal::addStrengths(core, Side::kOut, perUnit_);
    } else {
      internal::forEachDegree(core, Side::kOut, [this](std::uint64_t v, std::uint64_t degree) {
        perUnit_[v] = static_cast<double>(degree);
      });
    }
    for (double& total : perUnit_) total = total > 0 ? follow / total : 0;
    for (std::uint64_t v = 0; v < ranks_.size(); ++v) passedOn_[v] = ranks_[v] * perUnit_[v];
    rescale();
  }

  // Computes all ranks anew, one after the other, and answers a bound of the sum of the errors of
  // the normalised ranks.
  double sweep() {
    const double change = core_.store.visit([this](const auto& topology) {
      const auto& lists = core_.store.lists(topology, Side::kIn);
      return weights_ ? sweepBy(lists,
                                [this](const auto& l, std::uint64_t v) {
                                  const auto neighbours = l.neighbours(v);
                                  const auto edges = l.edges(v);
                                  double sum = 0;
                                  for (std::size_t i = 0; i < neighbours.size(); ++i) {
                                    sum += passedOn_[neighbours[i]] *
                                           static_cast<double>(weights_[edges[i]]);
                                  }
                                  return sum;
                                })
                      : sweepBy(lists, [this](const auto& l, std::uint64_t v) {
                          double sum = 0;
                          for (const auto neighbour : l.neighbours(v)) sum += passedOn_[neighbour];
                          return sum;
                        });
    });
    const double factor = rescale();
    // What the equation still lacks is at most what the changes of this sweep make of the vertices
    // that came before them, and what rescaling adds; no error is larger than 1 / (1 - f) times
    // that, and normalising doubles it at most.
    const double lacking = factor * follow_ * change + std::abs(1 - factor);
    return 2 * lacking / (1 - follow_) / total_;
  }

  [[nodiscard]] std::vector<double> normalised() && {
    for (double& rank : ranks_) rank /= total_;
    return std::move(ranks_);
  }

 private:
  template <class Lists, class SumOf>
  double sweepBy(const Lists& lists, SumOf sumOf) {
    double change = 0;
    for (std::uint64_t v = 0; v < ranks_.size(); ++v) {
      const double rank = shares_[v] + sumOf(lists, v);
      change += std::abs(rank - ranks_[v]);
      ranks_[v] = rank;
      passedOn_[v] = rank * perUnit_[v];
    }
    return change;
  }

  // Multiplies all ranks with the one factor with which they obey the sum of all equations: the
  // error that sweeps remove most slowly is of that kind.
  double rescale() {
    double all = 0;
    double kept = 0;
    for (std::uint64_t v = 0; v < ranks_.size(); ++v) {
      all += ranks_[v];
      if (perUnit_[v] == 0) kept += ranks_[v];
    }
    const double factor = 1 / (all - follow_ * (all - kept));
    for (double& rank : ranks_) rank *= factor;
    for (double& part : passedOn_) part *= factor;
    total_ = all * factor;
    return factor;
  }

  const NetworkCore& core_;
  std::vector<double> shares_;
  double follow_;
  const float* weights_;
  std::vector<double> perUnit_;  // What goes along an edge of weight 1, for a rank of 1.
  std::vector<double> ranks_;
  std::vector<double> passedOn_;  // The same for the rank that a vertex has.
  double total_ = 1;
};

}  // namespace

Result<PageRank> pageRank(const Network& network, const PageRankOptions& options) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  if (auto error = optionsError(core, options)) return *error;
  Result<std::vector<double>> shares =
      restartShares(options.personalisation, core.store.vertexCount());
  if (!shares) return shares.error();
  return internal::untilStopped([&]() -> Result<PageRank> {
    PageRank result;
    if (core.store.vertexCount() == 0) {
      result.converged = true;
      return result;
    }
    const double follow = 1 - options.restart;
    Pace pace(options.progress, options.mostSweeps);
    RankSweeps sweeps(core, std::move(shares.value()), follow, options.weighted);
    result.error = 1;
    while (result.error >= options.tolerance && result.sweeps < options.mostSweeps) {
      pace.reach(result.sweeps);
      result.error = sweeps.sweep();
      ++result.sweeps;
    }
    result.converged = result.error < options.tolerance;
    result.ranks = std::move(sweeps).normalised();
    return result;
  });
}

}  // namespace veq
