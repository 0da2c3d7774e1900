#pragma once

#include <cstdint>
#include <vector>

#include "veq/agents/internal/agent_history.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// What may be set lower to test what happens beyond.
struct HistoryLimits {
  /// What a log may take during a walk and after it, beyond what the arrays leave: as much as the
  /// tallies might, but neither more nor less than this.
  std::uint64_t leastDuringWalk = std::uint64_t{1} << 20;
  std::uint64_t mostDuringWalk = std::uint64_t{12} << 20;
  std::uint64_t afterWalk = std::uint64_t{512} << 10;
  /// What it takes of what the arrays leave while the tallies are not larger. Moves that lead to
  /// new vertices take less than tallies of these.
  std::uint64_t largeLog = std::uint64_t{192} << 20;
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
/// two forms that take less: a log of moves and tallies for each agent. The moves are counted into
/// the tallies before the log outgrows what the arrays of all agents would leave it, in so few
/// pieces that looking at the tallies again costs little. A Word holds any vertex, and 2^32 - 1 or
/// 2^64 - 1 more. Not safe for several threads by itself.
template <class Word>
class WalkHistory {
 public:
  /// The first arrival of an agent is stamped `firstStamp`.
  WalkHistory(std::uint64_t vertices, std::uint64_t agents, std::uint64_t firstStamp,
              const HistoryLimits& limits = {});

  /// \name Recording
  /// @{
  /// Room for some of the steps, or for all, until the next append(), which cannot fail then.
  /// std::bad_alloc where there is none.
  [[nodiscard]] MoveRoom<Word> roomFor(std::uint64_t steps, bool forAll);
  /// The block in which that lies.
  [[nodiscard]] Shared<const void> block() const { return block_; }
  /// Takes steps into the log that have been written there, and folds it if it has grown too long.
  /// Lacking memory puts that off: the log keeps everything.
  void append(std::uint64_t steps) noexcept;
  /// Brings all arrays that have been handed out up to date, and the group's totals by the whole of
  /// every agent's visits. O(n) while the totals are out.
  void endWalk() noexcept;
  /// How many steps the log is to be told of at a time.
  [[nodiscard]] std::uint64_t stepsPerRun() const;
  /// @}

  /// Counts all moves of the log and empties it. std::bad_alloc loses nothing.
  void fold();

  /// \name The arrays, live
  /// The same objects at every call. std::bad_alloc where one cannot be made.
  /// @{
  [[nodiscard]] Shared<const VEQNumberArray> totals();
  [[nodiscard]] Shared<const VEQNumberArray> zeros();
  [[nodiscard]] const AgentArrays& arraysOf(std::uint64_t agent);
  /// @}

  /// \name Copies
  /// How often each vertex was arrived at, by all agents or by one. During a walk as far as the log
  /// has been told.
  /// @{
  [[nodiscard]] std::vector<std::uint64_t> visits();
  [[nodiscard]] std::vector<std::uint64_t> visitsOf(std::uint64_t agent);
  /// @}

  [[nodiscard]] std::uint64_t logBytes() const { return logBytes_; }
  [[nodiscard]] std::uint64_t compactBytes() const { return compactBytes_; }

 private:
  /// The group's arrivals at a vertex, and the sum of the numbers of the walks in which they came.
  struct Arrivals {
    std::uint64_t count;
    std::uint64_t walks;
  };

  [[nodiscard]] std::uint64_t leftByArrays(std::uint64_t agentsAtWork) const;
  [[nodiscard]] std::uint64_t limitDuringWalk() const;
  [[nodiscard]] std::uint64_t limitAfterWalk() const;
  [[nodiscard]] std::uint64_t stepsIn(std::uint64_t bytes) const;
  [[nodiscard]] std::uint64_t logEnd() const { return logBegin_ + log_.size(); }
  void makeHistories();
  void makeArrays(std::uint64_t agent);
  void bringUpToDate(std::uint64_t agent) noexcept;
  std::uint64_t foldFrom(std::uint64_t agent, FoldingSpace<Word>& space);
  void foldBeyond(std::uint64_t limit, std::uint64_t bytes) noexcept;
  void countArrivals();

  std::uint64_t vertices_;
  std::uint64_t agents_;
  HistoryLimits limits_;
  std::uint64_t walks_ = 0;

  std::vector<MoveRun<Word>> log_;
  std::uint64_t logBegin_ = 0;    // the number of the first run that is still there
  std::uint64_t logBytes_ = 0;    // of its moves
  std::uint64_t blockBytes_ = 0;  // of the blocks in which they lie
  Shared<Block<Word>> block_;     // the last
  MoveRoom<Word> room_;           // what is left of it

  std::vector<AgentHistory<Word>> histories_;  // empty until the first question or folding
  std::vector<std::uint64_t> live_;            // the agents that have arrays
  std::uint64_t compactBytes_ = 0;
  HistoryFolder<Word> folder_;

  Block<Arrivals> arrivals_;
  std::uint64_t arrivalsCounted_ = 0;  // up to this run
  Shared<VEQNumberArray> totals_;
  Shared<VEQNumberArray> zeros_;
};

extern template class WalkHistory<std::uint16_t>;  // whose words tests can outgrow
extern template class WalkHistory<std::uint32_t>;
extern template class WalkHistory<std::uint64_t>;

}  // namespace veq::internal
