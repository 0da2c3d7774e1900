#include <gtest/gtest.h>

#include "tests/support/log_capture.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/network_dump.hpp"

namespace veq::handle_construction_test {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kInvalidVertex = "The Related Network of this vertex is not valid.";

// 0 -> 1 -> 2 -> 0, with names, vertex numbers, edge names and weights of both kinds.
Owned<VEQNetwork> triangle() {
  const auto vertexWeights = VEQNumberArray::ofFloats({10, 20, 30});
  const auto edgeWeights = VEQNumberArray::ofFloats({0.5f, 0.25f, 0.125f});
  auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0, 1, 2}), VEQNumberArray::ofIndices({1, 2, 0}), true,
          &vertexWeights, &edgeWeights);
  for (std::uint64_t i = 0; i < 3; ++i) {
    network->vertexAtIndex(i)->setName(std::string(1, static_cast<char>('A' + i)));
    network->setPropertyValue_forKey_atVertexIndex(i + 1, "size", i);
    network->edgeAtIndex(i)->setName(std::string(1, static_cast<char>('x' + i)));
  }
  return network;
}

Owned<VEQNetwork> unweightedPath() {
  return VEQNetwork::initWithLinksIndexedFrom_toIndices(VEQNumberArray::ofIndices({0, 1}),
                                                        VEQNumberArray::ofIndices({1, 2}));
}

template <class F>
std::string messageOf(F f) {
  try {
    f();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "nothing thrown";
}

TEST(HandleConstruction, CarriesVerticesEdgesAndPropertiesInTheGivenOrder) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto network = VEQNetwork::initWithVertices_edges(
      {source->vertexAtIndex(2), source->vertexAtIndex(1), source->vertexAtIndex(0)},
      {source->edgeAtIndex(1), source->edgeAtIndex(0)});
  EXPECT_EQ(test::dump(network.get()),
            "3 vertices undirected\n1-0 2-1 \n"
            "of vertices:\nName (0): s:C s:B s:A\nsize (1): n12:3 n12:2 n12:1\n"
            "of edges:\nName (0): s:y s:x\n");
}

TEST(HandleConstruction, AttachesAnEndThatIsNotGivenToVertexZero) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto network = VEQNetwork::initWithVertices_edges_directed(
      {source->vertexAtIndex(1), source->vertexAtIndex(2)}, source->edges(), true);
  EXPECT_EQ(network->edgeAtIndex(0)->fromVertex()->identification(), 0u);
  EXPECT_EQ(network->edgeAtIndex(2)->fromVertex()->identification(), 1u);
  EXPECT_EQ(network->edgeAtIndex(2)->toVertex()->identification(), 0u);
}

// Of so large a network so few vertices are looked up in another way.
TEST(HandleConstruction, AFewVerticesOfALargeNetworkAreFoundAgain) {
  const test::LogCapture log;
  const auto source = test::drawDirected("90-10 10-55 55-90", 100);
  const auto network = VEQNetwork::networkWithVertices_edges_directed(
      {source->vertexAtIndex(90), source->vertexAtIndex(55)}, source->edges(), true);
  EXPECT_EQ(test::dump(network.get()),
            "2 vertices directed\n0-0 0-1 1-0 \nof vertices:\nof edges:\n");
}

TEST(HandleConstruction, EdgesOfAStrangeNetworkFallOnVertexZero) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto stranger = triangle();
  const auto network =
      VEQNetwork::initWithVertices_edges_directed(source->vertices(), stranger->edges(), true);
  for (std::uint64_t e = 0; e < 3; ++e) {
    EXPECT_EQ(network->edgeAtIndex(e)->fromVertex()->identification(), 0u);
    EXPECT_EQ(network->edgeAtIndex(e)->toVertex()->identification(), 0u);
  }
}

TEST(HandleConstruction, OfAVertexGivenTwiceTheFirstPlaceIsMeant) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto network = VEQNetwork::initWithVertices_edges_directed(
      source->vertices().subarrayWithIndices(VEQNumberArray::ofIndices({2, 1, 0, 1, 0})),
      source->edges(), true);
  EXPECT_EQ(network->countVertices(), 5u);
  EXPECT_EQ(network->edgeAtIndex(0)->fromVertex()->identification(), 2u);
  EXPECT_EQ(network->edgeAtIndex(0)->toVertex()->identification(), 1u);
}

