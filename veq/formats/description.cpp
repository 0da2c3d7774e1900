// The two texts of a network that are meant for people.

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "veq/base/internal/number_text.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

// A 32-bit signed decimal, as "%d" prints the low half of a count: 2^31 is "-2147483648".
void appendCount(std::string& out, std::uint64_t count) {
  internal::appendInteger(out, std::int64_t{static_cast<std::int32_t>(count)});
}

void appendKeys(std::string& out, const std::vector<std::string>& keys) {
  for (const std::string& key : keys) {
    out += '"';
    out += key;
    out += "\" ";
  }
}

}  // namespace

std::string VEQNetwork::description() const {
  std::string out = "Network:\nNumber of Vertices:";
  appendCount(out, countVertices());
  out += isVertexWeighted() ? " (Weighted)\n" : " \n";
  out += "Number of Edges:";
  appendCount(out, countEdges());
  out += isEdgeWeighted() ? " (Weighted) " : "  ";
  out += isDirected() ? "(Directed)\n" : "\n";
  out += "Vertices:\nVertices Properties:";
  appendKeys(out, keysForPropertiesOfVertices());
  out += "\nEdges Properties:";
  appendKeys(out, keysForPropertiesOfEdges());
  out += '\n';
  return out;
}

std::string VEQNetwork::VEQ_MatrixDebug() const {
  const std::unique_ptr<float, decltype(&std::free)> matrix(buildAdjacencyMatrixInPointer(nullptr),
                                                            &std::free);
  const std::uint64_t n = countVertices();
  const float* cell = matrix.get();
  std::string out;
  for (std::uint64_t row = 0; row < n; ++row) {
    for (std::uint64_t column = 0; column < n; ++column) {
      internal::appendSixDecimals(out, static_cast<double>(*cell++));
      out += "  ";
    }
    out += '\n';
  }
  return out;
}

}  // namespace veq
