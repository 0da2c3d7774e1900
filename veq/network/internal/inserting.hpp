/// \file
/// Inserting edges, for published and natural operations.
#pragma once

#include "veq/base/internal/pace.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Appends edges whose ends are vertices, with weights of 1 where there are weights, and columns
/// that are not set. The ends may lie in a column of the network. Whoever gives a pace may stop it,
/// as AdjacencyStore::insert says; the network is then as it was.
void insertEdges(NetworkCore& core, const EdgeEnds& edges, Pace* pace = nullptr);

}  // namespace veq::internal
