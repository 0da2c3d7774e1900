/// \file
/// A group of agents that walk at random over a network.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "veq/agents/agents_property_table.hpp"
#include "veq/agents/vertex_paths.hpp"
#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq {

namespace internal {
struct GroupState;
struct GroupAccess;
}  // namespace internal

/// A fixed number of agents, each standing on a vertex of one network, which the group keeps alive.
///
/// A walk moves every agent in every step along one entry of its vertex's out-list, the entry
/// numbered round((k - 1) x) of k, where x is the shared random generator's next number. So the
/// first and the last entry of a list are chosen about half as often as each other entry. An agent
/// on a vertex without out-list stays where it is. Edge weights play no part.
///
/// Threads: one thread walks. Any others may meanwhile call what stands under "Progress and
/// control", walkCount() and reachedWalkPercentage(), ask for the arrays of the history, whose
/// elements are to be read when no walk runs, and try to flush it, which is refused from before the
/// first step until the walk has returned. Everything else is for times when no walk runs, when any
/// number of threads may ask and none may change. The network must not be edited during a walk; any
/// number of groups may walk on it at once.
/// \ingroup walks
class VEQ_EXPORT VEQNetworkAgentsGroup {
 public:
  /// \name Construction
  /// One agent for each index or handle. Null without a network or where memory is lacking. Whether
  /// the vertices are the network's is not checked before a walk begins.
  /// @{
  [[nodiscard]] static Owned<VEQNetworkAgentsGroup> initAtNetwork_initialVerticesIndices(
      Shared<const VEQNetwork> network, const VEQNumberArray& indices);
  [[nodiscard]] static Owned<VEQNetworkAgentsGroup> initAtNetwork_initialVertices(
      Shared<const VEQNetwork> network, const VEQVertexArray& vertices);
  /// @}

  /// Cancels the work first.
  virtual ~VEQNetworkAgentsGroup();
  VEQNetworkAgentsGroup(const VEQNetworkAgentsGroup&) = delete;
  VEQNetworkAgentsGroup& operator=(const VEQNetworkAgentsGroup&) = delete;

  /// \name Placement
  /// @{
  /// The number of agents, which never changes.
  [[nodiscard]] std::int64_t countAgents() const;
  /// The vertex of each agent; std::out_of_range where one stands outside the network.
  [[nodiscard]] VEQVertexArray agentsCurrentVerticesList() const;
  /// std::out_of_range where there is no such agent or it stands outside the network.
  [[nodiscard]] Shared<VEQVertex> currentVertexOfAgent(std::uint64_t agent) const;
  /// Place every agent. The list may be longer than the group; all of it is kept. One that is
  /// shorter throws std::invalid_argument, "New current vertices list shall be a array of vertices
  /// with at least the size of the number of agents.", and moves nobody.
  /// @{
  void setAgentsCurrentVertices(const VEQVertexArray& vertices);
  void setAgentsCurrentVerticesIndices(const VEQNumberArray& indices);
  /// @}
  /// The handle's network is not checked; std::out_of_range where there is no such agent.
  void setCurrentVertex_forAgent(const VEQVertex& vertex, std::uint64_t agent);
  /// @}

  /// \name History
  /// The group's own arrays of 64-bit integers, one for each vertex. They are live: later walks
  /// change them, until flushWalkHistory() replaces them; what was handed out before then keeps its
  /// contents. An array is made when it is first asked for, in O(n) and a few nanoseconds for each
  /// move that no earlier question has covered; memory that is lacking throws std::bad_alloc.
  /// @{
  /// Beware: not the number of visits but, for each walk since the last flush, the visits up to its
  /// end, summed. Only after the first walk are these the visits. While this array is out, every
  /// walk takes O(n) at its end.
  [[nodiscard]] Shared<const VEQNumberArray> globalVisitFrequencyOfVertices() const;
  /// Always zeros; ask for each agent.
  [[nodiscard]] Shared<const VEQNumberArray> globalOrderOfVisitedVertices() const;
  /// How often the agent arrived at each vertex; std::out_of_range where there is no such agent.
  [[nodiscard]] Shared<const VEQNumberArray> visitFrequencyOfVerticesForAgent(
      std::int64_t agent) const;
  /// The agent's count of arrivals when it last arrived at each vertex, 0 where it never did. The
  /// first arrival counts 0 in a new group and 1 after a flush. std::out_of_range as above.
  [[nodiscard]] Shared<const VEQNumberArray> orderOfVisitedVerticesForAgent(
      std::int64_t agent) const;
  /// Forgets all visits and what has been reached; positions and properties stay. False, and
  /// nothing happens, while a walk runs, also one whose work was cancelled.
  virtual bool flushWalkHistory();
  /// @}

