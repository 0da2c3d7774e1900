#include "veq/natural/internal/walk_rows.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <string>
#include <utility>

#include "veq/base/internal/tiled_work.hpp"
#include "veq/natural/internal/complaints.hpp"

namespace veq::internal {
namespace {

struct ListEntry {
  std::uint32_t vertex;
  std::uint32_t neighbour;
};

// So many that what was fetched ahead for them is still in the cache when it is used.
constexpr std::size_t kEntriesAtOnce = 128;

std::string text(std::uint64_t number) { return std::to_string(number); }

std::uint64_t largestEnd(const EdgeBlock& edges) {
  std::uint64_t largest = 0;
  for (const auto ends : {edges.from, edges.to}) {
    for (const std::uint64_t end : ends) largest = std::max(largest, end);
  }
  return largest;
}

// "edge 7: target 12", the edges before the block being so many.
std::string endFrom(std::uint64_t least, const EdgeBlock& edges, std::uint64_t before) {
  std::uint64_t e = 0;
  while (edges.from[e] < least && edges.to[e] < least) ++e;
  const bool isSource = edges.from[e] >= least;
  return "edge " + text(before + e) + (isSource ? ": source " : ": target ") +
         text(isSource ? edges.from[e] : edges.to[e]);
}

[[noreturn]] void failAsOther() {
  throw argumentError("the source gave other edges when it was asked again");
}

}  // namespace

// Each step can be undone, so that lists which differ in one number cannot be taken for the same.
void WalkRowsBuilder::Digest::add(const EdgeBlock& edges) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  Digest next = *this;
  for (std::uint64_t e = 0; e < edges.count(); ++e) {
    next.from = (std::rotl(next.from, 29) ^ edges.from[e]) * kOdd;
    next.to = (std::rotl(next.to, 29) ^ edges.to[e]) * kOdd;
  }
  *this = next;
}

WalkRowsBuilder::WalkRowsBuilder(bool directed, const Limits& limits, Team& team)
    : limits_(limits), team_(team) {
  rows_.directed = directed;
  if (!limits_.vertices) return;
  if (*limits_.vertices > kMostWalkIndices) {
    throw Error(ErrorKind::kUnsupported, text(*limits_.vertices) +
                                             " vertices: a walk-only network has up to " +
                                             text(kMostWalkIndices));
  }
  rows_.size.vertices = *limits_.vertices;
  requireBytes();
  rows_.all = Block<WalkRows::Row>(rows_.size.vertices + 1);
}

void WalkRowsBuilder::requireBytes() const {
  const WalkNetworkSize& size = rows_.size;
  const std::uint64_t beside = limits_.besideEachVertex * size.vertices;
  if (size.bytes() + beside <= limits_.bytes) return;
  std::string walks;
  if (beside != 0) walks = ", walks on them " + text(beside) + " more";
  throw Error(ErrorKind::kMemory, counted(size.vertices, Item::kVertex) + " and " +
                                      text(size.entries) + " list entries take " +
                                      text(size.bytes()) + " bytes" + walks + ", and there are " +
                                      text(limits_.bytes));
}

void WalkRowsBuilder::requireVertices(std::uint64_t largest, const EdgeBlock& edges) {
  const std::uint64_t before = rows_.size.edges;
  if (limits_.vertices) {
    if (largest < *limits_.vertices) return;
    throw argumentError(endFrom(*limits_.vertices, edges, before) + " of " +
                        counted(*limits_.vertices, Item::kVertex));
  }
  if (largest >= kMostWalkIndices) {
    throw Error(ErrorKind::kUnsupported, endFrom(kMostWalkIndices, edges, before) +
                                             ": a walk-only network has up to " +
                                             text(kMostWalkIndices) + " vertices");
  }
  growTo(largest + 1);
}

// What is enlarged holds anything, and is cleared no further than there are vertices.
void WalkRowsBuilder::growTo(std::uint64_t vertices) {
  const std::uint64_t before = rows_.size.vertices;
  if (vertices <= before) return;
  rows_.size.vertices = vertices;
  requireBytes();
  rows_.all.reserve(vertices + 1);
  std::fill(rows_.all.data() + before, rows_.all.data() + vertices, WalkRows::Row{0, 0});
}

