// Each operation that takes a number of threads works with as many.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/observers.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/temporarily.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/formats/reading.hpp"
#include "veq/formats/walk_reading.hpp"
#include "veq/formats/writing.hpp"
#include "veq/models.hpp"
#include "veq/natural/network.hpp"
#include "veq/natural/walk_network.hpp"
#include "veq/questions.hpp"
#include "veq/questions/internal/rank_waves.hpp"
#include "veq/walkers.hpp"

namespace veq::test {
namespace {

// More than are built at once.
constexpr std::uint64_t kVertices = 70'000;

struct Operation {
  const char* name;
  std::function<void(std::optional<unsigned> threads)> run;
};

template <class Options>
Options with(std::optional<unsigned> threads) {
  Options options;
  options.threads = threads;
  return options;
}

// 0 - 1 - ... - 69999 - 0, twice.
struct Rings {
  Rings() {
    for (std::uint64_t v = 0; v < 2 * kVertices; ++v) {
      from.push_back(v % kVertices);
      to.push_back((v + 1) % kVertices);
    }
    network = Network::build(from, to).value();
    all.resize(kVertices);
    std::iota(all.begin(), all.end(), 0);
    for (const std::uint64_t v : from) names.push_back(std::to_string(v));
  }

  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  std::vector<std::uint64_t> all;
  std::vector<std::string> names;
  Network network = Network::build({}, {}).value();
};

std::vector<Operation> operations(const Rings& rings, const std::string& file) {
  using Threads = std::optional<unsigned>;
  const Network& network = rings.network;
  return {
      {"build",
       [&](Threads t) {
         EXPECT_TRUE(Network::build(rings.from, rings.to, with<BuildOptions>(t)));
       }},
      {"fromNames",
       [&](Threads t) {
         EXPECT_TRUE(Network::fromNames(rings.names, rings.names, with<BuildOptions>(t)));
       }},
      {"reversed", [&](Threads t) { EXPECT_TRUE(network.reversed(with<ChangeOptions>(t))); }},
      {"asDirected", [&](Threads t) { EXPECT_TRUE(network.asDirected(with<ChangeOptions>(t))); }},
      {"subnetwork",
       [&](Threads t) { EXPECT_TRUE(network.subnetwork(rings.all, with<ChangeOptions>(t))); }},
      {"subnetworkOfEdges",
       [&](Threads t) {
         EXPECT_TRUE(network.subnetworkOfEdges(rings.all, with<EdgeSubnetworkOptions>(t)));
       }},
      {"neighbourhood",
       [&](Threads t) {
         auto options = with<NeighbourhoodOptions>(t);
         options.distance = kVertices;
         EXPECT_TRUE(network.neighbourhood(0, options));
       }},
      {"simplified", [&](Threads t) { EXPECT_TRUE(network.simplified(with<SimplifyOptions>(t))); }},
      {"united",
       [&](Threads t) {
         const std::vector<Network> two{network, network};
         EXPECT_TRUE(Network::united(two, with<UnionOptions>(t)));
       }},
      {"componentNetworks",
       [&](Threads t) {
         EXPECT_TRUE(componentNetworks(network, Connection::kWeak, with<ChangeOptions>(t)));
       }},
      {"largestComponent",
       [&](Threads t) {
         EXPECT_TRUE(largestComponent(network, Connection::kWeak, with<ChangeOptions>(t)));
       }},
      {"pageRank",
       [&](Threads t) {
         const Temporarily<std::uint64_t> large(internal::RankWaves::largeFrom, 1);
         auto options = with<PageRankOptions>(t);
         options.mostSweeps = 1;
         EXPECT_TRUE(pageRank(network, options));
       }},
      {"distanceHistogram",
       [&](Threads t) {
         auto options = with<DistanceOptions>(t);
         options.mostVisits = 4 * 5 * kVertices;
         EXPECT_TRUE(distanceHistogram(network, options));
       }},
      {"a model",
       [&](Threads t) { EXPECT_TRUE(gnmNetwork(kVertices, kVertices, with<ModelOptions>(t))); }},
      {"writing",
       [&, file](Threads t) { EXPECT_TRUE(writeNetwork(network, file, with<WriteOptions>(t))); }},
      {"a walk-only network",
       [&](Threads t) { EXPECT_TRUE(WalkNetwork::of(network, with<WalkNetworkOptions>(t))); }},
      {"reading a walk-only network",
       [&, list = file + ".txt"](Threads t) {
         EXPECT_TRUE(writeNetwork(network, list, with<WriteOptions>(1)));
         WalkReadOptions options;
         options.reading.threads = t;
         EXPECT_TRUE(readWalkNetwork(list, options));
       }},
      {"a walk",
       [&](Threads t) {
         Walkers walkers = Walkers::at(network, std::vector<std::uint64_t>(100, 0)).value();
         auto options = with<WalkOptions>(t);
         options.steps = 100;
         EXPECT_TRUE(walkers.walk(options));
       }},
      {"reading", [&, file](Threads t) { EXPECT_TRUE(readNetwork(file, with<ReadOptions>(t))); }},
  };
}

// A runner is called where work is shared, and only there.
std::uint64_t timesShared(const std::function<void()>& work) {
  std::uint64_t times = 0;
  setParallelRunner([&times](std::size_t pieces, const std::function<void(std::size_t)>& piece) {
    ++times;
    for (std::size_t i = 0; i < pieces; ++i) piece(i);
  });
  work();
  setParallelRunner(nullptr);
  return times;
}

TEST(ThreadsOption, IsWhatOneCallUses) {
  const TemporaryFolder folder;
  const Rings rings;
  for (const Operation& operation : operations(rings, folder.path("rings.xnet"))) {
    SCOPED_TRACE(operation.name);
    {
      const SharedWork one(1);
      EXPECT_EQ(timesShared([&] { operation.run(std::nullopt); }), 0U);
      EXPECT_GT(timesShared([&] { operation.run(3); }), 0U);
      EXPECT_EQ(parallelism(), 1U);
    }
    const SharedWork several(5);
    EXPECT_GT(timesShared([&] { operation.run(std::nullopt); }), 0U);
    EXPECT_EQ(timesShared([&] { operation.run(1); }), 0U);
    EXPECT_EQ(parallelism(), 5U);
  }
}

// An observer is part of the call.
TEST(ThreadsOption, IsSeenByAnObserver) {
  const ObserverInterval none;
  std::vector<unsigned> seen;
  BuildOptions options;
  options.threads = 1024 + 7;
  options.progress.observer = [&](std::uint64_t, std::uint64_t) { seen.push_back(parallelism()); };
  ASSERT_TRUE(Network::build({0}, {1}, options));
  ASSERT_FALSE(seen.empty());
  for (const unsigned threads : seen) EXPECT_EQ(threads, 1024U);
  EXPECT_EQ(parallelism(), 1U);
}

}  // namespace
}  // namespace veq::test
