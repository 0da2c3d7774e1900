// Whatever an observer throws comes out of every operation that takes long as it is: nobody on the
// way takes it for lacking memory, or for an error of the work.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/observers.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/models.hpp"
#include "veq/network.hpp"
#include "veq/questions.hpp"
#include "veq/reading.hpp"
#include "veq/walkers.hpp"
#include "veq/writing.hpp"

namespace veq::test::observers_test {
namespace {

/// An operation that takes a Progress; what it gives is of no interest.
struct Work {
  template <class Call>
  Work(std::string nameOfIt, Call call)
      : name(std::move(nameOfIt)),
        run([call](const Progress& progress) { static_cast<void>(call(progress)); }) {}

  std::string name;
  std::function<void(const Progress&)> run;
};

template <class Options>
Options followed(const Progress& progress) {
  Options options;
  options.progress = progress;
  return options;
}

/// A ring, by default long enough to be looked at everywhere.
Network ringOf(std::uint64_t length = 40'000) {
  std::vector<std::uint64_t> from(length);
  std::vector<std::uint64_t> to(length);
  for (std::uint64_t v = 0; v < length; ++v) {
    from[v] = v;
    to[v] = (v + 1) % length;
  }
  return Network::build(from, to).value();
}

class Observers : public testing::Test {
 protected:
  // Of each kind of exception that some operation makes something of.
  void expectPassed(const Work& work) {
    expectThrown(work, std::length_error("mine"));
    expectThrown(work, std::bad_alloc());
    expectThrown(work, std::invalid_argument("mine"));
    expectThrown(work, std::out_of_range("mine"));
    expectThrown(work, Error(ErrorKind::kArgument, "mine"));
    expectThrown(work, 17);
  }

  const Network ring_ = ringOf();
  const ObserverInterval none_;

