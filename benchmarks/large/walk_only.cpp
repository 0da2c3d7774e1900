// A walk-only network of a thousand million arcs that a generator gives: built and walked on.
// Prints a line for each stage with its time and the largest memory so far, and what of the walk
// can be compared; with whole=1 also of the walk on the whole network, which must be the same.
//
//     veq_walk_only [arcs=1e9] [vertices=arcs/10] [agents=1000] [steps=1e6] [threads=2] [whole=0]
//                   [arrivals=0] [limit_gib=16]

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/large/stages.hpp"
#include "benchmarks/peers/workload.hpp"
#include "veq/veq.hpp"

namespace bench {
namespace {

using namespace veq;

constexpr std::uint64_t kArcsAtOnce = std::uint64_t{1} << 18;

// One arc leaves each vertex, so that no agent is ever stuck, and the others any; all lead to any.
EdgeSource arcsBetween(std::uint64_t vertices, std::uint64_t arcs) {
  return [=](const EdgeReceiver& receiver) {
    WorkloadRandom random(1);
    std::vector<std::uint64_t> from;
    std::vector<std::uint64_t> to;
    for (std::uint64_t first = 0; first < arcs; first += kArcsAtOnce) {
      from.resize(std::min(kArcsAtOnce, arcs - first));
      to.resize(from.size());
      for (std::size_t i = 0; i < from.size(); ++i) {
        from[i] = first + i < vertices ? first + i : random.below(vertices);
        to[i] = random.below(vertices);
      }
      receiver(from, to);
    }
  };
}

struct Walked {
  std::uint64_t positions;
  std::uint64_t visits;
  std::uint64_t arrivals;
  RandomState random;
  friend bool operator==(const Walked&, const Walked&) = default;
};

template <class OfKind>
Walked walked(const OfKind& network, const Arguments& arguments, Stages& stages,
              const char* named) {
  RandomState random = RandomState::seeded(1).value();
  const std::uint64_t agents = arguments.count("agents", 1000);
  Walkers walkers =
      Walkers::at(network, Walkers::uniformStarts(network, agents, &random).value()).value();
  WalkOptions options;
  options.steps = arguments.count("steps", 1'000'000);
  options.random = &random;
  options.threads = static_cast<unsigned>(arguments.count("threads", 2));
  options.firstArrivals = arguments.count("arrivals", 0) != 0;
  const WalkOutcome outcome =
      stages.run(named, agents * *options.steps, [&] { return walkers.walk(options).value(); });
  return {checksumOfPositions(walkers.positions()), checksumOfPositions(walkers.visits()),
          checksumOfPositions(outcome.firstArrivals), random};
}

// The whole network of the same arcs.
Network wholeNetwork(const EdgeSource& source, std::uint64_t vertices) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  source([&](std::span<const std::uint64_t> sources, std::span<const std::uint64_t> targets) {
    from.insert(from.end(), sources.begin(), sources.end());
    to.insert(to.end(), targets.begin(), targets.end());
  });
  BuildOptions options;
  options.vertices = vertices;
  options.directed = true;
  return Network::build(from, to, options).value();
}

int goThroughStages(const Arguments& arguments) {
  const std::uint64_t arcs = arguments.count("arcs", 1'000'000'000);
  const std::uint64_t vertices = arguments.count("vertices", arcs / 10 + 1);
  const EdgeSource source = arcsBetween(vertices, arcs);
  Stages stages(arguments.real("limit_gib", 16));
  WalkNetworkOptions options;
  options.vertices = vertices;
  options.directed = true;
  options.threads = static_cast<unsigned>(arguments.count("threads", 2));
  options.announce = [](const WalkNetworkSize& size) {
    std::printf("# %llu vertices and %llu entries, which take %.2f GiB\n",
                static_cast<unsigned long long>(size.vertices),
                static_cast<unsigned long long>(size.entries),
                static_cast<double>(size.bytes()) * 0x1p-30);
  };
  std::optional<WalkNetwork> rows =
      stages.run("build", [&] { return WalkNetwork::fromEdges(source, options).value(); });
  const Walked onRows = walked(*rows, arguments, stages, "walk");
  std::printf("# positions %llu, visits %llu\n", static_cast<unsigned long long>(onRows.positions),
              static_cast<unsigned long long>(onRows.visits));
  if (arguments.count("whole", 0) == 0) return 0;
  rows.reset();
  const Network whole = stages.run("build whole", [&] { return wholeNetwork(source, vertices); });
  if (walked(whole, arguments, stages, "walk on whole") == onRows) return 0;
  throw std::runtime_error("The walks differ.");
}

}  // namespace
}  // namespace bench

int main(int count, char** values) {
  return bench::goingThrough(count, values, bench::goThroughStages);
}
