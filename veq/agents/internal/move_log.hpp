#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <variant>

#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/move_block.hpp"
#include "veq/agents/vertex_paths.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Where a walk writes its moves, on their way into the history: blocks of some steps, or one block
/// of all steps, which the paths are then views of. Others see a block when it is complete.
template <class Index>
class MoveLog {
 public:
  /// std::length_error or std::bad_alloc where paths of all steps cannot be had.
  MoveLog(GroupState& group, std::uint64_t steps, bool withPaths)
      : group_(group), stepsLeft_(steps), withPaths_(withPaths) {
    if (withPaths && group.agents != 0 && steps > UINT64_MAX / group.agents) {
      throw std::length_error("The paths of a walk have less than 2^64 entries.");
    }
    if (withPaths && steps != 0 && group.agents != 0) begin(steps);
  }

  /// How many of the next steps have room, one at least, and `wanted` at most. std::bad_alloc where
  /// there is none.
  [[nodiscard]] std::uint64_t roomFor(std::uint64_t wanted) {
    if (group_.agents == 0) return wanted;
    if (block_ && block_->steps == room_) publish();
    if (!block_) {
      const std::uint64_t bytesPerStep = group_.agents * sizeof(Index);
      begin(std::clamp<std::uint64_t>(blockBytes() / bytesPerStep, 1, stepsLeft_));
    }
    return std::min(wanted, room_ - block_->steps);
  }
  /// Where the next step's moves are written, an entry for each agent, and after it the steps that
  /// follow it; null without agents.
  [[nodiscard]] Index* next() { return block_ ? moves() + block_->steps * group_.agents : nullptr; }
  void commit(std::uint64_t steps) {
    if (block_) block_->steps += steps;
    stepsLeft_ -= steps;
    stepsDone_ += steps;
  }
  /// Commits steps in which nobody moved, which only paths show.
  void commitIdle(std::uint64_t steps) {
    if (withPaths_ && block_) {
      std::fill_n(next(), steps * group_.agents, kStayed<Index>);
      block_->steps += steps;
    }
    stepsDone_ += steps;
  }

  /// Hands over to the history what has been committed.
  void publish() noexcept {
    if (!block_) return;
    if (block_->steps < room_) shrink();
    const std::lock_guard guard(group_.work.lock());
    block_->walk = group_.history.currentWalk();
    if (withPaths_) paths_ = block_;
    if (block_->steps != 0) group_.history.append(std::move(block_));
    block_ = nullptr;
  }

  /// The paths up to the last step committed, after publish().
  [[nodiscard]] VEQVertexPaths paths() const {
    const Index* first = paths_ ? std::get<Block<Index>>(paths_->moves).data() : nullptr;
    return VEQVertexPaths(CoreAccess::of(*group_.network).vertices(), paths_, first, group_.agents,
                          stepsDone_);
  }

 private:
  [[nodiscard]] Index* moves() { return std::get<Block<Index>>(block_->moves).data(); }
  [[nodiscard]] std::uint64_t blockBytes() const {
    const std::lock_guard guard(group_.work.lock());
    return group_.history.bytesPerBlock();
  }
  void begin(std::uint64_t steps) {
    auto block = std::make_shared<MoveBlock>();
    Block<Index> entries;
    entries.resize(steps * group_.agents);
    block->moves = std::move(entries);
    {
      const std::lock_guard guard(group_.work.lock());
      group_.history.reserve();
    }
    block_ = std::move(block);
    room_ = steps;
  }

  // Gives back the room of steps that never came, if that is possible.
  void shrink() noexcept {
    try {
      std::get<Block<Index>>(block_->moves).resize(block_->steps * group_.agents);
    } catch (const std::bad_alloc&) {
    }
  }

  GroupState& group_;
  std::uint64_t stepsLeft_;
  std::uint64_t stepsDone_ = 0;
  bool withPaths_;
  Shared<MoveBlock> block_;
  std::uint64_t room_ = 0;  // in steps
  Shared<const MoveBlock> paths_;
};

}  // namespace veq::internal
