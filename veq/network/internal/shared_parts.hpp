/// \file
/// Something for each component of a network, made by several threads.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/tiled_work.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/network/internal/components.hpp"

namespace veq::internal {

/// Calls make(number, pace) for each part, on as many threads as parallelism() says where there is
/// enough to do. The pace that large parts are given is this thread's, which is told of as many
/// units as `told` for the others; small ones are given one that nobody follows.
template <class Make>
void forEachPart(const Partition& parts, Pace& pace, std::uint64_t told, Make make) {
  // In vertices and edges, and what any network takes.
  constexpr std::uint64_t kOfAnyPart = 64;
  constexpr std::uint64_t kPiece = std::uint64_t{1} << 14;
  const auto isLarge = [](const Part& part) { return part.edges.size() >= Team::worthSharing; };
  std::vector<std::uint64_t> begins{0};
  std::uint64_t work = 0;
  std::uint64_t begun = 0;
  for (std::uint64_t c = 0; c < parts.count(); ++c) {
    const Part part = parts[c];
    // What is made of these is made by all threads together.
    if (isLarge(part)) {
      make(c, pace);
      continue;
    }
    work += kOfAnyPart + part.vertices.size() + part.edges.size();
    if (work - begun < kPiece) continue;
    begins.push_back(c + 1);
    begun = work;
  }
  begins.push_back(parts.count());
  Team team(work >= Team::worthSharing ? parallelism() : 1);
  const TiledWork pieces{begins.size() - 1, 1, work, told};
  forEachSharedTile(pieces, team, &pace, [&](std::uint64_t piece, std::uint64_t) {
    const Progress nobody;
    Pace unwatched(nobody, 0);
    for (std::uint64_t c = begins[piece]; c < begins[piece + 1]; ++c) {
      if (!isLarge(parts[c])) make(c, unwatched);
    }
  });
}

}  // namespace veq::internal
