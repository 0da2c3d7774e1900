#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/slow_network.hpp"
#include "veq/network/network.hpp"

namespace veq::fuzz {

/// A column as plain values.
struct ColumnImage {
  PropertyColumn::Kind kind = PropertyColumn::Kind::kGeneric;
  std::vector<PropertyValue> values;
};

/// Shared, because a network's column may stand under several keys.
using TableImage = std::map<std::string, Shared<ColumnImage>>;

/// Everything that a network holds, as plain values to compare and to compute with.
struct NetworkImage {
  test::SlowNetwork topology;
  TableImage ofVertices;
  TableImage ofEdges;
};

[[nodiscard]] ColumnImage imageOf(const PropertyColumn& column);
/// By way of the published questions alone.
[[nodiscard]] NetworkImage imageOf(const VEQNetwork& network);

/// Equal numbers of one type, or both of them NaN.
[[nodiscard]] bool isSame(const PropertyValue& a, const PropertyValue& b);

/// The first difference, in words; empty where there is none.
[[nodiscard]] std::string difference(const NetworkImage& expected, const NetworkImage& actual);

}  // namespace veq::fuzz
