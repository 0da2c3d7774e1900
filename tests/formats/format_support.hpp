#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/temporary_folder.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/property_column.hpp"

namespace veq::test {

using testing::ElementsAre;
using testing::IsEmpty;

using Texts = std::vector<std::string>;

/// 0 - 1 - 2, or 0 > 1 > 2.
inline Owned<VEQNetwork> path3(bool directed = false, const VEQNumberArray* vertexWeights = nullptr,
                               const VEQNumberArray* edgeWeights = nullptr) {
  return VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      VEQNumberArray::ofIndices({0, 1}), VEQNumberArray::ofIndices({1, 2}), directed, vertexWeights,
      edgeWeights);
}

inline Shared<GenericArray> generic(std::vector<PropertyValue> values) {
  return std::make_shared<GenericArray>(std::move(values));
}

/// The edges in index order, as "0>1 1>2".
inline std::string edgesOf(const VEQNetwork& network) {
  const auto& store = internal::CoreAccess::of(network).store;
  std::string text;
  for (std::uint64_t edge = 0; edge < store.edgeCount(); ++edge) {
    if (edge > 0) text += ' ';
    text += std::to_string(store.from(edge)) + '>' + std::to_string(store.to(edge));
  }
  return text;
}

inline std::vector<float> floatsOf(const VEQNumberArray& array) {
  std::vector<float> values(array.count());
  array.getFloatValues(values.data());
  return values;
}
inline std::vector<float> edgeWeightsOf(const VEQNetwork& network) {
  return floatsOf(*network.edgesWeightValues());
}
inline std::vector<float> vertexWeightsOf(const VEQNetwork& network) {
  return floatsOf(*network.verticesWeightValues());
}

/// The elements' texts; no element and no column are told apart by their callers.
inline Texts textsOf(const PropertyColumn& column) {
  Texts texts;
  for (std::uint64_t i = 0; i < column.count(); ++i) {
    texts.push_back(column.objectAtIndex(i).text());
  }
  return texts;
}
inline Texts vertexTexts(const VEQNetwork& network, std::string_view key) {
  const auto* column = network.propertiesOfVertices()->find(key);
  return column ? textsOf(**column) : Texts{"no column"};
}
inline Texts edgeTexts(const VEQNetwork& network, std::string_view key) {
  const auto* column = network.propertiesOfEdges()->find(key);
  return column ? textsOf(**column) : Texts{"no column"};
}
inline PropertyColumn::Kind vertexKind(const VEQNetwork& network, std::string_view key) {
  return (*network.propertiesOfVertices()->find(key))->kind();
}
inline PropertyColumn::Kind edgeKind(const VEQNetwork& network, std::string_view key) {
  return (*network.propertiesOfEdges()->find(key))->kind();
}

/// Calls f with many damaged forms of a text: cut anywhere, with pieces removed, doubled and
/// exchanged for what readers look for. The same ones every time.
template <class F>
void forMutationsOf(const std::string& text, const Texts& pieces, F f) {
  for (std::size_t length = 0; length <= text.size(); ++length) f(text.substr(0, length));
  std::minstd_rand random(1);
  for (int round = 0; round < 2000; ++round) {
    std::string mutated = text;
    for (auto edits = 1 + random() % 4; edits > 0; --edits) {
      const std::size_t at = random() % (mutated.size() + 1);
      const std::size_t length = random() % 12;
      switch (random() % 4) {
        case 0:
          mutated.erase(at, length);
          break;
        case 1:
          mutated.insert(at, mutated.substr(at, length));
          break;
        case 2:
          mutated.insert(at, pieces[random() % pieces.size()]);
          break;
        default:
          if (at < mutated.size()) mutated[at] = static_cast<char>(random() % 256);
      }
    }
    f(mutated);
  }
}

}  // namespace veq::test
