// Whether walks choose as their laws say: the transitions of long walks are counted and compared
// with the transition matrix, row by row. For every law there are planted wrong ones that the same
// comparison refuses.

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/agents.hpp"
#include "tests/support/chi_square.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/questions/walk_law.hpp"

namespace veq::test {
namespace {

using Counts = std::vector<std::uint64_t>;

WalkLaw lawOf(const Network& network, Choice choice) {
  WalkLawOptions options;
  options.choice = choice;
  return WalkLaw::of(network, options).value();
}

std::size_t placeOf(const WalkLaw& law, std::uint64_t from, std::uint64_t to) {
  for (std::uint64_t i = law.rowStarts()[from]; i < law.rowStarts()[from + 1]; ++i) {
    if (law.targets()[i] == to) return i;
  }
  ADD_FAILURE() << from << " never leads to " << to;
  return 0;
}

// How often a published walk takes each entry of the matrix. The matrix has an entry for each pair
// of linked vertices.
Counts publishedTransitions(const Network& network, std::uint64_t steps, std::uint32_t seedOfWalk) {
  const WalkLaw places = lawOf(network, Choice::kEven);
  seed(seedOfWalk);
  const auto walker = groupAt(network.published(), {0});
  const auto paths = walker->walkForSteps_returnPath(steps, true);
  Counts counts(places.targets().size());
  std::vector<std::size_t> place(network.countVertices() * network.countVertices());
  for (std::uint64_t from = 0; from < network.countVertices(); ++from) {
    for (std::uint64_t i = places.rowStarts()[from]; i < places.rowStarts()[from + 1]; ++i) {
      place[from * network.countVertices() + places.targets()[i]] = i;
    }
  }
  std::uint64_t at = 0;
  for (const VEQVertex& vertex : (*paths)[0]) {
    const std::uint64_t to = vertex.identification();
    ++counts[place[at * network.countVertices() + to]];
    at = to;
  }
  return counts;
}

// Whether every row's counts come with its shares. The statistics of the rows add up.
bool follows(const Counts& counts, const WalkLaw& law) {
  double sum = 0.0;
  std::size_t freedom = 0;
  for (std::uint64_t v = 0; v < law.countVertices(); ++v) {
    Counts row;
    std::vector<double> shares;
    for (std::uint64_t i = law.rowStarts()[v]; i < law.rowStarts()[v + 1]; ++i) {
      row.push_back(counts[i]);
      shares.push_back(law.shares()[i]);
    }
    if (row.size() < 2) continue;
    sum += chiSquare(row, shares);
    freedom += row.size() - 1;
  }
  return sum < chiSquareLimit(freedom);
}

Network star() { return Network(networkOf(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}}, false)); }
Network club() { return Network(VEQNetwork::networkWithContentsOfFile(VEQ_DATA "/karate.xnet")); }

TEST(WalkLaws, ThePublishedChoiceHalvesTheEndsOfEveryList) {
  const Counts ofStar = publishedTransitions(star(), 1000000, 5);
  EXPECT_TRUE(follows(ofStar, lawOf(star(), Choice::kPublished)));
  const Counts ofClub = publishedTransitions(club(), 1000000, 6);
  EXPECT_TRUE(follows(ofClub, lawOf(club(), Choice::kPublished)));
  // The ends not halved.
  EXPECT_FALSE(follows(ofStar, lawOf(star(), Choice::kEven)));
  EXPECT_FALSE(follows(ofClub, lawOf(club(), Choice::kEven)));
}

TEST(WalkLaws, TheComparisonNoticesAShareOffByOnePercent) {
  // Of the hub's four entries the second, whose share is a third, gives 1 % of it to the third one.
  Counts counts = publishedTransitions(star(), 6000000, 7);
  const WalkLaw law = lawOf(star(), Choice::kPublished);
  EXPECT_TRUE(follows(counts, law));
  const std::uint64_t moved = counts[placeOf(law, 0, 2)] / 100;
  counts[placeOf(law, 0, 2)] -= moved;
  counts[placeOf(law, 0, 3)] += moved;
  EXPECT_FALSE(follows(counts, law));
}

TEST(WalkLaws, TheComparisonNoticesAnEntryThatCannotBeReached) {
  // Vertex 33 of the club leads to 16 others; what would go to the last goes to the one before.
  Counts counts = publishedTransitions(club(), 1000000, 8);
  const WalkLaw law = lawOf(club(), Choice::kPublished);
  EXPECT_TRUE(follows(counts, law));
  const std::uint64_t last = law.rowStarts()[34] - 1;
  counts[last - 1] += std::exchange(counts[last], 0);
  EXPECT_FALSE(follows(counts, law));
}

TEST(WalkLaws, VisitsTendToTheStationaryShares) {
  // Every step that ends at a vertex came by one of its entries, so that the shares of the visits
  // are those of the transitions into it: a walk of 10^6 steps is within some standard errors, of
  // at most 3 x sqrt(p / 10^6) each, since it forgets where it was within a few steps.
  const auto shares = lawOf(club(), Choice::kPublished).stationary().value().shares;
  seed(9);
  const auto walker = groupAt(club().published(), {0});
  walker->walkForSteps_returnPath(1000000, false);
  const auto visits = walker->globalVisitFrequencyOfVertices();
  for (std::uint64_t v = 0; v < shares.size(); ++v) {
    const double share = static_cast<double>(visits->integerValueAtIndex(v)) / 1e6;
    EXPECT_NEAR(share, shares[v], 6 * 3 * std::sqrt(shares[v] / 1e6)) << v;
  }
}

}  // namespace
}  // namespace veq::test
