#include "veq/agents/internal/walk_history.hpp"

#include <algorithm>
#include <memory>
#include <new>
#include <span>
#include <utility>

namespace veq::internal {
namespace {

constexpr std::uint64_t kLargestBlock = std::uint64_t{8} << 20;
// What the moves of some agents take while they are counted, agent by agent.
constexpr std::uint64_t kColumnsBytes = std::uint64_t{2} << 20;
constexpr std::uint64_t kAgentsAtOnce = 16;  // whose moves of one step fill a cache line
constexpr std::uint64_t kStepsAhead = 16;
// Columns lie a line and a word further apart, or all would fall on the same place in the cache.
constexpr std::uint64_t kBetweenColumns = 17;

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
    : vertices_(vertices), agents_(agents), limits_(limits), folder_(vertices, firstStamp) {}

// Tallies take two words for each vertex at most, and the arrays of an agent 16 bytes. An agent
// that is being treated may take as much as its arrays.
template <class Word>
std::uint64_t WalkHistory<Word>::leftByArrays(std::uint64_t agentsAtWork) const {
  const std::uint64_t agents = agents_ - live_.size();
  const std::uint64_t atRest = agents - std::min(agents, agentsAtWork);
  const std::uint64_t left = product(product(atRest, vertices_), 16 - 2 * sizeof(Word));
  return std::min(left, std::max(limits_.largeLog, compactBytes_));
}

template <class Word>
std::uint64_t WalkHistory<Word>::limitDuringWalk() const {
  const std::uint64_t tallies = product(product(agents_, vertices_), sizeof(Tally<Word>));
  return leftByArrays(1) + std::clamp(tallies, limits_.leastDuringWalk, limits_.mostDuringWalk);
}

template <class Word>
std::uint64_t WalkHistory<Word>::limitAfterWalk() const {
  return std::min(leftByArrays(0) + limits_.afterWalk, limitDuringWalk());
}

template <class Word>
std::uint64_t WalkHistory<Word>::stepsIn(std::uint64_t bytes) const {
  return std::max<std::uint64_t>(bytes / (agents_ * sizeof(Word)), 1);
}

template <class Word>
std::uint64_t WalkHistory<Word>::stepsPerRun() const {
  return stepsIn(std::min(kLargestBlock, limitDuringWalk()));
}

template <class Word>
MoveRoom<Word> WalkHistory<Word>::roomFor(std::uint64_t steps, bool forAll) {
  if (log_.size() == log_.capacity()) log_.reserve(2 * log_.size() + 8);
  if (room_.steps == 0 || (forAll && room_.steps < steps)) {
    // Short walks share a block, which is larger each time.
    const std::uint64_t before = block_ ? block_->size() / agents_ : 0;
    const std::uint64_t shared = std::min(2 * before, stepsIn(limitAfterWalk() / 4));
    const std::uint64_t own = forAll ? steps : std::min(steps, stepsPerRun());
    auto block = std::make_shared<Block<Word>>();
    block->resize(product(std::max(shared, own), agents_));
    block_ = std::move(block);
    room_ = {block_->data(), std::max(shared, own)};
  }
  return room_;
}

template <class Word>
void WalkHistory<Word>::append(std::uint64_t steps) noexcept {
  if (log_.empty() || log_.back().block != block_) blockBytes_ += block_->size() * sizeof(Word);
  log_.push_back({block_, room_.first, steps, walks_ + 1});
  logBytes_ += steps * agents_ * sizeof(Word) + sizeof(MoveRun<Word>);
  room_.first += steps * agents_;
  room_.steps -= steps;
  foldBeyond(limitDuringWalk(), logBytes_);
  // Unless paths are views of it, the block can be written again.
  if (log_.empty() && block_.use_count() == 1) room_ = {block_->data(), block_->size() / agents_};
}

template <class Word>
void WalkHistory<Word>::makeHistories() {
  if (!histories_.empty()) return;
  histories_.resize(agents_);
  for (auto& history : histories_) history.counted = logBegin_;
}

template <class Word>
void WalkHistory<Word>::makeArrays(std::uint64_t agent) {
  AgentHistory<Word>& history = histories_[agent];
  reserveOneMore(live_);
  const std::uint64_t compact = history.compactBytes();
  folder_.makeArrays(history);
  compactBytes_ -= compact;
  live_.push_back(agent);
}

// For an agent with arrays.
template <class Word>
void WalkHistory<Word>::bringUpToDate(std::uint64_t agent) noexcept {
  AgentHistory<Word>& history = histories_[agent];
  for (; history.counted < logEnd(); ++history.counted) {
    const MoveRun<Word>& run = log_[history.counted - logBegin_];
    folder_.addToArrays(history, run.first + agent, agents_, run.steps);
  }
}

template <class Word>
void WalkHistory<Word>::endWalk() noexcept {
  ++walks_;
  for (const std::uint64_t agent : live_) bringUpToDate(agent);
  if (totals_) {
    countArrivals();
    const auto totals = totals_->values<std::int64_t>();
    for (std::uint64_t v = 0; v < vertices_; ++v) {
      totals[v] =
          static_cast<std::int64_t>(static_cast<std::uint64_t>(totals[v]) + arrivals_[v].count);
    }
  }
  // Paths that nobody holds any longer must not live on in the log.
  foldBeyond(limitAfterWalk(), std::max(logBytes_, blockBytes_));
  if (log_.empty()) {
    block_ = nullptr;
    room_ = {};
  }
}

template <class Word>
void WalkHistory<Word>::foldBeyond(std::uint64_t limit, std::uint64_t bytes) noexcept {
  if (bytes <= limit) return;
  try {
    fold();
  } catch (const std::bad_alloc&) {
  }
}

template <class Word>
void WalkHistory<Word>::countArrivals() {
  if (arrivals_.empty()) arrivals_ = Block<Arrivals>(vertices_);
  Arrivals* const arrivals = arrivals_.data();
  for (; arrivalsCounted_ < logEnd(); ++arrivalsCounted_) {
    const MoveRun<Word>& run = log_[arrivalsCounted_ - logBegin_];
    const std::uint64_t walk = run.walk;
    const Word* const end = run.first + run.steps * agents_;
    for (const Word* to = run.first; to != end; ++to) {
      if (*to == kStayed<Word>) continue;
      ++arrivals[*to].count;
      arrivals[*to].walks += walk;
    }
  }
}

template <class Word>
Shared<const VEQNumberArray> WalkHistory<Word>::totals() {
  if (totals_) return totals_;
  Shared<VEQNumberArray> made = VEQNumberArray::initWithIntegerScalar_count(0, vertices_);
  countArrivals();
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
    // Who asks for two will ask for all, and each would have to be looked for in the whole log.
    if (!live_.empty() && logBytes_ > kLargestBlock) fold();
    makeArrays(agent);
    bringUpToDate(agent);
  }
  return *histories_[agent].arrays;
}

template <class Word>
std::vector<std::uint64_t> WalkHistory<Word>::visits() {
  std::vector<std::uint64_t> counts(vertices_);
  countArrivals();
  for (std::uint64_t v = 0; v < vertices_; ++v) counts[v] = arrivals_[v].count;
  return counts;
}

template <class Word>
std::vector<std::uint64_t> WalkHistory<Word>::visitsOf(std::uint64_t agent) {
  makeHistories();
  std::vector<std::uint64_t> counts(vertices_);
  const AgentHistory<Word>& history = histories_[agent];
  if (history.arrays) {
    std::copy_n(history.arrays->visitsData, vertices_, counts.begin());
  } else {
    if (logBytes_ > kLargestBlock) fold();
    history.forEachTally([&](std::uint64_t v, Word count, Word) { counts[v] = count; });
  }
  for (std::uint64_t r = history.counted; r < logEnd(); ++r) {
    const MoveRun<Word>& run = log_[r - logBegin_];
    const Word* to = run.first + agent;
    for (std::uint64_t s = 0; s < run.steps; ++s, to += agents_) {
      if (*to != kStayed<Word>) ++counts[*to];
    }
  }
  return counts;
}

template <class Word>
void WalkHistory<Word>::fold() {
  makeHistories();
  countArrivals();
  FoldingSpace<Word> space;
  for (std::uint64_t agent = 0; agent < agents_;) agent += foldFrom(agent, space);
  logBegin_ = logEnd();
  log_ = {};
  logBytes_ = 0;
  blockBytes_ = 0;
}

// Runs hold the moves of all agents side by side, so the next few agents are taken at once: as many
// as the columns have room for, with as many runs as they have room for then. Answers how many
// agents are done.
template <class Word>
std::uint64_t WalkHistory<Word>::foldFrom(std::uint64_t agent, FoldingSpace<Word>& space) {
  AgentHistory<Word>* const histories = histories_.data() + agent;
  if (histories->arrays) bringUpToDate(agent);
  const std::uint64_t begin = histories->counted;
  if (begin == logEnd()) return 1;

  constexpr std::uint64_t kRoom = kColumnsBytes / sizeof(Word);
  std::uint64_t steps = 0;
  std::uint64_t end = begin;
  do {
    steps += log_[end++ - logBegin_].steps;
  } while (end < logEnd() && steps + log_[end - logBegin_].steps <= kRoom);
  const std::uint64_t apart = steps + kBetweenColumns;
  const std::uint64_t most =
      std::min({std::max<std::uint64_t>(kRoom / apart, 1), kAgentsAtOnce, agents_ - agent});
  std::uint64_t width = 1;
  while (width < most && !histories[width].arrays && histories[width].counted == begin) ++width;
  if (space.columns.size() < width * apart) space.columns.resize(width * apart);

  Word* column = space.columns.data();
  for (std::uint64_t r = begin; r < end; ++r) {
    const MoveRun<Word>& run = log_[r - logBegin_];
    const Word* row = run.first + agent;
    for (std::uint64_t s = 0; s < run.steps; ++s, row += agents_, ++column) {
      prefetch(row + kStepsAhead * agents_);  // mostly in the same block
      for (std::uint64_t j = 0; j < width; ++j) column[j * apart] = row[j];
    }
  }
  for (std::uint64_t j = 0; j < width; ++j) {
    if (histories[j].arrivals + steps > kStayed<Word>) makeArrays(agent + j);
    const std::uint64_t compact = histories[j].compactBytes();
    const std::span<const Word> moves(space.columns.data() + j * apart, steps);
    folder_.add(histories[j], moves, space);
    compactBytes_ += histories[j].compactBytes() - compact;
    histories[j].counted = end;
  }
  return end == logEnd() ? width : 0;
}

template class WalkHistory<std::uint16_t>;
template class WalkHistory<std::uint32_t>;
template class WalkHistory<std::uint64_t>;

}  // namespace veq::internal
