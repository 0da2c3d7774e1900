/// \file
/// Finding given vertices again.
#pragma once

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "veq/network/internal/handle_runs.hpp"

namespace veq::internal {

/// The positions of one network's vertices among those given; of a vertex given more than once the
/// first. Each question costs O(1).
class PositionsInNetwork {
 public:
  /// For a network of which at least this many vertices will be given. Where these are a good part
  /// of it, positions lie in an array.
  PositionsInNetwork(const LifeRecord& life, std::uint64_t given) {
    if (!life.alive.load(std::memory_order_acquire)) return;
    const std::uint64_t count = life.address->countVertices();
    if (count / 4 <= given) near_.resize(count, kNone);
  }

  /// Enters the position unless the vertex has one; whether it was entered.
  bool enter(std::uint64_t index, std::uint64_t position) {
    if (index >= near_.size()) return far_.try_emplace(index, position).second;
    if (near_[index] != kNone) return false;
    near_[index] = position;
    return true;
  }

  /// The position, or 0 for a vertex that was not given.
  [[nodiscard]] std::uint64_t of(std::uint64_t index) const {
    if (index < near_.size()) return near_[index] == kNone ? 0 : near_[index];
    const auto at = far_.find(index);
    return at == far_.end() ? 0 : at->second;
  }

 private:
  static constexpr std::uint64_t kNone = UINT64_MAX;

  std::vector<std::uint64_t> near_;
  std::unordered_map<std::uint64_t, std::uint64_t> far_;
};

/// The positions of vertices of any networks, told apart by their records.
class HandlePositions {
 public:
  /// What is known of the run's network, which the answer belongs to.
  [[nodiscard]] PositionsInNetwork& inNetworkOf(const HandleRun& run) {
    return networks_.try_emplace(run.life, *run.life, run.count).first->second;
  }
  /// Null for a network of which no vertex was given.
  [[nodiscard]] const PositionsInNetwork* find(const LifeRecord* life) const {
    const auto at = networks_.find(life);
    return at == networks_.end() ? nullptr : &at->second;
  }

 private:
  std::unordered_map<const LifeRecord*, PositionsInNetwork> networks_;
};

}  // namespace veq::internal
