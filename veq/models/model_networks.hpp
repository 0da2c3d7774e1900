/// \file
/// Model networks with exactly so many vertices.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/models/random_state.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// What every model may be given. The same seed or state gives the same network on every platform.
///
/// All numbers come from pairs of draws, 62 bits, and are taken in blocks of 512 pairs, the last of
/// which is used up (but for the twins of the published models, whose draws are published). A state
/// is moved when the network has been made, and only then; the process's sequence has moved by the
/// blocks that were used also after a stop. \ingroup models
struct ModelOptions {
  /// Draws from this state and moves it. Otherwise from the process's sequence.
  RandomState* random = nullptr;
  /// Draws from a state of its own, RandomState::seeded(seed).
  std::optional<std::uint64_t> seed{};
  /// As in BuildOptions.
  std::optional<unsigned> threads{};
  Progress progress{};
};

/// \name Model networks
/// Without weights, and undirected unless said. Errors of kind kArgument name the argument and its
/// limits: "n = 0: give at least 1", "p = 1.5: give 0 to 1", "seed 0: ...", "a seed and a random
/// state: give one of them"; kMemory where memory could not hold the network, "n = 4000000, p = 1:
/// about 7999998000000 edges, more than memory holds"; kStopped.
/// \ingroup models
/// @{

/// Each pair of different vertices is linked with probability p: G(n, p). With `directed` each
/// ordered pair. Edges in the order of their pairs, n up to 2^31. The pairs between two links are
/// passed over at once: expected O(n + m), each probability being right within 2^-57.
[[nodiscard]] VEQ_EXPORT Result<Network> gnpNetwork(std::uint64_t n, double p,
                                                    const ModelOptions& options = {},
                                                    bool directed = false);

/// m edges between different pairs of different vertices, every such set alike: G(n, m). Edges in
/// the order of their pairs, n up to 2^31. "m = 7: give at most 6, the pairs of 4 vertices".
/// Expected O(n + m log m).
[[nodiscard]] VEQ_EXPORT Result<Network> gnmNetwork(std::uint64_t n, std::uint64_t m,
                                                    const ModelOptions& options = {},
                                                    bool directed = false);

/// Preferential attachment of Barabási and Albert: vertex m is linked to all before it, and each
/// later one to m different older vertices, chosen one after the other with probabilities
/// proportional to the degrees before it came, again where one has been chosen already. Edges lead
/// from the newer vertex, in order. "m = 4: give at most n - 1 = 3". Expected O(n m).
[[nodiscard]] VEQ_EXPORT Result<Network> barabasiAlbertNetwork(std::uint64_t n, std::uint64_t m,
                                                               const ModelOptions& options = {});

/// The network that VEQNetwork::barabasiNetworkWitNumberOfVertices_approximateDegree() grows, with
/// the same draws of any source: degree / 2 vertices, and n - degree / 2 more that are linked to so
/// many different older ones each. A single vertex where either is 0. It cannot be stopped.
/// Expected O(n degree).
[[nodiscard]] VEQ_EXPORT Result<Network> preferentialAttachmentNetwork(
    std::uint64_t n, std::uint64_t degree, const ModelOptions& options = {});

/// The network that VEQNetwork::randomNetworkWithNumberOfVertices_degree() draws, with the same
/// draws of any source: each pair is linked with probability degree / n, and vertices after the
/// last one that is linked are left out. It cannot be stopped; std::bad_alloc where no memory could
/// hold it. O(n^2), a tenth of a nanosecond a pair: gnpNetwork() is for large ones.
[[nodiscard]] VEQ_EXPORT Result<Network> uniformRandomNetwork(std::uint64_t n, double degree,
                                                              const ModelOptions& options = {});

/// How a network with given degrees is drawn.
/// \ingroup models
enum class DegreeLaw {
  kPairing,  ///< The ends of all edges are paired, every pairing alike: loops and parallel edges
             ///< occur, and a loop counts twice.
  kSimple,   ///< No loops and parallel edges: one such network (of Havel and Hakimi), then rewired
             ///< with ten tries for each edge, which tends to every such network alike.
};

/// The configuration model: vertex v has degrees[v] edges. "degrees: no vertex, give at least one",
/// "degrees: their sum 7 is odd", "degrees: no network without loops and parallel edges has them".
/// O(n + m), and some O(log n) more for kSimple.
[[nodiscard]] VEQ_EXPORT Result<Network> configurationNetwork(
    std::span<const std::uint64_t> degrees, DegreeLaw law = DegreeLaw::kPairing,
    const ModelOptions& options = {});

/// The small world of Watts and Strogatz: each vertex of a ring is linked to the k next ones on
/// each side. Then, round by round (the next ones of all vertices, the second next, ...), each edge
/// is drawn again with probability p: it keeps its first end, and gets a vertex to which that is
/// not linked, each alike. It stays where there is none. "k = 5: give at most (n - 1) / 2 = 4".
/// Expected O(n k).
[[nodiscard]] VEQ_EXPORT Result<Network> wattsStrogatzNetwork(std::uint64_t n, std::uint64_t k,
                                                              double p,
                                                              const ModelOptions& options = {});

/// The grid of any number of dimensions, each vertex linked to the next one in each, and with
/// `periodic` the last to the first where a dimension has more than two. Vertex x + sizes[0] y +
/// ... is at (x, y, ...). Nothing is drawn. "sizes: none, give at least one", "sizes[1] = 0: give
/// at least 1". O(n) for each dimension.
[[nodiscard]] VEQ_EXPORT Result<Network> latticeNetwork(std::span<const std::uint64_t> sizes,
                                                        bool periodic = false,
                                                        const ModelOptions& options = {});

/// Vertices anywhere in the unit square (or cube, with 3 dimensions), linked where they are no
/// farther apart than the radius. Their places are the column "Position" of vectors. Coordinates
/// are single draws x 2^-31, and distances are compared in integers, the radius counting as a
/// multiple of 2^-31 that is not above it. "radius = -1: give 0 to 2", "dimensions = 4: give 2 or
/// 3". Expected O(n + m).
[[nodiscard]] VEQ_EXPORT Result<Network> geometricNetwork(std::uint64_t n, double radius,
                                                          const ModelOptions& options = {},
                                                          unsigned dimensions = 2);

/// The stochastic block model: blocks of sizes[b] vertices, one after the other; two vertices of
/// the blocks a and b are linked with probability probabilities[a x blocks + b], which must be
/// symmetric unless the network is directed. Expected O(n + m + blocks^2). "probabilities: 5 for 2
/// blocks, give 4", "probabilities[1] = 2: give 0 to 1", "probabilities[1] and probabilities[2]
/// differ".
[[nodiscard]] VEQ_EXPORT Result<Network> blockNetwork(std::span<const std::uint64_t> sizes,
                                                      std::span<const double> probabilities,
                                                      const ModelOptions& options = {},
                                                      bool directed = false);

/// The network with its edges rewired and all degrees kept (of a directed one both kinds). Each of
/// the `tries` takes two edges, each pair alike, and of undirected ones the second either way
/// round, and lets them exchange their targets unless that would make a loop or an edge that is
/// there already. Weights and columns stay with their vertex or edge. Columns are copied. Expected
/// O(n + m + tries). At most 2^32 - 1 vertices.
[[nodiscard]] VEQ_EXPORT Result<Network> rewiredNetwork(const Network& network, std::uint64_t tries,
                                                        const ModelOptions& options = {});
/// @}

}  // namespace veq
