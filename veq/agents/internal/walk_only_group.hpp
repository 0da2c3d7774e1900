/// \file
/// Agents on a walk-only network, of whose moves only totals are kept.
#pragma once

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/plain_mover.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/agents/internal/walk_frame.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/tiled_work.hpp"
#include "veq/natural/internal/walk_rows.hpp"
#include "veq/natural/walk_network.hpp"

namespace veq::internal {

struct WalkOnlyGroup : AgentsState {
  WalkOnlyGroup(WalkNetwork onNetwork, Positions initial)
      : AgentsState(onNetwork.countVertices(), std::move(initial)), network(std::move(onNetwork)) {}

  const WalkNetwork network;
  /// How often all agents arrived at each vertex; empty until somebody walks. Guarded by the lock.
  Block<std::uint64_t> arrivals;

  [[nodiscard]] std::vector<std::uint64_t> visits() const {
    const std::lock_guard guard(historyLock);
    std::vector<std::uint64_t> counts(network.countVertices());
    std::copy_n(arrivals.data(), arrivals.size(), counts.data());
    return counts;
  }
  bool forget() {
    const std::lock_guard guard(historyLock);
    if (walksUnderWay != 0) return false;
    reached.clear();
    arrivals = {};
    return true;
  }
};

/// Counts the moves of each tile and forgets them.
class ArrivalCounter {
 public:
  using Word = std::uint32_t;

  /// With room for so many steps at once.
  ArrivalCounter(WalkOnlyGroup& group, std::uint64_t steps, Team& team)
      : group_(group), team_(team), room_(steps) {
    moves_.resize(steps * group.agents);
    const std::lock_guard guard(group.historyLock);
    if (group.arrivals.empty()) {
      group.arrivals = Block<std::uint64_t>(group.network.countVertices());
    }
  }

  [[nodiscard]] std::uint64_t roomFor(std::uint64_t wanted) const {
    return std::min(wanted, room_);
  }
  [[nodiscard]] Word* next() { return moves_.data(); }
  void commitIdle(std::uint64_t /*steps*/) {}
  void end(bool /*inHaste*/) noexcept {}

  /// Each thread counts the arrivals at some of the vertices.
  void commit(std::uint64_t steps) {
    const std::uint64_t moves = steps * group_.agents;
    const std::lock_guard guard(group_.historyLock);
    forEachShare(group_.network.countVertices(), moves, team_,
                 [&](std::uint64_t begin, std::uint64_t some) {
                   count({moves_.data(), moves_.data() + moves}, static_cast<Word>(begin),
                         static_cast<Word>(some));
                 });
  }

 private:
  // So many that what was fetched ahead for them is still in the cache when it is used.
  static constexpr std::size_t kArrivalsAtOnce = 128;

  void count(std::span<const Word> moves, Word begin, Word some) {
    std::uint64_t* const arrivals = group_.arrivals.data();
    Word batch[kArrivalsAtOnce];
    for (std::size_t next = 0; next < moves.size();) {
      const std::size_t end = std::min(moves.size(), next + kArrivalsAtOnce);
      std::size_t count = 0;
      for (; next < end; ++next) {
        batch[count] = moves[next];
        // Where an agent stayed is no vertex.
        count += static_cast<Word>(moves[next] - begin) < some;
      }
      for (std::size_t i = 0; i < count; ++i) prefetchForWriting(arrivals + batch[i]);
      for (std::size_t i = 0; i < count; ++i) ++arrivals[batch[i]];
    }
  }

  WalkOnlyGroup& group_;
  Team& team_;
  std::uint64_t room_;
  Block<Word> moves_;
};

/// The walk of such agents, by a choice that needs no weights.
template <class Choice>
WalkResult walkOnRows(WalkOnlyGroup& group, const WalkRequest& request, Choice choice) {
  using Word = ArrivalCounter::Word;
  using Mover = PlainMover<std::uint32_t, Word, Choice>;
  const WalkUnderWay walk(group);
  Team team(threadsWorthSharing(group, request));
  Mover mover(WalkRowsAccess::of(group.network), group.agents, request.steps, choice,
              request.restarts, team);
  const std::uint64_t tile = stepsPerMeeting(group.agents, team, Mover::kMeetings);
  ArrivalCounter log(group, std::min(tile, request.steps), team);
  return WalkFrame<Word, Mover, ArrivalCounter>(group, log, request, mover, team).run();
}

}  // namespace veq::internal
