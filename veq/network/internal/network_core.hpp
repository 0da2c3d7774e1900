#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>

#include "veq/base/ownership.hpp"
#include "veq/handles/internal/handle_table.hpp"
#include "veq/network/internal/adjacency_store.hpp"
#include "veq/network/internal/network_draft.hpp"
#include "veq/network/network.hpp"

namespace veq::internal {

/// A network's columns. In one block, like the handles below: of networks with few vertices, which
/// may be many, most of the memory and of the time to make them would otherwise be in such blocks.
struct NetworkProperties {
  PropertyTable vertices;
  PropertyTable edges;
};

/// What may outlive a network: its handles, and the record of its life that they ask.
struct NetworkHandles final : HandleOwner {
  explicit NetworkHandles(VEQNetwork* network) : HandleOwner(record), record(network) {}

  /// The network's reference.
  Shared<NetworkHandles> self;
  LifeRecord record;
  HandleTable<VEQVertex> vertices{*this};
  HandleTable<VEQEdge> edges{*this};
};

/// What a network consists of.
struct NetworkCore {
  /// Of a draft whose weights are one for each vertex and edge.
  explicit NetworkCore(NetworkDraft&& draft);
  /// Ends the life of which the handles ask.
  ~NetworkCore();

  AdjacencyStore store;
  std::optional<Weights> verticesWeights;
  std::optional<Weights> edgesWeights;
  Shared<NetworkProperties> properties = std::make_shared<NetworkProperties>();
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

  /// What the draft describes; null where weights are not one for each vertex or edge.
  [[nodiscard]] static std::unique_ptr<NetworkCore> buildCore(NetworkDraft draft);
  [[nodiscard]] static Owned<VEQNetwork> build(NetworkDraft draft);
  /// The network that consists of this, in one block with the count of its references.
  [[nodiscard]] static Shared<VEQNetwork> shared(std::unique_ptr<NetworkCore> core);

  /// The network of whatever draft `produce()` returns, an optional one. This is the one place that
  /// turns memory which cannot be had, for the draft or the network, into "no network".
  template <class Produce>
  [[nodiscard]] static Owned<VEQNetwork> make(Produce produce) {
    try {
      std::optional<NetworkDraft> draft = produce();
      return draft ? build(std::move(*draft)) : nullptr;
    } catch (const std::bad_alloc&) {
      return nullptr;
    } catch (const std::length_error&) {
      return nullptr;
    }
  }
};

/// Whether the key names the weights or the ends of edges, which are no columns.
[[nodiscard]] bool isReservedKey(std::string_view key);

/// Stores a column as the whole-column setters do: reserved keys are ignored, null removes the key,
/// and a column that is not editable is copied.
void installColumn(PropertyTable& table, std::string_view key, Shared<PropertyColumn> column);

/// A vertex column of which nothing is set. Its first value fixes its kind.
[[nodiscard]] Shared<PropertyColumn> newVertexColumn(const PropertyValue& first,
                                                     std::uint64_t count);

/// Sets all values of one vertex or edge, as the setters of single values do, or none of them.
void setVertexValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index);
void setEdgeValues(NetworkCore& core, const PropertyMap& values, std::uint64_t index);

/// The element, or the null marker where the column ends before it.
[[nodiscard]] PropertyValue valueOrNull(const PropertyColumn& column, std::uint64_t index);

}  // namespace veq::internal
