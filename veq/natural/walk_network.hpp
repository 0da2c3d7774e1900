/// \file
/// A network for walks alone.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq {

namespace internal {
struct WalkRows;
struct WalkRowsAccess;
}  // namespace internal

/// Takes some edges: the i-th runs from the i-th source to the i-th target. They are read during
/// the call, and may be as many as the caller likes; some hundred thousand keep threads busy.
/// \ingroup build
using EdgeReceiver = std::function<void(std::span<const std::uint64_t> sources,
                                        std::span<const std::uint64_t> targets)>;

/// Gives a receiver all edges, some at a time. It is called twice, and must give the same edges in
/// the same order both times. What it throws passes through, but an Error becomes the result. What
/// the receiver throws ends the work and must pass through the source.
/// \ingroup build
using EdgeSource = std::function<void(const EdgeReceiver& receiver)>;

/// How large a walk-only network is.
/// \ingroup build
struct WalkNetworkSize {
  std::uint64_t vertices = 0;
  /// An undirected one counts once.
  std::uint64_t edges = 0;
  /// All entries of all lists: one for each directed edge, two for each other one.
  std::uint64_t entries = 0;

  /// What rows and neighbours take: 8 bytes a vertex, 4 an entry.
  [[nodiscard]] std::uint64_t bytes() const { return 8 * (vertices + 1) + 4 * entries; }

  friend bool operator==(const WalkNetworkSize&, const WalkNetworkSize&) = default;
};

/// How to build a walk-only network.
/// \ingroup build
struct WalkNetworkOptions {
  /// Exactly so many vertices; otherwise as many as the largest end asks for, none without edges.
  std::optional<std::uint64_t> vertices{};
  /// Whether edges lead from source to target alone.
  bool directed = false;
  /// Told the size after the first pass over the edges, before memory for the lists is taken. What
  /// it throws ends the work and passes through.
  std::function<void(const WalkNetworkSize&)> announce{};
  /// A network that takes more bytes is an error. By default what this machine has, or the control
  /// groups of this process are allowed.
  std::optional<std::uint64_t> mostBytes{};
  /// So many further bytes for each vertex are to fit into that, for walks on it.
  std::uint64_t bytesBeside = 0;
  /// How many threads share each pass, 0 being as many as the process may use; without it as many
  /// as parallelism() says. What is built does not depend on it.
  std::optional<unsigned> threads{};
  /// By edges, of both passes; `all` is 0 during the first.
  Progress progress{};
};

/// A network that keeps rows and neighbours alone, 8 bytes a vertex and 4 an entry, which is all
/// that a walk reads: five times as large a network as a Network in the same memory. Walkers on it
/// walk bit by bit as on the Network of the same edges. It has up to 2^32 - 1 vertices and entries,
/// and neither weights nor properties, edges or lists of arrivals; nothing can be added to it.
///
/// A share of it: copies are the same network. Any number of threads may ask and walk at once.
/// Never empty, except after it was moved from.
/// \ingroup build
class VEQ_EXPORT WalkNetwork {
 public:
  /// \name Building
  /// @{
  /// In two passes over the edges, which are never held: the first counts, the second fills the
  /// lists. O(n + m), and no more than a megabyte of memory beside the network's own.
  ///
  /// Errors of kind kArgument: "3 sources for 2 targets", "edge 7: target 12 of 10 vertices", "the
  /// source gave other edges when it was asked again"; kUnsupported: "edge 7: target 4294967295: a
  /// walk-only network has up to 4294967295 vertices", "more than 4294967295 list entries: a
  /// walk-only network has no more"; kMemory: "5 vertices and 8 list entries take 80 bytes, and
  /// there are 64"; and a stop.
  [[nodiscard]] static Result<WalkNetwork> fromEdges(const EdgeSource& source,
                                                     const WalkNetworkOptions& options = {});
  /// Of the edges as they are now, without the weights. O(n + m). Errors as above.
  [[nodiscard]] static Result<WalkNetwork> of(const Network& network,
                                              const WalkNetworkOptions& options = {});
  /// @}

  /// \name Size and kind
  /// @{
  [[nodiscard]] std::uint64_t countVertices() const { return size_.vertices; }
  [[nodiscard]] std::uint64_t countEdges() const { return size_.edges; }
  [[nodiscard]] bool isDirected() const;
  /// All that tells what it takes.
  [[nodiscard]] const WalkNetworkSize& size() const VEQ_LIFETIME_BOUND { return size_; }
  /// What Walkers on it take beside it: 8 bytes a vertex for totals, 8 for first arrivals and 1 for
  /// a target where these are asked for, and some for each agent. A copy of the totals takes as
  /// much as they do.
  [[nodiscard]] std::uint64_t bytesToWalk(std::uint64_t agents, bool firstArrivals = false,
                                          bool target = false) const;
  /// @}

  /// \name Neighbours
  /// In the order of Network::neighbours. std::out_of_range, "vertex 12 of 10".
  /// @{
  /// Of the out-list, which for undirected networks is the only one.
  [[nodiscard]] std::uint64_t degree(std::uint64_t vertex) const;
  [[nodiscard]] std::vector<std::uint64_t> neighbours(std::uint64_t vertex) const;
  /// @}

 private:
  friend struct internal::WalkRowsAccess;
  explicit WalkNetwork(Shared<const internal::WalkRows> rows);

  WalkNetworkSize size_;
  Shared<const internal::WalkRows> rows_;
};

}  // namespace veq