TEST(HandleConstruction, LogsWhetherEdgeWeightsWereGivenAlsoWhenItThenFails) {
  const auto source = triangle();
  const auto three = VEQNumberArray::ofFloats({1, 2, 3});
  const auto two = VEQNumberArray::ofFloats({1, 2});
  const test::LogCapture log;
  EXPECT_TRUE(VEQNetwork::initWithVertices_edges_directed_verticesWeights_edgesWeights(
      source->vertices(), source->edges(), true, &three, nullptr));
  EXPECT_TRUE(VEQNetwork::initWithVertices_edges_directed_verticesWeights_edgesWeights(
      source->vertices(), source->edges(), true, nullptr, &three));
  EXPECT_FALSE(VEQNetwork::initWithVertices_edges_directed_verticesWeights_edgesWeights(
      source->vertices(), source->edges(), true, &two, nullptr));
  EXPECT_FALSE(VEQNetwork::networkWithVertices_edges_directed_verticesWeights_edgesWeights(
      source->vertices(), source->edges(), true, nullptr, &two));
  EXPECT_EQ(log.lines(), (Lines{"Loading Weighted Network? NO", "Loading Weighted Network? YES",
                                "Loading Weighted Network? NO", "Loading Weighted Network? YES"}));
}

TEST(HandleConstruction, TheLinkingFormLogsNothing) {
  const auto source = triangle();
  const test::LogCapture log;
  EXPECT_TRUE(VEQNetwork::initWithVertices_linkFromVertices_toVertices(
      source->vertices(), source->vertices(), source->vertices()));
  EXPECT_EQ(log.lines(), Lines());
}

TEST(HandleConstruction, EmptyListsGiveANetworkWithoutVertices) {
  const test::LogCapture log;
  const auto network = VEQNetwork::initWithVertices_edges({}, {});
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 0u);
  EXPECT_EQ(network->countEdges(), 0u);
}

TEST(HandleConstruction, EdgesWithoutVerticesGiveNoNetwork) {
  const test::LogCapture log;
  const auto source = triangle();
  EXPECT_FALSE(VEQNetwork::initWithVertices_edges({}, source->edges()));
  EXPECT_FALSE(VEQNetwork::initWithVertices_linkFromVertices_toVertices(
      VEQVertexArray(), source->vertices(), source->vertices()));
}

TEST(HandleConstruction, InvalidVerticesAndEdgesThrowTheTextOfVertices) {
  const test::LogCapture log;
  auto dead = triangle();
  const VEQVertexArray vertices = dead->vertices();
  const VEQEdgeArray edges = dead->edges();
  const VEQVertexArray someVertices{dead->vertexAtIndex(1)};
  const VEQEdgeArray someEdges{dead->edgeAtIndex(1)};
  dead.reset();
  const auto living = triangle();
  for (const VEQVertexArray& invalid : {vertices, someVertices}) {
    EXPECT_EQ(messageOf([&] { (void)VEQNetwork::initWithVertices_edges(invalid, {}); }),
              kInvalidVertex);
    EXPECT_EQ(messageOf([&] {
                (void)VEQNetwork::initWithVertices_linkFromVertices_toVertices(std::nullopt,
                                                                               invalid, invalid);
              }),
              kInvalidVertex);
  }
  for (const VEQEdgeArray& invalid : {edges, someEdges}) {
    EXPECT_EQ(
        messageOf([&] { (void)VEQNetwork::initWithVertices_edges(living->vertices(), invalid); }),
        kInvalidVertex);
  }
}

TEST(HandleConstruction, AHandleInvalidatedAloneThrows) {
  const test::LogCapture log;
  const auto byVertex = triangle();
  byVertex->vertexAtIndex(2)->invalidateNetwork();
  EXPECT_EQ(messageOf([&] { (void)VEQNetwork::initWithNetwork(*byVertex); }), kInvalidVertex);
  const auto byEdge = triangle();
  byEdge->edgeAtIndex(2)->invalidateNetwork();
  EXPECT_EQ(messageOf([&] { (void)VEQNetwork::initWithNetwork(*byEdge); }), kInvalidVertex);
  EXPECT_EQ(log.lines(), (Lines{"Loading Weighted Network? YES", "Loading Weighted Network? YES"}));
}