 private:
  template <class Thrown>
  void expectThrown(const Work& work, const Thrown& thrown) {
    bool told = false;
    Progress progress;
    progress.observer = [&](std::uint64_t, std::uint64_t) {
      told = true;
      throw thrown;
    };
    EXPECT_THROW(work.run(progress), Thrown) << work.name;
    EXPECT_TRUE(told) << work.name;
  }
};

TEST_F(Observers, EndTheBuildingOfNetworks) {
  const std::vector<std::uint64_t> ends(40'000, 0);
  const std::vector<std::string> names(40'000, "a");
  NetworkBuilder builder;
  for (int i = 0; i < 10; ++i) builder.addEdge("a", "b");
  const Result<std::uint64_t> size = imageSize(ring_);
  std::vector<std::byte> image(size.value());
  ASSERT_TRUE(writeImage(ring_, image).hasValue());
  const std::vector<Work> works{
      {"build",
       [&](const Progress& p) { return Network::build(ends, ends, followed<BuildOptions>(p)); }},
      {"names",
       [&](const Progress& p) {
         return Network::fromNames(names, names, followed<BuildOptions>(p));
       }},
      {"builder", [&](const Progress& p) { return builder.build(followed<BuildOptions>(p)); }},
      {"addEdges", [&](const Progress& p) { return ringOf().addEdges(ends, ends, {}, p); }},
      {"writeImage", [&](const Progress& p) { return writeImage(ring_, image, p); }},
      {"attachImage",
       [&](const Progress& p) { return attachImage(image, nullptr, followed<AttachOptions>(p)); }},
  };
  for (const Work& work : works) expectPassed(work);
}

TEST_F(Observers, EndTheChangeOfNetworks) {
  const std::vector<std::uint64_t> chosen{1, 0};
  const std::vector<Network> two{ring_, ring_};
  const std::vector<Work> works{
      {"copy", [&](const Progress& p) { return ring_.copy(followed<ChangeOptions>(p)); }},
      {"simplified",
       [&](const Progress& p) { return ring_.simplified(followed<SimplifyOptions>(p)); }},
      {"subnetwork",
       [&](const Progress& p) { return ring_.subnetwork(chosen, followed<ChangeOptions>(p)); }},
      {"subnetworkOfEdges",
       [&](const Progress& p) {
         return ring_.subnetworkOfEdges(chosen, followed<EdgeSubnetworkOptions>(p));
       }},
      {"neighbourhood",
       [&](const Progress& p) {
         return ring_.neighbourhood(0, followed<NeighbourhoodOptions>(p));
       }},
      {"united",
       [&](const Progress& p) { return Network::united(two, followed<UnionOptions>(p)); }},
  };
  for (const Work& work : works) expectPassed(work);
}

TEST_F(Observers, EndTheReadingAndWritingOfFiles) {
  const TemporaryFolder folder;
  std::vector<Work> works;
  for (const FileFormat format :
       {FileFormat::kXnet, FileFormat::kPajek, FileFormat::kList, FileFormat::kMatrixMarket,
        FileFormat::kGml, FileFormat::kGraphMl, FileFormat::kCsv, FileFormat::kArchive}) {
    const std::string name = "format " + std::to_string(static_cast<int>(format));
    const std::string path = folder.path("network");
    works.emplace_back("text of " + name,
                       [=, this](const Progress& p) { return networkText(ring_, format, p); });
    works.emplace_back("file of " + name, [=, this](const Progress& p) {
      WriteOptions options;
      options.format = format;
      options.progress = p;
      return writeNetwork(ring_, path, options);
    });
    if (format == FileFormat::kGraphMl) continue;  // read by a library of its own
    const std::string text = networkText(ring_, format).value();
    works.emplace_back("reading of " + name, [text, format](const Progress& p) {
      ReadOptions options;
      options.format = format;
      options.progress = p;
      return readNetworkText(text, options);
    });
  }
  works.emplace_back("vertexTableText",
                     [&](const Progress& p) { return vertexTableText(ring_, p); });
  for (const Work& work : works) expectPassed(work);
}

TEST_F(Observers, EndTheMakingOfModels) {
  const std::vector<std::uint64_t> degrees(40'000, 2);
  const std::vector<std::uint64_t> sizes{40'000};
  const std::vector<Work> works{
      {"gnp",
       [](const Progress& p) { return gnpNetwork(100'000, 1e-4, followed<ModelOptions>(p)); }},
      {"gnm",
       [](const Progress& p) { return gnmNetwork(100'000, 40'000, followed<ModelOptions>(p)); }},
      {"barabasiAlbert",
       [](const Progress& p) {
         return barabasiAlbertNetwork(40'000, 2, followed<ModelOptions>(p));
       }},
      {"simple configuration",
       [&](const Progress& p) {
         return configurationNetwork(degrees, DegreeLaw::kSimple, followed<ModelOptions>(p));
       }},
      {"configuration",
       [&](const Progress& p) {
         return configurationNetwork(degrees, DegreeLaw::kPairing, followed<ModelOptions>(p));
       }},
      {"wattsStrogatz",
       [](const Progress& p) {
         return wattsStrogatzNetwork(40'000, 2, 0.1, followed<ModelOptions>(p));
       }},
      {"lattice",
       [&](const Progress& p) { return latticeNetwork(sizes, false, followed<ModelOptions>(p)); }},
      {"geometric",
       [](const Progress& p) { return geometricNetwork(40'000, 0.01, followed<ModelOptions>(p)); }},
      {"rewired",
       [&](const Progress& p) { return rewiredNetwork(ring_, 40'000, followed<ModelOptions>(p)); }},
  };
  for (const Work& work : works) expectPassed(work);
}

TEST_F(Observers, EndQuestionsAndWalks) {
  const Network directed = ring_.asDirected().value();
  const WalkLaw law = WalkLaw::of(ringOf(30)).value();
  Walkers walkers = Walkers::at(ring_, std::vector<std::uint64_t>{0, 1}).value();
  const std::vector<Work> works{
      {"components", [&](const Progress& p) { return components(ring_, Connection::kWeak, p); }},
      {"strong components",
       [&](const Progress& p) { return components(directed, Connection::kStrong, p); }},
      {"triangles", [&](const Progress& p) { return triangles(ring_, p); }},
      {"coreNumbers", [&](const Progress& p) { return coreNumbers(ring_, Direction::kAll, p); }},
      {"pageRank",
       [&](const Progress& p) { return pageRank(ring_, followed<PageRankOptions>(p)); }},
      {"distanceHistogram",
       [&](const Progress& p) { return distanceHistogram(ring_, followed<DistanceOptions>(p)); }},
      {"diameter",
       [&](const Progress& p) { return diameter(ring_, followed<DistanceOptions>(p)); }},
      {"WalkLaw",
       [&](const Progress& p) { return WalkLaw::of(ring_, followed<WalkLawOptions>(p)); }},
      {"stationary",
       [&](const Progress& p) { return law.stationary(followed<SolvingOptions>(p)); }},
      {"hittingTimes",
       [&](const Progress& p) { return law.hittingTimes(0, followed<SolvingOptions>(p)); }},
      {"coverTime", [&](const Progress& p) { return law.coverTime(0, followed<CoverOptions>(p)); }},
      {"walk",
       [&](const Progress& p) {
         WalkOptions options;
         options.steps = 10;
         options.progress = p;
         return walkers.walk(options);
       }},
  };
  for (const Work& work : works) expectPassed(work);
  EXPECT_EQ(walkers.walk({.steps = 3}).value().steps, 3U);
}

}  // namespace
}  // namespace veq::test::observers_test
