// Everything that only reads a network, asked by several threads at once. The handles that this
// makes are made by whoever comes first.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/threads.hpp"
#include "veq/base/diagnostic_log.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/network/network.hpp"

namespace veq::test::concurrent_questions_test {
namespace {

constexpr int kThreads = 4;

Owned<VEQNetwork> weightedNetwork() {
  Owned<VEQNetwork> network = drawDirected("0-1 1-2 2-2 3-4", 300);
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({1, 2, 4, 8}));
  network->setPropertyValue_forKey_atVertexIndex("end", "Name", 299);
  network->setPropertyValue_forKey_atVertexIndex(2.5, "Age", 1);
  network->setPropertyValue_forKey_atEdgeIndex("loop", "Name", 2);
  return network;
}

TEST(ConcurrentQuestions, OfOneVertexOrEdgeAreAnswered) {
  for (int round = 0; round < 10; ++round) {
    const Owned<VEQNetwork> network = weightedNetwork();
    const VEQNetwork& n = *network;
    inThreads(kThreads, [&](int) {
      for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(n.countEdgesOfVertexAtIndex(2), 1U);
        EXPECT_EQ(n.countInEdgesOfVertexAtIndex(2), 2U);
        EXPECT_EQ(indices(n.verticesLinkedToVertexAtIndex(2)), (std::vector<std::uint64_t>{1, 2}));
        EXPECT_EQ(indices(*n.indicesOfEdgesLinkedToVertexAtIndex(2)),
                  (std::vector<std::uint64_t>{1, 2}));
        EXPECT_EQ(n.edgeAtIndex(2)->description(), "loop");
        EXPECT_EQ(n.vertexWithName("end")->identification(), 299U);
        EXPECT_EQ(*n.vertexAtIndex(1)->properties().find("Age"), PropertyValue(2.5));
        EXPECT_TRUE(n.vertexAtIndex(299)->isEqual(*n.vertices()[299]));
        EXPECT_EQ(n.edgeAtIndex(3)->vertexFromVertex(*n.vertexAtIndex(3))->identification(), 4U);
        EXPECT_EQ(VEQEdge::initAtNetwork_identification(n, 3)->weight(), 8.0F);
      }
    });
  }
}

TEST(ConcurrentQuestions, OfTheWholeNetworkAreAnswered) {
  DiagnosticSink previous = setDiagnosticSink([](std::string_view) {});
  const Owned<VEQNetwork> network = weightedNetwork();
  const VEQNetwork& n = *network;
  const auto archived = [&n] {
    VEQKeyedArchiver archiver;
    n.encodeWithCoder(archiver);
    return std::string(archiver.bytes());
  };
  const std::string xnet = n.formattedStringValue();
  const std::string pajek = n.pajekFormattedStringValue();
  const std::string archive = archived();
  inThreads(kThreads, [&](int) {
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(doubles(*n.calcStrengths())[2], 4.0);
      EXPECT_EQ(doubles(*n.calcInDegrees())[2], 2.0);
      const std::unique_ptr<float, void (*)(void*)> matrix(n.buildAdjacencyMatrixInPointer(nullptr),
                                                           std::free);
      EXPECT_EQ(matrix.get()[300 * 3 + 4], 8.0F);
      EXPECT_EQ(n.formattedStringValue(), xnet);
      EXPECT_EQ(n.pajekFormattedStringValue(), pajek);
      EXPECT_EQ(n.edgesListFormattedStringValue(),
                "0 1 1.000000\r\n1 2 2.000000\r\n2 2 4.000000\r\n3 4 8.000000\r\n");
      EXPECT_EQ(archived(), archive);
      EXPECT_EQ(n.connectedSubNetworksArray().size(), 297U);
      EXPECT_EQ(n.largestConnectedSubNetwork()->countVertices(), 3U);
      EXPECT_EQ(VEQNetwork::networkWithNetwork(n)->countEdges(), 4U);
      EXPECT_EQ(VEQNetwork::networkWithVertices_edges(n.vertices(), n.edges())->countVertices(),
                300U);
    }
  });
  setDiagnosticSink(std::move(previous));
}

// What a handle answers without its network it answers while the network dies, too.
TEST(ConcurrentQuestions, AHandlesIdentityMayBeAskedForWhileItsNetworkDies) {
  for (int round = 0; round < 50; ++round) {
    Owned<VEQNetwork> network = weightedNetwork();
    const VEQVertexArray vertices = network->vertices();
    std::vector<Shared<VEQVertex>> handles = {network->vertexAtIndex(7), network->vertexAtIndex(8)};
    inThreads(3, [&](int number) {
      if (number == 0) {
        network.reset();
        return;
      }
      const auto& own = handles[static_cast<std::size_t>(number) - 1];
      bool valid = true;
      while (own->isValid()) valid = handles[0]->isValid();
      static_cast<void>(valid);
      const auto copy = own->copy();
      EXPECT_EQ(copy->identification(), static_cast<std::uint64_t>(6 + number));
      EXPECT_TRUE(copy->isEqual(*own));
      EXPECT_FALSE(handles[0]->isEqual(*handles[1]));
      EXPECT_FALSE(vertices[100]->isValid());
      EXPECT_THROW(static_cast<void>(own->description()), std::invalid_argument);
    });
  }
}

// Networks of their own are the threads' own affair, also where they draw from the one sequence.
TEST(ConcurrentQuestions, EachThreadMayBuildAndEditItsOwnNetworks) {
  std::atomic<std::uint64_t> edges{0};
  inThreads(kThreads, [&](int) {
    for (int i = 0; i < 10; ++i) {
      const auto model =
          VEQNetwork::barabasiNetworkWithInitialVertices_degreeGrowth_iterations(3, 2, 50);
      const auto read =
          VEQNetwork::networkWithNetworkFormattedString(model->formattedStringValue());
      insert(*read, "0-1 1-2");
      read->vertexAtIndex(0)->setName("first");
      edges += read->countEdges();
    }
  });
  EXPECT_EQ(edges, 4U * 10U * 102U);
}

// The log and its sink belong to all threads.
TEST(ConcurrentQuestions, TheSinkOfTheLogMayBeReplacedMeanwhile) {
  DiagnosticSink previous = setDiagnosticSink({});
  std::atomic<int> lines{0};
  inThreads(3, [&](int number) {
    for (int i = 0; i < 200; ++i) {
      if (number == 0) setDiagnosticSink([&lines](std::string_view) { ++lines; });
      if (number == 1) logDiagnostic("line");
      if (number == 2 && diagnosticLogListens()) logDiagnostic("another line");
    }
  });
  logDiagnostic("last");
  EXPECT_GE(lines, 1);
  EXPECT_LE(lines, 401);
  setDiagnosticSink(std::move(previous));
}

}  // namespace
}  // namespace veq::test::concurrent_questions_test
