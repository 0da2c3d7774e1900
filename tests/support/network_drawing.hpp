#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "veq/handles/handle_array.hpp"
#include "veq/network/network.hpp"

namespace veq::test {

/// The ends of edges as they are written: "0-1 1-2 2-2".
struct DrawnEdges {
  explicit DrawnEdges(const std::string& text) {
    std::istringstream in(text);
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    for (char dash = 0; in >> a >> dash >> b;) {
      from.push_back(a);
      to.push_back(b);
    }
  }

  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
};

/// The network of these edges, such as "0-1 1-2 2-2", with at least the given number of vertices.
inline Owned<VEQNetwork> draw(const std::string& text, bool directed,
                              std::uint64_t minimumCount = 0) {
  const DrawnEdges edges(text);
  return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
      minimumCount, VEQNumberArray::ofIndices(edges.from), VEQNumberArray::ofIndices(edges.to),
      directed);
}

inline Owned<VEQNetwork> drawDirected(const std::string& text, std::uint64_t minimumCount = 0) {
  return draw(text, true, minimumCount);
}

inline Owned<VEQNetwork> drawUndirected(const std::string& text, std::uint64_t minimumCount = 0) {
  return draw(text, false, minimumCount);
}

/// Adds the drawn edges in one call.
inline void insert(VEQNetwork& network, const std::string& text) {
  const DrawnEdges edges(text);
  network.addEdgesFromVerticesIndices_toVerticesIndices_count(edges.from.data(), edges.to.data(),
                                                              edges.from.size());
}

/// The elements of a number array, converted.
inline std::vector<double> doubles(const VEQNumberArray& array) {
  std::vector<double> result;
  for (std::uint64_t i = 0; i < array.count(); ++i) {
    result.push_back(array.numberAtIndex(i).as<double>());
  }
  return result;
}

inline std::vector<std::uint64_t> indices(const VEQNumberArray& array) {
  std::vector<std::uint64_t> result(array.count());
  array.getUnsignedIntegerValues_count(result.data(), result.size());
  return result;
}

/// What the handles of an array stand for.
template <class Kind>
std::vector<std::uint64_t> indices(const HandleArray<Kind>& handles) {
  std::vector<std::uint64_t> result;
  for (const Kind& handle : handles) result.push_back(handle.identification());
  return result;
}

/// The elements of a column as text, "<null>" for the null marker.
inline std::vector<std::string> texts(const PropertyColumn& column) {
  std::vector<std::string> result;
  for (std::uint64_t i = 0; i < column.count(); ++i) {
    result.push_back(column.objectAtIndex(i).text());
  }
  return result;
}

/// The column under a key of a table; null if there is none.
inline const PropertyColumn* columnOf(const PropertyTable& table, std::string_view key) {
  const auto* column = table.find(key);
  return column ? column->get() : nullptr;
}

}  // namespace veq::test
