#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace veq::internal {

/// What a store shares with the views of its topology. It changes only while the store alone holds
/// it, and never where it lies in memory of somebody else.
class SharedTopology {
 public:
  SharedTopology(const SharedTopology&) = delete;
  SharedTopology& operator=(const SharedTopology&) = delete;

  /// Further memory behind the object.
  struct TrailingBytes {
    std::size_t bytes;
  };
  static void* operator new(std::size_t size, TrailingBytes behind) {
    return ::operator new(size + behind.bytes);
  }
  // NOLINTNEXTLINE(cert-dcl54-cpp): what a delete expression calls for memory of the form above.
  static void operator delete(void* memory) { ::operator delete(memory); }
  static void operator delete(void* memory, TrailingBytes /*behind*/) { ::operator delete(memory); }

  void retain() { shares_.fetch_add(1, std::memory_order_relaxed); }
  /// What the share was read for has happened before whoever finds it gone goes on.
  void release() {
    if (shares_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  [[nodiscard]] bool mayChange() const {
    return shares_.load(std::memory_order_acquire) == 1 && !foreign_;
  }

 protected:
  explicit SharedTopology(bool foreign) : foreign_(foreign) {}
  virtual ~SharedTopology() = default;

 private:
  std::atomic<std::uint32_t> shares_{1};
  const bool foreign_;
};

/// One share of a topology.
class TopologyShare {
 public:
  /// Takes over a share.
  explicit TopologyShare(SharedTopology* share = nullptr) noexcept : share_(share) {}
  TopologyShare(const TopologyShare& other) noexcept : share_(other.share_) {
    if (share_) share_->retain();
  }
  TopologyShare(TopologyShare&& other) noexcept : share_(std::exchange(other.share_, nullptr)) {}
  TopologyShare& operator=(TopologyShare other) noexcept {
    std::swap(share_, other.share_);
    return *this;
  }
  ~TopologyShare() {
    if (share_) share_->release();
  }

  [[nodiscard]] SharedTopology* get() const { return share_; }

 private:
  SharedTopology* share_;
};

}  // namespace veq::internal
