#include "veq/agents/internal/walk_history.hpp"

#include <algorithm>
#include <span>
#include <utility>

namespace veq::internal {
namespace {

// Even where the arrays would take far more.
constexpr std::uint64_t kLargeLog = std::uint64_t{45} << 20;
constexpr std::uint64_t kLargestBlock = std::uint64_t{8} << 20;
// What the moves of some agents may take while they are sorted by agent.
constexpr std::uint64_t kColumnsBytes = std::uint64_t{16} << 20;

std::uint64_t timesUpTo(std::uint64_t limit, std::uint64_t a, std::uint64_t b) {
  return b != 0 && a > limit / b ? limit : std::min(limit, a * b);
}

}  // namespace

WalkHistory::WalkHistory(std::uint64_t vertices, std::uint64_t agents, std::uint64_t firstStamp,
                         const HistoryLimits& limits)
    : vertices_(vertices),
      agentCount_(agents),
      limits_(limits),
      agents_(agentsFor(vertices, firstStamp, limits)) {}

WalkHistory::AgentsOfAnyWidth WalkHistory::agentsFor(std::uint64_t vertices,
                                                     std::uint64_t firstStamp,
                                                     const HistoryLimits& limits) {
  if (vertices <= limits.word) {
    return Agents<std::uint32_t>{{vertices, firstStamp, limits.word}, {}, {}, {}};
  }
  return Agents<std::uint64_t>{{vertices, firstStamp, UINT64_MAX}, {}, {}, {}};
}

// While a folding is under way the log grows by half. Then log and compact histories together take
// no more than 16 bytes for each vertex that an agent has visited, beyond a constant, and never
// more than the arrays of all agents would.
std::uint64_t WalkHistory::logLimit() const {
  const std::uint64_t much = std::max(kLargeLog, compactBytes_ / 5);
  const std::uint64_t arrays = timesUpTo(UINT64_MAX / 8, agentCount_, vertices_);
  return std::max(limits_.smallLog, std::min(much, 5 * arrays));
}

std::uint64_t WalkHistory::bytesPerBlock() const { return std::min(kLargestBlock, logLimit() / 2); }

void WalkHistory::append(Shared<const MoveBlock> block) noexcept {
  logBytes_ += block->bytes();
  log_.push_back(std::move(block));
}

template <class Word>
void WalkHistory::makeAgents(Agents<Word>& agents) {
  if (!agents.all.empty()) return;
  agents.all.resize(agentCount_);
  for (auto& agent : agents.all) agent.folded = logBegin_;
}

template <class Word>
void WalkHistory::bringArraysUpToDate(Agents<Word>& agents, std::uint64_t agent) noexcept {
  AgentHistory<Word>& history = agents.all[agent];
  for (; history.folded < logEnd(); ++history.folded) {
    const MoveBlock& block = *log_[history.folded - logBegin_];
    block.visit([&](const auto* moves) {
      agents.folder.addToArrays(history, moves + agent, agentCount_, block.steps);
    });
  }
}

void WalkHistory::endWalk() noexcept {
  ++walks_;
  std::visit(
      [&](auto& agents) {
        for (const std::uint64_t agent : agents.live) bringArraysUpToDate(agents, agent);
      },
      agents_);
  if (!totals_) return;
  countUpTo(logEnd());
  const auto totals = totals_->values<std::int64_t>();
  for (std::uint64_t v = 0; v < vertices_; ++v) {
    totals[v] =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(totals[v]) + arrivals_[v].count);
  }
}

void WalkHistory::countUpTo(std::uint64_t blockNumber) {
  if (arrivals_.empty()) arrivals_ = Block<Arrivals>(vertices_);
  for (; counted_ < blockNumber; ++counted_) {
    const MoveBlock& block = *log_[counted_ - logBegin_];
    block.visit([&]<class Index>(const Index* moves) {
      for (std::uint64_t i = 0; i < block.steps * agentCount_; ++i) {
        if (moves[i] == kStayed<Index>) continue;
        Arrivals& at = arrivals_[moves[i]];
        ++at.count;
        at.walks += block.walk;
      }
    });
  }
}