  /// \name Properties
  /// A table from keys to columns with one entry for each agent, or to one value for all.
  /// @{
  /// The table itself: later settings show in it.
  [[nodiscard]] Shared<const AgentsPropertyTable> properties() const;
  /// Installs a frozen copy, which shares the columns: no key can be added from then on. The very
  /// table that the group holds changes nothing.
  void setProperties(const AgentsPropertyTable& table);
  /// Replaces the agent's entry in the column; a new key makes a column of null markers first.
  /// Throws std::invalid_argument where the key holds one value for the whole group, or is new and
  /// the table frozen; what the column throws passes through. Nothing is changed then.
  void setPropertyValue_forKey_forAgent(const PropertyValue& value, std::string_view key,
                                        std::uint64_t agent);
  /// The same for each key in turn; where one throws, those before it stay set.
  void setProperties_forAgent(const PropertyMap& values, std::uint64_t agent);
  /// What stands under the key, if anything does.
  [[nodiscard]] std::optional<AgentsProperty> propertyValuesForKey(std::string_view key) const;
  /// Stores a column, shared with the caller and of any length, or one value for the whole group.
  /// Throws std::invalid_argument for a null column, and always on a frozen table.
  void setPropertyValues_forKey(AgentsProperty property, std::string_view key);
  /// The agent's entry of the column under the key. Where there is no such entry, because the
  /// column is too short or the key holds one value for all, the whole of what stands there.
  [[nodiscard]] std::optional<AgentsProperty> propertyValueForAgent_forKey(
      std::uint64_t agent, std::string_view key) const;
  /// The same for every key, as a new table.
  [[nodiscard]] AgentsPropertyTable propertiesForAgent(std::uint64_t agent) const;
  /// @}

  /// \name Walking
  /// All numbers of a walk are taken from the shared generator before the first move: that for
  /// agent a in step s is number countAgents x s + a of them, also if the walk stops early and for
  /// agents that cannot move. So a seed determines a walk, whatever else draws numbers meanwhile.
  ///
  /// Before anything is changed or drawn, std::out_of_range is thrown where an agent stands outside
  /// the network, std::length_error where paths of 2^64 entries or more are asked for, and
  /// std::bad_alloc where their memory is lacking. If the memory for the history runs out later,
  /// the walk ends after a whole step and throws std::bad_alloc.
  /// @{
  /// A target above 0 stops the walk after the step with which that share of the n vertices has
  /// been stepped onto, in this and earlier walks with a target; starting on a vertex does not
  /// count. A target above 1 is never met. Once met, later walks with the same target take one
  /// step. Paths are returned if asked for. O(agents x steps).
  virtual std::optional<VEQVertexPaths> walkForSteps_returnPath_untilReach(std::uint64_t steps,
                                                                           bool returnPath,
                                                                           float untilReach);
  std::optional<VEQVertexPaths> walkForSteps_returnPath(std::uint64_t steps, bool returnPath);
  /// With paths, which take 4 or 8 bytes for each agent and step.
  VEQVertexPaths walkForSteps(std::uint64_t steps);
  /// One step, with paths.
  VEQVertexPaths tellAgentsToWalkToNextVertices();
  /// Does nothing and gives null: agents walk together.
  Shared<VEQVertex> walkNextVertexForAgent(std::uint64_t agent);
  /// Whether a walk has met its reach target since the last flush.
  [[nodiscard]] bool reachedWalkPercentage() const;
  /// Steps taken under a reach target since the last flush.
  [[nodiscard]] std::uint64_t walkCount() const;
  /// @}

  /// \name Progress and control, from any thread
  /// @{
  /// The steps that all agents of the running or last walk have completed.
  [[nodiscard]] std::int64_t currentProgress() const;
  /// The steps asked of the running or last walk.
  [[nodiscard]] std::int64_t currentWork() const;
  /// Whether a walk runs whose work has not been cancelled.
  [[nodiscard]] bool isWorking() const;
  /// Always false: walks never pause.
  [[nodiscard]] bool isWaiting() const;
  /// Only record the request; no walk heeds them.
  /// @{
  void pauseWork();
  void resumeWork();
  /// @}
  /// Sets work, progress and flags back, but stops no walk: a running one goes on, counts its
  /// progress from where it is, and must have returned before anything else is done to the group.
  void cancelWork();
  /// A number that is kept and used for nothing; 1 at first.
  /// @{
  void setSynchronizationSteps(std::uint64_t steps);
  [[nodiscard]] std::uint64_t synchronizationSteps() const;
  /// @}
  /// @}

 protected:
  /// For derived groups, which move their agents by another rule. std::bad_alloc where memory is
  /// lacking.
  explicit VEQNetworkAgentsGroup(std::unique_ptr<internal::GroupState> state);
  [[nodiscard]] internal::GroupState& state() { return *state_; }

 private:
  friend struct internal::GroupAccess;

  std::unique_ptr<internal::GroupState> state_;
};

}  // namespace veq
