#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "veq/base/internal/make_once.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/network/adjacency_rows.hpp"

namespace veq::internal {

/// One entry of a list: the vertex at the other end, and the edge that leads there.
template <class Index>
struct Entry {
  Index neighbour;
  Index edge;
};

template <class Index>
using Row = AdjacencyRow<Index>;

/// The capacity of a list of this length where it may grow: 0, 2, 6, 14, 30, ..., for it was last
/// doubled when an entry no longer fitted, to twice the length of then.
[[nodiscard]] constexpr std::uint64_t listCapacity(std::uint64_t count) {
  return count == 0 ? 0 : std::bit_ceil(count + 2) - 2;
}
/// Whether that is the length itself, and the capacity of a list that is longer by one then.
[[nodiscard]] constexpr bool isFullList(std::uint64_t count) {
  return ((count + 2) & (count + 1)) == 0;
}
[[nodiscard]] constexpr std::uint64_t nextCapacity(std::uint64_t full) { return 2 * full + 2; }

/// The lists of one direction: a row for each vertex over two pools, one of the neighbours of all
/// lists, and another of their edges at the same places, so that walks and searches, which ask for
/// no edges, find twice as many neighbours in the caches.
///
/// Construction packs the lists. The first insertion into one relocates it to the pools' end, into
/// a slot of its capacity; a list that outgrows its slot is relocated again, and leaves the slot to
/// the next list that needs one of that size.
template <class Index>
class AdjacencyLists {
 public:
  AdjacencyLists() = default;
  AdjacencyLists(const AdjacencyLists&) = delete;
  AdjacencyLists& operator=(const AdjacencyLists&) = delete;
  ~AdjacencyLists() { dropPacked(); }

  /// Makes them a copy, whose lists lie as they do there, in an arena of so many indices or
  /// outside.
  [[nodiscard]] static std::uint64_t sizeOfCopy(const AdjacencyLists& of) {
    return 2 * of.rows_.size() + 2 * of.neighbours_.size();
  }
  void copy(const AdjacencyLists& of, Arena<Index>& arena) {
    const std::uint64_t used = std::min(of.poolSizeWith(0), of.neighbours_.size());
    rows_ = arena.copy(of.rows_, of.rows_.size());
    neighbours_ = arena.copy(of.neighbours_, used);
    edges_ = arena.copy(of.edges_, used);
    if (of.growth_) growth_ = std::make_unique<Growth>(*of.growth_);
  }

  /// Makes them lists in memory that outlives them, for reading alone.
  void readIn(const ListMemory<Index>& memory) {
    rows_ = Block<Row<Index>>::readOnly(memory.rows);
    neighbours_ = Block<Index>::readOnly(memory.neighbours);
    edges_ = Block<Index>::readOnly(memory.edges);
  }

  [[nodiscard]] AdjacencyRows<Index> view() const {
    return {rows_.data(), neighbours_.data(), edges_.data()};
  }
  [[nodiscard]] const Row<Index>* rows() const { return rows_.data(); }
  [[nodiscard]] const Index* neighbourPool() const { return neighbours_.data(); }
  [[nodiscard]] std::uint64_t count(std::uint64_t vertex) const { return rows_[vertex].count; }
  [[nodiscard]] std::span<const Index> neighbours(std::uint64_t vertex) const {
    return view().neighbours(vertex);
  }
  [[nodiscard]] std::span<const Index> edges(std::uint64_t vertex) const {
    return view().edges(vertex);
  }

  /// What will be read soon: a row, and once that is there, its neighbours.
  void prefetchRow(std::uint64_t vertex) const { prefetch(rows_.data() + vertex); }
  void prefetchNeighbours(std::uint64_t vertex) const {
    prefetch(neighbours_.data() + rows_[vertex].start);
  }

  /// Made by the first call, O(n + m), safely for concurrent callers, and kept until dropPacked().
  [[nodiscard]] PackedRows<Index> packed() const {
    const Packed& made = *makeOnce(
        packed_, [this] { return new Packed(*this); }, [](Packed* unused) { delete unused; });
    return {all(made.offsets), all(made.neighbours), all(made.edges)};
  }
  void dropPacked() {
    if (packed_.load(std::memory_order_relaxed) == nullptr) return;
    delete packed_.exchange(nullptr, std::memory_order_relaxed);
  }

