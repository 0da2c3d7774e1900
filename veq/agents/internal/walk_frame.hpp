#pragma once

#include <algorithm>
#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <type_traits>
#include <variant>
#include <vector>

#include "veq/agents/internal/arrival_record.hpp"
#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/move_log.hpp"
#include "veq/agents/internal/moves_of_steps.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_draws.hpp"
#include "veq/agents/internal/walk_history.hpp"
#include "veq/agents/vertex_paths.hpp"
#include "veq/agents/walk_outcome.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/uint128.hpp"
#include "veq/base/progress.hpp"
#include "veq/models/internal/random_source.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

struct WalkRequest {
  /// At most.
  std::uint64_t steps = 0;
  bool returnPath = false;
  /// None for 0 or less.
  double untilReach = 0.0;
  RandomSource source{nullptr};
  Restarts restarts;
  /// Whether the walk goes on without a number of steps, and takes the draws of those that it made.
  bool endless = false;
  /// To be followed and stopped by, and to be told of first arrivals, where somebody wants that.
  const Progress* progress = nullptr;
  ArrivalRecord* arrivals = nullptr;
  unsigned threads = 1;
};

struct WalkResult {
  std::optional<VEQVertexPaths> paths;
  std::uint64_t steps = 0;
  WalkEnd end = WalkEnd::kSteps;
};

/// All of a walk except the moves: its beginning and end, progress, reach target, history and
/// paths. The moves are a Mover's:
///   static constexpr bool kCanRewind: whether the last steps can be taken back by putting the
///     agents back to where they stood;
///   static constexpr Meetings kMeetings: how long its moves take;
///   draw(source, steps, endless): takes its numbers; must not fail;
///   purposes(): how many numbers it takes for each agent and step;
///   walk(Word* positions, Word* moves, steps): moves all agents by some steps, and writes for each
///   step where each agent arrived, or kStayed; bool skip(steps): if it can, brings itself at once
///   to where so many further steps would bring
///     it in which nobody moves, as nobody did in the last one; must not fail.
/// Where they are written is a Log's, as MoveLog is one; paths are asked of no other.
template <class Word, class Mover, class Log = MoveLog<Word>>
class WalkFrame {
 public:
  /// Throws before anything is changed or drawn.
  WalkFrame(AgentsState& group, Log& log, const WalkRequest& request, Mover& mover, Team& team)
      : group_(group),
        request_(request),
        mover_(mover),
        longestTile_(stepsPerMeeting(group.agents, team, Mover::kMeetings)),
        positions_(group.ownPositions().begin(),
                   group.ownPositions().begin() + static_cast<std::ptrdiff_t>(group.agents)),
        hasTarget_(request.untilReach > 0.0),
        log_(log) {
    if (hasTarget_ || request.arrivals) newMoves_.emplace(group.agents, longestTile_, team);
    if (request.returnPath && request.endless) grown_ = std::make_shared<Block<Word>>();
    if (!hasTarget_) return;
    before_.resize(positions_.size());
    group.reached.prepare();
  }

  WalkResult run() {
    group_.work.begin(request_.endless ? 0 : request_.steps);
    mover_.draw(request_.source, request_.steps, request_.endless);
    std::exception_ptr failure;
    try {
      walk();
    } catch (const ObserverThrew& observer) {
      failure = observer.thrown;
    } catch (...) {
      failure = std::current_exception();
    }
    finish(failure || end_ == WalkEnd::kStopped);
    if (failure) std::rethrow_exception(failure);
    WalkResult result{std::nullopt, done_, end_};
    if constexpr (std::is_same_v<Log, MoveLog<Word>>) {
      if (request_.returnPath) result.paths = grown_ ? log_.pathsIn(grown_) : log_.paths();
    }
    return result;
  }

