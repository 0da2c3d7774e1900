/// \file
/// Agents that walk at random, as a value.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "veq/agents/agents_group.hpp"
#include "veq/agents/walk_outcome.hpp"
#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/models/random_state.hpp"
#include "veq/natural/choice.hpp"
#include "veq/natural/network.hpp"
#include "veq/natural/walk_network.hpp"

namespace veq {

namespace internal {
struct AgentsState;
struct WalkOnlyGroup;
}  // namespace internal

class WalkRecord;

/// How to walk.
/// \ingroup walks
struct WalkOptions {
  /// How many steps to make at most; without it the walk goes on until its target is met.
  std::optional<std::uint64_t> steps{};
  /// Above 0 and up to 1: the walk ends after the step with which that share of the vertices has
  /// been arrived at, in this and earlier walks with a target since the history was forgotten.
  std::optional<double> target{};
  /// Whether the outcome is to tell the paths, and when each vertex was first arrived at.
  bool paths = false;
  bool firstArrivals = false;
  Choice choice = Choice::kPublished;
  /// The probability with which a step leads the agent back to where it was put instead, as the
  /// multiple of 2^-31 that is not below it. That is an arrival, also where it stands there.
  double restart = 0.0;
  /// Where to draw: the state is moved past the draws of the walk, and the process's sequence left
  /// alone. Null for that sequence.
  RandomState* random = nullptr;
  /// Follows the walk by its steps, `all` being 0 where nobody knows. A stop ends it after a whole
  /// step, and so does what the observer throws. The sequence is moved by the draws of all steps
  /// all the same.
  Progress progress{};
  /// How many threads walk, 0 being as many as the process may use; without it as many as
  /// parallelism() says. What the walk leads to does not depend on it. Agents that pass on what
  /// they remember walk on one.
  std::optional<unsigned> threads{};
};

/// What agents remember, see VEQNetworkDynamicAgentsGroup.
/// \ingroup walks
struct MemoryOptions {
  /// How many visits each remembers: one size for all, or one for each agent. At least 1.
  std::vector<std::uint64_t> sizes{};
  /// The probability of remembering a wrong vertex: none, one for all, or one for each agent.
  std::vector<float> errors{};
  /// In it vertex i stands for agent i, which passes on what it remembers along its links.
  std::optional<Network> listeners{};
};

/// A share of a group of agents. Copies are the same agents. Never empty, except after it was moved
/// from. What was said of VEQNetworkAgentsGroup about threads holds here, too.
///
/// On a walk-only network they draw, move and end as on the Network of the same edges, and keep
/// where they stand, totals and, on request, first arrivals, but nothing of single agents. What
/// they lack for that reason says so by an Error of kind kUnsupported, which walk() and record()
/// give and others throw.
/// \ingroup walks
class VEQ_EXPORT Walkers {
 public:
  /// The published group itself, in O(1). Restarts lead to where its agents stand now.
  /// std::invalid_argument, "There is no group of agents.", for null.
  explicit Walkers(Shared<VEQNetworkAgentsGroup> published);

  /// \name Agents
  /// One for each start. Errors of kind kArgument: "start 2: vertex 7 of 5", and for memories "2
  /// memory sizes for 3 agents", "agent 1: memory size 0", "2 errors for 3 agents", "agent 1: error
  /// 1.5, not 0 to 1", "2 listeners for 3 agents"; of kind kMemory where memory cannot hold them.
  /// @{
  [[nodiscard]] static Result<Walkers> at(const Network& network,
                                          std::span<const std::uint64_t> starts);
  [[nodiscard]] static Result<Walkers> at(const WalkNetwork& network,
                                          std::span<const std::uint64_t> starts);
  [[nodiscard]] static Result<Walkers> withMemory(const Network& network,
                                                  std::span<const std::uint64_t> starts,
                                                  const MemoryOptions& memory);
  /// @}

  /// \name Starts
  /// Each takes two draws for each agent, from the state or, for null, the process's sequence: the
  /// vertices each alike, or each by the length of its out-list, which for undirected networks is
  /// its degree. Errors of kind kArgument: "the network has no vertices", "the network has no
  /// edges", "the substream has 1 draws left, not 2".
  /// @{
  [[nodiscard]] static Result<std::vector<std::uint64_t>> uniformStarts(
      const Network& network, std::uint64_t agents, RandomState* random = nullptr);
  [[nodiscard]] static Result<std::vector<std::uint64_t>> uniformStarts(
      const WalkNetwork& network, std::uint64_t agents, RandomState* random = nullptr);
  [[nodiscard]] static Result<std::vector<std::uint64_t>> startsByDegree(
      const Network& network, std::uint64_t agents, RandomState* random = nullptr);
  [[nodiscard]] static Result<std::vector<std::uint64_t>> startsByDegree(
      const WalkNetwork& network, std::uint64_t agents, RandomState* random = nullptr);
  /// @}

