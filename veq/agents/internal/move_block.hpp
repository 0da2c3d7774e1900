#pragma once

#include <cstdint>
#include <limits>
#include <utility>
#include <variant>

#include "veq/base/internal/memory.hpp"

namespace veq::internal {

/// What a move shows where an agent could not leave its vertex.
template <class Index>
inline constexpr Index kStayed = std::numeric_limits<Index>::max();

/// Moves of one walk: for each step, the vertex at which each agent arrived. Both the history and
/// the paths of a walk are read from here.
struct MoveBlock {
  std::variant<Block<std::uint32_t>, Block<std::uint64_t>> moves;
  std::uint64_t steps = 0;
  /// The walk's number, from 1, since the last flush.
  std::uint64_t walk = 0;

  /// Calls f with a pointer to the first step's moves, in the width they have.
  template <class F>
  void visit(F&& f) const {
    std::visit([&f](const auto& block) { f(block.data()); }, moves);
  }
  [[nodiscard]] std::uint64_t bytes() const {
    return std::visit(
        [](const auto& block) { return block.size() * sizeof(block[0]) + sizeof(MoveBlock); },
        moves);
  }
};

}  // namespace veq::internal
