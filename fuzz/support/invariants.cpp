#include "fuzz/support/invariants.hpp"

#include <algorithm>
#include <array>
#include <new>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace veq::fuzz {
namespace {

using test::SlowNetwork;
using List = SlowNetwork::List;

std::vector<std::uint64_t> indicesIn(const VEQNumberArray& array) {
  std::vector<std::uint64_t> indices(array.count());
  array.getUnsignedIntegerValues_count(indices.data(), indices.size());
  return indices;
}

template <class Kind>
std::vector<std::uint64_t> indicesIn(const HandleArray<Kind>& handles) {
  std::vector<std::uint64_t> indices;
  for (const Kind& handle : handles) indices.push_back(handle.identification());
  return indices;
}

// The lists of all vertices in one go over the edges.
std::vector<List> listsOf(const SlowNetwork& network, bool incoming) {
  std::vector<List> lists(network.vertexCount);
  for (std::uint64_t e = 0; e < network.edges.size(); ++e) {
    const auto [a, b] = network.edges[e];
    if (!network.directed) {
      lists[a].push_back({b, e});
      lists[b].push_back({a, e});
    } else if (incoming) {
      lists[b].push_back({a, e});
    } else {
      lists[a].push_back({b, e});
    }
  }
  return lists;
}

void checkList(const SlowNetwork& network, const List& expected,
               const std::vector<std::uint64_t>& vertices,
               const std::vector<std::uint64_t>& edges) {
  VEQ_CHECK(vertices.size() == edges.size());
  VEQ_CHECK(vertices.size() == expected.size());
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    VEQ_CHECK(vertices[i] < network.vertexCount);
    VEQ_CHECK(edges[i] < network.edges.size());
    VEQ_CHECK(vertices[i] == expected[i].neighbour);
    VEQ_CHECK(edges[i] == expected[i].edge);
  }
}

void checkVertex(const VEQNetwork& network, const SlowNetwork& slow, std::uint64_t v,
                 const List& out, const List& in) {
  VEQ_CHECK(network.countEdgesOfVertexAtIndex(v) == out.size());
  VEQ_CHECK(network.countToVerticesOfVertexAtIndex(v) == out.size());
  VEQ_CHECK(network.countInEdgesOfVertexAtIndex(v) == in.size());
  VEQ_CHECK(network.countFromVerticesOfVertexAtIndex(v) == in.size());
  checkList(slow, out, indicesIn(*network.indicesOfVerticesLinkedFromVertexAtIndex(v)),
            indicesIn(*network.indicesOfEdgesLinkedFromVertexAtIndex(v)));
  checkList(slow, in, indicesIn(*network.indicesOfVerticesLinkedToVertexAtIndex(v)),
            indicesIn(*network.indicesOfEdgesLinkedToVertexAtIndex(v)));
  const Shared<VEQVertex> vertex = network.vertexAtIndex(v);
  VEQ_CHECK(vertex->isValid() && vertex->relatedNetwork() == &network);
  VEQ_CHECK(vertex->identification() == v);
  checkList(slow, out, indicesIn(vertex->neighborVertices()), indicesIn(vertex->edges()));
  checkList(slow, in, indicesIn(*network.verticesLinkedToVertex(*vertex)),
            indicesIn(*network.edgesLinkedToVertex(*vertex)));
}

bool isSameNumber(double a, double b) { return a == b || (a != a && b != b); }

void checkWholeArrays(const VEQNetwork& network, const SlowNetwork& slow,
                      const std::vector<List>& out, const std::vector<List>& in) {
  const std::uint64_t n = slow.vertexCount;
  const auto degrees = network.calcDegrees();
  const auto inDegrees = network.calcInDegrees();
  const auto strengths = network.calcStrengths();
  const auto inStrengths = network.calcInStrengths();
  for (const auto& array : {degrees, inDegrees, strengths, inStrengths}) {
    VEQ_CHECK(array->count() == n);
  }
  const auto sum = static_cast<double>(slow.edges.size() * (slow.directed ? 1 : 2));
  const auto total = [](const VEQNumberArray& array) {
    const auto values = array.values<double>();
    return std::accumulate(values.begin(), values.end(), 0.0);
  };
  VEQ_CHECK(total(*degrees) == sum);
  VEQ_CHECK(total(*inDegrees) == sum);
  // In an undirected network it is the vertex weights that let weights of incoming edges count.
  const bool inSums = slow.directed || slow.verticesWeights;
  for (std::uint64_t v = 0; v < n; ++v) {
    VEQ_CHECK(degrees->values<double>()[v] == static_cast<double>(out[v].size()));
    VEQ_CHECK(inDegrees->values<double>()[v] == static_cast<double>(in[v].size()));
    VEQ_CHECK(isSameNumber(strengths->values<double>()[v], slow.sum(out[v])));
    VEQ_CHECK(isSameNumber(inStrengths->values<double>()[v],
                           inSums ? slow.sum(in[v]) : static_cast<double>(in[v].size())));
  }
}

void checkMatrix(const VEQNetwork& network, const SlowNetwork& slow) {
  const std::vector<float> expected = slow.matrix();
  if (expected.empty()) return;
  std::vector<float> cells(expected.size(), 7.0F);
  VEQ_CHECK(network.buildAdjacencyMatrixInPointer(cells.data()) == cells.data());
  for (std::size_t i = 0; i < cells.size(); ++i) {
    VEQ_CHECK(isSameNumber(static_cast<double>(cells[i]), static_cast<double>(expected[i])));
  }
}

