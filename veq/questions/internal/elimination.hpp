/// \file
/// Solving the equations of chains without subtraction.
///
/// Eliminating a state turns what flows through it into flows among those that are left. The pivot,
/// 1 less the probability to stay, is the sum of all other flows of its row, so that nothing is
/// ever subtracted and each number keeps its digits, however badly the equations are conditioned
/// (Grassmann, Taksar and Heyman 1985).
#pragma once

#include <cstdint>
#include <vector>

#include "veq/base/internal/pace.hpp"

namespace veq::internal {

/// A square of probabilities between states, and of leaving them for outside.
class Flows {
 public:
  explicit Flows(std::size_t states)
      : states_(states), between_(states * states), leaving(states) {}

  [[nodiscard]] std::size_t states() const { return states_; }
  [[nodiscard]] double& at(std::size_t from, std::size_t to) {
    return between_[from * states_ + to];
  }

  /// The mean total of `gain` that a walk collects, gain[i] in each step from state i, before it
  /// leaves. Everything leaves at last.
  [[nodiscard]] std::vector<double> collected(std::vector<double> gain, Pace* pace);
  /// The shares of time in each state where nothing leaves and all reach each other.
  [[nodiscard]] std::vector<double> stationary(Pace* pace);

 private:
  // Eliminates the states from the last to `fewest`, and answers for each the sum of its row.
  std::vector<double> eliminate(std::size_t fewest, std::vector<double>* gain, Pace* pace);

  std::size_t states_;
  std::vector<double> between_;

 public:
  std::vector<double> leaving;
};

}  // namespace veq::internal
