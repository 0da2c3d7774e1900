/// \file
/// What all natural operations that make networks share.
#pragma once

#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "veq/base/internal/pace.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"
#include "veq/natural/spans.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// How often building a network goes over its edges, about; all of this is the work of a Pace.
constexpr std::uint64_t kBuildingPasses = 10;

/// Borrows what lies in memory as it is needed, and converts the rest.
[[nodiscard]] IndexList listOf(const IndexSpan& indices, Pace* pace = nullptr);

/// Weights as floats; how many of them these do not hold, and the first of them.
struct RoundedWeights {
  Weights values;
  std::uint64_t rounded = 0;
  std::optional<std::uint64_t> firstRounded;
};
[[nodiscard]] RoundedWeights roundedWeights(const NumberSpan& weights, Pace* pace = nullptr);

/// The network of a draft whose weights are one for each vertex and edge.
[[nodiscard]] Network networkOf(NetworkDraft draft);

/// Indices of vertices or edges that go into a new network; null for all.
using Chosen = const std::vector<std::uint64_t>*;

[[nodiscard]] std::optional<Weights> weightsOf(const std::optional<HeldWeights>& weights,
                                               Chosen chosen);
/// Copies of all columns, one value for each that was chosen among so many, unset where a column
/// ends before it.
[[nodiscard]] PropertyTable columnsOf(const PropertyTable& columns, std::uint64_t count,
                                      Chosen chosen, Pace& pace);

/// The ends of all edges, and of chosen ones whose ends are at the given positions.
struct OwnEnds {
  RawVector<std::uint64_t> from;
  RawVector<std::uint64_t> to;
};
[[nodiscard]] OwnEnds endsOf(const NetworkCore& core);

/// How a new network differs from the one that it is made of.
struct Derivation {
  OwnEnds ends;
  bool directed = false;
  Chosen vertices = nullptr;
  Chosen edges = nullptr;
  /// In the place of those of the chosen edges.
  std::optional<Weights> edgesWeights;
  /// Behind the chosen ones.
  std::uint64_t moreVertices = 0;
};
[[nodiscard]] Network derived(const NetworkCore& core, Derivation derivation, Pace& pace);

/// The network of these vertices, in their order and each once, and of all edges among them.
[[nodiscard]] DerivedNetwork inducedBy(const NetworkCore& core, std::vector<std::uint64_t> vertices,
                                       Pace& pace);

}  // namespace veq::internal
