/// \file
/// The network.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/handles/handle_array.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/property_value.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq {

class VEQCoder;

namespace internal {
struct CoreAccess;
struct NetworkCore;
}  // namespace internal

/// An empty class of the published interface, unrelated to VEQNetwork. Every network can be edited.
/// \ingroup build
class VEQMutableNetwork {};

/// Vertices 0 to n - 1 and edges 0 to m - 1, directed or not, with optional 32-bit float weights
/// and named properties of vertices and edges. Vertices and edges are never removed, and vertices
/// never added; parallel edges and self-loops are kept.
///
/// An edge stands in lists, in the order in which edges were added. Directed: once in its source's
/// out-list and once in its target's in-list. Undirected: in the out-list of each end, so that a
/// self-loop stands twice in the list of its vertex; there are no in-lists.
///
/// Constructors begin with `init` and give a network that the caller owns; each has a factory twin
/// that begins with `network` (or drops the `init`) and gives a shared one. Both give null where
/// the input does not describe a network or memory cannot hold it. Any other operation that runs
/// out of memory throws std::bad_alloc and leaves the network as it was.
///
/// Threads: any number of threads may ask questions at once, as long as none edits. A `const`
/// network still hands out handles, and these can edit it.
/// \ingroup build
class VEQ_EXPORT VEQNetwork {
 public:
  /// Invalidates all handles; they may be kept.
  ~VEQNetwork();
  VEQNetwork(const VEQNetwork&) = delete;
  VEQNetwork& operator=(const VEQNetwork&) = delete;

  /// The arrays that the questions give.
  using VertexArray = VEQVertexArray;
  using EdgeArray = VEQEdgeArray;

