/// \file
/// The additive-feedback sequence in vectors: eight neighbouring words at a time, in order.
///
/// r[i] = r[i-3] + r[i-31] looks back 3 words, too near for vectors of 8. But the sequence obeys
/// every multiple of its polynomial x^31 - x^28 - 1, and multiplying p(x) by p(-x) leaves even
/// powers alone. Doing so three times leaves multiples of 8:
///   r[i] = r[i-24] + 8 r[i-40] - 4 r[i-80] + 8 r[i-96] + 6 r[i-136] - 4 r[i-192] + r[i-248].
/// All eight words of a vector then come from whole vectors, at the price of a longer memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "veq/base/internal/wide_vectors.hpp"
#include "veq/models/internal/random_engine.hpp"

namespace veq::internal {

/// How far the vector form looks back: eight rounds of the plain one.
inline constexpr std::size_t kHistory = 8 * RandomStream::kLag;
/// Words made before the history moves: few enough for the first cache, many enough to make moving
/// cheap.
inline constexpr std::size_t kBlock = 2048;
/// Words made and then written out together: few, so that the processor makes the next while memory
/// still takes these.
inline constexpr std::size_t kSlice = 64;

/// Consecutive words: those drawn last, and room for the next block.
struct alignas(64) WordBlock {
  std::uint32_t words[kHistory + kBlock];
};

/// Makes the slice of words at `w` from those before it.
VEQ_INLINE void makeSlice(std::uint32_t* w) {
  for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(kSlice); ++i) {
    w[i] = w[i - 24] + w[i - 248] + 8 * (w[i - 40] + w[i - 96]) - 4 * (w[i - 80] + w[i - 192]) +
           6 * w[i - 136];
  }
}

template <class Value>
VEQ_INLINE void writeOut(const std::uint32_t* words, std::size_t count, Value* out) {
  for (std::size_t i = 0; i < count; ++i) out[i] = fromDraw<Value>(words[i] >> 1);
}

/// Writes the `count` >= 1 draws that follow the block's history, and answers where the words drawn
/// end within the block.
template <class Value>
VEQ_INLINE const std::uint32_t* fillBlocks(WordBlock& block, Value* out, std::uint64_t count) {
  std::uint32_t* const last = block.words + kHistory + kBlock;
  for (;;) {
    for (std::uint32_t* w = block.words + kHistory; w != last; w += kSlice) {
      makeSlice(w);
      if (count <= kSlice) {
        writeOut(w, static_cast<std::size_t>(count), out);
        return w + count;
      }
      writeOut(w, kSlice, out);
      out += kSlice;
      count -= kSlice;
    }
    std::memcpy(block.words, block.words + kBlock, kHistory * sizeof *block.words);
  }
}

template <class Value>
const std::uint32_t* fillBlocksPlain(WordBlock& block, Value* out, std::uint64_t count) {
  return fillBlocks(block, out, count);
}
template <class Value>
VEQ_WIDE_VECTORS const std::uint32_t* fillBlocksWide(WordBlock& block, Value* out,
                                                     std::uint64_t count) {
  return fillBlocks(block, out, count);
}

}  // namespace veq::internal
