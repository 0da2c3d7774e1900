#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "veq/base/internal/memory.hpp"

namespace veq::internal {

/// One entry of a list: the vertex at the other end, and the edge that leads there.
template <class Index>
struct Entry {
  Index neighbour;
  Index edge;
};

/// Where a vertex's list lies: its first entry's place in both zones, and its length. A list that
/// has never held an entry starts at 0, where no list is.
template <class Index>
struct Row {
  Index start;
  Index count;
};

/// The room that a list of this length has where it may grow: 0, 2, 6, 14, 30, ..., for it was last
/// doubled when an entry no longer fitted, to twice the length of then.
[[nodiscard]] constexpr std::uint64_t listCapacity(std::uint64_t count) {
  return count == 0 ? 0 : std::bit_ceil(count + 2) - 2;
}

/// The lists of one direction: the neighbours of all lists in one zone of memory, and the edges in
/// another at the same places, so that walks and searches, which ask for no edges, find twice as
/// many neighbours in the caches.
///
/// Construction packs the lists. The first insertion into one moves it to the zones' end, where it
/// has room to grow; a list that outgrows its room moves there again, and leaves the room to the
/// next list that needs one of that size.
template <class Index>
class AdjacencyLists {
 public:
  [[nodiscard]] const Row<Index>* rows() const { return rows_.data(); }
  [[nodiscard]] const Index* neighbourZone() const { return neighbours_.data(); }
  [[nodiscard]] std::uint64_t count(std::uint64_t vertex) const { return rows_[vertex].count; }
  /// The two columns of a list.
  [[nodiscard]] std::span<const Index> neighbours(std::uint64_t vertex) const {
    return {neighbours_.data() + rows_[vertex].start,
            static_cast<std::size_t>(rows_[vertex].count)};
  }
  [[nodiscard]] std::span<const Index> edges(std::uint64_t vertex) const {
    return {edges_.data() + rows_[vertex].start, static_cast<std::size_t>(rows_[vertex].count)};
  }

  /// Fetch ahead what will be read: a row, and once that is there, its neighbours.
  void fetchRow(std::uint64_t vertex) const { __builtin_prefetch(rows_.data() + vertex); }
  void fetchNeighbours(std::uint64_t vertex) const {
    __builtin_prefetch(neighbours_.data() + rows_[vertex].start);
  }

  /// \name Appending
  /// First all lists that will grow are loosened. Nothing can fail after reserve() with the sum of
  /// what announceMore() gave for all entries.
  /// @{
  /// The places in the zones that a list needs which construction packed; none for others.
  [[nodiscard]] std::uint64_t roomToLoosen(std::uint64_t vertex) const {
    return rows_[vertex].start < packedSize() ? listCapacity(rows_[vertex].count) : 0;
  }
  /// Moves a packed list to where it has that room.
  void loosen(std::uint64_t vertex, std::uint64_t room) {
    reserve(room);
    move(rows_[vertex], room);
  }
  /// The places in the zones that one more entry needs at most; announces it, and must be taken
  /// back.
  [[nodiscard]] std::uint64_t announceMore(std::uint64_t vertex) {
    // Where the list will be written to, or read to be moved.
    __builtin_prefetch(neighbours_.data() + rows_[vertex].start, 1);
    __builtin_prefetch(edges_.data() + rows_[vertex].start, 1);
    const std::uint64_t before = rows_[vertex].count++;
    const std::uint64_t needed = listCapacity(before + 1);
    return needed == listCapacity(before) ? 0 : needed;
  }
  void takeBack(std::uint64_t vertex) { --rows_[vertex].count; }
  [[nodiscard]] std::uint64_t zoneSizeWith(std::uint64_t moreEntries) const {
    return (growth_ ? growth_->used : packedSize()) + moreEntries;
  }
  void reserve(std::uint64_t moreEntries) {
    if (!growth_) growth_ = std::make_unique<Growth>(packedSize());
    neighbours_.reserve(zoneSizeWith(moreEntries));
    edges_.reserve(zoneSizeWith(moreEntries));
  }
  void append(std::uint64_t vertex, Entry<Index> entry) noexcept {
    Row<Index>& row = rows_[vertex];
    if (row.count == listCapacity(row.count)) enlarge(row);
    write(row.start + row.count++, entry);
  }
  /// @}

