/// \file
/// The paths of a walk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <variant>

#include "veq/base/export.hpp"
#include "veq/handles/handle_array.hpp"

namespace veq {

/// One array of vertices for each agent: where it stood after each completed step. A step in which
/// an agent could not move shows as vertex 0, whatever vertex it stood on. Copying is cheap; the
/// paths outlive the group, and their handles become invalid with the network.
/// \ingroup walks
class VEQ_EXPORT VEQVertexPaths {
 public:
  /// No agents.
  VEQVertexPaths() = default;

  /// \name For the library's use
  /// @{
  using Table = VEQVertexArray::Table;
  /// `moves` points at the first agent's first entry; an agent's entries lie as far apart as there
  /// are agents.
  template <class Index>
  VEQVertexPaths(Shared<Table> table, Shared<const void> keeper, const Index* moves,
                 std::uint64_t agents, std::uint64_t steps)
      : table_(std::move(table)),
        moves_(VEQVertexArray::Strided<Index>{std::move(keeper), moves, agents}),
        agents_(agents),
        steps_(steps) {}
  /// Calls f with a pointer to the first step's entries, one for each agent, and then the next
  /// step's; one with all bits set stands for a step in which the agent stayed.
  template <class F>
  decltype(auto) visitMoves(F&& f) const {
    return std::visit([&f](const auto& moves) { return f(moves.first); }, moves_);
  }
  [[nodiscard]] std::uint64_t countSteps() const { return steps_; }
  /// @}

  /// The number of agents, and whether there are none.
  [[nodiscard]] std::uint64_t count() const { return agents_; }
  [[nodiscard]] std::uint64_t size() const { return agents_; }
  [[nodiscard]] bool empty() const { return agents_ == 0; }

  /// The path of an agent; std::out_of_range where there is no such agent. O(1).
  [[nodiscard]] VEQVertexArray objectAtIndex(std::uint64_t agent) const {
    if (agent >= agents_) throw std::out_of_range("The index is beyond the array of paths.");
    return (*this)[agent];
  }
  /// The agent is not checked.
  [[nodiscard]] VEQVertexArray operator[](std::uint64_t agent) const {
    if (steps_ == 0) return VEQVertexArray(table_, 0);
    return std::visit(
        [&](auto moves) {
          moves.first += agent;
          return VEQVertexArray(table_, std::move(moves), steps_);
        },
        moves_);
  }

  /// Visits the paths in the order of agents; each is made when it is looked at.
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = VEQVertexArray;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = VEQVertexArray;

    Iterator() = default;
    Iterator(const VEQVertexPaths* paths, std::uint64_t agent) : paths_(paths), agent_(agent) {}
    VEQVertexArray operator*() const { return (*paths_)[agent_]; }
    Iterator& operator++() {
      ++agent_;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++agent_;
      return before;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    const VEQVertexPaths* paths_ = nullptr;
    std::uint64_t agent_ = 0;
  };
  /// For range-based loops.
  [[nodiscard]] Iterator begin() const { return {this, 0}; }
  [[nodiscard]] Iterator end() const { return {this, agents_}; }

 private:
  Shared<Table> table_;
  std::variant<VEQVertexArray::Strided<std::uint32_t>, VEQVertexArray::Strided<std::uint64_t>>
      moves_;
  std::uint64_t agents_ = 0;
  std::uint64_t steps_ = 0;
};

}  // namespace veq
