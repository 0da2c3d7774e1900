#include <algorithm>
#include <cmath>
#include <optional>

#include "fuzz/operations/world.hpp"
#include "fuzz/support/invariants.hpp"
#include "veq/models/random_generator.hpp"

namespace veq::fuzz {
namespace {

std::vector<std::uint64_t> values(const VEQNumberArray& array) {
  std::vector<std::uint64_t> result(array.count());
  array.getUnsignedIntegerValues_count(result.data(), result.size());
  return result;
}

// None, one for each, or one more.
std::optional<VEQNumberArray> anyWeights(Input& input, std::uint64_t count) {
  const std::uint64_t choice = input.below(4);
  if (choice < 2) return std::nullopt;
  internal::RawVector<double> weights(count + (choice == 3 ? 1 : 0));
  for (double& weight : weights) weight = static_cast<double>(anyWeight(input));
  return VEQNumberArray(std::move(weights));
}

const VEQNumberArray* pointerTo(const std::optional<VEQNumberArray>& array) {
  return array ? &*array : nullptr;
}

std::optional<std::vector<float>> floatsOf(const std::optional<VEQNumberArray>& array) {
  if (!array) return std::nullopt;
  std::vector<float> result(array->count());
  array->getFloatValues(result.data());
  return result;
}

void fromIndices(World& world, Input& input) {
  const std::uint64_t minimum = input.below(8);
  const VEQNumberArray from = anyIndices(input, 7);
  const VEQNumberArray to = anyIndices(input, 7);
  test::SlowNetwork expected;
  expected.directed = input.flag();
  bool possible = from.count() == to.count();
  expected.vertexCount = std::max<std::uint64_t>(minimum, 1);
  for (std::size_t i = 0; possible && i < from.count(); ++i) {
    const auto [a, b] = std::pair(values(from)[i], values(to)[i]);
    expected.edges.emplace_back(a, b);
    expected.vertexCount = std::max({expected.vertexCount, a + 1, b + 1});
    possible = std::max(a, b) <= kManyVertices;
  }
  if (!possible) expected.edges.clear();
  const auto vertexWeights = anyWeights(input, possible ? expected.vertexCount : 1);
  const auto edgeWeights = anyWeights(input, from.count());
  expected.verticesWeights = floatsOf(vertexWeights);
  expected.edgesWeights = floatsOf(edgeWeights);
  possible = possible && (!vertexWeights || vertexWeights->count() == expected.vertexCount) &&
             (!edgeWeights || edgeWeights->count() == from.count());
  Shared<VEQNetwork> network = VEQNetwork::
      networkWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          minimum, from, to, expected.directed, pointerTo(vertexWeights), pointerTo(edgeWeights));
  VEQ_CHECK((network != nullptr) == possible);
  if (!network) return;
  checkTopology(*network, expected);
  keep(world.subjects, Subject{std::move(network), NetworkImage{expected, {}, {}}}, input);
}

void fromCapacities(World& world, Input& input) {
  const std::uint64_t capacity = anyIndex(input, 9);
  const bool directed = input.flag();
  Shared<VEQNetwork> network =
      VEQNetwork::networkWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
          capacity, input.byte(), directed, input.flag(), input.flag());
  VEQ_CHECK(network && network->countVertices() == 0 && network->countEdges() == 0);
  adopt(world, std::move(network), input);
}

void fromModels(World& world, Input& input) {
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(input.byte());
  const std::uint64_t count = input.below(9);
  if (input.flag()) {
    const double degree = input.below(12) == 11 ? NAN : static_cast<double>(input.below(12)) - 1.0;
    auto network = VEQNetwork::randomNetworkWithNumberOfVertices_degree(count, degree);
    VEQ_CHECK(network && network->countVertices() <= std::max<std::uint64_t>(count, 1));
    return adopt(world, std::move(network), input);
  }
  const std::uint64_t initial = input.below(5);
  const std::uint64_t growth = input.below(5);
  auto network = VEQNetwork::barabasiNetworkWithInitialVertices_degreeGrowth_iterations(
      initial, growth, count);
  if (network) VEQ_CHECK(network->countEdges() == growth * count);
  adopt(world, std::move(network), input);
}

// Copies take the weights as they read, 1.0 without weights.
void copied(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject) return;
  test::SlowNetwork expected = subject->model.topology;
  expected.directed = input.flag();
  if (!expected.verticesWeights) expected.verticesWeights.emplace(expected.vertexCount, 1.0F);
  if (!expected.edgesWeights) expected.edgesWeights.emplace(expected.edges.size(), 1.0F);
  Shared<VEQNetwork> copy =
      VEQNetwork::networkWithNetwork_directed(*subject->network, expected.directed);
  VEQ_CHECK(copy != nullptr);
  checkTopology(*copy, expected);
  for (const auto& [key, column] : *copy->propertiesOfVertices()) {
    VEQ_CHECK(subject->model.ofVertices.count(key) == 1);
    VEQ_CHECK(column->count() == expected.vertexCount);
  }
  for (const auto& [key, column] : *copy->propertiesOfEdges()) {
    VEQ_CHECK(subject->model.ofEdges.count(key) == 1);
    VEQ_CHECK(column->count() == expected.edges.size());
  }
  adopt(world, std::move(copy), input);
}

// Some vertices of one or two networks, and edges of the first.
void fromHandles(World& world, Input& input) {
  Subject* const first = choose(world.subjects, input);
  Subject* const second = choose(world.subjects, input);
  if (!first || !second) return;
  std::vector<Shared<VEQVertex>> vertices;
  std::vector<Shared<VEQEdge>> edges;
  const std::uint64_t n = first->network->countVertices();
  for (std::uint64_t i = input.below(5); i > 0 && n > 0; --i) {
    vertices.push_back(first->network->vertexAtIndex(input.below(n)));
  }
  if (input.flag() && second->network->countVertices() > 0) {
    vertices.push_back(second->network->vertexAtIndex(0));
  }
  if (const auto* kept = choose(world.vertices, input)) vertices.push_back(kept->handle);
  const std::uint64_t m = first->network->countEdges();
  for (std::uint64_t i = input.below(5); i > 0 && m > 0; --i) {
    edges.push_back(first->network->edgeAtIndex(input.below(m)));
  }
  const std::uint64_t vertexCount = vertices.size();
  const std::uint64_t edgeCount = edges.size();
  mayThrow([&] {
    auto network = VEQNetwork::networkWithVertices_edges_directed(vertices, edges, input.flag());
    VEQ_CHECK(network || vertexCount == 0);
    if (network) VEQ_CHECK(network->countVertices() == vertexCount);
    if (network) VEQ_CHECK(network->countEdges() == edgeCount);
    adopt(world, std::move(network), input);
  });
  mayThrow([&] {
    const auto given = input.flag() ? std::optional<VEQVertexArray>(vertices) : std::nullopt;
    adopt(world,
          VEQNetwork::networkWithVertices_linkFromVertices_toVertices_directed(
              given, vertices, VEQVertexArray(vertices), input.flag()),
          input);
  });
}

}  // namespace

void makeNetwork(World& world, Input& input) {
  switch (input.below(8)) {
    case 0:
      return fromCapacities(world, input);
    case 1:
      return fromModels(world, input);
    default:
      return fromIndices(world, input);
  }
}

void deriveNetwork(World& world, Input& input) {
  if (input.flag()) return copied(world, input);
  fromHandles(world, input);
}

}  // namespace veq::fuzz
