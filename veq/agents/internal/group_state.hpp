#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <variant>
#include <vector>

#include "veq/agents/agents_group.hpp"
#include "veq/agents/agents_property_table.hpp"
#include "veq/agents/internal/reach_record.hpp"
#include "veq/agents/internal/walk_history.hpp"
#include "veq/agents/internal/work_control.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"

namespace veq::internal {

/// In words that hold the vertices of the network, whatever it takes to hold its edges.
using GroupHistory = std::variant<WalkHistory<std::uint32_t>, WalkHistory<std::uint64_t>>;

/// Agents of whatever network, and what walks of theirs tell.
struct AgentsState {
  using Positions = std::vector<std::uint64_t>;

  AgentsState(std::uint64_t vertices, Positions initial)
      : agents(initial.size()),
        positions(std::make_shared<Positions>(std::move(initial))),
        reached(vertices) {}

  const std::uint64_t agents;
  /// At least one for each agent. Walkers keep a share of what is to be led back to.
  Shared<Positions> positions;
  /// To be written to. std::bad_alloc where others keep them and there is no room for a copy.
  [[nodiscard]] Positions& ownPositions() {
    if (positions.use_count() > 1) positions = std::make_shared<Positions>(*positions);
    return *positions;
  }
  WorkControl work;
  ReachRecord reached;
  /// Held while moves are counted, which may take long: nobody who watches a walk waits for it.
  mutable std::mutex historyLock;
  std::uint64_t walksUnderWay = 0;  // guarded by the lock; until then the history is not forgotten
};

struct GroupState : AgentsState {
  GroupState(Shared<const VEQNetwork> onNetwork, Positions initial)
      : AgentsState(onNetwork->countVertices(), std::move(initial)),
        network(std::move(onNetwork)),
        history(makeHistory(network->countVertices() > UINT32_MAX, 0)) {}

  /// A history of nothing, whose first arrivals are stamped `firstStamp`.
  [[nodiscard]] GroupHistory makeHistory(bool wide, std::uint64_t firstStamp) const {
    const std::uint64_t vertices = network->countVertices();
    if (wide) return WalkHistory<std::uint64_t>(vertices, agents, firstStamp);
    return WalkHistory<std::uint32_t>(vertices, agents, firstStamp);
  }

  const Shared<const VEQNetwork> network;
  GroupHistory history;  // guarded by the lock
  Shared<AgentsPropertyTable> properties = std::make_shared<AgentsPropertyTable>();
};

struct DynamicState;

/// The library's own way into a group.
struct GroupAccess {
  [[nodiscard]] static GroupState& of(const VEQNetworkAgentsGroup& group) { return *group.state_; }
  /// Null without a network or where memory is lacking.
  template <class Places>
  [[nodiscard]] static Owned<VEQNetworkAgentsGroup> make(Shared<const VEQNetwork> network,
                                                         const Places& places);
  /// Null for agents without memory.
  [[nodiscard]] static DynamicState* memoriesOf(const VEQNetworkAgentsGroup& group);
};

/// Keeps the history from being forgotten as long as a walk needs it.
class WalkUnderWay {
 public:
  explicit WalkUnderWay(AgentsState& group) : group_(group) { count(1); }
  ~WalkUnderWay() { count(UINT64_MAX); }
  WalkUnderWay(const WalkUnderWay&) = delete;
  WalkUnderWay& operator=(const WalkUnderWay&) = delete;

 private:
  void count(std::uint64_t more) {
    const std::lock_guard guard(group_.historyLock);
    group_.walksUnderWay += more;
  }
  AgentsState& group_;
};

/// The vertices named by indices or handles.
[[nodiscard]] GroupState::Positions positionsOf(const VEQNumberArray& indices);
[[nodiscard]] GroupState::Positions positionsOf(const VEQVertexArray& vertices);

/// Throws std::out_of_range unless every agent stands within the network.
void requireAgentsWithin(const GroupState& group);

}  // namespace veq::internal
