#pragma once

#include <cmath>
#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

namespace veq::test {

/// The additive-feedback generator of the GNU C library, from its recurrence alone.
class LiteralGenerator {
 public:
  explicit LiteralGenerator(std::uint32_t seed) {
    std::vector<std::int64_t> r{static_cast<std::int32_t>(seed == 0 ? 1 : seed)};
    for (int i = 1; i < 31; ++i) {
      r.push_back(16807 * r.back() % 2147483647);
      if (r.back() < 0) r.back() += 2147483647;
    }
    for (int i = 31; i < 34; ++i) r.push_back(r[static_cast<std::size_t>(i) - 31]);
    for (const std::int64_t word : r) words_.push_back(static_cast<std::uint32_t>(word));
    for (int i = 34; i < 344; ++i) static_cast<void>(draw());
  }

  std::uint32_t draw() {
    words_.push_back(words_[words_.size() - 3] + words_[words_.size() - 31]);
    words_.pop_front();
    return words_.back() >> 1;
  }

  std::vector<double> doubles(std::uint64_t count) {
    std::vector<double> result(count);
    for (double& value : result) value = draw() * 4.656612873077392578125e-10;
    return result;
  }

  /// From 0 to the given end.
  std::uint64_t integerTo(std::uint64_t end) {
    return static_cast<std::uint64_t>(
        std::round(static_cast<double>(end) * (draw() / 2147483647.0)));
  }

 private:
  std::deque<std::uint32_t> words_;
};

using EdgeList = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

/// Preferential attachment with its pool in memory, each candidate compared with all edges.
inline EdgeList literalPreferentialAttachment(LiteralGenerator& generator, std::uint64_t initial,
                                              std::uint64_t growth, std::uint64_t iterations) {
  std::vector<std::uint64_t> pool;
  for (std::uint64_t v = 0; v < initial; ++v) pool.push_back(v);
  EdgeList edges;
  if (growth == 0) return edges;
  for (std::uint64_t v = initial; v < initial + iterations; ++v) {
    for (std::uint64_t k = 0; k < growth;) {
      const std::uint64_t candidate = pool[generator.integerTo(pool.size() - 1)];
      bool known = false;
      for (const auto& [from, to] : edges) {
        known |= (from == v && to == candidate) || (from == candidate && to == v);
      }
      if (known) continue;
      edges.emplace_back(v, candidate);
      pool.push_back(candidate);
      ++k;
    }
    for (std::uint64_t k = 0; k < growth; ++k) pool.push_back(v);
  }
  return edges;
}

/// The uniform random network with its batches in memory, a new one whenever one is used up. For
/// degrees of 0 or more.
inline EdgeList literalRandomNetwork(LiteralGenerator& generator, std::uint64_t n, double degree) {
  const auto batchSize = static_cast<std::uint64_t>(static_cast<double>(n) * degree + 1.0);
  const double probability = degree / static_cast<double>(n);
  std::vector<double> batch = generator.doubles(batchSize);
  std::uint64_t position = 0;
  EdgeList edges;
  for (std::uint64_t i = 0; i < n; ++i) {
    for (std::uint64_t j = i + 1; j < n; ++j) {
      const double u = batch[position++];
      if (position == batchSize) {
        batch = generator.doubles(batchSize);
        position = 0;
      }
      if (probability > u) edges.emplace_back(i, j);
    }
  }
  return edges;
}

}  // namespace veq::test
