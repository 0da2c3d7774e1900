/// \file
/// The network as a value.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <utility>

#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"

namespace veq {

/// A share of a network. Copies are the same network; a copy of its own makes `copy()`. Never empty,
/// except after it was moved from.
/// \ingroup build
class Network {
 public:
  /// The published network itself, in O(1). std::invalid_argument, "There is no network.", for null.
  explicit Network(Shared<VEQNetwork> published) : published_(std::move(published)) {
    if (!published_) throw std::invalid_argument("There is no network.");
  }

  /// The network with its published operations, in O(1).
  [[nodiscard]] const Shared<VEQNetwork>& published() const { return published_; }

  [[nodiscard]] std::uint64_t countVertices() const { return published_->countVertices(); }
  [[nodiscard]] std::uint64_t countEdges() const { return published_->countEdges(); }
  [[nodiscard]] bool isDirected() const { return published_->isDirected(); }

 private:
  Shared<VEQNetwork> published_;
};

}  // namespace veq
