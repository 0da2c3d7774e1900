// The two published models with the draws of any source.

#include <algorithm>
#include <optional>
#include <utility>

#include "veq/models/internal/generating.hpp"
#include "veq/models/internal/preferential_attachment.hpp"
#include "veq/models/internal/random_network.hpp"

namespace veq {

using internal::NetworkDraft;
using internal::RandomSource;

namespace {

NetworkDraft drafted(std::optional<NetworkDraft> draft) {
  if (!draft) throw std::bad_alloc();
  return std::move(*draft);
}

}  // namespace

Result<Network> preferentialAttachmentNetwork(std::uint64_t n, std::uint64_t degree,
                                              const ModelOptions& options) {
  const std::uint64_t growth = std::min(degree / 2, n);
  if (const auto error = internal::memoryError(
          internal::namedNumber("n", n) + ", " + internal::namedNumber("degree", degree),
          static_cast<double>(n), static_cast<double>(growth) * static_cast<double>(n - growth))) {
    return *error;
  }
  return internal::generatedFrom(options, [&](RandomState* state) {
    return drafted(
        internal::preferentialAttachment(growth, growth, n - growth, RandomSource(state)));
  });
}

Result<Network> uniformRandomNetwork(std::uint64_t n, double degree, const ModelOptions& options) {
  return internal::generatedFrom(options, [&](RandomState* state) {
    return drafted(internal::randomNetwork(n, degree, RandomSource(state)));
  });
}

}  // namespace veq
