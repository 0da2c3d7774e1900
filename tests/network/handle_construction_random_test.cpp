#include <gtest/gtest.h>

#include <random>

#include "tests/support/literal_handle_construction.hpp"
#include "tests/support/log_capture.hpp"
#include "tests/support/network_dump.hpp"
#include "tests/support/rounds.hpp"

namespace veq::handle_construction_random_test {
namespace {

using test::LiteralHandleConstruction;

class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}

  std::uint64_t below(std::uint64_t n) { return engine_() % n; }

  PropertyValue value() {
    switch (below(8)) {
      case 0:
        return {};
      case 1:
        return static_cast<std::int64_t>(below(100)) - 50;
      case 2:
        return 0.25f * static_cast<float>(below(10));
      case 3:
        return 0.1 * static_cast<double>(below(10));
      case 4:
        return "text" + std::to_string(below(10));
      case 5:
        return VEQVector2d(static_cast<double>(below(9)), 2.5, static_cast<int>(below(2)));
      case 6:
        return VEQVector3d(1.5, static_cast<double>(below(9)), 3.5, static_cast<int>(below(2)));
      default:
        return std::uint64_t{UINT64_MAX};
    }
  }

  // A column of any kind that may be shorter or longer than the network.
  Shared<PropertyColumn> column(std::uint64_t n) {
    const std::uint64_t size = below(2 * n + 1);
    Shared<PropertyColumn> result = std::make_shared<GenericArray>();
    const std::uint64_t kind = below(5);
    if (kind == 0) result = VEQNumberArray::initUnsignedIntegerArrayWithCapacity(0);
    if (kind == 1) result = VEQNumberArray::initFloatArrayWithCapacity(0);
    if (kind == 2) result = VEQVector2dArray::initWithSize_precision(0, 0);
    if (kind == 3) result = VEQVector3dArray::initWithSize_precision(0, 1);
    while (result->count() < size) {
      try {
        result->addObject(value());
      } catch (const std::invalid_argument&) {
      }
    }
    return result;
  }

  Owned<VEQNetwork> network() {
    const std::uint64_t n = 1 + below(6);
    std::vector<std::uint64_t> from(below(8));
    std::vector<std::uint64_t> to(from.size());
    for (auto& end : from) end = below(n);
    for (auto& end : to) end = below(n);
    auto result = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
        n, VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), below(2) == 0);
    for (std::uint64_t i = below(4); i > 0; --i) {
      const std::string key = "key" + std::to_string(below(4));
      if (below(2) == 0) {
        result->setPropertiesOfVertices_forKey(column(n), key);
        result->setPropertiesOfEdges_forKey(column(from.size()), key);
      } else {
        try {
          result->setPropertyValue_forKey_atVertexIndex(value(), key, below(n));
          if (!from.empty()) {
            result->setPropertyValue_forKey_atEdgeIndex(value(), key, below(from.size()));
          }
        } catch (const std::logic_error&) {  // a column that is there does not take the value
        }
      }
    }
    return result;
  }

  // All, some, or, of several networks, any handles, repeated ones included.
  template <class Array>
  Array handles(const std::vector<Array>& all) {
    const Array& one = all[below(all.size())];
    if (below(3) == 0) return one;
    if (one.count() > 0 && below(2) == 0) {
      std::vector<std::uint64_t> chosen(below(8));
      for (auto& index : chosen) index = below(one.count());
      return one.subarrayWithIndices(VEQNumberArray::ofIndices(chosen));
    }
    std::vector<std::decay_t<decltype(one[0])>> chosen;
    for (std::uint64_t i = below(10); i > 0; --i) {
      const Array& of = all[below(all.size())];
      if (of.count() > 0) chosen.push_back(of[below(of.count())]);
    }
    return chosen;
  }

 private:
  std::mt19937 engine_;
};

TEST(HandleConstructionAgainstLiteralForm, FromVerticesAndEdgesOfSeveralNetworks) {
  const test::LogCapture log;
  for (int seed = 0; seed < test::rounds(3000); ++seed) {
    Chance chance(static_cast<unsigned>(seed));
    std::vector<Owned<VEQNetwork>> networks;
    std::vector<VEQVertexArray> vertices;
    std::vector<VEQEdgeArray> edges;
    for (std::uint64_t i = 1 + chance.below(3); i > 0; --i) {
      networks.push_back(chance.network());
      vertices.push_back(networks.back()->vertices());
      edges.push_back(networks.back()->edges());
    }
    const bool directed = chance.below(2) == 0;
    const VEQVertexArray ofVertices = chance.handles(vertices);
    if (ofVertices.empty()) continue;
    const VEQEdgeArray ofEdges = chance.handles(edges);
    EXPECT_EQ(test::dump(
                  VEQNetwork::initWithVertices_edges_directed(ofVertices, ofEdges, directed).get()),
              test::dump(LiteralHandleConstruction::fromEdges(ofVertices, ofEdges, directed).get()))
        << "seed " << seed;
  }
}

TEST(HandleConstructionAgainstLiteralForm, FromLinksBetweenVerticesOfSeveralNetworks) {
  for (int seed = 0; seed < test::rounds(3000); ++seed) {
    Chance chance(static_cast<unsigned>(seed));
    std::vector<Owned<VEQNetwork>> networks;
    std::vector<VEQVertexArray> vertices;
    for (std::uint64_t i = 1 + chance.below(3); i > 0; --i) {
      networks.push_back(chance.network());
      vertices.push_back(networks.back()->vertices());
    }
    std::vector<Shared<VEQVertex>> from;
    std::vector<Shared<VEQVertex>> to;
    for (std::uint64_t i = 1 + chance.below(8); i > 0; --i) {
      for (auto* ends : {&from, &to}) {
        const VEQVertexArray& of = vertices[chance.below(vertices.size())];
        ends->push_back(of[chance.below(of.count())]);
      }
    }
    const bool directed = chance.below(2) == 0;
    const VEQVertexArray given = chance.handles(vertices);
    if (!given.empty()) {
      EXPECT_EQ(test::dump(VEQNetwork::initWithVertices_linkFromVertices_toVertices_directed(
                               given, from, to, directed)
                               .get()),
                test::dump(LiteralHandleConstruction::fromLinks(given, from, to, directed).get()))
          << "seed " << seed;
    }
    const VEQVertexArray distinct = LiteralHandleConstruction::distinct(from, to);
    EXPECT_EQ(test::dump(VEQNetwork::initWithVertices_linkFromVertices_toVertices_directed(
                             std::nullopt, from, to, directed)
                             .get()),
              test::dump(LiteralHandleConstruction::fromLinks(distinct, from, to, directed).get()))
        << "seed " << seed;
  }
}

}  // namespace
}  // namespace veq::handle_construction_random_test
