#include <vector>

#include "veq/models/internal/generating.hpp"

namespace veq {
namespace {

using internal::GrowingEnds;
using internal::Pace;

constexpr std::uint64_t kVerticesPerLook = 16384;

// Whether the last vertex of a dimension is linked to the first, not being its neighbour already.
bool closes(std::uint64_t size, bool periodic) { return periodic && size > 2; }

GrowingEnds latticeEnds(std::span<const std::uint64_t> sizes, bool periodic, std::uint64_t n,
                        std::uint64_t edges, Pace& pace) {
  GrowingEnds ends;
  ends.reserve(edges);
  std::vector<std::uint64_t> place(sizes.size());
  for (std::uint64_t v = 0; v < n; ++v) {
    if (v % kVerticesPerLook == 0) pace.reach(v);
    std::uint64_t stride = 1;
    for (std::size_t d = 0; d < sizes.size(); ++d) {
      if (place[d] + 1 < sizes[d]) {
        ends.add(v, v + stride);
      } else if (closes(sizes[d], periodic)) {
        ends.add(v, v - stride * place[d]);
      }
      stride *= sizes[d];
    }
    for (std::size_t d = 0; d < sizes.size(); ++d) {
      if (++place[d] < sizes[d]) break;
      place[d] = 0;
    }
  }
  return ends;
}

}  // namespace

Result<Network> latticeNetwork(std::span<const std::uint64_t> sizes, bool periodic,
                               const ModelOptions& options) {
  if (sizes.empty()) return internal::argumentError("sizes: none, give at least one");
  double vertices = 1.0;
  for (std::size_t d = 0; d < sizes.size(); ++d) {
    if (sizes[d] == 0) {
      return internal::argumentError("sizes[" + std::to_string(d) + "] = 0: give at least 1");
    }
    vertices *= static_cast<double>(sizes[d]);
  }
  double edges = 0.0;
  for (const std::uint64_t size : sizes) {
    const std::uint64_t along = closes(size, periodic) ? size : size - 1;
    edges += vertices / static_cast<double>(size) * static_cast<double>(along);
  }
  if (auto error = internal::memoryError("sizes", vertices, edges)) return *error;
  return internal::generated(options, [&](internal::DrawBlocks&) {
    const auto n = static_cast<std::uint64_t>(vertices);
    Pace pace(options.progress, n);
    return internal::draftOf(
        n, latticeEnds(sizes, periodic, n, static_cast<std::uint64_t>(edges), pace));
  });
}

}  // namespace veq
