/// \file
/// The model networks that the program can grow.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "network_files.hpp"

namespace veq::tool {

/// What the options of all models can give. Each model reads its own.
struct ModelArguments {
  std::uint64_t vertices = 0;
  std::uint64_t edges = 0;
  std::uint64_t links = 0;
  std::uint64_t neighbours = 0;
  std::uint64_t evenDegree = 0;
  std::uint64_t tries = 0;
  std::optional<std::uint64_t> dimensions;
  double degree = 0;
  double probability = 0;
  double radius = 0;
  std::string sizes;
  std::string probabilities;
  std::string degrees;
  bool directed = false;
  bool simple = false;
  bool periodic = false;
  Input network;
  /// The network that `network` names, read before the work begins.
  std::optional<Network> loaded;
};

struct Model {
  std::string name;
  std::string summary;
  /// The law in a sentence, by example.
  std::string examples;
  /// What the library calls an argument, and the option that gives it.
  std::vector<std::pair<std::string, std::string>> arguments;
  void (*addOptions)(Command& command, ModelArguments& arguments);
  /// Draws from the options' state, or from the shared generator, which stands at the same place.
  Result<Network> (*make)(const ModelArguments& arguments, const ModelOptions& options);
};

[[nodiscard]] std::span<const Model> models();

/// "--probability needs 0 to 1, not 1.5", for "p = 1.5: give 0 to 1".
[[nodiscard]] std::string inOptions(const Model& model, const std::string& reason);

}  // namespace veq::tool
