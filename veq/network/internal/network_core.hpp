#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "veq/base/ownership.hpp"
#include "veq/handles/internal/handle_table.hpp"
#include "veq/network/internal/adjacency_store.hpp"
#include "veq/network/internal/held_weights.hpp"
#include "veq/network/internal/network_draft.hpp"
#include "veq/network/network.hpp"

namespace veq::internal {

/// What may outlive a network: its handles, and the record of its life that they ask.
struct NetworkHandles final : HandleOwner {
  explicit NetworkHandles(VEQNetwork* network) : HandleOwner(record), record(network) {}

  /// The network's reference.
  Shared<NetworkHandles> self;
  LifeRecord record;
  HandleTable<VEQVertex> vertices{*this};
  HandleTable<VEQEdge> edges{*this};
};

/// A whole network over memory that may be somebody else's.
struct ForeignParts {
  HeldTopology topology;
  std::optional<HeldWeights> verticesWeights;
  std::optional<HeldWeights> edgesWeights;
  NetworkProperties properties;
};

struct NetworkCore {
  /// Of a draft whose weights are one for each vertex and edge.
  explicit NetworkCore(NetworkDraft&& draft);
  explicit NetworkCore(ForeignParts&& parts);
  /// Ends the life of which the handles ask.
  ~NetworkCore();

  AdjacencyStore store;
  std::optional<HeldWeights> verticesWeights;
  std::optional<HeldWeights> edgesWeights;
  /// Changes whenever the weight of an edge that was there before does.
  std::uint64_t weightsRevision = 0;
  /// What walks by weight keep between calls; theirs alone.
  mutable Shared<const void> weightSums;
  Shared<NetworkProperties> properties;
  /// The sizes that per-vertex and per-edge storage reports: fixed at construction, and for edges
  /// twice the number of edges whenever an insertion exceeds it. Memory follows by its own rules.
  std::uint64_t vertexCapacity = 0;
  std::uint64_t edgesCapacity = 0;
  bool editable = true;
  /// The network that consists of this.
  VEQNetwork* network = nullptr;

  /// Made when somebody first asks for a handle, safely for concurrent callers. std::bad_alloc
  /// where they cannot be made.
  [[nodiscard]] NetworkHandles& handles() const;
  [[nodiscard]] Shared<HandleTable<VEQVertex>> vertices() const {
    NetworkHandles& made = handles();
    return {made.self, &made.vertices};
  }
  [[nodiscard]] Shared<HandleTable<VEQEdge>> edges() const {
    NetworkHandles& made = handles();
    return {made.self, &made.edges};
  }
  /// Whether it is this network's life.
  [[nodiscard]] bool lives(const LifeRecord& life) const {
    const NetworkHandles* made = handles_.load(std::memory_order_acquire);
    return made && &made->record == &life;
  }

 private:
  mutable std::atomic<NetworkHandles*> handles_{nullptr};
};

/// The library's own way into a network.
struct CoreAccess {
  [[nodiscard]] static NetworkCore& of(const VEQNetwork& network) { return *network.core_; }

  /// The network that the draft describes; null where weights are not one for each vertex or edge.
  /// std::bad_alloc where memory cannot hold it.
  [[nodiscard]] static Owned<VEQNetwork> build(NetworkDraft draft);
  /// The same in one block with the count of its references.
  [[nodiscard]] static Shared<VEQNetwork> buildShared(NetworkDraft draft);
  [[nodiscard]] static Shared<VEQNetwork> buildShared(ForeignParts parts);

  /// The network of whatever draft `produce()` gives, an optional one; null also where memory
  /// cannot hold the draft or the network.
  template <class Produce>
  [[nodiscard]] static Owned<VEQNetwork> make(Produce produce) {
    return orNothing([&produce] {
      std::optional<NetworkDraft> draft = produce();
      return draft ? build(std::move(*draft)) : nullptr;
    });
  }

 private:
  [[nodiscard]] static Shared<VEQNetwork> shared(std::unique_ptr<NetworkCore> core);
};

}  // namespace veq::internal
