#include "veq/base/internal/team.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/shared_work.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/base/internal/processors.hpp"
#include "veq/base/parallelism.hpp"

namespace veq::test::team_test {
namespace {

using internal::Team;

// How often each piece was done.
std::vector<int> timesDone(Team& team, std::uint64_t pieces) {
  std::vector<std::atomic<int>> times(pieces);
  team.forEachPiece(pieces, 1, [&](std::uint64_t piece) { ++times[piece]; });
  return {times.begin(), times.end()};
}

TEST(Team, DoesEachPieceOnce) {
  const SharedWork shared(1);
  for (const unsigned threads : {0U, 1U, 2U, 3U, 7U, 64U}) {
    Team team(threads);
    for (const std::uint64_t pieces : {0U, 1U, 2U, 5U, 200U}) {
      EXPECT_EQ(timesDone(team, pieces), std::vector<int>(pieces, 1)) << threads << " threads";
    }
  }
}

// A piece waits for another one, so that one thread alone would wait for ever.
TEST(Team, DoesPiecesAtTheSameTime) {
  const SharedWork shared(1);
  Team team(2);
  std::atomic<int> begun{0};
  team.forEachPiece(2, 1, [&](std::uint64_t) {
    ++begun;
    while (begun < 2) std::this_thread::yield();
  });
  EXPECT_EQ(begun, 2);
}

TEST(Team, LeavesSmallWorkToItsOwnThread) {
  const SharedWork shared(1, 1000);
  Team team(4);
  std::set<std::thread::id> threads;
  team.forEachPiece(100, 999, [&](std::uint64_t) { threads.insert(std::this_thread::get_id()); });
  EXPECT_EQ(threads, std::set{std::this_thread::get_id()});
}

TEST(Team, OfOneDoesPiecesInOrder) {
  const SharedWork shared(1);
  std::vector<std::uint64_t> order;
  Team::alone().forEachPiece(4, 1, [&](std::uint64_t piece) { order.push_back(piece); });
  EXPECT_EQ(order, (std::vector<std::uint64_t>{0, 1, 2, 3}));
}

// Whatever the order in which they come to it: 7 waits until 11 has thrown.
TEST(Team, ThrowsWhatTheLowestPieceThrew) {
  const SharedWork shared(1);
  for (const unsigned threads : {2U, 3U, 16U}) {
    Team team(threads);
    std::vector<std::atomic<int>> times(100);
    std::atomic<bool> thrown{false};
    EXPECT_EQ(thrownText<std::runtime_error>([&] {
                team.forEachPiece(100, 1, [&](std::uint64_t piece) {
                  ++times[piece];
                  if (piece == 11) {
                    thrown = true;
                    throw std::runtime_error("11");
                  }
                  if (piece != 7) return;
                  while (threads > 4 && !thrown) std::this_thread::yield();
                  throw std::runtime_error("7");
                });
              }),
              "7");
    for (std::size_t piece = 0; piece <= 7; ++piece) EXPECT_EQ(times[piece], 1) << piece;
    EXPECT_EQ(timesDone(team, 50), std::vector<int>(50, 1));  // and it goes on
  }
}

// How many threads this process has, where the system tells.
int threadsOfProcess() {
  std::ifstream status("/proc/self/status");
  std::string word;
  int threads = 0;
  while (status >> word) {
    if (word == "Threads:") status >> threads;
  }
  return threads;
}

// The system counts a thread for a moment longer than whoever joins it waits, and a sanitizer has
// one of its own from the first on.
TEST(Team, ADeadOneHasLeftNoThread) {
  const SharedWork shared(1);
  std::thread([] {}).join();
  const int before = threadsOfProcess();
  {
    Team team(5);
    EXPECT_LE(threadsOfProcess(), before);  // none before there is work
    EXPECT_EQ(timesDone(team, 100), std::vector<int>(100, 1));
  }
  for (int wait = 0; threadsOfProcess() > before && wait < 1000; ++wait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_LE(threadsOfProcess(), before);
}

// The handler of a program's signal runs in a thread of the program.
TEST(Team, ItsHelpersTakeNoSignals) {
  const SharedWork shared(1);
  Team team(2);
  std::atomic<int> begun{0};
  std::atomic<bool> blocked{false};
  const auto caller = std::this_thread::get_id();
  team.forEachPiece(2, 1, [&](std::uint64_t) {
    ++begun;
    while (begun < 2) std::this_thread::yield();
    if (std::this_thread::get_id() == caller) return;
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    blocked = sigismember(&mask, SIGINT) == 1 && sigismember(&mask, SIGTERM) == 1;
  });
  EXPECT_TRUE(blocked);
}

TEST(Parallelism, IsOneUntilItIsSet) {
  EXPECT_EQ(parallelism(), 1U);
  setParallelism(5);
  EXPECT_EQ(parallelism(), 5U);
  setParallelism(0);
  EXPECT_EQ(parallelism(), internal::usableProcessors());
  EXPECT_GE(parallelism(), 1U);
  setParallelism(4000000000U);
  EXPECT_EQ(parallelism(), 1024U);
  setParallelism(1);
  EXPECT_EQ(parallelism(), 1U);
}

TEST(ParallelRunner, DoesTheWorkOfATeam) {
  const SharedWork shared(3, SharedWork::InReverse());
  Team team(parallelism());
  std::vector<std::uint64_t> order;
  team.forEachPiece(4, 1, [&](std::uint64_t piece) { order.push_back(piece); });
  EXPECT_EQ(order, (std::vector<std::uint64_t>{3, 2, 1, 0}));
}

TEST(ParallelRunner, IsNotAskedByATeamOfOne) {
  const SharedWork shared(1, SharedWork::InReverse());
  Team team(parallelism());
  std::vector<std::uint64_t> order;
  team.forEachPiece(3, 1, [&](std::uint64_t piece) { order.push_back(piece); });
  EXPECT_EQ(order, (std::vector<std::uint64_t>{0, 1, 2}));
}

TEST(ParallelRunner, WhatItDoesWronglyIsMadeGood) {
  const SharedWork shared(1);
  const std::vector<ParallelRunner> runners = {[](std::size_t, const auto&) {},
                                               [](std::size_t, const auto& piece) { piece(1); },
                                               [](std::size_t pieces, const auto& piece) {
                                                 for (std::size_t i = 0; i < pieces; ++i)
                                                   piece(i), piece(i);
                                                 piece(pieces);
                                                 piece(SIZE_MAX);
                                               },
                                               [](std::size_t, const auto& piece) {
                                                 piece(2);
                                                 throw std::runtime_error("no more");
                                               }};
  for (const ParallelRunner& runner : runners) {
    setParallelRunner(runner);
    Team team(2);
    EXPECT_EQ(timesDone(team, 9), std::vector<int>(9, 1));
  }
}

TEST(ParallelRunner, TheLowestPieceThatThrewIsTold) {
  const SharedWork shared(4, SharedWork::InReverse());
  Team team(4);
  EXPECT_EQ(thrownText<std::runtime_error>([&] {
              team.forEachPiece(9, 1, [](std::uint64_t piece) {
                if (piece % 3 == 2) throw std::runtime_error(std::to_string(piece));
              });
            }),
            "2");
}

}  // namespace
}  // namespace veq::test::team_test
