#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "veq/agents/internal/tiles.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_source.hpp"

namespace veq::internal {

/// The draws of a walk. For each purpose there is one draw for each agent and step. Those of a
/// purpose follow each other step by step, and the purposes one after the other; in a walk without
/// a number of steps the draws of all purposes for one step come before those for the next.
class WalkDraws {
 public:
  WalkDraws(std::uint64_t agents, std::uint64_t steps, std::uint64_t purposes)
      : agents_(agents), draws_(purposes) {
    for (auto& draws : draws_) draws.resize(agents * std::min(steps, stepsPerTile(agents)));
    streams_.reserve(purposes);
  }

  [[nodiscard]] std::uint64_t purposes() const { return draws_.size(); }

  /// Takes all draws of the steps, and must not fail; with `endless` none, and no end is known.
  void take(const RandomSource& source, std::uint64_t steps, bool endless) {
    isEndless_ = endless;
    const Uint128 count = endless ? 0 : Uint128{agents_} * steps;
    const std::uint64_t streams = endless ? 1 : draws_.size();
    for (std::uint64_t i = 0; i < streams; ++i) streams_.push_back(source.take(count));
  }

  /// Takes the same as others have, which have not been filled yet.
  void takeAs(const WalkDraws& others) {
    isEndless_ = others.isEndless_;
    for (const RandomStream& stream : others.streams_) streams_.push_back(stream);
  }

  /// Draws for the next steps, of which there are stepsPerTile() at most.
  void fill(std::uint64_t steps) {
    if (!isEndless_) {
      for (std::size_t i = 0; i < draws_.size(); ++i) {
        streams_[i].fill(draws_[i].data(), agents_ * steps);
      }
      return;
    }
    for (std::uint64_t s = 0; s < steps; ++s) {
      for (auto& draws : draws_) streams_[0].fill(draws.data() + agents_ * s, agents_);
    }
  }

  /// Those of a purpose in the steps filled last: number agents x s + a is agent a's in step s.
  [[nodiscard]] const std::uint32_t* operator[](std::size_t purpose) const {
    return draws_[purpose].data();
  }

 private:
  std::uint64_t agents_;
  bool isEndless_ = false;
  std::vector<Block<std::uint32_t>> draws_;  // for each purpose those of a tile
  std::vector<RandomStream> streams_;
};

/// Where agents are led back to, and how often.
struct Restarts {
  /// Draws below this lead back; none are drawn for 0.
  std::uint32_t threshold = 0;
  std::span<const std::uint64_t> starts;

  [[nodiscard]] bool happen() const { return threshold != 0; }
};

}  // namespace veq::internal
