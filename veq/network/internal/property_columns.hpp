/// \file
/// How columns and values get into the tables of a network.
#pragma once

#include <cstdint>
#include <string_view>

#include "veq/base/ownership.hpp"
#include "veq/numeric/keyed_table.hpp"

namespace veq::internal {

struct NetworkCore;

/// Whether the key names the weights or the ends of edges, which are no columns.
[[nodiscard]] bool isReservedKey(std::string_view key);

/// Stores a column as the whole-column setters do: reserved keys are ignored, null removes the key,
/// and a column that is not editable is copied.
void installColumn(PropertyTable& table, std::string_view key, Shared<PropertyColumn> column);

/// What those setters would make of a table that somebody outside has filled.
void installAll(PropertyTable& table);

/// A vertex column of which nothing is set. Its first value fixes its kind.
[[nodiscard]] Shared<PropertyColumn> newVertexColumn(const PropertyValue& first,
                                                     std::uint64_t count);

/// Set one value of a vertex or edge, in the column that is there or in a new one. A value that is
/// refused leaves no new column behind.
void setVertexValue(NetworkCore& core, const PropertyValue& value, std::string_view key,
                    std::uint64_t index);
void setEdgeValue(NetworkCore& core, const PropertyValue& value, std::string_view key,
                  std::uint64_t index);

/// Set all values of one vertex or edge in this way, or none of them.
void setVertexValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index);
void setEdgeValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index);

/// The element, or the null marker where the column ends before it.
[[nodiscard]] PropertyValue valueOrNull(const PropertyColumn& column, std::uint64_t index);

}  // namespace veq::internal
