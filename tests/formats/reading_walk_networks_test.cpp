// Walk-only networks from files: by literal lists, beside whole networks of the same files, and of
// files that are broken in every way.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/formats/reading_support.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/small_pieces.hpp"
#include "tests/support/temporarily.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/base/internal/file_calls.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/formats/archive_file.hpp"
#include "veq/formats/walk_reading.hpp"
#include "veq/formats/writing.hpp"

namespace veq::test::reading_walk_networks_test {
namespace {

/// "directed: 0>1,1 1> 2>0" of the lists in order, or the error with its kind and line.
std::string rowsOf(const WalkReading& reading) {
  if (!reading) {
    const char* const kinds[] = {"argument", "file", "format", "unsupported", "memory", "stopped"};
    const Error& error = reading.error();
    return std::string(kinds[static_cast<int>(error.kind())]) + " " +
           std::to_string(error.place().value_or(Place{}).line) + ": " + error.text();
  }
  const WalkNetwork& network = reading.value();
  std::string text = network.isDirected() ? "directed:" : "undirected:";
  for (std::uint64_t v = 0; v < network.countVertices(); ++v) {
    text += " " + std::to_string(v) + ">";
    for (const std::uint64_t to : network.neighbours(v)) text += std::to_string(to);
  }
  return text;
}

Texts walkNotesOf(const WalkReading& reading) {
  Texts texts;
  for (const Note& note : reading.notes()) texts.push_back(noteText(note));
  return texts;
}

class ReadingWalkNetworks : public testing::Test {
 protected:
  std::string read(std::string_view text, const WalkReadOptions& options = {}) {
    return rowsOf(readWalkNetwork(folder_.write("file", text), options));
  }
  Texts notes(std::string_view text, const WalkReadOptions& options = {}) {
    return walkNotesOf(readWalkNetwork(folder_.write("file", text), options));
  }