TEST(HandleConstruction, ChecksCountsBeforeItAsksHandles) {
  const test::LogCapture log;
  auto dead = triangle();
  const VEQVertexArray vertices = dead->vertices();
  dead.reset();
  const auto one = VEQNumberArray::ofFloats({1});
  EXPECT_FALSE(VEQNetwork::initWithVertices_edges_directed_verticesWeights_edgesWeights(
      vertices, {}, true, &one, nullptr));
  EXPECT_FALSE(VEQNetwork::initWithVertices_linkFromVertices_toVertices(vertices, vertices, {}));
}

TEST(HandleConstruction, AHandleMadeByHandBeyondItsNetworkThrows) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto plain = unweightedPath();
  EXPECT_THROW((void)VEQNetwork::initWithVertices_edges(
                   {VEQVertex::initAtNetwork_identification(*source, 7)}, {}),
               std::out_of_range);
  EXPECT_THROW((void)VEQNetwork::initWithVertices_edges(
                   plain->vertices(), {VEQEdge::initAtNetwork_identification(*plain, 2)}),
               std::out_of_range);
  EXPECT_THROW((void)VEQNetwork::initWithVertices_linkFromVertices_toVertices(
                   VEQVertexArray{VEQVertex::initAtNetwork_identification(*source, 7)}, {}, {}),
               std::out_of_range);
}

TEST(HandleConstruction, AHandleMadeByHandEqualsTheNetworksOwn) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto network = VEQNetwork::initWithVertices_edges_directed(
      {VEQVertex::initAtNetwork_identification(*source, 2),
       VEQVertex::initAtNetwork_identification(*source, 1)},
      {VEQEdge::initAtNetwork_identification(*source, 1)}, true);
  EXPECT_EQ(network->edgeAtIndex(0)->fromVertex()->identification(), 1u);
  EXPECT_EQ(network->edgeAtIndex(0)->toVertex()->identification(), 0u);
  EXPECT_EQ(network->vertexAtIndex(0)->description(), "C");
}

TEST(HandleConstruction, AnInvalidEndIsLookedUpAllTheSame) {
  const auto source = triangle();
  const auto invalid = VEQVertex::initAtNetwork_identification(*source, 2);
  invalid->invalidateNetwork();
  const auto network = VEQNetwork::initWithVertices_linkFromVertices_toVertices(
      source->vertices(), {source->vertexAtIndex(1)}, {invalid});
  EXPECT_EQ(network->edgeAtIndex(0)->toVertex()->identification(), 2u);
}

TEST(HandleConstruction, AHandleOfADeadNetworkIsNoVertexOfTheOneThatNowLiesThere) {
  auto dead = unweightedPath();
  const auto stale = dead->vertexAtIndex(2);
  dead.reset();
  const auto now = unweightedPath();
  const auto network = VEQNetwork::initWithVertices_linkFromVertices_toVertices(
      now->vertices(), {stale}, {now->vertexAtIndex(2)});
  EXPECT_EQ(network->edgeAtIndex(0)->fromVertex()->identification(), 0u);
  EXPECT_EQ(network->edgeAtIndex(0)->toVertex()->identification(), 2u);
}

TEST(HandleConstruction, WithoutVerticesTheDistinctEndsAreNumberedByFirstAppearance) {
  const auto a = triangle();
  const auto b = unweightedPath();
  const auto network = VEQNetwork::networkWithVertices_linkFromVertices_toVertices_directed(
      std::nullopt, {b->vertexAtIndex(2), a->vertexAtIndex(1), b->vertexAtIndex(2)},
      {a->vertexAtIndex(1), a->vertexAtIndex(0), b->vertexAtIndex(2)}, true);
  EXPECT_EQ(test::dump(network.get()),
            "3 vertices directed\n0-1 1-2 0-0 \n"
            "of vertices:\nName (0): null s:B s:A\nsize (1): n12:0 n12:2 n12:1\nof edges:\n");
}

TEST(HandleConstruction, WithoutVerticesTheWeightsAreCheckedAgainstTheDistinctEnds) {
  const auto a = triangle();
  const auto two = VEQNumberArray::ofDoubles({7, 8});
  const auto one = VEQNumberArray::ofIntegers({9});
  const VEQVertexArray from{a->vertexAtIndex(1), a->vertexAtIndex(0)};
  const VEQVertexArray to{a->vertexAtIndex(1), a->vertexAtIndex(1)};
  const auto network = VEQNetwork::
      initWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
          std::nullopt, from, to, false, &two, &two);
  ASSERT_TRUE(network);
  EXPECT_EQ(network->verticesWeightValues()->description(), "(7, 8)");
  EXPECT_FALSE(
      VEQNetwork::
          networkWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
              std::nullopt, from, to, false, &one, nullptr));
  EXPECT_FALSE(
      VEQNetwork::
          networkWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
              std::nullopt, from, to, false, nullptr, &one));
}

