/// \file
/// The numbers that model networks are made of.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/models/random_state.hpp"

namespace veq::internal {

/// Numbers u of 62 bits, each of two draws r and r': u = r 2^31 + r'. They are taken in blocks of
/// 512; what is left of the last is used up, so that many threads can share the process's sequence
/// and nobody counts draws.
class DrawBlocks {
 public:
  static constexpr std::size_t kBlock = 512;

  /// From a state, or for null from the process's sequence. std::out_of_range where a substream
  /// ends.
  explicit DrawBlocks(RandomState* state) : state_(state) {}

  std::uint64_t next() {
    if (at_ == kBlock) refill();
    return numbers_[at_++];
  }
  /// floor(n u / 2^62), for n up to 2^62: each integer below n has a share of 1/n within 2^-62.
  std::uint64_t below(std::uint64_t n) { return scaled(n, next()); }
  /// The next ones, at least one and at most a block: what is left, or a new block.
  std::span<const std::uint64_t> take(std::size_t most = kBlock) {
    if (at_ == kBlock) refill();
    const std::size_t some = std::min(most, kBlock - at_);
    at_ += some;
    return {numbers_.data() + at_ - some, some};
  }
  /// The last ones taken, which were not needed.
  void giveBack(std::size_t some) { at_ -= some; }
  /// One of those to come, as far as they are known: to fetch ahead what it will choose.
  [[nodiscard]] std::uint64_t ahead(std::size_t distance) const {
    return numbers_[std::min(at_ + distance, kBlock - 1)];
  }

  [[nodiscard]] static std::uint64_t scaled(std::uint64_t n, std::uint64_t u) {
    return static_cast<std::uint64_t>(Uint128{n} * u >> 62);
  }

 private:
  void refill() {
    std::array<std::uint32_t, 2 * kBlock> draws;
    if (state_) {
      state_->nextDraws(draws);
    } else {
      SharedRandomSequence::instance().fill(draws.data(), draws.size());
    }
    for (std::size_t i = 0; i < kBlock; ++i) {
      numbers_[i] = std::uint64_t{draws[2 * i]} << 31 | draws[2 * i + 1];
    }
    at_ = 0;
  }

  RandomState* state_;
  std::array<std::uint64_t, kBlock> numbers_;
  std::size_t at_ = kBlock;
};

}  // namespace veq::internal
