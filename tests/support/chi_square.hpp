#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace veq::test {

/// Pearson's statistic of counts that are to come with these probabilities. Cells are large enough
/// for it: at least 20 expected in each.
inline double chiSquare(const std::vector<std::uint64_t>& counts,
                        const std::vector<double>& probabilities) {
  EXPECT_EQ(counts.size(), probabilities.size());
  double total = 0.0;
  for (const std::uint64_t count : counts) total += static_cast<double>(count);
  double sum = 0.0;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const double expected = total * probabilities[i];
    EXPECT_GE(expected, 20.0) << i;
    const double difference = static_cast<double>(counts[i]) - expected;
    sum += difference * difference / expected;
  }
  return sum;
}

/// What the statistic exceeds by chance less than once in 10^8 (Wilson and Hilferty's cube, which
/// errs to the safe side for few degrees of freedom): all statistical tests together fail by chance
/// less than once in 10^6.
inline double chiSquareLimit(std::size_t degreesOfFreedom) {
  const auto df = static_cast<double>(degreesOfFreedom);
  const double part = 2.0 / (9.0 * df);
  const double root = 1.0 - part + 5.612 * std::sqrt(part);
  return df * root * root * root;
}

/// Whether counts follow probabilities that sum to 1. Cells of probability 0 must be empty.
inline bool follows(const std::vector<std::uint64_t>& counts,
                    const std::vector<double>& probabilities) {
  std::vector<std::uint64_t> possible;
  std::vector<double> positive;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (probabilities[i] > 0.0) {
      possible.push_back(counts[i]);
      positive.push_back(probabilities[i]);
    } else if (counts[i] != 0) {
      return false;
    }
  }
  return chiSquare(possible, positive) < chiSquareLimit(positive.size() - 1);
}

}  // namespace veq::test
