/// \file
/// The network as a value.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/build_options.hpp"
#include "veq/natural/change_options.hpp"
#include "veq/natural/spans.hpp"
#include "veq/natural/topology_view.hpp"
#include "veq/network/network.hpp"

namespace veq {

struct DerivedNetwork;
struct UnitedNetwork;

/// An edge that was added, and those after it.
/// \ingroup edit
struct AddedEdges {
  /// The index of the first one, and how many there are.
  std::uint64_t first = 0;
  std::uint64_t count = 0;
  /// How many of the weights a 32-bit float does not hold exactly.
  std::uint64_t roundedWeights = 0;
};

/// A share of a network. Copies are the same network; one of its own gives `copy()`. Never empty,
/// except after it was moved from.
///
/// What can fail by its input gives a Result. Apart from that, operations throw std::out_of_range
/// for an index that the network does not have, and std::bad_alloc, and leave the network as it
/// was. Any number of threads may ask at once, as long as none changes the network.
/// \ingroup build
class VEQ_EXPORT Network {
 public:
  /// The published network itself, in O(1). std::invalid_argument, "There is no network.", for
  /// null.
  explicit Network(Shared<VEQNetwork> published) : published_(std::move(published)) {
    if (!published_) throw std::invalid_argument("There is no network.");
  }

  /// The network with its published operations, in O(1).
  [[nodiscard]] const Shared<VEQNetwork>& published() const { return published_; }

  /// \name Building
  /// \ingroup build
  /// Edge i runs from the i-th source to the i-th target. An error says what is wrong first and of
  /// how many more the same is wrong: "3 sources for 2 targets", "edge 7: target -1", "edge 7:
  /// target 12 of 10 vertices, and 3 more", "4 weights for 5 edges", "column Age: 4 values for 5
  /// vertices", "column Edge To: a reserved name". O(n + m).
  /// @{
  [[nodiscard]] static Result<Network> build(const IndexSpan& sources, const IndexSpan& targets,
                                             const BuildOptions& options = {});
  template <IndexInteger T>
  [[nodiscard]] static Result<Network> build(std::span<const std::pair<T, T>> edges,
                                             const BuildOptions& options = {}) {
    const auto* const first = edges.data();
    return build(IndexSpan(first ? &first->first : nullptr, edges.size(), sizeof(*first)),
                 IndexSpan(first ? &first->second : nullptr, edges.size(), sizeof(*first)),
                 options);
  }
  template <IndexInteger T>
  [[nodiscard]] static Result<Network> build(const std::vector<std::pair<T, T>>& edges,
                                             const BuildOptions& options = {}) {
    return build(std::span<const std::pair<T, T>>(edges), options);
  }
  [[nodiscard]] static Result<Network> build(
      std::initializer_list<std::pair<std::int64_t, std::int64_t>> edges,
      const BuildOptions& options = {}) {
    return build(
        std::span<const std::pair<std::int64_t, std::int64_t>>(edges.begin(), edges.size()),
        options);
  }
  /// @}

  /// \name Building from names
  /// \ingroup build
  /// Edges between names, which become the column "Name". Vertices are numbered by first
  /// appearance, source before target, edge by edge; or as in the list of all names, where there is
  /// one, and then an edge can have no other ends: "edge 7: target \"Eve\" is not among the names";
  /// "names 2 and 5 are both \"Ada\"". Names are any bytes, the empty name included. Expected
  /// O(length of all names).
  /// @{
  [[nodiscard]] static Result<Network> fromNames(std::span<const std::string> sources,
                                                 std::span<const std::string> targets,
                                                 const BuildOptions& options = {});
  [[nodiscard]] static Result<Network> fromNames(std::span<const std::string> sources,
                                                 std::span<const std::string> targets,
                                                 std::span<const std::string> allNames,
                                                 const BuildOptions& options = {});
  /// @}

  /// \name Networks in somebody's memory
  /// \ingroup build
  /// A network over a topology that is read where it lies, such as in memory that processes share.
  /// It must stay as it is until the owner is let go of, when no network and no view stands on it
  /// any longer. Nothing is written to it: the first inserted edge copies the topology, and the
  /// first weight that is set the weights. Otherwise the network is like any other.
  ///
  /// All of it is looked at once, in O(n + m), so that what is no network gives an error and no
  /// harm: "edge 7: target 12 of 10 vertices"; "list of vertex 3: 4 entries from place 7 of 9";
  /// "list of vertex 3: entry 2 is not its edge"; "5 entries in the lists of 6 edges"; "4 weights
  /// for 5 edges". A stop is the other error.
  /// @{
  [[nodiscard]] static Result<Network> over(const TopologyMemory<std::uint32_t>& memory,
                                            Shared<const void> owner,
                                            const OverOptions& options = {});
  [[nodiscard]] static Result<Network> over(const TopologyMemory<std::uint64_t>& memory,
                                            Shared<const void> owner,
                                            const OverOptions& options = {});
  /// @}

