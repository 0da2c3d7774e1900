#pragma once

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

#include "veq/agents/internal/agent_history.hpp"
#include "veq/agents/internal/move_block.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// What may be set lower to test what happens beyond.
struct HistoryLimits {
  /// Up to this number of vertices, and of arrivals of an agent, 32 bits are enough.
  std::uint64_t word = UINT32_MAX;
  /// A log of this size costs less than folding it often, however small the network is.
  std::uint64_t smallLog = std::uint64_t{16} << 20;
};

/// Behaves as if every agent had its two arrays, and the group its own two, from the beginning, at
/// the cost of a log of moves. The log is folded into an agent's arrays when somebody asks for
/// them, and, before it outgrows what they would take, into the compact histories of all agents,
/// piece by piece. Not safe for several threads by itself.
class WalkHistory {
 public:
  /// The first arrival of an agent is stamped `firstStamp`.
  WalkHistory(std::uint64_t vertices, std::uint64_t agents, std::uint64_t firstStamp,
              const HistoryLimits& limits = {});

  /// \name Recording
  /// @{
  /// The number of the walk that runs or comes next, from 1.
  [[nodiscard]] std::uint64_t currentWalk() const { return walks_ + 1; }
  /// Makes room, so that the next append() cannot fail.
  void reserve() { reserveOneMore(log_); }
  void append(Shared<const MoveBlock> block) noexcept;
  /// Brings all arrays that have been handed out up to date, and the group's totals by the whole of
  /// every agent's visits. O(n) while the totals are out.
  void endWalk() noexcept;
  /// How large a block of the log should be at most.
  [[nodiscard]] std::uint64_t bytesPerBlock() const;
  /// @}

  /// \name Folding the log
  /// @{
  [[nodiscard]] bool shouldFold() const { return folding_ || logBytes_ > logLimit(); }
  /// Does a small part of folding the whole log, and answers the number of moves that it treated:
  /// 0 once all is done. std::bad_alloc loses nothing.
  std::uint64_t foldSome();
  /// @}

  /// \name The arrays, live
  /// The same objects at every call. std::bad_alloc where one cannot be made.
  /// @{
  [[nodiscard]] Shared<const VEQNumberArray> totals();
  [[nodiscard]] Shared<const VEQNumberArray> zeros();
  [[nodiscard]] const AgentArrays& arraysOf(std::uint64_t agent);
  /// @}

  [[nodiscard]] std::uint64_t logBytes() const { return logBytes_; }
  [[nodiscard]] std::uint64_t compactBytes() const { return compactBytes_; }

 private:
  static constexpr std::uint64_t kAgentsAtOnce = 16;  // whose moves of one step fill a cache line

  /// The group's arrivals at a vertex, and the sum of the numbers of the walks in which they came.
  struct Arrivals {
    std::uint64_t count;
    std::uint64_t walks;
  };
  template <class Word>
  struct Agents {
    HistoryFolder<Word> folder;
    std::vector<AgentHistory<Word>> all;  // empty until the first question or folding
    std::vector<std::uint64_t> live;      // those whose arrays are out
    Block<Word> columns;                  // moves of some agents, agent by agent
  };

  template <class T>
  static void reserveOneMore(std::vector<T>& vector) {
    if (vector.size() == vector.capacity()) vector.reserve(2 * vector.size() + 8);
  }
  using AgentsOfAnyWidth = std::variant<Agents<std::uint32_t>, Agents<std::uint64_t>>;
  static AgentsOfAnyWidth agentsFor(std::uint64_t vertices, std::uint64_t firstStamp,
                                    const HistoryLimits& limits);

  [[nodiscard]] std::uint64_t logLimit() const;
  [[nodiscard]] std::uint64_t logEnd() const { return logBegin_ + log_.size(); }
  template <class Word>
  void makeAgents(Agents<Word>& agents);
  template <class Word>
  void bringArraysUpToDate(Agents<Word>& agents, std::uint64_t agent) noexcept;
  template <class Word>
  std::uint64_t foldAgents(Agents<Word>& agents);
  void countUpTo(std::uint64_t blockNumber);
  void dropFolded() noexcept;

  std::uint64_t vertices_;
  std::uint64_t agentCount_;
  HistoryLimits limits_;
  std::uint64_t walks_ = 0;

  std::vector<Shared<const MoveBlock>> log_;
  std::uint64_t logBegin_ = 0;  // the number of the first block that is still there
  std::uint64_t logBytes_ = 0;
  std::uint64_t compactBytes_ = 0;

  bool folding_ = false;
  std::uint64_t foldEnd_ = 0;     // the block up to which the folding under way goes
  std::uint64_t nextToFold_ = 0;  // its next agent

  Block<Arrivals> arrivals_;  // as of block counted_
  std::uint64_t counted_ = 0;
  Shared<VEQNumberArray> totals_;
  Shared<VEQNumberArray> zeros_;
  AgentsOfAnyWidth agents_;
};

}  // namespace veq::internal
