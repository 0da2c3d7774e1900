/// \file
/// What a walk was and what came of it.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <veq/veq.hpp>

#include "data.hpp"

namespace veq::tool {

/// Everything that is needed to repeat the walk, and its visits.
struct WalkReport {
  Shared<const VEQNetwork> network;
  std::string networkFile;
  std::uint64_t agents = 0;
  std::string starts;  // as they were given; empty for all vertices in turn
  std::string choice;
  double restart = 0;
  std::optional<std::uint64_t> memory;
  double errors = 0;
  std::string agentsFile;  // empty without a network of agents
  std::uint64_t seed = 0;
  std::optional<std::uint64_t> substream;
  std::optional<std::uint64_t> stepsAsked;
  std::optional<double> target;
  WalkEnd end = WalkEnd::kSteps;
  std::uint64_t steps = 0;
  std::vector<std::uint64_t> visits;
};

/// Answers with the summary and a table of the most visited vertices, ten of them where their
/// number is not given; the forms for other programs list all then. CSV is the table alone, and the
/// summary goes to the second stream.
void writeReport(const WalkReport& report, Answer answer, std::optional<std::uint64_t> top,
                 std::ostream& out, std::ostream& aside);

}  // namespace veq::tool
