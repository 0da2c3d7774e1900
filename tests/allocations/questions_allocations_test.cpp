// Every question to a network and its handles, each of whose allocations is made to fail:
// std::bad_alloc or the whole answer, and the network is as it was.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/network_dump.hpp"
#include "veq/base/diagnostic_log.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/network/network.hpp"

namespace veq::test::questions_allocations_test {
namespace {

using N = const VEQNetwork&;

const std::string kLongName = "a name that is too long to lie within the string";
const VEQNumberArray where = VEQNumberArray::ofIndices({1, 0});
const PropertyValue longValue(kLongName);

// Two components, {0, 1, 2} with a self-loop and {3, 4}.
Shared<VEQNetwork> makeNetwork() {
  Shared<VEQNetwork> network = drawDirected("0-1 1-2 2-2 3-4");
  network->setVerticesWeightValues(VEQNumberArray::ofFloats({1, 2, 3, 4, 5}));
  network->setEdgesWeightValues(VEQNumberArray::ofFloats({1, 2, 4, 8}));
  network->setPropertyValue_forKey_atVertexIndex(kLongName, "Name", 1);
  network->setPropertyValue_forKey_atVertexIndex(4.5, "Age", 2);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector2d(1, 2), "Plane", 0);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(1, 2, 3), "Space", 0);
  network->setPropertyValue_forKey_atEdgeIndex(kLongName, "Kind", 0);
  return network;
}

std::string join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += text + "|";
  return joined;
}
std::string say(const Shared<VEQNumberArray>& array) { return array->description(); }
std::string say(const Shared<PropertyColumn>& column) { return join(texts(*column)); }
template <class Kind>
std::string say(const HandleArray<Kind>& handles) {
  std::string joined;
  for (std::uint64_t i = 0; i < handles.count(); ++i) {
    joined += std::to_string(handles[i]->identification()) + "|";
  }
  return joined;
}
template <class T>
std::string say(const std::optional<T>& value) {
  return value ? say(*value) : "nothing";
}
std::string say(const PropertyMap& values) {
  std::string joined;
  for (const auto& [key, value] : values) joined += key + "=" + value.text() + "|";
  return joined;
}
std::string say(const PropertyTable& table) { return dump(table); }
std::string say(const std::vector<std::string>& texts) { return join(texts); }
std::string say(const std::string& text) { return text; }
template <class Self>
std::string say(const Shared<Self>& handle) {
  return std::to_string(handle->identification());
}

struct Question {
  const char* name;
  std::string (*ask)(N);
};

void PrintTo(const Question& question, std::ostream* out) { *out << question.name; }

class EveryQuestion : public testing::TestWithParam<Question> {};

TEST_P(EveryQuestion, IsAnsweredOrThrows) {
  const Question& question = GetParam();
  DiagnosticSink previous = setDiagnosticSink([](std::string_view) {});
  const Shared<VEQNetwork> reference = makeNetwork();
  const std::string whole = question.ask(*reference);
  const std::string before = dump(reference.get());
  std::string answer;
  // On a network whose handles nobody has asked for yet.
  const std::uint64_t failures = forEachFailingAllocation(
      makeNetwork, [&](Shared<VEQNetwork>& network) { answer = question.ask(*network); },
      [&](Shared<VEQNetwork>& network, bool failed) {
        if (failed) {
          EXPECT_EQ(answer, "");
          EXPECT_EQ(dump(network.get()), before);
          EXPECT_EQ(question.ask(*network), whole);
        } else {
          EXPECT_EQ(answer, whole);
        }
        std::string().swap(answer);
      });
  EXPECT_GE(failures, 1U);
  EXPECT_EQ(dump(reference.get()), before);
  setDiagnosticSink(std::move(previous));
}

#define ASK(name, expression)                 \
  {                                           \
    name, [](N n) { return say(expression); } \
  }

const Question kByIndex[] = {
    ASK("edges_from", n.edgesLinkedFromVertexAtIndex(2)),
    ASK("edges_to", n.edgesLinkedToVertexAtIndex(2)),
    ASK("vertices_from", n.verticesLinkedFromVertexAtIndex(2)),
    ASK("vertices_to", n.verticesLinkedToVertexAtIndex(2)),
    ASK("indices_of_edges_from", n.indicesOfEdgesLinkedFromVertexAtIndex(2)),
    ASK("indices_of_edges_to", n.indicesOfEdgesLinkedToVertexAtIndex(2)),
    ASK("indices_of_vertices_from", n.indicesOfVerticesLinkedFromVertexAtIndex(2)),
    ASK("indices_of_vertices_to", n.indicesOfVerticesLinkedToVertexAtIndex(2)),
    ASK("vertex", n.vertexAtIndex(1)),
    ASK("edge", n.edgeAtIndex(1)),
    ASK("vertices", n.vertices()),
    ASK("edges", n.edges()),
    ASK("some_vertices", n.vertices().subarrayWithIndices(where)),
    ASK("by_hand", VEQEdge::initAtNetwork_identification(n, 1)->toVertex()),
};

