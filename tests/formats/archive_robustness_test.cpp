#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/archives.hpp"
#include "tests/support/rounds.hpp"

namespace veq::archive_robustness_test {
namespace {

using namespace test;

std::vector<std::string> someArchives() {
  auto properties = threeEdges(true, Weighted::kBoth);
  setAllKindsOfColumns(*properties);
  return {archived(*threeEdges(false, Weighted::kNot)), archived(*properties),
          archived(*VEQNetwork::initWithVertexCapacity_edgeCapacity(0, 0)),
          tinyArchive("f5", "f5", "d855 48 0000c03f 00002040", "d855 44 00009040")};
}

TEST(Archive, NoTruncationIsANetwork) {
  for (const std::string& bytes : someArchives()) {
    ASSERT_TRUE(restored(bytes));
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_FALSE(restored(std::string_view(bytes).substr(0, length))) << length;
    }
    EXPECT_FALSE(restored(bytes + '\0'));
  }
}

// A network as large as its lists say is legal, and too large for a test.
bool namesOnlySmallIndices(const std::string& bytes) {
  VEQKeyedUnarchiver unarchiver(bytes);
  for (const char* key : {"VEQ.xnet.fromList", "VEQ.xnet.toList"}) {
    const auto list = unarchiver.decodeNumberArray(key);
    if (!list) continue;
    for (std::uint64_t i = 0; i < list->count(); ++i) {
      if (list->numberAtIndex(i).as<std::uint64_t>() > 1000) return false;
    }
  }
  return true;
}

// The network that corrupted bytes describe is as sound as any other.
void expectSound(const VEQNetwork& network) {
  std::uint64_t entries = 0;
  for (std::uint64_t v = 0; v < network.countVertices(); ++v) {
    entries += network.countEdgesOfVertexAtIndex(v);
  }
  EXPECT_EQ(entries, network.countEdges() * (network.isDirected() ? 1 : 2));
  for (const auto& [from, to] : endsOf(network)) {
    EXPECT_LT(std::max(from, to), network.countVertices());
  }
  const auto again = throughArchive(network);
  if (again) {
    EXPECT_EQ(endsOf(*again), endsOf(network));
    EXPECT_EQ(again->keysForPropertiesOfVertices(), network.keysForPropertiesOfVertices());
  }
}

TEST(Archive, CorruptedBytesGiveNoNetworkOrASoundOne) {
  std::size_t networks = 0;
  std::size_t refused = 0;
  for (const std::string& whole : someArchives()) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
      for (const int change : {0x01, 0x20, 0x80, 0xff}) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ change);
        if (!namesOnlySmallIndices(bytes)) continue;
        const auto network = restored(bytes);
        ++(network ? networks : refused);
        if (network) expectSound(*network);
      }
    }
  }
  // Both happen: in a key nothing may change, in a weight anything.
  EXPECT_GT(networks, 1000U);
  EXPECT_GT(refused, 1000U);
}

TEST(Archive, ManyCorruptionsAtOnceDoNoHarm) {
  std::mt19937_64 random(42);
  const std::vector<std::string> archives = someArchives();
  for (int round = 0; round < rounds(1500); ++round) {
    std::string bytes = archives[static_cast<std::size_t>(round) % archives.size()];
    for (int changes = round % 7; changes >= 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    if (round % 3 == 0) bytes.erase(random() % bytes.size(), 1);
    if (round % 5 == 0) bytes.insert(random() % bytes.size(), 1, static_cast<char>(random()));
    if (!namesOnlySmallIndices(bytes)) continue;
    if (const auto network = restored(bytes)) expectSound(*network);
  }
}

TEST(Archive, RandomNetworksComeBackWithTheKnownLosses) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 60; ++round) {
    const std::uint64_t n = 1 + random() % 30;
    const std::uint64_t m = random() % 60;
    internal::RawVector<std::uint64_t> from(m);
    internal::RawVector<std::uint64_t> to(m);
    std::uint64_t last = 0;
    for (std::uint64_t e = 0; e < m; ++e) {
      last = std::max({last, from[e] = random() % n, to[e] = random() % n});
    }
    internal::RawVector<float> vertexWeights(n);
    for (float& weight : vertexWeights) weight = static_cast<float>(random() % 100) / 8.0F;
    internal::RawVector<float> edgeWeights(m);
    for (float& weight : edgeWeights) weight = static_cast<float>(random() % 100) / 8.0F;
    const bool weighVertices = round % 4 == 1 || round % 4 == 3;
    const bool weighEdges = round % 4 >= 2;
    const VEQNumberArray ofVertices(vertexWeights);
    const VEQNumberArray ofEdges(edgeWeights);
    auto network = VEQNetwork::
        initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
            n, VEQNumberArray(from), VEQNumberArray(to), round % 2 == 0,
            weighVertices ? &ofVertices : nullptr, weighEdges ? &ofEdges : nullptr);
    ASSERT_TRUE(network);
    setAllKindsOfColumns(*network);

    const auto back = throughArchive(*network);
    if (weighEdges && last + 1 < n) {
      EXPECT_FALSE(back);
      continue;
    }
    ASSERT_TRUE(back);
    EXPECT_EQ(back->countVertices(), last + 1);
    EXPECT_EQ(back->isDirected(), network->isDirected());
    EXPECT_EQ(endsOf(*back), endsOf(*network));
    EXPECT_EQ(back->isVertexWeighted(), weighEdges);
    EXPECT_EQ(back->isEdgeWeighted(), weighVertices);
    if (weighVertices && weighEdges) {
      EXPECT_EQ(back->verticesWeightValues()->description(), ofVertices.description());
      EXPECT_EQ(back->edgesWeightValues()->description(), ofEdges.description());
    }
    expectSameTable(*back->propertiesOfVertices(), *network->propertiesOfVertices());
    expectSameTable(*back->propertiesOfEdges(), *network->propertiesOfEdges());
  }
}

}  // namespace
}  // namespace veq::archive_robustness_test
