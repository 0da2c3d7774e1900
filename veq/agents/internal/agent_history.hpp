#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <utility>

#include "veq/agents/internal/tiles.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// The two arrays of one agent, as they are handed out: its visits of each vertex, and its count of
/// arrivals when it last arrived there.
struct AgentArrays {
  explicit AgentArrays(std::uint64_t vertices)
      : visits(VEQNumberArray::initWithIntegerScalar_count(0, vertices)),
        order(VEQNumberArray::initWithIntegerScalar_count(0, vertices)),
        visitsData(visits->values<std::int64_t>().data()),
        orderData(order->values<std::int64_t>().data()) {}

  void add(std::uint64_t vertex, std::uint64_t count, std::uint64_t stamp) {
    visitsData[vertex] =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(visitsData[vertex]) + count);
    orderData[vertex] = static_cast<std::int64_t>(stamp);
  }

  Shared<VEQNumberArray> visits;
  Shared<VEQNumberArray> order;
  std::int64_t* visitsData;
  std::int64_t* orderData;
};

/// What an agent has done at one vertex: its visits, and its arrivals before the last of them.
template <class Word>
struct Tally {
  Word count;
  Word stamp;
};

/// What one agent has done, as far as its moves have been counted: a tally for each vertex that it
/// has visited, in no order, or for each there is once that takes no more; and arrays instead from
/// when they are made.
template <class Word>
struct AgentHistory {
  std::uint64_t arrivals = 0;
  /// The number of the first run of moves in the log that has not been counted.
  std::uint64_t counted = 0;
  std::uint64_t size = 0;  // of the tallies that count; their blocks may have room for more
  Block<Tally<Word>> tallies;
  Block<Word> vertices;  // whose tallies these are; none where they are those of all vertices
  std::unique_ptr<AgentArrays> arrays;

  [[nodiscard]] bool isOfAllVertices() const { return vertices.empty() && size != 0; }
  [[nodiscard]] std::uint64_t compactBytes() const {
    return size * (sizeof(Tally<Word>) + (isOfAllVertices() ? 0 : sizeof(Word)));
  }
  /// Calls f(vertex, count, stamp) for each vertex that has been visited, if there are no arrays.
  template <class F>
  void forEachTally(F f) const {
    for (std::uint64_t i = 0; i < size; ++i) {
      const auto [count, stamp] = tallies[i];
      if (count != 0) f(vertices.empty() ? i : vertices[i], count, stamp);
    }
  }
};

/// Memory that is needed while moves are counted.
template <class Word>
struct FoldingSpace {
  Block<Word> columns;  // moves of some agents, agent by agent
  Block<Word> places;   // for each vertex its place in an agent's list plus 1, or 0
};

/// Adds moves to the histories of agents, one at a time.
template <class Word>
class HistoryFolder {
 public:
  /// The first arrival is stamped `firstStamp`, with wrap-around.
  HistoryFolder(std::uint64_t vertices, std::uint64_t firstStamp)
      : vertices_(vertices), firstStamp_(firstStamp) {}

  /// Adds moves of an agent. It must have arrays if its arrivals outgrow a word. std::bad_alloc
  /// leaves its history as it was.
  void add(AgentHistory<Word>& agent, std::span<const Word> moves,
           FoldingSpace<Word>& space) const {
    if (agent.arrays) return addToArrays(agent, moves.data(), 1, moves.size());
    if (!agent.isOfAllVertices()) return addToList(agent, moves, space.places);
    Tally<Word>* const tallies = agent.tallies.data();
    auto stamp = static_cast<Word>(agent.arrivals);
    forEachArrival(moves.data(), 1, moves.size(), [&](Word to) { count(tallies[to], stamp++); });
    agent.arrivals = stamp;
  }
  /// The same for one that has arrays, from moves that lie `stride` words apart.
  void addToArrays(AgentHistory<Word>& agent, const Word* moves, std::uint64_t stride,
                   std::uint64_t steps) const noexcept {
    AgentArrays& arrays = *agent.arrays;
    std::uint64_t stamp = firstStamp_ + agent.arrivals;
    forEachArrival(moves, stride, steps, [&](Word to) { arrays.add(to, 1, stamp++); });
    agent.arrivals = stamp - firstStamp_;
  }

