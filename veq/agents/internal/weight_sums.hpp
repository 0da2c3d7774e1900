#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "veq/agents/internal/choice.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// What choices by weight look up: made when it is first needed, and again after the network's
/// edges or their weights have changed.
class WeightSums {
 public:
  /// The edge whose weight is no finite number from 0 up, if there is one; nothing is made then.
  /// std::bad_alloc where memory is lacking. O(n + m) where something is to be made.
  [[nodiscard]] std::optional<std::uint64_t> prepare(const NetworkCore& core);

  [[nodiscard]] WeightedChoice choice() const {
    return {std::span(entries_.data(), entries_.size())};
  }

 private:
  bool isMade_ = false;
  std::uint64_t edges_ = 0;
  std::uint64_t revision_ = 0;
  Block<WeightedChoice::Entry> entries_;
};

}  // namespace veq::internal
