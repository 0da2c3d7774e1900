/// \file
/// A vertex of a network.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/handles/handle.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq {

class VEQEdge;
template <class Kind>
class HandleArray;
/// Arrays of vertex handles and of edge handles.
/// \ingroup handles
using VEQVertexArray = HandleArray<class VEQVertex>;
using VEQEdgeArray = HandleArray<VEQEdge>;

/// A vertex handle forwards every question to its network, at its index. On an invalid handle all
/// of them throw std::invalid_argument, "The Related Network of this vertex is not valid.", and
/// change nothing. A handle made by hand for an index that the network lacks raises what the
/// network's operation raises.
/// \ingroup handles
class VEQ_EXPORT VEQVertex final : public Handle<VEQVertex> {
 public:
  using Handle::Handle;

  /// The name as text; for the null marker "<null>".
  [[nodiscard]] std::string description() const;
  /// The entry of the "Name" column, which is the null marker where it was never set; the index in
  /// decimal digits when the network has no such column.
  [[nodiscard]] PropertyValue name() const;
  /// Sets the entry of the "Name" column, which is made where it is missing.
  void setName(std::string_view name) const;

  /// 1.0 on a network without vertex weights.
  [[nodiscard]] float weight() const;
  /// As VEQNetwork::setWeightValue_atVertexIndex: the first weight makes all others 0.0.
  void setWeight(float weight) const;

  /// The values under every key.
  [[nodiscard]] PropertyMap properties() const;
  /// The whole map of properties(): the key is not used. Look the key up in the result.
  [[nodiscard]] PropertyMap propertyForKey(std::string_view key) const;
  /// Sets the value under the key, as the network does for this index.
  void setProperty_forKey(const PropertyValue& value, std::string_view key) const;
  /// Sets all of them, or none where one cannot be set.
  void setProperties(const PropertyMap& properties) const;
  /// In the order of their first setting.
  [[nodiscard]] std::vector<std::string> keysForProperties() const;

  /// Does nothing; VEQNetwork::blockEditing blocks the network.
  void blockEditing() const;
  /// What the network answers; weighted are its vertices.
  [[nodiscard]] bool isEditable() const;
  [[nodiscard]] bool isDirected() const;
  [[nodiscard]] bool isWeighted() const;

  /// \name Neighbourhood
  /// In list order, repetitions included: what VEQNetwork answers for this index.
  /// @{
  [[nodiscard]] std::uint64_t countEdges() const;
  [[nodiscard]] std::uint64_t countInEdges() const;
  [[nodiscard]] std::uint64_t countNeighborVertices() const;
  [[nodiscard]] std::uint64_t countInNeighborVertices() const;
  [[nodiscard]] VEQEdgeArray edges() const;
  [[nodiscard]] VEQVertexArray neighborVertices() const;
  /// Vertices, the same as inNeighborVertices(); VEQNetwork::edgesLinkedToVertex gives the edges.
  [[nodiscard]] VEQVertexArray inEdges() const;

  [[nodiscard]] VEQVertexArray inNeighborVertices() const;
  /// Element k of the lists above; std::out_of_range past the end. O(1).
  [[nodiscard]] Shared<VEQEdge> edgeAtIndex(std::uint64_t k) const;
  [[nodiscard]] Shared<VEQVertex> nextVertexAtIndex(std::uint64_t k) const;
  [[nodiscard]] Shared<VEQEdge> inEdgeAtIndex(std::uint64_t k) const;
  /// The spelling is part of the published interface.
  [[nodiscard]] Shared<VEQVertex> previousVertexAtIntex(std::uint64_t k) const;
  /// @}

 private:
  /// The network, once the guard has passed.
  [[nodiscard]] VEQNetwork& network() const;
};

}  // namespace veq