  TemporaryFolder folder_;
};

TEST_F(ReadingWalkNetworks, ReadsListsOfIntegers) {
  EXPECT_EQ(read("0 1\n2 1\n"), "undirected: 0>1 1>02 2>1");
  EXPECT_EQ(read("# Directed graph (each unordered pair once)\n0\t1\n2\t1"),
            "directed: 0>1 1> 2>1");
  EXPECT_EQ(read("% asym unweighted\n\n1,3\n% and so on\n1 , 2\n"), "directed: 0> 1>32 2> 3>");
  EXPECT_EQ(read("source;target\n0;1\n1;1\n"), "undirected: 0>1 1>011");
  EXPECT_EQ(read("\xEF\xBB\xBF"
                 "0 1\r\n1 2\r\n"),
            "undirected: 0>1 1>02 2>1");
  EXPECT_EQ(read("0 1\r1 2\r"), "undirected: 0>1 1>02 2>1");
  EXPECT_EQ(read("0 1\n# Gr\xFC\xDF"
                 "e\n1 2\n"),
            "undirected: 0>1 1>02 2>1");
  WalkReadOptions directed;
  directed.reading.directed = true;
  EXPECT_EQ(read("0 1\n2 1\n", directed), "directed: 0>1 1> 2>1");
}

TEST_F(ReadingWalkNetworks, LeavesWeightsOutAndSaysSo) {
  EXPECT_EQ(read("0 1 2.5\n1 2 -3\n"), "undirected: 0>1 1>02 2>1");
  EXPECT_EQ(notes("0 1 2.5\n1 2 -3\n"),
            (Texts{"1:1 left out x1: the weights are left out, which a walk-only network does not "
                   "keep"}));
  EXPECT_EQ(notes("0 1\n1 2\n"), Texts());
  WalkReadOptions strict;
  strict.reading.strict = true;
  EXPECT_EQ(read("0 1 2.5\n", strict),
            "format 1: the weights are left out, which a walk-only network does not keep");
}

TEST_F(ReadingWalkNetworks, ReadsMatrices) {
  EXPECT_EQ(read("%%MatrixMarket matrix coordinate pattern general\n3 3 2\n1 2\n1 3\n"),
            "directed: 0>12 1> 2>");
  EXPECT_EQ(read("%%MatrixMarket matrix coordinate real symmetric\n4 4 2\n2 1 0.5\n3 3 1\n"),
            "undirected: 0>1 1>0 2>22 3>");
  EXPECT_EQ(read("%%MatrixMarket matrix coordinate pattern general\n2 1 1\n2 1\n"),
            "undirected: 0> 1>2 2>1");
  EXPECT_EQ(read("%%MatrixMarket matrix array real general\n2 2\n0\n1\n2\n0\n"),
            "directed: 0>1 1>0");
  EXPECT_EQ(read("%%MatrixMarket matrix coordinate pattern general\n3 3 2\n1 2\n"),
            "format 2: 1 entries instead of 2");
  EXPECT_EQ(read("%%MatrixMarket matrix coordinate pattern general\n3 3 1\n1 4\n"),
            "format 3: 4 in a matrix of 3 rows and 3 columns");
  EXPECT_EQ(read("%%MatrixMarket matrix coordinate pattern general\n"
                 "900000000 900000000 0\n"),
            "format 2: 900000000 vertices, more than the 1004544 that a text of 71 bytes may have");
}

TEST_F(ReadingWalkNetworks, ReadsArchivesThatKeepEverything) {
  BuildOptions directed;
  directed.directed = true;
  directed.vertices = 4;
  const Network network = Network::build({{2, 0}, {0, 1}, {2, 1}}, directed).value();
  const std::string file = folder_.path("network.veqa");
  ASSERT_TRUE(writeNetwork(network, file));
  const WalkReading reading = readWalkNetwork(file);
  EXPECT_EQ(rowsOf(reading), "directed: 0>1 1> 2>01 3>");
  EXPECT_EQ(reading.format(), FileFormat::kArchive);
  EXPECT_EQ(walkNotesOf(reading),
            (Texts{"0:0 taken x1: weights and properties, if there are any, are left out"}));

  const std::string bytes = bytesOf(file);
  for (std::size_t size = 1; size < bytes.size(); ++size) {
    const WalkReading cut = readWalkNetwork(folder_.write("cut", bytes.substr(0, size)));
    // What follows the edges is not read.
    EXPECT_TRUE(!cut || size > bytes.find("VEQ.network.to") + 14 + 3 + 3 * 8) << size;
  }
  std::string other = bytes;
  other.replace(other.find("VEQ.network.directed"), 20, "VEQ.network.undirect");
  EXPECT_EQ(read(other),
            "unsupported 1: an archive of the published kind, or with its entries in another order "
            "than they are written in, is read as a whole network");
  ASSERT_TRUE(writeArchiveToFile(*network.published(), file, true));
  EXPECT_EQ(rowsOf(readWalkNetwork(file)),
            "unsupported 1: an archive of the published kind, or with its entries in another order "
            "than they are written in, is read as a whole network");
}

TEST_F(ReadingWalkNetworks, SaysWhatOnlyWholeNetworksHold) {
  const std::string lacks =
      " is not two integers, with or without a weight: a walk-only network has neither names nor "
      "columns";
  EXPECT_EQ(read("Ada Bob\nBob Eve\n"), "unsupported 1: \"Ada Bob\"" + lacks);
  EXPECT_EQ(read("0 1\n1 2\n# well\n  2 Eve \n0 3\n"), "unsupported 4: \"2 Eve\"" + lacks);
  EXPECT_EQ(read("0 1 1 7\n"), "unsupported 1: \"0 1 1 7\"" + lacks);
  EXPECT_EQ(read("0 1 1\n0 1\n"), "unsupported 2: \"0 1\"" + lacks);
  EXPECT_EQ(read("0 1\n5\n"), "unsupported 2: \"5\"" + lacks);
  EXPECT_EQ(read("source,target\n\"0\",1\n"), "unsupported 2: \"\"0\",1\"" + lacks);
  EXPECT_EQ(read("weight,source,target\n1,0,1\n"),
            "unsupported 1: columns before those of the ends are read as a whole network");
  EXPECT_EQ(read("% bip unweighted\n1 1\n"),
            "unsupported 1: two kinds of vertices are read as a whole network");
  EXPECT_EQ(read("graph [ node [ id 0 ] ]\n"),
            "unsupported 1: gml is read as a whole network: a walk-only one is read from lists of "
            "integers, Matrix Market and archives");
  EXPECT_EQ(read(""), "format 1: the file is empty");
  EXPECT_EQ(read("# nothing\n"), "format 1: no format that is known");
  EXPECT_EQ(read("\x1F\x8B and so on"),
            "unsupported 1: compressed by gzip, which the library veq::readers reads");
  EXPECT_EQ(rowsOf(readWalkNetwork(folder_.path("none"))), "file 0: No such file or directory");
}

TEST_F(ReadingWalkNetworks, RefusesIndicesThatCannotBe) {
  EXPECT_EQ(read("0 1\n3 -1\n"), "format 2: the id -1 is no index");
  EXPECT_EQ(read("0 1\n\n9223372036854775807 2\n"),
            "format 3: 9223372036854775808 vertices, more than the 1001728 that a text of 27 bytes "
            "may have");
  EXPECT_EQ(read("0 18446744073709551615\n").substr(0, 13), "unsupported 1");
  WalkReadOptions options;
  options.reading.mostVertices = 3;
  EXPECT_EQ(read("0 1\n2 2\n", options), "undirected: 0>1 1>0 2>22");
  EXPECT_EQ(read("0 1\n2 3\n", options), "format 2: 4 vertices, more than the 3 that are allowed");
  options.reading.mostVertices = UINT64_MAX;
  EXPECT_EQ(read("0 4294967295\n", options),
            "format 1: the id 4294967295 is beyond 4294967295 vertices");
  options.mostMemory = 100;
  EXPECT_EQ(read("0 1\n0 99\n", options),
            "memory 0: 100 vertices and 0 list entries take 808 bytes, and there are 100");
}

TEST_F(ReadingWalkNetworks, SpoolsPipesAndTellsWhereTo) {
  const std::string pipe = folder_.path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const auto readFrom = [&](const std::string& bytes, const WalkReadOptions& options) {
    std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << bytes; });
    WalkReading reading = readWalkNetwork(pipe, options);
    writer.join();
    return reading;
  };
  WalkReadOptions here;
  here.spoolFolder = folder_.path(".");
  const WalkReading reading = readFrom("0 1\n1 2\n", here);
  EXPECT_EQ(rowsOf(reading), "undirected: 0>1 1>02 2>1");
  if (VEQ_POSIX_FILES != 0) {
    EXPECT_EQ(walkNotesOf(reading),
              (Texts{"0:0 taken x1: 8 bytes of a pipe are spooled to a file without a name in " +
                     here.spoolFolder}));
  }
  EXPECT_EQ(folder_.names(), (std::vector<std::string>{"pipe"}));
  EXPECT_EQ(rowsOf(readFrom("", {})), "format 1: the file is empty");
  WalkReadOptions nowhere;
  nowhere.spoolFolder = folder_.path("none");
  if (VEQ_POSIX_FILES != 0) {
    // Nothing is written to it, for nobody would read it.
    EXPECT_EQ(rowsOf(readFrom("", nowhere)),
              "file 0: spooling to " + nowhere.spoolFolder + ": No such file or directory");
  }
}

