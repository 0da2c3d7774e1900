#include "veq/network/internal/adjacency_store.hpp"

#include <algorithm>
#include <array>
#include <mutex>
#include <type_traits>
#include <utility>
#include <vector>

#include "veq/base/internal/team.hpp"
#include "veq/base/internal/tiled_work.hpp"
#include "veq/base/parallelism.hpp"

namespace veq::internal {
namespace {

// Beyond these sizes the rows and lists leave the processor's caches, and entries are first sorted
// into ranges of vertices whose rows and lists stay within them.
constexpr std::uint64_t kPartitionVertices = std::uint64_t{1} << 15;
constexpr std::uint64_t kPartitionEntries = std::uint64_t{1} << 16;
constexpr unsigned kBuckets = 512;

// From this many edges on, an insertion that is large against what is there builds all lists anew.
constexpr std::uint64_t kBulkInsertion = 64;

// One that somebody watches does so when it is larger than these, for only then it can be stopped:
// the others are done within a tenth of a second, or a small part of what building took.
constexpr std::uint64_t kWatchedInsertion = std::uint64_t{1} << 19;
constexpr std::uint64_t kWatchedShare = 16;

// Edges whose entries are counted and sorted in one go, by one thread.
constexpr std::uint64_t kEdgesAtOnce = std::uint64_t{1} << 17;

// The entries of one direction: of those edges' ends that stand in `at`, or of both where they go
// both ways.
template <bool kBothWays, class Index>
struct EntriesOfEdges {
  const Index* at;
  const Index* neighbour;
  std::uint64_t edges;

  [[nodiscard]] std::uint64_t count() const { return kBothWays ? 2 * edges : edges; }

  // In edge order: calls f(vertex, neighbour, edge).
  template <class F>
  void forEach(std::uint64_t begin, std::uint64_t end, F f) const {
    // Locals, which what f writes cannot change.
    const Index* const a = at;
    const Index* const b = neighbour;
    for (std::uint64_t e = begin; e < end; ++e) {
      f(a[e], b[e], static_cast<Index>(e));
      if constexpr (kBothWays) f(b[e], a[e], static_cast<Index>(e));
    }
  }
  template <class F>
  void forEach(Pace* pace, F f) const {
    forEachTile(edges, pace,
                [&](std::uint64_t begin, std::uint64_t end) { forEach(begin, end, f); });
  }
};

template <class Index>
struct BucketEntry {
  Index vertex;
  Entry<Index> entry;
};

// Entries sorted by ranges of vertices; within a range they keep their order.
template <class Index>
class EntryBuckets {
 public:
  template <class Entries>
  EntryBuckets(std::uint64_t vertices, const Entries& entries, Team& team, Pace* pace)
      : places_((entries.edges + kEdgesAtOnce - 1) / kEdgesAtOnce) {
    while (vertices >> shift_ >= kBuckets) ++shift_;
    items_.resize(entries.count());
    const auto forEach = [&](auto f) {
      forEachSharedTile(entries.edges, kEdgesAtOnce, team, pace,
                        [&](std::uint64_t begin, std::uint64_t end) {
                          // Copies, which no write to the items can change.
                          Places places = places_[begin / kEdgesAtOnce];
                          const unsigned shift = shift_;
                          entries.forEach(begin, end, [&](Index vertex, Index to, Index edge) {
                            f(places[vertex >> shift], vertex, to, edge);
                          });
                          places_[begin / kEdgesAtOnce] = places;
                        });
    };
    forEach([](std::uint64_t& count, Index, Index, Index) { ++count; });
    turnIntoPlaces();
    BucketEntry<Index>* const items = items_.data();
    forEach([items](std::uint64_t& place, Index vertex, Index to, Index edge) {
      items[place++] = {vertex, {to, edge}};
    });
  }

  // Calls f(number of its first entry, entries) for each range.
  template <class F>
  void forEachRange(Team& team, Pace* pace, F f) const {
    // Filling has moved each place up to where the next one begins.
    const Places& ends = places_.back();
    const TiledWork ranges{kBuckets, 1, items_.size(), items_.size()};
    forEachSharedTile(ranges, team, pace, [&](std::uint64_t p, std::uint64_t) {
      const std::uint64_t begin = p == 0 ? 0 : ends[p - 1];
      f(begin, std::span(items_.data() + begin, ends[p] - begin));
    });
  }

 private:
  using Places = std::array<std::uint64_t, kBuckets>;

  // How many entries each piece has for a range becomes where it writes them.
  void turnIntoPlaces() {
    std::uint64_t place = 0;
    for (unsigned p = 0; p < kBuckets; ++p) {
      for (Places& places : places_) place += std::exchange(places[p], place);
    }
  }

