/// \file
/// What a walk has led to.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "veq/agents/vertex_paths.hpp"
#include "veq/base/export.hpp"

namespace veq {

/// Why a walk ended.
/// \ingroup walks
enum class WalkEnd : std::uint8_t {
  kSteps,    ///< All steps were made.
  kTarget,   ///< The target was met.
  kStopped,  ///< Its StopToken asked for it; all agents made the last step.
  kStuck,    ///< Nobody can ever move again, and no number of steps was asked for.
  kDraws,    ///< The substream has too few draws left for another step.
};

/// A step that no walk makes: for a vertex where nobody arrived.
/// \ingroup walks
inline constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

/// How many vertices had been arrived at after a step.
/// \ingroup walks
struct Coverage {
  /// From 1.
  std::uint64_t step = 0;
  /// How many had been arrived at by then.
  std::uint64_t vertices = 0;

  friend bool operator==(const Coverage&, const Coverage&) = default;
};

/// The paths of a walk, agent by agent and step by step, both from 0. Copies share them, and they
/// outlive the group and the network.
/// \ingroup walks
class VEQ_EXPORT WalkPaths {
 public:
  /// No agents.
  WalkPaths() = default;
  /// Of a walk that began at `starts`, one for each agent.
  WalkPaths(VEQVertexPaths published, std::vector<std::uint64_t> starts)
      : published_(std::move(published)), starts_(std::move(starts)) {}

  [[nodiscard]] std::uint64_t countAgents() const { return published_.count(); }
  [[nodiscard]] std::uint64_t countSteps() const { return published_.countSteps(); }

  /// Where the agent stood before the first step. std::out_of_range.
  [[nodiscard]] std::uint64_t start(std::uint64_t agent) const { return starts_.at(agent); }
  /// The vertex at which the agent arrived in the step, or nothing where it could not move.
  /// std::out_of_range.
  [[nodiscard]] std::optional<std::uint64_t> arrival(std::uint64_t agent, std::uint64_t step) const;
  /// Where the agent stood after each step, which is where it was before for one that could not
  /// move; with `withStart` first where it began. std::out_of_range. O(steps).
  [[nodiscard]] std::vector<std::uint64_t> of(std::uint64_t agent, bool withStart = false) const;

  /// Calls f(std::span<const std::uint32_t or std::uint64_t>) with all arrivals as they lie in
  /// memory: number agents x s + a is agent a's in step s, or all bits are set where it stayed.
  template <class F>
  decltype(auto) visitArrivals(F&& f) const {
    return published_.visitMoves(
        [&](const auto* first) { return f(std::span(first, countAgents() * countSteps())); });
  }

  /// With the published operations, where a step in place shows vertex 0.
  [[nodiscard]] const VEQVertexPaths& published() const { return published_; }

 private:
  VEQVertexPaths published_;
  std::vector<std::uint64_t> starts_;
};

/// What Walkers::walk() gives.
/// \ingroup walks
struct VEQ_EXPORT WalkOutcome {
  /// Why the walk ended.
  WalkEnd end = WalkEnd::kSteps;
  /// That all agents have made.
  std::uint64_t steps = 0;
  /// If they were asked for.
  std::optional<WalkPaths> paths;
  /// For each vertex the step, from 1, in which an agent first arrived there, or kNever. Standing
  /// there at the beginning is no arrival. Empty unless asked for.
  std::vector<std::uint64_t> firstArrivals;

  /// The steps in which vertices were arrived at for the first time in this walk, ascending, each
  /// with how many had been by then. Empty without firstArrivals. O(n log n).
  [[nodiscard]] std::vector<Coverage> coverage() const;
};

}  // namespace veq