TEST_F(ReadingWalkNetworks, NoticesThatAFileChangedBetweenTheReadings) {
  const std::string file = folder_.write("file", "0 1\n1 2\n");
  WalkReadOptions options;
  options.announce = [&](const WalkNetworkSize& size) {
    EXPECT_EQ(size, (WalkNetworkSize{3, 2, 4}));
    static_cast<void>(folder_.write("file", "0 1\n1 0\n"));
  };
  EXPECT_EQ(rowsOf(readWalkNetwork(file, options)),
            "argument 0: the source gave other edges when it was asked again");
  options.announce = [&](const WalkNetworkSize&) {
    static_cast<void>(folder_.write("file", "0 1\n1 2"));
  };
  EXPECT_EQ(rowsOf(readWalkNetwork(folder_.write("file", "0 1\n1 2\n"), options)),
            "undirected: 0>1 1>02 2>1");
  options.announce = [&](const WalkNetworkSize&) { static_cast<void>(folder_.write("file", "")); };
  EXPECT_EQ(rowsOf(readWalkNetwork(folder_.write("file", "0 1\n1 2\n"), options)),
            "argument 0: the source gave other edges when it was asked again");
}

TEST_F(ReadingWalkNetworks, StopsAndTellsItsProgressByBytes) {
  std::string text;
  for (int line = 0; line < 1'000'000; ++line) text += "10 11\n";
  std::vector<std::pair<std::uint64_t, std::uint64_t>> told;
  const Temporarily<std::chrono::milliseconds> always(internal::Pace::usualInterval,
                                                      std::chrono::milliseconds(0));
  WalkReadOptions options;
  options.reading.progress.observer = [&](std::uint64_t done, std::uint64_t all) {
    told.emplace_back(done, all);
  };
  const std::string file = folder_.write("file", text);
  EXPECT_TRUE(readWalkNetwork(file, options));
  EXPECT_EQ(told.back(), (std::pair<std::uint64_t, std::uint64_t>{12'000'000, 12'000'000}));
  const StopSource stop;
  stop.requestStop();
  options.reading.progress = {};
  options.reading.progress.stop = stop.token();
  EXPECT_EQ(rowsOf(readWalkNetwork(file, options)), "stopped 0: stopped");
}