  /// \name Size and kind
  /// \ingroup ask
  /// The numbers of vertices and edges, whether edges have a direction, and whether there are
  /// weights.
  /// @{
  [[nodiscard]] std::uint64_t countVertices() const { return published_->countVertices(); }
  [[nodiscard]] std::uint64_t countEdges() const { return published_->countEdges(); }
  [[nodiscard]] bool isDirected() const { return published_->isDirected(); }
  [[nodiscard]] bool isVertexWeighted() const { return published_->isVertexWeighted(); }
  [[nodiscard]] bool isEdgeWeighted() const { return published_->isEdgeWeighted(); }
  /// @}

  /// \name Edges and neighbours
  /// \ingroup ask
  /// In the order in which edges were added; an undirected loop stands twice in the lists of its
  /// vertex and counts twice. Both ways (kAll): what leads away, then what leads to it.
  /// @{
  /// Source and target of an edge. O(1).
  [[nodiscard]] std::pair<std::uint64_t, std::uint64_t> endsOf(std::uint64_t edge) const;
  /// Of all edges. O(m).
  [[nodiscard]] std::vector<std::uint64_t> sources() const;
  [[nodiscard]] std::vector<std::uint64_t> targets() const;
  /// O(degree).
  [[nodiscard]] std::vector<std::uint64_t> neighbours(std::uint64_t vertex,
                                                      Direction direction = Direction::kOut) const;
  [[nodiscard]] std::vector<std::uint64_t> edgesOf(std::uint64_t vertex,
                                                   Direction direction = Direction::kOut) const;
  /// Whether an edge leads from one to the other; undirected, in either order. O(smaller degree).
  [[nodiscard]] bool hasEdge(std::uint64_t from, std::uint64_t to) const;
  /// All such edges, each once.
  [[nodiscard]] std::vector<std::uint64_t> edgesBetween(std::uint64_t from, std::uint64_t to) const;
  /// @}

  /// \name Degrees and strengths
  /// \ingroup ask
  /// The strength is the sum of the weights of the edges in the list, in double and in its order;
  /// an edge without weight counts 1.0. Whether vertices have weights does not matter.
  /// @{
  [[nodiscard]] std::uint64_t degree(std::uint64_t vertex,
                                     Direction direction = Direction::kOut) const;
  [[nodiscard]] double strength(std::uint64_t vertex, Direction direction = Direction::kOut) const;
  [[nodiscard]] std::vector<std::uint64_t> degrees(Direction direction = Direction::kOut) const;
  [[nodiscard]] std::vector<double> strengths(Direction direction = Direction::kOut) const;
  /// @}

  /// \name Weights
  /// \ingroup attributes
  /// 32-bit floats, 1.0 where there are none. `Number(weight).text()` is the shortest decimal.
  /// @{
  [[nodiscard]] std::vector<float> vertexWeights() const;
  [[nodiscard]] std::vector<float> edgeWeights() const;
  /// One for each; how many of them a float does not hold. Errors: "4 weights for 5 vertices";
  /// "the weights of this network are fixed" after `blockEditing()`.
  Result<std::uint64_t> setVertexWeights(const NumberSpan& weights);
  Result<std::uint64_t> setEdgeWeights(const NumberSpan& weights);
  /// @}

  /// \name Names and columns
  /// \ingroup attributes
  /// @{
  /// The texts of the column "Name", empty where nothing is set; without that column the indices in
  /// decimal digits.
  [[nodiscard]] std::vector<std::string> names() const;
  /// The lowest vertex of the name, compared exactly. O(n).
  [[nodiscard]] std::optional<std::uint64_t> vertexNamed(std::string_view name) const;
  /// The keys, in the order of their first setting.
  [[nodiscard]] std::vector<std::string> vertexKeys() const;
  [[nodiscard]] std::vector<std::string> edgeKeys() const;
  /// The column itself, in which later settings show, or null.
  [[nodiscard]] Shared<const PropertyColumn> vertexColumn(std::string_view key) const;
  [[nodiscard]] Shared<const PropertyColumn> edgeColumn(std::string_view key) const;
  /// A column's values as numbers of their own. Errors: "no column Age"; "column Age: vertex 3 has
  /// no number".
  [[nodiscard]] Result<std::vector<double>> vertexNumbers(std::string_view key) const;
  [[nodiscard]] Result<std::vector<double>> edgeNumbers(std::string_view key) const;
  /// As texts: strings as they are, numbers in their shortest decimal form, vectors with blanks
  /// between the components, empty where nothing is set.
  [[nodiscard]] Result<std::vector<std::string>> vertexTexts(std::string_view key) const;
  [[nodiscard]] Result<std::vector<std::string>> edgeTexts(std::string_view key) const;
  /// Keeps the column, or a copy of a fixed one. Errors as when building; null removes the key.
  Outcome setVertexColumn(std::string_view key, Shared<PropertyColumn> column);
  Outcome setEdgeColumn(std::string_view key, Shared<PropertyColumn> column);
  /// @}

