#include "veq/questions/walk_law.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::walk_law_test {
namespace {

using Edges = std::vector<std::pair<std::uint64_t, std::uint64_t>>;
using Numbers = std::vector<double>;
using Indices = std::vector<std::uint64_t>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Choice kAllChoices[] = {Choice::kPublished, Choice::kEven, Choice::kWeighted};

// Exactly so many vertices, of which the last must have an edge.
Network networkOf(const Edges& edges, bool directed = false, const Numbers& weights = {}) {
  Indices from;
  Indices to;
  for (const auto& [a, b] : edges) {
    from.push_back(a);
    to.push_back(b);
  }
  const auto weightArray =
      VEQNumberArray(internal::RawVector<double>(weights.begin(), weights.end()));
  return Network(
      VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), directed, nullptr,
          weights.empty() ? nullptr : &weightArray));
}

Network isolated(std::uint64_t n) {
  if (n == 0) return Network(VEQNetwork::networkWithVertexCapacity_edgeCapacity(0, 0));
  return Network(VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices(
      n, VEQNumberArray::ofIndices({}), VEQNumberArray::ofIndices({})));
}

Network ring(std::uint64_t n) {
  Edges edges;
  for (std::uint64_t v = 0; v < n; ++v) edges.emplace_back(v, (v + 1) % n);
  return networkOf(edges);
}
Network path(std::uint64_t n) {
  Edges edges;
  for (std::uint64_t v = 0; v + 1 < n; ++v) edges.emplace_back(v, v + 1);
  return networkOf(edges);
}
Network star(std::uint64_t leaves) {
  Edges edges;
  for (std::uint64_t v = 1; v <= leaves; ++v) edges.emplace_back(0, v);
  return networkOf(edges);
}
Network complete(std::uint64_t n) {
  Edges edges;
  for (std::uint64_t v = 0; v < n; ++v) {
    for (std::uint64_t u = v + 1; u < n; ++u) edges.emplace_back(v, u);
  }
  return networkOf(edges);
}

WalkLaw lawOf(const Network& network, Choice choice = Choice::kPublished) {
  WalkLawOptions options;
  options.choice = choice;
  return WalkLaw::of(network, options).value();
}

template <class T>
std::vector<T> copied(std::span<const T> values) {
  return {values.begin(), values.end()};
}

// A row's shares, times 2^31.
Indices numbers(const WalkLaw& law, std::uint64_t vertex) {
  Indices all;
  for (std::uint64_t i = law.rowStarts()[vertex]; i < law.rowStarts()[vertex + 1]; ++i) {
    all.push_back(static_cast<std::uint64_t>(law.shares()[i] * 0x1p31));
  }
  return all;
}

double sumOf(const Numbers& numbers) {
  return std::accumulate(numbers.begin(), numbers.end(), 0.0);
}

TEST(WalkLawMatrix, ThePublishedChoiceTakesTheEndsOfAListHalfAsOften) {
  // round((k - 1) x) passes j + 1/2 from x = (j + 1/2) / (k - 1) on.
  EXPECT_EQ(numbers(lawOf(star(2)), 0), (Indices{1073741824, 1073741824}));
  EXPECT_EQ(numbers(lawOf(star(3)), 0), (Indices{536870912, 1073741824, 536870912}));
  // 2^31 / 6 = 357913941.33, 2^31 x 3 / 6, 2^31 x 5 / 6 = 1789569706.67: the first number that lies
  // beyond each is rounded up.
  EXPECT_EQ(numbers(lawOf(star(4)), 0), (Indices{357913942, 715827882, 715827883, 357913941}));
  EXPECT_EQ(numbers(lawOf(star(4)), 1), (Indices{2147483648}));
}

TEST(WalkLawMatrix, TheEvenChoiceTakesEachAlike) {
  EXPECT_EQ(numbers(lawOf(star(4), Choice::kEven), 0),
            (Indices{536870912, 536870912, 536870912, 536870912}));
  // 2^31 / 3 = 715827882.67
  EXPECT_EQ(numbers(lawOf(star(3), Choice::kEven), 0), (Indices{715827883, 715827883, 715827882}));
}

