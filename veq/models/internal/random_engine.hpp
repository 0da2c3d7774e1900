/// \file
/// The one sequence of the process.
#pragma once

#include <cstdint>
#include <mutex>

#include "veq/base/internal/uint128.hpp"
#include "veq/models/internal/random_stream.hpp"

namespace veq::internal {

/// The one sequence of the process. Every operation may be called from any thread; the draws of one
/// call are consecutive.
class SharedRandomSequence {
 public:
  /// Made on first use, seeded by the operating system, and never destroyed: threads may still draw
  /// while the process ends.
  [[nodiscard]] static SharedRandomSequence& instance();

  void seed(std::uint32_t seed);
  void seedFromSystem();

  [[nodiscard]] RandomStream stream();
  void setStream(const RandomStream& stream);

  /// The next draw, from 0 to 2^31 - 1.
  [[nodiscard]] std::uint32_t next();

  /// A private stream that starts at the sequence's next draw, while the sequence moves past
  /// `count` draws at once. Who takes all the draws of a long job can go on without the lock, and
  /// without holding them in memory.
  [[nodiscard]] RandomStream take(Uint128 count);

  /// The next `count` draws in order, as RandomStream::fill gives them.
  template <class Value>
  void fill(Value* out, std::uint64_t count);

 private:
  SharedRandomSequence();

  std::mutex lock_;
  RandomStream stream_;
};

}  // namespace veq::internal
