#include <algorithm>
#include <stdexcept>
#include <utility>

#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/column_text.hpp"
#include "veq/formats/internal/pajek.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// A copy of the network's positions, each axis between 0 and 1; null where there is not one
/// position for each vertex.
Owned<VEQVector3dArray> writablePositions(const NetworkCore& core) {
  const Shared<PropertyColumn>* const column = core.properties->vertices.find("Position");
  if (!column) return nullptr;
  Owned<VEQVector3dArray> positions;
  try {
    positions = VEQVector3dArray::initWithArray(column->get());
  } catch (const std::invalid_argument&) {
    return nullptr;  // Something else than positions stands under the key.
  }
  const std::uint64_t count = core.store.vertexCount();
  if (positions->count() < count) return nullptr;
  for (double* const axis : {positions->xd(), positions->yd(), positions->zd()}) {
    spreadAxis({axis, static_cast<std::size_t>(count)}, 0.0, 1.0);
  }
  return positions;
}

void appendPosition(std::string& out, const VEQVector3dArray& positions, std::uint64_t vertex) {
  const auto index = static_cast<std::size_t>(vertex);
  for (const auto axis : {positions.xs(), positions.ys(), positions.zs()}) {
    out += ' ';
    appendShortest(out, axis[index]);
  }
}

void appendVertices(std::string& out, const NetworkCore& core) {
  const std::uint64_t count = core.store.vertexCount();
  out += "*Vertices ";
  appendInteger(out, count);
  out += kLineEnd;
  const Shared<PropertyColumn>* const column = core.properties->vertices.find("Name");
  const std::optional<ColumnText> names =
      column ? std::optional<ColumnText>(**column) : std::nullopt;
  const Owned<VEQVector3dArray> positions = writablePositions(core);
  if (!names && !positions) return;
  for (std::uint64_t i = 0; i < count; ++i) {
    appendInteger(out, i + 1);
    if (names) {
      out += ' ';
      names->appendQuoted(out, i);
    }
    if (positions) appendPosition(out, *positions, i);
    out += kLineEnd;
  }
}

}  // namespace

void spreadAxis(std::span<double> values, double offset, double scale) {
  if (values.empty()) return;
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  const double min = *least;
  const double range = *most - min;
  for (double& value : values) {
    value = range > 0 ? ((value - min) / range - offset) * scale : 0.0;
  }
}

NetworkText writePajek(const NetworkCore& core) {
  NetworkText text(core, {1, " 1.0", kLineEnd});
  appendVertices(text.beforeEdges, core);
  text.beforeEdges += core.store.directed() ? "*Arcs" : "*Edges";
  text.beforeEdges += kLineEnd;
  return text;
}

}  // namespace veq::internal
