#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/text_escapes.hpp"
#include "veq/base/internal/text_scanner.hpp"
#include "veq/formats/internal/pajek.hpp"
#include "veq/formats/internal/text_topology.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

enum class PublishedSection { kNone, kVertices, kEdges, kArcs, kArcList, kEdgesList };

struct PublishedHeader {
  std::string_view word;
  PublishedSection section;
};
/// In the order in which they are tried. "ArcList" does not match "*Arcslist", but "Arcs" does.
constexpr std::array<PublishedHeader, 4> kEdgeSections = {
    {{"ArcList", PublishedSection::kArcList},
     {"EdgesList", PublishedSection::kEdgesList},
     {"Edges", PublishedSection::kEdges},
     {"Arcs", PublishedSection::kArcs}}};

/// What a line says of a vertex. Entries take memory for what stands in the text, not for the
/// number of vertices that it claims.
struct NameEntry {
  std::uint64_t vertex;
  std::string_view escaped;
};
struct PositionEntry {
  std::uint64_t vertex;
  std::array<float, 3> at;
};

/// Each step answers false where the whole read fails.
class PajekReader {
 public:
  explicit PajekReader(std::string_view text) : scanner_(text) {}

  std::optional<NetworkDraft> read() {
    while (!scanner_.atEnd()) {
      if (!readLine()) return std::nullopt;
      scanner_.finishLine();
    }
    return finish();
  }

 private:
  bool readLine() {
    if (scanner_.match('*')) return readHeader();
    if (scanner_.startsWith('%')) return true;
    scanner_.skipBlanks();
    switch (section_) {
      case PublishedSection::kNone:
        break;
      case PublishedSection::kVertices:
        return readVertex();
      case PublishedSection::kEdges:
      case PublishedSection::kArcs:
        readEdge();
        break;
      case PublishedSection::kArcList:
      case PublishedSection::kEdgesList:
        readEdgesOfOneVertex();
        break;
    }
    return true;
  }

  bool readHeader() {
    section_ = PublishedSection::kNone;
    if (scanner_.matchPrefix("Vertices")) return readVerticesHeader();
    for (const PublishedHeader& candidate : kEdgeSections) {
      if (!scanner_.matchPrefix(candidate.word)) continue;
      section_ = candidate.section;
      // Only the weights start afresh, so that those of earlier sections are lost.
      weights_.clear();
      weights_.reserve(topology_.reserveFor(scanner_.rest()));
      if (section_ == PublishedSection::kArcs) topology_.setDirected(true);
      break;
    }
    return true;
  }

  bool readVerticesHeader() {
    if (!topology_.readVertexCount(scanner_)) return false;
    names_.clear();
    positions_.clear();
    reserveNames();
    section_ = PublishedSection::kVertices;
    return true;
  }

  /// Once, as for the edges.
  void reserveNames() {
    if (names_.capacity() != 0 || topology_.vertexCount() < 0) return;
    names_.reserve(std::min(TextTopology::usualLines(scanner_.rest()),
                            static_cast<std::size_t>(topology_.vertexCount())));
  }

  bool readVertex() {
    const std::optional<std::int64_t> number = scanner_.readInteger();
    namesSeen_ |= number.has_value();
    scanner_.skipBlanks();
    std::optional<std::string_view> name;
    if (scanner_.match('"')) {
      name = scanner_.takeUntilQuoteOrNewline();
      scanner_.match('"');
    }
    std::array<float, 3> at{};
    bool hasPosition = false;
    for (float& component : at) {
      scanner_.skipBlanks();
      const std::optional<float> value = scanner_.readFloat();
      component = value.value_or(0.0F);
      hasPosition |= value.has_value();
    }
    positionsSeen_ |= hasPosition;
    if (!number || *number < 1 || *number > topology_.vertexCount()) return !name && !hasPosition;
    const auto vertex = static_cast<std::uint64_t>(*number - 1);
    if (name) names_.push_back({vertex, *name});
    // From the first position on, a vertex without one is at the origin.
    if (positionsSeen_) positions_.push_back({vertex, at});
    return true;
  }

  void readEdge() {
    topology_.readSource(scanner_);
    topology_.readTarget(scanner_);
    scanner_.skipBlanks();
    append(scanner_.readFloat().value_or(1.0F), section_ == PublishedSection::kEdges);
  }

  void readEdgesOfOneVertex() {
    topology_.readSource(scanner_);
    while (topology_.readTarget(scanner_)) append(1.0F, section_ == PublishedSection::kEdgesList);
  }

  /// Behind arcs an edge is two of them, one each way.
  void append(float weight, bool isEdge) {
    topology_.append();
    appendWeight(weight);
    if (!isEdge || !topology_.isDirected()) return;
    topology_.appendReverse();
    appendWeight(weight);
  }

  void appendWeight(float weight) {
    weights_.push_back(weight);
    weighted_ |= weight != 1.0F;
  }

  std::optional<NetworkDraft> finish() {
    if (weighted_ && weights_.size() != topology_.edgeCount()) return std::nullopt;
    std::optional<NetworkDraft> draft = topology_.finish();
    if (!draft) return std::nullopt;
    if (weighted_) draft->edgesWeights = std::move(weights_);
    // Only now is the file known to be good, and its number of vertices worth memory.
    if (const std::uint64_t bytes = bytesPerVertex(); bytes != 0) {
      requireMemory(static_cast<std::uint64_t>(topology_.vertexCount()), bytes);
    }
    if (namesSeen_) draft->properties.vertices.set("Name", names());
    if (positionsSeen_) draft->properties.vertices.set("Position", positions());
    return draft;
  }

  /// In all columns together.
  [[nodiscard]] std::uint64_t bytesPerVertex() const {
    return (namesSeen_ ? sizeof(PropertyValue) : 0) + (positionsSeen_ ? 3 * sizeof(double) : 0);
  }

  [[nodiscard]] Shared<PropertyColumn> names() const {
    std::vector<PropertyValue> values(static_cast<std::size_t>(topology_.vertexCount()),
                                      PropertyValue(std::string()));
    for (const NameEntry& entry : names_) values[entry.vertex] = unescaped(entry.escaped);
    return std::make_shared<GenericArray>(std::move(values));
  }

  [[nodiscard]] Shared<PropertyColumn> positions() const {
    const auto count = static_cast<std::size_t>(topology_.vertexCount());
    auto column = VEQVector3dArray::initWithSize_precision(count, kDoublePrecision);
    // A header behind the vertices makes the range ten times as large.
    const double scale = section_ == PublishedSection::kVertices ? 1.0 : 10.0;
    const std::array<double*, 3> axes = {column->xd(), column->yd(), column->zd()};
    for (std::size_t axis = 0; axis < axes.size(); ++axis) {
      for (const PositionEntry& entry : positions_) axes[axis][entry.vertex] = entry.at[axis];
      spreadAxis({axes[axis], count}, 0.5, scale);
    }
    return column;
  }

  TextScanner scanner_;
  PublishedSection section_ = PublishedSection::kNone;
  TextTopology topology_{/*first=*/1};
  bool namesSeen_ = false;
  bool positionsSeen_ = false;
  std::vector<NameEntry> names_;
  std::vector<PositionEntry> positions_;
  Weights weights_;
  bool weighted_ = false;
};

}  // namespace

std::optional<NetworkDraft> readPajek(std::string_view text) { return PajekReader(text).read(); }

}  // namespace veq::internal
