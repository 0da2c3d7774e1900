/// \file
/// The parts into which a network falls.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// How the vertices of a component are connected: by paths whatever the direction of edges, or by
/// paths there and back. Undirected, both are the same.
/// \ingroup ask
enum class Connection { kWeak, kStrong };

/// Which component each vertex is in. Components are numbered by their lowest vertex.
/// \ingroup ask
struct ComponentLabels {
  /// For each vertex the number of its component.
  std::vector<std::uint64_t> labels;
  std::vector<std::uint64_t> sizes;
};

/// Makes no networks and says nothing to the diagnostic log. (Strong ones: Tarjan, 1972.) O(n + m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT ComponentLabels components(const Network& network,
                                                    Connection connection = Connection::kWeak);

/// The same for who follows it or may stop it. The only error is a stop.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<ComponentLabels> components(const Network& network,
                                                            Connection connection,
                                                            const Progress& progress);

/// The components as networks of their own, in the order of their numbers, with the weights and
/// columns of their vertices and edges, which keep their order. An edge from one strong component
/// to another is in none. The only error is a stop. O(n + m), and as much for each column.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<std::vector<DerivedNetwork>> componentNetworks(
    const Network& network, Connection connection = Connection::kWeak,
    const ChangeOptions& options = {});

/// The component with the most vertices, the first of equals; of nothing, nothing. The only error
/// is a stop. O(n + m), and as much for each column.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<DerivedNetwork> largestComponent(
    const Network& network, Connection connection = Connection::kWeak,
    const ChangeOptions& options = {});

}  // namespace veq
