#pragma once

#include <algorithm>
#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <variant>
#include <vector>

#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/move_log.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_history.hpp"
#include "veq/agents/vertex_paths.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

struct WalkRequest {
  std::uint64_t steps;
  bool returnPath;
  float untilReach;
};

/// All of a walk except the moves: its beginning and end, progress, reach target, history and
/// paths. The moves are a Mover's:
///   static constexpr bool kCanRewind: whether the last steps can be taken back by putting the
///     agents back to where they stood;
///   void draw(steps): takes its numbers from the shared sequence; must not fail;
///   void walk(Word* positions, Word* moves, steps): moves all agents by some steps (up to
///   stepsPerTile), and
///     writes for each step where each agent arrived, or kStayed;
///   bool skip(steps): if it can, brings itself at once to where so many further steps would bring
///     it in which nobody moves, as nobody did in the last one; must not fail.
template <class Word, class Mover>
class WalkFrame {
 public:
  /// Throws before anything is changed or drawn.
  WalkFrame(GroupState& group, WalkHistory<Word>& history, const WalkRequest& request, Mover& mover)
      : group_(group),
        request_(request),
        mover_(mover),
        positions_(group.positions.begin(),
                   group.positions.begin() + static_cast<std::ptrdiff_t>(group.agents)),
        hasTarget_(request.untilReach > 0.0F),
        log_(group, history, request.steps, request.returnPath) {
    if (!hasTarget_) return;
    before_.resize(positions_.size());
    group.reached.prepare();
  }

  std::optional<VEQVertexPaths> run() {
    group_.work.begin(request_.steps);
    mover_.draw(request_.steps);
    std::exception_ptr failure;
    try {
      walk();
    } catch (const std::bad_alloc&) {
      failure = std::current_exception();
    }
    finish();
    if (failure) std::rethrow_exception(failure);
    if (!request_.returnPath) return std::nullopt;
    return log_.paths();
  }

 private:
  void walk() {
    const std::uint64_t longest = stepsPerTile(group_.agents);
    // A target may be met at once, so the first tiles are short.
    std::uint64_t tile = hasTarget_ ? 1 : longest;
    while (done_ < request_.steps) {
      const std::uint64_t wanted = std::min(tile, request_.steps - done_);
      const std::uint64_t steps = log_.roomFor(wanted);
      if (walkTile(steps)) return;
      if (!Mover::kCanRewind && hasTarget_) continue;
      tile = std::min(2 * tile, longest);
    }
  }

  // Answers whether the walk is over.
  bool walkTile(std::uint64_t steps) {
    Word* const moves = log_.next();
    if (hasTarget_) before_ = positions_;
    mover_.walk(positions_.data(), moves, steps);
    std::uint64_t taken = steps;
    bool met = false;
    if (hasTarget_) {
      taken = group_.reached.take(moves, group_.agents, steps,
                                  static_cast<double>(request_.untilReach), met);
      if (taken < steps) rewind(moves, taken);
    }
    complete(taken);
    log_.commit(taken);
    if (met) return true;
    // Where nobody moved nobody will ever move again.
    const std::uint64_t idle = request_.steps - done_;
    if (somebodyMoved(moves + (steps - 1) * group_.agents) || !mover_.skip(idle)) return false;
    if (hasTarget_) group_.reached.addSteps(idle);
    log_.commitIdle(idle);
    complete(idle);
    return true;
  }

  void complete(std::uint64_t steps) {
    done_ += steps;
    group_.work.reach(done_);
  }

  [[nodiscard]] bool somebodyMoved(const Word* moves) const {
    return std::any_of(moves, moves + group_.agents, [](Word to) { return to != kStayed<Word>; });
  }

  // Puts the agents to where they stood after the first steps of a tile.
  void rewind(const Word* moves, std::uint64_t steps) {
    positions_ = before_;
    for (std::uint64_t s = 0; s < steps; ++s, moves += group_.agents) {
      for (std::uint64_t a = 0; a < group_.agents; ++a) {
        if (moves[a] != kStayed<Word>) positions_[a] = moves[a];
      }
    }
  }

  void finish() noexcept {
    std::copy(positions_.begin(), positions_.end(), group_.positions.begin());
    log_.end();
    group_.work.end(request_.steps);
  }

  GroupState& group_;
  WalkRequest request_;
  Mover& mover_;
  std::vector<Word> positions_;
  std::vector<Word> before_;  // the positions at a tile's beginning
  bool hasTarget_;
  MoveLog<Word> log_;
  std::uint64_t done_ = 0;
};

/// Walks with the movers that `makeMover(topology, history)` makes for the network's lists and the
/// group's history in their widths.
template <class MakeMover>
std::optional<VEQVertexPaths> runWalk(GroupState& group, const WalkRequest& request,
                                      MakeMover makeMover) {
  const WalkUnderWay walk(group);
  requireAgentsWithin(group);
  const auto& store = CoreAccess::of(*group.network).store;
  return std::visit(
      [&]<class Word>(WalkHistory<Word>& history) {
        return store.visit([&](const auto& topology) {
          auto mover = makeMover(topology, history);
          return WalkFrame<Word, decltype(mover)>(group, history, request, mover).run();
        });
      },
      group.history);
}

}  // namespace veq::internal
