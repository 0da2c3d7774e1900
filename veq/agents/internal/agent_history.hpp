#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
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

  Shared<VEQNumberArray> visits;
  Shared<VEQNumberArray> order;
  std::int64_t* visitsData;
  std::int64_t* orderData;
};

/// What an agent has done at one vertex: its visits, and its arrivals before the last of them.
struct Tally {
  std::uint32_t count;
  std::uint32_t stamp;
};

/// What one agent has done, as far as its moves have been counted: a tally for each vertex, from
/// when the first of them is, or arrays instead from when these are made.
struct AgentHistory {
  std::uint64_t arrivals = 0;
  /// The number of the first run of moves in the log that has not been counted.
  std::uint64_t counted = 0;
  Block<Tally> tallies;
  std::unique_ptr<AgentArrays> arrays;

  /// Gives it arrays, in which the first arrival is stamped `firstStamp`, with wrap-around.
  /// std::bad_alloc leaves it as it was.
  void makeArrays(std::uint64_t vertices, std::uint64_t firstStamp) {
    auto made = std::make_unique<AgentArrays>(vertices);
    for (std::uint64_t v = 0; v < tallies.size(); ++v) {
      if (tallies[v].count == 0) continue;
      made->visitsData[v] = static_cast<std::int64_t>(tallies[v].count);
      made->orderData[v] = static_cast<std::int64_t>(firstStamp + tallies[v].stamp);
    }
    arrays = std::move(made);
    tallies = {};
  }

  /// Counts moves that lie `stride` words apart, into what it has.
  template <class Word>
  void count(const Word* moves, std::uint64_t stride, std::uint64_t steps,
             std::uint64_t firstStamp) noexcept {
    if (arrays) {
      std::int64_t* const visits = arrays->visitsData;
      std::int64_t* const order = arrays->orderData;
      forEachArrival(moves, stride, steps, [=](Word to, std::uint64_t stamp) {
        ++visits[to];
        order[to] = static_cast<std::int64_t>(firstStamp + stamp);
      });
    } else {
      Tally* const all = tallies.data();
      forEachArrival(moves, stride, steps, [=](Word to, std::uint64_t stamp) {
        all[to] = {all[to].count + 1, static_cast<std::uint32_t>(stamp)};
      });
    }
  }

  /// Calls f(vertex, visits) for each vertex from `begin` to before `end` that has been counted.
  template <class F>
  void forEachVisits(std::uint64_t begin, std::uint64_t end, F f) const {
    if (!arrays) end = std::min(end, tallies.size());
    for (std::uint64_t v = begin; v < end; ++v) {
      f(v, arrays ? static_cast<std::uint64_t>(arrays->visitsData[v]) : tallies[v].count);
    }
  }

 private:
  template <class Word, class Arrive>
  void forEachArrival(const Word* moves, std::uint64_t stride, std::uint64_t steps, Arrive arrive) {
    std::uint64_t stamp = arrivals;
    for (std::uint64_t s = 0; s < steps; ++s, moves += stride) {
      prefetch(moves + 8 * stride);  // mostly in the same block
      if (*moves != kStayed<Word>) arrive(*moves, stamp++);
    }
    arrivals = stamp;
  }
};

}  // namespace veq::internal
