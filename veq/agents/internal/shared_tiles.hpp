/// \file
/// How threads share the agents of a walk.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_draws.hpp"
#include "veq/base/internal/team.hpp"

namespace veq::internal {

/// The agents from one number to before another, whom one thread moves.
struct AgentRange {
  std::uint64_t first;
  std::uint64_t end;

  [[nodiscard]] std::uint64_t count() const { return end - first; }
};

/// The tiles of a walk of agents that know nothing of each other, so that each thread can move some
/// of them by itself, and who has how many shows in nothing. Each makes all draws of a tile, and
/// reads those of its agents: that takes a quarter of a nanosecond for a draw, and nobody waits for
/// what another one makes.
class SharedTiles {
 public:
  SharedTiles(std::uint64_t agents, std::uint64_t steps, std::uint64_t purposes, Team& team,
              Meetings meetings)
      : agents_(agents),
        team_(team),
        workOfMove_(static_cast<std::uint64_t>(meetings)),
        agentsEach_(agents),
        draws_(agents, steps, purposes) {
    if (team.threads() == 1) return;
    const std::uint64_t lines = std::max<std::uint64_t>((agents + kLine - 1) / kLine, 1);
    agentsEach_ = (lines + team.threads() - 1) / team.threads() * kLine;
    const std::uint64_t others = (lines * kLine - 1) / agentsEach_;
    drawsOfOthers_.reserve(others);
    while (drawsOfOthers_.size() < others) drawsOfOthers_.emplace_back(agents, steps, purposes);
  }

  [[nodiscard]] std::uint64_t purposes() const { return draws_.purposes(); }

  /// Takes the draws of all steps, and must not fail; see WalkDraws.
  void take(const RandomSource& source, std::uint64_t steps, bool endless) {
    draws_.take(source, steps, endless);
    for (WalkDraws& others : drawsOfOthers_) others.takeAs(draws_);
  }

  /// Calls move(draws, agents, first, some) for each range of agents and in it for each tile of the
  /// steps, which is `some` steps from the number `first` on, with their draws.
  template <class Move>
  void forEach(std::uint64_t steps, Move move) {
    team_.forEachPiece(
        1 + drawsOfOthers_.size(), agents_ * steps * workOfMove_, [&](std::uint64_t range) {
          const AgentRange agents{range * agentsEach_,
                                  std::min(agents_, (range + 1) * agentsEach_)};
          WalkDraws& draws = range == 0 ? draws_ : drawsOfOthers_[range - 1];
          for (std::uint64_t first = 0; first < steps;) {
            const std::uint64_t some = std::min(stepsPerTile(agents_), steps - first);
            draws.fill(some);
            move(draws, agents, first, some);
            first += some;
          }
        });
  }

 private:
  // Of the narrower words, which fill lines of the wider ones, too.
  static constexpr std::uint64_t kLine = kAgentsPerLine<std::uint32_t>;

  std::uint64_t agents_;
  Team& team_;
  std::uint64_t workOfMove_;
  std::uint64_t agentsEach_;
  WalkDraws draws_;  // of the first range
  std::vector<WalkDraws> drawsOfOthers_;
};

}  // namespace veq::internal
