/// \file
/// Arrays of handles, which make the handles when somebody looks at them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

#include "veq/base/ownership.hpp"
#include "veq/handles/edge.hpp"
#include "veq/handles/internal/handle_table.hpp"
#include "veq/handles/vertex.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq {

/// An immutable array of vertex or edge handles. Copying one is cheap. Arrays that a network gives
/// out refer to its handles by index and keep their length when the network grows; they outlive the
/// network, their handles being invalid then.
/// \ingroup handles
template <class Kind>
class HandleArray {
 public:
  HandleArray() = default;
  /// An array of any handles, also of several networks. A null handle throws std::invalid_argument,
  /// "An array of handles cannot hold a null handle.".
  HandleArray(std::vector<Shared<Kind>> handles) : size_(handles.size()) {
    for (const auto& handle : handles) {
      if (!handle) throw std::invalid_argument("An array of handles cannot hold a null handle.");
    }
    source_ = std::make_shared<const std::vector<Shared<Kind>>>(std::move(handles));
  }
  HandleArray(std::initializer_list<Shared<Kind>> handles)
      : HandleArray(std::vector<Shared<Kind>>(handles)) {}

  /// \name For the library's use
  /// @{
  using Table = internal::HandleTable<Kind>;
  using Indices = std::vector<std::uint64_t>;
  /// Entries that a walk wrote, some distance apart; an entry with all bits set stands for 0.
  template <class Index>
  struct Strided {
    Shared<const void> keeper;
    const Index* first;
    std::uint64_t stride;
  };
  /// The handles 0 to count - 1 of a network.
  HandleArray(Shared<Table> table, std::uint64_t count) : table_(std::move(table)), size_(count) {}
  HandleArray(Shared<Table> table, Indices indices)
      : table_(std::move(table)), size_(indices.size()) {
    source_ = std::make_shared<const Indices>(std::move(indices));
  }
  template <class Index>
  HandleArray(Shared<Table> table, Strided<Index> entries, std::uint64_t count)
      : table_(std::move(table)), source_(std::move(entries)), size_(count) {}
  /// The table whose handles these are; null for an array that was built from handles.
  [[nodiscard]] const Shared<Table>& table() const { return table_; }
  /// Whether these are the handles 0 to count - 1 of a network.
  [[nodiscard]] bool isSnapshot() const {
    return table_ && std::holds_alternative<std::monostate>(source_);
  }
  /// The handles of an array that has no table.
  [[nodiscard]] const Kind& handleAt(std::uint64_t i) const { return reference(i); }
  /// @}

  /// The number of handles, and whether there are none.
  [[nodiscard]] std::uint64_t count() const { return size_; }
  [[nodiscard]] std::uint64_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }

  /// std::out_of_range past the end.
  [[nodiscard]] Shared<Kind> objectAtIndex(std::uint64_t i) const {
    if (i >= size_) throw std::out_of_range("The index is beyond the array of handles.");
    return (*this)[i];
  }
  /// The index is not checked.
  [[nodiscard]] Shared<Kind> operator[](std::uint64_t i) const {
    return table_ ? table_->sharedAt(identificationAtIndex(i)) : mixed()[i];
  }
  /// The index that handle i stands for, without making the handle; i is not checked.
  [[nodiscard]] std::uint64_t identificationAtIndex(std::uint64_t i) const {
    return std::visit([i](const auto& source) { return identification(source, i); }, source_);
  }

  /// The handles at the given positions, in that order, repetitions included; std::out_of_range
  /// where a position is past the end.
  [[nodiscard]] HandleArray subarrayWithIndices(const VEQNumberArray& indices) const {
    std::vector<std::uint64_t> positions(indices.count());
    indices.getUnsignedIntegerValues_count(positions.data(), positions.size());
    for (const std::uint64_t position : positions) {
      if (position >= size_) throw std::out_of_range("The index is beyond the array of handles.");
    }
    if (!table_) {
      std::vector<Shared<Kind>> chosen;
      chosen.reserve(positions.size());
      for (const std::uint64_t position : positions) chosen.push_back((*this)[position]);
      return chosen;
    }
    for (std::uint64_t& position : positions) position = identificationAtIndex(position);
    return HandleArray(table_, std::move(positions));
  }

  /// Visits the handles by reference, which touches no reference count.
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Kind;
    using difference_type = std::ptrdiff_t;
    using pointer = Kind*;
    using reference = Kind&;

    Iterator() = default;
    Iterator(const HandleArray* array, std::uint64_t position)
        : array_(array), position_(position) {}
    reference operator*() const { return array_->reference(position_); }
    pointer operator->() const { return &**this; }
    Iterator& operator++() {
      ++position_;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++position_;
      return before;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    const HandleArray* array_ = nullptr;
    std::uint64_t position_ = 0;
  };
  /// For range-based loops.
  [[nodiscard]] Iterator begin() const { return {this, 0}; }
  [[nodiscard]] Iterator end() const { return {this, size_}; }

 private:
  using Handles = Shared<const std::vector<Shared<Kind>>>;

  [[nodiscard]] const std::vector<Shared<Kind>>& mixed() const {
    return *std::get<Handles>(source_);
  }
  [[nodiscard]] Kind& reference(std::uint64_t i) const {
    return table_ ? table_->at(identificationAtIndex(i)) : *mixed()[i];
  }

  static std::uint64_t identification(std::monostate, std::uint64_t i) { return i; }
  static std::uint64_t identification(const Shared<const Indices>& indices, std::uint64_t i) {
    return (*indices)[i];
  }
  static std::uint64_t identification(const Handles& handles, std::uint64_t i) {
    return (*handles)[i]->identification();
  }
  template <class Index>
  static std::uint64_t identification(const Strided<Index>& entries, std::uint64_t i) {
    const Index entry = entries.first[i * entries.stride];
    return entry == std::numeric_limits<Index>::max() ? 0 : entry;
  }

  Shared<Table> table_;
  std::variant<std::monostate, Shared<const Indices>, Handles, Strided<std::uint32_t>,
               Strided<std::uint64_t>>
      source_;
  std::uint64_t size_ = 0;
};

}  // namespace veq
