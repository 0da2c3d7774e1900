#include "veq/agents/walk_record.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <variant>

#include "veq/agents/internal/choice.hpp"
#include "veq/agents/internal/dynamic_state.hpp"
#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/recorded_walk.hpp"
#include "veq/agents/walkers.hpp"
#include "veq/models/internal/random_source.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {
namespace {

using internal::DynamicState;
using internal::GroupAccess;
using internal::RecordedMemory;
using internal::RecordedWalk;

constexpr std::uint64_t kMostMoves = 4'000'000;

std::optional<Error> recordError(std::uint64_t agents, const WalkOptions& options) {
  if (!options.steps) {
    return Error(ErrorKind::kArgument, "a record of agents with memory needs a number of steps");
  }
  if (agents == 0 || *options.steps <= kMostMoves / agents) return std::nullopt;
  const std::string moves = *options.steps > UINT64_MAX / agents
                                ? "2^64 or more"
                                : std::to_string(*options.steps * agents);
  return Error(ErrorKind::kArgument, moves +
                                         " moves of agents with memory are more than a record "
                                         "holds (" +
                                         std::to_string(kMostMoves) +
                                         "): take fewer steps or agents");
}

std::vector<RecordedMemory> memoriesBefore(const DynamicState& state, std::uint64_t agents) {
  std::vector<RecordedMemory> recorded(agents);
  std::visit(
      [&](const auto& memories) {
        for (std::uint64_t a = 0; a < agents; ++a) {
          RecordedMemory& memory = recorded[a];
          const auto ring = memories.ring(a);
          memory.ringSize = ring.size();
          memory.errorThreshold = memories.errorThreshold(a);
          if (memories.isFresh(a)) continue;
          memory.ring.assign(ring.begin(), ring.end());
          const auto& slots = memories.slots(a);
          memory.slots = {slots.current, slots.last, slots.transfer};
        }
      },
      state.memories);
  if (!state.agentsNetwork) return recorded;
  internal::CoreAccess::of(*state.agentsNetwork).store.visit([&](const auto& topology) {
    for (std::uint64_t a = 0; a < agents; ++a) {
      for (const auto neighbour : topology.out.neighbours(a)) {
        if (neighbour < agents) recorded[a].listeners.push_back(neighbour);
      }
    }
  });
  return recorded;
}

// What agents remembered instead of where they arrived, by the draws behind those of the choices.
void addMistakes(RecordedWalk& walk, const RandomState& before) {
  const bool canErr = std::any_of(walk.memories.begin(), walk.memories.end(),
                                  [](const auto& memory) { return memory.errorThreshold != 0; });
  if (!canErr) return;
  const std::uint64_t agents = walk.countAgents();
  const std::uint64_t asked = agents * *walk.asked;
  RandomState errors = before.after(asked);
  RandomState vertices = before.after(DrawCount::product(asked, 2));
  const auto isMistaken = [&](std::uint64_t a) {
    return errors.nextDraw() < walk.memories[a].errorThreshold;
  };
  walk.outcome.paths->visitArrivals([&](const auto arrivals) {
    using Word = std::remove_cvref_t<decltype(arrivals[0])>;
    for (std::uint64_t number = 0; number < arrivals.size(); ++number) {
      const std::uint64_t wrong = internal::chooseEntry(walk.vertices, vertices.nextDraw());
      const bool mistaken = isMistaken(number % agents);
      if (!mistaken || arrivals[number] == static_cast<Word>(-1) || arrivals[number] == wrong) {
        continue;
      }
      walk.mistakes.emplace_back(number, wrong);
    }
  });
}

}  // namespace

const WalkOutcome& WalkRecord::outcome() const { return parts_->outcome; }

std::uint64_t WalkRecord::countAgents() const { return parts_->countAgents(); }

Result<WalkRecord> Walkers::record(const WalkOptions& options) {
  if (state_->walkOnly) {
    return Error(ErrorKind::kUnsupported, "a record is of a Network, not of a walk-only one");
  }
  const internal::GroupState& group = GroupAccess::of(*state_->published);
  const DynamicState* const memories = GroupAccess::memoriesOf(*state_->published);
  const auto walk = std::make_shared<RecordedWalk>();
  WalkOptions how = options;
  if (memories) {
    if (auto error = recordError(group.agents, options)) return *error;
    walk->memories = memoriesBefore(*memories, group.agents);
    walk->haveListeners = memories->agentsNetwork != nullptr;
    how.paths = true;
  }
  const RandomState before =
      options.random
          ? *options.random
          : internal::StateAccess::make(internal::SharedRandomSequence::instance().stream());
  walk->vertices = group.network->countVertices();
  walk->edges = group.network->countEdges();
  walk->choice = options.choice;
  walk->asked = options.steps;
  walk->target = options.target.value_or(0.0);
  walk->starts = positions();
  walk->words = before.words();
  walk->arrivals = visits();

  Result<WalkOutcome> outcome = this->walk(how);
  if (!outcome) return outcome.error();
  walk->outcome = std::move(outcome).value();
  walk->ends = positions();
  const std::vector<std::uint64_t> all = visits();
  for (std::size_t v = 0; v < all.size(); ++v) walk->arrivals[v] = all[v] - walk->arrivals[v];
  walk->restartThreshold = static_cast<std::uint32_t>(std::ceil(options.restart * 0x1p31));
  if (walk->restartThreshold != 0) {
    walk->homes.assign(state_->starts->begin(),
                       state_->starts->begin() + static_cast<std::ptrdiff_t>(group.agents));
    if (options.steps && !memories) {
      walk->restartWords = before.after(DrawCount::product(group.agents, *options.steps)).words();
    }
  }
  if (memories) addMistakes(*walk, before);
  return WalkRecord(walk);
}

}  // namespace veq
