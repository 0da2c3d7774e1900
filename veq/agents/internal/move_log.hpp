#pragma once

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <stdexcept>

#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_history.hpp"
#include "veq/agents/vertex_paths.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Where a walk writes its moves, on their way into the history. Paths are views of the same block,
/// which then has room for all steps.
template <class Word>
class MoveLog {
 public:
  /// std::length_error or std::bad_alloc where paths of all steps cannot be had.
  /// All steps will be made unless the walk may end early.
  MoveLog(GroupState& group, WalkHistory<Word>& history, std::uint64_t steps, bool withPaths,
          bool mayEndEarly, Team& team)
      : group_(group),
        history_(history),
        stepsLeft_(steps),
        withPaths_(withPaths),
        mayEndEarly_(mayEndEarly),
        team_(team) {
    if (group.agents == 0) return;
    if (withPaths && steps > UINT64_MAX / group.agents) {
      throw std::length_error("The paths of a walk have less than 2^64 entries.");
    }
    if (steps != 0) makeReady();
    if (!withPaths || steps == 0) return;
    while (!isReady_) makeReady();
    keepBlock();
  }

  /// How many of the next steps have room, `wanted` at most, or none yet: then one asks again, and
  /// may stop in between. std::bad_alloc where there is none.
  [[nodiscard]] std::uint64_t roomFor(std::uint64_t wanted) {
    if (group_.agents == 0) return wanted;
    if (pending_ >= stepsPerRun_ || room_.steps == 0) publish();
    if (!isReady_) makeReady();
    return std::min(wanted, room_.steps);
  }
  /// Where the next step's moves are written, an entry for each agent, and after it the steps that
  /// follow it; null without agents.
  [[nodiscard]] Word* next() { return room_.first; }
  void commit(std::uint64_t steps) {
    if (group_.agents != 0) {
      room_.first += steps * group_.agents;
      room_.steps -= steps;
      pending_ += steps;
    }
    stepsLeft_ -= steps;
    stepsDone_ += steps;
  }
  /// Commits steps in which nobody moved, which only paths show.
  void commitIdle(std::uint64_t steps) {
    if (!withPaths_) {
      stepsDone_ += steps;
      return;
    }
    if (group_.agents != 0) std::fill_n(next(), steps * group_.agents, kStayed<Word>);
    commit(steps);
  }

  /// Hands over to the history what is left, and ends the walk there, in haste if it was stopped.
  void end(bool inHaste) noexcept {
    publish();
    const std::lock_guard guard(group_.historyLock);
    history_.endWalk(inHaste, team_);
  }

  /// The paths up to the last step committed, after end().
  [[nodiscard]] VEQVertexPaths paths() const { return pathsAt(paths_, firstOfPaths_); }
  /// The same where they were kept in a block of their own.
  [[nodiscard]] VEQVertexPaths pathsIn(const Shared<Block<Word>>& block) const {
    return pathsAt(block, block->data());
  }

 private:
  [[nodiscard]] VEQVertexPaths pathsAt(const Shared<const void>& block, const Word* first) const {
    return VEQVertexPaths(CoreAccess::of(*group_.network).vertices(), block, first, group_.agents,
                          stepsDone_);
  }
  void makeReady() {
    const std::lock_guard guard(group_.historyLock);
    stepsPerRun_ = history_.stepsPerRun();
    const std::uint64_t run = std::min(stepsLeft_, stepsPerRun_);
    room_ = history_.roomFor(mayEndEarly_ && !withPaths_ ? run : stepsLeft_, withPaths_, team_);
    isReady_ = room_.steps != 0;
  }
  void keepBlock() {
    const std::lock_guard guard(group_.historyLock);
    paths_ = history_.block();
    firstOfPaths_ = room_.first;
  }
  void publish() noexcept {
    if (pending_ == 0) return;
    const std::lock_guard guard(group_.historyLock);
    history_.append(pending_);
    pending_ = 0;
    isReady_ = false;
  }

  GroupState& group_;
  WalkHistory<Word>& history_;
  std::uint64_t stepsLeft_;
  std::uint64_t stepsDone_ = 0;
  bool withPaths_;
  bool mayEndEarly_;
  Team& team_;
  bool isReady_ = false;  // for the next steps and to be published
  std::uint64_t stepsPerRun_ = 1;
  MoveRoom<Word> room_;
  std::uint64_t pending_ = 0;  // steps that the history does not know yet
  Shared<const void> paths_;
  const Word* firstOfPaths_ = nullptr;
};

}  // namespace veq::internal
