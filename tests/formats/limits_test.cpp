// Numbers at and around the ends of what types hold, in every format.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/formats/format_support.hpp"
#include "tests/support/archives.hpp"
#include "tests/support/limits.hpp"
#include "tests/support/network_drawing.hpp"
#include "veq/network/network.hpp"

namespace veq::test::limits_test {
namespace {

using N = VEQNetwork;
using Read = Owned<VEQNetwork> (*)(std::string_view);

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLeast = std::numeric_limits<float>::denorm_min();
constexpr float kMost = std::numeric_limits<float>::max();

const Read kXnet = [](std::string_view text) { return N::initWithNetworkFormattedString(text); };
const Read kPajek = [](std::string_view text) {
  return N::initWithNetworkPajekFormattedString(text);
};

// The largest network that such a text could mean has 2^63 vertices: integers in texts saturate.
TEST(FormatLimits, CountsAndIndicesThatMemoryCannotHoldGiveNoNetwork) {
  for (const char* number : {"9007199254740992", "9007199254740993", "9223372036854775806",
                             "9223372036854775807", "9223372036854775808", "18446744073709551615",
                             "18446744073709551616", "99999999999999999999999999"}) {
    const std::string n = number;
    EXPECT_FALSE(kXnet("#vertices " + n + "\n#edges\n")) << n;
    EXPECT_FALSE(kXnet("#vertices " + n + " weighted\n1\n")) << n;
    EXPECT_FALSE(kXnet("#vertices 3\n#edges\n0 1\n" + n + " 0\n")) << n;
    EXPECT_FALSE(kXnet("#vertices 3\n#edges weighted\n0 " + n + " 1.5\n")) << n;
    EXPECT_FALSE(kPajek("*Vertices " + n + "\n*Arcs\n1 1\n")) << n;
    EXPECT_FALSE(kPajek("*Vertices " + n + "\n1 \"a\" 0.1 0.2 0.3\n")) << n;
    EXPECT_FALSE(kPajek("*Vertices 3\n*Arcs\n1 " + n + "\n")) << n;
    EXPECT_FALSE(kPajek("*Vertices 3\n*Edgeslist\n" + n + " 1 2\n")) << n;
    EXPECT_FALSE(kPajek("*Vertices 3\n" + n + " \"a\"\n")) << n;
  }
}

TEST(FormatLimits, NegativeCountsAndIndicesGiveNoNetwork) {
  for (const char* number :
       {"-1", "-2147483649", "-9223372036854775808", "-99999999999999999999"}) {
    const std::string n = number;
    EXPECT_FALSE(kXnet("#vertices " + n + "\n#edges\n")) << n;
    EXPECT_FALSE(kXnet("#vertices 3\n#edges\n" + n + " 0\n")) << n;
    EXPECT_FALSE(kPajek("*Vertices " + n + "\n")) << n;
    EXPECT_FALSE(kPajek("*Vertices 3\n*Edges\n1 " + n + "\n")) << n;
  }
}

// What is too much for 32 bits is not taken for little.
TEST(FormatLimits, CountsAndIndicesAroundThirtyTwoBitsAreMeant) {
  if (kIsSanitized) GTEST_SKIP() << "Sanitizers touch the memory that they hand out.";
  for (const std::uint64_t number :
       {2147483647U, 2147483648U, 2147483649U, 4294967295U, 4294967294U}) {
    const std::string n = std::to_string(number);
    const std::string next = std::to_string(number + 1);
    const std::pair<Owned<VEQNetwork>, std::uint64_t> networks[] = {
        {kXnet("#vertices " + n + "\n#edges\n0 1\n"), number},
        {kXnet("#vertices 3\n#edges\n0 " + n + "\n"), number + 1},
        {kPajek("*Vertices " + n + "\n*Arcs\n1 2\n"), number},
        {kPajek("*Vertices 3\n*Arcs\n1 " + next + "\n"), number + 1}};
    for (const auto& [network, count] : networks) {
      if (!network) continue;  // This machine does not promise as much.
      EXPECT_EQ(network->countVertices(), count);
      EXPECT_EQ(network->countEdges(), 1U);
    }
  }
  // Names for as many vertices as no machine of today holds.
  EXPECT_FALSE(kPajek("*Vertices 1099511627776\n1 \"a\"\n"));
}

TEST(FormatLimits, ArchivesOfIndicesFarBeyondGiveNoNetworkOrTheirOwn) {
  for (const std::uint64_t index : indicesFarBeyond()) {
    if (index < std::uint64_t{1} << 53 && kIsSanitized) continue;
    VEQKeyedArchiver archiver;
    archiver.encodeBool(true, "VEQ.xnet.directed");
    archiver.encodeBool(false, "VEQ.xnet.edgeWeighted");
    archiver.encodeBool(false, "VEQ.xnet.vertexWeighted");
    archiver.encodePropertyTable({}, "VEQ.xnet.edgesProperties");
    archiver.encodePropertyTable({}, "VEQ.xnet.verticesProperties");
    archiver.encodeNumberArray(VEQNumberArray::ofIndices({index}), "VEQ.xnet.fromList");
    archiver.encodeNumberArray(VEQNumberArray::ofIndices({0}), "VEQ.xnet.toList");
    const Owned<VEQNetwork> network = restored(archiver.bytes());
    if (index > std::uint64_t{1} << 40) {
      EXPECT_FALSE(network) << index;
    }
    if (network) {
      EXPECT_EQ(network->countVertices(), index + 1);
    }
  }
}

Owned<VEQNetwork> withUnusualWeights() {
  Owned<VEQNetwork> network = drawDirected("0-1 1-2 2-3 3-4 4-5 5-0 0-2");
  network->setEdgesWeightValues(
      VEQNumberArray::ofFloats({kInfinity, -kInfinity, std::nanf(""), kLeast, -0.0F, kMost, 0.5F}));
  return network;
}

void expectWeights(const VEQNetwork& network, const std::vector<float>& expected) {
  const std::vector<float> weights = edgeWeightsOf(network);
  ASSERT_EQ(weights.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(std::bit_cast<std::uint32_t>(weights[i]), std::bit_cast<std::uint32_t>(expected[i]))
        << weights[i] << " for " << expected[i];
  }
}

TEST(FormatLimits, UnusualWeightsComeBackAsDocumented) {
  const Owned<VEQNetwork> network = withUnusualWeights();
  const std::string lines =
      "0 1 inf\n1 2 -inf\n2 3 nan\n3 4 0.000000\n4 5 -0.000000\n"
      "5 0 340282346638528859811704183484516925440.000000\n0 2 0.500000\n";
  EXPECT_EQ(network->formattedStringValue(),
            "#vertices 6 nonweighted\n#edges weighted directed\n" + lines);
  expectWeights(*kXnet(network->formattedStringValue()), {1, 1, 1, 0, -0.0F, kMost, 0.5F});
  expectWeights(*kPajek(network->pajekFormattedStringValue()), {1, 1, 1, 0, -0.0F, kMost, 0.5F});
  expectWeights(
      *N::initWithEdgesListString_directed(network->edgesListFormattedStringValue(), true),
      {0, 0, 0, 0, -0.0F, kMost, 0.5F});
  // An archive that has weights of both kinds keeps every bit.
  network->setVerticesWeightValues(VEQNumberArray::ofFloats({1, 2, 3, 4, 5, 6}));
  expectWeights(*throughArchive(*network),
                {kInfinity, -kInfinity, std::nanf(""), kLeast, -0.0F, kMost, 0.5F});
}

TEST(FormatLimits, UnusualNumbersOfPropertiesComeBackAsDocumented) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<double> numbers = {
      infinity, -infinity, std::nan(""), 5e-324, -0.0, 1.7976931348623157e308, 9007199254740993.0};
  const Owned<VEQNetwork> network = drawDirected("0-1 1-2 2-3 3-4 4-5 5-6");
  for (std::uint64_t v = 0; v < 7; ++v) {
    network->setPropertyValue_forKey_atVertexIndex(numbers[v], "number", v);
    network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(numbers[v], 1, numbers[v]), "space",
                                                   v);
  }
  const std::vector<double> read = {0, 0, 0, 0, -0.0, 1.7976931348623157e308, 9007199254740992.0};
  const Owned<VEQNetwork> xnet = kXnet(network->formattedStringValue());
  const Owned<VEQNetwork> archive = throughArchive(*network);
  const auto expectBits = [](double value, double expected) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected))
        << value << " for " << expected;
  };
  for (std::uint64_t v = 0; v < 7; ++v) {
    const PropertyMap fromText = xnet->propertiesOfVertexAtIndex(v);
    expectBits(fromText.find("number")->number()->as<double>(), read[v]);
    expectBits(fromText.find("space")->vector3d()->x(), read[v]);
    expectBits(fromText.find("space")->vector3d()->z(), read[v]);
    const PropertyMap fromBytes = archive->propertiesOfVertexAtIndex(v);
    expectBits(fromBytes.find("number")->number()->as<double>(), numbers[v]);
    expectBits(fromBytes.find("space")->vector3d()->z(), numbers[v]);
  }
}

// Positions of a Pajek file are spread over a range, which nothing but finite numbers has.
TEST(FormatLimits, UnusualPositionsAreReadWithoutHarm) {
  for (const char* position : {"1e38 -1e38 3.4e38", "1e39 -1e39 0", "1e-45 0 -0", "nan inf 1"}) {
    const Owned<VEQNetwork> network =
        kPajek("*Vertices 2\n1 \"a\" " + std::string(position) + "\n2 \"b\" 0 0 0\n");
    ASSERT_TRUE(network) << position;
    EXPECT_EQ(vertexTexts(*network, "Position").size(), 2U);
  }
}

}  // namespace
}  // namespace veq::test::limits_test
