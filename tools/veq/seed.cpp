#include "seed.hpp"

#include <algorithm>

namespace veq::tool {

std::uint64_t useSeed(std::optional<std::uint64_t> seed) {
  auto* const generator = VEQRandomGenerator::sharedRandomGenerator();
  if (!seed) seed = static_cast<std::uint64_t>(generator->randomInteger());
  generator->setRandomSeed(static_cast<std::uint32_t>(*seed));
  return *seed;
}

RandomState substreamOf(std::uint64_t seed, std::uint64_t number) {
  return RandomState::seeded(std::max<std::uint64_t>(seed, 1)).value().substream(number);
}

}  // namespace veq::tool
