/// \file
/// Rows and neighbours of a walk-only network, and how they are built.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/walk_network.hpp"
#include "veq/network/adjacency_rows.hpp"

namespace veq::internal {

/// All bits set stay free for marks that are no vertex, and no entry.
inline constexpr std::uint64_t kMostWalkIndices = UINT32_MAX;

/// The lists of a walk-only network, one behind the other in the order of the vertices.
struct WalkRows {
  using Row = AdjacencyRow<std::uint32_t>;

  WalkNetworkSize size;
  bool directed = false;
  Block<Row> all;  // behind the last vertex's one more, whose start is where the lists end
  Block<std::uint32_t> neighbours;

  [[nodiscard]] const Row* rows() const { return all.data(); }
  [[nodiscard]] const std::uint32_t* neighbourPool() const { return neighbours.data(); }
};

/// The library's own way into a walk-only network.
struct WalkRowsAccess {
  [[nodiscard]] static const WalkRows& of(const WalkNetwork& network) { return *network.rows_; }
  [[nodiscard]] static WalkNetwork make(Shared<const WalkRows> rows) {
    return WalkNetwork(std::move(rows));
  }
};

/// Edges, some at a time.
struct EdgeBlock {
  std::span<const std::uint64_t> from;
  std::span<const std::uint64_t> to;

  [[nodiscard]] std::uint64_t count() const { return from.size(); }
};

/// Builds such lists in two passes over the same edges. Rows count in the first pass how many
/// entries each list gets, and in the second how many it has. Each thread of the team looks after
/// the lists of some vertices, so that entries come in the order of the edges.
class WalkRowsBuilder {
 public:
  struct Limits {
    std::optional<std::uint64_t> vertices;
    std::uint64_t bytes = UINT64_MAX;
    std::uint64_t besideEachVertex = 0;
  };

  /// Throws Error, as all that follows.
  WalkRowsBuilder(bool directed, const Limits& limits, Team& team);

  /// First each block is counted; then begin() gives all lists their places and answers the size;
  /// then each block is placed again; and finish() gives the lists.
  void count(const EdgeBlock& edges);
  void begin();
  void place(const EdgeBlock& edges);
  [[nodiscard]] Shared<const WalkRows> finish();

  [[nodiscard]] const WalkNetworkSize& size() const { return rows_.size; }

 private:
  // What tells two lists of edges apart.
  struct Digest {
    std::uint64_t from = 1;
    std::uint64_t to = 2;

    void add(const EdgeBlock& edges);
    friend bool operator==(const Digest&, const Digest&) = default;
  };

  void requireVertices(std::uint64_t largest, const EdgeBlock& edges);
  void requireBytes() const;
  void growTo(std::uint64_t vertices);
  template <class Use>
  void forEachEntry(const EdgeBlock& edges, Use use);

  WalkRows rows_;
  Limits limits_;
  Team& team_;
  Digest counted_;
  Digest placed_;
  std::uint64_t edgesPlaced_ = 0;
};

}  // namespace veq::internal
