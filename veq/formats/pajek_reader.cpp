#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/text_escapes.hpp"
#include "veq/base/internal/text_scanner.hpp"
#include "veq/formats/internal/lines_ahead.hpp"
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

/// The edges of all sections. Behind arcs an edge is two of them, one each way.
class PublishedEdges : public TextTopology {
 public:
  PublishedEdges() : TextTopology(/*first=*/1) {}

  /// Only the weights start afresh, so that those of earlier sections are lost.
  void beginSection(PublishedSection section, std::string_view rest) {
    if (weights) weights->clear();
    if (!weights) weights.emplace();
    reserveFor(rest);
    if (section == PublishedSection::kArcs) setDirected(true);
    const bool isOfEdges =
        section == PublishedSection::kEdges || section == PublishedSection::kEdgesList;
    isTwoArcs_ = isOfEdges && isDirected();
  }

  /// Reads lines of an edge each, up to the next header or an edge that lacks an end.
  [[gnu::noinline, gnu::flatten]] void readWholeLines(TextScanner& scanner, std::uint64_t most) {
    for (; most > 0 && !scanner.atEnd() && !scanner.startsWith('*'); --most) {
      if (!scanner.startsWith('%')) {
        if (!readEnds(scanner)) return;
        finishEdge(scanner);
      }
      scanner.finishLine();
    }
  }
  /// An end that is missing is that of the edge before.
  void readLine(TextScanner& scanner) {
    readSource(scanner);
    readTarget(scanner);
    finishEdge(scanner);
  }
  void readLineOfOneVertex(TextScanner& scanner) {
    readSource(scanner);
    while (readTarget(scanner)) append(1.0F);
  }

  /// Nothing where this is no network.
  [[nodiscard]] std::optional<NetworkDraft> finish() {
    if (!weighted_) weights.reset();
    if (weighted_ && weights->size() != edgeCount()) return std::nullopt;
    return TextTopology::finish();
  }

  // For LinesAhead

  void begin(const PublishedEdges& whole) {
    TextTopology::begin(whole);
    isTwoArcs_ = whole.isTwoArcs_;
    weighted_ = false;
  }
  void follow(const PublishedEdges& piece, std::uint64_t at) {
    TextTopology::follow(piece, at);
    weighted_ |= piece.weighted_;
  }

 private:
  void finishEdge(TextScanner& scanner) {
    scanner.skipBlanks();
    append(scanner.readFloat().value_or(1.0F));
  }
  void append(float weight) {
    appendEdge();
    weights->push_back(weight);
    weighted_ |= weight != 1.0F;
    if (!isTwoArcs_) return;
    appendReverse();
    weights->push_back(weight);
  }

  bool isTwoArcs_ = false;
  bool weighted_ = false;
};

/// Each step answers false where the whole read fails.
class PajekReader {
 public:
  PajekReader(std::string_view text, Team& team) : scanner_(text), ahead_(team) {}

  std::optional<NetworkDraft> read() {
    while (!scanner_.atEnd()) {
      if (hasEdges() && !scanner_.startsWith('*')) {
        readEdges();
        continue;
      }
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
      case PublishedSection::kEdges:
      case PublishedSection::kArcs:
        break;
      case PublishedSection::kVertices:
        return readVertex();
      case PublishedSection::kArcList:
      case PublishedSection::kEdgesList:
        edges_.readLineOfOneVertex(scanner_);
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
      edges_.beginSection(section_, scanner_.rest());
      break;
    }
    return true;
  }

  bool readVerticesHeader() {
    if (!edges_.readVertexCount(scanner_)) return false;
    names_.clear();
    positions_.clear();
    reserveNames();
    section_ = PublishedSection::kVertices;
    return true;
  }

  /// Once, as for the edges.
  void reserveNames() {
    if (names_.capacity() != 0 || edges_.vertexCount() < 0) return;
    names_.reserve(std::min(TextTopology::usualLines(scanner_.rest()),
                            static_cast<std::size_t>(edges_.vertexCount())));
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
    if (!number || *number < 1 || *number > edges_.vertexCount()) return !name && !hasPosition;
    const auto vertex = static_cast<std::uint64_t>(*number - 1);
    if (name) names_.push_back({vertex, *name});
    // From the first position on, a vertex without one is at the origin.
    if (positionsSeen_) positions_.push_back({vertex, at});
    return true;
  }

  /// Whether lines are of an edge each.
  [[nodiscard]] bool hasEdges() const {
    return section_ == PublishedSection::kEdges || section_ == PublishedSection::kArcs;
  }

  /// Lines that threads have read, or some others.
  void readEdges() {
    const std::size_t bytes = ahead_.read(scanner_.rest(), scanner_.position(), edges_, readPiece);
    if (bytes > 0) return scanner_.goTo(scanner_.position() + bytes);
    edges_.readWholeLines(scanner_, kLinesAtOnce);
    if (scanner_.atEnd() || scanner_.startsWith('*') || scanner_.startsWith('%')) return;
    scanner_.skipBlanks();
    edges_.readLine(scanner_);
    scanner_.finishLine();
  }
  static std::size_t readPiece(std::string_view text, PublishedEdges& edges) {
    TextScanner scanner(text);
    // Newlines that go on with those before the piece.
    scanner.skipNewlines();
    edges.readWholeLines(scanner, text.size());
    return scanner.position();
  }

  std::optional<NetworkDraft> finish() {
    std::optional<NetworkDraft> draft = edges_.finish();
    if (!draft) return std::nullopt;
    // Only now is the file known to be good, and its number of vertices worth memory.
    if (const std::uint64_t bytes = bytesPerVertex(); bytes != 0) {
      requireMemory(static_cast<std::uint64_t>(edges_.vertexCount()), bytes);
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
    std::vector<PropertyValue> values(static_cast<std::size_t>(edges_.vertexCount()),
                                      PropertyValue(std::string()));
    for (const NameEntry& entry : names_) values[entry.vertex] = unescaped(entry.escaped);
    return std::make_shared<GenericArray>(std::move(values));
  }

  [[nodiscard]] Shared<PropertyColumn> positions() const {
    const auto count = static_cast<std::size_t>(edges_.vertexCount());
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

  // As many as are read between two looks for what threads may read.
  static constexpr std::uint64_t kLinesAtOnce = 4096;

  TextScanner scanner_;
  LinesAhead<PublishedEdges> ahead_;
  PublishedSection section_ = PublishedSection::kNone;
  PublishedEdges edges_;
  bool namesSeen_ = false;
  bool positionsSeen_ = false;
  std::vector<NameEntry> names_;
  std::vector<PositionEntry> positions_;
};

}  // namespace

std::optional<NetworkDraft> readPajek(std::string_view text, Team& team) {
  return PajekReader(text, team).read();
}

}  // namespace veq::internal
