// Texts whose lines several threads write, beside those of one.
#include <gmock/gmock.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/formats/format_support.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/temporarily.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/formats/internal/network_text.hpp"
#include "veq/formats/reading.hpp"
#include "veq/formats/writing.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::test::shared_writing_test {
namespace {

using internal::NetworkText;

/// As long as it lives, pieces have so many edges.
struct SmallPiecesOfEdges : Temporarily<std::uint64_t> {
  explicit SmallPiecesOfEdges(std::uint64_t edges)
      : Temporarily(NetworkText::edgesOfPiece, edges) {}
};

/// 100 edges from e to e + 1, with the weight e / 2.
Owned<VEQNetwork> chain(bool weighted) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  internal::RawVector<float> weights;
  for (std::uint64_t e = 0; e < 100; ++e) {
    from.push_back(e);
    to.push_back(e + 1);
    weights.push_back(static_cast<float>(e) / 2);
  }
  const VEQNumberArray array(std::move(weights));
  return VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), false, nullptr,
      weighted ? &array : nullptr);
}

std::string linesOfChain(std::uint64_t first, bool weighted, std::string_view behind) {
  std::string lines;
  for (std::uint64_t e = 0; e < 100; ++e) {
    lines += std::to_string(e + first) + " " + std::to_string(e + 1 + first);
    if (weighted) lines += " " + std::to_string(e / 2) + (e % 2 == 0 ? ".000000" : ".500000");
    lines += behind;
  }
  return lines;
}

TEST(SharedWriting, EveryLineComesInItsOrder) {
  for (const bool weighted : {false, true}) {
    const Owned<VEQNetwork> network = chain(weighted);
    const std::string head = weighted ? "weighted" : "nonweighted";
    const std::string xnet = "#vertices 101 nonweighted\n#edges " + head + " undirected\n" +
                             linesOfChain(0, weighted, "\n");
    const std::string pajek =
        "*Vertices 101\r\n*Edges\r\n" + linesOfChain(1, weighted, weighted ? "\r\n" : " 1.0\r\n");
    const auto look = [&](std::uint64_t edges) {
      const SmallPiecesOfEdges pieces(edges);
      EXPECT_EQ(network->formattedStringValue(), xnet);
      EXPECT_EQ(network->pajekFormattedStringValue(), pajek);
      EXPECT_EQ(network->edgesListFormattedStringValue(), linesOfChain(0, weighted, "\r\n"));
    };
    for (const unsigned threads : {1U, 2U, 3U, 7U, 16U, 64U}) {
      const SharedWork work(threads);
      for (const std::uint64_t edges : {1U, 3U, 100U, 4096U}) look(edges);
    }
    const SharedWork work(3, SharedWork::InReverse());
    for (const std::uint64_t edges : {1U, 3U, 100U}) look(edges);
  }
}

TEST(SharedWriting, FilesAreThoseOfOneThread) {
  const TemporaryFolder folder;
  const Owned<VEQNetwork> network = chain(true);
  const SmallPiecesOfEdges pieces(3);
  const SharedWork work(4);
  EXPECT_TRUE(network->writeToEdgesFile_atomically(folder.path("a.edges"), false));
  EXPECT_EQ(bytesOf(folder.path("a.edges")), linesOfChain(0, true, "\r\n"));
}

TEST(SharedWriting, OnlyTheCallingThreadIsAskedForBytes) {
  const Owned<VEQNetwork> network = chain(true);
  const SmallPiecesOfEdges pieces(1);
  for (int round = 0; round < 3; ++round) {
    const SharedWork work = SharedWork::inTurn(round);
    NetworkText text(internal::CoreAccess::of(*network), {0, "", "\n"});
    std::set<std::thread::id> threads;
    std::string all;
    EXPECT_TRUE(text.giveTo([&](std::string_view piece) {
      threads.insert(std::this_thread::get_id());
      all += piece;
      return true;
    }));
    EXPECT_EQ(threads, std::set<std::thread::id>{std::this_thread::get_id()});
    EXPECT_EQ(text.edgesGiven(), 100U);
    EXPECT_EQ(all, linesOfChain(0, true, "\n"));
  }
}

TEST(SharedWriting, ASinkThatTakesNoMoreOrThrowsEndsIt) {
  const Owned<VEQNetwork> network = chain(false);
  const SmallPiecesOfEdges pieces(2);
  for (int round = 0; round < 3; ++round) {
    const SharedWork work = SharedWork::inTurn(round);
    for (const std::uint64_t most : {0U, 1U, 2U, 13U, 49U}) {
      NetworkText text(internal::CoreAccess::of(*network), {0, "", "\n"});
      std::uint64_t calls = 0;
      EXPECT_FALSE(text.giveTo([&](std::string_view) { return calls++ < most; }));
      EXPECT_EQ(calls, most + 1);
      EXPECT_EQ(text.edgesGiven(), 2 * most);
      NetworkText again(internal::CoreAccess::of(*network), {0, "", "\n"});
      calls = 0;
      EXPECT_THROW(static_cast<void>(again.giveTo([&](std::string_view) {
                     if (calls++ == most) throw 5;
                     return true;
                   })),
                   int);
      EXPECT_EQ(calls, most + 1);
    }
  }
}

}  // namespace
}  // namespace veq::test::shared_writing_test
