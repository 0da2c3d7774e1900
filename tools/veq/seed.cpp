#include "seed.hpp"

#include <algorithm>

namespace veq::tool {

std::uint64_t useSeed(std::optional<std::uint64_t> seed) {
  auto* const generator = VEQRandomGenerator::sharedRandomGenerator();
  if (!seed) seed = static_cast<std::uint64_t>(generator->randomInteger());
  generator->setRandomSeed(static_cast<std::uint32_t>(*seed));
  return *seed;
}

RandomState stateOf(std::uint64_t seed, std::optional<std::uint64_t> substream) {
  const RandomState state = RandomState::seeded(std::max<std::uint64_t>(seed, 1)).value();
  return substream ? state.substream(*substream) : state;
}

}  // namespace veq::tool
