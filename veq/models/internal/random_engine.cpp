#include "veq/models/internal/random_engine.hpp"

#include <algorithm>
#include <cstddef>
#include <new>

#include "veq/base/internal/entropy.hpp"
#include "veq/models/internal/random_blocks.hpp"
#include "veq/models/internal/random_jump.hpp"

namespace veq::internal {
namespace {

// From here on the vector form and the polynomial are faster than stepping.
constexpr std::uint64_t kWorthVectors = 2 * kHistory;
constexpr std::uint64_t kWorthJump = 4096;
// A fill this long takes a private stream, so that others need not wait for it.
constexpr std::uint64_t kWorthTaking = std::uint64_t{1} << 16;

// The Lehmer generator x -> 16807 x mod 2^31 - 1 that spreads a seed over the 31 words, signed as
// in the C library: a seed of 2^31 or more begins below zero.
std::int32_t nextSeedWord(std::int32_t x) {
  const std::int32_t next = 16807 * (x % 127773) - 2836 * (x / 127773);
  return next < 0 ? next + 2147483647 : next;
}

}  // namespace

RandomStream RandomStream::seeded(std::uint32_t seed) {
  RandomStream stream;
  auto x = static_cast<std::int32_t>(seed == 0 ? 1 : seed);
  // The first sum is r[3] + r[0], so the ring begins with the fourth seed word.
  for (std::size_t i = 0; i < kLag; ++i, x = nextSeedWord(x)) {
    stream.words_[(i + kLag - 3) % kLag] = static_cast<std::uint32_t>(x);
  }
  // The first 310 draws still show the seed; they are discarded.
  for (int round = 0; round < 10; ++round) stream.nextRound();
  stream.position_ = kLag;
  return stream;
}

// The sequence is three chains of sums, each carried in a register.
void RandomStream::nextRound() {
  std::uint32_t* const w = words_.data();
  std::uint32_t a = w[28];
  std::uint32_t b = w[29];
  std::uint32_t c = w[30];
  for (std::size_t k = 0; k + 3 <= kLag; k += 3) {
    w[k] = a += w[k];
    w[k + 1] = b += w[k + 1];
    w[k + 2] = c += w[k + 2];
  }
  w[30] = a += w[30];
  position_ = 0;
}

RandomStream::Words RandomStream::recent() const {
  // What is not drawn yet of this round gives way to its places in the round before, found by
  // running the recurrence backwards.
  Words before;
  for (std::size_t k = kLag; k-- > 3;) before[k] = words_[k] - words_[k - 3];
  for (std::size_t k = 3; k-- > 0;) before[k] = words_[k] - before[k + 28];
  Words words;
  const auto drawn = static_cast<std::ptrdiff_t>(position_);
  const auto rest = std::copy(before.begin() + drawn, before.end(), words.begin());
  std::copy(words_.begin(), words_.begin() + drawn, rest);
  return words;
}

void RandomStream::advance(Uint128 count) {
  if (count >= kWorthJump) {
    setRecent(jump(jumpPolynomial(count), recent()));
    return;
  }
  auto steps = static_cast<std::size_t>(count);
  for (std::size_t left = kLag - position_; steps > left; left = kLag) {
    steps -= left;
    nextRound();
  }
  position_ += steps;
}

template <class Value>
void RandomStream::fill(Value* out, std::uint64_t count) {
  const auto draw = [&](std::size_t some) {  // of the current round
    for (std::size_t i = 0; i < some; ++i) out[i] = fromDraw<Value>(words_[position_ + i] >> 1);
    position_ += some;
    out += some;
    count -= some;
  };
  if (count < kWorthVectors) {
    while (count > 0) {  // NOLINT(bugprone-infinite-loop): draw() counts down
      if (position_ == kLag) nextRound();
      draw(static_cast<std::size_t>(std::min<std::uint64_t>(count, kLag - position_)));
    }
    return;
  }
  draw(kLag - position_);
  WordBlock block;
  for (std::uint32_t* history = block.words; history != block.words + kHistory; history += kLag) {
    nextRound();
    std::copy(words_.begin(), words_.end(), history);
    draw(kLag);
  }
  const std::uint32_t* const end =
      wideVectorsRun() ? fillBlocksWide(block, out, count) : fillBlocksPlain(block, out, count);
  std::copy(end - kLag, end, words_.begin());
}

SharedRandomSequence& SharedRandomSequence::instance() {
  // In memory that is always there: a walk that has begun must be able to draw.
  alignas(SharedRandomSequence) static std::byte storage[sizeof(SharedRandomSequence)];
  static auto& sequence = *::new (storage) SharedRandomSequence;
  return sequence;
}

SharedRandomSequence::SharedRandomSequence() : stream_(RandomStream::seeded(systemEntropy())) {}

void SharedRandomSequence::seed(std::uint32_t seed) { setStream(RandomStream::seeded(seed)); }

void SharedRandomSequence::seedFromSystem() { seed(systemEntropy()); }

RandomStream SharedRandomSequence::stream() {
  const std::lock_guard guard(lock_);
  return stream_;
}

void SharedRandomSequence::setStream(const RandomStream& stream) {
  const std::lock_guard guard(lock_);
  stream_ = stream;
}

std::uint32_t SharedRandomSequence::next() {
  const std::lock_guard guard(lock_);
  return stream_.next();
}

RandomStream SharedRandomSequence::take(Uint128 count) {
  const std::lock_guard guard(lock_);
  const RandomStream taken = stream_;
  stream_.advance(count);
  return taken;
}

template <class Value>
void SharedRandomSequence::fill(Value* out, std::uint64_t count) {
  if (count >= kWorthTaking) {
    take(count).fill(out, count);
    return;
  }
  const std::lock_guard guard(lock_);
  stream_.fill(out, count);
}

template void RandomStream::fill(std::uint32_t*, std::uint64_t);
template void RandomStream::fill(std::int64_t*, std::uint64_t);
template void RandomStream::fill(double*, std::uint64_t);
template void RandomStream::fill(float*, std::uint64_t);
template void SharedRandomSequence::fill(std::uint32_t*, std::uint64_t);
template void SharedRandomSequence::fill(std::int64_t*, std::uint64_t);
template void SharedRandomSequence::fill(double*, std::uint64_t);
template void SharedRandomSequence::fill(float*, std::uint64_t);

}  // namespace veq::internal