void checkTable(const PropertyTable& table, const std::vector<std::string>& keys) {
  VEQ_CHECK(table.keys() == keys);
  for (const auto& [key, column] : table) {
    VEQ_CHECK(table.find(key)->get() == column.get());
    VEQ_CHECK(column->isEditable());
    for (std::uint64_t i = 0; i < column->count(); ++i) {
      VEQ_CHECK(isSame(column->objectAtIndex(i), column->objectAtIndex(i)));
    }
  }
}

void checkNames(const VEQNetwork& network) {
  const std::uint64_t looked = std::min<std::uint64_t>(network.countVertices(), 4);
  for (std::uint64_t v = 0; v < looked; ++v) {
    const PropertyValue name = network.vertexAtIndex(v)->name();
    if (!name.string()) continue;
    const auto first = network.vertexWithName(*name.string());
    VEQ_CHECK(first && first->identification() <= v);
    const std::vector<std::uint64_t> all = indicesIn(network.verticesWithName(*name.string()));
    VEQ_CHECK(std::count(all.begin(), all.end(), v) == 1);
    VEQ_CHECK(all.front() == first->identification());
  }
}

// Vertices far apart and not all of them, since inputs may ask for a few hundred without edges.
std::uint64_t strideOver(std::uint64_t count) { return 1 + count / 64; }

template <class Error, class F>
bool throws(F f) {
  try {
    f();
  } catch (const Error&) {
    return true;
  }
  return false;
}

}  // namespace

void checkTopology(const VEQNetwork& network, const SlowNetwork& expected) {
  const std::uint64_t n = expected.vertexCount;
  const std::uint64_t m = expected.edges.size();
  VEQ_CHECK(network.countVertices() == n);
  VEQ_CHECK(network.countEdges() == m);
  VEQ_CHECK(network.vertices().count() == n);
  VEQ_CHECK(network.edges().count() == m);
  VEQ_CHECK(network.isDirected() == expected.directed);
  VEQ_CHECK(network.isVertexWeighted() == expected.verticesWeights.has_value());
  VEQ_CHECK(network.isEdgeWeighted() == expected.edgesWeights.has_value());
  VEQ_CHECK(network.verticesWeightValues()->count() == n);
  VEQ_CHECK(network.edgesWeightValues()->count() == m);
  for (const auto& [a, b] : expected.edges) VEQ_CHECK(a < n && b < n);

  const std::vector<List> out = listsOf(expected, false);
  const std::vector<List> in = listsOf(expected, true);
  for (std::uint64_t v = 0; v < n; v += strideOver(n)) {
    checkVertex(network, expected, v, out[v], in[v]);
  }
  checkWholeArrays(network, expected, out, in);
  if (n <= 16) checkMatrix(network, expected);
}

void checkNetwork(const VEQNetwork& network) {
  checkTopology(network, imageOf(network).topology);
  checkTable(*network.propertiesOfVertices(), network.keysForPropertiesOfVertices());
  checkTable(*network.propertiesOfEdges(), network.keysForPropertiesOfEdges());
  checkNames(network);
  const std::uint64_t n = network.countVertices();
  const std::uint64_t m = network.countEdges();
  if (n > 0) {
    VEQ_CHECK(network.propertiesOfVertexAtIndex(n - 1).size() ==
              network.propertiesOfVertices()->size());
  }
  if (m > 0) {
    VEQ_CHECK(network.propertiesOfEdgeAtIndex(m - 1).size() == network.propertiesOfEdges()->size());
  }
}

void checkBounds(const VEQNetwork& network) {
  const std::uint64_t n = network.countVertices();
  VEQ_CHECK(network.indicesOfEdgesLinkedFromVertexAtIndex(n)->count() == 0);
  VEQ_CHECK(throws<std::out_of_range>([&] { (void)network.vertexAtIndex(n); }));
  VEQ_CHECK(throws<std::invalid_argument>([&] { (void)network.countEdgesOfVertexAtIndex(n); }));
}

void checkComponents(const VEQNetwork& network) {
  const auto components = network.connectedSubNetworksArray();
  std::uint64_t vertices = 0;
  std::uint64_t edges = 0;
  std::uint64_t largest = 0;
  for (const auto& component : components) {
    VEQ_CHECK(component->countVertices() > 0);
    vertices += component->countVertices();
    edges += component->countEdges();
    largest = std::max(largest, component->countVertices());
    checkNetwork(*component);
  }
  VEQ_CHECK(vertices == network.countVertices());
  VEQ_CHECK(edges == network.countEdges());
  const auto giant = network.largestConnectedSubNetwork();
  VEQ_CHECK((giant ? giant->countVertices() : 0) == largest);
}

void checkRoundTrip(const VEQNetwork& network, std::uint64_t choice) {
  constexpr std::array kFormats = {checkXnetRoundTrip, checkPajekRoundTrip, checkEdgeListRoundTrip,
                                   checkArchiveRoundTrip};
  const NetworkImage before = imageOf(network);
  kFormats[choice % kFormats.size()](network);
  VEQ_CHECK(!network.description().empty());
  VEQ_CHECK_NO(difference(before, imageOf(network)));
}

bool holdsWorthyNumbers(std::string_view text) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    const char byte = i < text.size() ? text[i] : '\0';
    if (byte >= '0' && byte <= '9') {
      // Readers clamp what is too large, too.
      if (number < kImpossibleVertices) number = number * 10 + static_cast<unsigned>(byte - '0');
      continue;
    }
    if (!isWorthBuilding(number)) return false;
    number = 0;
  }
  return true;
}

}  // namespace veq::fuzz
