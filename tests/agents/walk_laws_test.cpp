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
#include "veq/agents/walkers.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/questions/walk_law.hpp"

namespace veq::test::walk_laws_test {
namespace {

using Counts = std::vector<std::uint64_t>;

constexpr Choice kAllChoices[] = {Choice::kPublished, Choice::kEven, Choice::kWeighted};

WalkLaw lawOf(const Network& network, Choice choice, double restart = 0.0,
              std::uint64_t start = 0) {
  WalkLawOptions options;
  options.choice = choice;
  options.restart = restart;
  options.start = start;
  return WalkLaw::of(network, options).value();
}

// Counts how often each entry of a law's matrix is taken.
class Transitions {
 public:
  explicit Transitions(const WalkLaw& law)
      : n_(law.countVertices()), places_(n_ * n_, kNone), counts_(law.targets().size()) {
    for (std::uint64_t from = 0; from < n_; ++from) {
      for (std::uint64_t i = law.rowStarts()[from]; i < law.rowStarts()[from + 1]; ++i) {
        places_[from * n_ + law.targets()[i]] = i;
      }
    }
  }

  void add(std::uint64_t from, std::uint64_t to) {
    const std::size_t place = places_[from * n_ + to];
    if (place == kNone) {
      ADD_FAILURE() << from << " never leads to " << to;
    } else {
      ++counts_[place];
    }
  }
  [[nodiscard]] const Counts& counts() const { return counts_; }

 private:
  static constexpr std::size_t kNone = SIZE_MAX;

  std::uint64_t n_;
  std::vector<std::size_t> places_;
  Counts counts_;
};

// Those of one agent, as the natural walk moves it.
Counts transitions(const Network& network, Choice choice, const WalkLaw& law, std::uint64_t steps,
                   std::uint64_t seedOfWalk, double restart = 0.0, std::uint64_t start = 0) {
  RandomState state = RandomState::seeded(seedOfWalk).value();
  WalkOptions options;
  options.steps = steps;
  options.paths = true;
  options.choice = choice;
  options.restart = restart;
  options.random = &state;
  Walkers walker = Walkers::at(network, std::vector<std::uint64_t>{start}).value();
  const WalkOutcome outcome = walker.walk(options).value();
  Transitions taken(law);
  outcome.paths->visitArrivals([&](auto arrivals) {
    std::uint64_t at = start;
    for (const auto to : arrivals) {
      taken.add(at, to);
      at = to;
    }
  });
  return taken.counts();
}

// And as the published walk does.
Counts publishedTransitions(const Network& network, const WalkLaw& law, std::uint64_t steps,
                            std::uint32_t seedOfWalk) {
  seed(seedOfWalk);
  const auto walker = groupAt(network.published(), {0});
  const auto paths = walker->walkForSteps_returnPath(steps, true);
  Transitions taken(law);
  std::uint64_t at = 0;
  for (const VEQVertex& vertex : (*paths)[0]) {
    taken.add(at, vertex.identification());
    at = vertex.identification();
  }
  return taken.counts();
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

// Weights 1 to 4 and 2 for the four edges of a star, whose list is therefore taken unevenly by
// every choice but the even one.
Network star() {
  const Network network(networkOf(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}}, false));
  network.published()->setEdgesWeightValues(VEQNumberArray::ofDoubles({1, 2, 4, 2}));
  return network;
}
Network club() { return Network(VEQNetwork::networkWithContentsOfFile(VEQ_DATA "/karate.xnet")); }

TEST(WalkLaws, ThePublishedWalkHalvesTheEndsOfEveryList) {
  for (const Network& network : {star(), club()}) {
    const WalkLaw law = lawOf(network, Choice::kPublished);
    const Counts counts = publishedTransitions(network, law, 1000000, 5);
    EXPECT_TRUE(follows(counts, law));
    // The ends not halved.
    EXPECT_FALSE(follows(counts, lawOf(network, Choice::kEven)));
  }
}

TEST(WalkLaws, EveryChoiceFollowsItsOwnLawAndNoOther) {
  for (const Choice choice : kAllChoices) {
    const WalkLaw law = lawOf(star(), choice);
    const Counts counts = transitions(star(), choice, law, 1000000, 6);
    for (const Choice other : kAllChoices) {
      EXPECT_EQ(follows(counts, lawOf(star(), other)), other == choice);
    }
    const WalkLaw ofClub = lawOf(club(), choice);
    EXPECT_TRUE(follows(transitions(club(), choice, ofClub, 1000000, 7), ofClub));
  }
}

TEST(WalkLaws, TheComparisonNoticesAShareOffByOnePercent) {
  // Of the hub's four entries the third gives 1 % of its share to the second one.
  for (const Choice choice : kAllChoices) {
    const WalkLaw law = lawOf(star(), choice);
    Counts counts = transitions(star(), choice, law, 8000000, 8);
    EXPECT_TRUE(follows(counts, law));
    const std::uint64_t moved = counts[2] / 100;
    counts[2] -= moved;
    counts[1] += moved;
    EXPECT_FALSE(follows(counts, law));
  }
}

TEST(WalkLaws, TheComparisonNoticesAnEntryThatCannotBeReached) {
  // Vertex 33 of the club leads to 16 others; what would go to the last goes to the one before.
  for (const Choice choice : kAllChoices) {
    const WalkLaw law = lawOf(club(), choice);
    Counts counts = transitions(club(), choice, law, 1000000, 9);
    EXPECT_TRUE(follows(counts, law));
    const std::uint64_t last = law.rowStarts()[34] - 1;
    counts[last - 1] += std::exchange(counts[last], 0);
    EXPECT_FALSE(follows(counts, law));
  }
}

TEST(WalkLaws, RestartsComeWithTheirProbability) {
  // To leaf 1, from wherever the walk is.
  for (const Choice choice : kAllChoices) {
    const WalkLaw law = lawOf(star(), choice, 0.5, 1);
    EXPECT_TRUE(follows(transitions(star(), choice, law, 3000000, 10, 0.5, 1), law));
    EXPECT_FALSE(follows(transitions(star(), choice, law, 3000000, 10, 0.505, 1), law));
  }
  const WalkLaw law = lawOf(club(), Choice::kEven, 0.15, 3);
  EXPECT_TRUE(follows(transitions(club(), Choice::kEven, law, 1000000, 11, 0.15, 3), law));
}

TEST(WalkLaws, VisitsTendToTheStationaryShares) {
  // A walk of 10^6 steps is within some standard errors, of at most 3 x sqrt(p / 10^6) each, since
  // it forgets where it was within a few steps.
  for (const Choice choice : kAllChoices) {
    const auto shares = lawOf(club(), choice).stationary().value().shares;
    RandomState state = RandomState::seeded(12).value();
    WalkOptions options;
    options.steps = 1000000;
    options.choice = choice;
    options.random = &state;
    Walkers walker = Walkers::at(club(), std::vector<std::uint64_t>{0}).value();
    ASSERT_TRUE(walker.walk(options).hasValue());
    const auto visits = walker.visits();
    for (std::uint64_t v = 0; v < shares.size(); ++v) {
      EXPECT_NEAR(static_cast<double>(visits[v]) / 1e6, shares[v],
                  6 * 3 * std::sqrt(shares[v] / 1e6))
          << v;
    }
  }
}

}  // namespace
}  // namespace veq::test::walk_laws_test
