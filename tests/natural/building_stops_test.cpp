// What building by names and by a builder tells its Progress, and that a stop or an exception at
// any of these places leaves everything as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/observers.hpp"
#include "veq/network.hpp"

namespace veq::test::building_stops_test {
namespace {

using internal::Pace;
using std::chrono_literals::operator""h;
using std::chrono_literals::operator""ms;
using testing::ElementsAre;

struct Enough {};

// That build(progress) tells of so many steps at least, hears a stop at each of them before the
// next one, and ends by what an observer throws there.
template <class Build>
void expectStoppableAnywhere(std::uint64_t least, Build build) {
  const ObserverInterval none;
  std::uint64_t calls = 0;
  Progress counting;
  counting.observer = climbing([&](std::uint64_t) { ++calls; });
  EXPECT_TRUE(build(counting).hasValue());
  const std::uint64_t all = calls;
  EXPECT_GE(all, least);
  for (const std::uint64_t at : {std::uint64_t{0}, least / 2, all / 2, all - 1}) {
    calls = 0;
    const StopSource source;
    Progress stopping;
    stopping.stop = source.token();
    stopping.observer = [&](std::uint64_t, std::uint64_t) {
      if (calls++ == at) source.requestStop();
    };
    const Result<Network> stopped = build(stopping);
    ASSERT_FALSE(stopped) << at;
    EXPECT_EQ(stopped.error().kind(), ErrorKind::kStopped);
    EXPECT_EQ(calls, at + 1);

    calls = 0;
    Progress throwing;
    throwing.observer = [&](std::uint64_t, std::uint64_t) {
      if (calls++ == at) throw Enough();
    };
    EXPECT_THROW(static_cast<void>(build(throwing)), Enough) << at;
    EXPECT_EQ(calls, at + 1);
  }
}

// Two tiles of edges by name, and one edge more.
constexpr std::uint64_t kEdges = (std::uint64_t{2} << 14) + 1;

std::vector<std::string> numberNames(std::uint64_t first, std::uint64_t count) {
  std::vector<std::string> names;
  for (std::uint64_t i = 0; i < count; ++i) names.push_back(std::to_string(first + i));
  return names;
}

// At the beginning, after each of three tiles, before the ends are looked at, and after each list.
TEST(BuildingStops, OfNamesAreHeardAnywhere) {
  const std::vector<std::string> from = numberNames(0, kEdges);
  const std::vector<std::string> to = numberNames(1, kEdges);
  expectStoppableAnywhere(1 + 3 + 1 + 2, [&](const Progress& progress) {
    BuildOptions options;
    options.progress = progress;
    return Network::fromNames(from, to, options);
  });
}

// The names, of which there is one more than edges, take three tiles, too, and one to be copied.
TEST(BuildingStops, OfListedNamesAreHeardAnywhere) {
  const std::vector<std::string> from = numberNames(0, kEdges);
  const std::vector<std::string> to = numberNames(1, kEdges);
  const std::vector<std::string> all = numberNames(0, kEdges + 1);
  BuildOptions options;
  expectStoppableAnywhere(1 + 3 + 3 + 1 + 1 + 2, [&](const Progress& progress) {
    options.progress = progress;
    return Network::fromNames(from, to, all, options);
  });
  EXPECT_EQ(options.vertexColumns.size(), 0U);
}

// Of 2^16 and one name more: two tiles of a column that has none, one of names, and the ends.
TEST(BuildingStops, LeaveABuilderAsItWas) {
  NetworkBuilder builder;
  for (const std::string& name : numberNames(0, (std::uint64_t{1} << 16) + 1)) {
    builder.vertexNamed(name);
  }
  builder.addEdge("1", "0", 0.5);
  BuildOptions options;
  expectStoppableAnywhere(2 + 1 + 1 + 2, [&](const Progress& progress) {
    options.progress = progress;
    return builder.build(options);
  });
  EXPECT_EQ(options.vertexColumns.size(), 0U);
  EXPECT_EQ(builder.countVertices(), 65537U);
  EXPECT_EQ(builder.countEdges(), 1U);
  const Network network = builder.build().value();
  EXPECT_EQ(network.vertexNamed("65536"), 65536U);
  EXPECT_THAT(network.sources(), ElementsAre(1));
  EXPECT_THAT(network.targets(), ElementsAre(0));
  EXPECT_THAT(network.edgeWeights(), ElementsAre(0.5));
}

TEST(BuildingStops, ObserversAreLeftAloneForAWhile) {
  EXPECT_EQ(Pace::usualInterval, 50ms);
  const ObserverInterval longer(1h);
  const std::vector<std::string> names = numberNames(0, kEdges);
  std::uint64_t calls = 0;
  BuildOptions options;
  options.progress.observer = [&](std::uint64_t, std::uint64_t) { ++calls; };
  EXPECT_TRUE(Network::fromNames(names, names, options).hasValue());
  EXPECT_TRUE(Network::fromNames(names, names, names, options).hasValue());
  NetworkBuilder builder;
  builder.addEdge("a", "b");
  EXPECT_TRUE(builder.build(options).hasValue());
  EXPECT_EQ(calls, 0U);
}

}  // namespace
}  // namespace veq::test::building_stops_test