  /// Gives the agent arrays. std::bad_alloc leaves the history as it was.
  void makeArrays(AgentHistory<Word>& agent) const {
    auto arrays = std::make_unique<AgentArrays>(vertices_);
    agent.forEachTally([&](std::uint64_t vertex, std::uint64_t count, std::uint64_t stamp) {
      arrays->add(vertex, count, firstStamp_ + stamp);
    });
    agent.arrays = std::move(arrays);
    agent.tallies = {};
    agent.vertices = {};
    agent.size = 0;
  }

 private:
  template <class F>
  static void forEachArrival(const Word* moves, std::uint64_t stride, std::uint64_t steps, F f) {
    for (std::uint64_t s = 0; s < steps; ++s, moves += stride) {
      if (*moves != kStayed<Word>) f(*moves);
    }
  }

  static void count(Tally<Word>& tally, Word stamp) {
    tally = {static_cast<Word>(tally.count + 1), stamp};
  }

  void addToList(AgentHistory<Word>& agent, std::span<const Word> moves,
                 Block<Word>& placesOfAll) const {
    if (placesOfAll.empty()) placesOfAll = Block<Word>(vertices_);
    // One more, for what is written at the end whether or not the vertex is new.
    const std::uint64_t most =
        agent.size + std::min<std::uint64_t>(moves.size(), vertices_ - agent.size) + 1;
    agent.tallies.resize(most);
    agent.vertices.resize(most);
    Tally<Word>* const tallies = agent.tallies.data();
    Word* const vertices = agent.vertices.data();
    Word* const places = placesOfAll.data();
    std::fill(tallies + agent.size, tallies + most, Tally<Word>{0, 0});

    auto size = static_cast<Word>(agent.size);
    for (Word i = 0; i < size; ++i) places[vertices[i]] = static_cast<Word>(i + 1);
    auto stamp = static_cast<Word>(agent.arrivals);
    // Without branches, which would be guessed wrong half of the time.
    forEachArrival(moves.data(), 1, moves.size(), [&](Word to) {
      const bool isNew = places[to] == 0;
      vertices[size] = to;
      size = static_cast<Word>(size + isNew);
      const Word place = isNew ? size : places[to];
      places[to] = place;
      count(tallies[place - 1], stamp++);
    });
    for (Word i = 0; i < size; ++i) places[vertices[i]] = 0;
    agent.size = size;
    agent.arrivals = stamp;
    settle(agent);
  }

  // Brings the tallies into the form that takes less. Memory that is lacking for that leaves them.
  void settle(AgentHistory<Word>& agent) const noexcept {
    try {
      if (agent.size > vertices_ / 3 * 2) return spread(agent);
      agent.tallies.resize(agent.size);
      agent.vertices.resize(agent.size);
    } catch (const std::bad_alloc&) {
    }
  }

  // Puts each tally to the place of its vertex among all, within the block, which is most of the
  // memory that there is for a lone agent. A place that is left holds nobody's tally, kStayed.
  void spread(AgentHistory<Word>& agent) const {
    agent.tallies.resize(vertices_);
    Tally<Word>* const tallies = agent.tallies.data();
    Word* const vertices = agent.vertices.data();
    std::fill(tallies + agent.size, tallies + vertices_, Tally<Word>{0, 0});
    for (std::uint64_t i = 0; i < agent.size; ++i) {
      while (vertices[i] != i && vertices[i] != kStayed<Word>) {
        const Word to = vertices[i];
        if (to < agent.size) {
          std::swap(tallies[i], tallies[to]);
          std::swap(vertices[i], vertices[to]);
        } else {
          tallies[to] = std::exchange(tallies[i], {0, 0});
          vertices[i] = kStayed<Word>;
        }
      }
    }
    agent.vertices = {};
    agent.size = vertices_;
  }

  std::uint64_t vertices_;
  std::uint64_t firstStamp_;
};

}  // namespace veq::internal
