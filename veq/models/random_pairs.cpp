// Networks whose edges are pairs that chance chooses: G(n, p), G(n, m) and blocks.

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "veq/models/internal/generating.hpp"
#include "veq/models/internal/geometric_skips.hpp"

namespace veq {
namespace {

using internal::argumentError;
using internal::countError;
using internal::draftOf;
using internal::DrawBlocks;
using internal::generated;
using internal::GeometricSkips;
using internal::GrowingEnds;
using internal::kMostPaired;
using internal::memoryError;
using internal::namedNumber;
using internal::Pace;
using internal::probabilityError;
using internal::RawVector;

constexpr int kBlocksPerLook = 64;

// Pairs in order, row by row: of the same vertices, each with those after it or with all others.
class Pairs {
 public:
  Pairs(std::uint64_t first, std::uint64_t n, bool directed)
      : first_(first), n_(n), directed_(directed), length_(n - 1) {}

  [[nodiscard]] std::uint64_t count() const {
    const Uint128 ordered = Uint128{n_} * (n_ - 1);
    return static_cast<std::uint64_t>(directed_ ? ordered : ordered / 2);
  }
  /// Places must ascend from call to call.
  [[nodiscard]] std::pair<std::uint64_t, std::uint64_t> at(std::uint64_t place) {
    while (place - begin_ >= length_) {
      begin_ += length_;
      ++row_;
      if (!directed_) --length_;
    }
    const std::uint64_t column = place - begin_;
    const std::uint64_t to = directed_ ? column + (column >= row_) : row_ + 1 + column;
    return {first_ + row_, first_ + to};
  }

 private:
  std::uint64_t first_;
  std::uint64_t n_;
  bool directed_;
  std::uint64_t row_ = 0;
  std::uint64_t begin_ = 0;
  std::uint64_t length_;
};

// Pairs of vertices of two blocks.
class CrossPairs {
 public:
  CrossPairs(std::uint64_t firstRow, std::uint64_t rows, std::uint64_t firstColumn,
             std::uint64_t columns)
      : firstRow_(firstRow), rows_(rows), firstColumn_(firstColumn), columns_(columns) {}

  [[nodiscard]] std::uint64_t count() const { return rows_ * columns_; }
  [[nodiscard]] std::pair<std::uint64_t, std::uint64_t> at(std::uint64_t place) const {
    return {firstRow_ + place / columns_, firstColumn_ + place % columns_};
  }

 private:
  std::uint64_t firstRow_;
  std::uint64_t rows_;
  std::uint64_t firstColumn_;
  std::uint64_t columns_;
};

// Links each pair with probability p. A whole block of numbers is turned into skips at once; what
// is not needed of the last one goes to the next pairs of blocks, or is used up.
class PairLinker {
 public:
  PairLinker(DrawBlocks& draws, GrowingEnds& ends, Pace& pace)
      : draws_(draws), ends_(ends), pace_(pace) {}

  template <class PairSpace>
  void link(PairSpace pairs, double p) {
    const std::uint64_t count = pairs.count();
    if (p == 0.0 || count == 0) return;
    const GeometricSkips skips(p, count);
    std::uint64_t place = 0;
    // For a few pairs a few numbers, lest blocks of blocks convert far more than they need.
    const auto expected = static_cast<std::size_t>(
        std::min(p * static_cast<double>(count) + 1.0, static_cast<double>(DrawBlocks::kBlock)));
    for (int block = 0;; ++block) {
      if (block % kBlocksPerLook == 0) pace_.reach(done_ + place);
      const auto numbers = draws_.take(expected);
      skips.many(numbers, skips_);
      for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (skips_[i] >= count - place) {
          draws_.giveBack(numbers.size() - i - 1);
          done_ += count;
          return;
        }
        place += skips_[i];
        const auto [from, to] = pairs.at(place++);
        ends_.add(from, to);
      }
    }
  }

