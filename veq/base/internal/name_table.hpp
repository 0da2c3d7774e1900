#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/internal/memory.hpp"

namespace veq::internal {

/// From names to vertex indices. The names are views into a text that outlives the table. Each
/// operation takes expected time O(length of the name), whoever chose the names.
class VEQ_EXPORT NameTable {
 public:
  /// A name with its hash, made while the memory where it will be looked for is on its way.
  struct Hashed {
    std::string_view name;
    std::uint64_t hash = 0;
  };

  /// The index of the name: the given one if the name is new, otherwise the one it has.
  std::uint64_t insert(const Hashed& name, std::uint64_t index);
  [[nodiscard]] std::optional<std::uint64_t> find(const Hashed& name) const;
  std::uint64_t insert(std::string_view name, std::uint64_t index) {
    return insert(hashed(name), index);
  }
  [[nodiscard]] std::optional<std::uint64_t> find(std::string_view name) const {
    return find(hashed(name));
  }

  /// Calls use(hashed name) for all names in their order, for what is faster than one by one.
  template <class Use>
  void forEach(std::span<const std::string_view> names, Use use) const {
    std::array<Hashed, kAhead> soon;
    for (std::size_t i = 0; i < names.size() + kAhead; ++i) {
      Hashed& next = soon[i % kAhead];
      if (i >= kAhead) use(next);
      if (i < names.size()) prefetch(next = hashed(names[i]));
    }
  }

 private:
  static constexpr std::size_t kAhead = 16;

  /// All zero where it is free.
  struct Slot {
    std::uint64_t hash;
    std::uint64_t head;  ///< The first bytes, so that short names are compared without their text.
    const char* data;
    std::uint64_t size;
    std::uint64_t indexPlusOne;
  };

  [[nodiscard]] static Hashed hashed(std::string_view name);
  [[nodiscard]] static bool holds(const Slot& slot, const Hashed& name);
  void prefetch(const Hashed& name) const;
  /// The slot of the name, or the free one where it would stand.
  [[nodiscard]] std::size_t slotOf(const Hashed& name) const;
  void grow();

  std::uint64_t used_ = 0;
  /// A power of two of them, at most half of them in use.
  Block<Slot> slots_{16};
};

/// Distinct names in the order of their first appearance.
class NumberedNames {
 public:
  std::uint64_t indexOf(const NameTable::Hashed& name) {
    const std::uint64_t index = table_.insert(name, names_.size());
    if (index == names_.size()) names_.push_back(name.name);
    return index;
  }
  [[nodiscard]] const NameTable& table() const { return table_; }
  [[nodiscard]] const std::vector<std::string_view>& names() const { return names_; }

 private:
  NameTable table_;
  std::vector<std::string_view> names_;
};

}  // namespace veq::internal
