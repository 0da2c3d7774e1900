/// \file
/// The properties of the agents of a group.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/property_column.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq {

/// What stands under a key: a column with one entry per agent, or one value for the whole group.
/// The same type answers for one agent, whose entry it then holds.
/// \ingroup walks
using AgentsProperty = std::variant<Shared<PropertyColumn>, PropertyValue>;

/// A map from keys to what stands under them, in the order of the keys' first setting. A table that
/// setProperties() has installed in a group is frozen.
/// \ingroup walks
class VEQ_EXPORT AgentsPropertyTable {
 public:
  AgentsPropertyTable() = default;
  /// A copy is not frozen. Columns are shared between the copies.
  AgentsPropertyTable(const AgentsPropertyTable& other) : entries_(other.entries_) {}
  AgentsPropertyTable(AgentsPropertyTable&&) = default;
  AgentsPropertyTable& operator=(const AgentsPropertyTable&) = delete;
  AgentsPropertyTable& operator=(AgentsPropertyTable&&) = delete;
  ~AgentsPropertyTable() = default;

  /// The number of keys, and whether there are none.
  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  /// Pairs of key and AgentsProperty.
  [[nodiscard]] auto begin() const { return entries_.begin(); }
  [[nodiscard]] auto end() const { return entries_.end(); }
  /// What stands under the key, or null. It stays where it is until the table changes.
  [[nodiscard]] const AgentsProperty* find(std::string_view key) const {
    return entries_.find(key);
  }
  /// Whether anything stands under the key.
  [[nodiscard]] bool contains(std::string_view key) const { return entries_.contains(key); }
  /// In the order of their first setting.
  [[nodiscard]] std::vector<std::string> keys() const { return entries_.keys(); }
  /// Whether keys can no longer be added or set.
  [[nodiscard]] bool isFrozen() const { return frozen_; }

  /// Stores under the key what is given, a column being shared and not copied. Throws
  /// std::invalid_argument for a column that is null, and always on a frozen table.
  void set(std::string_view key, AgentsProperty property) {
    if (frozen_) throw std::invalid_argument("The table of agents' properties is frozen.");
    if (const auto* column = std::get_if<Shared<PropertyColumn>>(&property); column && !*column) {
      throw std::invalid_argument("A column of agents' properties must not be null.");
    }
    entries_.set(key, std::move(property));
  }

  /// A frozen copy, which shares the columns.
  [[nodiscard]] Shared<AgentsPropertyTable> frozenCopy() const {
    auto copy = std::make_shared<AgentsPropertyTable>(*this);
    copy->frozen_ = true;
    return copy;
  }

 private:
  KeyedTable<AgentsProperty> entries_;
  bool frozen_ = false;
};

}  // namespace veq
