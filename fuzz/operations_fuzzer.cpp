// Sequences of published operations on a few small networks and groups, decoded from the bytes:
// each byte is one choice, so that a mutation changes one operation or one of its arguments. What a
// network must hold after each operation is kept beside it by the plainest code.
#include "fuzz/operations/world.hpp"
#include "fuzz/support/invariants.hpp"
#include "fuzz/support/target.hpp"
#include "veq/models/random_generator.hpp"

namespace veq::fuzz {
namespace {

void dropSomething(World& world, Input& input) {
  const auto drop = [&input](auto& things) {
    if (!things.empty()) {
      things.erase(things.begin() + static_cast<std::ptrdiff_t>(input.below(things.size())));
    }
  };
  switch (input.below(4)) {
    case 0:
      return drop(world.groups);
    case 1:
      return drop(world.columns);
    default:
      return drop(world.subjects);
  }
}

void step(World& world, Input& input) {
  switch (input.below(16)) {
    case 0:
      return dropSomething(world, input);
    case 1:
    case 2:
      return makeNetwork(world, input);
    case 3:
      return deriveNetwork(world, input);
    case 4:
    case 5:
    case 6:
      return editNetwork(world, input);
    case 7:
    case 8:
      return editProperties(world, input);
    case 9:
      return useHandles(world, input);
    case 10:
    case 11:
      return questionNetwork(world, input);
    case 12:
      return makeGroup(world, input);
    default:
      return useGroup(world, input);
  }
}

void run(Input input) {
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  World world;
  makeNetwork(world, input);
  for (int steps = 0; steps < 64 && !input.atEnd(); ++steps) step(world, input);
  for (const Subject& subject : world.subjects) {
    VEQ_CHECK_NO(difference(subject.model, imageOf(*subject.network)));
    checkNetwork(*subject.network);
  }
}

}  // namespace
}  // namespace veq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::run(veq::fuzz::Input(data, size));
  return 0;
}
