#pragma once

#include <cstdint>
#include <string_view>

#include "fuzz/support/check.hpp"
#include "fuzz/support/network_image.hpp"
#include "veq/network/network.hpp"

namespace veq::fuzz {

/// What holds for every network, wherever it comes from: counts agree with lists, every index is
/// below its count, degrees sum to the number of edges (twice that in an undirected network), lists
/// are those that plain loops over the edges give, and so are sums and matrix; every value
/// of every column can be read.
void checkNetwork(const VEQNetwork& network);

/// What checkNetwork holds against the given edges and weights.
void checkTopology(const VEQNetwork& network, const test::SlowNetwork& expected);

/// An index beyond the last one is refused as documented.
void checkBounds(const VEQNetwork& network);

/// Components share out the vertices and edges.
void checkComponents(const VEQNetwork& network);

/// Writes the network, reads the text or archive again and compares what comes back with what
/// docs/formats says must come back: the network less the documented losses, or no network for a
/// documented cause.
/// @{
void checkXnetRoundTrip(const VEQNetwork& network);
void checkPajekRoundTrip(const VEQNetwork& network);
void checkEdgeListRoundTrip(const VEQNetwork& network);
void checkArchiveRoundTrip(const VEQNetwork& network);
/// The one of these that the choice stands for, and that it does not change the network.
void checkRoundTrip(const VEQNetwork& network, std::uint64_t choice);
/// @}

/// "*Vertices 4000000000" is a legal file of that many vertices, and a machine with the memory for
/// them is right to fill it. Targets leave out inputs that ask for numbers of vertices between
/// these two: they would spend their time on zeros. Beyond the second there is no such machine, and
/// what the library does about it is worth a look again.
inline constexpr std::uint64_t kManyVertices = 300;
inline constexpr std::uint64_t kImpossibleVertices = std::uint64_t{1} << 60;
[[nodiscard]] inline bool isWorthBuilding(std::uint64_t vertices) {
  return vertices <= kManyVertices || vertices >= kImpossibleVertices;
}

/// Whether every integer in the text may stand for a number of vertices: no digits in it are a
/// number that is not worth building.
[[nodiscard]] bool holdsWorthyNumbers(std::string_view text);

}  // namespace veq::fuzz