TEST(HandleConstruction, TheFirstValueFixesTheKindAndOthersAreZeroOrUnset) {
  const test::LogCapture log;
  const auto source = unweightedPath();
  auto mixed = std::make_shared<GenericArray>();
  mixed->addObject(5);
  mixed->addObject(PropertyValue());
  source->setPropertiesOfVertices_forKey(mixed, "numbers then null");
  auto nullFirst = std::make_shared<GenericArray>();
  nullFirst->addObject(PropertyValue());
  nullFirst->addObject(5);
  source->setPropertiesOfVertices_forKey(nullFirst, "null then numbers");
  const auto network = VEQNetwork::initWithVertices_edges(source->vertices(), {});
  EXPECT_EQ(test::dump(*network->propertiesOfVertices()),
            "numbers then null (1): n12:5 n12:0 n12:0\n"
            "null then numbers (0): null n13:5 null\n");
}

TEST(HandleConstruction, AColumnThatItsFirstKindCannotHoldIsCarriedOverAsItIs) {
  const test::LogCapture log;
  const auto source = unweightedPath();
  source->setPropertiesOfVertices_forKey(
      std::make_shared<GenericArray>(std::vector<PropertyValue>{5, VEQVector2d(1, 2), "five"}),
      "mixed");
  source->setPropertiesOfVertices_forKey(std::make_shared<GenericArray>(std::vector<PropertyValue>{
                                             VEQVector2d(1, 2), {}, VEQVector3d(1, 2, 3)}),
                                         "vectors");
  const auto network = VEQNetwork::initWithVertices_edges(source->vertices(), {});
  EXPECT_EQ(test::dump(*network->propertiesOfVertices()),
            "mixed (0): n13:5 2d1:1 2 s:five\nvectors (0): 2d1:1 2 null 3d1:1 2 3\n");
}

TEST(HandleConstruction, VectorColumnsKeepThePrecisionOfTheFirstVector) {
  const test::LogCapture log;
  const auto source = unweightedPath();
  source->setPropertyValue_forKey_atVertexIndex(VEQVector3d::initWithXf_Yf_Zf(1, 2, 3), "p", 1);
  const auto network = VEQNetwork::initWithVertices_edges(
      source->vertices().subarrayWithIndices(VEQNumberArray::ofIndices({1, 0})), {});
  EXPECT_EQ(test::dump(*network->propertiesOfVertices()), "p (3): 3d0:1 2 3 3d0:0 0 0\n");
}

TEST(HandleConstruction, EdgeColumnsBecomeGenericAndAShortOneReadsAsUnset) {
  const test::LogCapture log;
  const auto source = unweightedPath();
  source->setPropertiesOfEdges_forKey(VEQNumberArray::initWithDoubleScalar_count(0.5, 1), "length");
  const auto network = VEQNetwork::initWithNetwork(*source);
  EXPECT_EQ(test::dump(*network->propertiesOfEdges()), "length (0): n12:0.5 null\n");
}

TEST(HandleConstruction, ValuesStoredUnderReservedKeysAreCarriedOver) {
  const test::LogCapture log;
  const auto source = unweightedPath();
  source->setPropertyValue_forKey_atVertexIndex("kept", "Vertex Weight", 1);
  const auto network = VEQNetwork::initWithNetwork(*source);
  EXPECT_EQ(test::dump(*network->propertiesOfVertices()), "Vertex Weight (0): null s:kept null\n");
}

TEST(HandleConstruction, ChangingTheNewPropertiesLeavesTheSourceAlone) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto network = VEQNetwork::initWithNetwork(*source);
  network->setPropertyValue_forKey_atVertexIndex(99, "size", 0);
  network->edgeAtIndex(0)->setName("other");
  EXPECT_EQ(test::dump(*source->propertiesOfVertices()),
            "Name (0): s:A s:B s:C\nsize (1): n12:1 n12:2 n12:3\n");
  EXPECT_EQ(source->edgeAtIndex(0)->description(), "x");
}

