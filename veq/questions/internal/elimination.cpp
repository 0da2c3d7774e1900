#include "veq/questions/internal/elimination.hpp"

#include <numeric>

namespace veq::internal {

std::vector<double> Flows::eliminate(std::size_t fewest, std::vector<double>* gain, Pace* pace) {
  std::vector<double> sums(states_);
  for (std::size_t k = states_; k-- > fewest;) {
    if (pace) pace->reach(states_ - 1 - k);
    const double* const row = &between_[k * states_];
    const double sum = std::accumulate(row, row + k, leaving[k]);
    sums[k] = sum;
    for (std::size_t i = 0; i < k; ++i) {
      double* const other = &between_[i * states_];
      if (other[k] == 0.0) continue;
      const double factor = other[k] / sum;
      for (std::size_t j = 0; j < k; ++j) other[j] += factor * row[j];
      leaving[i] += factor * leaving[k];
      if (gain) (*gain)[i] += factor * (*gain)[k];
    }
  }
  return sums;
}

std::vector<double> Flows::collected(std::vector<double> gain, Pace* pace) {
  const std::vector<double> sums = eliminate(0, &gain, pace);
  for (std::size_t k = 0; k < states_; ++k) {
    for (std::size_t j = 0; j < k; ++j) gain[k] += at(k, j) * gain[j];
    gain[k] /= sums[k];
  }
  return gain;
}

std::vector<double> Flows::stationary(Pace* pace) {
  const std::vector<double> sums = eliminate(1, nullptr, pace);
  std::vector<double> shares(states_);
  shares[0] = 1.0;
  for (std::size_t k = 1; k < states_; ++k) {
    for (std::size_t j = 0; j < k; ++j) shares[k] += shares[j] * at(j, k);
    shares[k] /= sums[k];
  }
  const double total = std::accumulate(shares.begin(), shares.end(), 0.0);
  for (double& share : shares) share /= total;
  return shares;
}

}  // namespace veq::internal
