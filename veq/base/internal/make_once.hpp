#pragma once

#include <atomic>

namespace veq::internal {

/// What an atomic pointer points at, made on first demand and safely for concurrent callers; of two
/// threads that make it at the same time one discards its own.
template <class Slot, class Make, class Discard>
auto makeOnce(Slot&& slot, Make make, Discard discard) {
  auto* present = slot.load(std::memory_order_acquire);
  if (present) return present;
  auto* mine = make();
  if (slot.compare_exchange_strong(present, mine, std::memory_order_acq_rel)) return mine;
  discard(mine);
  return present;
}

}  // namespace veq::internal