// Lists of all kinds, longer than what is read at once, by any number of threads.
TEST_F(ReadingWalkNetworks, ReadsWhatWholeNetworksAre) {
  std::mt19937_64 draw(4);
  for (int round = 0; round < rounds(40); ++round) {
    const SharedWork work = SharedWork::inTurn(round);
    const SmallPieces cut(round % 4 == 3 ? std::size_t{1} << 18 : 1 + draw() % 60);
    const std::uint64_t edges = round % 8 == 7 ? 700'000 : draw() % 200;
    const std::uint64_t vertices = 1 + draw() % (round % 8 == 7 ? 10'000 : 30);
    const bool isWeighted = draw() % 2 == 0;
    const char* const separator = std::vector<const char*>{" ", "\t", ",", " ; "}[draw() % 4];
    const char* const end = draw() % 3 == 0 ? "\r\n" : "\n";
    std::string text = draw() % 2 == 0
                           ? ""
                           : std::string("source") + separator + "target" +
                                 (isWeighted ? separator : "") + (isWeighted ? "weight" : "") + end;
    for (std::uint64_t e = 0; e <= edges; ++e) {
      if (draw() % 50 == 0) text += std::string("# as it is") + end;
      text += std::to_string(draw() % vertices) + separator + std::to_string(draw() % vertices);
      if (isWeighted) text += separator + std::to_string(draw() % 9) + ".5";
      text += end;
    }
    WalkReadOptions options;
    options.reading.directed = draw() % 2 == 0;
    options.reading.idsAreIndices = true;
    const std::string file = folder_.write("file", text);
    const WalkReading rows = readWalkNetwork(file, options);
    const Reading whole = readNetwork(file, options.reading);
    ASSERT_TRUE(rows) << rows.error().text();
    ASSERT_TRUE(whole) << whole.error().text();
    ASSERT_EQ(rows.value().countVertices(), whole.value().countVertices());
    ASSERT_EQ(rows.value().countEdges(), edges + 1);
    for (std::uint64_t v = 0; v < rows.value().countVertices(); ++v) {
      ASSERT_EQ(rows.value().neighbours(v), whole.value().neighbours(v)) << "round " << round;
    }
  }
}

TEST(SpoolFile, GivesWhatWasWrittenFromAnyPlace) {
  const TemporaryFolder folder;
  internal::SpoolFile spool(folder.path("."));
  ASSERT_FALSE(spool.error());
  EXPECT_TRUE(spool.write("abc"));
  EXPECT_TRUE(spool.write("defg"));
  std::string bytes(10, '.');
  EXPECT_EQ(spool.readAt(2, bytes.data(), 4), 4U);
  EXPECT_EQ(bytes, "cdef......");
  EXPECT_EQ(spool.readAt(0, bytes.data(), 10), 7U);
  EXPECT_EQ(bytes, "abcdefg...");
  EXPECT_EQ(spool.readAt(7, bytes.data(), 1), 0U);
  EXPECT_FALSE(spool.error());
  EXPECT_EQ(folder.names(), std::vector<std::string>());
}

}  // namespace
}  // namespace veq::test::reading_walk_networks_test