  /// \name Adding edges
  /// \ingroup edit
  /// To this very network. Columns of edges are not set for the new ones. Where the network or the
  /// call has weights, all edges have one afterwards, 1.0 by default. Errors as when building, and
  /// "the weights of this network are fixed" for weights after `blockEditing()`; then nothing
  /// changes. Amortised O(count).
  /// @{
  /// A stop leaves the network as it was. From 2^19 edges on, an insertion that makes the network
  /// larger by more than a sixteenth can be stopped at any time, and takes O(n + m).
  Result<AddedEdges> addEdges(const IndexSpan& sources, const IndexSpan& targets,
                              const NumberSpan& weights = {}, const Progress& progress = {});
  /// One of them; std::out_of_range for an end that is no vertex. Its index.
  std::uint64_t addEdge(std::uint64_t source, std::uint64_t target);
  /// @}

  /// \name New networks from this one
  /// \ingroup edit
  /// This network stays as it is. Weights and columns go along, and vertices and edges keep their
  /// order unless it is said otherwise; the new columns are copies. The only error, unless it is
  /// said otherwise, is a stop. O(n + m), and as much for each column.
  /// @{
  [[nodiscard]] Result<Network> copy(const ChangeOptions& options = {}) const;
  /// With so many vertices more, behind the others; they weigh 1.0, and their columns are not set.
  [[nodiscard]] Result<Network> withMoreVertices(std::uint64_t count,
                                                 const ChangeOptions& options = {}) const;
  /// Every edge the other way round; a copy of an undirected network.
  [[nodiscard]] Result<Network> reversed(const ChangeOptions& options = {}) const;
  /// Two edges for each undirected one, a loop included: edge e becomes 2 e, and the way back 2 e +
  /// 1. Matrix, lists and walks stay the same. A copy of a directed network.
  [[nodiscard]] Result<Network> asDirected(const ChangeOptions& options = {}) const;
  /// One edge for each directed one; `simplified` merges what becomes parallel. A copy of an
  /// undirected network.
  [[nodiscard]] Result<Network> asUndirected(const ChangeOptions& options = {}) const;
  /// Without loops and parallel edges, unless the options keep some. An edge that stands for
  /// several has the columns of the one that the options name, and its place is that of the first.
  [[nodiscard]] Result<DerivedNetwork> simplified(const SimplifyOptions& options = {}) const;
  /// The chosen vertices, in the given order, and all edges among them. Errors: "place 4: vertex 12
  /// of 10"; "place 4: vertex 3 for the second time".
  [[nodiscard]] Result<DerivedNetwork> subnetwork(const IndexSpan& vertices,
                                                  const ChangeOptions& options = {}) const;
  /// The chosen edges, in the given order, and their ends in the order of their indices. Errors:
  /// "place 4: edge 12 of 10"; "place 4: edge 3 for the second time".
  [[nodiscard]] Result<DerivedNetwork> subnetworkOfEdges(
      const IndexSpan& edges, const EdgeSubnetworkOptions& options = {}) const;
  /// The vertices that are at most so many edges away, the nearest first, the vertex itself being
  /// vertex 0, and all edges among them. std::out_of_range for no vertex.
  [[nodiscard]] Result<DerivedNetwork> neighbourhood(
      std::uint64_t vertex, const NeighbourhoodOptions& options = {}) const;
  /// One network of several, with the vertices of the first, then those of the second that are not
  /// among them, and so on; and so the edges, all of which stay. Where several networks have
  /// something of one vertex, the first of them decides. The result is weighted where any of them
  /// is, 1.0 elsewhere. Column kinds stay where they agree, and hold any kind otherwise. Errors:
  /// "no networks"; "network 1 is directed, network 0 is not".
  [[nodiscard]] static Result<UnitedNetwork> united(std::span<const Network> networks,
                                                    const UnionOptions& options = {});
  /// @}

  /// The vertices and edges in bulk, as they are now. O(1).
  [[nodiscard]] TopologyView topology() const;

 private:
  Shared<VEQNetwork> published_;
};

/// A network that was made of parts of another.
/// \ingroup edit
struct DerivedNetwork {
  Network network;
  /// For each of its vertices and edges the index in the network that it comes from.
  std::vector<std::uint64_t> vertices;
  std::vector<std::uint64_t> edges;
};

/// A network that was made of several others.
/// \ingroup edit
struct UnitedNetwork {
  Network network;
  /// For each of the networks, and each of its vertices, the new index.
  std::vector<std::vector<std::uint64_t>> vertices;
  /// For each of the networks the new index of its edge 0; the others follow.
  std::vector<std::uint64_t> firstEdges;
};

}  // namespace veq