// Calls use(entries, count) for all entries of the edges, some at a time. Each piece has those of
// some vertices, in the order of the edges.
template <class Use>
void WalkRowsBuilder::forEachEntry(const EdgeBlock& edges, Use use) {
  const std::uint64_t work = 2 * edges.count();
  forEachShare(rows_.size.vertices, work, team_, [&](std::uint64_t first, std::uint64_t some) {
    std::array<ListEntry, kEntriesAtOnce> entries;
    std::size_t count = 0;
    const auto add = [&](std::uint64_t vertex, std::uint64_t neighbour) {
      entries[count] = {static_cast<std::uint32_t>(vertex), static_cast<std::uint32_t>(neighbour)};
      count += vertex - first < some;
      if (count < kEntriesAtOnce) return;
      use(entries.data(), count);
      count = 0;
    };
    for (std::uint64_t e = 0; e < edges.count(); ++e) {
      add(edges.from[e], edges.to[e]);
      if (!rows_.directed) add(edges.to[e], edges.from[e]);
    }
    use(entries.data(), count);
  });
}

void WalkRowsBuilder::count(const EdgeBlock& edges) {
  if (edges.from.size() != edges.to.size()) {
    throw argumentError(text(edges.from.size()) + " sources for " + text(edges.to.size()) +
                        " targets");
  }
  if (edges.count() == 0) return;
  requireVertices(largestEnd(edges), edges);
  WalkNetworkSize& size = rows_.size;
  const std::uint64_t entries = rows_.directed ? edges.count() : 2 * edges.count();
  if (entries > kMostWalkIndices - size.entries) {
    throw Error(ErrorKind::kUnsupported, "more than " + text(kMostWalkIndices) +
                                             " list entries: a walk-only network has no more");
  }
  size.entries += entries;
  size.edges += edges.count();
  counted_.add(edges);
  WalkRows::Row* const rows = rows_.all.data();
  forEachEntry(edges, [rows](const ListEntry* list, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) prefetchForWriting(rows + list[i].vertex);
    for (std::size_t i = 0; i < count; ++i) ++rows[list[i].vertex].count;
  });
}

void WalkRowsBuilder::begin() {
  requireBytes();
  const std::uint64_t vertices = rows_.size.vertices;
  rows_.all.resize(vertices + 1);
  WalkRows::Row* const rows = rows_.all.data();
  std::uint32_t start = 0;
  for (std::uint64_t v = 0; v < vertices; ++v) {
    rows[v].start = start;
    start += std::exchange(rows[v].count, 0);
  }
  rows[vertices] = {start, 0};
  rows_.neighbours.resize(rows_.size.entries);
}

void WalkRowsBuilder::place(const EdgeBlock& edges) {
  if (edges.from.size() != edges.to.size()) failAsOther();
  if (edges.count() == 0) return;
  if (largestEnd(edges) >= rows_.size.vertices) failAsOther();
  edgesPlaced_ += edges.count();
  placed_.add(edges);
  WalkRows::Row* const rows = rows_.all.data();
  std::uint32_t* const neighbours = rows_.neighbours.data();
  forEachEntry(edges, [rows, neighbours](const ListEntry* list, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) prefetchForWriting(rows + list[i].vertex);
    for (std::size_t i = 0; i < count; ++i) {
      const WalkRows::Row row = rows[list[i].vertex];
      prefetchForWriting(neighbours + row.start + row.count);
    }
    for (std::size_t i = 0; i < count; ++i) {
      WalkRows::Row& row = rows[list[i].vertex];
      // A source that gives other edges than it did must not write behind its list.
      const std::uint32_t place = row.start + row.count;
      if (place == (&row + 1)->start) failAsOther();
      neighbours[place] = list[i].neighbour;
      ++row.count;
    }
  });
}

Shared<const WalkRows> WalkRowsBuilder::finish() {
  if (edgesPlaced_ != rows_.size.edges || placed_ != counted_) failAsOther();
  return std::make_shared<const WalkRows>(std::move(rows_));
}

}  // namespace veq::internal
