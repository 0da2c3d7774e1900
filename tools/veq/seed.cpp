#include "seed.hpp"

#include <veq/veq.hpp>

namespace veq::tool {

std::uint64_t useSeed(std::optional<std::uint64_t> seed) {
  auto* const generator = VEQRandomGenerator::sharedRandomGenerator();
  if (!seed) seed = static_cast<std::uint64_t>(generator->randomInteger());
  generator->setRandomSeed(static_cast<std::uint32_t>(*seed));
  return *seed;
}

}  // namespace veq::tool
