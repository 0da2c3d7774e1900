// Teams in child processes, in which the thread sanitizer lets nobody start a thread.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <future>
#include <vector>

#include "tests/support/child_process.hpp"
#include "tests/support/limits.hpp"
#include "veq/base/internal/team.hpp"

namespace veq::test::team_children_test {
namespace {

using internal::Team;

// How often each of 20 pieces was done.
std::vector<int> timesDone(Team& team) {
  std::vector<std::atomic<int>> times(20);
  team.forEachPiece(times.size(), UINT64_MAX, [&](std::uint64_t piece) { ++times[piece]; });
  return {times.begin(), times.end()};
}

TEST(TeamInAChild, WorksOnWithThreadsOfItsOwn) {
  Team team(3);
  EXPECT_EQ(timesDone(team), std::vector<int>(20, 1));
  EXPECT_EQ(statusOfChild([&] {
              EXPECT_EQ(timesDone(team), std::vector<int>(20, 1));
              return 0;
            }),
            0);
  EXPECT_EQ(timesDone(team), std::vector<int>(20, 1));
}

// As where a program forks while somebody watches a walk: it is over when the child ends.
TEST(TeamInAChild, MayBeDestroyedThere) {
  auto team = std::make_unique<Team>(3);
  EXPECT_EQ(timesDone(*team), std::vector<int>(20, 1));
  EXPECT_EQ(statusOfChild([&] {
              team.reset();
              return 0;
            }),
            0);
}

// Whatever the other thread and its helpers were doing.
TEST(TeamInAChild, WorksWhereAnotherThreadSharesWorkMeanwhile) {
#ifdef VEQ_TEST_SANITIZED
  GTEST_SKIP() << "a sanitizer's allocator may be locked in the child for ever";
#endif
  std::atomic<bool> isOver{false};
  auto other = std::async(std::launch::async, [&] {
    while (!isOver) {
      Team team(2);
      EXPECT_EQ(timesDone(team), std::vector<int>(20, 1));
    }
  });
  for (int round = 0; round < 200; ++round) {
    ASSERT_EQ(statusOfChild([] {
                ::alarm(20);
                Team team(3);
                return timesDone(team) == std::vector<int>(20, 1) ? 0 : 1;
              }),
              0);
  }
  isOver = true;
  other.get();
}

// A stack takes more addresses than are left, so that no thread can be made.
TEST(TeamInAChild, DoesWithoutThreadsThatTheSystemDoesNotGive) {
#ifdef VEQ_TEST_SANITIZED
  GTEST_SKIP() << "a sanitizer needs more addresses";
#endif
  const int status = statusOfChild([] {
    const rlimit limit{1, 1};
    if (setrlimit(RLIMIT_AS, &limit) != 0) return kCannotTry;
    Team team(4);
    return timesDone(team) == std::vector<int>(20, 1) ? 0 : 1;
  });
  if (WIFEXITED(status) && WEXITSTATUS(status) == kCannotTry) GTEST_SKIP() << "no limit was set";
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace veq::test::team_children_test
