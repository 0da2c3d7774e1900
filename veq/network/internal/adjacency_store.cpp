#include "veq/network/internal/adjacency_store.hpp"

#include <algorithm>
#include <array>
#include <type_traits>

namespace veq::internal {
namespace {

// Beyond these sizes the rows and lists leave the processor's caches, and entries are first sorted
// into ranges of vertices whose rows and lists stay within them.
constexpr std::uint64_t kPartitionVertices = std::uint64_t{1} << 15;
constexpr std::uint64_t kPartitionEntries = std::uint64_t{1} << 16;
constexpr unsigned kPartitions = 512;

// From this many edges on, an insertion that is large against what is there builds all lists anew.
constexpr std::uint64_t kBulkInsertion = 64;

// The entries of one direction, in edge order: calls f(vertex, neighbour, edge).
template <class Index, class F>
void forEachEntry(const Block<Index>& at, const Block<Index>& neighbour, std::uint64_t edges,
                  bool bothWays, F f) {
  for (std::uint64_t e = 0; e < edges; ++e) {
    f(at[e], neighbour[e], static_cast<Index>(e));
    if (bothWays) f(neighbour[e], at[e], static_cast<Index>(e));
  }
}

template <class Index>
struct Item {
  Index vertex;
  Entry<Index> entry;
};

// Entries sorted by ranges of vertices; within a range they keep their order.
template <class Index>
class Partition {
 public:
  template <class ForEach>
  Partition(std::uint64_t vertices, std::uint64_t entries, ForEach forEach) {
    while (vertices >> shift_ >= kPartitions) ++shift_;
    items_.resize(entries);
    forEach([this](Index vertex, Index, Index) { ++ends_[(vertex >> shift_) + 1]; });
    for (unsigned p = 1; p <= kPartitions; ++p) ends_[p] += ends_[p - 1];
    // Filling a range moves its start up to its end, which is where the next one starts.
    forEach([this](Index vertex, Index neighbour, Index edge) {
      items_[ends_[vertex >> shift_]++] = {vertex, {neighbour, edge}};
    });
  }

  template <class F>
  void forEachRange(F f) const {
    std::uint64_t start = 0;
    for (unsigned p = 0; p < kPartitions; ++p) {
      f(std::span(items_.data() + start, ends_[p] - start));
      start = ends_[p];
    }
  }

 private:
  unsigned shift_ = 0;
  std::array<std::uint64_t, kPartitions + 1> ends_{};
  Block<Item<Index>> items_;
};

// The lists of those edges' ends that stand in `at`, or of both where they go both ways.
template <class Index>
void buildLists(AdjacencyLists<Index>& lists, std::uint64_t vertices, const Block<Index>& at,
                const Block<Index>& neighbour, std::uint64_t edges, bool bothWays,
                Ground<Index>& ground) {
  const std::uint64_t entries = bothWays ? 2 * edges : edges;
  ListFiller<Index> filler(lists, vertices, entries, ground);
  const auto forEach = [&](auto f) { forEachEntry(at, neighbour, edges, bothWays, f); };
  if (vertices >= kPartitionVertices && entries >= kPartitionEntries) {
    const Partition<Index> partition(vertices, entries, forEach);
    partition.forEachRange([&filler](std::span<const Item<Index>> items) {
      for (const Item<Index>& item : items) filler.announce(item.vertex);
      for (const Item<Index>& item : items) filler.place(item.vertex, item.entry);
    });
  } else {
    forEach([&filler](Index vertex, Index, Index) { filler.announce(vertex); });
    forEach([&filler](Index vertex, Index to, Index edge) { filler.place(vertex, {to, edge}); });
  }
}

// The indices in all blocks of a network, or 0 where they would take more than a megabyte: a large
// block by itself can be enlarged without being copied, and leaves no large ground behind.
template <class Index>
std::uint64_t groundSize(std::uint64_t vertices, std::uint64_t edges, bool directed) {
  constexpr std::uint64_t kLargest = (std::uint64_t{1} << 20) / sizeof(Index);
  if (vertices > kLargest || edges > kLargest) return 0;
  const std::uint64_t lists = directed ? 2 * ListFiller<Index>::sizeOnGround(vertices, edges)
                                       : ListFiller<Index>::sizeOnGround(vertices, 2 * edges);
  const std::uint64_t size = 2 * edges + lists;
  return size <= kLargest ? size : 0;
}

// Whether vertices and zones of such a network can be told by indices up to the limit.
bool fitsNarrow(std::uint64_t vertices, std::uint64_t edges, std::uint64_t limit) {
  return vertices <= limit && edges < limit / 4;
}

template <class From, class To>
void copyIndices(std::span<const From> indices, To* out) {
  std::transform(indices.begin(), indices.end(), out,
                 [](From index) { return static_cast<To>(index); });
}

}  // namespace

AdjacencyStore::AdjacencyStore(std::uint64_t vertices, IndexList from, IndexList to, bool directed,
                               std::uint64_t narrowLimit)
    : vertices_(vertices), narrowLimit_(narrowLimit), directed_(directed) {
  const EdgeEnds edges{from.all(), to.all()};
  const std::uint64_t count = edges.count();
  inWidthFor(count, [&]<class Index>(Index) {
    Ground<Index> ground(groundSize<Index>(vertices_, count, directed_));
    Topology<Index> next = copyEnds(edges, ground);
    from = IndexList();
    to = IndexList();
    buildLists(std::move(next), std::move(ground), count);
  });
}

std::uint64_t AdjacencyStore::count(std::uint64_t vertex, Side side) const {
  return visit([&](const auto& topology) { return lists(topology, side).count(vertex); });
}

std::vector<std::uint64_t> AdjacencyStore::neighbours(std::uint64_t vertex, Side side) const {
  return visit([&](const auto& topology) {
    const auto column = lists(topology, side).neighbours(vertex);
    return std::vector<std::uint64_t>(column.begin(), column.end());
  });
}

std::vector<std::uint64_t> AdjacencyStore::edges(std::uint64_t vertex, Side side) const {
  return visit([&](const auto& topology) {
    const auto column = lists(topology, side).edges(vertex);
    return std::vector<std::uint64_t>(column.begin(), column.end());
  });
}

void AdjacencyStore::insert(const EdgeEnds& more) {
  const bool bulk = more.count() >= kBulkInsertion && more.count() > edges_ / 2;
  const bool inPlace =
      !bulk && std::visit([&](auto& topology) { return appendInPlace(topology, more); }, topology_);
  if (inPlace) return;
  const std::uint64_t edges = edges_ + more.count();
  inWidthFor(more.count(), [&]<class Index>(Index) {
    Ground<Index> ground(groundSize<Index>(vertices_, edges, directed_));
    Topology<Index> next = copyEnds(more, ground);
    buildLists(std::move(next), std::move(ground), edges);
  });
}

template <class Index>
bool AdjacencyStore::isWithin(std::uint64_t size) const {
  return !std::is_same_v<Index, std::uint32_t> || size <= narrowLimit_;
}

template <class Index>
bool AdjacencyStore::loosen(AdjacencyLists<Index>& lists, std::uint64_t vertex) {
  const std::uint64_t room = lists.roomToLoosen(vertex);
  if (room == 0) return true;
  if (!isWithin<Index>(lists.zoneSizeWith(room))) return false;
  lists.loosen(vertex, room);
  return true;
}

template <class Index>
bool AdjacencyStore::appendInPlace(Topology<Index>& topology, const EdgeEnds& more) {
  AdjacencyLists<Index>& in = directed_ ? *topology.in : topology.out;
  const std::uint64_t count = more.count();

  // Where a list lies shows nowhere, so that it does no harm to stop here for want of memory.
  for (std::uint64_t i = 0; i < count; ++i) {
    if (!loosen(topology.out, more.from[i]) || !loosen(in, more.to[i])) return false;
  }
  // How much room the lists will want is known only once all entries have been counted in.
  std::uint64_t outEntries = 0;
  std::uint64_t inEntries = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    outEntries += topology.out.announceMore(more.from[i]);
    inEntries += in.announceMore(more.to[i]);
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    topology.out.takeBack(more.from[i]);
    in.takeBack(more.to[i]);
  }
  if (!directed_) outEntries += inEntries;