TEST(WalkLawMatrix, TheWeightedChoiceTakesEachByItsWeight) {
  const Network weighted = networkOf({{0, 1}, {0, 2}, {0, 3}, {0, 4}}, false, {1, 0, 5, 2});
  const WalkLaw law = lawOf(weighted, Choice::kWeighted);
  // 2^31 / 8 = 268435456; vertex 2 is never reached, and cannot be left.
  EXPECT_EQ(numbers(law, 0), (Indices{268435456, 1342177280, 536870912}));
  EXPECT_EQ(copied(law.targets().subspan(0, 3)), (Indices{1, 3, 4}));
  EXPECT_EQ(copied(law.deadEnds()), (Indices{2}));
  // Without weights it is the even choice.
  EXPECT_EQ(numbers(lawOf(star(3), Choice::kWeighted), 0),
            (Indices{715827883, 715827883, 715827882}));
}

TEST(WalkLawMatrix, ParallelEdgesAndLoopsAddUp) {
  // The list of vertex 0 is 1 2 0 0 1: four intervals of a quarter, the ends half.
  const WalkLaw law = lawOf(networkOf({{0, 1}, {0, 2}, {0, 0}, {0, 1}}));
  EXPECT_EQ(copied(law.targets().subspan(0, 3)), (Indices{0, 1, 2}));
  EXPECT_EQ(numbers(law, 0), (Indices{1073741824, 536870912, 536870912}));
}

TEST(WalkLawMatrix, RowsSumToOne) {
  const Network network =
      networkOf({{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 2}, {2, 2}, {4, 2}, {1, 4}}, false,
                {0.1, 0.7, 3, 1e-20, 1e20, 2, 0.3, 5});
  for (const Choice choice : kAllChoices) {
    const WalkLaw law = lawOf(network, choice);
    for (std::uint64_t v = 0; v < law.countVertices(); ++v) {
      const Indices row = numbers(law, v);
      EXPECT_EQ(std::accumulate(row.begin(), row.end(), std::uint64_t{0}), 2147483648u) << v;
    }
  }
}

// What a list does with a draw, by the words of Choice.
std::uint64_t chosen(Choice choice, const Numbers& weights, std::uint64_t draw) {
  const auto k = static_cast<double>(weights.size());
  const double x = static_cast<double>(draw) * 0x1p-31;
  if (choice == Choice::kPublished) return static_cast<std::uint64_t>(std::round((k - 1) * x));
  if (choice == Choice::kEven) return static_cast<std::uint64_t>(std::floor(k * x));
  double total = 0.0;
  for (const double weight : weights) total += weight;
  double sum = 0.0;
  for (std::size_t j = 0; j < weights.size(); ++j) {
    sum += weights[j];
    if (sum > x * total) return j;
  }
  return weights.size();
}

TEST(WalkLawMatrix, EveryIntervalEndsWhereTheChoiceDoes) {
  for (std::uint64_t k = 2; k <= 200; k += k < 20 ? 1 : 29) {
    Edges edges;
    Numbers weights;
    for (std::uint64_t v = 1; v <= k; ++v) {
      edges.emplace_back(0, v);
      weights.push_back(static_cast<float>(1 + (v * v * 7919) % 101) / 3.0F);
    }
    const Network network = networkOf(edges, true, weights);
    for (const Choice choice : kAllChoices) {
      const Indices row = numbers(lawOf(network, choice), 0);
      ASSERT_EQ(row.size(), k);
      std::uint64_t end = 0;
      for (std::uint64_t j = 0; j < k; ++j) {
        ASSERT_EQ(chosen(choice, weights, end), j);
        end += row[j];
        ASSERT_EQ(chosen(choice, weights, end - 1), j);
      }
      EXPECT_EQ(end, 2147483648u);
    }
  }
}

TEST(WalkLawMatrix, AListBeyondTheExactProductsIsRoundedAsTheWalkRoundsIt) {
  const std::uint64_t k = (1 << 22) + 7;
  Indices from(k, 0);
  Indices to(k);
  std::iota(to.begin(), to.end(), 1);
  const Network network(VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed(
      VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), true));
  const WalkLaw law = lawOf(network);
  std::uint64_t end = 0;
  for (std::uint64_t j = 0; j < k; ++j) {
    if (j % 1000 == 0) {
      ASSERT_EQ(std::round(static_cast<double>(k - 1) * (static_cast<double>(end) * 0x1p-31)), j);
    }
    end += static_cast<std::uint64_t>(law.shares()[j] * 0x1p31);
    if (j % 1000 == 0) {
      ASSERT_EQ(std::round(static_cast<double>(k - 1) * (static_cast<double>(end - 1) * 0x1p-31)),
                j);
    }
  }
  EXPECT_EQ(end, 2147483648u);
}