 private:
  DrawBlocks& draws_;
  GrowingEnds& ends_;
  Pace& pace_;
  std::uint64_t done_ = 0;
  std::uint64_t skips_[DrawBlocks::kBlock];
};

// Different places below `count`, every set of `m` alike, ascending: places are drawn until so many
// different ones have come, in rounds that each sort what they got.
RawVector<std::uint64_t> differentPlaces(DrawBlocks& draws, std::uint64_t count, std::uint64_t m,
                                         Pace& pace) {
  RawVector<std::uint64_t> places;
  places.reserve(m);
  while (places.size() < m) {
    const auto known = static_cast<std::ptrdiff_t>(places.size());
    while (places.size() < m) {
      if (places.size() % (kBlocksPerLook * DrawBlocks::kBlock) == 0) pace.reach(places.size());
      places.push_back(draws.below(count));
    }
    std::sort(places.begin() + known, places.end());
    std::inplace_merge(places.begin(), places.begin() + known, places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
  }
  return places;
}

double pairCount(std::uint64_t n, bool directed) {
  return static_cast<double>(n) * static_cast<double>(n - 1) / (directed ? 1 : 2);
}

// Room for what is expected, and for what chance adds to it once in a long time.
std::uint64_t roomFor(double expected) {
  return static_cast<std::uint64_t>(expected + 6 * std::sqrt(expected) + 16);
}

}  // namespace

Result<Network> gnpNetwork(std::uint64_t n, double p, const ModelOptions& options, bool directed) {
  if (auto error = countError(n, kMostPaired)) return *error;
  if (auto error = probabilityError("p", p)) return *error;
  const double expected = p * pairCount(n, directed);
  if (auto error = memoryError(namedNumber("n", n) + ", " + namedNumber("p", p),
                               static_cast<double>(n), expected)) {
    return *error;
  }
  return generated(options, [&](DrawBlocks& draws) {
    const Pairs pairs(0, n, directed);
    Pace pace(options.progress, pairs.count());
    GrowingEnds ends;
    ends.reserve(std::min(roomFor(expected), pairs.count()));
    PairLinker(draws, ends, pace).link(pairs, p);
    return draftOf(n, std::move(ends), directed);
  });
}

Result<Network> gnmNetwork(std::uint64_t n, std::uint64_t m, const ModelOptions& options,
                           bool directed) {
  if (auto error = countError(n, kMostPaired)) return *error;
  Pairs pairs(0, n, directed);
  const std::uint64_t count = pairs.count();
  if (m > count) {
    return argumentError(namedNumber("m", m) + ": give at most " + std::to_string(count) +
                         ", the pairs of " + std::to_string(n) +
                         (n == 1 ? " vertex" : " vertices"));
  }
  if (auto error = memoryError(namedNumber("n", n) + ", " + namedNumber("m", m),
                               static_cast<double>(n), static_cast<double>(m))) {
    return *error;
  }
  return generated(options, [&](DrawBlocks& draws) {
    Pace pace(options.progress, m);
    GrowingEnds ends;
    ends.reserve(m);
    const auto add = [&](std::uint64_t place) {
      const auto [from, to] = pairs.at(place);
      ends.add(from, to);
    };
    // Of the smaller part, the linked or the other pairs.
    const auto places = differentPlaces(draws, count, std::min(m, count - m), pace);
    if (places.size() == m) {
      for (const std::uint64_t place : places) add(place);
    } else {
      std::uint64_t next = 0;
      for (const std::uint64_t left : places) {
        for (; next < left; ++next) add(next);
        ++next;
      }
      for (; next < count; ++next) add(next);
    }
    return draftOf(n, std::move(ends), directed);
  });
}

namespace {

std::optional<Error> blocksError(std::span<const std::uint64_t> sizes,
                                 std::span<const double> probabilities, bool directed) {
  if (sizes.empty()) return argumentError("sizes: none, give at least one");
  const std::size_t blocks = sizes.size();
  if (probabilities.size() / blocks != blocks || probabilities.size() % blocks != 0) {
    return argumentError(
        "probabilities: " + std::to_string(probabilities.size()) + " for " +
        std::to_string(blocks) + (blocks == 1 ? " block" : " blocks") + ", give " +
        std::to_string(Uint128{blocks} * blocks > UINT64_MAX ? UINT64_MAX : blocks * blocks));
  }
  const auto name = [](std::size_t i) { return "probabilities[" + std::to_string(i) + "]"; };
  for (std::size_t i = 0; i < probabilities.size(); ++i) {
    if (auto error = probabilityError(name(i), probabilities[i])) return error;
  }
  for (std::size_t a = 0; a < blocks && !directed; ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      if (probabilities[a * blocks + b] == probabilities[b * blocks + a]) continue;
      return argumentError(name(b * blocks + a) + " and " + name(a * blocks + b) + " differ");
    }
  }
  Uint128 n = 0;
  for (const std::uint64_t size : sizes) n += size;
  if (n > kMostPaired) {
    return argumentError("sizes: more than " + std::to_string(kMostPaired) + " vertices together");
  }
  return countError(static_cast<std::uint64_t>(n), kMostPaired);
}

double expectedEdges(std::span<const std::uint64_t> sizes, std::span<const double> probabilities,
                     bool directed) {
  double expected = 0.0;
  for (std::size_t a = 0; a < sizes.size(); ++a) {
    for (std::size_t b = directed ? 0 : a; b < sizes.size(); ++b) {
      const double pairs = a == b ? (sizes[a] == 0 ? 0.0 : pairCount(sizes[a], directed))
                                  : static_cast<double>(sizes[a]) * static_cast<double>(sizes[b]);
      expected += probabilities[a * sizes.size() + b] * pairs;
    }
  }
  return expected;
}

}  // namespace

Result<Network> blockNetwork(std::span<const std::uint64_t> sizes,
                             std::span<const double> probabilities, const ModelOptions& options,
                             bool directed) {
  if (auto error = blocksError(sizes, probabilities, directed)) return *error;
  std::vector<std::uint64_t> firsts{0};
  for (const std::uint64_t size : sizes) firsts.push_back(firsts.back() + size);
  const std::uint64_t n = firsts.back();
  const double expected = expectedEdges(sizes, probabilities, directed);
  if (auto error = memoryError("probabilities", static_cast<double>(n), expected)) return *error;
  return generated(options, [&](DrawBlocks& draws) {
    Pace pace(options.progress, static_cast<std::uint64_t>(pairCount(n, directed)));
    GrowingEnds ends;
    ends.reserve(roomFor(expected));
    PairLinker linker(draws, ends, pace);
    for (std::size_t a = 0; a < sizes.size(); ++a) {
      for (std::size_t b = directed ? 0 : a; b < sizes.size(); ++b) {
        const double p = probabilities[a * sizes.size() + b];
        if (sizes[a] == 0 || sizes[b] == 0) continue;
        if (a == b) {
          linker.link(Pairs(firsts[a], sizes[a], directed), p);
        } else {
          linker.link(CrossPairs(firsts[a], sizes[a], firsts[b], sizes[b]), p);
        }
      }
    }
    return draftOf(n, std::move(ends), directed);
  });
}

}  // namespace veq
