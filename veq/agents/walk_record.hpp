/// \file
/// A walk that can be walked again.
#pragma once

#include <cstdint>
#include <utility>

#include "veq/agents/walk_outcome.hpp"
#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"

namespace veq {

namespace internal {
struct RecordedWalk;
}  // namespace internal

/// What Walkers::record() gives: the outcome of a walk, and what it takes to walk the same way
/// again. Copies share it. It outlives the group and the network.
/// \ingroup walks
class VEQ_EXPORT WalkRecord {
 public:
  /// Only Walkers::record() makes them.
  explicit WalkRecord(Shared<const internal::RecordedWalk> parts) : parts_(std::move(parts)) {}

  /// What the walk has led to.
  [[nodiscard]] const WalkOutcome& outcome() const;
  [[nodiscard]] std::uint64_t countAgents() const;

  /// For the library's use.
  [[nodiscard]] const internal::RecordedWalk& parts() const { return *parts_; }

 private:
  Shared<const internal::RecordedWalk> parts_;
};

}  // namespace veq
