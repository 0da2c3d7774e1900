#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

#include "veq/agents/internal/tiles.hpp"

namespace veq::internal {

/// The step in which somebody first arrived at each vertex.
class ArrivalRecord {
 public:
  explicit ArrivalRecord(std::uint64_t vertices) : first_(vertices, UINT64_MAX) {}

  /// Whether an arrival at the vertex would leave the record as it is.
  [[nodiscard]] bool has(std::uint64_t vertex) const { return first_[vertex] != UINT64_MAX; }
  /// Takes steps into the record, of which the first has the number `number`. `movesOf(s)` gives
  /// the moves of one.
  template <class MovesOf>
  void take(const MovesOf& movesOf, std::uint64_t steps, std::uint64_t number) {
    for (std::uint64_t s = 0; s < steps; ++s) {
      for (const auto to : movesOf(s)) {
        if (to != kStayed<std::remove_const_t<decltype(to)>> && !has(to)) first_[to] = number + s;
      }
    }
  }
  [[nodiscard]] std::vector<std::uint64_t> takeSteps() { return std::move(first_); }

 private:
  std::vector<std::uint64_t> first_;
};

}  // namespace veq::internal
