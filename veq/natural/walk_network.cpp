#include "veq/natural/walk_network.hpp"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "veq/base/internal/memory_limit.hpp"
#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/walk_rows.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {

using internal::EdgeBlock;
using internal::Pace;
using internal::Team;
using internal::WalkRows;
using internal::WalkRowsBuilder;

namespace {

// Edges that are taken between two questions whether to stop.
constexpr std::size_t kEdgesAtOnce = std::size_t{1} << 18;

// Has `take` take all edges of the source.
template <class Take>
void pass(const EdgeSource& source, Take take) {
  source([&](std::span<const std::uint64_t> from, std::span<const std::uint64_t> to) {
    if (from.size() != to.size()) return take(EdgeBlock{from, to});  // which complains
    for (std::size_t first = 0; first < from.size(); first += kEdgesAtOnce) {
      const std::size_t some = std::min(kEdgesAtOnce, from.size() - first);
      take(EdgeBlock{from.subspan(first, some), to.subspan(first, some)});
    }
  });
}

WalkNetwork built(const EdgeSource& source, const WalkNetworkOptions& options) {
  const internal::OwnParallelism own(options.threads);
  Team team(parallelism());
  WalkRowsBuilder builder(
      options.directed,
      {options.vertices, options.mostBytes.value_or(internal::memoryLimit()), options.bytesBeside},
      team);
  Pace counting(options.progress, 0);
  counting.ask();
  pass(source, [&](const EdgeBlock& edges) {
    builder.count(edges);
    counting.reach(builder.size().edges);
  });
  if (options.announce) options.announce(builder.size());
  builder.begin();
  const std::uint64_t all = 2 * builder.size().edges;
  Pace placing(options.progress, all);
  placing.advance(all / 2);
  pass(source, [&](const EdgeBlock& edges) {
    builder.place(edges);
    placing.advance(edges.count());
  });
  return internal::WalkRowsAccess::make(builder.finish());
}

// The ends as they lie in the network.
template <class Topology>
void giveEdges(const Topology& topology, std::uint64_t edges, const EdgeReceiver& receiver) {
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  for (std::uint64_t first = 0; first < edges; first += kEdgesAtOnce) {
    const std::uint64_t end = std::min(edges, first + kEdgesAtOnce);
    from.assign(topology.from.data() + first, topology.from.data() + end);
    to.assign(topology.to.data() + first, topology.to.data() + end);
    receiver(from, to);
  }
}

}  // namespace

WalkNetwork::WalkNetwork(Shared<const WalkRows> rows) : size_(rows->size), rows_(std::move(rows)) {}

Result<WalkNetwork> WalkNetwork::fromEdges(const EdgeSource& source,
                                           const WalkNetworkOptions& options) {
  return internal::untilStopped([&]() -> Result<WalkNetwork> {
    try {
      return built(source, options);
    } catch (const Error& error) {
      return error;
    } catch (const std::bad_alloc&) {
      return Error(ErrorKind::kMemory, "memory cannot hold the network");
    }
  });
}

Result<WalkNetwork> WalkNetwork::of(const Network& network, const WalkNetworkOptions& options) {
  WalkNetworkOptions own = options;
  own.vertices = network.countVertices();
  own.directed = network.isDirected();
  const internal::HeldTopology held = internal::CoreAccess::of(*network.published()).store.hold();
  const internal::AdjacencyStore store(held);
  return fromEdges(
      [&store](const EdgeReceiver& receiver) {
        store.visit(
            [&](const auto& topology) { giveEdges(topology, store.edgeCount(), receiver); });
      },
      own);
}

bool WalkNetwork::isDirected() const { return rows_->directed; }

std::uint64_t WalkNetwork::bytesToWalk(std::uint64_t agents, bool firstArrivals,
                                       bool target) const {
  // Of each agent the numbers of where it stands and stood, and of its moves and draws.
  constexpr std::uint64_t kAgent = 64;
  return (8 + (firstArrivals ? 8 : 0) + (target ? 1 : 0)) * size_.vertices + kAgent * agents;
}

std::uint64_t WalkNetwork::degree(std::uint64_t vertex) const {
  internal::requireVertex(vertex, size_.vertices);
  return rows_->rows()[vertex].count;
}

std::vector<std::uint64_t> WalkNetwork::neighbours(std::uint64_t vertex) const {
  internal::requireVertex(vertex, size_.vertices);
  const WalkRows::Row row = rows_->rows()[vertex];
  const std::uint32_t* const first = rows_->neighbourPool() + row.start;
  return {first, first + row.count};
}

}  // namespace veq