TEST(WalkLawMatrix, RestartsTakeTheirPartOfEachRow) {
  WalkLawOptions options;
  options.restart = 0.25;
  options.start = 1;
  const WalkLaw law = WalkLaw::of(path(3), options).value();
  EXPECT_EQ(copied(law.rowStarts()), (Indices{0, 1, 4, 5}));
  EXPECT_EQ(copied(law.targets()), (Indices{1, 0, 1, 2, 1}));
  EXPECT_EQ(copied(law.shares()), (Numbers{1, 0.375, 0.25, 0.375, 1}));
  options.restart = 1e-10;  // less than 2^-31, which it becomes
  EXPECT_EQ(WalkLaw::of(path(3), options).value().shares()[2], 0x1p-31);
}

TEST(WalkLawMatrix, SaysWhatIsWrong) {
  const auto text = [](const Network& network, const WalkLawOptions& options) {
    const auto law = WalkLaw::of(network, options);
    return law ? std::string("(a law)") : law.error().text();
  };
  WalkLawOptions options;

  EXPECT_EQ(text(isolated(0), options), "the network has no vertices");
  for (const auto& [restart, shown] :
       {std::pair(1.5, "1.5"), std::pair(-0.25, "-0.25"), std::pair(std::nan(""), "nan")}) {
    options.restart = restart;
    EXPECT_EQ(text(path(3), options), std::string("restart ") + shown + ": give 0 to 1");
  }
  options.restart = 0.5;
  options.start = 3;
  EXPECT_EQ(text(path(3), options), "start 3 of 3 vertices");
  options.restart = 0.0;
  EXPECT_EQ(text(path(3), options), "(a law)");
  options.choice = Choice::kWeighted;
  EXPECT_EQ(text(networkOf({{0, 1}, {1, 2}}, false, {1, -1}), options), "edge 1: weight -1");
  EXPECT_EQ(text(networkOf({{0, 1}, {1, 2}}, false, {kInfinity, 1}), options),
            "edge 0: weight inf");
  EXPECT_EQ(text(networkOf({{0, 1}, {1, 2}}, false, {1, std::nan("")}), options),
            "edge 1: weight nan");
}

TEST(WalkLawMatrix, DoesNotChangeWithTheNetwork) {
  const Network network = path(3);
  const WalkLaw law = lawOf(network);
  const std::uint64_t from = 0;
  const std::uint64_t to = 2;
  network.published()->addEdgesFromVerticesIndices_toVerticesIndices_count(&from, &to, 1);
  EXPECT_EQ(law.targets().size(), 4u);
  EXPECT_EQ(lawOf(network).targets().size(), 6u);
}

