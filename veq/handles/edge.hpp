/// \file
/// An edge of a network.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/handles/handle.hpp"
#include "veq/handles/vertex.hpp"
#include "veq/numeric/keyed_table.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq {

/// An edge handle forwards every question to its network, at its index. On an invalid handle they
/// throw std::invalid_argument and change nothing; the text depends on the operation, and is
/// "The Related Network of this edge is not valid." or, in the second group,
/// "The Related Network of this vertex is not valid.".
/// \ingroup handles
class VEQ_EXPORT VEQEdge final : public Handle<VEQEdge> {
 public:
  using Handle::Handle;

  /// \name Operations whose text says "edge"
  /// @{
  /// The name as text; for the null marker "<null>".
  [[nodiscard]] std::string description() const;
  /// The entry of the "Name" column, which is the null marker where it was never set; when the
  /// network has no such column, the names of both ends as in "0 -> 1" (directed) or "A <-> B".
  [[nodiscard]] PropertyValue name() const;
  /// Sets the entry of the "Name" column, which is made where it is missing.
  void setName(std::string_view name) const;

  /// 1.0 on a network without edge weights.
  [[nodiscard]] float weight() const;
  /// As VEQNetwork::setWeightValue_atEdgeIndex: the first weight makes all others 0.0.
  void setWeight(float weight) const;

  /// The values under every key.
  [[nodiscard]] PropertyMap properties() const;
  /// The whole map of properties(): the key is not used. Look the key up in the result.
  [[nodiscard]] PropertyMap propertyForKey(std::string_view key) const;
  /// Sets the value under the key, as the network does for this index.
  void setProperty_forKey(const PropertyValue& value, std::string_view key) const;
  /// Sets all of them, or none where one cannot be set.
  void setProperties(const PropertyMap& properties) const;
  /// @}

  /// \name Operations whose text says "vertex"
  /// @{
  /// In the order of their first setting.
  [[nodiscard]] std::vector<std::string> keysForProperties() const;
  /// Does nothing; VEQNetwork::blockEditing blocks the network.
  void blockEditing() const;
  /// What the network answers; weighted are its edges.
  [[nodiscard]] bool isEditable() const;
  [[nodiscard]] bool isDirected() const;
  [[nodiscard]] bool isWeighted() const;
  /// The ends, in an undirected network those of its making.
  [[nodiscard]] Shared<VEQVertex> fromVertex() const;
  [[nodiscard]] Shared<VEQVertex> toVertex() const;
  /// The other end as seen from the vertex: the to-vertex for the from-vertex, and the from-vertex
  /// for whatever else, also for a vertex that is no end of this edge.
  [[nodiscard]] Shared<VEQVertex> vertexFromVertex(const VEQVertex& vertex) const;
  /// @}

 private:
  /// The network, once the guard has passed.
  [[nodiscard]] VEQNetwork& networkOfEdge() const;
  [[nodiscard]] VEQNetwork& networkOfVertex() const;
};

}  // namespace veq
