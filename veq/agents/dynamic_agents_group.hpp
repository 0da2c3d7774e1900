/// \file
/// A group of agents that remember where they have been.
#pragma once

#include <memory>
#include <optional>

#include "veq/agents/agents_group.hpp"
#include "veq/base/export.hpp"

namespace veq {

namespace internal {
struct DynamicState;
struct GroupAccess;
}  // namespace internal

/// Agents that avoid the vertices in their memory. A memory is a ring: every visit takes the next
/// slot and with it the place of the oldest entry. In a step an agent chooses, as in a plain group,
/// among the entries of its vertex's out-list that it does not remember, or among all where it
/// remembers them all. The start vertex is not remembered.
///
/// With its error probability an agent remembers a vertex drawn from the whole network instead of
/// the one it reached; that changes neither where it stands nor the history.
///
/// In an agents network vertex i stands for agent i. After every step each agent passes on the
/// first entry of its memory, from where it stopped, that some agent in its vertex's out-list
/// lacks, to all of those that lack it; it goes no further than its own latest visit, which it
/// offers again.
///
/// Everything else is as in a plain group. The literature on such walks names them self-avoiding
/// walks of finite memory.
/// \ingroup walks
class VEQ_EXPORT VEQNetworkDynamicAgentsGroup final : public VEQNetworkAgentsGroup {
 public:
  /// \name Construction
  /// One agent for each index or handle. An agents network with fewer vertices than there are
  /// agents is ignored; one that is kept multiplies each ring by the agent's out-degree in it plus
  /// 1, as of now, and is read as it is during walks. Errors and memory sizes beyond the agents are
  /// ignored. Null without a network, for fewer errors or memory sizes than agents, for a memory
  /// size of 0, and where memory cannot hold the rings. O(agents + rings).
  /// @{
  [[nodiscard]] static Owned<VEQNetworkDynamicAgentsGroup>
  initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
      Shared<const VEQNetwork> network, const VEQNumberArray& indices,
      Shared<const VEQNetwork> agentsNetwork, const VEQNumberArray& errors,
      const VEQNumberArray& memorySizes);
  [[nodiscard]] static Owned<VEQNetworkDynamicAgentsGroup>
  initAtNetwork_initialVertices_agentsNetwork_agentsErrors_agentsMemory(
      Shared<const VEQNetwork> network, const VEQVertexArray& vertices,
      Shared<const VEQNetwork> agentsNetwork, const VEQNumberArray& errors,
      const VEQNumberArray& memorySizes);
  /// Without memories there is no such group.
  static Owned<VEQNetworkAgentsGroup> initAtNetwork_initialVerticesIndices(
      Shared<const VEQNetwork>, const VEQNumberArray&) = delete;
  static Owned<VEQNetworkAgentsGroup> initAtNetwork_initialVertices(Shared<const VEQNetwork>,
                                                                    const VEQVertexArray&) = delete;
  /// @}
  ~VEQNetworkDynamicAgentsGroup() override;

  /// Takes three requests of numbers from the shared generator, one after the other: for the
  /// choices, the errors and the wrong vertices, each with number countAgents x s + a for agent a
  /// in step s. O(degree) for each move, and O(links) for each step of an agents network.
  std::optional<VEQVertexPaths> walkForSteps_returnPath_untilReach(std::uint64_t steps,
                                                                   bool returnPath,
                                                                   float untilReach) override;

  /// The agents keep their memories.
  bool flushWalkHistory() override;

 private:
  friend struct internal::GroupAccess;

  template <class Places>
  static Owned<VEQNetworkDynamicAgentsGroup> make(Shared<const VEQNetwork> network,
                                                  const Places& places,
                                                  Shared<const VEQNetwork> agentsNetwork,
                                                  const VEQNumberArray& errors,
                                                  const VEQNumberArray& memorySizes);
  VEQNetworkDynamicAgentsGroup(std::unique_ptr<internal::GroupState> state,
                               std::unique_ptr<internal::DynamicState> dynamicState);

  std::unique_ptr<internal::DynamicState> dynamicState_;
};

}  // namespace veq
