#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/agents.hpp"
#include "veq/walkers.hpp"

namespace veq::test {

/// 0 - 1, 0 - 2, 1 - 2, 2 - 3, 3 - 0, 1 - 3.
inline Network sixLinks() {
  return Network(networkOf(4, {{0, 1}, {0, 2}, {1, 2}, {2, 3}, {3, 0}, {1, 3}}, false));
}
inline Network weighted(Network network, const std::vector<float>& weights) {
  network.published()->setEdgesWeightValues(
      *VEQNumberArray::initWithFloatArray_count(weights.data(), weights.size()));
  return network;
}
inline Network sixWeights() { return weighted(sixLinks(), {1, 2.5, 0, 4, 0.5, 3}); }

inline RandomState seeded(std::uint64_t seed) { return RandomState::seeded(seed).value(); }
inline std::uint32_t nextOfShared() {
  return static_cast<std::uint32_t>(VEQRandomGenerator::sharedRandomGenerator()->randomInteger());
}

inline Walkers walkersAt(const Network& network, const Indices& starts) {
  return Walkers::at(network, starts).value();
}

inline std::vector<Indices> pathsOf(const WalkOutcome& outcome) {
  std::vector<Indices> paths;
  for (std::uint64_t a = 0; a < outcome.paths->countAgents(); ++a) {
    paths.push_back(outcome.paths->of(a));
  }
  return paths;
}

/// The text of an error, or "none".
template <class T>
std::string errorText(const Result<T>& result) {
  return result ? "none" : result.error().text();
}

}  // namespace veq::test
