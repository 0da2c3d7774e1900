// The memories against their plainest form: the last vertices, as many as there are slots.
#include "veq/agents/internal/agent_memories.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <random>
#include <vector>

#include "tests/support/rounds.hpp"

namespace veq::test::agent_memories_test {
namespace {

using internal::AgentAbility;
using internal::AgentMemories;

class PlainMemory {
 public:
  explicit PlainMemory(std::uint64_t size) : size_(size) {}
  void remember(std::uint64_t vertex) {
    latest_.push_back(vertex);
    ++counts_[vertex];
    if (latest_.size() <= size_) return;
    if (--counts_[latest_.front()] == 0) counts_.erase(latest_.front());
    latest_.pop_front();
  }
  bool remembers(std::uint64_t vertex) const { return counts_.contains(vertex); }

 private:
  std::uint64_t size_;
  std::deque<std::uint64_t> latest_;
  std::map<std::uint64_t, std::uint64_t> counts_;
};

// Rings from one slot to more than the vertices have, of agents side by side, among `some` vertices
// of the network, `apart` from each other.
template <class Word>
void compareWithPlainMemories(std::uint64_t vertices, std::uint64_t some, std::uint64_t apart) {
  const std::vector<std::uint64_t> sizes = {1, 2, 3, 4, 7, 8, 31, 64, 100, 257};
  std::vector<AgentAbility> abilities;
  std::vector<PlainMemory> expected;
  for (const std::uint64_t size : sizes) {
    abilities.push_back({size, 0});
    expected.emplace_back(size);
  }
  AgentMemories<Word> memories(vertices, abilities);
  std::mt19937_64 draw(vertices + some);
  for (int i = 0; i < rounds(40000); ++i) {
    const std::uint64_t agent = draw() % sizes.size();
    const std::uint64_t vertex = draw() % some * apart;
    memories.remember(agent, vertex, draw() % 2 == 0);
    expected[agent].remember(vertex);
    // Those around a forgotten one are what a wrong deletion would lose.
    const std::uint64_t asked = i % 64 == 0 ? some : std::min<std::uint64_t>(some, 4);
    for (std::uint64_t k = 0; k < asked; ++k) {
      const std::uint64_t other = (i % 64 == 0 ? k : draw() % some) * apart;
      ASSERT_EQ(memories.remembers(agent, other), expected[agent].remembers(other))
          << "agent " << agent << ", vertex " << other << ", visit " << i;
    }
  }
}

TEST(AgentMemories, RememberTheLatestVisitsOnSmallNetworks) {
  for (const std::uint64_t vertices : {1U, 2U, 3U, 8U, 60U, 64U}) {
    compareWithPlainMemories<std::uint32_t>(vertices, vertices, 1);
    compareWithPlainMemories<std::uint64_t>(vertices, vertices, 1);
  }
}

TEST(AgentMemories, RememberTheLatestVisitsOnLargeNetworks) {
  compareWithPlainMemories<std::uint32_t>(1000000, 300, 1);
  compareWithPlainMemories<std::uint32_t>(1000000, 300, 1024);
  compareWithPlainMemories<std::uint32_t>(4294967294, 90, 47721858);
  compareWithPlainMemories<std::uint64_t>(std::uint64_t{1} << 59, 300, std::uint64_t{1} << 50);
}

// Vertices whose places in a table of 2^bits are the same, so that they push each other on.
std::vector<std::uint64_t> verticesOfOnePlace(unsigned bits, std::size_t count) {
  std::vector<std::uint64_t> found;
  for (std::uint64_t v = 0; found.size() < count; ++v) {
    if ((v * 0x9E3779B97F4A7C15U) >> (64 - bits) == (std::uint64_t{1} << bits) - 2) {
      found.push_back(v);
    }
  }
  return found;
}

TEST(AgentMemories, FindWhatWasPushedPastItsPlaceAndRoundTheEnd) {
  // Eight slots, sixteen places, of which the last but one is everybody's.
  const std::vector<std::uint64_t> vertices = verticesOfOnePlace(4, 12);
  const AgentAbility ability{8, 0};
  AgentMemories<std::uint32_t> memories(1000000, {&ability, 1});
  PlainMemory expected(8);
  std::mt19937_64 draw(3);
  for (int i = 0; i < rounds(20000); ++i) {
    const std::uint64_t vertex = draw() % 3 == 0 ? draw() % 1000 : vertices[draw() % 12];
    memories.remember(0, vertex, false);
    expected.remember(vertex);
    for (const std::uint64_t v : vertices) {
      ASSERT_EQ(memories.remembers(0, v), expected.remembers(v));
    }
    for (std::uint64_t v = 0; v < 1000; v += 37) {
      ASSERT_EQ(memories.remembers(0, v), expected.remembers(v));
    }
  }
}

TEST(AgentMemories, AreMistakenBelowTheThreshold) {
  const std::vector<AgentAbility> abilities = {{1, 0}, {1, 5}, {1, std::uint32_t{1} << 31}};
  const AgentMemories<std::uint32_t> memories(10, abilities);
  EXPECT_FALSE(memories.isMistaken(0, 0));
  EXPECT_TRUE(memories.isMistaken(1, 4));
  EXPECT_FALSE(memories.isMistaken(1, 5));
  EXPECT_TRUE(memories.isMistaken(2, 2147483647));
}

// Agent 0 passes what it has on to agent 1, and agent 1 to nobody.
template <class Word>
struct Couple {
  AgentMemories<Word> memories;
  bool shareOfFirst() {
    return memories.share(0, [](auto give) { give(1); });
  }
};

TEST(AgentMemories, ShareOneEntryATurn) {
  const std::vector<AgentAbility> abilities = {{4, 0}, {4, 0}};
  Couple<std::uint64_t> couple{AgentMemories<std::uint64_t>(100, abilities)};
  for (const std::uint64_t vertex : {10U, 11U, 12U}) couple.memories.remember(0, vertex, true);
  for (const std::uint64_t given : {10U, 11U, 12U}) {
    EXPECT_FALSE(couple.memories.remembers(1, given));
    EXPECT_TRUE(couple.shareOfFirst());
    EXPECT_TRUE(couple.memories.remembers(1, given));
  }
  EXPECT_FALSE(couple.shareOfFirst());
}

TEST(AgentMemories, SkipWithinATurnWhatIsKnown) {
  const std::vector<AgentAbility> abilities = {{4, 0}, {4, 0}};
  Couple<std::uint32_t> couple{AgentMemories<std::uint32_t>(100, abilities)};
  for (const std::uint64_t vertex : {10U, 11U}) couple.memories.remember(1, vertex, true);
  for (const std::uint64_t vertex : {10U, 11U, 12U}) couple.memories.remember(0, vertex, true);
  EXPECT_TRUE(couple.shareOfFirst());
  EXPECT_TRUE(couple.memories.remembers(1, 12));
}

TEST(AgentMemories, DoNotOfferWhatTheirOwnVisitOverwrites) {
  // Four slots, of which the first visit takes the second: the fifth overwrites it, still waiting
  // to be offered, so that the next to be offered is the second visit.
  const std::vector<AgentAbility> abilities = {{4, 0}, {9, 0}};
  Couple<std::uint32_t> couple{AgentMemories<std::uint32_t>(100, abilities)};
  couple.memories.remember(0, 10, true);
  couple.shareOfFirst();
  couple.memories.remember(1, 50, true);
  for (const std::uint64_t vertex : {11U, 12U, 13U, 14U}) couple.memories.remember(0, vertex, true);
  EXPECT_FALSE(couple.memories.remembers(0, 10));
  EXPECT_TRUE(couple.shareOfFirst());
  EXPECT_TRUE(couple.memories.remembers(1, 11));
  EXPECT_FALSE(couple.memories.remembers(1, 12));
}

}  // namespace
}  // namespace veq::test::agent_memories_test
