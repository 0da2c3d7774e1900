#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>

#include "veq/base/memory.hpp"

namespace veq::internal {

/// One entry of a list: the vertex at the other end, and the edge that leads there.
template <class Index>
struct Entry {
  Index neighbour;
  Index edge;
};

/// Where a vertex's list lies: its first entry's place in the zone, and its length. A list that has
/// never held an entry starts at 0, where no list is.
template <class Index>
struct Row {
  Index start;
  Index count;
};

/// The room that a list of this length has: 0, 2, 6, 14, 30, ..., for it was last doubled when an
/// entry no longer fitted, to twice the length of then.
[[nodiscard]] constexpr std::uint64_t listCapacity(std::uint64_t count) {
  return count == 0 ? 0 : std::bit_ceil(count + 2) - 2;
}

/// The lists of one direction, in one zone of memory. A list that outgrows its room moves to the
/// zone's end and leaves its old room to the next list that needs one of that size.
template <class Index>
class AdjacencyLists {
 public:
  AdjacencyLists() = default;
  explicit AdjacencyLists(std::uint64_t vertices) : rows_(vertices) {}

  [[nodiscard]] const Row<Index>* rows() const { return rows_.data(); }
  [[nodiscard]] const Entry<Index>* zone() const { return zone_.data(); }
  [[nodiscard]] std::uint64_t count(std::uint64_t vertex) const { return rows_[vertex].count; }
  [[nodiscard]] std::span<const Entry<Index>> list(std::uint64_t vertex) const {
    return {zone_.data() + rows_[vertex].start, rows_[vertex].count};
  }

  /// \name Filling, for a construction that knows all lengths before it places an entry
  /// Every entry is announced before the first of its list is placed, and the zone is opened before
  /// that, with room for all announced lists or more.
  /// @{
  void announce(std::uint64_t vertex) { ++rows_[vertex].count; }
  /// The room that the lists announced so far take. O(vertices).
  [[nodiscard]] std::uint64_t announcedRoom() const {
    std::uint64_t room = 0;
    for (std::uint64_t v = 0; v < rows_.size(); ++v) room += listCapacity(rows_[v].count);
    return room;
  }
  void openZone(std::uint64_t room) {
    if (room != 0) zone_.resize(kFirst + room);
  }
  void place(std::uint64_t vertex, Entry<Index> entry) {
    Row<Index>& row = rows_[vertex];
    if (row.start == 0) {
      row.start = static_cast<Index>(used_);
      used_ += listCapacity(row.count);
      row.count = 0;
    }
    zone_[row.start + row.count++] = entry;
  }
  /// Gives back the part of the zone that no list took.
  void finish() {
    if (used_ < zone_.size()) zone_.resize(used_);
  }
  /// @}

  /// \name Appending
  /// Nothing can fail after reserve() with the sum of what announceMore() gave for all entries.
  /// @{
  /// The zone entries that one more entry needs at most; announces it, and must be taken back.
  [[nodiscard]] std::uint64_t announceMore(std::uint64_t vertex) {
    const std::uint64_t before = rows_[vertex].count++;
    const std::uint64_t needed = listCapacity(before + 1);
    return needed == listCapacity(before) ? 0 : needed;
  }
  void takeBack(std::uint64_t vertex) { --rows_[vertex].count; }
  [[nodiscard]] std::uint64_t zoneSizeWith(std::uint64_t moreEntries) const {
    return used_ + moreEntries;
  }
  void reserve(std::uint64_t moreEntries) {
    if (free_.empty()) free_ = Block<Index>(kSizeClasses);
    zone_.reserve(used_ + moreEntries);
  }
  void append(std::uint64_t vertex, Entry<Index> entry) noexcept {
    Row<Index>& row = rows_[vertex];
    if (row.count == listCapacity(row.count)) enlarge(row);
    zone_[row.start + row.count++] = entry;
  }
  /// @}

 private:
  static constexpr std::uint64_t kFirst = 1;
  static constexpr std::uint64_t kSizeClasses = 8 * sizeof(Index);

  // Lists of capacity 2, 6, 14, ... are of size class 0, 1, 2, ...
  static unsigned sizeClass(std::uint64_t capacity) {
    return static_cast<unsigned>(std::bit_width(capacity)) - 2;
  }

  void enlarge(Row<Index>& row) noexcept {
    const std::uint64_t capacity = listCapacity(std::uint64_t{row.count} + 1);
    const Index start = takeRoom(capacity);
    for (Index i = 0; i < row.count; ++i) zone_[start + i] = zone_[row.start + i];
    if (row.count != 0) leaveRoom(row.start, row.count);
    row.start = start;
  }

  Index takeRoom(std::uint64_t capacity) noexcept {
    Index& free = free_[sizeClass(capacity)];
    if (free != 0) return std::exchange(free, zone_[free].neighbour);
    return static_cast<Index>(std::exchange(used_, used_ + capacity));
  }

  // Rooms that wait for a list are chained through their first entries.
  void leaveRoom(Index start, std::uint64_t capacity) noexcept {
    Index& free = free_[sizeClass(capacity)];
    zone_[start].neighbour = std::exchange(free, start);
  }

  Block<Row<Index>> rows_;
  Block<Entry<Index>> zone_;
  std::uint64_t used_ = kFirst;
  // The first room of each size class that waits for a list, or 0. Made by the first insertion, as
  // it would be the larger part of a small network.
  Block<Index> free_;
};

}  // namespace veq::internal