  /// \name Construction from indices
  /// \ingroup build
  /// Edge i runs from the i-th source to the i-th target. The number of vertices is the largest
  /// index plus one, or the given minimum where that is larger; without edges and minimum it is 1.
  /// Optional weights are copied. No network: index lists of different lengths, weights that are
  /// not one for each vertex or edge, an index that cannot be (negative, or 2^64 - 1). O(n + m).
  /// @{
  [[nodiscard]] static Owned<VEQNetwork> initWithLinksIndexedFrom_toIndices(
      const VEQNumberArray& from, const VEQNumberArray& to);
  [[nodiscard]] static Owned<VEQNetwork> initWithLinksIndexedFrom_toIndices_directed(
      const VEQNumberArray& from, const VEQNumberArray& to, bool directed);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      const VEQNumberArray& from, const VEQNumberArray& to, bool directed,
      const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  [[nodiscard]] static Owned<VEQNetwork> initWithVerticesCount_linksIndexedFrom_toIndices(
      std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to);
  [[nodiscard]] static Owned<VEQNetwork> initWithVerticesCount_linksIndexedFrom_toIndices_directed(
      std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to,
      bool directed);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to,
      bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);

  [[nodiscard]] static Shared<VEQNetwork> networkWithLinksIndexedFrom_toIndices(
      const VEQNumberArray& from, const VEQNumberArray& to);
  [[nodiscard]] static Shared<VEQNetwork> networkWithLinksIndexedFrom_toIndices_directed(
      const VEQNumberArray& from, const VEQNumberArray& to, bool directed);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      const VEQNumberArray& from, const VEQNumberArray& to, bool directed,
      const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  [[nodiscard]] static Shared<VEQNetwork> networkWithVerticesCount_linksIndexedFrom_toIndices(
      std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVerticesCount_linksIndexedFrom_toIndices_directed(std::uint64_t minimumCount,
                                                               const VEQNumberArray& from,
                                                               const VEQNumberArray& to,
                                                               bool directed);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      std::uint64_t minimumCount, const VEQNumberArray& from, const VEQNumberArray& to,
      bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  /// @}

  /// \name Empty networks
  /// \ingroup build
  /// Without vertices and edges, and since vertices are never added, for ever. The capacities are
  /// accepted as they are and reserve nothing.
  /// @{
  [[nodiscard]] static Owned<VEQNetwork> initWithVertexCapacity_edgeCapacity(
      std::uint64_t vertexCapacity, std::uint64_t edgeCapacity);
  [[nodiscard]] static Owned<VEQNetwork> initWithVertexCapacity_edgeCapacity_directed(
      std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
      std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed,
      bool verticesWeighted, bool edgesWeighted);

  [[nodiscard]] static Shared<VEQNetwork> networkWithVertexCapacity_edgeCapacity(
      std::uint64_t vertexCapacity, std::uint64_t edgeCapacity);
  [[nodiscard]] static Shared<VEQNetwork> networkWithVertexCapacity_edgeCapacity_directed(
      std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
      std::uint64_t vertexCapacity, std::uint64_t edgeCapacity, bool directed,
      bool verticesWeighted, bool edgesWeighted);
  /// @}

  /// \name Construction from handles
  /// \ingroup build
  /// The given vertices, of any networks, in their order; edges of which both ends should be among
  /// them: an end that is not found becomes vertex 0, and a vertex given twice is found at its
  /// first place. The properties of the vertices are carried over, and those of the edges where
  /// edges are given, as if set value by value: the first value of a key fixes the kind of a vertex
  /// column, but where that kind cannot hold a later value the column holds any kind. Weights are
  /// copied from the arrays alone. No network: lists of different lengths, weights that are not one
  /// for each vertex or edge, edges without vertices. An invalid handle among the vertices or edges
  /// throws std::invalid_argument, "The Related Network of this vertex is not valid.". The forms
  /// with `edges` write "Loading Weighted Network? YES" or "... NO" to the diagnostic log, also
  /// when they then fail. Expected O(n + m) for each property.
  /// @{
  [[nodiscard]] static Owned<VEQNetwork> initWithVertices_edges(const VEQVertexArray& vertices,
                                                                const VEQEdgeArray& edges);
  [[nodiscard]] static Owned<VEQNetwork> initWithVertices_edges_directed(
      const VEQVertexArray& vertices, const VEQEdgeArray& edges, bool directed);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithVertices_edges_directed_verticesWeights_edgesWeights(
      const VEQVertexArray& vertices, const VEQEdgeArray& edges, bool directed,
      const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  /// Edge i runs from the i-th source to the i-th target. Without a vertices array the vertices are
  /// the distinct ends, numbered by first appearance, source before target, edge by edge.
  [[nodiscard]] static Owned<VEQNetwork> initWithVertices_linkFromVertices_toVertices(
      const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
      const VEQVertexArray& to);
  [[nodiscard]] static Owned<VEQNetwork> initWithVertices_linkFromVertices_toVertices_directed(
      const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
      const VEQVertexArray& to, bool directed);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
      const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
      const VEQVertexArray& to, bool directed, const VEQNumberArray* verticesWeights,
      const VEQNumberArray* edgesWeights);

  [[nodiscard]] static Shared<VEQNetwork> networkWithVertices_edges(const VEQVertexArray& vertices,
                                                                    const VEQEdgeArray& edges);
  [[nodiscard]] static Shared<VEQNetwork> networkWithVertices_edges_directed(
      const VEQVertexArray& vertices, const VEQEdgeArray& edges, bool directed);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVertices_edges_directed_verticesWeights_edgesWeights(
      const VEQVertexArray& vertices, const VEQEdgeArray& edges, bool directed,
      const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  [[nodiscard]] static Shared<VEQNetwork> networkWithVertices_linkFromVertices_toVertices(
      const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
      const VEQVertexArray& to);
  [[nodiscard]] static Shared<VEQNetwork> networkWithVertices_linkFromVertices_toVertices_directed(
      const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
      const VEQVertexArray& to, bool directed);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
      const std::optional<VEQVertexArray>& vertices, const VEQVertexArray& from,
      const VEQVertexArray& to, bool directed, const VEQNumberArray* verticesWeights,
      const VEQNumberArray* edgesWeights);
  /// @}

  /// \name Copies
  /// \ingroup build
  /// All vertices, edges and properties of the network, as from its handles. Beware: the forms
  /// without weights take the source's weight values, and these are 1.0 on an unweighted network,
  /// so that their result is always weighted both ways; the forms with weights take what they are
  /// given (null for an unweighted copy). The expanding forms ignore their two increments. O(n + m)
  /// for each property.
  /// @{
  [[nodiscard]] static Owned<VEQNetwork> initWithNetwork(const VEQNetwork& network);
  [[nodiscard]] static Owned<VEQNetwork> initWithNetwork_directed(const VEQNetwork& network,
                                                                  bool directed);
  [[nodiscard]] static Owned<VEQNetwork> initWithNetwork_directed_verticesWeights_edgesWeights(
      const VEQNetwork& network, bool directed, const VEQNumberArray* verticesWeights,
      const VEQNumberArray* edgesWeights);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(const VEQNetwork& network,
                                                                 std::uint64_t vertexIncrement,
                                                                 std::uint64_t edgeIncrement);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
      const VEQNetwork& network, std::uint64_t vertexIncrement, std::uint64_t edgeIncrement,
      bool directed);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed_verticesWeights_edgesWeights(
      const VEQNetwork& network, std::uint64_t vertexIncrement, std::uint64_t edgeIncrement,
      bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);

  [[nodiscard]] static Shared<VEQNetwork> networkWithNetwork(const VEQNetwork& network);
  [[nodiscard]] static Shared<VEQNetwork> networkWithNetwork_directed(const VEQNetwork& network,
                                                                      bool directed);
  [[nodiscard]] static Shared<VEQNetwork> networkWithNetwork_directed_verticesWeights_edgesWeights(
      const VEQNetwork& network, bool directed, const VEQNumberArray* verticesWeights,
      const VEQNumberArray* edgesWeights);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(const VEQNetwork& network,
                                                                    std::uint64_t vertexIncrement,
                                                                    std::uint64_t edgeIncrement);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
      const VEQNetwork& network, std::uint64_t vertexIncrement, std::uint64_t edgeIncrement,
      bool directed);
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed_verticesWeights_edgesWeights(
      const VEQNetwork& network, std::uint64_t vertexIncrement, std::uint64_t edgeIncrement,
      bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  /// @}

  /// \name Size, flags and handles
  /// \ingroup ask
  /// @{
  /// The numbers of vertices and of edges.
  [[nodiscard]] std::uint64_t countVertices() const;
  [[nodiscard]] std::uint64_t countEdges() const;
  /// Whether edges have a direction, whether edges and vertices have weights of their own, and
  /// whether these can be set.
  [[nodiscard]] bool isDirected() const;
  [[nodiscard]] bool isEdgeWeighted() const;
  [[nodiscard]] bool isVertexWeighted() const;
  [[nodiscard]] bool isEditable() const;
  /// From now on the four weight setters do nothing, for ever. Edges can still be inserted and
  /// properties set.
  void blockEditing();
  /// The network's one handle for the index; std::out_of_range at or beyond the count. O(1).
  [[nodiscard]] Shared<VEQVertex> vertexAtIndex(std::uint64_t index) const;
  [[nodiscard]] Shared<VEQEdge> edgeAtIndex(std::uint64_t index) const;
  /// All handles as of now: later edges do not appear. O(1).
  [[nodiscard]] VEQVertexArray vertices() const;
  [[nodiscard]] VEQEdgeArray edges() const;
  /// @}

  /// \name Inserting edges
  /// \ingroup edit
  /// Allowed also after blockEditing(). Repeated edges are kept. New edges weigh 1.0 where the
  /// network is edge-weighted, and are not set in edge columns (0 or the zero vector in a column of
  /// numbers or vectors). A call that throws changes nothing.
  /// @{
  /// Throws std::invalid_argument, "Edge lists contains indices out of bounds:from %u to %u (max
  /// vertex inddex:%u)" with the first bad pair and the number of vertices. Pointers are not read
  /// where the count is 0. Amortised O(count).
  void addEdgesFromVerticesIndices_toVerticesIndices_count(const std::uint64_t* from,
                                                           const std::uint64_t* to,
                                                           std::uint64_t count);
  /// Throws std::invalid_argument, "Both vertices must be in this network.". Amortised O(1).
  Shared<VEQEdge> linkVertex_to(const VEQVertex& source, const VEQVertex& target);
  /// Then sets the weight as setWeightValue_atEdgeIndex does: on an unweighted network all earlier
  /// edges weigh 0.0 from then on, and on a blocked one the weight is ignored.
  Shared<VEQEdge> linkVertex_to_weight(const VEQVertex& source, const VEQVertex& target,
                                       float weight);
  /// Change nothing and return null; std::invalid_argument, "Both links must be in this network.",
  /// for a vertex of another network.
  Shared<VEQEdge> reLinkVertex_to_atIndex(const VEQVertex& source, const VEQVertex& target,
                                          std::uint64_t edgeIndex);
  Shared<VEQEdge> reLinkVertex_to_weight_atIndex(const VEQVertex& source, const VEQVertex& target,
                                                 float weight, std::uint64_t edgeIndex);
  /// @}

  /// \name Weights
  /// \ingroup attributes
  /// The getters give new arrays of floats, 1.0 on an unweighted network. The setters do nothing at
  /// all after blockEditing(), whatever they are given. O(n) or O(m).
  /// @{
  [[nodiscard]] Shared<VEQNumberArray> verticesWeightValues() const;
  [[nodiscard]] Shared<VEQNumberArray> edgesWeightValues() const;
  /// Takes the first n values; std::invalid_argument, "New property must have at least the size of
  /// the number of Vertices.", for fewer.
  void setVerticesWeightValues(const VEQNumberArray& weights);
  /// As for vertices, "... the number of Edges.".
  void setEdgesWeightValues(const VEQNumberArray& weights);
  /// On an unweighted network all other vertices weigh 0.0 from then on, although an unweighted one
  /// reports 1.0: set all weights at once instead. std::invalid_argument, "Index must be less than
  /// number of Vertices.". O(1) once weighted.
  void setWeightValue_atVertexIndex(float weight, std::uint64_t index);
  /// As for vertices, with the very same text.
  void setWeightValue_atEdgeIndex(float weight, std::uint64_t index);
  /// @}

  /// \name Properties
  /// \ingroup attributes
  /// One column of values for each key. The column "Name" holds names.
  /// @{
  /// Replaces one element. A new key makes a column whose kind the value fixes: numbers (0.0
  /// elsewhere), 2D or 3D vectors (zero vectors elsewhere), or values of any kind (null markers
  /// elsewhere). std::out_of_range beyond the column, std::invalid_argument for a value that the
  /// column's kind cannot hold; then nothing changes and no column is made.
  void setPropertyValue_forKey_atVertexIndex(const PropertyValue& value, std::string_view key,
                                             std::uint64_t index);
  /// As for vertices, but a new key always makes a column that holds any kind.
  void setPropertyValue_forKey_atEdgeIndex(const PropertyValue& value, std::string_view key,
                                           std::uint64_t index);
  /// Stores the column itself, shared with the caller, or an editable copy of one that is not
  /// editable; null removes the key. Its length is not checked: what lies beyond its end reads as
  /// the null marker. The keys "Edge Weight", "Vertex Weight", "Edge From" and "Edge To" are
  /// ignored.
  void setPropertiesOfVertices_forKey(Shared<PropertyColumn> column, std::string_view key);
  void setPropertiesOfEdges_forKey(Shared<PropertyColumn> column, std::string_view key);
  /// The values of one vertex under every key. An index at or beyond the number of vertices reads
  /// what a longer column holds there, and throws std::out_of_range where a column ends before it.
  [[nodiscard]] PropertyMap propertiesOfVertexAtIndex(std::uint64_t index) const;
  [[nodiscard]] PropertyMap propertiesOfEdgeAtIndex(std::uint64_t index) const;
  /// For every key the elements at the given positions, in that order; std::out_of_range where a
  /// position lies beyond a column.
  [[nodiscard]] PropertyTable propertiesOfVerticesAtIndexArray(const VEQNumberArray& indices) const;
  [[nodiscard]] PropertyTable propertiesOfInEdgesAtIndexArray(const VEQNumberArray& indices) const;
  /// The same for one key; null for an unknown one.
  [[nodiscard]] Shared<PropertyColumn> propertiesOfVerticesAtIndexArray_forKey(
      const VEQNumberArray& indices, std::string_view key) const;
  [[nodiscard]] Shared<PropertyColumn> propertiesOfEdgesAtIndexArray_forKey(
      const VEQNumberArray& indices, std::string_view key) const;
  /// The elements of "Name"; without that column the given numbers themselves, as strings.
  [[nodiscard]] Shared<PropertyColumn> namesOfVerticesAtIndexArray(
      const VEQNumberArray& indices) const;
  [[nodiscard]] Shared<PropertyColumn> namesOfEdgesAtIndexArray(
      const VEQNumberArray& indices) const;
  /// n (m) integers, 1 where the network is editable and 0 where not. The indices are not used.
  [[nodiscard]] Shared<VEQNumberArray> areEditableVerticesAtIndexArray(
      const VEQNumberArray& indices) const;
  [[nodiscard]] Shared<VEQNumberArray> areEditableEdgesAtIndexArray(
      const VEQNumberArray& indices) const;
  /// The table itself: later settings show in it.
  [[nodiscard]] Shared<const PropertyTable> propertiesOfVertices() const;
  [[nodiscard]] Shared<const PropertyTable> propertiesOfEdges() const;
  /// In the order of their first setting.
  [[nodiscard]] std::vector<std::string> keysForPropertiesOfVertices() const;
  [[nodiscard]] std::vector<std::string> keysForPropertiesOfEdges() const;
  /// @}

  /// \name Vertices by name
  /// \ingroup ask
  /// A vertex's name is its entry of the "Name" column, compared exactly; without such a column,
  /// its index in decimal digits. Where the column exists, a vertex without a name matches nothing.
  /// O(n).
  /// @{
  /// The one of the lowest index; null if there is none.
  [[nodiscard]] Shared<VEQVertex> vertexWithName(std::string_view name) const;
  /// All of them, in index order.
  [[nodiscard]] VEQVertexArray verticesWithName(std::string_view name) const;
  /// @}

  /// \name Questions about one vertex, by index
  /// \ingroup ask
  /// Those that throw: std::invalid_argument, "VertexIndex must be less than count.". Counts are
  /// O(1), sums and lists O(degree).
  /// @{
  /// The length of the out-list.
  [[nodiscard]] std::uint64_t countEdgesOfVertexAtIndex(std::uint64_t index) const;
  /// Directed: the length of the in-list. Undirected: of the out-list.
  [[nodiscard]] std::uint64_t countInEdgesOfVertexAtIndex(std::uint64_t index) const;
  /// The same as countEdgesOfVertexAtIndex.
  [[nodiscard]] std::uint64_t countToVerticesOfVertexAtIndex(std::uint64_t index) const;
  /// The same as countInEdgesOfVertexAtIndex.
  [[nodiscard]] std::uint64_t countFromVerticesOfVertexAtIndex(std::uint64_t index) const;
  /// The length of the out-list, as a double.
  [[nodiscard]] double calcDegreeOfVertexAtIndex(std::uint64_t index) const;
  /// The length of the out-list, also in a directed network: use countInEdgesOfVertexAtIndex for
  /// the in-degree.
  [[nodiscard]] double calcInDegreeOfVertexAtIndex(std::uint64_t index) const;
  /// The sum of the weights of the out-list's edges if the network has *vertex* weights, otherwise
  /// the length of the out-list: use calcStrengths for the strength. Edges without weights
  /// count 1.0.
  [[nodiscard]] double calcStrengthOfVertexAtIndex(std::uint64_t index) const;
  /// The sum over the in-list (undirected: out-list) if the network has *vertex* weights, otherwise
  /// the length of the out-list: use calcInStrengths for the in-strength.
  [[nodiscard]] double calcInStrengthOfVertexAtIndex(std::uint64_t index) const;
  /// Handles, in list order, repetitions included.
  [[nodiscard]] VEQEdgeArray edgesLinkedFromVertexAtIndex(std::uint64_t index) const;
  [[nodiscard]] VEQEdgeArray edgesLinkedToVertexAtIndex(std::uint64_t index) const;
  [[nodiscard]] VEQVertexArray verticesLinkedFromVertexAtIndex(std::uint64_t index) const;
  [[nodiscard]] VEQVertexArray verticesLinkedToVertexAtIndex(std::uint64_t index) const;
  /// The same as indices. These four throw nothing: an index beyond the count gives an empty array.
  [[nodiscard]] Shared<VEQNumberArray> indicesOfEdgesLinkedFromVertexAtIndex(
      std::uint64_t index) const;
  [[nodiscard]] Shared<VEQNumberArray> indicesOfEdgesLinkedToVertexAtIndex(
      std::uint64_t index) const;
  [[nodiscard]] Shared<VEQNumberArray> indicesOfVerticesLinkedFromVertexAtIndex(
      std::uint64_t index) const;
  [[nodiscard]] Shared<VEQNumberArray> indicesOfVerticesLinkedToVertexAtIndex(
      std::uint64_t index) const;
  /// @}

  /// \name Questions about one vertex, by handle
  /// \ingroup ask
  /// What the index form answers for the handle's index. A handle of another network gives 0, 0.0
  /// or nothing; whether the handle is valid does not matter.
  /// @{
  [[nodiscard]] std::uint64_t countEdgesOfVertex(const VEQVertex& vertex) const;
  [[nodiscard]] std::uint64_t countInEdgesOfVertex(const VEQVertex& vertex) const;
  [[nodiscard]] std::uint64_t countToVerticesOfVertex(const VEQVertex& vertex) const;
  /// The out-count, unlike countFromVerticesOfVertexAtIndex.
  [[nodiscard]] std::uint64_t countFromVerticesOfVertex(const VEQVertex& vertex) const;

  [[nodiscard]] double calcDegreeOfVertex(const VEQVertex& vertex) const;
  [[nodiscard]] double calcInDegreeOfVertex(const VEQVertex& vertex) const;
  [[nodiscard]] double calcStrengthOfVertex(const VEQVertex& vertex) const;
  [[nodiscard]] double calcInStrengthOfVertex(const VEQVertex& vertex) const;
  [[nodiscard]] std::optional<VEQEdgeArray> edgesLinkedToVertex(const VEQVertex& vertex) const;
  [[nodiscard]] std::optional<VEQEdgeArray> edgesLinkedFromVertex(const VEQVertex& vertex) const;
  [[nodiscard]] std::optional<VEQVertexArray> verticesLinkedToVertex(const VEQVertex& vertex) const;
  [[nodiscard]] std::optional<VEQVertexArray> verticesLinkedFromVertex(
      const VEQVertex& vertex) const;
  [[nodiscard]] Shared<VEQNumberArray> indicesOfVerticesLinkedTo(const VEQVertex& vertex) const;
  [[nodiscard]] Shared<VEQNumberArray> indicesOfVerticesLinkedFrom(const VEQVertex& vertex) const;
  [[nodiscard]] Shared<VEQNumberArray> indicesOfEdgesLinkedToVertex(const VEQVertex& vertex) const;
  [[nodiscard]] Shared<VEQNumberArray> indicesOfEdgesLinkedFromVertex(
      const VEQVertex& vertex) const;
  /// @}

  /// \name Questions about the whole network
  /// \ingroup ask
  /// Arrays of one double for each vertex. O(n), strengths O(n + m).
  /// @{
  [[nodiscard]] Shared<VEQNumberArray> calcDegrees() const;
  /// Undirected: the degrees.
  [[nodiscard]] Shared<VEQNumberArray> calcInDegrees() const;
  /// The degrees on a network without edge weights. Sums are formed in double, in list order.
  [[nodiscard]] Shared<VEQNumberArray> calcStrengths() const;
  /// Undirected with edge weights: sums only if the network also has vertex weights, otherwise the
  /// degrees; use calcStrengths there.
  [[nodiscard]] Shared<VEQNumberArray> calcInStrengths() const;
  /// The n x n matrix, row-major, rows being sources: the weights of all edges from i to j (1.0
  /// without weights), summed as floats. Undirected networks give a symmetric matrix, in which a
  /// self-loop counts twice. The caller's buffer is overwritten; for null the result comes from
  /// std::calloc and is the caller's to std::free. std::bad_alloc where n x n floats cannot be.
  /// O(n^2 + m).
  float* buildAdjacencyMatrixInPointer(float* buffer) const;
  /// @}

  /// \name The xnet text format
  /// \ingroup files
  /// Described in docs/formats/xnet.md, with what it does not keep. Files and URLs are UTF-8; URLs
  /// are `file:` URLs or plain paths. Reading gives null for what cannot be read, is not UTF-8 or
  /// is no network. Writing returns false where it fails, and for text that is not UTF-8;
  /// atomically, the old file is then whole. O(length).
  /// @{
  [[nodiscard]] std::string formattedStringValue() const;
  [[nodiscard]] bool writeToFile_atomically(std::string_view path, bool atomically) const;
  [[nodiscard]] bool writeToURL_atomically(std::string_view url, bool atomically) const;
  [[nodiscard]] static Owned<VEQNetwork> initWithNetworkFormattedString(std::string_view text);
  [[nodiscard]] static Owned<VEQNetwork> initWithContentsOfFile(std::string_view path);
  [[nodiscard]] static Owned<VEQNetwork> initWithContentsOfURL(std::string_view url);
  [[nodiscard]] static Shared<VEQNetwork> networkWithNetworkFormattedString(std::string_view text);
  [[nodiscard]] static Shared<VEQNetwork> networkWithContentsOfFile(std::string_view path);
  [[nodiscard]] static Shared<VEQNetwork> networkWithContentsOfURL(std::string_view url);
  /// A network, despite the name. The spelling is part of the published interface.
  [[nodiscard]] static Shared<VEQNetwork> numberArrayWithContentsOfURL(std::string_view url);
  /// @}

  /// \name The Pajek format
  /// \ingroup files
  /// Described in docs/formats/pajek.md, with what it does not keep. Files are written in
  /// ISO-8859-1, and text that it cannot hold makes writing fail; reading recognises UTF-8, UTF-16
  /// with a mark and ISO-8859-1. Otherwise as for xnet.
  /// @{
  [[nodiscard]] std::string pajekFormattedStringValue() const;
  [[nodiscard]] bool writeToPajekFile_atomically(std::string_view path, bool atomically) const;
  [[nodiscard]] bool writeToPajekURL_atomically(std::string_view url, bool atomically) const;
  [[nodiscard]] static Owned<VEQNetwork> initWithNetworkPajekFormattedString(std::string_view text);
  [[nodiscard]] static Owned<VEQNetwork> initWithContentsOfPajekFile(std::string_view path);
  [[nodiscard]] static Owned<VEQNetwork> initWithContentsOfPajekURL(std::string_view url);
  [[nodiscard]] static Shared<VEQNetwork> networkWithNetworkPajekFormattedString(
      std::string_view text);
  [[nodiscard]] static Shared<VEQNetwork> networkWithContentsOfPajekFile(std::string_view path);
  [[nodiscard]] static Shared<VEQNetwork> networkWithContentsOfPajekURL(std::string_view url);
  /// A network. The spelling is part of the published interface.
  [[nodiscard]] static Shared<VEQNetwork> numverArrayWithContentsOfPajekURL(std::string_view url);
  /// @}

  /// \name Edge lists
  /// \ingroup files
  /// Described in docs/formats/edge_list.md. The tokens of a list are names of vertices, not
  /// indices. Vertices are numbered by first appearance, source before target, line by line. In a
  /// list without weights every other line is taken for the weight of the one before it. An empty
  /// or blank text throws std::out_of_range; no text gives no network.
  /// @{
  [[nodiscard]] static Owned<VEQNetwork> initWithEdgesListString_directed(
      std::optional<std::string_view> text, bool directed);
  [[nodiscard]] static Shared<VEQNetwork> networkWithEdgesListString_directed(
      std::optional<std::string_view> text, bool directed);
  /// Lines of indices, with the weight where the network is edge-weighted, ended by CR LF.
  [[nodiscard]] std::string edgesListFormattedStringValue() const;
  [[nodiscard]] bool writeToEdgesFile_atomically(std::string_view path, bool atomically) const;
  [[nodiscard]] bool writeToEdgesURL_atomically(std::string_view url, bool atomically) const;
  /// @}

  /// \name Construction from strings
  /// \ingroup build
  /// Texts hold one item a line; lines end at "\n" alone, so that a trailing one adds an empty
  /// line. A line of an edges string is two names with one blank between them; std::out_of_range
  /// for a line of fewer pieces. Names that no vertex has become vertex 0, and of several vertices
  /// with one name the first is meant. No network: texts of different lengths, weights that are not
  /// one for each line. Without a vertices string the vertices are the distinct names, by first
  /// appearance. O(length).
  /// @{
  [[nodiscard]] static Owned<VEQNetwork> initWithVerticesString_edgesString(
      std::string_view vertices, std::string_view edges);
  [[nodiscard]] static Owned<VEQNetwork> initWithVerticesString_edgesString_directed(
      std::string_view vertices, std::string_view edges, bool directed);
  [[nodiscard]] static Owned<VEQNetwork>
  initWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
      std::string_view vertices, std::string_view edges, bool directed,
      const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  [[nodiscard]] static Owned<VEQNetwork> initWithVerticesString_fromLinksString_toLinksString(
      std::optional<std::string_view> vertices, std::string_view from, std::string_view to);
  /// Undirected whatever it is given: use the full form.
  [[nodiscard]] static Owned<VEQNetwork>
  initWithVerticesString_fromLinksString_toLinksString_directed(
      std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
      bool directed);

  [[nodiscard]] static Owned<VEQNetwork>
  initWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
      std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
      bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);

  [[nodiscard]] static Shared<VEQNetwork> networkWithVerticesString_edgesString(
      std::string_view vertices, std::string_view edges);
  [[nodiscard]] static Shared<VEQNetwork> networkWithVerticesString_edgesString_directed(
      std::string_view vertices, std::string_view edges, bool directed);
  /// Takes its vertex weights for edge weights, too, and ignores its edge weights: use the
  /// constructor.
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
      std::string_view vertices, std::string_view edges, bool directed,
      const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);

  [[nodiscard]] static Shared<VEQNetwork> networkWithVerticesString_fromLinksString_toLinksString(
      std::optional<std::string_view> vertices, std::string_view from, std::string_view to);
  /// Undirected whatever it is given: use the full form.
  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVerticesString_fromLinksString_toLinksString_directed(
      std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
      bool directed);

  [[nodiscard]] static Shared<VEQNetwork>
  networkWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
      std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
      bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights);
  /// @}

  /// \name Archive and description
  /// \ingroup files
  /// The archive is described in docs/formats/archive.md. It keeps no vertices above the last one
  /// that has an edge, and a network with weights of one kind comes back with those of the other.
  /// O(n + m).
  /// @{
  /// std::invalid_argument, before anything is encoded, where a property cannot be encoded.
  void encodeWithCoder(VEQCoder& coder) const;
  /// What encodeWithCoder wrote; null where the coder holds no network.
  [[nodiscard]] static Owned<VEQNetwork> initWithCoder(VEQCoder& coder);
  [[nodiscard]] static Shared<VEQNetwork> networkWithCoder(VEQCoder& coder);
  /// Counts, flags and property keys, for people.
  [[nodiscard]] std::string description() const;
  /// The adjacency matrix as text, a line for each row. For small networks: O(n^2).
  [[nodiscard]] std::string VEQ_MatrixDebug() const;
  /// @}

  /// \name Model networks
  /// \ingroup models
  /// Undirected, without weights, drawn from the shared generator: the same seed gives the same
  /// network. The number of vertices follows from the edges: high vertices without edges are
  /// missing.
  /// @{
  /// Preferential attachment: each of `iterations` new vertices is linked to `degreeGrowth`
  /// different older ones, chosen with probability proportional to their degree (plus one for an
  /// initial vertex). No network where a new vertex could never find enough targets: degreeGrowth >
  /// initialVertices, or no initial vertices. (Barabasi and Albert, 1999.) Expected O(edges).
  [[nodiscard]] static Owned<VEQNetwork>
  initBarabasiNetworkWithInitialVertices_degreeGrowth_iterations(std::uint64_t initialVertices,
                                                                 std::uint64_t degreeGrowth,
                                                                 std::uint64_t iterations);
  /// The same model with a mean degree close to the given one: half of it, rounded down, for both
  /// initial vertices and growth. The spelling is part of the published interface.
  [[nodiscard]] static Owned<VEQNetwork> initBarabasiNetworkWitNumberOfVertices_approximateDegree(
      std::uint64_t count, std::uint64_t approximateDegree);
  /// Every pair is linked with probability degree / count: none for a degree that is negative or
  /// not a number, all for one of count or more. Whole batches of count x degree + 1 numbers are
  /// drawn, the next one as soon as one is used up, which shows in what is drawn later. (Erdos and
  /// Renyi, 1959; Gilbert, 1959.) O(count^2).
  [[nodiscard]] static Owned<VEQNetwork> initRandomNetworkWithNumberOfVertices_degree(
      std::uint64_t count, double degree);

  [[nodiscard]] static Shared<VEQNetwork>
  barabasiNetworkWithInitialVertices_degreeGrowth_iterations(std::uint64_t initialVertices,
                                                             std::uint64_t degreeGrowth,
                                                             std::uint64_t iterations);
  /// The spelling is part of the published interface.
  [[nodiscard]] static Shared<VEQNetwork> barabasiNetworkWitNumberOfVertices_approximateDegree(
      std::uint64_t count, std::uint64_t approximateDegree);

  [[nodiscard]] static Shared<VEQNetwork> randomNetworkWithNumberOfVertices_degree(
      std::uint64_t count, double degree);
  /// @}

  /// \name Models without a body
  /// \ingroup models
  /// Always null.
  /// @{
  [[nodiscard]] static Owned<VEQNetwork> initGeographicalNetworkWithNetwork_maximumDistance(
      const VEQNetwork& network, double maximumDistance);
  [[nodiscard]] static Owned<VEQNetwork>
  initGeographicalNetworkWithNetwork_positions_maximumDistance(const VEQNetwork& network,
                                                               const PropertyColumn* positions,
                                                               double maximumDistance);
  [[nodiscard]] static Owned<VEQNetwork> initRegularNetworkWithNumberOfVertices_bordered(
      std::uint64_t count, bool bordered);
  /// The spelling is part of the published interface.
  [[nodiscard]] static Owned<VEQNetwork>
  initWattzStrogatzNetworkWithNumberOfVertices_degree_reconnectionProbability(
      std::uint64_t count, std::int64_t degree, double reconnectionProbability);

  [[nodiscard]] static Shared<VEQNetwork> geographicalNetworkWithNetwork_maximumDistance(
      const VEQNetwork& network, double maximumDistance);
  [[nodiscard]] static Shared<VEQNetwork> geographicalNetworkWithNetwork_positions_maximumDistance(
      const VEQNetwork& network, const PropertyColumn* positions, double maximumDistance);
  [[nodiscard]] static Shared<VEQNetwork> regularNetworkWithNumberOfVertices_bordered(
      std::uint64_t count, bool bordered);
  /// The spelling is part of the published interface.
  [[nodiscard]] static Shared<VEQNetwork>
  wattzStrogatzNetworkWithNumberOfVertices_degree_reconnectionProbability(
      std::uint64_t count, std::int64_t degree, double reconnectionProbability);
  /// @}

  /// \name Merging
  /// \ingroup build
  /// Not built: both throw std::logic_error at once.
  /// @{
  static Owned<VEQNetwork> initByMergingNetworksInArray(
      const std::vector<Shared<VEQNetwork>>& networks);
  static Shared<VEQNetwork> networkByMergingNetworksInArray(
      const std::vector<Shared<VEQNetwork>>& networks);
  /// @}

  /// \name Connected components
  /// \ingroup ask
  /// Components are weakly connected parts, ordered by their lowest vertex; vertices and edges keep
  /// their order, and the properties are carried over. O(n + m) for each property.
  /// @{
  /// All of them, without weights. Writes "Loading Weighted Network? NO" to the diagnostic log once
  /// for each.
  [[nodiscard]] std::vector<Shared<VEQNetwork>> connectedSubNetworksArray() const;
  /// The one with the most vertices, the first of equals, with its weights. Writes lines about it
  /// to the diagnostic log.
  [[nodiscard]] Shared<VEQNetwork> largestConnectedSubNetwork() const;
  /// @}

 private:
  friend struct internal::CoreAccess;
  explicit VEQNetwork(std::unique_ptr<internal::NetworkCore> core);

  const std::unique_ptr<internal::NetworkCore> core_;
};

}  // namespace veq
