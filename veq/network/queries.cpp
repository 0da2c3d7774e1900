// Questions about the topology.

#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <stdexcept>

#include "veq/network/internal/degree_sums.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::NetworkCore;
using Side = AdjacencyStore::Side;

namespace {

void requireVertex(const NetworkCore& core, std::uint64_t index) {
  if (index >= core.store.vertexCount()) {
    throw std::invalid_argument("VertexIndex must be less than count.");
  }
}

std::uint64_t countOf(const NetworkCore& core, std::uint64_t index, Side side) {
  requireVertex(core, index);
  return core.store.count(index, side);
}

double strengthOf(const NetworkCore& core, std::uint64_t index, Side side) {
  requireVertex(core, index);
  // It is the vertices' flag that decides whether the edges' weights are summed.
  if (!core.verticesWeights) return static_cast<double>(core.store.count(index, Side::kOut));
  return core.store.visit([&](const auto& topology) {
    return internal::withWeights(0.0, core.store.lists(topology, side).edges(index),
                                 core.edgesWeights);
  });
}

using Indices = internal::RawVector<std::uint64_t>;
using Column = Indices (AdjacencyStore::*)(std::uint64_t, Side) const;
constexpr Column kNeighbours = &AdjacencyStore::neighbours<Indices>;
constexpr Column kEdges = &AdjacencyStore::edges<Indices>;

VEQEdgeArray edgesOf(const NetworkCore& core, std::uint64_t index, Side side) {
  requireVertex(core, index);
  return {core.edges(), core.store.edges(index, side)};
}

VEQVertexArray verticesOf(const NetworkCore& core, std::uint64_t index, Side side) {
  requireVertex(core, index);
  return {core.vertices(), core.store.neighbours(index, side)};
}

Shared<VEQNumberArray> indicesOf(const NetworkCore& core, std::uint64_t index, Side side,
                                 Column column) {
  Indices indices;
  if (index < core.store.vertexCount()) indices = (core.store.*column)(index, side);
  return std::make_shared<VEQNumberArray>(std::move(indices));
}

Shared<VEQNumberArray> degrees(const NetworkCore& core, Side side) {
  internal::RawVector<double> values(core.store.vertexCount());
  internal::forEachDegree(core, side, [&values](std::uint64_t v, std::uint64_t degree) {
    values[v] = static_cast<double>(degree);
  });
  return std::make_shared<VEQNumberArray>(std::move(values));
}

Shared<VEQNumberArray> strengths(const NetworkCore& core, Side side) {
  if (!core.edgesWeights) return degrees(core, side);
  Shared<VEQNumberArray> sums =
      VEQNumberArray::initWithDoubleScalar_count(0.0, core.store.vertexCount());
  internal::addStrengths(core, side, sums->values<double>());
  return sums;
}

// The answer of an index form for the handle's vertex, if that is one of this network.
template <class Result>
Result forHandle(const VEQNetwork& network, const NetworkCore& core, const VEQVertex& vertex,
                 Result (VEQNetwork::*indexForm)(std::uint64_t) const) {
  if (!core.lives(vertex.life())) return Result();
  return (network.*indexForm)(vertex.identification());
}

template <class Result>
std::optional<Result> arrayForHandle(const VEQNetwork& network, const NetworkCore& core,
                                     const VEQVertex& vertex,
                                     Result (VEQNetwork::*indexForm)(std::uint64_t) const) {
  if (!core.lives(vertex.life())) return std::nullopt;
  return (network.*indexForm)(vertex.identification());
}

}  // namespace

std::uint64_t VEQNetwork::countEdgesOfVertexAtIndex(std::uint64_t index) const {
  return countOf(*core_, index, Side::kOut);
}

std::uint64_t VEQNetwork::countInEdgesOfVertexAtIndex(std::uint64_t index) const {
  return countOf(*core_, index, Side::kIn);
}

std::uint64_t VEQNetwork::countToVerticesOfVertexAtIndex(std::uint64_t index) const {
  return countEdgesOfVertexAtIndex(index);
}

std::uint64_t VEQNetwork::countFromVerticesOfVertexAtIndex(std::uint64_t index) const {
  return countInEdgesOfVertexAtIndex(index);
}

double VEQNetwork::calcDegreeOfVertexAtIndex(std::uint64_t index) const {
  return static_cast<double>(countOf(*core_, index, Side::kOut));
}

double VEQNetwork::calcInDegreeOfVertexAtIndex(std::uint64_t index) const {
  return static_cast<double>(countOf(*core_, index, Side::kOut));
}

double VEQNetwork::calcStrengthOfVertexAtIndex(std::uint64_t index) const {
  return strengthOf(*core_, index, Side::kOut);
}

double VEQNetwork::calcInStrengthOfVertexAtIndex(std::uint64_t index) const {
  return strengthOf(*core_, index, Side::kIn);
}

VEQEdgeArray VEQNetwork::edgesLinkedFromVertexAtIndex(std::uint64_t index) const {
  return edgesOf(*core_, index, Side::kOut);
}

VEQEdgeArray VEQNetwork::edgesLinkedToVertexAtIndex(std::uint64_t index) const {
  return edgesOf(*core_, index, Side::kIn);
}

