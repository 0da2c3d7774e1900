#include "veq/agents/walk_outcome.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "veq/agents/internal/tiles.hpp"

namespace veq {

std::optional<std::uint64_t> WalkPaths::arrival(std::uint64_t agent, std::uint64_t step) const {
  if (agent >= countAgents() || step >= countSteps()) {
    throw std::out_of_range("The paths have no such agent or step.");
  }
  return visitArrivals([&]<class Word>(std::span<const Word> arrivals) {
    const Word at = arrivals[step * countAgents() + agent];
    return at == internal::kStayed<Word> ? std::nullopt : std::optional<std::uint64_t>(at);
  });
}

std::vector<std::uint64_t> WalkPaths::of(std::uint64_t agent, bool withStart) const {
  std::uint64_t at = start(agent);
  std::vector<std::uint64_t> path;
  path.reserve(countSteps() + 1);
  if (withStart) path.push_back(at);
  visitArrivals([&]<class Word>(std::span<const Word> arrivals) {
    for (std::uint64_t i = agent; i < arrivals.size(); i += countAgents()) {
      if (arrivals[i] != internal::kStayed<Word>) at = arrivals[i];
      path.push_back(at);
    }
  });
  return path;
}

std::vector<Coverage> WalkOutcome::coverage() const {
  std::vector<std::uint64_t> reached;
  std::copy_if(firstArrivals.begin(), firstArrivals.end(), std::back_inserter(reached),
               [](std::uint64_t step) { return step != kNever; });
  std::sort(reached.begin(), reached.end());
  std::vector<Coverage> curve;
  for (std::size_t i = 0; i < reached.size(); ++i) {
    if (i + 1 < reached.size() && reached[i + 1] == reached[i]) continue;
    curve.push_back({reached[i], i + 1});
  }
  return curve;
}

}  // namespace veq
