/// \file
/// Where models and walks take their draws.
#pragma once

#include <cstdint>

#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_engine.hpp"
#include "veq/models/random_state.hpp"

namespace veq::internal {

/// The library's own way into a state.
struct StateAccess {
  [[nodiscard]] static RandomState make(const RandomStream& stream) { return RandomState(stream); }
  [[nodiscard]] static const RandomStream& stream(const RandomState& state) {
    return state.stream_;
  }
  /// A stream at the state's next draw, while the state moves past `count` draws.
  /// std::out_of_range, and nothing moved, where it is a substream with fewer left.
  [[nodiscard]] static RandomStream take(RandomState& state, Uint128 count);
};

/// A state of the caller's, or the process's sequence: both give draws in the same way.
class RandomSource {
 public:
  /// Null for the process's sequence. The state must outlive the source.
  explicit RandomSource(RandomState* state) : state_(state) {}

  /// A private stream of the next `count` draws, which others will not get.
  [[nodiscard]] RandomStream take(Uint128 count) const {
    return state_ ? StateAccess::take(*state_, count)
                  : SharedRandomSequence::instance().take(count);
  }
  /// How many draws can still be taken: work without an upper number of draws asks before each
  /// piece.
  [[nodiscard]] bool has(Uint128 count) const {
    return !state_ || !state_->drawsLeft() || count <= *state_->drawsLeft();
  }

 private:
  RandomState* state_;
};

}  // namespace veq::internal
