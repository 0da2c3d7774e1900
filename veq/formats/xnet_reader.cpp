#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "veq/base/diagnostic_log.hpp"
#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/text_escapes.hpp"
#include "veq/base/internal/text_scanner.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/lines_ahead.hpp"
#include "veq/formats/internal/six_decimals.hpp"
#include "veq/formats/internal/text_topology.hpp"
#include "veq/formats/internal/xnet.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

enum class XnetSection { kNone, kVertices, kEdges, kVertexProperty, kEdgeProperty };
enum class ValueType { kNumber, kVector2d, kVector3d, kString };

/// The lines of one property section on their way to a column.
class ColumnDraft {
 public:
  ColumnDraft() = default;
  ColumnDraft(std::string_view key, ValueType type, bool ofEdges)
      : key_(key), type_(type), ofEdges_(ofEdges) {}

  [[nodiscard]] const std::string& key() const { return key_; }

  /// Reads one line, from behind its blanks.
  void readLine(TextScanner& scanner) {
    switch (type_) {
      case ValueType::kNumber:
        numbers_.push_back(readComponent(scanner));
        return;
      case ValueType::kVector2d:
        return ofEdges_ ? readEdgeVector2d(scanner) : readVector(scanner, 2);
      case ValueType::kVector3d:
        return readVector(scanner, 3);
      case ValueType::kString:
        return readString(scanner);
    }
  }

  [[nodiscard]] Shared<PropertyColumn> finish() {
    switch (type_) {
      case ValueType::kNumber:
        return std::make_shared<VEQNumberArray>(std::move(numbers_));
      case ValueType::kVector2d:
        if (ofEdges_) return finishEdgeVectors();
        [[fallthrough]];
      case ValueType::kVector3d:
        return VEQVector3dArray::initWithXd_Yd_Zd_count(
            components_[0].data(), components_[1].data(), components_[2].data(),
            components_[0].size());
      case ValueType::kString:
        break;
    }
    return std::make_shared<GenericArray>(std::move(strings_));
  }

 private:
  /// A number that cannot be read is 0.
  static double readComponent(TextScanner& scanner) {
    scanner.skipBlanks();
    return throughSixDecimals(scanner.readDouble().value_or(0.0));
  }

  void readVector(TextScanner& scanner, std::size_t dimensions) {
    for (std::size_t axis = 0; axis < components_.size(); ++axis) {
      components_[axis].push_back(axis < dimensions ? readComponent(scanner) : 0.0);
    }
  }

  /// Behind the first vector the zero that stands for z is glued to the x of the next line: "0" and
  /// "3.5" read as 3.5, "0" and "-3.5" as 0. Such columns have always come back like this, and
  /// going through the same text keeps it so.
  void readEdgeVector2d(TextScanner& scanner) {
    for (const char* const end : {" ", "; 0"}) {
      scanner.skipBlanks();
      appendSixDecimals(text_, scanner.readDouble().value_or(0.0));
      text_ += end;
    }
  }

  [[nodiscard]] Shared<PropertyColumn> finishEdgeVectors() {
    if (text_.empty()) return std::make_shared<VEQVector3dArray>();
    text_.resize(text_.size() - 2);
    return VEQVector3dArray::initWithString(text_);
  }

  void readString(TextScanner& scanner) {
    const bool quoted = scanner.match('"');
    const std::string_view text =
        quoted ? scanner.takeUntilQuoteOrNewline() : scanner.takeUntilBlankOrNewline();
    if (quoted) scanner.match('"');
    strings_.emplace_back(unescaped(text));
    // An empty value of an edge counts twice.
    if (ofEdges_ && text.empty()) strings_.emplace_back(std::string());
  }

  std::string key_;
  ValueType type_ = ValueType::kString;
  bool ofEdges_ = false;
  RawVector<double> numbers_;
  std::array<std::vector<double>, 3> components_;
  std::string text_;
  std::vector<PropertyValue> strings_;
};

/// Each step answers false where the whole read fails.
class XnetReader {
 public:
  XnetReader(TextInput& input, Team& team, bool logs, Pace* pace)
      : input_(input), pace_(pace), scanner_(input.piece(0)), ahead_(team), logs_(logs) {}

  std::optional<NetworkDraft> read() {
    do {
      while (!scanner_.atEnd()) {
        stopped_ = !readLines();
        if (stopped_) return std::nullopt;
        if (pace_) pace_->reach(before_ + scanner_.position());
      }
    } while (nextPiece());
    closeSection();
    return finish();
  }
  /// Where it stopped; nothing where it read all.
  [[nodiscard]] std::optional<Place> stoppedAt() {
    if (!stopped_) return std::nullopt;
    std::uint64_t offset = scanner_.position();
    for (std::size_t i = 0; i < piece_; ++i) offset += input_.piece(i).size();
    LineReader lines(input_);
    std::uint64_t begin = 0;
    Place place{1, 1};
    while (lines.next()) {
      place = {lines.number(), offset - begin + 1};
      begin = lines.position();
      if (begin > offset) break;
    }
    return place;
  }

