#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <variant>
#include <vector>

#include "veq/agents/internal/move_block.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// The two arrays of one agent, as they are handed out: its visits of each vertex, and its count of
/// arrivals when it last arrived there.
struct AgentArrays {
  explicit AgentArrays(std::uint64_t vertices)
      : visits(VEQNumberArray::initWithIntegerScalar_count(0, vertices)),
        order(VEQNumberArray::initWithIntegerScalar_count(0, vertices)),
        visitsData(visits->values<std::int64_t>().data()),
        orderData(order->values<std::int64_t>().data()) {}

  void add(std::uint64_t vertex, std::uint64_t count, std::uint64_t stamp) {
    visitsData[vertex] =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(visitsData[vertex]) + count);
    orderData[vertex] = static_cast<std::int64_t>(stamp);
  }

  Shared<VEQNumberArray> visits;
  Shared<VEQNumberArray> order;
  std::int64_t* visitsData;
  std::int64_t* orderData;
};

/// What an agent has done at one vertex.
template <class Word>
struct Tally {
  Word count;
  Word stamp;
};
template <class Word>
struct VertexTally {
  Word vertex;
  Tally<Word> tally;
};

/// One agent's visits in the least memory: a tally for each vertex visited, in no order; once more
/// than two thirds of the vertices are visited, a tally for each vertex there is; and arrays from
/// when somebody asks for them, or when the number of arrivals no longer fits into a word.
template <class Word>
struct AgentHistory {
  using Pairs = Block<VertexTally<Word>>;
  using Dense = Block<Tally<Word>>;

  /// How often the agent has arrived, as far as the log has been folded in.
  std::uint64_t arrivals = 0;
  /// The number of the first block of the log that has not been folded in.
  std::uint64_t folded = 0;
  std::variant<Pairs, Dense, std::unique_ptr<AgentArrays>> form;
  /// Whether somebody has asked for the arrays.
  bool live = false;

  [[nodiscard]] AgentArrays* arrays() const {
    const auto* arrays = std::get_if<std::unique_ptr<AgentArrays>>(&form);
    return arrays ? arrays->get() : nullptr;
  }
  /// What the form takes while it is not arrays.
  [[nodiscard]] std::uint64_t compactBytes() const {
    if (const auto* pairs = std::get_if<Pairs>(&form))
      return pairs->size() * sizeof(*pairs->data());
    if (const auto* dense = std::get_if<Dense>(&form))
      return dense->size() * sizeof(*dense->data());
    return 0;
  }
};

/// Folds moves into the histories of agents, one agent at a time, with memory that all share.
template <class Word>
class HistoryFolder {
 public:
  /// The first arrival is stamped `firstStamp`, with wrap-around.
  HistoryFolder(std::uint64_t vertices, std::uint64_t firstStamp, std::uint64_t wordLimit)
      : vertices_(vertices), firstStamp_(firstStamp), wordLimit_(wordLimit) {}

  /// Adds arrivals in their order. std::bad_alloc leaves the history as it was.
  void add(AgentHistory<Word>& agent, std::span<const Word> arrivals) {
    if (agent.arrivals + arrivals.size() > wordLimit_) makeArrays(agent);
    if (AgentArrays* arrays = agent.arrays()) {
      for (const Word vertex : arrivals) arrays->add(vertex, 1, firstStamp_ + agent.arrivals++);
    } else if (auto* dense = std::get_if<typename AgentHistory<Word>::Dense>(&agent.form)) {
      addToDense(agent, dense->data(), arrivals);
    } else {
      addToPairs(agent, arrivals);
    }
  }

  /// Adds the moves of one agent to its arrays, straight from a block.
  template <class Index>
  void addToArrays(AgentHistory<Word>& agent, const Index* moves, std::uint64_t stride,
                   std::uint64_t steps) noexcept {
    AgentArrays& arrays = *agent.arrays();
    for (std::uint64_t s = 0; s < steps; ++s) {
      const Index vertex = moves[s * stride];
      if (vertex != kStayed<Index>) arrays.add(vertex, 1, firstStamp_ + agent.arrivals++);
    }
  }

  /// Gives the agent arrays, if it has none. std::bad_alloc leaves the history as it was.
  void makeArrays(AgentHistory<Word>& agent) {
    if (agent.arrays()) return;
    auto arrays = std::make_unique<AgentArrays>(vertices_);
    if (const auto* pairs = std::get_if<typename AgentHistory<Word>::Pairs>(&agent.form)) {
      for (std::uint64_t i = 0; i < pairs->size(); ++i) {
        const auto& [vertex, tally] = (*pairs)[i];
        arrays->add(vertex, tally.count, widened(tally.stamp));
      }
    } else {
      const auto& dense = std::get<typename AgentHistory<Word>::Dense>(agent.form);
      for (std::uint64_t v = 0; v < dense.size(); ++v) {
        if (dense[v].count != 0) arrays->add(v, dense[v].count, widened(dense[v].stamp));
      }
    }
    agent.form = std::move(arrays);
  }

 private:
  // A stamp is kept as the number of arrivals before it, which fits into a word.
  [[nodiscard]] std::uint64_t widened(Word stamp) const { return firstStamp_ + stamp; }

  void addToDense(AgentHistory<Word>& agent, Tally<Word>* dense, std::span<const Word> arrivals) {
    Word stamp = static_cast<Word>(agent.arrivals);
    for (const Word vertex : arrivals) {
      Tally<Word>& tally = dense[vertex];
      tally = {static_cast<Word>(tally.count + 1), stamp++};
    }
    agent.arrivals += arrivals.size();
  }

  void addToPairs(AgentHistory<Word>& agent, std::span<const Word> arrivals) {
    using Pairs = typename AgentHistory<Word>::Pairs;
    using Dense = typename AgentHistory<Word>::Dense;
    const Pairs& pairs = std::get<Pairs>(agent.form);
    if (slots_.empty()) slots_ = Block<Word>(vertices_);
    list_.clear();
    list_.reserve(pairs.size() + std::min<std::uint64_t>(arrivals.size(), vertices_));
    for (std::uint64_t i = 0; i < pairs.size(); ++i) {
      list_.push_back(pairs[i]);
      slots_[pairs[i].vertex] = static_cast<Word>(i + 1);
    }
    Word stamp = static_cast<Word>(agent.arrivals);
    for (const Word vertex : arrivals) {
      Word& slot = slots_[vertex];
      if (slot == 0) {
        list_.push_back({vertex, {0, 0}});
        slot = static_cast<Word>(list_.size());
      }
      Tally<Word>& tally = list_[slot - 1].tally;
      tally = {static_cast<Word>(tally.count + 1), stamp++};
    }
    for (const auto& pair : list_) slots_[pair.vertex] = 0;

    if (list_.size() > vertices_ / 3 * 2) {
      Dense dense(vertices_);
      for (const auto& pair : list_) dense[pair.vertex] = pair.tally;
      agent.form = std::move(dense);
    } else {
      Pairs grown;
      grown.resize(list_.size());
      std::copy(list_.begin(), list_.end(), grown.data());
      agent.form = std::move(grown);
    }
    agent.arrivals += arrivals.size();
  }

  std::uint64_t vertices_;
  std::uint64_t firstStamp_;
  std::uint64_t wordLimit_;
  Block<Word> slots_;                    // for each vertex its place in the list plus 1, or 0
  std::vector<VertexTally<Word>> list_;  // the agent's pairs while they grow
};

}  // namespace veq::internal
