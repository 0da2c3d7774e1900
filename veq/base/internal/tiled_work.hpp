/// \file
/// Work on very many elements, tile by tile, by several threads.
#pragma once

#include <algorithm>
#include <cstdint>

#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/team.hpp"

namespace veq::internal {

struct TiledWork {
  std::uint64_t elements;
  std::uint64_t tile;   ///< The elements that one thread takes at a time.
  std::uint64_t units;  ///< What all of it costs, in units of Team::worthSharing.
  std::uint64_t told;   ///< What a pace is told of it in the end.
};

template <class F>
[[gnu::noinline]] void forEachOfManyTiles(const TiledWork& work, Team& team, Pace* pace, F f) {
  constexpr std::uint64_t kTilesOfThread = 8;
  const std::uint64_t tiles = work.elements / work.tile + (work.elements % work.tile != 0);
  const std::uint64_t atOnce = !pace                 ? tiles
                               : team.threads() == 1 ? 1
                                                     : kTilesOfThread * team.threads();
  // Of the work, what lies before a tile.
  const auto partBefore = [tiles](std::uint64_t all, std::uint64_t tile) {
    return all / tiles * tile + all % tiles * tile / tiles;
  };
  for (std::uint64_t first = 0; first < tiles;) {
    const std::uint64_t next = first + std::min(atOnce, tiles - first);
    team.forEachPiece(next - first, partBefore(work.units, next) - partBefore(work.units, first),
                      [&](std::uint64_t i) {
                        const std::uint64_t begin = (first + i) * work.tile;
                        f(begin, begin + std::min(work.tile, work.elements - begin));
                      });
    if (pace) pace->advance(partBefore(work.told, next) - partBefore(work.told, first));
    first = next;
  }
}

/// Calls f(begin, end) for each tile. A pace is asked between some tiles and the next by this
/// thread, when all threads have met.
template <class F>
[[gnu::always_inline]] inline void forEachSharedTile(const TiledWork& work, Team& team, Pace* pace,
                                                     F f) {
  // Nearly all networks are small.
  if (work.elements > work.tile) return forEachOfManyTiles(work, team, pace, f);
  f(std::uint64_t{0}, work.elements);
  if (pace) pace->advance(work.told);
}

/// The same where the elements are the units and are what is told.
template <class F>
[[gnu::always_inline]] inline void forEachSharedTile(std::uint64_t elements, std::uint64_t tile,
                                                     Team& team, Pace* pace, F f) {
  forEachSharedTile(TiledWork{elements, tile, elements, elements}, team, pace, f);
}

/// Calls f(begin, count) for parts of some elements, one for each thread where the work is worth
/// it. For what is counted or put there from a list in no order, all of which is read for each
/// part; so they are eight at most.
template <class F>
void forEachShare(std::uint64_t elements, std::uint64_t work, Team& team, F f) {
  constexpr std::uint64_t kMostReadings = 8;
  const std::uint64_t parts =
      work < Team::worthSharing ? 1 : std::min<std::uint64_t>(team.threads(), kMostReadings);
  const std::uint64_t some = elements / parts + 1;
  team.forEachPiece(parts, work, [&](std::uint64_t part) {
    const std::uint64_t begin = std::min(part * some, elements);
    f(begin, std::min(some, elements - begin));
  });
}

}  // namespace veq::internal
