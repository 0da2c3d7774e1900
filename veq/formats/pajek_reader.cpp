#include <array>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "veq/base/memory.hpp"
#include "veq/base/text_escapes.hpp"
#include "veq/base/text_scanner.hpp"
#include "veq/formats/internal/pajek.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

enum class Section { kNone, kVertices, kEdges, kArcs, kArcList, kEdgesList };

struct SectionWord {
  std::string_view word;
  Section section;
};
/// In the order in which they are tried. "ArcList" does not match "*Arcslist", but "Arcs" does.
constexpr std::array<SectionWord, 4> kEdgeSections = {{{"ArcList", Section::kArcList},
                                                       {"EdgesList", Section::kEdgesList},
                                                       {"Edges", Section::kEdges},
                                                       {"Arcs", Section::kArcs}}};

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

/// Files count from 1; a number below that names nothing that can be.
std::uint64_t asIndex(std::int64_t number) {
  return number < 1 ? std::numeric_limits<std::uint64_t>::max()
                    : static_cast<std::uint64_t>(number) - 1;
}

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
      case Section::kNone:
        break;
      case Section::kVertices:
        return readVertex();
      case Section::kEdges:
      case Section::kArcs:
        readEdge();
        break;
      case Section::kArcList:
      case Section::kEdgesList:
        readEdgesOfOneVertex();
        break;
    }
    return true;
  }

  bool readHeader() {
    section_ = Section::kNone;
    if (scanner_.matchPrefix("Vertices")) return readVerticesHeader();
    for (const SectionWord& candidate : kEdgeSections) {
      if (!scanner_.matchPrefix(candidate.word)) continue;
      section_ = candidate.section;
      // Only the weights start afresh, so that those of earlier sections are lost.
      weights_.clear();
      if (section_ == Section::kArcs) directed_ = true;
      break;
    }
    return true;
  }

  bool readVerticesHeader() {
    scanner_.skipBlanks();
    const std::optional<std::int64_t> count = scanner_.readInteger();
    if (!count) return false;
    vertexCount_ = *count;
    names_.clear();
    positions_.clear();
    section_ = Section::kVertices;
    return true;
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
    if (!number || *number < 1 || *number > vertexCount_) return !name && !hasPosition;
    const std::uint64_t vertex = asIndex(*number);
    if (name) names_.push_back({vertex, *name});
    // From the first position on, a vertex without one is at the origin.
    if (positionsSeen_) positions_.push_back({vertex, at});
    return true;
  }

  /// Ends that cannot be read are those of the line before.
  void readEdge() {
    source_ = scanner_.readInteger().value_or(source_);
    scanner_.skipBlanks();
    target_ = scanner_.readInteger().value_or(target_);
    scanner_.skipBlanks();
    append(scanner_.readFloat().value_or(1.0F), section_ == Section::kEdges);
  }

  void readEdgesOfOneVertex() {
    source_ = scanner_.readInteger().value_or(source_);
    for (;;) {
      scanner_.skipBlanks();
      const std::optional<std::int64_t> target = scanner_.readInteger();
      if (!target) return;
      target_ = *target;
      append(1.0F, section_ == Section::kEdgesList);
    }
  }

  /// Behind arcs an edge is two of them, one each way.
  void append(float weight, bool isEdge) {
    appendArc(source_, target_, weight);
    if (isEdge && directed_) appendArc(target_, source_, weight);
  }

  void appendArc(std::int64_t source, std::int64_t target, float weight) {
    from_.push_back(asIndex(source));
    to_.push_back(asIndex(target));
    weights_.push_back(weight);
    weighted_ |= weight != 1.0F;
  }

  std::optional<NetworkDraft> finish() {
    if (vertexCount_ < 0) return std::nullopt;
    if (weighted_ && weights_.size() != from_.size()) return std::nullopt;
    const std::optional<std::uint64_t> count =
        countVertices(static_cast<std::uint64_t>(vertexCount_), from_, to_);
    if (!count) return std::nullopt;
    NetworkDraft draft;
    draft.vertexCount = *count;
    draft.from = std::move(from_);
    draft.to = std::move(to_);
    draft.directed = directed_;
    if (weighted_) draft.edgesWeights = std::move(weights_);
    // Only now is the file known to be good, and its number of vertices worth memory.
    if (namesSeen_) requireMemory(draft.vertexCount, sizeof(PropertyValue));
    if (positionsSeen_) requireMemory(draft.vertexCount, sizeof(VEQVector3d));
    if (namesSeen_) draft.verticesProperties.set("Name", names());
    if (positionsSeen_) draft.verticesProperties.set("Position", positions());
    return draft;
  }

  [[nodiscard]] Shared<PropertyColumn> names() const {
    std::vector<PropertyValue> values(static_cast<std::size_t>(vertexCount_),
                                      PropertyValue(std::string()));
    for (const NameEntry& entry : names_) values[entry.vertex] = unescaped(entry.escaped);
    return std::make_shared<GenericArray>(std::move(values));
  }

  [[nodiscard]] Shared<PropertyColumn> positions() const {
    const auto count = static_cast<std::size_t>(vertexCount_);
    auto column = VEQVector3dArray::initWithSize_precision(count, kDoublePrecision);
    // A header behind the vertices makes the range ten times as large.
    const double scale = section_ == Section::kVertices ? 1.0 : 10.0;
    const std::array<double*, 3> axes = {column->xd(), column->yd(), column->zd()};
    for (std::size_t axis = 0; axis < axes.size(); ++axis) {
      for (const PositionEntry& entry : positions_) axes[axis][entry.vertex] = entry.at[axis];
      spreadAxis({axes[axis], count}, 0.5, scale);
    }
    return column;
  }

  TextScanner scanner_;
  Section section_ = Section::kNone;
  std::int64_t vertexCount_ = 0;
  bool namesSeen_ = false;
  bool positionsSeen_ = false;
  std::vector<NameEntry> names_;
  std::vector<PositionEntry> positions_;
  /// The ends of the last edge, kept over sections.
  std::int64_t source_ = 0;
  std::int64_t target_ = 0;
  RawVector<std::uint64_t> from_;
  RawVector<std::uint64_t> to_;
  bool directed_ = false;
  Weights weights_;
  bool weighted_ = false;
};

}  // namespace

std::optional<NetworkDraft> readPajek(std::string_view text) { return PajekReader(text).read(); }

}  // namespace veq::internal
