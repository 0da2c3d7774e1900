#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "veq/agents/internal/choice.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// What choices by weight look up.
class WeightSums {
 public:
  /// Those of the network as it is. They are made by whoever asks first, and again after its edges
  /// or their weights have changed; all groups on it share them. Null where there is a wrong
  /// weight, std::bad_alloc where memory is lacking. O(n + m) where they are to be made. Safe for
  /// concurrent callers.
  [[nodiscard]] static Shared<const WeightSums> of(const NetworkCore& core);

  /// The first edge whose weight is no finite number from 0 up.
  [[nodiscard]] static std::optional<std::uint64_t> wrongWeight(const NetworkCore& core);

  [[nodiscard]] WeightedChoice choice() const {
    return {std::span(entries_.data(), entries_.size())};
  }

  /// Only of() makes them.
  WeightSums(const NetworkCore& core, Block<WeightedChoice::Entry> entries);

 private:
  [[nodiscard]] bool areOf(const NetworkCore& core) const;

  std::uint64_t edges_;
  std::uint64_t revision_;
  Block<WeightedChoice::Entry> entries_;
};

}  // namespace veq::internal