TEST(NetworkCopies, AShortCopyOfAnUnweightedNetworkIsWeightedBothWays) {
  const test::LogCapture log;
  const auto source = unweightedPath();
  const Shared<VEQNetwork> directed = VEQNetwork::networkWithNetwork_directed(*source, true);
  const Shared<VEQNetwork> copy = VEQNetwork::networkWithNetwork(*source);
  for (const auto& network : {copy, directed}) {
    EXPECT_TRUE(network->isVertexWeighted());
    EXPECT_TRUE(network->isEdgeWeighted());
    EXPECT_EQ(network->verticesWeightValues()->description(), "(1, 1, 1)");
    EXPECT_EQ(network->edgesWeightValues()->description(), "(1, 1)");
  }
  EXPECT_FALSE(copy->isDirected());
  EXPECT_TRUE(directed->isDirected());
  EXPECT_EQ(log.lines(), (Lines{"Loading Weighted Network? YES", "Loading Weighted Network? YES"}));
}

TEST(NetworkCopies, AShortCopyEqualsItsWeightedSource) {
  const test::LogCapture log;
  const auto source = triangle();
  EXPECT_EQ(test::dump(VEQNetwork::initWithNetwork(*source).get()), test::dump(source.get()));
}

TEST(NetworkCopies, TheFullFormsTakeTheWeightsThatTheyAreGiven) {
  const test::LogCapture log;
  const auto source = triangle();
  const auto bare = VEQNetwork::initWithNetwork_directed_verticesWeights_edgesWeights(
      *source, true, nullptr, nullptr);
  EXPECT_FALSE(bare->isVertexWeighted());
  EXPECT_FALSE(bare->isEdgeWeighted());
  const auto three = VEQNumberArray::ofIntegers({7, 8, 9});
  const auto two = VEQNumberArray::ofIntegers({7, 8});
  EXPECT_EQ(VEQNetwork::networkWithNetwork_directed_verticesWeights_edgesWeights(*source, true,
                                                                                 nullptr, &three)
                ->edgesWeightValues()
                ->description(),
            "(7, 8, 9)");
  EXPECT_FALSE(VEQNetwork::initWithNetwork_directed_verticesWeights_edgesWeights(*source, true,
                                                                                 &two, nullptr));
  EXPECT_EQ(log.lines(), (Lines{"Loading Weighted Network? NO", "Loading Weighted Network? YES",
                                "Loading Weighted Network? NO"}));
}

TEST(NetworkCopies, TheExpandingFormsIgnoreTheirIncrements) {
  const test::LogCapture log;
  const auto source = triangle();
  const std::string expected = test::dump(source.get());
  EXPECT_EQ(test::dump(VEQNetwork::initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(
                           *source, 100, 100)
                           .get()),
            expected);
  EXPECT_EQ(
      test::dump(VEQNetwork::networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(
                     *source, UINT64_MAX, UINT64_MAX)
                     .get()),
      expected);
  EXPECT_FALSE(VEQNetwork::initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
                   *source, 1, 1, false)
                   ->isDirected());
  EXPECT_FALSE(
      VEQNetwork::networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
          *source, 1, 1, false)
          ->isDirected());
  const auto weights = VEQNumberArray::ofFloats({3, 2, 1});
  const auto weighted = VEQNetwork::
      initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed_verticesWeights_edgesWeights(
          *source, 1, 1, true, nullptr, &weights);
  EXPECT_TRUE(weighted->isDirected());
  EXPECT_FALSE(weighted->isVertexWeighted());
  EXPECT_EQ(weighted->edgesWeightValues()->description(), "(3, 2, 1)");
  EXPECT_EQ(
      VEQNetwork::
          networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed_verticesWeights_edgesWeights(
              *source, 1, 1, false, &weights, nullptr)
              ->verticesWeightValues()
              ->description(),
      "(3, 2, 1)");
}

TEST(NetworkCopies, ACopyOfAnEmptyNetworkIsEmptyAndWeighted) {
  const test::LogCapture log;
  const auto source = VEQNetwork::initWithVertexCapacity_edgeCapacity(10, 10);
  const auto copy = VEQNetwork::initWithNetwork(*source);
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->countVertices(), 0u);
  EXPECT_TRUE(copy->isVertexWeighted());
}

TEST(NetworkCopies, ACopyIsEditableWhenItsSourceIsBlocked) {
  const test::LogCapture log;
  const auto source = triangle();
  source->blockEditing();
  EXPECT_TRUE(VEQNetwork::initWithNetwork(*source)->isEditable());
}

}  // namespace
}  // namespace veq::handle_construction_test