TEST(WalkLawMatrix, CanBeStopped) {
  StopSource source;
  source.requestStop();
  WalkLawOptions options;
  options.progress.stop = source.token();
  EXPECT_EQ(WalkLaw::of(path(3), options).error().kind(), ErrorKind::kStopped);
  SolvingOptions solving;
  solving.progress.stop = source.token();
  EXPECT_EQ(lawOf(ring(5)).stationary(solving).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(lawOf(ring(5)).hittingTimes(0, solving).error().kind(), ErrorKind::kStopped);
  solving.solvedUpTo = 1;
  EXPECT_EQ(lawOf(ring(5)).stationary(solving).error().kind(), ErrorKind::kStopped);
  CoverOptions covering;
  covering.progress.stop = source.token();
  EXPECT_EQ(lawOf(ring(12)).coverTime(0, covering).error().kind(), ErrorKind::kStopped);
}

// Solved and iterated, each within the error that it states.
void expectShares(const WalkLaw& law, const Numbers& expected) {
  for (const std::uint64_t solvedUpTo : {std::uint64_t{1500}, std::uint64_t{0}}) {
    SolvingOptions options;
    options.solvedUpTo = solvedUpTo;
    const StationaryShares found = law.stationary(options).value();
    ASSERT_EQ(found.shares.size(), expected.size());
    double error = 0.0;
    for (std::size_t v = 0; v < expected.size(); ++v) {
      error += std::abs(found.shares[v] - expected[v]);
    }
    EXPECT_LE(error, found.errorBound) << solvedUpTo;
    EXPECT_LE(found.errorBound, 2e-10) << solvedUpTo;
    EXPECT_NEAR(sumOf(found.shares), 1.0, 1e-14);
  }
}

TEST(StationaryShares, ARingIsVisitedEvenly) {
  expectShares(lawOf(ring(5)), Numbers(5, 0.2));
  expectShares(lawOf(ring(6)), Numbers(6, 1.0 / 6));  // with period 2
}

TEST(StationaryShares, AStarGivesHalfToItsHub) {
  // The leaves share the other half as the hub chooses them.
  expectShares(lawOf(star(3)), {0.5, 0.125, 0.25, 0.125});
  expectShares(lawOf(star(4), Choice::kEven), {0.5, 0.125, 0.125, 0.125, 0.125});
}

TEST(StationaryShares, EvenChoicesGoByDegrees) {
  // Degrees 1, 2, 2, 1; a list of two is halved by every choice.
  expectShares(lawOf(path(4)), {1.0 / 6, 2.0 / 6, 2.0 / 6, 1.0 / 6});
  // A vertex of degree 4 in a complete network: 1/5 up to the odd numbers among 2^31 / 4.
  expectShares(lawOf(complete(5), Choice::kEven), Numbers(5, 0.2));
}

TEST(StationaryShares, WeightedChoicesGoByStrengths) {
  // Weights 1 and 3 on a path: strengths 1, 4, 3.
  expectShares(lawOf(networkOf({{0, 1}, {1, 2}}, false, {1, 3}), Choice::kWeighted),
               {0.125, 0.5, 0.375});
}

TEST(StationaryShares, WhatIsLeftForEverHasNone) {
  // 0 leads to a directed ring of 1 2 3.
  expectShares(lawOf(networkOf({{0, 1}, {1, 2}, {2, 3}, {3, 1}}, true)),
               {0.0, 1.0 / 3, 1.0 / 3, 1.0 / 3});
}

TEST(StationaryShares, RestartsMakeOneOfAnyNetwork) {
  WalkLawOptions options;
  options.restart = 0.25;
  options.start = 0;
  // 0 -> 1 -> 2, where the walk stays until it restarts: x0 = 1/4, x1 = 3/4 x0, and 2 has the rest.
  expectShares(WalkLaw::of(networkOf({{0, 1}, {1, 2}}, true), options).value(),
               {0.25, 0.1875, 0.5625});
  options.restart = 1.0;
  expectShares(WalkLaw::of(ring(4), options).value(), {1, 0, 0, 0});
}

TEST(StationaryShares, SayWhyThereAreNone) {
  EXPECT_EQ(lawOf(networkOf({{0, 1}, {1, 2}}, true)).stationary().error().text(),
            "vertex 2 cannot be left, so there is no long run; 1 such vertex");
  EXPECT_EQ(lawOf(networkOf({{1, 0}, {1, 2}}, true)).stationary().error().text(),
            "vertex 0 cannot be left, so there is no long run; 2 such vertices");
  EXPECT_EQ(lawOf(networkOf({{0, 1}, {2, 3}})).stationary().error().text(),
            "a walk that has come to vertex 0 never reaches vertex 2, and the other way round");
  // 4 leads to both of two closed classes.
  EXPECT_EQ(lawOf(networkOf({{4, 0}, {4, 2}, {0, 1}, {1, 0}, {2, 3}, {3, 2}}, true))
                .stationary()
                .error()
                .text(),
            "a walk that has come to vertex 0 never reaches vertex 2, and the other way round");
}

TEST(StationaryShares, SayWhereTheyDoNotSettle) {
  SolvingOptions options;
  options.solvedUpTo = 0;
  options.mostRounds = 50;
  const auto result = lawOf(path(60)).stationary(options);
  ASSERT_FALSE(result.hasValue());
  EXPECT_EQ(result.error().kind(), ErrorKind::kUnsupported);
  EXPECT_EQ(result.error().text(), "not settled after 50 rounds");
}

void expectTimes(const WalkLaw& law, std::uint64_t target, const Numbers& expected) {
  for (const std::uint64_t solvedUpTo : {std::uint64_t{1500}, std::uint64_t{0}}) {
    SolvingOptions options;
    options.solvedUpTo = solvedUpTo;
    const HittingTimes found = law.hittingTimes(target, options).value();
    ASSERT_EQ(found.steps.size(), expected.size());
    EXPECT_LE(found.relativeErrorBound, 1e-10);
    for (std::size_t v = 0; v < expected.size(); ++v) {
      if (std::isinf(expected[v])) {
        EXPECT_EQ(found.steps[v], expected[v]) << v;
      } else {
        EXPECT_LE(std::abs(found.steps[v] - expected[v]),
                  (found.relativeErrorBound + 0x1p-51) * expected[v])
            << v << ", " << solvedUpTo;
      }
    }
  }
}

TEST(HittingTimes, OnARingAreProductsOfDistances) {
  expectTimes(lawOf(ring(6)), 0, {6, 5, 8, 9, 8, 5});  // and a return after 1 / (1/6)
}

TEST(HittingTimes, OnAPathAreSquares) {
  // From the far end (n - 1)^2; from distance d, 2 d (n - 1) - d^2.
  expectTimes(lawOf(path(5)), 0, {8, 7, 12, 15, 16});
}

TEST(HittingTimes, OnAStarAndACompleteNetwork) {
  // The middle leaf has half of the hub's choices: 2 rounds of 2 steps, less 1 from the hub.
  expectTimes(lawOf(star(3)), 2, {3, 4, 4, 4});
  expectTimes(lawOf(star(3)), 0, {2, 1, 1, 1});
  // Even choices of 4: a quarter each.
  expectTimes(lawOf(complete(5), Choice::kEven), 3, {4, 4, 4, 5, 4});
}

TEST(HittingTimes, AreInfiniteWhereTheWalkMayNeverCome) {
  // 0 - 1 -> 2, and 1 -> 3, which is a dead end.
  const WalkLaw law = lawOf(networkOf({{0, 1}, {1, 0}, {1, 2}, {1, 3}, {2, 0}}, true));
  expectTimes(law, 2, {kInfinity, kInfinity, kInfinity, kInfinity});
  // Lists of three are taken with 1/4, 1/2, 1/4: the target itself leads back without danger.
  const WalkLaw safe = lawOf(networkOf({{0, 1}, {1, 0}, {2, 0}}, true));
  expectTimes(safe, 1, {1, 2, 2});
  expectTimes(safe, 2, {kInfinity, kInfinity, kInfinity});
}

TEST(HittingTimes, WithRestarts) {
  WalkLawOptions options;
  options.restart = 0.5;
  options.start = 0;
  // 0 -> 1 -> 2 -> 2: h1 = 1 + h0 / 2, h0 = 1 + h0 / 2 + h1 / 2 (a restart leads from 0 to 0).
  // From 2 itself only a restart leads away: 1 / (1/2) steps of waiting, then h0.
  const WalkLaw law = WalkLaw::of(networkOf({{0, 1}, {1, 2}}, true), options).value();
  expectTimes(law, 2, {6, 4, 8});
}

// The numbers of the karate club were computed with NumPy's linalg.
TEST(WalkLaw, OfTheKarateClubIsWhatNumPySolves) {
  const Network club(VEQNetwork::networkWithContentsOfFile(VEQ_DATA "/karate.xnet"));
  for (const std::uint64_t solvedUpTo : {std::uint64_t{1500}, std::uint64_t{0}}) {
    SolvingOptions options;
    options.solvedUpTo = solvedUpTo;
    const Numbers shares = lawOf(club).stationary(options).value().shares;
    EXPECT_NEAR(shares[0], 0.07593157760394045, 1e-9);
    EXPECT_NEAR(shares[33], 0.09174983267082734, 1e-9);
    EXPECT_NEAR(shares[9], 0.013063286192040164, 1e-9);
    const Numbers times = lawOf(club).hittingTimes(33, options).value().steps;
    EXPECT_NEAR(times[0], 23.83853116320525, 1e-6);
    EXPECT_NEAR(times[16], 30.52302314181486, 1e-6);
  }
}

TEST(HittingTimes, RefuseVerticesThatAreNotThere) {
  EXPECT_EQ(test::thrownText<std::out_of_range>([] { (void)lawOf(ring(3)).hittingTimes(3); }),
            "vertex 3 of 3");
}

void expectCover(const WalkLaw& law, std::uint64_t start, double counted, double uncounted) {
  for (const bool startCounts : {true, false}) {
    CoverOptions options;
    options.startCounts = startCounts;
    const CoverTime time = law.coverTime(start, options).value();
    const double expected = startCounts ? counted : uncounted;
    EXPECT_LE(time.atLeast, expected);
    EXPECT_GE(time.atMost, expected);
    if (!std::isinf(expected)) {
      EXPECT_LE(time.atMost - time.atLeast, 1e-11 * expected);
    }
  }
}

TEST(CoverTime, OfRingsAndPaths) {
  // n(n - 1)/2, and 1 more where the start has to be come back to; see examples/cover_time.cpp.
  expectCover(lawOf(ring(10)), 3, 45, 46);
  expectCover(lawOf(ring(16)), 0, 120, 121);
  expectCover(lawOf(path(10)), 0, 81, 90);
  expectCover(lawOf(path(2)), 0, 1, 2);
}

TEST(CoverTime, OfAStar) {
  // Leaves with 1/4, 1/2, 1/4: 19/3 visits of leaves on average; two steps each, less the first.
  expectCover(lawOf(star(3)), 0, 35.0 / 3, 35.0 / 3);
  // The coupon collector's 4 H(4) = 25/3.
  expectCover(lawOf(star(4), Choice::kEven), 0, 47.0 / 3, 47.0 / 3);
}

TEST(CoverTime, OfACompleteNetwork) {
  // (n - 1) H(n - 1) = 4 x 25/12; the start has been seen again with probability 3/4 by then, since
  // it is one of 4 others... from the last vertex it takes 4 more steps.
  CoverOptions options;
  options.startCounts = true;
  const CoverTime time = lawOf(complete(5), Choice::kEven).coverTime(2, options).value();
  EXPECT_NEAR(time.atLeast, 25.0 / 3, 1e-12);
  EXPECT_NEAR(time.atMost, 25.0 / 3, 1e-12);
}

TEST(CoverTime, IsInfiniteWhereTheWalkMayNotComeEverywhere) {
  expectCover(lawOf(networkOf({{0, 1}, {1, 2}}, true)), 0, 2, kInfinity);
  expectCover(lawOf(networkOf({{0, 1}, {1, 2}}, true)), 1, kInfinity, kInfinity);
  expectCover(lawOf(networkOf({{0, 1}, {0, 2}}, true)), 0, kInfinity, kInfinity);
  // A single vertex, with and without a loop.
  expectCover(lawOf(networkOf({{0, 0}})), 0, 0, 1);
  expectCover(lawOf(isolated(1)), 0, 0, kInfinity);
}

TEST(CoverTime, IsBoundedForLargerNetworks) {
  for (const bool startCounts : {true, false}) {
    CoverOptions options;
    options.startCounts = startCounts;
    const CoverTime ofRing = lawOf(ring(30)).coverTime(4, options).value();
    EXPECT_LE(ofRing.atLeast, 435);
    EXPECT_GE(ofRing.atMost, 436);
    EXPECT_GE(ofRing.atLeast, 224.9);     // 15 x 15 to the farthest vertex
    EXPECT_LE(ofRing.atMost, 225 * 4.0);  // 225 H(30) = 899
    const CoverTime ofPath = lawOf(path(20)).coverTime(0, options).value();
    EXPECT_LE(ofPath.atLeast, startCounts ? 361 : 380);
    EXPECT_GE(ofPath.atMost, startCounts ? 361 : 380);
  }
  EXPECT_EQ(lawOf(ring(257)).coverTime(0).error().text(),
            "cover times of 257 vertices: walk and take the mean");
  EXPECT_THROW((void)lawOf(ring(4)).coverTime(4), std::out_of_range);
}

}  // namespace
}  // namespace veq::walk_law_test
