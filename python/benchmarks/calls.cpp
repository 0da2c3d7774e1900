// The calls of test_calls.py in C++, for the same process to load: what they take then is of one
// heap, and of one moment.
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <optional>
#include <span>
#include <vector>

#include "veq/network.hpp"
#include "veq/walkers.hpp"

namespace {

std::optional<veq::Network> network;

veq::Network built(const std::int64_t* sources, const std::int64_t* targets, std::size_t edges,
                   std::uint64_t vertices) {
  veq::BuildOptions options;
  options.vertices = vertices;
  return veq::Network::build(std::span(sources, edges), std::span(targets, edges), options).value();
}

}  // namespace

extern "C" void build(const std::int64_t* sources, const std::int64_t* targets, std::size_t edges,
                      std::uint64_t vertices) {
  static_cast<void>(built(sources, targets, edges, vertices));
}

// For the walks.
extern "C" void prepare(const std::int64_t* sources, const std::int64_t* targets, std::size_t edges,
                        std::uint64_t vertices) {
  network = built(sources, targets, edges, vertices);
}

extern "C" void walk(std::uint64_t agents, std::uint64_t steps) {
  std::vector<std::uint64_t> starts(agents);
  std::iota(starts.begin(), starts.end(), std::uint64_t{0});
  veq::RandomState state = veq::RandomState::seeded(1).value();
  veq::Walkers walkers = veq::Walkers::at(*network, starts).value();
  veq::WalkOptions options;
  options.steps = steps;
  options.random = &state;
  static_cast<void>(walkers.walk(options).value());
  static_cast<void>(walkers.visits());
}