  unsigned shift_ = 0;
  std::vector<Places> places_;
  Block<BucketEntry<Index>> items_;
};

template <class Index, class Entries>
[[gnu::noinline]] void fillByRanges(const ListFiller<Index>& filler, std::uint64_t vertices,
                                    const Entries& entries, Team& team, Pace* pace) {
  const EntryBuckets<Index> buckets(vertices, entries, team, pace);
  buckets.forEachRange(team, pace, [&](std::uint64_t before, const auto& items) {
    ListFiller<Index> range = filler.behind(before);
    for (const BucketEntry<Index>& item : items) range.announce(item.vertex);
    for (const BucketEntry<Index>& item : items) range.place(item.vertex, item.entry);
  });
}

template <class Index, class Entries>
void buildLists(AdjacencyLists<Index>& lists, std::uint64_t vertices, const Entries& entries,
                Arena<Index>& arena, Team& team, Pace* pace) {
  ListFiller<Index> filler(lists, vertices, entries.count(), arena);
  if (vertices >= kPartitionVertices && entries.count() >= kPartitionEntries) {
    return fillByRanges(filler, vertices, entries, team, pace);
  }
  entries.forEach(pace, [&filler](Index vertex, Index, Index) { filler.announce(vertex); });
  entries.forEach(pace, [&filler](Index vertex, Index to, Index edge) {
    filler.place(vertex, {to, edge});
  });
}

// The indices in a megabyte, the largest arena: a large block by itself can be enlarged without
// being copied, and leaves no large arena behind.
template <class Index>
constexpr std::uint64_t kLargestArena = (std::uint64_t{1} << 20) / sizeof(Index);

// The indices in all blocks of a new network, or 0 where they would take more than that.
template <class Index>
std::uint64_t arenaSize(std::uint64_t vertices, std::uint64_t edges, bool directed) {
  if (vertices > kLargestArena<Index> || edges > kLargestArena<Index>) return 0;
  const std::uint64_t lists = directed ? 2 * ListFiller<Index>::sizeInArena(vertices, edges)
                                       : ListFiller<Index>::sizeInArena(vertices, 2 * edges);
  const std::uint64_t size = 2 * edges + lists;
  return size <= kLargestArena<Index> ? size : 0;
}

// Whether vertices and pools of such a network can be told by indices up to the limit.
bool fitsNarrow(std::uint64_t vertices, std::uint64_t edges, std::uint64_t limit) {
  return vertices <= limit && edges < limit / 4;
}

template <class From, class To>
void copyIndices(std::span<const From> indices, To* out, Team& team, Pace* pace) {
  const auto copy = [&](std::uint64_t begin, std::uint64_t end) {
    std::transform(indices.data() + begin, indices.data() + end, out + begin,
                   [](From index) { return static_cast<To>(index); });
  };
  forEachSharedTile(indices.size(), kEdgesAtOnce, team, pace, copy);
}

}  // namespace

AdjacencyStore::AdjacencyStore(std::uint64_t vertices, IndexList from, IndexList to, bool directed,
                               std::uint64_t narrowLimit, Pace* pace)
    : vertices_(vertices), narrowLimit_(narrowLimit), directed_(directed) {
  rebuildWith(std::move(from), std::move(to), pace);
}

AdjacencyStore::AdjacencyStore(HeldTopology held)
    : vertices_(held.vertices),
      edges_(held.edges),
      directed_(held.directed),
      narrow_(held.narrow),
      topology_(std::move(held.share)) {}

HeldTopology AdjacencyStore::hold() const {
  const std::lock_guard guard(lock_);
  return {topology_, vertices_, edges_, directed_, narrow_};
}

std::uint64_t AdjacencyStore::count(std::uint64_t vertex, Side side) const {
  return visit([&](const auto& topology) { return lists(topology, side).count(vertex); });
}

std::uint64_t AdjacencyStore::neighbour(std::uint64_t vertex, std::uint64_t k, Side side) const {
  return visit([&](const auto& topology) -> std::uint64_t {
    return lists(topology, side).neighbours(vertex)[k];
  });
}

std::uint64_t AdjacencyStore::edge(std::uint64_t vertex, std::uint64_t k, Side side) const {
  return visit([&](const auto& topology) -> std::uint64_t {
    return lists(topology, side).edges(vertex)[k];
  });
}

void AdjacencyStore::insert(const EdgeEnds& more, Pace* pace) {
  const std::uint64_t count = more.count();
  const bool bulk = count >= kBulkInsertion && count > edges_ / 2;
  const bool watched = pace && count >= kWatchedInsertion && count > edges_ / kWatchedShare;
  if (!bulk && !watched) {
    if (insertInPlace(more)) return;
    if (!topology_.get()->mayChange()) {
      copyTopology();
      if (insertInPlace(more)) return;
    }
  }
  rebuildWith(IndexList(more.from), IndexList(more.to), pace);
}

bool AdjacencyStore::insertInPlace(const EdgeEnds& more) {
  const std::lock_guard guard(lock_);
  if (!topology_.get()->mayChange()) return false;
  return narrow_ ? appendInPlace(topology<std::uint32_t>(), more)
                 : appendInPlace(topology<std::uint64_t>(), more);
}

void AdjacencyStore::copyTopology() {
  TopologyShare copy = narrow_ ? topologyCopy<std::uint32_t>() : topologyCopy<std::uint64_t>();
  const std::lock_guard guard(lock_);
  std::swap(topology_, copy);
}

template <class Index>
TopologyShare AdjacencyStore::topologyCopy() const {
  const auto& present = topology<Index>();
  std::uint64_t size =
      present.from.size() + present.to.size() + AdjacencyLists<Index>::sizeOfCopy(present.out);
  if (present.in) size += AdjacencyLists<Index>::sizeOfCopy(*present.in);
  const std::uint64_t inArena = size <= kLargestArena<Index> ? size : 0;
  auto* const next = Topology<Index>::make(inArena);
  TopologyShare share(next);
  Arena<Index> arena = next->arena(inArena);
  next->from = arena.copy(present.from, edges_);
  next->to = arena.copy(present.to, edges_);
  next->out.copy(present.out, arena);
  if (present.in) {
    next->in = std::make_unique<AdjacencyLists<Index>>();
    next->in->copy(*present.in, arena);
  }
  return share;
}

template <class Index>
bool AdjacencyStore::isWithin(std::uint64_t size) const {
  return !std::is_same_v<Index, std::uint32_t> || size <= narrowLimit_;
}

template <class Index>
bool AdjacencyStore::relocate(AdjacencyLists<Index>& lists, std::uint64_t vertex) {
  const std::uint64_t slot = lists.slotForPacked(vertex);
  if (!isWithin<Index>(lists.poolSizeWith(slot))) return false;
  lists.relocate(vertex, slot);
  return true;
}

template <class Index>
bool AdjacencyStore::appendInPlace(Topology<Index>& topology, const EdgeEnds& more) {
  AdjacencyLists<Index>& in = directed_ ? *topology.in : topology.out;
  const std::uint64_t count = more.count();
  topology.out.dropPacked();
  in.dropPacked();

  // Where a list lies shows nowhere, so that it does no harm to stop here for want of memory.
  for (std::uint64_t i = 0; i < count; ++i) {
    if (topology.out.isPacked(more.from[i]) && !relocate(topology.out, more.from[i])) return false;
    if (in.isPacked(more.to[i]) && !relocate(in, more.to[i])) return false;
  }
  // How many places the lists will want is known only once all entries have been counted in.
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

  if (!isWithin<Index>(topology.out.poolSizeWith(outEntries)) ||
      !isWithin<Index>(in.poolSizeWith(inEntries)) || !isWithin<Index>(edges_ + count)) {
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

void AdjacencyStore::rebuildWith(IndexList from, IndexList to, Pace* pace) {
  const std::uint64_t edges = edges_ + from.all().size();
  // Lists that have outgrown their pool stay narrow only with places for many more insertions, lest
  // each of them had to build everything anew.
  const bool narrow = fitsNarrow(vertices_, edges + edges_ / 2, narrowLimit_);
  TopologyShare next = narrow ? topologyWith<std::uint32_t>(std::move(from), std::move(to), pace)
                              : topologyWith<std::uint64_t>(std::move(from), std::move(to), pace);
  const std::lock_guard guard(lock_);
  std::swap(topology_, next);
  narrow_ = narrow;
  edges_ = edges;
}

template <class Index>
TopologyShare AdjacencyStore::topologyWith(IndexList from, IndexList to, Pace* pace) const {
  const std::uint64_t edges = edges_ + from.all().size();
  Team team(edges >= Team::worthSharing ? parallelism() : 1);
  const std::uint64_t inArena = arenaSize<Index>(vertices_, edges, directed_);
  auto* const next = Topology<Index>::make(inArena);
  TopologyShare share(next);
  Arena<Index> arena = next->arena(inArena);
  next->from = arena.template block<Index>(edges);
  next->to = arena.template block<Index>(edges);
  if (edges_ != 0) {
    visit([&](const auto& present) {
      copyIndices(std::span(present.from.data(), edges_), next->from.data(), team, pace);
      copyIndices(std::span(present.to.data(), edges_), next->to.data(), team, pace);
    });
  }
  copyIndices(from.all(), next->from.data() + edges_, team, pace);
  copyIndices(to.all(), next->to.data() + edges_, team, pace);
  // They may make place for the lists.
  from = IndexList();
  to = IndexList();
  const auto build = [&]<bool kBothWays>(std::bool_constant<kBothWays>,
                                         AdjacencyLists<Index>& lists, const Block<Index>& at,
                                         const Block<Index>& neighbour) {
    const EntriesOfEdges<kBothWays, Index> entries{at.data(), neighbour.data(), edges};
    buildLists(lists, vertices_, entries, arena, team, pace);
  };
  if (directed_) {
    build(std::false_type(), next->out, next->from, next->to);
    next->in = std::make_unique<AdjacencyLists<Index>>();
    build(std::false_type(), *next->in, next->to, next->from);
  } else {
    build(std::true_type(), next->out, next->from, next->to);
  }
  return share;
}

}  // namespace veq::internal
