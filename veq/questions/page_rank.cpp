#include "veq/questions/page_rank.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/tiled_work.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/network/internal/degree_sums.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/questions/internal/edge_weights.hpp"
#include "veq/questions/internal/rank_waves.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::argumentError;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::Pace;
using internal::RankWaves;
using internal::Team;
using internal::VertexRange;
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
        waves_(core),
        team_(waves_.empty() ? 1 : parallelism()),
        shares_(std::move(shares)),
        follow_(follow),
        weights_(weighted && core.edgesWeights ? core.edgesWeights->data() : nullptr),
        perUnit_(shares_.size()),
        ranks_(shares_),
        passedOn_(shares_.size()),
        before_(waves_.widest()) {
    if (weights_) {
      internal::addStrengths(core, Side::kOut, perUnit_);
    } else {
      internal::forEachDegree(core, Side::kOut, [this](std::uint64_t v, std::uint64_t degree) {
        perUnit_[v] = static_cast<double>(degree);
      });
    }
    for (double& total : perUnit_) total = total > 0 ? follow / total : 0;
    Sums sums;
    for (std::uint64_t v = 0; v < ranks_.size(); ++v) take(v, ranks_[v], sums);
    rescale(sums);
  }

  // Computes all ranks anew, and answers a bound of the sum of the errors of the normalised ranks.
  double sweep() {
    const Sums sums = core_.store.visit([this](const auto& topology) {
      const auto lists = core_.store.lists(topology, Side::kIn).view();
      if (!weights_) {
        return sweepBy([lists](std::uint64_t v, auto passedOn) {
          double sum = 0;
          for (const auto neighbour : lists.neighbours(v)) sum += passedOn(neighbour);
          return sum;
        });
      }
      return sweepBy([lists, weights = weights_](std::uint64_t v, auto passedOn) {
        const auto neighbours = lists.neighbours(v);
        const auto edges = lists.edges(v);
        double sum = 0;
        for (std::size_t i = 0; i < neighbours.size(); ++i) {
          sum += passedOn(neighbours[i]) * static_cast<double>(weights[edges[i]]);
        }
        return sum;
      });
    });
    const double factor = rescale(sums);
    // What the equation still lacks is at most what the changes of this sweep make of the vertices
    // that took what was there before, and what rescaling adds; no error is larger than 1 / (1 - f)
    // times that, and normalising doubles it at most.
    const double lacking = factor * follow_ * sums.change + std::abs(1 - factor);
    return 2 * lacking / (1 - follow_) / total_;
  }

  [[nodiscard]] std::vector<double> normalised() && {
    for (double& rank : ranks_) rank /= total_;
    return std::move(ranks_);
  }

 private:
  // Of ranks that have been computed: by how much they have changed, what they sum to, and what
  // those do that no edge passes on.
  struct Sums {
    double change = 0;
    double all = 0;
    double kept = 0;

    void add(const Sums& more) {
      change += more.change;
      all += more.all;
      kept += more.kept;
    }
  };

  // sumOf(v, passedOn) sums what leads to a vertex, passedOn(u) being what u passes on.
  template <class SumOf>
  Sums sweepBy(SumOf sumOf) {
    const double* const passedOn = passedOn_.data();
    if (waves_.empty()) {
      return sweepRange({0, ranks_.size()}, sumOf,
                        [passedOn](std::uint64_t vertex) { return passedOn[vertex]; });
    }
    Sums sums;
    waves_.forEach([&](VertexRange wave, std::uint64_t pieces, const VertexRange* piece) {
      std::copy_n(passedOn + wave.begin, wave.size(), before_.data());
      std::array<Sums, RankWaves::kPiecesOfWave> sumsOf;
      team_.forEachPiece(pieces, waves_.workOfWave(), [&](std::uint64_t i) {
        const auto old = [this, &wave](std::uint64_t vertex) {
          return before_[vertex - wave.begin];
        };
        sumsOf[i] = sweepRange(piece[i], sumOf, [=, own = piece[i], &old](std::uint64_t vertex) {
          return wave.has(vertex) && !own.has(vertex) ? rarely(old, vertex) : passedOn[vertex];
        });
      });
      for (std::uint64_t i = 0; i < pieces; ++i) sums.add(sumsOf[i]);
    });
    return sums;
  }

  // By itself, so that loops do without what they rarely need.
  template <class F>
  [[gnu::noinline, gnu::cold]] static double rarely(const F& f, std::uint64_t vertex) {
    return f(vertex);
  }

  template <class SumOf, class PassedOn>
  [[gnu::noinline]] Sums sweepRange(VertexRange range, SumOf sumOf, PassedOn passedOn) {
    Sums sums;
    for (std::uint64_t v = range.begin; v < range.end; ++v) {
      take(v, shares_[v] + sumOf(v, passedOn), sums);
    }
    return sums;
  }

  void take(std::uint64_t v, double rank, Sums& sums) {
    sums.change += std::abs(rank - ranks_[v]);
    sums.all += rank;
    if (perUnit_[v] == 0) sums.kept += rank;
    ranks_[v] = rank;
    passedOn_[v] = rank * perUnit_[v];
  }

  // Multiplies all ranks with the one factor with which they obey the sum of all equations: the
  // error that sweeps remove most slowly is of that kind.
  double rescale(const Sums& sums) {
    constexpr std::uint64_t kTile = std::uint64_t{1} << 15;
    const double factor = 1 / (sums.all - follow_ * (sums.all - sums.kept));
    internal::forEachSharedTile(ranks_.size(), kTile, team_, nullptr,
                                [this, factor](std::uint64_t begin, std::uint64_t end) {
                                  for (std::uint64_t v = begin; v < end; ++v) ranks_[v] *= factor;
                                  for (std::uint64_t v = begin; v < end; ++v) {
                                    passedOn_[v] *= factor;
                                  }
                                });
    total_ = sums.all * factor;
    return factor;
  }

  const NetworkCore& core_;
  RankWaves waves_;
  Team team_;
  std::vector<double> shares_;
  double follow_;
  const float* weights_;
  std::vector<double> perUnit_;  // What goes along an edge of weight 1, for a rank of 1.
  std::vector<double> ranks_;
  std::vector<double> passedOn_;  // The same for the rank that a vertex has.
  std::vector<double> before_;    // The same of the vertices of a wave, before the wave.
  double total_ = 1;
};

}  // namespace

Result<PageRank> pageRank(const Network& network, const PageRankOptions& options) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  if (auto error = optionsError(core, options)) return *error;
  Result<std::vector<double>> shares =
      restartShares(options.personalisation, core.store.vertexCount());
  if (!shares) return shares.error();
  const internal::OwnParallelism own(options.threads);
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
