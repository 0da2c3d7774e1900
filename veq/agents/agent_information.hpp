/// \file
/// What a group of agents keeps about the part of the network that its walks have reached.
#pragma once

#include <cstdint>

#include "veq/base/export.hpp"

namespace veq {

/// A plain value; copying one copies the buffer's address.
/// \ingroup walks
struct VEQ_EXPORT VEQAgentInformation {
  /// One byte per vertex of the network, 1 once an agent has stepped onto the vertex; from
  /// std::calloc, or null.
  unsigned char* visitedVertices;
  /// Whether a walk met its reach target.
  bool finished;
  /// Steps taken under a reach target.
  std::uint64_t walkCount;
};

/// A record of no walk: without a buffer, not finished, no steps.
/// \ingroup walks
[[nodiscard]] VEQ_EXPORT VEQAgentInformation newVEQAgentInformation();

/// Releases the record's buffer with std::free. The caller's record still holds its address.
/// \ingroup walks
VEQ_EXPORT void deleteVEQAgentInformation(VEQAgentInformation information);

}  // namespace veq
