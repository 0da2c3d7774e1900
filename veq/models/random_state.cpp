#include "veq/models/random_state.hpp"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

#include "veq/models/internal/random_source.hpp"

namespace veq {
namespace {

using internal::RandomStream;

std::string decimal(Uint128 number) {
  std::string digits;
  for (; number > 9; number /= 10) digits += static_cast<char>('0' + static_cast<int>(number % 10));
  digits += static_cast<char>('0' + static_cast<int>(number));
  std::reverse(digits.begin(), digits.end());
  return digits;
}

}  // namespace

Result<RandomState> RandomState::seeded(std::uint64_t seed) {
  const auto refuse = [&](const char* why) {
    return Error(ErrorKind::kArgument,
                 "seed " + std::to_string(seed) + ": " + why + "; give 1 to 4294967295");
  };
  if (seed == 0) return refuse("it would be the same as seed 1");
  if (seed > UINT32_MAX) return refuse("seeds have 32 bits");
  return RandomState(RandomStream::seeded(static_cast<std::uint32_t>(seed)));
}

RandomState RandomState::after(DrawCount draws) const {
  RandomState moved = *this;
  moved.use(draws.all());
  moved.stream_.advance(draws.all());
  return moved;
}

RandomState RandomState::substream(std::uint64_t k) const {
  if (left_ != kEndless) throw std::out_of_range("A substream has no substreams.");
  if (k >= kSubstreams) {
    throw std::out_of_range("Substream " + std::to_string(k) + " of " +
                            std::to_string(kSubstreams) + ".");
  }
  RandomState start = after(k * kSubstreamSpacing);
  start.left_ = kSubstreamSpacing;
  return start;
}

std::optional<std::uint64_t> RandomState::drawsLeft() const {
  if (left_ == kEndless) return std::nullopt;
  return left_;
}

RandomState::Words RandomState::words() const { return stream_.recent(); }

Result<RandomState> RandomState::fromWords(std::span<const std::uint32_t> words) {
  if (words.size() != kWords) {
    return Error(ErrorKind::kArgument, std::to_string(words.size()) + " words, not 31");
  }
  // The lowest bits are a sequence of their own. If one is odd it runs through all 2^31 - 1 states
  // that are not all even, and the words through 2^31 times as many.
  if (std::all_of(words.begin(), words.end(), [](std::uint32_t word) { return word % 2 == 0; })) {
    return Error(ErrorKind::kArgument, "31 even words, which no seed leads to");
  }
  Words all;
  std::copy(words.begin(), words.end(), all.begin());
  RandomStream stream = RandomStream::seeded(1);
  stream.setRecent(all);
  return RandomState(stream);
}

void RandomState::use(Uint128 draws) {
  if (left_ == kEndless) return;
  if (draws > left_) {
    throw std::out_of_range("The substream has " + std::to_string(left_) + " draws left, not " +
                            decimal(draws) + ".");
  }
  left_ -= static_cast<std::uint64_t>(draws);
}

std::uint32_t RandomState::nextDraw() {
  use(1);
  return stream_.next();
}

double RandomState::nextDouble() { return internal::fromDraw<double>(nextDraw()); }

std::uint64_t RandomState::nextBelow(std::uint64_t n) {
  if (n == 0) throw std::out_of_range("No integer lies below 0.");
  use(2);
  const std::uint64_t high = stream_.next();
  return static_cast<std::uint64_t>(Uint128{n} * (high << 31 | stream_.next()) >> 62);
}

void RandomState::nextDraws(std::span<std::uint32_t> draws) {
  use(draws.size());
  stream_.fill(draws.data(), draws.size());
}

namespace internal {

RandomStream StateAccess::take(RandomState& state, Uint128 count) {
  const RandomStream taken = state.stream_;
  state = state.after(DrawCount::of(count));
  return taken;
}

}  // namespace internal
}  // namespace veq
