#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

#include "veq/base/ownership.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// The weights of a network's vertices or edges: its own, or until the first change those in
/// somebody else's memory. A change that fails leaves them as they were.
class HeldWeights {
 public:
  explicit HeldWeights(Weights own) : own_(std::move(own)), all_(own_) {}
  HeldWeights(std::uint64_t count, float value) : HeldWeights(Weights(count, value)) {}
  HeldWeights(std::span<const float> foreign, Shared<const void> owner)
      : all_(foreign), owner_(std::move(owner)) {}

  HeldWeights(HeldWeights&&) = default;
  HeldWeights& operator=(HeldWeights&&) = default;

  [[nodiscard]] std::uint64_t size() const { return all_.size(); }
  [[nodiscard]] const float* data() const { return all_.data(); }
  [[nodiscard]] float operator[](std::uint64_t index) const { return all_[index]; }
  [[nodiscard]] std::span<const float> all() const { return all_; }
  [[nodiscard]] const float* begin() const { return data(); }
  [[nodiscard]] const float* end() const { return data() + size(); }
  [[nodiscard]] Weights copy() const { return {all_.begin(), all_.end()}; }

  /// For writing to.
  [[nodiscard]] float* own() {
    own(size());
    return own_.data();
  }
  /// Reserves as appending would, so that many single insertions stay cheap; growTo() as many
  /// cannot fail afterwards. New weights are 1.
  void reserve(std::uint64_t count) {
    own(count);
    if (count <= own_.capacity()) return;
    own_.reserve(std::max<std::size_t>(count, own_.capacity() + own_.capacity() / 2));
    all_ = own_;
  }
  void growTo(std::uint64_t count) {
    own_.resize(count, 1.0F);
    all_ = own_;
  }

 private:
  void own(std::uint64_t capacity) {
    if (all_.data() != own_.data()) takeOver(capacity);
  }
  void takeOver(std::uint64_t capacity) {
    Weights copy;
    copy.reserve(std::max<std::uint64_t>(capacity, size()));
    copy.insert(copy.end(), all_.begin(), all_.end());
    own_ = std::move(copy);
    all_ = own_;
    owner_.reset();
  }

  Weights own_;
  std::span<const float> all_;
  Shared<const void> owner_;
};

}  // namespace veq::internal
