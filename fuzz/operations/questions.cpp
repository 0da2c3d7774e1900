#include "fuzz/operations/world.hpp"
#include "fuzz/support/invariants.hpp"

namespace veq::fuzz {
namespace {

void keepHandles(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject) return;
  const std::uint64_t n = subject->model.topology.vertexCount;
  const std::uint64_t m = subject->model.topology.edges.size();
  if (input.flag()) {
    // Made by hand, and so perhaps of a vertex that is not there.
    keep(world.vertices,
         {VEQVertex::initAtNetwork_identification(*subject->network, anyIndex(input, n)),
          subject->network},
         input);
  } else if (n > 0) {
    keep(world.vertices, {subject->network->vertexAtIndex(input.below(n)), subject->network},
         input);
  }
  if (m > 0) {
    keep(world.edges, {subject->network->edgeAtIndex(input.below(m)), subject->network}, input);
  }
}

void askVertex(const KeptHandle<VEQVertex>& kept, Input& input) {
  const VEQVertex& vertex = *kept.handle;
  const Shared<VEQNetwork> network = kept.network.lock();
  const bool valid = network && !kept.invalidated;
  VEQ_CHECK(vertex.isValid() == valid);
  VEQ_CHECK(vertex.isEqual(vertex) && kept.handle->copy() == kept.handle);
  if (!valid) {
    succeeds<std::invalid_argument>(true, [&] { (void)vertex.name(); });
    succeeds<std::invalid_argument>(true, [&] { vertex.setName("x"); });
    return;
  }
  const std::uint64_t index = vertex.identification();
  const bool outside = index >= network->countVertices();
  VEQ_CHECK(vertex.relatedNetwork() == network.get());
  succeeds<std::invalid_argument>(outside, [&] {
    VEQ_CHECK(vertex.countEdges() == network->countEdgesOfVertexAtIndex(index));
  });
  const std::uint64_t k = input.below(6);
  mayThrow([&] { VEQ_CHECK(vertex.edgeAtIndex(k)->identification() < network->countEdges()); });
  mayThrow(
      [&] { VEQ_CHECK(vertex.nextVertexAtIndex(k)->identification() < network->countVertices()); });
  mayThrow([&] { VEQ_CHECK(vertex.properties().size() == vertex.keysForProperties().size()); });
  mayThrow([&] { VEQ_CHECK(vertex.description() == vertex.name().text()); });
  mayThrow([&] { (void)vertex.weight(); });
}

void askEdge(const KeptHandle<VEQEdge>& kept) {
  const VEQEdge& edge = *kept.handle;
  const Shared<VEQNetwork> network = kept.network.lock();
  VEQ_CHECK(edge.isValid() == (network != nullptr));
  if (!network) {
    succeeds<std::invalid_argument>(true, [&] { (void)edge.fromVertex(); });
    succeeds<std::invalid_argument>(true, [&] { edge.setWeight(1.0F); });
    return;
  }
  const auto source = edge.fromVertex();
  const auto target = edge.toVertex();
  VEQ_CHECK(edge.vertexFromVertex(*source)->isEqual(target));
  VEQ_CHECK(edge.isDirected() == network->isDirected());
  VEQ_CHECK(!edge.isEqual(source));
  VEQ_CHECK(edge.description() == edge.name().text());
}

void invalidateHandle(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject) return;
  KeptHandle<VEQVertex> kept{VEQVertex::initAtNetwork_identification(*subject->network, 0),
                             subject->network, true};
  kept.handle->invalidateNetwork();
  keep(world.vertices, std::move(kept), input);
}

}  // namespace

void useHandles(World& world, Input& input) {
  switch (input.below(5)) {
    case 0:
    case 1:
      return keepHandles(world, input);
    case 2:
      return invalidateHandle(world, input);
    default:
      if (const auto* kept = choose(world.vertices, input)) askVertex(*kept, input);
      if (const auto* kept = choose(world.edges, input)) askEdge(*kept);
  }
}

void questionNetwork(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject) return;
  const VEQNetwork& network = *subject->network;
  switch (input.below(6)) {
    case 0:
      return checkRoundTrip(network, input.byte());
    case 1:
      return checkComponents(network);
    case 2: {
      const VEQNumberArray indices = anyIndices(input, network.countVertices());
      const std::string key = anyKey(input);
      mayThrow([&] {
        VEQ_CHECK(network.namesOfVerticesAtIndexArray(indices)->count() == indices.count());
      });
      mayThrow([&] {
        const auto chosen = network.propertiesOfVerticesAtIndexArray_forKey(indices, key);
        VEQ_CHECK((chosen != nullptr) == (subject->model.ofVertices.count(key) == 1));
        if (chosen) VEQ_CHECK(chosen->count() == indices.count());
      });
      mayThrow([&] { (void)network.propertiesOfInEdgesAtIndexArray(indices); });
      return;
    }
    case 3:
      mayThrow([&] {
        (void)network.propertiesOfVertexAtIndex(anyIndex(input, network.countVertices()));
      });
      mayThrow(
          [&] { (void)network.propertiesOfEdgeAtIndex(anyIndex(input, network.countEdges())); });
      return;
    default:
      checkBounds(network);
      checkTopology(network, subject->model.topology);
      VEQ_CHECK_NO(difference(subject->model, imageOf(network)));
  }
}

}  // namespace veq::fuzz
