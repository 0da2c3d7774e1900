#include "veq/network/internal/copied_properties.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {
namespace {

// Which of a network's two tables the runs speak of.
struct VertexTables {
  static const PropertyTable& table(const NetworkCore& core) { return core.properties->vertices; }
};
struct EdgeTables {
  static const PropertyTable& table(const NetworkCore& core) { return core.properties->edges; }
};

// The elements of `column` that a run of handles copies, to `first` and after.
struct ColumnSlice {
  HandleRun run;
  std::uint64_t first;
  const PropertyColumn* column;

  // Not set beyond the end of a short column. A handle beyond its network's end, which objects to
  // that, has been asked before.
  [[nodiscard]] PropertyValue value(std::uint64_t i) const { return valueOrNull(*column, run[i]); }

  // Calls f(position, index) for all elements that the column has.
  template <class F>
  void forEachPresent(F f) const {
    const std::uint64_t present = column->count();
    for (std::uint64_t i = 0; i < run.count; ++i) {
      if (const std::uint64_t index = run[i]; index < present) f(first + i, index);
    }
  }
};

template <class Side>
std::vector<ColumnSlice> slicesOf(std::span<const HandleRun> runs, std::string_view key) {
  std::vector<ColumnSlice> slices;
  std::uint64_t first = 0;
  for (const HandleRun& run : runs) {
    if (const auto* column = Side::table(run.core()).find(key)) {
      slices.push_back({run, first, column->get()});
    }
    first += run.count;
  }
  return slices;
}

void fillNumbers(VEQNumberArray& to, const ColumnSlice& slice) {
  const std::span<double> values = to.values<double>();
  static_cast<const VEQNumberArray&>(*slice.column).visit([&](auto elements) {
    slice.forEachPresent([&](std::uint64_t position, std::uint64_t index) {
      values[position] = static_cast<double>(elements[index]);
    });
  });
}

void fillVectors(VEQVector2dArray& to, const ColumnSlice& slice) {
  const auto& from = static_cast<const VEQVector2dArray&>(*slice.column);
  slice.forEachPresent([&](std::uint64_t position, std::uint64_t index) {
    to.setVector_atIndex(from.vectorAtIndex(index), position);
  });
}

void fillVectors(VEQVector3dArray& to, const ColumnSlice& slice) {
  const auto& from = static_cast<const VEQVector3dArray&>(*slice.column);
  slice.forEachPresent([&](std::uint64_t position, std::uint64_t index) {
    to.setVector_atIndex(from.vectorAtIndex(index), position);
  });
}

bool canHold(PropertyColumn::Kind kind, const PropertyValue& value) {
  switch (kind) {
    case PropertyColumn::Kind::kGeneric:
      return true;
    case PropertyColumn::Kind::kNumber:
      return value.isNull() || value.number();
    case PropertyColumn::Kind::kVector2d:
      return value.isNull() || value.vector2d();
    case PropertyColumn::Kind::kVector3d:
      return value.isNull() || value.vector3d();
  }
  return false;
}

// False, and the column of no use, where it cannot hold a value.
bool fillTyped(PropertyColumn& to, const ColumnSlice& slice) {
  if (to.kind() == slice.column->kind()) {
    switch (to.kind()) {
      case PropertyColumn::Kind::kNumber:
        fillNumbers(static_cast<VEQNumberArray&>(to), slice);
        return true;
      case PropertyColumn::Kind::kVector2d:
        fillVectors(static_cast<VEQVector2dArray&>(to), slice);
        return true;
      case PropertyColumn::Kind::kVector3d:
        fillVectors(static_cast<VEQVector3dArray&>(to), slice);
        return true;
      case PropertyColumn::Kind::kGeneric:
        break;
    }
  }
  for (std::uint64_t i = 0; i < slice.run.count; ++i) {
    const PropertyValue value = slice.value(i);
    if (!canHold(to.kind(), value)) return false;
    to.replaceObjectAtIndex_withObject(slice.first + i, value);
  }
  return true;
}

Shared<PropertyColumn> genericColumn(const std::vector<ColumnSlice>& slices, std::uint64_t count) {
  std::vector<PropertyValue> values(count);
  for (const ColumnSlice& slice : slices) {
    for (std::uint64_t i = 0; i < slice.run.count; ++i) values[slice.first + i] = slice.value(i);
  }
  return std::make_shared<GenericArray>(std::move(values));
}

Shared<PropertyColumn> vertexColumn(const std::vector<ColumnSlice>& slices, std::uint64_t count) {
  const Shared<PropertyColumn> typed = newVertexColumn(slices.front().value(0), count);
  const bool holdsAll =
      typed->kind() != PropertyColumn::Kind::kGeneric &&
      std::all_of(slices.begin(), slices.end(),
                  [&typed](const ColumnSlice& slice) { return fillTyped(*typed, slice); });
  return holdsAll ? typed : genericColumn(slices, count);
}

template <class Side, class NewColumn>
PropertyTable copied(std::span<const HandleRun> runs, NewColumn newColumn) {
  PropertyTable result;
  if (std::all_of(runs.begin(), runs.end(),
                  [](const HandleRun& run) { return Side::table(run.core()).empty(); })) {
    return result;
  }
  std::uint64_t count = 0;
  for (const HandleRun& run : runs) count += run.count;
  std::unordered_set<const LifeRecord*> seen;
  for (const HandleRun& run : runs) {
    const PropertyTable& table = Side::table(run.core());
    if (table.empty() || !seen.insert(run.life).second) continue;
    for (const auto& [key, column] : table) {
      if (!result.contains(key)) result.set(key, newColumn(slicesOf<Side>(runs, key), count));
    }
  }
  return result;
}

}  // namespace

PropertyTable copiedVertexProperties(std::span<const HandleRun> runs) {
  return copied<VertexTables>(runs, vertexColumn);
}

PropertyTable copiedEdgeProperties(std::span<const HandleRun> runs) {
  return copied<EdgeTables>(runs, genericColumn);
}

}  // namespace veq::internal
