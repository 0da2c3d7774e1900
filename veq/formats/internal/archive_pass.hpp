/// \file
/// Archives, whose edges are passed on and not kept.
#pragma once

#include <cstdint>

#include "veq/base/internal/byte_stream.hpp"
#include "veq/natural/walk_network.hpp"

namespace veq::internal {

/// What the entries before the edges say, and where these are.
struct ArchiveHead {
  bool directed = false;
  std::uint64_t vertices = 0;
  std::uint64_t edges = 0;
  /// The bytes before the first source and before the first target.
  std::uint64_t sources = 0;
  std::uint64_t targets = 0;
};

/// Of an archive that keeps everything, as the library writes it: with the ends behind what tells
/// of them. Throws Error.
[[nodiscard]] ArchiveHead readArchiveHead(ByteStream& bytes);

/// Gives the edges to the receiver, some at a time, from two streams of the same archive.
void readArchiveEdges(const ArchiveHead& head, ByteStream& ofSources, ByteStream& ofTargets,
                      const EdgeReceiver& receiver);

}  // namespace veq::internal
