#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "veq/network/network.hpp"

namespace veq::test::concurrent_handles_test {
namespace {

// All threads ask for the same handles at the same time; each must get the one object.
TEST(ConcurrentHandles, FirstUseGivesEveryThreadTheSameObjects) {
  constexpr std::uint64_t kVertices = 5000;
  constexpr std::uint64_t kThreads = 4;
  for (int round = 0; round < 5; ++round) {
    const auto network = drawUndirected("0-1 1-2 2-0", kVertices);
    std::vector<std::vector<const VEQVertex*>> seen(kThreads);
    std::atomic<std::uint64_t> waiting{kThreads};
    std::vector<std::thread> threads;
    for (std::uint64_t t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        --waiting;
        while (waiting > 0) std::this_thread::yield();
        for (std::uint64_t v = 0; v < kVertices; v += 17) {
          const auto vertex = network->vertexAtIndex(v);
          seen[t].push_back(vertex->identification() == v ? vertex.get() : nullptr);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (std::uint64_t i = 0; i < seen[0].size(); ++i) {
      EXPECT_EQ(seen[0][i], network->vertexAtIndex(i * 17).get());
      for (std::uint64_t t = 1; t < kThreads; ++t) EXPECT_EQ(seen[t][i], seen[0][i]);
    }
  }
}

TEST(ConcurrentHandles, QuestionsMayBeAskedAtOnce) {
  const auto network = drawDirected("0-1 0-2 0-3 1-0", 500);
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        const auto vertex = network->vertexAtIndex(0);
        if (vertex->copy()->countInEdges() != 1) ++wrong;
        if (network->edges()[3]->description() != "1 -> 0") ++wrong;
        if (network->vertices()[499]->description() != "499") ++wrong;
        if (network->verticesLinkedFromVertexAtIndex(0).count() != 3) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace veq::test::concurrent_handles_test