 private:
  static constexpr std::uint64_t kLinesAtOnce = 4096;

  /// Pieces end with lines, of which one that is empty may begin the next.
  bool nextPiece() {
    const std::string_view text = input_.piece(piece_ + 1);
    if (text.empty()) return false;
    before_ += input_.piece(piece_++).size();
    scanner_ = TextScanner(text);
    scanner_.skipNewlines();
    return true;
  }

  /// As many as are read between two questions whether to go on.
  bool readLines() {
    for (std::uint64_t line = 0; line < kLinesAtOnce && !scanner_.atEnd(); ++line) {
      if (section_ == XnetSection::kEdges && !scanner_.startsWith('#')) {
        readEdges(kLinesAtOnce - line);
        return true;
      }
      if (!readLine()) return false;
      scanner_.finishLine();
    }
    return true;
  }

  bool readLine() {
    if (scanner_.match('#')) return readHeader();
    scanner_.skipBlanks();
    switch (section_) {
      case XnetSection::kNone:
      case XnetSection::kEdges:
        return true;
      case XnetSection::kVertices:
        return readVertex();
      case XnetSection::kVertexProperty:
      case XnetSection::kEdgeProperty:
        column_.readLine(scanner_);
        return true;
    }
    return true;
  }

  bool readHeader() {
    closeSection();
    section_ = XnetSection::kNone;
    // The longer word first: each matches whatever begins with it. Anything else is a comment.
    if (scanner_.matchPrefix("vertices")) return readVerticesHeader();
    if (scanner_.matchPrefix("edges")) return readEdgesHeader();
    if (scanner_.matchPrefix("v")) return readPropertyHeader(XnetSection::kVertexProperty);
    if (scanner_.matchPrefix("e")) return readPropertyHeader(XnetSection::kEdgeProperty);
    return true;
  }

  bool readVerticesHeader() {
    if (!topology_.readVertexCount(scanner_)) return false;
    scanner_.skipBlanks();
    renewWeights(verticesWeights_);
    names_.clear();
    section_ = XnetSection::kVertices;
    return true;
  }

  bool readEdgesHeader() {
    scanner_.skipBlanks();
    renewWeights(topology_.weights);
    scanner_.skipBlanks();
    if (scanner_.matchPrefix("directed")) topology_.setDirected(true);
    if (scanner_.matchPrefix("undirected")) topology_.setDirected(false);
    topology_.reserveFor(scanner_.rest());
    section_ = XnetSection::kEdges;
    return true;
  }

  /// An earlier "weighted" stays in force until "nonweighted" is read, but the list starts afresh.
  void renewWeights(std::optional<Weights>& weights) {
    const bool weighted = scanner_.matchPrefix("weighted") || weights.has_value();
    weights.reset();
    if (!scanner_.matchPrefix("nonweighted") && weighted) weights.emplace();
  }

  bool readPropertyHeader(XnetSection section) {
    scanner_.skipBlanks();
    const bool quoted = scanner_.match('"');
    const std::string_view key =
        quoted ? scanner_.takeUntilQuoteOrNewline() : scanner_.takeUntilBlankOrNewline();
    if (key.empty()) return false;
    if (quoted) scanner_.match('"');
    scanner_.skipBlanks();
    const ValueType type = readType();
    if (logs_ && type == ValueType::kVector3d && section == XnetSection::kVertexProperty) {
      logDiagnostic("vector 3D data");
    }
    column_ = ColumnDraft(key, type, section == XnetSection::kEdgeProperty);
    section_ = section;
    return true;
  }

  ValueType readType() {
    if (scanner_.matchPrefix("n")) return ValueType::kNumber;
    if (scanner_.matchPrefix("v2")) return ValueType::kVector2d;
    if (scanner_.matchPrefix("v3")) return ValueType::kVector3d;
    return ValueType::kString;
  }

  bool readVertex() {
    if (scanner_.match('"')) {
      const std::string_view name = scanner_.takeUntilQuoteOrNewline();
      if (name.empty()) return false;
      scanner_.match('"');
      scanner_.skipBlanks();
      names_.emplace_back(unescaped(name));
    }
    if (verticesWeights_) verticesWeights_->push_back(scanner_.readFloat().value_or(1.0F));
    return true;
  }

