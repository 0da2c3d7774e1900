#pragma once

#include <cstdint>
#include <vector>

#include "veq/agents/internal/agent_history.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// What may be set lower to test what happens beyond.
struct HistoryLimits {
  /// What the log takes at most, whatever tallies leave of the arrays.
  std::uint64_t log = UINT64_MAX;
  /// An agent with more arrivals has arrays.
  std::uint64_t arrivals = UINT32_MAX;
};

/// Moves of one walk, as they lie in a block: step by step, an entry for each agent.
template <class Word>
struct MoveRun {
  Shared<const Block<Word>> block;
  const Word* first;
  std::uint64_t steps;
  /// The walk's number, from 1, since the last flush.
  std::uint64_t walk;
};

/// Where the next steps can be written.
template <class Word>
struct MoveRoom {
  Word* first = nullptr;
  std::uint64_t steps = 0;
};

/// Behaves as if every agent had its two arrays, and the group its own two, from the beginning, in
/// two forms that take less: a log of moves, and tallies for each agent, which take half as much as
/// the arrays. The log may take the other half. A walk that has no room there is counted into the
/// tallies as it goes, a run at a time, while the processor's cache holds its moves. A Word holds
/// any vertex, and one value more. Not safe for several threads by itself; a team counts different
/// agents, or vertices, on each of its own.
template <class Word>
class WalkHistory {
 public:
  /// The first arrival of an agent is stamped `firstStamp`.
  WalkHistory(std::uint64_t vertices, std::uint64_t agents, std::uint64_t firstStamp,
              const HistoryLimits& limits = {});

  /// \name Recording
  /// @{
  /// Room for some of the next steps, of which at least `steps` will be made, or for all of these,
  /// until the next append(), which cannot fail then. For no step while earlier ones have to be
  /// counted first: each call counts some, so that nobody waits long. std::bad_alloc where there is
  /// none.
  [[nodiscard]] MoveRoom<Word> roomFor(std::uint64_t steps, bool forAll,
                                       Team& team = Team::alone());
  /// The block in which that lies.
  [[nodiscard]] Shared<const void> block() const { return block_; }
  /// Takes steps that have been written there.
  void append(std::uint64_t steps) noexcept;
  /// Brings all arrays that have been handed out up to date, and the group's totals by the whole of
  /// every agent's visits. O(n) while the totals are out. In haste, and where nobody has such
  /// arrays, what is not counted yet is left to the next walk or question.
  void endWalk(bool inHaste = false, Team& team = Team::alone()) noexcept;
  /// After how many steps append() is to be called.
  [[nodiscard]] std::uint64_t stepsPerRun() const;
  /// @}

  /// Counts all moves of the log and empties it. std::bad_alloc loses nothing.
  void fold(Team& team = Team::alone());

  /// \name The arrays, live
  /// The same objects at every call. std::bad_alloc where one cannot be made.
  /// @{
  [[nodiscard]] Shared<const VEQNumberArray> totals(Team& team = Team::alone());
  [[nodiscard]] Shared<const VEQNumberArray> zeros();
  [[nodiscard]] const AgentArrays& arraysOf(std::uint64_t agent);
  /// @}

  /// \name Copies
  /// How often each vertex was arrived at, by all agents or by one. During a walk as far as
  /// append() was told.
  /// @{
  [[nodiscard]] std::vector<std::uint64_t> visits(Team& team = Team::alone());
  [[nodiscard]] std::vector<std::uint64_t> visitsOf(std::uint64_t agent);
  /// @}

  [[nodiscard]] std::uint64_t logBytes() const { return logBytes_; }

 private:
  /// The group's arrivals at a vertex, and the sum of the numbers of the walks in which they came.
  struct Arrivals {
    std::uint64_t count;
    std::uint64_t walks;
  };

  [[nodiscard]] std::uint64_t stepsIn(std::uint64_t bytes) const;
  [[nodiscard]] std::uint64_t logLimit() const;
  [[nodiscard]] std::uint64_t logEnd() const { return logBegin_ + log_.size(); }
  void makeHistories();
  void makeArrays(std::uint64_t agent);
  void prepareToCount(std::uint64_t steps);
  void beginToCountLog(Team& team);
  [[nodiscard]] bool isBehind() const { return agentToCount_ < agents_; }
  void countSome(Team& team) noexcept;
  std::uint64_t countLines(Team& team, std::uint64_t most) noexcept;
  /// Whether there is more to count than it counts now.
  [[nodiscard]] bool staysBehind(Team& team) noexcept;
  void catchUp(Team& team) noexcept;
  void emptyLog() noexcept;
  std::uint64_t bringUpToDate(std::uint64_t first, std::uint64_t agents,
                              std::uint64_t moves) noexcept;
  void bringArraysUpToDate(Team& team) noexcept;
  void countArrivals(Team& team);
  std::uint64_t countArrivalsOfRun(Team& team) noexcept;
  void countArrivalsOfWalk(Team& team) noexcept;

  std::uint64_t vertices_;
  std::uint64_t agents_;
  std::uint64_t firstStamp_;
  HistoryLimits limits_;
  std::uint64_t walks_ = 0;

  std::vector<MoveRun<Word>> log_;
  std::uint64_t logBegin_ = 0;  // the number of the first run that is still there
  std::uint64_t logBytes_ = 0;  // of the blocks in which its moves lie
  Shared<Block<Word>> block_;   // the last
  MoveRoom<Word> room_;         // what is left of it
  bool isCounting_ = false;     // whether the walk under way is counted as it goes
  // While the log is being counted: the agents before have counted all of it.
  std::uint64_t agentToCount_ = UINT64_MAX;
  std::uint64_t stepsToCount_ = 0;  // all that were in the log then

  std::vector<AgentHistory> histories_;  // empty until the first question or folding
  std::vector<std::uint64_t> live_;      // the agents that have arrays

  Block<Arrivals> arrivals_;
  std::uint64_t arrivalsCounted_ = 0;  // up to this run
  std::uint64_t walkToCount_ = 0;      // a walk that only the agents' histories have counted, or 0
  Shared<VEQNumberArray> totals_;
  Shared<VEQNumberArray> zeros_;
};

extern template class WalkHistory<std::uint32_t>;
extern template class WalkHistory<std::uint64_t>;

}  // namespace veq::internal
