#include "veq/agents/internal/walk_history.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <utility>

#include "veq/base/internal/tiled_work.hpp"

namespace veq::internal {
namespace {

constexpr std::uint64_t kLargestBlock = std::uint64_t{8} << 20;
constexpr std::uint64_t kSmallestLog = std::uint64_t{512} << 10;
// What the moves of a run take: so little that they are near when they are counted, but not less
// than the tallies which have to be fetched for that.
constexpr std::uint64_t kSmallestRun = std::uint64_t{1} << 20;
// So many steps of the agents in a line of the cache are still near when all of these were counted.
constexpr std::uint64_t kStepsAtOnce = 512;
// A move waits longer for where it is counted than one among many agents takes.
constexpr std::uint64_t kWorkOfCounting = 2;

std::uint64_t product(std::uint64_t a, std::uint64_t b) {
  return b != 0 && a > UINT64_MAX / b ? UINT64_MAX : a * b;
}

template <class T>
void reserveOneMore(std::vector<T>& vector) {
  if (vector.size() == vector.capacity()) vector.reserve(2 * vector.size() + 8);
}

}  // namespace

template <class Word>
WalkHistory<Word>::WalkHistory(std::uint64_t vertices, std::uint64_t agents,
                               std::uint64_t firstStamp, const HistoryLimits& limits)
    : vertices_(vertices), agents_(agents), firstStamp_(firstStamp), limits_(limits) {}

template <class Word>
std::uint64_t WalkHistory<Word>::stepsIn(std::uint64_t bytes) const {
  return std::max<std::uint64_t>(bytes / product(agents_, sizeof(Word)), 1);
}

template <class Word>
std::uint64_t WalkHistory<Word>::stepsPerRun() const {
  const std::uint64_t tallies = product(product(agents_, vertices_), sizeof(Tally));
  return stepsIn(std::clamp(product(2, tallies), kSmallestRun, kLargestBlock));
}

// The arrays of an agent take 16 bytes for each vertex. Those of small groups on small networks
// take so little that the log would be counted all the time.
template <class Word>
std::uint64_t WalkHistory<Word>::logLimit() const {
  const std::uint64_t left =
      product(product(agents_ - live_.size(), vertices_), 16 - sizeof(Tally));
  return std::min(limits_.log, std::max(left, left + kSmallestLog));
}

template <class Word>
MoveRoom<Word> WalkHistory<Word>::roomFor(std::uint64_t steps, bool forAll, Team& team) {
  if (staysBehind(team)) return {};
  reserveOneMore(log_);
  const std::uint64_t limit = logLimit();
  const std::uint64_t stepsLeft = (limit - std::min(limit, logBytes_)) / (agents_ * sizeof(Word));
  if (!isCounting_ && room_.steps < steps && (forAll ? steps : steps - room_.steps) > stepsLeft) {
    beginToCountLog(team);
    isCounting_ = true;
    if (staysBehind(team)) return {};
  }
  // Twice as many, for runs of paths end with the first tile beyond.
  if (isCounting_) prepareToCount(2 * stepsPerRun());
  if (room_.steps == 0 || (forAll && room_.steps < steps)) {
    std::uint64_t size = isCounting_ ? stepsPerRun() : stepsIn(kLargestBlock);
    size = forAll ? steps : std::min(size, steps);
    if (block_ && !isCounting_) {
      // Short walks share a block, which is larger each time.
      const std::uint64_t more = std::min(2 * block_->size() / agents_, stepsIn(limit / 4));
      size = std::max(size, std::min(more, stepsLeft));
    }
    auto block = std::make_shared<Block<Word>>();
    block->resize(product(size, agents_));
    block_ = std::move(block);
    room_ = {block_->data(), size};
  }
  return room_;
}

template <class Word>
void WalkHistory<Word>::append(std::uint64_t steps) noexcept {
  // Before anybody's arrays get ahead of it.
  if (walkToCount_ != walks_ + 1) countArrivalsOfWalk(Team::alone());
  if (log_.empty() || log_.back().block != block_) logBytes_ += block_->size() * sizeof(Word);
  log_.push_back({block_, room_.first, steps, walks_ + 1});
  room_.first += steps * agents_;
  room_.steps -= steps;
  if (!isCounting_) return;
  arrivalsCounted_ = logEnd();
  walkToCount_ = walks_ + 1;
  stepsToCount_ = steps;
  agentToCount_ = 0;
}

template <class Word>
void WalkHistory<Word>::makeHistories() {
  if (!histories_.empty()) return;
  histories_.resize(agents_);
  for (auto& history : histories_) history.counted = logBegin_;
}

template <class Word>
void WalkHistory<Word>::makeArrays(std::uint64_t agent) {
  reserveOneMore(live_);
  histories_[agent].makeArrays(vertices_, firstStamp_);
  live_.push_back(agent);
}

// So that countLog() cannot fail where the log has so many steps.
template <class Word>
void WalkHistory<Word>::prepareToCount(std::uint64_t steps) {
  makeHistories();
  if (arrivals_.empty()) arrivals_ = Block<Arrivals>(vertices_);
  for (std::uint64_t agent = 0; agent < agents_; ++agent) {
    AgentHistory& history = histories_[agent];
    if (history.arrays) continue;
    if (history.arrivals + steps > limits_.arrivals) {
      makeArrays(agent);
    } else if (history.tallies.empty()) {
      history.tallies = Block<Tally>(vertices_);
    }
  }
}

template <class Word>
void WalkHistory<Word>::fold(Team& team) {
  beginToCountLog(team);
  catchUp(team);
}

template <class Word>
void WalkHistory<Word>::beginToCountLog(Team& team) {
  catchUp(team);
  if (log_.empty()) return;
  std::uint64_t steps = 0;
  for (const MoveRun<Word>& run : log_) steps += run.steps;
  prepareToCount(steps);
  countArrivalsOfWalk(team);
  stepsToCount_ = steps;
  agentToCount_ = 0;
}

template <class Word>
bool WalkHistory<Word>::staysBehind(Team& team) noexcept {
  if (isBehind()) countSome(team);
  return isBehind();
}

template <class Word>
void WalkHistory<Word>::catchUp(Team& team) noexcept {
  while (isBehind()) countSome(team);
}

// Into the group's arrivals, and then into the histories of some agents after those of others.
// Where moves are an agent's first on a large network most of them wait for a page, so that few are
// enough.
template <class Word>
void WalkHistory<Word>::countSome(Team& team) noexcept {
  std::uint64_t moves = 0;
  while (arrivalsCounted_ < logEnd()) {
    moves += countArrivalsOfRun(team);
    if (moves >= kMovesPerTile) return;
  }
  while (isBehind()) {
    moves += countLines(team, kMovesPerTile - moves);
    if (moves >= kMovesPerTile) return;
  }
  emptyLog();
}

// Those of the next agents, a line of the cache or as many lines as keep all threads busy, and up
// to so many moves of each. Answers how many that were.
template <class Word>
std::uint64_t WalkHistory<Word>::countLines(Team& team, std::uint64_t most) noexcept {
  std::array<std::uint64_t, 16> done;
  const std::uint64_t left =
      (agents_ - agentToCount_ + kAgentsPerLine<Word> - 1) / kAgentsPerLine<Word>;
  const std::uint64_t lines = team.threads() == 1 ? 1 : std::min<std::uint64_t>(left, done.size());
  const auto agentsOf = [this](std::uint64_t first) {
    return std::min(kAgentsPerLine<Word>, agents_ - first);
  };
  const std::uint64_t moves = std::min(product(stepsToCount_, kAgentsPerLine<Word>), most);
  team.forEachPiece(lines, kWorkOfCounting * lines * moves, [&](std::uint64_t line) {
    const std::uint64_t first = agentToCount_ + line * kAgentsPerLine<Word>;
    done[line] = bringUpToDate(first, agentsOf(first), most);
  });
  std::uint64_t all = 0;
  bool isComplete = true;
  for (std::uint64_t line = 0; line < lines; ++line) {
    all += done[line];
    isComplete = isComplete && done[line] < most;
    if (isComplete) agentToCount_ += agentsOf(agentToCount_);
  }
  return all;
}

template <class Word>
void WalkHistory<Word>::emptyLog() noexcept {
  agentToCount_ = UINT64_MAX;
  logBegin_ = logEnd();
  log_.clear();
  logBytes_ = 0;
  // Unless paths are views of it, the block can be written again.
  if (block_.use_count() == 1) room_ = {block_->data(), block_->size() / agents_};
}

// Agents are counted in turns of some steps, for their moves of these lie in the same lines of the
// cache, and so do the tallies of one of them in a turn. Answers how many moves have been counted:
// all of the log unless there are so many.
template <class Word>
std::uint64_t WalkHistory<Word>::bringUpToDate(std::uint64_t first, std::uint64_t agents,
                                               std::uint64_t moves) noexcept {
  const std::span<AgentHistory> histories(histories_.data() + first, agents);
  std::uint64_t number = logEnd();
  for (const AgentHistory& history : histories) number = std::min(number, history.counted);
  std::uint64_t done = 0;
  for (; number < logEnd() && done < moves; ++number) {
    const MoveRun<Word>& run = log_[number - logBegin_];
    for (std::uint64_t step = 0; step < run.steps; step += kStepsAtOnce) {
      const std::uint64_t steps = std::min(kStepsAtOnce, run.steps - step);
      const Word* move = run.first + step * agents_ + first;
      for (AgentHistory& history : histories) {
        if (history.counted <= number) history.count(move, agents_, steps, firstStamp_);
        ++move;
      }
    }
    for (AgentHistory& history : histories) {
      history.counted = std::max(history.counted, number + 1);
    }
    done += run.steps * agents;
  }
  return done;
}

template <class Word>
void WalkHistory<Word>::endWalk(bool inHaste, Team& team) noexcept {
  if (!inHaste || totals_ || !live_.empty()) catchUp(team);
  ++walks_;
  isCounting_ = false;
  bringArraysUpToDate(team);
  if (totals_) {
    countArrivals(team);
    const auto totals = totals_->values<std::int64_t>();
    for (std::uint64_t v = 0; v < vertices_; ++v) {
      totals[v] =
          static_cast<std::int64_t>(static_cast<std::uint64_t>(totals[v]) + arrivals_[v].count);
    }
  }
  if (log_.empty()) {
    log_ = {};
    block_ = nullptr;
    room_ = {};
  }
}

template <class Word>
void WalkHistory<Word>::bringArraysUpToDate(Team& team) noexcept {
  if (live_.empty()) return;
  std::uint64_t steps = 0;
  for (std::uint64_t r = histories_[live_[0]].counted; r < logEnd(); ++r) {
    steps += log_[r - logBegin_].steps;
  }
  team.forEachPiece(live_.size(), kWorkOfCounting * steps * live_.size(),
                    [this](std::uint64_t i) { bringUpToDate(live_[i], 1, UINT64_MAX); });
}

template <class Word>
void WalkHistory<Word>::countArrivals(Team& team) {
  if (arrivals_.empty()) arrivals_ = Block<Arrivals>(vertices_);
  catchUp(team);
  countArrivalsOfWalk(team);
  while (arrivalsCounted_ < logEnd()) countArrivalsOfRun(team);
}

// Answers how many moves that were. Each thread counts those to some of the vertices.
template <class Word>
std::uint64_t WalkHistory<Word>::countArrivalsOfRun(Team& team) noexcept {
  const MoveRun<Word>& run = log_[arrivalsCounted_++ - logBegin_];
  const std::uint64_t moves = run.steps * agents_;
  const std::uint64_t work = kWorkOfCounting * moves;
  forEachShare(vertices_, work, team, [&](std::uint64_t first, std::uint64_t some) {
    Arrivals* const arrivals = arrivals_.data();
    const std::uint64_t walk = run.walk;
    const auto begin = static_cast<Word>(first);
    const auto count = static_cast<Word>(some);
    for (const Word* to = run.first; to != run.first + moves; ++to) {
      if (static_cast<Word>(*to - begin) >= count) continue;  // so it is where an agent stayed, too
      ++arrivals[*to].count;
      arrivals[*to].walks += walk;
    }
  });
  return moves;
}

// What the agents' histories have counted beyond the group's came in one walk, and all of what they
// have counted is in both then.
template <class Word>
void WalkHistory<Word>::countArrivalsOfWalk(Team& team) noexcept {
  if (walkToCount_ == 0) return;
  const std::uint64_t pieces = team.threads() == 1 ? 1 : 4 * std::uint64_t{team.threads()};
  const std::uint64_t some = vertices_ / pieces + 1;
  team.forEachPiece(pieces, product(agents_, vertices_), [&](std::uint64_t piece) {
    const std::uint64_t begin = std::min(piece * some, vertices_);
    const std::uint64_t end = std::min(begin + some, vertices_);
    for (std::uint64_t v = begin; v < end; ++v) {
      arrivals_[v].walks -= walkToCount_ * std::exchange(arrivals_[v].count, 0);
    }
    for (const AgentHistory& history : histories_) {
      history.forEachVisits(begin, end,
                            [this](std::uint64_t v, std::uint64_t n) { arrivals_[v].count += n; });
    }
    for (std::uint64_t v = begin; v < end; ++v) {
      arrivals_[v].walks += walkToCount_ * arrivals_[v].count;
    }
  });
  walkToCount_ = 0;
}

template <class Word>
Shared<const VEQNumberArray> WalkHistory<Word>::totals(Team& team) {
  if (totals_) return totals_;
  Shared<VEQNumberArray> made = VEQNumberArray::initWithIntegerScalar_count(0, vertices_);
  countArrivals(team);
  const auto totals = made->values<std::int64_t>();
  // An arrival in walk k was there at the end of K + 1 - k of the K walks.
  for (std::uint64_t v = 0; v < vertices_; ++v) {
    totals[v] = static_cast<std::int64_t>((walks_ + 1) * arrivals_[v].count - arrivals_[v].walks);
  }
  return totals_ = std::move(made);
}

template <class Word>
Shared<const VEQNumberArray> WalkHistory<Word>::zeros() {
  if (!zeros_) zeros_ = VEQNumberArray::initWithIntegerScalar_count(0, vertices_);
  return zeros_;
}

template <class Word>
const AgentArrays& WalkHistory<Word>::arraysOf(std::uint64_t agent) {
  makeHistories();
  if (!histories_[agent].arrays) {
    makeArrays(agent);
    bringUpToDate(agent, 1, UINT64_MAX);
  }
  return *histories_[agent].arrays;
}

template <class Word>
std::vector<std::uint64_t> WalkHistory<Word>::visits(Team& team) {
  std::vector<std::uint64_t> counts(vertices_);
  countArrivals(team);
  for (std::uint64_t v = 0; v < vertices_; ++v) counts[v] = arrivals_[v].count;
  return counts;
}

template <class Word>
std::vector<std::uint64_t> WalkHistory<Word>::visitsOf(std::uint64_t agent) {
  makeHistories();
  std::vector<std::uint64_t> counts(vertices_);
  const AgentHistory& history = histories_[agent];
  history.forEachVisits(0, vertices_, [&](std::uint64_t v, std::uint64_t n) { counts[v] = n; });
  for (std::uint64_t r = history.counted; r < logEnd(); ++r) {
    const MoveRun<Word>& run = log_[r - logBegin_];
    const Word* to = run.first + agent;
    for (std::uint64_t s = 0; s < run.steps; ++s, to += agents_) {
      if (*to != kStayed<Word>) ++counts[*to];
    }
  }
  return counts;
}

template class WalkHistory<std::uint32_t>;
template class WalkHistory<std::uint64_t>;

}  // namespace veq::internal
