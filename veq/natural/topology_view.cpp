#include "veq/natural/topology_view.hpp"

#include <cstddef>

#include "veq/natural/network.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {
namespace {

template <class Index>
const internal::Topology<Index>& topologyOf(const internal::TopologyShare& share) {
  return static_cast<const internal::Topology<Index>&>(*share.get());
}

// The lists of the edges that arrive; in an undirected network all of a vertex.
template <class Index>
const internal::AdjacencyLists<Index>& arriving(const internal::Topology<Index>& topology) {
  return topology.in ? *topology.in : topology.out;
}

}  // namespace

TopologyView::TopologyView(const internal::HeldTopology& held)
    : vertices_(held.vertices),
      edges_(held.edges),
      directed_(held.directed),
      narrow_(held.narrow),
      share_(held.share) {}

template <class Index>
TopologyArrays<Index> TopologyView::arrays() const {
  const auto& topology = topologyOf<Index>(share_);
  const auto edges = static_cast<std::size_t>(edges_);
  return {{topology.from.data(), edges},
          {topology.to.data(), edges},
          topology.out.view(),
          arriving(topology).view()};
}

template <class Index>
PackedTopology<Index> TopologyView::packed() const {
  const auto& topology = topologyOf<Index>(share_);
  return {topology.out.packed(), arriving(topology).packed()};
}

template TopologyArrays<std::uint32_t> TopologyView::arrays() const;
template TopologyArrays<std::uint64_t> TopologyView::arrays() const;
template PackedTopology<std::uint32_t> TopologyView::packed() const;
template PackedTopology<std::uint64_t> TopologyView::packed() const;

TopologyView Network::topology() const {
  return TopologyView(internal::CoreAccess::of(*published_).store.hold());
}

}  // namespace veq