 private:
  void walk() {
    std::optional<Pace> pace;
    if (request_.progress) pace.emplace(*request_.progress, request_.endless ? 0 : request_.steps);
    // A target may be met at once, so the first tiles are short.
    std::uint64_t tile = hasTarget_ ? 1 : longestTile_;
    while (done_ < request_.steps) {
      if (pace && pace->shallStop(done_)) {
        end_ = WalkEnd::kStopped;
        return;
      }
      const std::uint64_t wanted = std::min(tile, request_.steps - done_);
      const std::uint64_t steps = log_.roomFor(wanted);
      if (steps == 0) continue;
      if (walkTile(steps)) return;
      if (!Mover::kCanRewind && hasTarget_) continue;
      tile = std::min(2 * tile, longestTile_);
    }
  }

  // Answers whether the walk is over.
  bool walkTile(std::uint64_t steps) {
    Word* const moves = log_.next();
    if (grown_) grown_->reserve((done_ + steps) * group_.agents);
    if (hasTarget_) before_ = positions_;
    mover_.walk(positions_.data(), moves, steps);
    std::uint64_t taken = steps;
    bool met = false;
    const MovesOfSteps<Word> all{moves, group_.agents};
    if (hasTarget_) {
      ReachRecord& reached = group_.reached;
      newMoves_->give(all, steps, reached, [&](const auto& movesOf) {
        taken = reached.take(movesOf, steps, request_.untilReach, met);
      });
      if (taken < steps) rewind(moves, taken);
    }
    if (ArrivalRecord* const arrivals = request_.arrivals) {
      newMoves_->give(all, taken, *arrivals,
                      [&](const auto& movesOf) { arrivals->take(movesOf, taken, done_ + 1); });
    }
    if (grown_) {
      std::copy_n(moves, taken * group_.agents, grown_->data() + done_ * group_.agents);
    }
    complete(taken);
    log_.commit(taken);
    if (met) {
      end_ = WalkEnd::kTarget;
      return true;
    }
    // Where nobody moved nobody will ever move again.
    const std::uint64_t idle = request_.endless ? 0 : request_.steps - done_;
    if (somebodyMoved(moves + (steps - 1) * group_.agents) || !mover_.skip(idle)) return false;
    if (request_.endless) end_ = WalkEnd::kStuck;
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

  void finish(bool inHaste) noexcept {
    std::copy(positions_.begin(), positions_.end(), group_.positions->begin());
    log_.end(inHaste);
    if (request_.endless) {
      (void)request_.source.take(Uint128{mover_.purposes() * group_.agents} * done_);
    }
    group_.work.end(request_.endless ? done_ : request_.steps);
  }

  AgentsState& group_;
  WalkRequest request_;
  Mover& mover_;
  std::uint64_t longestTile_;
  std::vector<Word> positions_;
  std::vector<Word> before_;  // the positions at a tile's beginning
  bool hasTarget_;
  Log& log_;
  std::optional<NewMoves<Word>> newMoves_;  // where a record takes them
  /// The paths of a walk without a number of steps.
  Shared<Block<Word>> grown_;
  std::uint64_t done_ = 0;
  WalkEnd end_ = WalkEnd::kSteps;
};

/// How many threads a walk is worth.
[[nodiscard]] inline unsigned threadsWorthSharing(const AgentsState& group,
                                                  const WalkRequest& request) {
  const bool isLarge = group.agents > kAgentsPerLine<std::uint32_t> &&
                       request.steps >= Team::worthSharing / group.agents;
  return isLarge ? request.threads : 1;
}

/// Walks with the movers that `makeMover(topology, history, team)` makes for the network's lists
/// and the group's history in their widths.
template <class MakeMover>
WalkResult runWalk(GroupState& group, const WalkRequest& request, MakeMover makeMover) {
  const WalkUnderWay walk(group);
  requireAgentsWithin(group);
  const auto& store = CoreAccess::of(*group.network).store;
  Team team(threadsWorthSharing(group, request));
  return std::visit(
      [&]<class Word>(WalkHistory<Word>& history) {
        return store.visit([&](const auto& topology) {
          auto mover = makeMover(topology, history, team);
          MoveLog<Word> log(group, history, request.steps, request.returnPath && !request.endless,
                            request.untilReach > 0.0 || request.endless, team);
          return WalkFrame<Word, decltype(mover)>(group, log, request, mover, team).run();
        });
      },
      group.history);
}

}  // namespace veq::internal