  /// \name Appending
  /// First all packed lists that will grow are relocated. Nothing can fail after reserve() with the
  /// sum of what announceMore() gave for all entries.
  /// @{
  /// Whether a list is where construction packed it, and the places in the pools that it needs
  /// elsewhere.
  [[nodiscard]] bool isPacked(std::uint64_t vertex) const {
    return rows_[vertex].count != 0 && rows_[vertex].start < packedSize();
  }
  [[nodiscard]] std::uint64_t slotForPacked(std::uint64_t vertex) const {
    return listCapacity(rows_[vertex].count);
  }
  /// Moves a packed list to such a slot.
  void relocate(std::uint64_t vertex, std::uint64_t slot) {
    reserve(slot);
    move(rows_[vertex], slot);
  }
  /// The places in the pools that one more entry needs at most; announces it, and must be taken
  /// back.
  [[nodiscard]] std::uint64_t announceMore(std::uint64_t vertex) {
    // Where the list will be written to, or read to be moved.
    prefetchForWriting(neighbours_.data() + rows_[vertex].start);
    prefetchForWriting(edges_.data() + rows_[vertex].start);
    const std::uint64_t before = rows_[vertex].count++;
    return isFullList(before) ? nextCapacity(before) : 0;
  }
  void takeBack(std::uint64_t vertex) { --rows_[vertex].count; }
  [[nodiscard]] std::uint64_t poolSizeWith(std::uint64_t moreEntries) const {
    return (growth_ ? growth_->used : packedSize()) + moreEntries;
  }
  void reserve(std::uint64_t moreEntries) {
    if (!growth_) growth_ = std::make_unique<Growth>(packedSize());
    neighbours_.reserve(poolSizeWith(moreEntries));
    edges_.reserve(poolSizeWith(moreEntries));
  }
  void append(std::uint64_t vertex, Entry<Index> entry) noexcept {
    Row<Index>& row = rows_[vertex];
    if (isFullList(row.count)) enlarge(row);
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
    Index free[kSizeClasses]{};  // The first slot of each size that waits for a list, or 0.
  };

  // Compressed sparse rows.
  struct Packed {
    explicit Packed(const AdjacencyLists& lists) {
      const std::uint64_t n = lists.rows_.size();
      offsets.resize(n + 1);
      offsets[0] = 0;
      for (std::uint64_t v = 0; v < n; ++v) {
        offsets[v + 1] = offsets[v] + lists.rows_[v].count;
      }
      neighbours.resize(offsets[n]);
      edges.resize(offsets[n]);
      for (std::uint64_t v = 0; v < n; ++v) {
        std::copy_n(lists.neighbours(v).data(), lists.count(v), neighbours.data() + offsets[v]);
        std::copy_n(lists.edges(v).data(), lists.count(v), edges.data() + offsets[v]);
      }
    }

    Block<Index> offsets;
    Block<Index> neighbours;
    Block<Index> edges;
  };

  static std::span<const Index> all(const Block<Index>& block) {
    return {block.data(), static_cast<std::size_t>(block.size())};
  }

  [[nodiscard]] std::uint64_t packedSize() const {
    return growth_ ? growth_->packed : std::max(kFirst, neighbours_.size());
  }

  void write(std::uint64_t place, Entry<Index> entry) {
    neighbours_[place] = entry.neighbour;
    edges_[place] = entry.edge;
  }

  // Slots of 2, 6, 14, ... are of size class 0, 1, 2, ...
  static unsigned sizeClass(std::uint64_t slot) {
    return static_cast<unsigned>(std::bit_width(slot)) - 2;
  }

  void enlarge(Row<Index>& row) noexcept {
    const Index left = row.start;
    move(row, nextCapacity(row.count));
    if (row.count != 0) leaveSlot(left, row.count);
  }

  void move(Row<Index>& row, std::uint64_t slot) noexcept {
    const Index start = takeSlot(slot);
    std::copy_n(neighbours_.data() + row.start, row.count, neighbours_.data() + start);
    std::copy_n(edges_.data() + row.start, row.count, edges_.data() + start);
    row.start = start;
  }

  Index takeSlot(std::uint64_t size) noexcept {
    Index& free = growth_->free[sizeClass(size)];
    if (free != 0) return std::exchange(free, neighbours_[free]);
    return static_cast<Index>(std::exchange(growth_->used, growth_->used + size));
  }

  // Slots that wait for a list are chained through their first neighbours.
  void leaveSlot(Index start, std::uint64_t size) noexcept {
    Index& free = growth_->free[sizeClass(size)];
    neighbours_[start] = std::exchange(free, start);
  }

  Block<Row<Index>> rows_;
  Block<Index> neighbours_;
  Block<Index> edges_;
  std::unique_ptr<Growth> growth_;  // Made by the first insertion.
  mutable std::atomic<Packed*> packed_{nullptr};
};

/// Fills new lists. Every entry is announced before the first of its list is placed.
template <class Index>
class ListFiller {
 public:
  /// The indices that such lists take of an arena.
  [[nodiscard]] static std::uint64_t sizeInArena(std::uint64_t vertices, std::uint64_t entries) {
    return 2 * vertices + 2 * poolSize(entries);
  }

  ListFiller(AdjacencyLists<Index>& lists, std::uint64_t vertices, std::uint64_t entries,
             Arena<Index>& arena) {
    lists.rows_ = arena.template zeroedBlock<Row<Index>>(vertices);
    lists.neighbours_ = arena.template block<Index>(poolSize(entries));
    lists.edges_ = arena.template block<Index>(poolSize(entries));
    rows_ = lists.rows_.data();
    neighbours_ = lists.neighbours_.data();
    edges_ = lists.edges_.data();
  }

  /// One that fills the lists behind those that have so many entries, of vertices of its own.
  [[nodiscard]] ListFiller behind(std::uint64_t entries) const {
    ListFiller next = *this;
    next.used_ = static_cast<Index>(AdjacencyLists<Index>::kFirst + entries);
    return next;
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
  static std::uint64_t poolSize(std::uint64_t entries) {
    return entries == 0 ? 0 : AdjacencyLists<Index>::kFirst + entries;
  }

  Row<Index>* rows_;
  Index* neighbours_;
  Index* edges_;
  Index used_ = AdjacencyLists<Index>::kFirst;
};

}  // namespace veq::internal
