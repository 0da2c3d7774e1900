/// \file
/// A map from keys to values that keeps its keys in the order in which they were first set.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "veq/base/ownership.hpp"
#include "veq/numeric/property_column.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq {

/// Iterates as pairs of key and value, in the order of the keys' first setting, so that a file is
/// written the same way every time.
/// \ingroup values
template <class Value>
class KeyedTable {
 public:
  /// A key and what stands under it.
  using Entry = std::pair<std::string, Value>;

  KeyedTable() = default;
  /// The values are copied as values are: columns are shared.
  KeyedTable(const KeyedTable& other)
      : entries_(other.entries_),
        positions_(other.positions_ ? std::make_unique<Positions>(*other.positions_) : nullptr) {}
  KeyedTable(KeyedTable&&) noexcept = default;
  /// By way of a copy, so that a failure leaves the entries and their positions in agreement.
  KeyedTable& operator=(KeyedTable other) noexcept {
    entries_.swap(other.entries_);
    positions_.swap(other.positions_);
    return *this;
  }

  /// The number of keys, and whether there are none.
  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  /// For range-based loops over the entries.
  [[nodiscard]] auto begin() const { return entries_.begin(); }
  [[nodiscard]] auto end() const { return entries_.end(); }

  /// The value under the key, or null. It stays where it is until the table changes.
  [[nodiscard]] const Value* find(std::string_view key) const {
    if (!positions_) return nullptr;
    const auto at = positions_->find(key);
    return at == positions_->end() ? nullptr : &entries_[at->second].second;
  }
  /// Whether anything stands under the key.
  [[nodiscard]] bool contains(std::string_view key) const { return find(key) != nullptr; }

  /// Stores the value under the key; a key that is already there keeps its place.
  void set(std::string_view key, Value value) {
    if (!positions_) positions_ = std::make_unique<Positions>();
    if (const auto at = positions_->find(key); at != positions_->end()) {
      entries_[at->second].second = std::move(value);
      return;
    }
    entries_.emplace_back(std::string(key), std::move(value));
    try {
      positions_->emplace(key, entries_.size() - 1);
    } catch (...) {
      entries_.pop_back();
      throw;
    }
  }

  /// Forgets the key, if it is there. O(keys).
  void remove(std::string_view key) {
    if (!positions_) return;
    const auto at = positions_->find(key);
    if (at == positions_->end()) return;
    const std::size_t removed = at->second;
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(removed));
    positions_->erase(at);
    for (auto& [name, position] : *positions_) position -= position > removed;
  }

  /// In the order of their first setting.
  [[nodiscard]] std::vector<std::string> keys() const {
    std::vector<std::string> result;
    result.reserve(entries_.size());
    for (const Entry& entry : entries_) result.push_back(entry.first);
    return result;
  }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const {
      return std::hash<std::string_view>{}(key);
    }
  };

  using Positions = std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>>;

  std::vector<Entry> entries_;
  // Made by the first key: networks have two tables each, and there may be very many that are
  // empty.
  std::unique_ptr<Positions> positions_;
};

/// The property columns of a network's vertices or edges.
/// \ingroup values
using PropertyTable = KeyedTable<Shared<PropertyColumn>>;

/// The properties of one vertex, edge or agent.
/// \ingroup values
using PropertyMap = KeyedTable<PropertyValue>;

}  // namespace veq