  /// Walks. Every agent moves in every step to a vertex of its vertex's out-list by the choice; one
  /// with memory leaves out those that it remembers, unless there is no other with a weight above
  /// 0. Where no entry can be taken an agent stays.
  ///
  /// With a number of steps it draws as the published walk: for agent a in step s number agents x s
  /// + a of a request of agents x steps, for agents with memory of the first of three, and with
  /// restarts one more such request at the end, all taken before the first step. Without a number
  /// of steps it draws step by step: for each agent one number to choose, with memory one each for
  /// the errors and the wrong vertices, and with restarts one more; only the draws of steps made
  /// are used up, and nobody else should draw from the process's sequence meanwhile.
  ///
  /// Errors of kind kArgument, before anything is changed or drawn: "neither steps nor target",
  /// "target 0: give more than 0, up to 1", "restart 1.5: give 0 to 1", "agent 3: vertex 7 of 5",
  /// "edge 3: weight -1" where weights choose, "the substream has 2 draws left, not 3", "paths of
  /// 2^64 entries or more"; kMemory where the paths have no room. If memory runs out later, the
  /// walk ends after a whole step and throws std::bad_alloc. Paths of a walk without a number of
  /// steps grow with it, and are lost then. Errors of kind kUnsupported on a walk-only network:
  /// "paths are histories of single agents, which are not kept on a walk-only network"; "a
  /// walk-only network has no weights to choose by".
  [[nodiscard]] Result<WalkOutcome> walk(const WalkOptions& options);
  /// Walks as walk() does, and keeps what it takes to walk the same way again, as a page does: of
  /// agents with memory their moves, and so they need a number of steps. Nobody else should draw
  /// from where the walk does meanwhile. Errors as of walk(), and before it "a record of agents
  /// with memory needs a number of steps" and "5000000 moves of agents with memory are more than a
  /// record holds (4000000): take fewer steps or agents".
  [[nodiscard]] Result<WalkRecord> record(const WalkOptions& options);
  /// How many draws walk() takes, or would take for one step if no number of steps is given.
  [[nodiscard]] DrawCount drawsOfWalk(const WalkOptions& options) const;

  /// How many there are, which never changes.
  [[nodiscard]] std::uint64_t countAgents() const;
  /// Where they stand.
  [[nodiscard]] std::vector<std::uint64_t> positions() const;

  /// \name History, since it was last forgotten
  /// Each answer is a copy, of O(n), beyond the time to count moves that were not counted yet.
  /// std::out_of_range where there is no such agent.
  /// @{
  /// How often agents arrived at each vertex: all agents in all walks, each arrival once.
  [[nodiscard]] std::vector<std::uint64_t> visits() const;
  [[nodiscard]] std::vector<std::uint64_t> visits(std::uint64_t agent) const;
  /// The group's own array, which walks change.
  [[nodiscard]] Shared<const VEQNumberArray> liveVisits(std::uint64_t agent) const;
  /// Forgets all visits and what has been reached. False while a walk runs.
  bool forget();
  /// @}

  /// What the agent remembers, from the oldest entry on; a vertex that stands there several times
  /// that often. Empty for agents without memory. std::out_of_range where there is no such agent.
  [[nodiscard]] std::vector<std::uint64_t> remembered(std::uint64_t agent) const;

  /// The group with its published operations, in O(1).
  [[nodiscard]] const Shared<VEQNetworkAgentsGroup>& published() const;

 private:
  struct State {
    Shared<VEQNetworkAgentsGroup> published;  // null on a walk-only network
    Shared<const std::vector<std::uint64_t>> starts;
    Shared<internal::WalkOnlyGroup> walkOnly;  // there
  };
  explicit Walkers(State state);
  [[nodiscard]] internal::AgentsState& agents() const;
  void requireHistories() const;
  Result<WalkOutcome> walkOnWalkNetwork(const WalkOptions& options);
  Shared<const State> state_;
};

}  // namespace veq