 private:
  template <class>
  friend class ListFiller;

  static constexpr std::uint64_t kFirst = 1;
  static constexpr std::uint64_t kSizeClasses = 8 * sizeof(Index);

  // What insertions keep account of. It would be the larger part of a small network.
  struct Growth {
    explicit Growth(std::uint64_t size) : packed(size), used(size) {}

    std::uint64_t packed;  // Where the lists end that construction packed.
    std::uint64_t used;
    Index free[kSizeClasses]{};  // The first room of each size that waits for a list, or 0.
  };

  [[nodiscard]] std::uint64_t packedSize() const {
    return growth_ ? growth_->packed : std::max(kFirst, neighbours_.size());
  }

  void write(std::uint64_t place, Entry<Index> entry) {
    neighbours_[place] = entry.neighbour;
    edges_[place] = entry.edge;
  }

  // Lists of capacity 2, 6, 14, ... are of size class 0, 1, 2, ...
  static unsigned sizeClass(std::uint64_t capacity) {
    return static_cast<unsigned>(std::bit_width(capacity)) - 2;
  }

  void enlarge(Row<Index>& row) noexcept {
    const Index left = row.start;
    move(row, listCapacity(std::uint64_t{row.count} + 1));
    if (row.count != 0) leaveRoom(left, row.count);
  }

  void move(Row<Index>& row, std::uint64_t capacity) noexcept {
    const Index start = takeRoom(capacity);
    std::copy_n(neighbours_.data() + row.start, row.count, neighbours_.data() + start);
    std::copy_n(edges_.data() + row.start, row.count, edges_.data() + start);
    row.start = start;
  }

  Index takeRoom(std::uint64_t capacity) noexcept {
    Index& free = growth_->free[sizeClass(capacity)];
    if (free != 0) return std::exchange(free, neighbours_[free]);
    return static_cast<Index>(std::exchange(growth_->used, growth_->used + capacity));
  }

  // Rooms that wait for a list are chained through their first neighbours.
  void leaveRoom(Index start, std::uint64_t capacity) noexcept {
    Index& free = growth_->free[sizeClass(capacity)];
    neighbours_[start] = std::exchange(free, start);
  }

  Block<Row<Index>> rows_;
  Block<Index> neighbours_;
  Block<Index> edges_;
  std::unique_ptr<Growth> growth_;  // Made by the first insertion.
};

/// Fills new lists. Every entry is announced before the first of its list is placed.
template <class Index>
class ListFiller {
 public:
  /// The indices that such lists take of a ground.
  [[nodiscard]] static std::uint64_t sizeOnGround(std::uint64_t vertices, std::uint64_t entries) {
    return 2 * vertices + 2 * zoneSize(entries);
  }

  ListFiller(AdjacencyLists<Index>& lists, std::uint64_t vertices, std::uint64_t entries,
             Ground<Index>& ground) {
    lists.rows_ = ground.template zeroedBlock<Row<Index>>(vertices);
    lists.neighbours_ = ground.template block<Index>(zoneSize(entries));
    lists.edges_ = ground.template block<Index>(zoneSize(entries));
    rows_ = lists.rows_.data();
    neighbours_ = lists.neighbours_.data();
    edges_ = lists.edges_.data();
  }

  void announce(std::uint64_t vertex) { ++rows_[vertex].count; }
  void place(std::uint64_t vertex, Entry<Index> entry) {
    Row<Index>& row = rows_[vertex];
    if (row.start == 0) {
      row.start = used_;
      used_ += row.count;
      row.count = 0;
    }
    const std::uint64_t place = row.start + row.count++;
    neighbours_[place] = entry.neighbour;
    edges_[place] = entry.edge;
  }

 private:
  static std::uint64_t zoneSize(std::uint64_t entries) {
    return entries == 0 ? 0 : AdjacencyLists<Index>::kFirst + entries;
  }

  Row<Index>* rows_;
  Index* neighbours_;
  Index* edges_;
  Index used_ = AdjacencyLists<Index>::kFirst;
};

}  // namespace veq::internal