Shared<const VEQNumberArray> WalkHistory::totals() {
  if (totals_) return totals_;
  Shared<VEQNumberArray> made = VEQNumberArray::initWithIntegerScalar_count(0, vertices_);
  countUpTo(logEnd());
  const auto totals = made->values<std::int64_t>();
  // An arrival in walk k was there at the end of K + 1 - k of the K walks.
  for (std::uint64_t v = 0; v < vertices_; ++v) {
    totals[v] = static_cast<std::int64_t>((walks_ + 1) * arrivals_[v].count - arrivals_[v].walks);
  }
  return totals_ = std::move(made);
}

Shared<const VEQNumberArray> WalkHistory::zeros() {
  if (!zeros_) zeros_ = VEQNumberArray::initWithIntegerScalar_count(0, vertices_);
  return zeros_;
}

const AgentArrays& WalkHistory::arraysOf(std::uint64_t agent) {
  return std::visit(
      [&](auto& agents) -> const AgentArrays& {
        makeAgents(agents);
        auto& history = agents.all[agent];
        if (!history.live) {
          reserveOneMore(agents.live);
          const std::uint64_t compact = history.compactBytes();
          agents.folder.makeArrays(history);
          compactBytes_ -= compact;
          agents.live.push_back(agent);
          history.live = true;
          bringArraysUpToDate(agents, agent);
        }
        return *history.arrays();
      },
      agents_);
}

std::uint64_t WalkHistory::foldSome() {
  if (!folding_) {
    if (log_.empty()) return 0;
    std::visit([&](auto& agents) { makeAgents(agents); }, agents_);
    folding_ = true;
    foldEnd_ = logEnd();
    nextToFold_ = 0;
  }
  if (counted_ < foldEnd_) {
    const std::uint64_t moves = agentCount_ * log_[counted_ - logBegin_]->steps;
    countUpTo(counted_ + 1);
    return std::max<std::uint64_t>(moves, 1);
  }
  if (nextToFold_ < agentCount_) {
    return std::visit([&](auto& agents) { return foldAgents(agents); }, agents_);
  }
  dropFolded();
  return 0;
}

// Blocks hold the moves of all agents side by side, so the next few agents are taken at once: of
// as many as fit into the room for columns, but of one at least, the moves are sorted by agent and
// added.
template <class Word>
std::uint64_t WalkHistory::foldAgents(Agents<Word>& agents) {
  const std::span<const Shared<const MoveBlock>> blocks(log_.data(), foldEnd_ - logBegin_);
  std::uint64_t steps = 0;
  for (const auto& block : blocks) steps += block->steps;
  const std::uint64_t width =
      std::clamp<std::uint64_t>(kColumnsBytes / sizeof(Word) / std::max<std::uint64_t>(steps, 1), 1,
                                std::min(kAgentsAtOnce, agentCount_ - nextToFold_));
  if (agents.columns.size() < width * steps) agents.columns = Block<Word>(width * steps);

  std::array<Word*, kAgentsAtOnce> ends;
  for (std::uint64_t j = 0; j < width; ++j) ends[j] = agents.columns.data() + j * steps;
  for (const auto& block : blocks) {
    block->visit([&]<class Index>(const Index* moves) {
      const Index* row = moves + nextToFold_;
      for (std::uint64_t s = 0; s < block->steps; ++s, row += agentCount_) {
        for (std::uint64_t j = 0; j < width; ++j) {
          *ends[j] = static_cast<Word>(row[j]);
          ends[j] += row[j] != kStayed<Index>;
        }
      }
    });
  }
  for (std::uint64_t j = 0; j < width; ++j, ++nextToFold_) {
    AgentHistory<Word>& agent = agents.all[nextToFold_];
    if (agent.live) {
      bringArraysUpToDate(agents, nextToFold_);
      continue;
    }
    const std::uint64_t compact = agent.compactBytes();
    agents.folder.add(agent, {agents.columns.data() + j * steps, ends[j]});
    compactBytes_ += agent.compactBytes() - compact;
    agent.folded = foldEnd_;
  }
  return std::max<std::uint64_t>(width * steps, 1);
}

void WalkHistory::dropFolded() noexcept {
  const auto end = log_.begin() + static_cast<std::ptrdiff_t>(foldEnd_ - logBegin_);
  for (auto block = log_.begin(); block != end; ++block) logBytes_ -= (*block)->bytes();
  log_.erase(log_.begin(), end);
  logBegin_ = foldEnd_;
  folding_ = false;
}

}  // namespace veq::internal
