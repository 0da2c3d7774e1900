/// \file
/// What handles of vertices and of edges have in common: their identity.
#pragma once

#include <atomic>
#include <cstdint>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/handles/internal/life_record.hpp"

namespace veq {

/// Stands for one index of one network, without owning the network. All operations of this class
/// also answer after the network has died; none of them touches the network.
///
/// Destroying a network while another thread uses its handles is the caller's fault; otherwise
/// handles may be used from any number of threads as long as nobody edits the network.
/// \ingroup handles
template <class Self>
class VEQ_EXPORT Handle {
 public:
  /// Made by networks, and by initAtNetwork_identification.
  Handle(internal::HandleOwner& owner, std::uint64_t identification)
      : owner_(&owner), identification_(identification) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  /// A handle besides the one that the network keeps for the index; the index is not checked. Its
  /// questions raise what the network's own operations raise for such an index, and
  /// std::out_of_range where the handle itself reads.
  [[nodiscard]] static Shared<Self> initAtNetwork_identification(const VEQNetwork& network,
                                                                 std::uint64_t identification);

  /// The index for which it stands.
  [[nodiscard]] std::uint64_t identification() const { return identification_; }

  /// The network's address, also when nothing lives there any longer: ask isValid() first.
  [[nodiscard]] VEQNetwork* relatedNetwork() const { return life().address; }

  /// Makes this handle invalid, and no other one of the same index. Network queries that take a
  /// handle still accept it.
  void invalidateNetwork() { valid_.store(false, std::memory_order_relaxed); }

  /// False once the network has died or the handle was invalidated; never true again.
  [[nodiscard]] bool isValid() const {
    return valid_.load(std::memory_order_relaxed) && life().alive.load(std::memory_order_acquire);
  }

  /// The handle itself, shared once more; a handle is never duplicated. The zone is not used.
  [[nodiscard]] Shared<Self> copyWithZone(void* zone) const;
  [[nodiscard]] Shared<Self> copy() const { return copyWithZone(nullptr); }

  /// The network's address plus the index, with wrap-around.
  [[nodiscard]] std::uint64_t hash() const {
    return reinterpret_cast<std::uintptr_t>(relatedNetwork()) + identification_;
  }

  /// Whether both stand for the same index of the same network, valid or not. Two networks that
  /// lived at the same address one after the other are different ones. Null, and a handle of the
  /// other kind, are never equal.
  [[nodiscard]] bool isEqual(const Self& other) const {
    return &life() == &other.life() && identification_ == other.identification_;
  }
  [[nodiscard]] bool isEqual(const Shared<Self>& other) const { return other && isEqual(*other); }
  template <class Other>
  [[nodiscard]] bool isEqual(const Handle<Other>&) const {
    return false;
  }
  template <class Other>
  [[nodiscard]] bool isEqual(const Shared<Other>&) const {
    return false;
  }

  /// Whether the handle belongs to the network that this record stands for; for the library's use.
  [[nodiscard]] const internal::LifeRecord& life() const { return owner_->life; }

 private:
  internal::HandleOwner* owner_;
  std::uint64_t identification_;
  std::atomic<bool> valid_{true};
};

}  // namespace veq
