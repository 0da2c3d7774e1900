// A walk that three threads share, in a shared object that can be unloaded, and once more when it
// is.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

#include "tests/endings/walk.hpp"
#include "veq/veq.hpp"

namespace {

constexpr std::uint64_t kAgents = 100;
constexpr std::uint64_t kSteps = 5000;

veq::Network cycle() {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> edges;
  for (std::uint64_t v = 0; v < kAgents; ++v) edges.emplace_back(v, (v + 1) % kAgents);
  veq::BuildOptions options;
  options.directed = true;
  return veq::Network::build(edges, options).value();
}

std::vector<std::uint64_t> everywhere() {
  std::vector<std::uint64_t> starts(kAgents);
  std::iota(starts.begin(), starts.end(), 0);
  return starts;
}

// Everybody goes round fifty times.
bool walksAsExpected() {
  veq::RandomState random = veq::RandomState::seeded(1).value();
  veq::Walkers agents = veq::Walkers::at(cycle(), everywhere()).value();
  veq::WalkOptions options;
  options.steps = kSteps;
  options.threads = 3;
  options.random = &random;
  return agents.walk(options).value().steps == kSteps && agents.positions() == everywhere() &&
         agents.visits() == std::vector<std::uint64_t>(kAgents, kSteps);
}

// Whether somebody who could lend threads is asked to.
bool isShared() {
  std::size_t shared = 0;
  veq::setParallelRunner([&shared](std::size_t pieces, const std::function<void(std::size_t)>&) {
    if (pieces == 3) ++shared;
  });
  const bool walks = walksAsExpected();
  veq::setParallelRunner(nullptr);
  return walks && shared > 0;
}

}  // namespace

int walkOnThreads() { return isShared() && walksAsExpected() ? 0 : 1; }

void walkFor(void (*stepsAreDone)()) {
  veq::RandomState random = veq::RandomState::seeded(1).value();
  veq::Walkers agents = veq::Walkers::at(cycle(), everywhere()).value();
  veq::WalkOptions options;
  options.steps = std::uint64_t{1} << 40;
  options.threads = 3;
  options.random = &random;
  options.progress.observer = [=](std::uint64_t steps, std::uint64_t) {
    if (steps > 0) stepsAreDone();
  };
  (void)agents.walk(options);
}

WalksAtItsEnd::~WalksAtItsEnd() {
  if (!walksAsExpected()) std::_Exit(1);
}