  /// So many lines and one more, or those up to the next header, or what threads have read.
  void readEdges(std::uint64_t most) {
    const std::size_t bytes =
        ahead_.read(scanner_.rest(), before_ + scanner_.position(), topology_, readPiece);
    if (bytes > 0) return scanner_.goTo(scanner_.position() + bytes);
    readWholeEdges(scanner_, most, topology_);
    if (scanner_.atEnd() || scanner_.startsWith('#')) return;
    // An end that is missing is that of the edge before.
    scanner_.skipBlanks();
    topology_.readSource(scanner_);
    topology_.readTarget(scanner_);
    topology_.appendEdge();
    if (topology_.weights) readWeight(scanner_, *topology_.weights);
    scanner_.finishLine();
  }

  /// Up to the next header or the next edge that lacks an end. Most of the time goes here, and what
  /// a compiler takes in depends on what else it has in hand.
  [[gnu::noinline, gnu::flatten]] static void readWholeEdges(TextScanner& scanner,
                                                             std::uint64_t most,
                                                             TextTopology& edges) {
    Weights* const weights = edges.weights ? &*edges.weights : nullptr;
    for (; most > 0 && !scanner.atEnd() && !scanner.startsWith('#'); --most) {
      if (!edges.readEnds(scanner)) return;
      edges.appendEdge();
      if (weights) readWeight(scanner, *weights);
      scanner.finishLine();
    }
  }
  static void readWeight(TextScanner& scanner, Weights& weights) {
    scanner.skipBlanks();
    weights.push_back(scanner.readFloat().value_or(1.0F));
  }
  static std::size_t readPiece(std::string_view text, TextTopology& edges) {
    TextScanner scanner(text);
    // Newlines that go on with those before the piece.
    scanner.skipNewlines();
    readWholeEdges(scanner, text.size(), edges);
    return scanner.position();
  }

  void closeSection() {
    if (section_ == XnetSection::kVertices && !names_.empty()) {
      properties_.vertices.set("Name", std::make_shared<GenericArray>(std::move(names_)));
      names_ = {};
    }
    if (section_ == XnetSection::kVertexProperty) {
      properties_.vertices.set(column_.key(), column_.finish());
    }
    if (section_ == XnetSection::kEdgeProperty)
      properties_.edges.set(column_.key(), column_.finish());
  }

  std::optional<NetworkDraft> finish() {
    std::optional<NetworkDraft> draft = topology_.finish();
    if (!draft) return std::nullopt;
    draft->verticesWeights = std::move(verticesWeights_);
    draft->properties = std::move(properties_);
    return draft;
  }

  TextInput& input_;
  Pace* pace_;
  std::size_t piece_ = 0;
  /// The bytes of the pieces before it.
  std::uint64_t before_ = 0;
  TextScanner scanner_;
  LinesAhead<TextTopology> ahead_;
  bool logs_;
  bool stopped_ = false;
  XnetSection section_ = XnetSection::kNone;
  ColumnDraft column_;
  TextTopology topology_{/*first=*/0};
  std::vector<PropertyValue> names_;
  std::optional<Weights> verticesWeights_;
  NetworkProperties properties_;
};

}  // namespace

std::optional<NetworkDraft> readXnet(TextInput& text, Team& team, std::optional<Place>* stopped,
                                     Pace* pace) {
  XnetReader reader(text, team, stopped == nullptr, pace);
  std::optional<NetworkDraft> draft = reader.read();
  if (!draft && stopped) *stopped = reader.stoppedAt();
  return draft;
}

XnetNumber causeOfVertices(TextInput& text) {
  XnetNumber cause;
  std::int64_t most = -1;
  bool negative = false;
  bool inEdges = false;
  LineReader lines(text);
  const auto look = [&](TextScanner& scanner, bool isEnd) {
    scanner.skipBlanks();
    const std::string_view line = scanner.rest();
    const std::optional<std::int64_t> number = scanner.readInteger();
    if (!number || negative) return;
    negative = *number < 0;
    // What an end asks for is one vertex more than it says.
    const std::int64_t asked = isEnd && *number < INT64_MAX ? *number + 1 : *number;
    if (asked <= most && !negative) return;
    most = asked;
    cause = {lines.placeOf(line.data()), line.substr(0, line.size() - scanner.rest().size()),
             isEnd};
  };
  while (lines.next()) {
    TextScanner scanner(lines.line());
    if (scanner.match('#')) {
      inEdges = scanner.matchPrefix("edges");
      if (!inEdges && scanner.matchPrefix("vertices")) look(scanner, false);
    } else if (inEdges) {
      look(scanner, true);
      look(scanner, true);
    }
  }
  return cause;
}

}  // namespace veq::internal
