/// \file
/// What all model networks share.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/models/internal/draw_blocks.hpp"
#include "veq/models/model_networks.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Up to so many vertices the number of pairs and every place among them fit into 62 bits.
inline constexpr std::uint64_t kMostPaired = std::uint64_t{1} << 31;

/// "p = 0.25", in the shortest form.
[[nodiscard]] std::string namedNumber(const std::string& name, double value);
[[nodiscard]] inline std::string namedNumber(const std::string& name, std::uint64_t value) {
  return name + " = " + std::to_string(value);
}

/// "n = 0: give at least 1", and beyond the most.
[[nodiscard]] std::optional<Error> countError(std::uint64_t n, std::uint64_t most);
/// Outside 0 to 1.
[[nodiscard]] std::optional<Error> probabilityError(const std::string& name, double p);
/// A network that memory could not hold. `arguments` says of what. Vertices without edges take
/// address space only, but for what a model itself keeps of each.
[[nodiscard]] std::optional<Error> memoryError(const std::string& arguments, double vertices,
                                               double edges, double bytesPerVertex = 0);

/// Ends of edges that are being found.
struct GrowingEnds {
  RawVector<std::uint64_t> from;
  RawVector<std::uint64_t> to;

  void reserve(std::uint64_t edges) {
    from.reserve(edges);
    to.reserve(edges);
  }
  void add(std::uint64_t source, std::uint64_t target) {
    from.push_back(source);
    to.push_back(target);
  }
  [[nodiscard]] std::uint64_t count() const { return from.size(); }
};

[[nodiscard]] NetworkDraft draftOf(std::uint64_t vertices, GrowingEnds ends, bool directed = false);

/// The network of the draft that `make(state)` returns, with the state that the options name, or
/// null for the process's sequence. The work may throw Stopped.
template <class Make>
[[nodiscard]] Result<Network> generatedFrom(const ModelOptions& options, Make make) {
  if (options.random && options.seed) {
    return argumentError("a seed and a random state: give one of them");
  }
  std::optional<RandomState> state;
  if (options.random) state = *options.random;
  if (options.seed) {
    const Result<RandomState> seeded = RandomState::seeded(*options.seed);
    if (!seeded) return seeded.error();
    state = seeded.value();
  }
  const OwnParallelism own(options.threads);
  try {
    Network network(CoreAccess::buildShared(make(state ? &*state : nullptr)));
    if (options.random) *options.random = *state;
    return network;
  } catch (const std::out_of_range& end) {  // of a substream
    return argumentError(end.what());
  } catch (...) {
    return endOfWork();
  }
}

/// The same of `make(draws)`, which draws in blocks.
template <class Make>
[[nodiscard]] Result<Network> generated(const ModelOptions& options, Make make) {
  return generatedFrom(options, [&make](RandomState* state) {
    DrawBlocks draws(state);
    return make(draws);
  });
}

}  // namespace veq::internal
