#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "veq/agents/internal/tiles.hpp"

namespace veq::internal {

/// The step in which somebody first arrived at each vertex.
class ArrivalRecord {
 public:
  explicit ArrivalRecord(std::uint64_t vertices) : first_(vertices, UINT64_MAX) {}

  /// Takes steps into the record, of which the first has the number `number`.
  template <class Word>
  void take(const Word* moves, std::uint64_t agents, std::uint64_t steps, std::uint64_t number) {
    for (std::uint64_t s = 0; s < steps; ++s) {
      for (std::uint64_t a = 0; a < agents; ++a, ++moves) {
        if (*moves != kStayed<Word> && first_[*moves] == UINT64_MAX) first_[*moves] = number + s;
      }
    }
  }
  [[nodiscard]] std::vector<std::uint64_t> takeSteps() { return std::move(first_); }

 private:
  std::vector<std::uint64_t> first_;
};

}  // namespace veq::internal
