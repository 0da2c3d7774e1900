#pragma once

#include <atomic>
#include <memory>

#include "veq/base/ownership.hpp"

namespace veq {

class VEQNetwork;

namespace internal {

/// Says whether a network still lives, to handles that outlive it. Networks are told apart by their
/// records and never by their addresses: a new network soon lies where a dead one lay.
struct LifeRecord {
  explicit LifeRecord(VEQNetwork* network) : address(network) {}

  VEQNetwork* const address;
  std::atomic<bool> alive{true};
};

/// What handles lie in, and what a shared reference to a handle keeps: either all handles of a
/// network, or one that a caller made by hand. It also keeps the record.
class HandleOwner : public std::enable_shared_from_this<HandleOwner> {
 public:
  explicit HandleOwner(LifeRecord& record) : life(record) {}
  HandleOwner(const HandleOwner&) = delete;
  HandleOwner& operator=(const HandleOwner&) = delete;

  LifeRecord& life;

 protected:
  ~HandleOwner() = default;
};

}  // namespace internal
}  // namespace veq
