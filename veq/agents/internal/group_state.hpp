#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "veq/agents/agents_property_table.hpp"
#include "veq/agents/internal/reach_record.hpp"
#include "veq/agents/internal/walk_history.hpp"
#include "veq/agents/internal/work_control.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"

namespace veq::internal {

/// What a group consists of.
struct GroupState {
  using Positions = std::vector<std::uint64_t>;

  GroupState(Shared<const VEQNetwork> onNetwork, Positions initial)
      : network(std::move(onNetwork)),
        agents(initial.size()),
        positions(std::move(initial)),
        reached(network->countVertices()),
        history(network->countVertices(), agents, 0) {}

  /// The state of a new group; null without a network or where memory is lacking. `positions()`
  /// gives the start of each agent.
  template <class MakePositions>
  [[nodiscard]] static std::unique_ptr<GroupState> make(Shared<const VEQNetwork> network,
                                                        MakePositions positions) {
    if (!network) return nullptr;
    try {
      return std::make_unique<GroupState>(std::move(network), positions());
    } catch (const std::bad_alloc&) {
      return nullptr;
    }
  }

  const Shared<const VEQNetwork> network;
  const std::uint64_t agents;
  /// At least one for each agent.
  Positions positions;
  WorkControl work;
  ReachRecord reached;
  WalkHistory history;  // guarded by the lock of `work`
  Shared<AgentsPropertyTable> properties = std::make_shared<AgentsPropertyTable>();

  /// Folds some of the log if it has grown too long, about `moves` moves of it or all. The lock is
  /// given back between pieces, so that nobody who watches a walk waits for long. Memory that is
  /// lacking puts the folding off: the log keeps everything.
  void relieveLog(std::uint64_t moves) noexcept;
};

/// The vertices named by indices or handles.
[[nodiscard]] GroupState::Positions positionsOf(const VEQNumberArray& indices);
[[nodiscard]] GroupState::Positions positionsOf(const VEQVertexArray& vertices);

/// Throws std::out_of_range unless every agent stands within the network.
void requireAgentsWithin(const GroupState& group);

}  // namespace veq::internal
