#include "veq/network/internal/property_columns.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

#include "veq/network/internal/network_core.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

// These name the weights and the ends of edges, which are no columns.
constexpr std::array<std::string_view, 4> kReservedKeys{"Edge Weight", "Vertex Weight", "Edge From",
                                                        "Edge To"};

// Stores a value under a key, in the column that is there or in one that `newColumn()` makes.
template <class NewColumn>
void setValue(PropertyTable& table, const PropertyValue& value, std::string_view key,
              std::uint64_t index, NewColumn newColumn) {
  if (const auto* column = table.find(key)) {
    (*column)->replaceObjectAtIndex_withObject(index, value);
    return;
  }
  Shared<PropertyColumn> column = newColumn();
  column->replaceObjectAtIndex_withObject(index, value);
  table.set(key, std::move(column));
}

// What a value replaced.
struct Replaced {
  PropertyColumn* column;
  PropertyValue value;
};

void undo(std::vector<Replaced>& done, std::uint64_t index, PropertyTable& table,
          std::size_t keys) noexcept {
  for (; !done.empty(); done.pop_back()) {
    done.back().column->replaceObjectAtIndex_withObject(index, std::move(done.back().value));
  }
  // New keys stand behind the old ones.
  while (table.size() > keys) table.remove(std::prev(table.end())->first);
}

template <class SetValue>
void setValues(PropertyTable& table, const PropertyMap& values, std::uint64_t index, SetValue set) {
  const std::size_t keys = table.size();
  std::vector<Replaced> done;
  done.reserve(values.size());
  try {
    for (const auto& [key, value] : values) {
      if (const auto* column = table.find(key)) {
        // Its own elements from here on, so that undoing takes no memory.
        (*column)->reserve(0);
        done.push_back({column->get(), (*column)->objectAtIndex(index)});
      }
      set(value, key);
    }
  } catch (...) {
    undo(done, index, table, keys);
    throw;
  }
}

}  // namespace

bool isReservedKey(std::string_view key) {
  return std::find(kReservedKeys.begin(), kReservedKeys.end(), key) != kReservedKeys.end();
}

void installColumn(PropertyTable& table, std::string_view key, Shared<PropertyColumn> column) {
  if (isReservedKey(key)) return;
  if (!column) {
    table.remove(key);
    return;
  }
  if (!column->isEditable()) column = column->editableCopy();
  table.set(key, std::move(column));
}

void installAll(PropertyTable& table) {
  const auto isAsInstalled = [](const auto& entry) {
    return entry.second && entry.second->isEditable() && !isReservedKey(entry.first);
  };
  if (std::all_of(table.begin(), table.end(), isAsInstalled)) return;
  PropertyTable installed;
  for (const auto& [key, column] : table) installColumn(installed, key, column);
  table = std::move(installed);
}

Shared<PropertyColumn> newVertexColumn(const PropertyValue& first, std::uint64_t count) {
  if (const VEQVector2d* vector = first.vector2d()) {
    return VEQVector2dArray::initWithSize_precision(count, vector->precision());
  }
  if (const VEQVector3d* vector = first.vector3d()) {
    return VEQVector3dArray::initWithSize_precision(count, vector->precision());
  }
  if (first.number()) return VEQNumberArray::initWithDoubleScalar_count(0.0, count);
  return GenericArray::nullFilled(count);
}

void setVertexValue(NetworkCore& core, const PropertyValue& value, std::string_view key,
                    std::uint64_t index) {
  setValue(core.properties->vertices, value, key, index,
           [&] { return newVertexColumn(value, core.store.vertexCount()); });
}

void setEdgeValue(NetworkCore& core, const PropertyValue& value, std::string_view key,
                  std::uint64_t index) {
  setValue(core.properties->edges, value, key, index, [&]() -> Shared<PropertyColumn> {
    return GenericArray::nullFilled(core.store.edgeCount());
  });
}

void setVertexValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index) {
  setValues(core.properties->vertices, values, index,
            [&](const PropertyValue& value, std::string_view key) {
              setVertexValue(core, value, key, index);
            });
}

void setEdgeValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index) {
  setValues(core.properties->edges, values, index,
            [&](const PropertyValue& value, std::string_view key) {
              setEdgeValue(core, value, key, index);
            });
}

PropertyValue valueOrNull(const PropertyColumn& column, std::uint64_t index) {
  return index < column.count() ? column.objectAtIndex(index) : PropertyValue();
}

}  // namespace veq::internal
