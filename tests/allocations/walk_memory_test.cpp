// What the history of a walk takes beside the arrays that it stands for, which are of 16 bytes for
// each agent and vertex.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/failing_allocation.hpp"

namespace veq::test::walk_memory_test {
namespace {

constexpr std::int64_t kDuring = std::int64_t{16} << 20;
constexpr std::int64_t kAfter = 1000000;

// 0 - 1 - ... - 0, and from each vertex another link, far away.
Shared<VEQNetwork> ringWithLinks(std::uint64_t n, std::uint64_t narrowLimit) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < n; ++v) {
    edges.emplace_back(v, (v + 1) % n);
    edges.emplace_back(v, (v * 7919 + 13) % n);
  }
  return networkOf(n, edges, false, narrowLimit);
}

struct Taken {
  std::int64_t during;
  std::int64_t after;
  std::int64_t withoutPaths;
};

// What so many walks of a new group take more than there was before them.
Taken takenBy(std::uint64_t agents, std::uint64_t vertices, std::uint64_t steps, bool paths,
              int walks = 1, std::uint64_t narrowLimit = internal::AdjacencyStore::kNarrowLimit) {
  seed(1);
  const auto group = groupAt(ringWithLinks(vertices, narrowLimit), Indices(agents));
  const std::int64_t before = FailingAllocation::liveMemory().bytes;
  FailingAllocation::takePeakBytes();
  std::optional<VEQVertexPaths> kept;
  for (int walk = 0; walk < walks; ++walk) kept = group->walkForSteps_returnPath(steps, paths);
  const std::int64_t during = FailingAllocation::takePeakBytes() - before;
  const std::int64_t after = FailingAllocation::liveMemory().bytes - before;
  kept.reset();
  return {during, after, FailingAllocation::liveMemory().bytes - before};
}

TEST(WalkMemory, OfALoneAgentIsBoundedHoweverLongItWalks) {
  for (const std::uint64_t steps : {100000U, 1000000U, 10000000U}) {
    const Taken taken = takenBy(1, 1000, steps, false);
    EXPECT_LE(taken.during, 16000 + kDuring) << steps;
    EXPECT_LE(taken.after, 16000 + kAfter) << steps;
  }
}

TEST(WalkMemory, OfManyAgentsIsBoundedByTheirArrays) {
  for (const std::uint64_t agents : {2U, 20U, 200U}) {
    for (const std::uint64_t vertices : {100U, 20000U}) {
      const auto arrays = static_cast<std::int64_t>(16 * agents * vertices);
      const Taken taken = takenBy(agents, vertices, 5000000 / agents, false);
      EXPECT_LE(taken.during, arrays + kDuring) << agents << " " << vertices;
      EXPECT_LE(taken.after, arrays + kAfter) << agents << " " << vertices;
    }
  }
}

TEST(WalkMemory, OfManyShortWalksIsBoundedAsWell) {
  for (const bool paths : {false, true}) {
    const Taken taken = takenBy(10, 1000, 1, paths, 200000);
    EXPECT_LE(taken.during, 160000 + kDuring);
    EXPECT_LE(taken.after, 160000 + kAfter);
  }
}

// Four bytes a move are the paths themselves, and eight where indices are wide; as much again is
// allowed while they are made.
TEST(WalkMemory, WithPathsFollowsThePathsAndIsGivenBackWithThem) {
  constexpr std::uint64_t kSteps = 10000000;
  const auto moves = static_cast<std::int64_t>(kSteps);
  const Taken narrow = takenBy(1, 1000, kSteps, true);
  EXPECT_LE(narrow.during, 8 * moves + kDuring);
  EXPECT_LE(narrow.after, 4 * moves + 16000 + kAfter);
  EXPECT_LE(narrow.withoutPaths, 16000 + kAfter);
  const Taken wide = takenBy(1, 1000, kSteps, true, 1, 0);
  EXPECT_LE(wide.during, 16 * moves + kDuring);
  EXPECT_LE(wide.withoutPaths, 16000 + kAfter);
}

}  // namespace
}  // namespace veq::test::walk_memory_test
