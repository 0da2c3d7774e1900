// What must come back of a network from each format, computed from docs/formats by the plainest
// means: the C library's printf and strtod, and replacements one after the other.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <utility>

#include "fuzz/support/invariants.hpp"
#include "veq/base/internal/encodings.hpp"
#include "veq/formats/keyed_archiver.hpp"

namespace veq::fuzz {
namespace {

using Kind = PropertyColumn::Kind;
using Weights = std::optional<std::vector<float>>;
using Values = std::vector<PropertyValue>;

/// kAnything: a name, text or key breaks its line, and what follows can be anything.
enum class Fate { kNetwork, kNoNetwork, kAnything };

struct Expectation {
  Fate fate = Fate::kNetwork;
  NetworkImage network;

  void lose(Fate cause) {
    if (fate != Fate::kAnything) fate = cause;
  }
};

void check(const Expectation& expected, const VEQNetwork* network) {
  if (expected.fate == Fate::kAnything) {
    if (network) checkNetwork(*network);
    return;
  }
  VEQ_CHECK((expected.fate == Fate::kNetwork) == (network != nullptr));
  if (network) VEQ_CHECK_NO(difference(expected.network, imageOf(*network)));
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Between quotes and back.
std::string quotedAndBack(std::string text) {
  text = replaced(replaced(std::move(text), "\n", "<newline>"), "\"", "<quote>");
  return replaced(replaced(std::move(text), "<newline>", "\n"), "<quote>", "\"");
}

// Line ends other than the line feed, which is escaped.
bool breaksLine(std::string_view text) {
  for (const char* const end : {"\r", "\v", "\f", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    if (text.find(end) != text.npos) return true;
  }
  return false;
}

std::string sixDecimals(double value) {
  char buffer[400];
  std::snprintf(buffer, sizeof(buffer), "%.6f", value);
  return buffer;
}

double doubleAndBack(const std::string& text) {
  const double value = std::strtod(text.c_str(), nullptr);
  return std::isfinite(value) ? std::strtod(sixDecimals(value).c_str(), nullptr) : 0.0;
}

// By way of its text, which for a float is that of the float.
double numberAndBack(Number number) { return doubleAndBack(PropertyValue(number).text()); }

// A component that cannot be read stops the reader, so that those behind it in its line are 0, too.
VEQVector3d vectorAndBack(double x, double y, double z) {
  const double readY = std::isfinite(x) ? numberAndBack(y) : 0.0;
  return {numberAndBack(x), readY, std::isfinite(x) && std::isfinite(y) ? numberAndBack(z) : 0.0};
}

float weightAndBack(float weight, float unreadable) {
  if (!std::isfinite(weight)) return unreadable;
  return std::strtof(sixDecimals(static_cast<double>(weight)).c_str(), nullptr);
}

void weightsAndBack(Weights& weights, float unreadable) {
  if (!weights) return;
  for (float& weight : *weights) weight = weightAndBack(weight, unreadable);
}

// The text of an element; that of the null marker where the column ends before it.
std::string textAt(const ColumnImage& column, std::size_t index) {
  return (index < column.values.size() ? column.values[index] : PropertyValue()).text();
}

Shared<ColumnImage> strings(Values values) {
  return std::make_shared<ColumnImage>(ColumnImage{Kind::kGeneric, std::move(values)});
}

// Keys that no reader installs; single values can be set under them all the same.
bool isReserved(const std::string& key) {
  return key == "Edge Weight" || key == "Vertex Weight" || key == "Edge From" || key == "Edge To";
}

void loseReservedKeys(TableImage& table) {
  for (auto at = table.begin(); at != table.end();) {
    at = isReserved(at->first) ? table.erase(at) : std::next(at);
  }
}

Shared<ColumnImage> throughXnet(const ColumnImage& column, Expectation& expected) {
  ColumnImage read;
  for (const PropertyValue& value : column.values) {
    if (column.kind == Kind::kNumber) {
      read.kind = Kind::kNumber;
      read.values.emplace_back(numberAndBack(*value.number()));
    } else if (const VEQVector2d* v = value.vector2d(); v && column.kind == Kind::kVector2d) {
      read.values.emplace_back(vectorAndBack(v->x(), v->y(), 0.0));
    } else if (const VEQVector3d* w = value.vector3d(); w && column.kind == Kind::kVector3d) {
      read.values.emplace_back(vectorAndBack(w->x(), w->y(), w->z()));
    } else {
      if (breaksLine(value.text())) expected.lose(Fate::kAnything);
      read.values.emplace_back(quotedAndBack(value.text()));
    }
  }
  read.kind = column.kind == Kind::kVector2d ? Kind::kVector3d : column.kind;
  return std::make_shared<ColumnImage>(std::move(read));
}

void sendThroughXnet(const TableImage& table, bool ofVertices, Expectation& expected) {
  for (const auto& [key, column] : table) {
    // Names of vertices go with the vertices.
    if ((ofVertices && key == "Name") || isReserved(key)) continue;
    if (key.empty()) expected.lose(Fate::kNoNetwork);
    if (breaksLine(key) || key.find_first_of("\n\"") != key.npos) expected.lose(Fate::kAnything);
    expected.network.ofVertices[key] = throughXnet(*column, expected);
  }
}

void sendNames(const NetworkImage& network, bool emptyOnesFail, Expectation& expected) {
  const auto names = network.ofVertices.find("Name");
  if (names == network.ofVertices.end() || network.topology.vertexCount == 0) return;
  Values values;
  for (std::size_t v = 0; v < network.topology.vertexCount; ++v) {
    const std::string text = textAt(*names->second, v);
    if (breaksLine(text)) expected.lose(Fate::kAnything);
    if (emptyOnesFail && text.empty()) expected.lose(Fate::kNoNetwork);
    values.emplace_back(quotedAndBack(text));
  }
  expected.network.ofVertices["Name"] = strings(std::move(values));
}

Expectation throughXnet(const NetworkImage& network) {
  Expectation expected;
  test::SlowNetwork& topology = expected.network.topology;
  topology = network.topology;
  weightsAndBack(topology.verticesWeights, 1.0F);
  weightsAndBack(topology.edgesWeights, 1.0F);
  if (topology.vertexCount == 0) {
    topology.vertexCount = 1;
    // For which there is no weight.
    if (topology.verticesWeights) expected.lose(Fate::kNoNetwork);
  }
  sendNames(network, true, expected);
  sendThroughXnet(network.ofVertices, true, expected);
  sendThroughXnet(network.ofEdges, false, expected);
  return expected;
}

// An axis is given the range from low to high; false where it has no finite range.
bool spread(std::vector<double>& axis, double low, double high) {
  const auto [least, most] = std::minmax_element(axis.begin(), axis.end());
  const double min = *least;
  const double range = *most - min;
  if (!std::isfinite(range)) return false;
  for (double& value : axis) {
    if (!std::isfinite(value)) return false;
    value = range > 0 ? low + (value - min) / range * (high - low) : 0.0;
  }
  return true;
}

struct Positions {
  bool written = false;
  /// Nothing where infinities and NaN are among them.
  std::optional<std::vector<double>> axes[3];
};

Positions throughPajek(const NetworkImage& network) {
  Positions positions;
  const std::size_t n = network.topology.vertexCount;
  const auto column = network.ofVertices.find("Position");
  if (column == network.ofVertices.end() || n == 0) return positions;
  const Values& values = column->second->values;
  if (values.size() < n || column->second->kind == Kind::kNumber) return positions;
  std::vector<double> axes[3];
  for (const PropertyValue& value : values) {
    if (!value.isNull() && !value.vector3d()) return positions;
    const VEQVector3d at = value.isNull() ? VEQVector3d() : *value.vector3d();
    if (axes[0].size() == n) continue;
    axes[0].push_back(at.x());
    axes[1].push_back(at.y());
    axes[2].push_back(at.z());
  }
  positions.written = true;
  bool finite = true;
  for (auto& axis : axes) {
    finite = finite && spread(axis, 0.0, 1.0);
    for (double& value : axis) value = static_cast<double>(static_cast<float>(value));
    finite = finite && spread(axis, -5.0, 5.0);
  }
  for (int i = 0; finite && i < 3; ++i) positions.axes[i] = std::move(axes[i]);
  return positions;
}

// Positions may differ in what rounding leaves; the rest is compared exactly. Both sides lose the
// column, so that the comparison that follows passes over it.
void checkPositions(const Positions& expected, NetworkImage& read) {
  const auto column = read.ofVertices.find("Position");
  if (!expected.axes[0]) {
    VEQ_CHECK(expected.written || column == read.ofVertices.end());
  } else {
    VEQ_CHECK(column != read.ofVertices.end());
    const Values& values = column->second->values;
    VEQ_CHECK(values.size() == expected.axes[0]->size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      const VEQVector3d* const at = values[i].vector3d();
      VEQ_CHECK(at != nullptr);
      VEQ_CHECK(std::fabs(at->x() - (*expected.axes[0])[i]) < 1e-4);
      VEQ_CHECK(std::fabs(at->y() - (*expected.axes[1])[i]) < 1e-4);
      VEQ_CHECK(std::fabs(at->z() - (*expected.axes[2])[i]) < 1e-4);
    }
  }
  read.ofVertices.erase("Position");
}

Expectation throughPajek(const NetworkImage& network, const Positions& positions) {
  Expectation expected;
  test::SlowNetwork& topology = expected.network.topology;
  topology = network.topology;
  topology.verticesWeights.reset();
  weightsAndBack(topology.edgesWeights, 1.0F);
  const auto isOne = [](float weight) { return weight == 1.0F; };
  if (topology.edgesWeights &&
      std::all_of(topology.edgesWeights->begin(), topology.edgesWeights->end(), isOne)) {
    topology.edgesWeights.reset();
  }
  sendNames(network, false, expected);
  if (positions.written && !expected.network.ofVertices.count("Name")) {
    expected.network.ofVertices["Name"] =
        strings(Values(topology.vertexCount, PropertyValue(std::string())));
  }
  topology.vertexCount = std::max<std::uint64_t>(topology.vertexCount, 1);
  return expected;
}

// What a reader of names makes of the indices in an edge list.
Expectation throughEdgeList(const test::SlowNetwork& network) {
  const std::size_t m = network.edges.size();
  Expectation expected;
  test::SlowNetwork& topology = expected.network.topology;
  topology.directed = network.directed;
  std::vector<float> weights;
  Values names;
  const auto indexOf = [&](std::uint64_t vertex) {
    const PropertyValue name(std::to_string(vertex));
    const auto at = std::find(names.begin(), names.end(), name);
    if (at == names.end()) return names.push_back(name), names.size() - 1;
    return static_cast<std::size_t>(at - names.begin());
  };
  // Without weights every other line is taken for that of the line before it.
  for (std::size_t e = 0; e < m; e += network.edgesWeights ? 1 : 2) {
    const std::size_t source = indexOf(network.edges[e].first);
    topology.edges.emplace_back(source, indexOf(network.edges[e].second));
    if (network.edgesWeights) {
      weights.push_back(weightAndBack(weightAndBack((*network.edgesWeights)[e], 0.0F), 0.0F));
    } else {
      weights.push_back(e + 1 < m ? static_cast<float>(network.edges[e + 1].first) : 1.0F);
    }
  }
  topology.vertexCount = names.size();
  if (network.edgesWeights || m > 1) topology.edgesWeights = std::move(weights);
  expected.network.ofVertices["Name"] = strings(std::move(names));
  return expected;
}

Expectation throughArchive(const NetworkImage& network) {
  Expectation expected{Fate::kNetwork, network};
  const std::uint64_t n = network.topology.vertexCount;
  const std::size_t m = network.topology.edges.size();
  const bool hasVertexWeights = network.topology.verticesWeights.has_value();
  const bool hasEdgeWeights = network.topology.edgesWeights.has_value();
  test::SlowNetwork& topology = expected.network.topology;
  topology.vertexCount = 1;
  for (const auto& [a, b] : topology.edges) {
    topology.vertexCount = std::max({topology.vertexCount, a + 1, b + 1});
  }
  if (hasEdgeWeights && topology.vertexCount != n) expected.lose(Fate::kNoNetwork);
  // Each flag decides about the other kind.
  if (!hasEdgeWeights) topology.verticesWeights.reset();
  if (!hasVertexWeights) topology.edgesWeights.reset();
  if (hasEdgeWeights && !hasVertexWeights) topology.verticesWeights.emplace(n, 0.0F);
  if (hasVertexWeights && !hasEdgeWeights) topology.edgesWeights.emplace(m, 0.0F);
  loseReservedKeys(expected.network.ofVertices);
  loseReservedKeys(expected.network.ofEdges);
  return expected;
}

}  // namespace

void checkXnetRoundTrip(const VEQNetwork& network) {
  const std::string text = network.formattedStringValue();
  const auto read = VEQNetwork::initWithNetworkFormattedString(text);
  if (!internal::isValidUtf8(text)) {
    VEQ_CHECK(!read);
    return;
  }
  check(throughXnet(imageOf(network)), read.get());
}

void checkPajekRoundTrip(const VEQNetwork& network) {
  const std::string text = network.pajekFormattedStringValue();
  const auto read = VEQNetwork::initWithNetworkPajekFormattedString(text);
  if (!internal::isValidUtf8(text)) {
    VEQ_CHECK(!read);
    return;
  }
  const NetworkImage written = imageOf(network);
  const Positions positions = throughPajek(written);
  const Expectation expected = throughPajek(written, positions);
  if (expected.fate != Fate::kNetwork) return check(expected, read.get());
  VEQ_CHECK(read != nullptr);
  NetworkImage image = imageOf(*read);
  checkPositions(positions, image);
  VEQ_CHECK_NO(difference(expected.network, image));
  // What ISO-8859-1 can hold, it gives back.
  if (const auto latin1 = internal::latin1FromUtf8(text)) {
    VEQ_CHECK(internal::utf8FromLatin1(*latin1) == text);
  }
}

void checkEdgeListRoundTrip(const VEQNetwork& network) {
  const std::string text = network.edgesListFormattedStringValue();
  const NetworkImage written = imageOf(network);
  try {
    const auto read = VEQNetwork::initWithEdgesListString_directed(text, network.isDirected());
    check(throughEdgeList(written.topology), read.get());
  } catch (const std::out_of_range&) {
    VEQ_CHECK(text.empty());
  }
  VEQ_CHECK(text.empty() == written.topology.edges.empty());
}

void checkArchiveRoundTrip(const VEQNetwork& network) {
  VEQKeyedArchiver archiver;
  network.encodeWithCoder(archiver);
  VEQKeyedUnarchiver unarchiver(archiver.bytes());
  VEQ_CHECK(unarchiver.isValid());
  const auto read = VEQNetwork::initWithCoder(unarchiver);
  check(throughArchive(imageOf(network)), read.get());
}

}  // namespace veq::fuzz
