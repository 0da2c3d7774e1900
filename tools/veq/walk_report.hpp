/// \file
/// What a walk was and what came of it.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <veq/veq.hpp>

#include "data.hpp"

namespace veq::tool {

/// What a report tells of the network that was walked on.
struct WalkedOn {
  explicit WalkedOn(const Network& network);
  explicit WalkedOn(const WalkNetwork& network);

  std::uint64_t vertices;
  std::uint64_t edges;
  bool directed;
  /// Of a vertex; a walk-only network knows no in-degrees.
  std::function<std::string(std::uint64_t)> name;
  std::function<std::uint64_t(std::uint64_t)> degree;
  std::function<std::uint64_t(std::uint64_t)> inDegree;
};

/// Everything that is needed to repeat the walk, and its visits.
struct WalkReport {
  WalkReport(WalkedOn on, std::string file)
      : network(std::move(on)), networkFile(std::move(file)) {}

  WalkedOn network;
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
