// Texts that are so long that their lines come in several pieces.
#include "veq/formats/internal/network_text.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/formats/format_support.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq::test::network_text_test {
namespace {

using internal::CoreAccess;
using internal::NetworkText;

constexpr std::uint64_t kEdges = 40'000;

// Edge e leads from e to 2e + 1, with the weight e / 4, whose decimals are exact.
Owned<VEQNetwork> longNetwork() {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  internal::RawVector<float> weights;
  for (std::uint64_t e = 0; e < kEdges; ++e) {
    from.push_back(e);
    to.push_back(2 * e + 1);
    weights.push_back(static_cast<float>(e) / 4);
  }
  const VEQNumberArray weightArray(std::move(weights));
  return VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), true, nullptr, &weightArray);
}

std::string expectedLines(std::uint64_t first, const std::string& lineEnd) {
  const std::string fractions[] = {".000000", ".250000", ".500000", ".750000"};
  std::string lines;
  for (std::uint64_t e = 0; e < kEdges; ++e) {
    lines += std::to_string(e + first) + ' ' + std::to_string(2 * e + 1 + first) + ' ' +
             std::to_string(e / 4) + fractions[e % 4] + lineEnd;
  }
  return lines;
}

TEST(NetworkText, AStringAndAFileHaveEveryLine) {
  const Owned<VEQNetwork> network = longNetwork();
  const TemporaryFolder folder;
  const std::string xnet =
      "#vertices 80000 nonweighted\n#edges weighted directed\n" + expectedLines(0, "\n");
  const std::string pajek = "*Vertices 80000\r\n*Arcs\r\n" + expectedLines(1, "\r\n");
  const std::string edges = expectedLines(0, "\r\n");
  EXPECT_TRUE(network->formattedStringValue() == xnet);
  EXPECT_TRUE(network->pajekFormattedStringValue() == pajek);
  EXPECT_TRUE(network->edgesListFormattedStringValue() == edges);
  for (const bool atomically : {false, true}) {
    EXPECT_TRUE(network->writeToFile_atomically(folder.path("a.xnet"), atomically));
    EXPECT_TRUE(network->writeToPajekFile_atomically(folder.path("a.net"), atomically));
    EXPECT_TRUE(network->writeToEdgesFile_atomically(folder.path("a.edges"), atomically));
    EXPECT_TRUE(bytesOf(folder.path("a.xnet")) == xnet);
    EXPECT_TRUE(bytesOf(folder.path("a.net")) == pajek);
    EXPECT_TRUE(bytesOf(folder.path("a.edges")) == edges);
  }
}

TEST(NetworkText, StopsWhereItIsRefused) {
  const Owned<VEQNetwork> network = longNetwork();
  NetworkText text(CoreAccess::of(*network), {0, "", "\n"});
  text.beforeEdges = "before\n";
  text.behindEdges = "behind\n";
  const std::string whole = "before\n" + expectedLines(0, "\n") + "behind\n";
  std::size_t pieces = 0;
  EXPECT_TRUE(text.giveTo([&](std::string_view) { return ++pieces > 0; }));
  EXPECT_GT(pieces, 5U);
  for (std::size_t taken = 0; taken < pieces; ++taken) {
    std::size_t offered = 0;
    std::string arrived;
    EXPECT_FALSE(text.giveTo([&](std::string_view piece) {
      if (offered++ == taken) return false;
      arrived += piece;
      return true;
    }));
    EXPECT_EQ(offered, taken + 1);
    EXPECT_TRUE(whole.compare(0, arrived.size(), arrived) == 0);
    EXPECT_LT(arrived.size(), whole.size());
  }
}

TEST(NetworkText, WithoutEdgesIsWhatStandsAroundThem) {
  const Owned<VEQNetwork> network = VEQNetwork::initWithVertexCapacity_edgeCapacity(3, 3);
  NetworkText text(CoreAccess::of(*network), {0, "", "\n"});
  EXPECT_EQ(text.whole(), "");
  text.beforeEdges = "before ";
  text.behindEdges = "behind";
  EXPECT_EQ(text.whole(), "before behind");
}

TEST(NetworkText, AFullDeviceRefusesIt) {
  const Owned<VEQNetwork> network = longNetwork();
  for (const bool atomically : {false, true}) {
    EXPECT_FALSE(network->writeToFile_atomically("/dev/full", atomically));
    EXPECT_FALSE(network->writeToPajekFile_atomically("/dev/full", atomically));
    EXPECT_FALSE(network->writeToEdgesFile_atomically("/dev/full", atomically));
  }
}

}  // namespace
}  // namespace veq::test::network_text_test
