#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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
/// the weight with six decimals where the network is edge-weighted. As many threads make pieces as
/// parallelism() says. Refers to the network.
class NetworkText {
 public:
  /// How many edges a piece has: enough for a call of the operating system, and no more than a
  /// processor keeps at hand. Tests lower it.
  static inline std::uint64_t edgesOfPiece = 4096;

  NetworkText(const NetworkCore& core, const EdgeLineStyle& style);

  std::string beforeEdges;
  std::string behindEdges;

  [[nodiscard]] std::string whole();
  /// Needs no more memory, so that nothing can fail but the sink, which this thread calls.
  [[nodiscard]] bool giveTo(const ByteSink& sink);
  /// The number of edges that the sink has, or is just given.
  [[nodiscard]] std::uint64_t edgesGiven() const { return edgesGiven_; }
  /// Whether all of it has arrived in the file.
  [[nodiscard]] bool writeTo(std::string_view path, bool atomically) {
    const ByteSource source = [this](const ByteSink& sink) { return giveTo(sink); };
    return writeWholeFile(path, source, atomically).hasValue();
  }

 private:
  /// Pieces of edges one behind the other, and the first of those that are made side by side.
  struct Batch {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::uint64_t place = 0;
  };

  [[nodiscard]] static std::uint64_t piecesOf(std::uint64_t edges) {
    return edges / edgesOfPiece + (edges % edgesOfPiece != 0);
  }
  bool giveEdgesTo(const ByteSink& sink);
  bool give(const Batch& batch, const ByteSink& sink);
  void writePiece(const Batch& batch, std::uint64_t piece);
  /// Answers how many bytes are in the piece then.
  std::size_t writeEdges(char* piece, std::uint64_t begin, std::uint64_t end) const;
  [[nodiscard]] std::size_t expectedSize() const;

  const NetworkCore& core_;
  EdgeLineStyle style_;
  unsigned threads_ = 1;
  /// Pieces that are made side by side, with room for the longest lines, and their bytes.
  std::uint64_t roomOfPiece_ = 0;
  Block<char> pieces_;
  std::vector<std::size_t> lengths_;
  std::uint64_t edgesGiven_ = 0;
};

}  // namespace veq::internal
