// Work that threads share and that somebody ends, and whose pieces are done in every order.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/observers.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/small_pieces.hpp"
#include "veq/veq.hpp"

namespace veq::test::shared_endings_test {
namespace {

using Numbers = std::vector<std::uint64_t>;

struct Operation {
  const char* name;
  /// All that comes out.
  std::function<Result<Numbers>(const Progress&)> run;
};

struct Ends {
  Numbers from;
  Numbers to;
};
Ends someEnds(std::uint64_t vertices, std::uint64_t edges) {
  Ends ends;
  for (std::uint64_t e = 0; e < edges; ++e) {
    ends.from.push_back(e * 7919 % vertices);
    ends.to.push_back(e * e % vertices);
  }
  return ends;
}

void append(Numbers& all, const Network& network) {
  for (std::uint64_t v = 0; v < network.countVertices(); v += 7) {
    for (const std::uint64_t neighbour : network.neighbours(v)) all.push_back(neighbour);
  }
}

Operation building(const Ends& ends, std::uint64_t vertices) {
  return {"building", [&ends, vertices](const Progress& progress) -> Result<Numbers> {
            BuildOptions options;
            options.vertices = vertices;
            options.progress = progress;
            const Result<Network> built = Network::build(ends.from, ends.to, options);
            if (!built) return built.error();
            Numbers all;
            append(all, built.value());
            return all;
          }};
}

Operation reading(const char* name, const std::string& text) {
  return {name, [&text](const Progress& progress) -> Result<Numbers> {
            const SmallPieces pieces(1000);
            ReadOptions options;
            options.progress = progress;
            const Reading read = readNetworkText(text, options);
            if (!read) return read.error();
            Numbers all;
            append(all, read.value());
            return all;
          }};
}

std::string textOf(const Network& network, FileFormat format) {
  return networkText(network, format).value();
}

Operation labelling(const Network& network) {
  return {"components", [&network](const Progress& progress) -> Result<Numbers> {
            const auto found = components(network, Connection::kWeak, progress);
            if (!found) return found.error();
            Numbers all = found.value().labels;
            all.insert(all.end(), found.value().sizes.begin(), found.value().sizes.end());
            return all;
          }};
}

Operation separating(const Network& network) {
  return {"networks of components", [&network](const Progress& progress) -> Result<Numbers> {
            ChangeOptions options;
            options.progress = progress;
            const auto made = componentNetworks(network, Connection::kWeak, options);
            if (!made) return made.error();
            Numbers all;
            for (const DerivedNetwork& part : made.value()) {
              all.insert(all.end(), part.vertices.begin(), part.vertices.end());
              append(all, part.network);
            }
            return all;
          }};
}

Operation walking(const Network& network, bool withMemory) {
  return {
      withMemory ? "walk with memory" : "walk",
      [&network, withMemory](const Progress& progress) -> Result<Numbers> {
        const Numbers starts(64, 3);
        MemoryOptions memory;
        memory.sizes = {3};
        Walkers walkers = withMemory ? Walkers::withMemory(network, starts, memory).value()
                                     : Walkers::at(network, starts).value();
        RandomState random = RandomState::seeded(4).value();
        WalkOptions options;
        options.steps = 3000;
        options.target = 1.0;
        options.firstArrivals = true;
        options.random = &random;
        options.progress = progress;
        const WalkOutcome outcome = walkers.walk(options).value();
        if (outcome.end == WalkEnd::kStopped) return Error(ErrorKind::kStopped, "stopped");
        Numbers all = outcome.firstArrivals;
        for (const Numbers& more : {walkers.positions(), walkers.visits(), walkers.visits(63)}) {
          all.insert(all.end(), more.begin(), more.end());
        }
        return all;
      }};
}

// What is read of these is no more than what the operations need to be cut in pieces.
class SharedOperations : public testing::Test {
 protected:
  static constexpr std::uint64_t kVertices = 40000;
  static constexpr std::uint64_t kWorthSharing = 100;

  const Ends ends_ = someEnds(kVertices, 150000);
  const Network linked_ = gnmNetwork(3000, 6000).value();
  const Network parts_ = gnmNetwork(3000, 1000).value();
  const std::string xnet_ = textOf(linked_, FileFormat::kXnet);
  const std::string pajek_ = textOf(linked_, FileFormat::kPajek);
  const std::string list_ = textOf(linked_, FileFormat::kList);
  const std::vector<Operation> operations_ = {building(ends_, kVertices),  labelling(linked_),
                                              reading("xnet", xnet_),      reading("Pajek", pajek_),
                                              reading("edge list", list_), separating(parts_),
                                              walking(linked_, false),     walking(linked_, true)};
};

// Four pieces, as of a walk by four threads, have 24 orders.
TEST_F(SharedOperations, GiveTheSameInEveryOrderOfPieces) {
  for (const Operation& operation : operations_) {
    const Numbers alone = operation.run({}).value();
    for (int number = 0; number < rounds(24); ++number) {
      const SharedWork::InOrder order{static_cast<std::uint64_t>(number)};
      const SharedWork shared(4, order, kWorthSharing);
      ASSERT_TRUE(operation.run({}).value() == alone) << operation.name << ", order " << number;
    }
  }
}

// At any look of an observer, all threads having met.
TEST_F(SharedOperations, EndWhereTheyAreStoppedOrAnObserverThrows) {
  const ObserverInterval none;
  for (const Operation& operation : operations_) {
    SCOPED_TRACE(operation.name);
    const Numbers alone = operation.run({}).value();
    const SharedWork shared(3, kWorthSharing);
    std::uint64_t all = 0;
    Progress counting;
    counting.observer = climbing([&](std::uint64_t) { ++all; });
    EXPECT_TRUE(operation.run(counting).value() == alone);
    ASSERT_GE(all, 3U);
    for (const std::uint64_t at : {std::uint64_t{0}, all / 3, all - 2}) {
      const StopSource source;
      Progress stopping;
      stopping.stop = source.token();
      stopping.observer = climbing([&](std::uint64_t look) {
        if (look == at) source.requestStop();
      });
      EXPECT_EQ(operation.run(stopping).error().kind(), ErrorKind::kStopped) << at;
      Progress throwing;
      throwing.observer = climbing([&](std::uint64_t look) {
        if (look == at) throw std::runtime_error("enough");
      });
      EXPECT_THROW((void)operation.run(throwing), std::runtime_error) << at;
    }
    EXPECT_TRUE(operation.run({}).value() == alone);
  }
}

}  // namespace
}  // namespace veq::test::shared_endings_test