  if (!isWithin<Index>(topology.out.zoneSizeWith(outEntries)) ||
      !isWithin<Index>(in.zoneSizeWith(inEntries)) || !isWithin<Index>(edges_ + count)) {
    return false;
  }
  topology.from.reserve(edges_ + count);
  topology.to.reserve(edges_ + count);
  topology.out.reserve(outEntries);
  if (directed_) in.reserve(inEntries);

  // From here on nothing fails.
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto a = static_cast<Index>(more.from[i]);
    const auto b = static_cast<Index>(more.to[i]);
    const auto e = static_cast<Index>(edges_ + i);
    topology.from[e] = a;
    topology.to[e] = b;
    topology.out.append(a, {b, e});
    in.append(b, {a, e});
  }
  edges_ += count;
  return true;
}

template <class F>
void AdjacencyStore::inWidthFor(std::uint64_t more, F f) const {
  // Lists that have outgrown their zone stay narrow only with room for many more insertions, lest
  // each of them had to build everything anew.
  if (fitsNarrow(vertices_, edges_ + more + edges_ / 2, narrowLimit_)) {
    f(std::uint32_t{});
  } else {
    f(std::uint64_t{});
  }
}

template <class Index>
Topology<Index> AdjacencyStore::copyEnds(const EdgeEnds& more, Ground<Index>& ground) const {
  Topology<Index> next;
  next.from = ground.template block<Index>(edges_ + more.count());
  next.to = ground.template block<Index>(edges_ + more.count());
  visit([&](const auto& present) {
    copyIndices(std::span(present.from.data(), edges_), next.from.data());
    copyIndices(std::span(present.to.data(), edges_), next.to.data());
  });
  copyIndices(more.from, next.from.data() + edges_);
  copyIndices(more.to, next.to.data() + edges_);
  return next;
}

template <class Index>
void AdjacencyStore::buildLists(Topology<Index> next, Ground<Index> ground, std::uint64_t edges) {
  internal::buildLists(next.out, vertices_, next.from, next.to, edges, !directed_, ground);
  if (directed_) {
    next.in = std::make_unique<AdjacencyLists<Index>>();
    internal::buildLists(*next.in, vertices_, next.to, next.from, edges, false, ground);
  }
  next.ground = std::move(ground).take();
  topology_.template emplace<Topology<Index>>(std::move(next));
  edges_ = edges;
}

}  // namespace veq::internal