const Question kByHandle[] = {
    ASK("edges_from", n.edgesLinkedFromVertex(*n.vertexAtIndex(2))),
    ASK("edges_to", n.edgesLinkedToVertex(*n.vertexAtIndex(2))),
    ASK("vertices_from", n.verticesLinkedFromVertex(*n.vertexAtIndex(2))),
    ASK("vertices_to", n.verticesLinkedToVertex(*n.vertexAtIndex(2))),
    ASK("indices_of_edges_from", n.indicesOfEdgesLinkedFromVertex(*n.vertexAtIndex(2))),
    ASK("indices_of_edges_to", n.indicesOfEdgesLinkedToVertex(*n.vertexAtIndex(2))),
    ASK("indices_of_vertices_from", n.indicesOfVerticesLinkedFrom(*n.vertexAtIndex(2))),
    ASK("indices_of_vertices_to", n.indicesOfVerticesLinkedTo(*n.vertexAtIndex(2))),
};

const Question kOfTheWhole[] = {
    ASK("degrees", n.calcDegrees()),
    ASK("in_degrees", n.calcInDegrees()),
    ASK("strengths", n.calcStrengths()),
    ASK("in_strengths", n.calcInStrengths()),
    ASK("vertex_weights", n.verticesWeightValues()),
    ASK("edge_weights", n.edgesWeightValues()),
    ASK("vertex_named", n.vertexWithName(kLongName)),
    ASK("vertices_named", n.verticesWithName(kLongName)),
    ASK("matrix_text", n.VEQ_MatrixDebug()),
    ASK("description", n.description()),
    ASK("largest_component", dump(n.largestConnectedSubNetwork().get())),
    ASK("components",
        [&] {
          std::string all;
          for (const auto& part : n.connectedSubNetworksArray()) all += dump(part.get());
          return all;
        }()),
};

const Question kProperties[] = {
    ASK("of_vertex", n.propertiesOfVertexAtIndex(1)),
    ASK("of_edge", n.propertiesOfEdgeAtIndex(0)),
    ASK("of_vertices", n.propertiesOfVerticesAtIndexArray(where)),
    ASK("of_edges", n.propertiesOfInEdgesAtIndexArray(where)),
    ASK("of_vertices_for_key", n.propertiesOfVerticesAtIndexArray_forKey(where, "Name")),
    ASK("of_edges_for_key", n.propertiesOfEdgesAtIndexArray_forKey(where, "Kind")),
    ASK("names_of_vertices", n.namesOfVerticesAtIndexArray(where)),
    ASK("names_of_edges", n.namesOfEdgesAtIndexArray(where)),
    ASK("editable_vertices", n.areEditableVerticesAtIndexArray(where)),
    ASK("editable_edges", n.areEditableEdgesAtIndexArray(where)),
    ASK("vertex_keys", n.keysForPropertiesOfVertices()),
    ASK("edge_keys", n.keysForPropertiesOfEdges()),
};

