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
      : contents_(other.contents_ ? std::make_unique<Contents>(*other.contents_) : nullptr) {}
  KeyedTable(KeyedTable&&) noexcept = default;
  /// By way of a copy, so that a failure changes nothing.
  KeyedTable& operator=(KeyedTable other) noexcept {
    contents_.swap(other.contents_);
    return *this;
  }

  /// The number of keys, and whether there are none.
  [[nodiscard]] std::size_t size() const { return contents_ ? contents_->entries.size() : 0; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  /// For range-based loops over the entries.
  [[nodiscard]] const Entry* begin() const {
    return contents_ ? contents_->entries.data() : nullptr;
  }
  [[nodiscard]] const Entry* end() const { return begin() + size(); }

  /// The value under the key, or null. It stays where it is until the table changes.
  [[nodiscard]] const Value* find(std::string_view key) const {
    if (!contents_) return nullptr;
    const std::size_t at = contents_->find(key);
    return at == size() ? nullptr : &contents_->entries[at].second;
  }
  /// Whether anything stands under the key.
  [[nodiscard]] bool contains(std::string_view key) const { return find(key) != nullptr; }

  /// Stores the value under the key; a key that is already there keeps its place.
  void set(std::string_view key, Value value) {
    if (!contents_) contents_ = std::make_unique<Contents>();
    if (const std::size_t at = contents_->find(key); at != size()) {
      contents_->entries[at].second = std::move(value);
    } else {
      contents_->append(key, std::move(value));
    }
  }

  /// Forgets the key, if it is there. O(keys).
  void remove(std::string_view key) {
    if (!contents_) return;
    if (const std::size_t at = contents_->find(key); at != size()) contents_->erase(at);
  }

  /// In the order of their first setting.
  [[nodiscard]] std::vector<std::string> keys() const {
    std::vector<std::string> result;
    result.reserve(size());
    for (const Entry& entry : *this) result.push_back(entry.first);
    return result;
  }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const {
      return std::hash<std::string_view>{}(key);
    }
  };

  struct Contents {
    // The number of entries where there is no such key.
    [[nodiscard]] std::size_t find(std::string_view key) const {
      if (entries.size() > kHandful) {
        const auto at = positions.find(key);
        return at == positions.end() ? entries.size() : at->second;
      }
      std::size_t at = 0;
      while (at < entries.size() && entries[at].first != key) ++at;
      return at;
    }

    void append(std::string_view key, Value value) {
      entries.emplace_back(std::string(key), std::move(value));
      if (entries.size() <= kHandful) return;
      try {
        for (std::size_t at = positions.size(); at < entries.size(); ++at) {
          positions.emplace(entries[at].first, at);
        }
      } catch (...) {
        if (positions.size() < entries.size() - 1) positions.clear();
        entries.pop_back();
        throw;
      }
    }

    void erase(std::size_t removed) noexcept {
      if (entries.size() - 1 > kHandful) {
        positions.erase(positions.find(entries[removed].first));
        for (auto& [key, position] : positions) position -= position > removed;
      } else {
        positions.clear();
      }
      entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(removed));
    }

    std::vector<Entry> entries;
    // Of all entries where these are more than a handful; a search through fewer is faster.
    std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> positions;
  };

  static constexpr std::size_t kHandful = 8;

  // Made by the first key: networks have two tables each, and there may be very many that are
  // empty.
  std::unique_ptr<Contents> contents_;
};

/// The property columns of a network's vertices or edges.
/// \ingroup values
using PropertyTable = KeyedTable<Shared<PropertyColumn>>;

/// The properties of one vertex, edge or agent.
/// \ingroup values
using PropertyMap = KeyedTable<PropertyValue>;

}  // namespace veq