VEQVertexArray VEQNetwork::verticesLinkedFromVertexAtIndex(std::uint64_t index) const {
  return verticesOf(*core_, index, Side::kOut);
}

VEQVertexArray VEQNetwork::verticesLinkedToVertexAtIndex(std::uint64_t index) const {
  return verticesOf(*core_, index, Side::kIn);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfEdgesLinkedFromVertexAtIndex(
    std::uint64_t index) const {
  return indicesOf(*core_, index, Side::kOut, kEdges);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfEdgesLinkedToVertexAtIndex(std::uint64_t index) const {
  return indicesOf(*core_, index, Side::kIn, kEdges);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfVerticesLinkedFromVertexAtIndex(
    std::uint64_t index) const {
  return indicesOf(*core_, index, Side::kOut, kNeighbours);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfVerticesLinkedToVertexAtIndex(
    std::uint64_t index) const {
  return indicesOf(*core_, index, Side::kIn, kNeighbours);
}

std::uint64_t VEQNetwork::countEdgesOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::countEdgesOfVertexAtIndex);
}

std::uint64_t VEQNetwork::countInEdgesOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::countInEdgesOfVertexAtIndex);
}

std::uint64_t VEQNetwork::countToVerticesOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::countEdgesOfVertexAtIndex);
}

std::uint64_t VEQNetwork::countFromVerticesOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::countEdgesOfVertexAtIndex);
}

double VEQNetwork::calcDegreeOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::calcDegreeOfVertexAtIndex);
}

double VEQNetwork::calcInDegreeOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::calcInDegreeOfVertexAtIndex);
}

double VEQNetwork::calcStrengthOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::calcStrengthOfVertexAtIndex);
}

double VEQNetwork::calcInStrengthOfVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::calcInStrengthOfVertexAtIndex);
}

std::optional<VEQEdgeArray> VEQNetwork::edgesLinkedToVertex(const VEQVertex& vertex) const {
  return arrayForHandle(*this, *core_, vertex, &VEQNetwork::edgesLinkedToVertexAtIndex);
}

std::optional<VEQEdgeArray> VEQNetwork::edgesLinkedFromVertex(const VEQVertex& vertex) const {
  return arrayForHandle(*this, *core_, vertex, &VEQNetwork::edgesLinkedFromVertexAtIndex);
}

std::optional<VEQVertexArray> VEQNetwork::verticesLinkedToVertex(const VEQVertex& vertex) const {
  return arrayForHandle(*this, *core_, vertex, &VEQNetwork::verticesLinkedToVertexAtIndex);
}

std::optional<VEQVertexArray> VEQNetwork::verticesLinkedFromVertex(const VEQVertex& vertex) const {
  return arrayForHandle(*this, *core_, vertex, &VEQNetwork::verticesLinkedFromVertexAtIndex);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfVerticesLinkedTo(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::indicesOfVerticesLinkedToVertexAtIndex);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfVerticesLinkedFrom(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::indicesOfVerticesLinkedFromVertexAtIndex);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfEdgesLinkedToVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::indicesOfEdgesLinkedToVertexAtIndex);
}

Shared<VEQNumberArray> VEQNetwork::indicesOfEdgesLinkedFromVertex(const VEQVertex& vertex) const {
  return forHandle(*this, *core_, vertex, &VEQNetwork::indicesOfEdgesLinkedFromVertexAtIndex);
}

Shared<VEQNumberArray> VEQNetwork::calcDegrees() const { return degrees(*core_, Side::kOut); }

Shared<VEQNumberArray> VEQNetwork::calcInDegrees() const { return degrees(*core_, Side::kIn); }

Shared<VEQNumberArray> VEQNetwork::calcStrengths() const { return strengths(*core_, Side::kOut); }

Shared<VEQNumberArray> VEQNetwork::calcInStrengths() const {
  // Undirected, it is the vertices' flag that decides.
  if (!isDirected() && !isVertexWeighted()) return degrees(*core_, Side::kOut);
  return strengths(*core_, Side::kIn);
}

float* VEQNetwork::buildAdjacencyMatrixInPointer(float* buffer) const {
  const std::uint64_t n = countVertices();
  if (n != 0 && n > SIZE_MAX / sizeof(float) / n) throw std::bad_alloc();
  const bool clear = buffer != nullptr;
  if (!buffer) {
    // One cell where there is none, so that null never stands for an empty matrix.
    buffer = static_cast<float*>(std::calloc(n == 0 ? 1 : n * n, sizeof(float)));
    if (!buffer) throw std::bad_alloc();
  }
  // Row by row, while a row that was just cleared is still in the cache. A list is in edge order,
  // and has an undirected self-loop twice, so that each cell's sum is that of one pass over the
  // edges.
  core_->store.visit([&](const auto& topology) {
    const float* const weights = core_->edgesWeights ? core_->edgesWeights->data() : nullptr;
    for (std::uint64_t v = 0; v < n; ++v) {
      float* const row = buffer + n * v;
      if (clear) std::memset(row, 0, n * sizeof(float));
      const auto neighbours = topology.out.neighbours(v);
      const auto edges = topology.out.edges(v);
      for (std::size_t i = 0; i < edges.size(); ++i) {
        row[neighbours[i]] += weights ? weights[edges[i]] : 1.0f;
      }
    }
  });
  return buffer;
}

}  // namespace veq