const Question kHandles[] = {
    ASK("vertex_description", n.vertexAtIndex(1)->description()),
    ASK("vertex_name", n.vertexAtIndex(1)->name().text()),
    ASK("vertex_properties", n.vertexAtIndex(1)->properties()),
    ASK("vertex_property", n.vertexAtIndex(1)->propertyForKey("Age")),
    ASK("vertex_keys", n.vertexAtIndex(1)->keysForProperties()),
    ASK("vertex_edges", n.vertexAtIndex(2)->edges()),
    ASK("vertex_neighbors", n.vertexAtIndex(2)->neighborVertices()),
    ASK("vertex_in_edges", n.vertexAtIndex(2)->inEdges()),
    ASK("vertex_in_neighbors", n.vertexAtIndex(2)->inNeighborVertices()),
    ASK("vertex_edge", n.vertexAtIndex(2)->edgeAtIndex(0)),
    ASK("vertex_next", n.vertexAtIndex(2)->nextVertexAtIndex(0)),
    ASK("vertex_in_edge", n.vertexAtIndex(2)->inEdgeAtIndex(1)),
    ASK("vertex_previous", n.vertexAtIndex(2)->previousVertexAtIntex(1)),
    ASK("vertex_copy", n.vertexAtIndex(2)->copy()),
    ASK("edge_description", n.edgeAtIndex(0)->description()),
    ASK("edge_name", n.edgeAtIndex(0)->name().text()),
    ASK("edge_properties", n.edgeAtIndex(0)->properties()),
    ASK("edge_property", n.edgeAtIndex(0)->propertyForKey("Kind")),
    ASK("edge_keys", n.edgeAtIndex(0)->keysForProperties()),
    ASK("edge_from", n.edgeAtIndex(1)->fromVertex()),
    ASK("edge_to", n.edgeAtIndex(1)->toVertex()),
    ASK("edge_other_end", n.edgeAtIndex(1)->vertexFromVertex(*n.vertexAtIndex(1))),
};

const Question kTexts[] = {
    ASK("xnet", n.formattedStringValue()),
    ASK("pajek", n.pajekFormattedStringValue()),
    ASK("edge_list", n.edgesListFormattedStringValue()),
    ASK("archive",
        [&] {
          VEQKeyedArchiver archiver;
          n.encodeWithCoder(archiver);
          return std::string(archiver.bytes());
        }()),
};
#undef ASK

std::string nameOf(const testing::TestParamInfo<Question>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(ByIndex, EveryQuestion, testing::ValuesIn(kByIndex), nameOf);
INSTANTIATE_TEST_SUITE_P(ByHandle, EveryQuestion, testing::ValuesIn(kByHandle), nameOf);
INSTANTIATE_TEST_SUITE_P(OfTheWhole, EveryQuestion, testing::ValuesIn(kOfTheWhole), nameOf);
INSTANTIATE_TEST_SUITE_P(Properties, EveryQuestion, testing::ValuesIn(kProperties), nameOf);
INSTANTIATE_TEST_SUITE_P(Handles, EveryQuestion, testing::ValuesIn(kHandles), nameOf);
INSTANTIATE_TEST_SUITE_P(Texts, EveryQuestion, testing::ValuesIn(kTexts), nameOf);

// In a process in which nobody has asked for the instance yet.
TEST(GeneratorAllocations, OfTheInstanceLeaveTheSequenceWhereItWas) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        internal::SharedRandomSequence& sequence = internal::SharedRandomSequence::instance();
        sequence.seed(42);
        bool failed = false;
        try {
          const FailingAllocation failing(0, FailingAllocation::Mode::kOne);
          static_cast<void>(VEQRandomGenerator::sharedRandomGenerator());
        } catch (const std::bad_alloc&) {
          failed = true;
        }
        const bool isWhereItWas = sequence.next() == 71876166;
        const bool isMadeLater = VEQRandomGenerator::allocWithZone(nullptr) != nullptr;
        std::exit(failed && isWhereItWas && isMadeLater ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

// An array that cannot be had draws nothing.
TEST(GeneratorAllocations, OfAnArrayLeaveTheSequenceWhereItWas) {
  VEQRandomGenerator& generator = *VEQRandomGenerator::sharedRandomGenerator();
  using Draw = Shared<VEQNumberArray> (*)(VEQRandomGenerator&);
  const Draw draws[] = {
      [](VEQRandomGenerator& g) { return g.randomDoubleArrayWithCount(100); },
      [](VEQRandomGenerator& g) { return g.randomFloatArrayWithCount(100); },
      [](VEQRandomGenerator& g) { return g.randomIntegerArrayWithCount(100); },
      [](VEQRandomGenerator& g) { return g.randomIntegerArrayFrom_to_withCount(0, 9, 100); },
  };
  generator.setRandomSeed(1);
  const std::int64_t first = generator.randomInteger();
  generator.setRandomSeed(1);
  static_cast<void>(generator.randomIntegerArrayWithCount(100));
  const std::int64_t later = generator.randomInteger();
  for (const Draw draw : draws) {
    EXPECT_GE(forEachFailingAllocation([&] { return (generator.setRandomSeed(1), 0); },
                                       [&](int) { static_cast<void>(draw(generator)); },
                                       [&](int, bool failed) {
                                         EXPECT_EQ(generator.randomInteger(),
                                                   failed ? first : later);
                                       }),
              2U);
  }
}

}  // namespace
}  // namespace veq::test::questions_allocations_test
