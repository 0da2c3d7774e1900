#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/whole_files.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// What the formats write differently in the lines of edges.
struct EdgeLineStyle {
  std::uint64_t firstVertex;          ///< The number of vertex 0.
  std::string_view unweightedSuffix;  ///< Stands in the place of a weight where there is none.
  std::string_view lineEnd;
};

/// The text of a network. The lines of its edges, which are nearly all of it, are made piece by
/// piece when somebody takes them: a line for each edge, in edge order, with source, target, and
/// the weight with six decimals where the network is edge-weighted. Refers to the network.
class NetworkText {
 public:
  NetworkText(const NetworkCore& core, const EdgeLineStyle& style);

  std::string beforeEdges;
  std::string behindEdges;

  [[nodiscard]] std::string whole();
  /// Needs no more memory, so that nothing can fail but the sink.
  [[nodiscard]] bool giveTo(const ByteSink& sink);
  /// The number of edges that the sink has, or is just given.
  [[nodiscard]] std::uint64_t edgesGiven() const { return edgesGiven_; }
  /// Whether all of it has arrived in the file.
  [[nodiscard]] bool writeTo(std::string_view path, bool atomically) {
    const ByteSource source = [this](const ByteSink& sink) { return giveTo(sink); };
    return writeWholeFile(path, source, atomically).hasValue();
  }

 private:
  bool giveEdgesTo(const ByteSink& sink);
  [[nodiscard]] std::size_t expectedSize() const;

  const NetworkCore& core_;
  EdgeLineStyle style_;
  Block<char> piece_;
  std::uint64_t edgesGiven_ = 0;
};

}  // namespace veq::internal
