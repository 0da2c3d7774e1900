/// \file
/// The one source of random numbers.
#pragma once

#include <cstdint>
#include <limits>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/models/random_state.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq {

/// The process-wide random generator, from which the models and the walks draw as well. A seed
/// determines every number that follows, on every platform: the draws r, from 0 to 2^31 - 1, are
/// those of the GNU C library's random() after srandom(seed), but the C library's own generator is
/// neither used nor disturbed. Until setRandomSeed() the sequence differs from run to run.
///
/// Every operation may be called from any thread. The draws of one call are consecutive; the order
/// of calls between threads is up to them.
/// \ingroup random
class VEQ_EXPORT VEQRandomGenerator final {
 public:
  /// \name The one instance
  /// It is made on first demand, takes its seed from the operating system then, and is never
  /// deleted. Nobody owns it.
  /// @{
  [[nodiscard]] static VEQRandomGenerator* sharedRandomGenerator();
  /// The instance if this very call makes it, null ever after: use sharedRandomGenerator().
  [[nodiscard]] static VEQRandomGenerator* allocWithZone(void* zone);

  /// The same object.
  [[nodiscard]] VEQRandomGenerator* copyWithZone(void*) { return this; }
  [[nodiscard]] VEQRandomGenerator* copy() { return this; }
  VEQRandomGenerator(const VEQRandomGenerator&) = delete;
  VEQRandomGenerator& operator=(const VEQRandomGenerator&) = delete;

  /// These two change nothing.
  VEQRandomGenerator* retain() { return this; }
  void release() {}
  /// The largest 64-bit number.
  [[nodiscard]] std::uint64_t ownersCount() const {
    return std::numeric_limits<std::uint64_t>::max();
  }
  /// @}

  /// Starts the sequence of this seed. Seed 0 counts as 1.
  void setRandomSeed(std::uint32_t seed);

  /// \name Its place in the sequence
  /// As a value, to go on from later or elsewhere; skip() costs microseconds whatever the count.
  /// @{
  [[nodiscard]] RandomState state() const;
  void setState(const RandomState& state);
  void skip(DrawCount draws);
  /// @}

  /// \name Single numbers
  /// Each costs one draw r.
  /// @{

  /// r x 2^-31: at least 0 and below 1.
  [[nodiscard]] double randomDouble();
  /// r rounded to a float, x 2^-31: exactly 1 for the 64 largest draws. Use randomDouble() where 1
  /// must not occur.
  [[nodiscard]] float randomFloat();
  /// r itself.
  [[nodiscard]] std::int64_t randomInteger();
  /// An integer from one end to the other, both included, in either order:
  /// round((b - a) x r / (2^31 - 1)) + a, halves rounded away from zero. Each end comes half as
  /// often as an integer between them, and only 2^31 of the integers of a larger range can come.
  /// The difference wraps in 64 bits; the sum is taken in double, so it is exact up to 2^53, and
  /// saturates.
  [[nodiscard]] std::int64_t randomIntegerFrom_to(std::int64_t a, std::int64_t b);
  /// @}

  /// \name Arrays
  /// Element after element the same numbers as that many single calls give; none are drawn for a
  /// count of 0. std::bad_alloc where the memory cannot be had; nothing is drawn then. Arrays of
  /// doubles, floats and plain integers cost well below a nanosecond an element once their memory
  /// is there.
  /// @{
  [[nodiscard]] Owned<VEQNumberArray> newRandomDoubleArrayWithCount(std::uint64_t count);
  [[nodiscard]] Owned<VEQNumberArray> newRandomFloatArrayWithCount(std::uint64_t count);
  [[nodiscard]] Owned<VEQNumberArray> newRandomIntegerArrayWithCount(std::uint64_t count);
  [[nodiscard]] Owned<VEQNumberArray> newRandomIntegerArrayFrom_to_withCount(std::int64_t a,
                                                                             std::int64_t b,
                                                                             std::uint64_t count);

  [[nodiscard]] Shared<VEQNumberArray> randomDoubleArrayWithCount(std::uint64_t count);
  [[nodiscard]] Shared<VEQNumberArray> randomFloatArrayWithCount(std::uint64_t count);
  [[nodiscard]] Shared<VEQNumberArray> randomIntegerArrayWithCount(std::uint64_t count);
  [[nodiscard]] Shared<VEQNumberArray> randomIntegerArrayFrom_to_withCount(std::int64_t a,
                                                                           std::int64_t b,
                                                                           std::uint64_t count);
  /// @}

 private:
  VEQRandomGenerator() = default;
  ~VEQRandomGenerator() = default;
};

}  // namespace veq
