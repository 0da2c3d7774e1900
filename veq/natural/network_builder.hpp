/// \file
/// Building a network edge by edge.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// Collects vertices and edges until a network is built of them, which may be done more than once.
/// There are as many vertices as were added, and at least as many as the edges ask for. What throws
/// leaves the builder as it was.
/// \ingroup build
class VEQ_EXPORT NetworkBuilder {
 public:
  /// Adds vertices behind those that there are, and answers the first one's index.
  std::uint64_t addVertices(std::uint64_t count);
  /// The vertex of that name, which is added if it is not there yet.
  std::uint64_t vertexNamed(std::string_view name);

  /// \name Adding one edge
  /// They answer its index. Once an edge has a weight, all have one, 1.0 by default.
  /// std::out_of_range, "edge 7: target -1", for what cannot be an index.
  /// @{
  std::uint64_t addEdge(std::uint64_t source, std::uint64_t target);
  std::uint64_t addEdge(std::uint64_t source, std::uint64_t target, double weight);
  /// Between the vertices of these names, the source being added first.
  std::uint64_t addEdge(std::string_view source, std::string_view target);
  std::uint64_t addEdge(std::string_view source, std::string_view target, double weight);
  /// @}

  /// How many there would be in a network built now.
  [[nodiscard]] std::uint64_t countVertices() const { return vertices_; }
  [[nodiscard]] std::uint64_t countEdges() const { return sources_.size(); }

  /// The network of all that was added; weights and names of the builder take the place of those of
  /// the options. Errors as those of Network::build.
  [[nodiscard]] Result<Network> build(BuildOptions options = {}) const;

 private:
  std::uint64_t addNamed(std::string_view source, std::string_view target, const double* weight);

  std::uint64_t vertices_ = 0;
  std::vector<std::uint64_t> sources_;
  std::vector<std::uint64_t> targets_;
  std::vector<double> weights_;  // Empty until an edge has one.
  // The names, and which vertices have them.
  std::map<std::string, std::uint64_t, std::less<>> named_;
};

}  // namespace veq
