#include "veq/formats/internal/pajek_sections.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/lines_ahead.hpp"
#include "veq/formats/internal/pajek_columns.hpp"
#include "veq/formats/internal/pajek_edges.hpp"
#include "veq/formats/internal/pajek_matrix.hpp"
#include "veq/formats/internal/pajek_section_names.hpp"
#include "veq/formats/internal/pajek_vertices.hpp"

namespace veq::internal {
namespace {

enum NoteCode : unsigned {
  kVertexCodes,
  kNoCount = kVertexCodes + PajekVertices::kCodes,
  kMixed,
  kRounded,
  kNoEdge,
  kFurtherWords,
  kBeforeSections
};

std::string_view withoutQuotes(std::string_view text) {
  text = withoutBlanks(text);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    return text.substr(1, text.size() - 2);
  }
  return text;
}

inline bool isEmptyOrComment(const LineCursor& cursor) {
  if (cursor.atEnd()) return true;
  const char first = *cursor.at();
  return first == '%' || first == '#' || (first == '/' && cursor.rest().substr(0, 2) == "/*");
}

class PajekSections;

/// A piece of the text whose lines are edges of which there is nothing to be said, or empty.
class PlainEdges {
 public:
  void begin(const PajekSections& whole);
  [[nodiscard]] std::uint64_t count() const { return edges.count(); }

  /// How many bytes were such lines.
  std::size_t read(std::string_view text) {
    LineReader reader(text, loneReturns_);
    do {
      bytes = static_cast<std::size_t>(reader.position());
      lines = reader.number();
    } while (reader.next() && readLine(reader));
    return bytes;
  }

  PajekEdges edges;
  std::size_t bytes = 0;
  std::uint64_t lines = 0;
  /// The largest number of a vertex, and where it stands first.
  std::uint64_t largestEnd = 0;
  Place largestPlace;

 private:
  bool readLine(const LineReader& reader) {
    LineCursor cursor = reader.cursor();
    cursor.skipBlanks();
    if (isEmptyOrComment(cursor)) return true;
    const char* const first = cursor.at();
    const std::int64_t from = cursor.readInteger().value_or(0);
    cursor.skipBlanks();
    const char* const second = cursor.at();
    const std::int64_t to = cursor.readInteger().value_or(0);
    cursor.skipBlanks();
    const char* const third = cursor.at();
    const double weight = cursor.readNumber().value_or(1.0);
    const auto length = static_cast<std::size_t>(cursor.at() - third);
    cursor.skipBlanks();
    if (!isVertex(from) || !isVertex(to) || !cursor.atEnd()) return false;
    takeEnd(from, first, reader);
    takeEnd(to, second, reader);
    const auto asIndex = [](std::int64_t number) { return static_cast<std::uint64_t>(number) - 1; };
    if (edges.append(asIndex(from), asIndex(to), weight, length)) {
      edges.setWeightPlace(reader.placeOf(third));
    }
    return true;
  }
  [[nodiscard]] bool isVertex(std::int64_t number) const {
    return number >= 1 && static_cast<std::uint64_t>(number) <= most_;
  }
  void takeEnd(std::int64_t number, const char* at, const LineReader& reader) {
    if (static_cast<std::uint64_t>(number) <= largestEnd) return;
    largestEnd = static_cast<std::uint64_t>(number);
    largestPlace = reader.placeOf(at);
  }

  bool loneReturns_ = false;
  std::uint64_t most_ = 0;
};

class PajekSections {
 public:
  PajekSections(TextInput& text, ReadContext& context)
      : lines_(text), context_(context), textSize_(text.expectedSize()), ahead_(context.team) {
    edges_.reserve(text.expectedSize() / 16);
  }

  NetworkDraft read() {
    while (!ended_ && lines_.next()) {
      LineCursor cursor = lines_.cursor();
      cursor.skipBlanks();
      if (cursor.match('*')) {
        readHeader(cursor);
        readAhead();
      } else if (!isEmptyOrComment(cursor)) {
        readLine(cursor);
      }
      if (lines_.number() % kLinesAtOnce == 0) readAhead();
    }
    return finish();
  }

  // For LinesAhead

  [[nodiscard]] std::uint64_t count() const { return edges_.count(); }
  void reserve(std::uint64_t edges) { edges_.reserve(edges); }
  void resize(std::uint64_t edges) { edges_.resize(edges); }
  void copy(const PlainEdges& piece, std::uint64_t at) { edges_.copy(piece.edges, at); }
  void follow(const PlainEdges& piece, std::uint64_t at) {
    edges_.follow(piece.edges, at, lines_.number());
    if (piece.largestEnd > largestEnd_) {
      largestEnd_ = piece.largestEnd;
      largestPlace_ = {lines_.number() + piece.largestPlace.line, piece.largestPlace.column};
    }
    lines_.skip(piece.bytes, piece.lines);
  }

 private:
  friend class PlainEdges;

  static constexpr std::uint64_t kLinesAtOnce = 4096;

  /// Whether each line is an edge, and means the same wherever it stands.
  [[nodiscard]] bool hasPlainEdges() const {
    const bool ofStates = section_ == PajekSection::kLinks && !states_.empty();
    return (section_ == PajekSection::kArcs || section_ == PajekSection::kEdges ||
            section_ == PajekSection::kLinks || section_ == PajekSection::kBipartite) &&
           !ofStates && !edges_.hasLayers();
  }
  void readAhead() {
    context_.pace.reach(lines_.position());
    if (!hasPlainEdges()) return;
    const auto read = [](std::string_view text, PlainEdges& lines) { return lines.read(text); };
    while (ahead_.read(lines_.rest(), lines_.position(), *this, read) > 0) {
      context_.pace.reach(lines_.position());
    }
  }

  // Headers

  void readHeader(LineCursor cursor) {
    // What follows a column belongs to no section until one begins.
    if (columns_.end()) section_ = PajekSection::kNone;
    const char* const begin = cursor.at();
    while (!cursor.atEnd() && !isBlank(*cursor.at()) && *cursor.at() != ':') {
      cursor = LineCursor(cursor.rest().substr(1));
    }
    const std::string_view word(begin, static_cast<std::size_t>(cursor.at() - begin));
    cursor.skipBlanks();
    // The size of a partition or vector stands in a header of its own.
    if (section_ == PajekSection::kColumn && pajekSectionOf(word) == PajekSection::kVertices)
      return;
    // So does that of a cluster or permutation.
    if (section_ == PajekSection::kLeftOut && count_ &&
        pajekSectionOf(word) == PajekSection::kVertices)
      return;
    section_ = pajekSectionOf(word);
    hasSections_ |= section_ != PajekSection::kLeftOut;
    switch (section_) {
      case PajekSection::kNetwork:
        return readNetworkHeader(cursor);
      case PajekSection::kVertices:
        return readVerticesHeader(cursor);
      case PajekSection::kArcs:
      case PajekSection::kArcsList:
        return beginEdges(true, cursor);
      case PajekSection::kEdges:
      case PajekSection::kEdgesList:
        return beginEdges(false, cursor);
      case PajekSection::kMatrix:
        return beginMatrix(cursor);
      case PajekSection::kIntra:
      case PajekSection::kLinks:
        return beginOtherEdges(word);
      case PajekSection::kBipartite:
        return readBipartiteHeader(cursor);
      case PajekSection::kColumn:
        return columns_.begin(word, withoutQuotes(cursor.rest()), lines_.place());
      case PajekSection::kStates:
      case PajekSection::kLeftOut:
      case PajekSection::kNone:
        context_.noteEach(NoteKind::kLeftOut, lines_.place(),
                          "the section *" + std::string(word) + " is left out");
    }
  }

  void beginOtherEdges(std::string_view word) {
    noteFirst(firstEdges_);
    const bool ofStates = section_ == PajekSection::kLinks && !states_.empty();
    context_.noteEach(NoteKind::kTaken, lines_.place(),
                      "the lines of *" + std::string(word) + " are taken for edges" +
                          (ofStates ? " of the vertices that the states are of" : ""));
    edges_.begin(false, std::nullopt, {});
  }

  void readNetworkHeader(LineCursor cursor) {
    if (count_ || edges_.count() != 0) return beginAnotherNetwork();
    context_.title = std::string(withoutQuotes(cursor.rest()));
  }

  void beginAnotherNetwork() {
    context_.noteEach(NoteKind::kLeftOut, lines_.place(),
                      "a second network begins here; the rest of the file is left out");
    ended_ = true;
  }

  void readVerticesHeader(LineCursor cursor) {
    const std::optional<std::int64_t> count = cursor.readInteger();
    if (!count) {
      noteFirst(noCount_);
      if (cursor.isAtHugeInteger()) failHugeCount(cursor);
      if (!cursor.atEnd()) {
        failAt(lines_.placeOf(cursor.at()), "no number of vertices: " + shown(cursor.rest()));
      }
      return;
    }
    if (*count < 0) failAt(lines_.placeOf(cursor.at()), "a negative number of vertices");
    const auto vertices = static_cast<std::uint64_t>(*count);
    if (count_ && *count_ != vertices) return beginAnotherNetwork();
    context_.requireVerticesSoFar(vertices, lines_.place());
    countPlace_ = lines_.place();
    if (largestEnd_ > vertices) failOutside(largestEnd_, vertices, largestPlace_);
    count_ = vertices;
    vertices_.reserve(vertices, textSize_);
    cursor.skipBlanks();
    const Place place = lines_.placeOf(cursor.at());
    if (const std::optional<std::int64_t> first = cursor.readInteger()) {
      if (*first < 0 || static_cast<std::uint64_t>(*first) > vertices) {
        failAt(place, "a first mode of " + std::to_string(*first) + " of " +
                          std::to_string(vertices) + " vertices");
      }
      firstMode_ = static_cast<std::uint64_t>(*first);
    }
  }

  void failHugeCount(LineCursor cursor) const {
    const Place place = lines_.placeOf(cursor.at());
    const std::string count(cursor.takeWord());
    if (count.front() == '-') failAt(place, "a negative number of vertices");
    context_.requireVertices(UINT64_MAX, place, count + " vertices");
  }

  void readBipartiteHeader(LineCursor cursor) {
    const std::optional<std::int64_t> second = cursor.readInteger();
    if (!second || *second < 1) {
      failAt(lines_.placeOf(cursor.at()), "no number of the second mode's first vertex");
    }
    firstMode_ = static_cast<std::uint64_t>(*second - 1);
    noteFirst(firstEdges_);
    edges_.begin(false, std::nullopt, {});
  }

  /// Keeps the place where something came first.
  void noteFirst(std::optional<Place>& place) const {
    if (!place) place = lines_.place();
  }

  void beginEdges(bool arcs, LineCursor cursor) {
    noteFirst(arcs ? firstArcs_ : firstEdges_);
    std::optional<std::int64_t> relation;
    std::string_view name;
    if (cursor.match(':')) {
      cursor.skipBlanks();
      relation = cursor.readInteger();
      cursor.skipBlanks();
      name = withoutQuotes(cursor.rest());
    }
    edges_.begin(arcs, relation, name);
  }

  // Lines

  void readLine(LineCursor& cursor) {
    switch (section_) {
      case PajekSection::kVertices:
        return readVertex();
      case PajekSection::kArcs:
      case PajekSection::kEdges:
      case PajekSection::kLinks:
      case PajekSection::kBipartite:
        return readEdge(cursor);
      case PajekSection::kStates:
        return readState(cursor);
      case PajekSection::kIntra:
        return readLayerEdge(cursor);
      case PajekSection::kArcsList:
      case PajekSection::kEdgesList:
        return readList(cursor);
      case PajekSection::kMatrix:
        return readMatrixLine(cursor);
      case PajekSection::kColumn:
        return columns_.addCell(withoutBlanks(lines_.line()));
      case PajekSection::kNone:
        context_.note(kBeforeSections, NoteKind::kLeftOut, lines_.place(), [&] {
          return "what stands before the first section is left out: " + shown(lines_.line());
        });
        return;
      case PajekSection::kNetwork:
      case PajekSection::kLeftOut:
        return;
    }
  }

  void readVertex() { takeEnd(vertices_.readLine(lines_, context_, kVertexCodes), lines_.place()); }

  /// Makes a number of a vertex an index.
  std::uint64_t takeEnd(std::int64_t number, Place place) {
    const std::uint64_t index = static_cast<std::uint64_t>(number) - 1;
    if (index >= largestEnd_) takeLargest(number, place);
    return index;
  }
  /// The same of one that stands in the line.
  std::uint64_t takeEnd(std::int64_t number, const char* at) {
    const std::uint64_t index = static_cast<std::uint64_t>(number) - 1;
    if (index >= largestEnd_) takeLargest(number, lines_.placeOf(at));
    return index;
  }
  /// A number below 1, or one that is larger than all before.
  void takeLargest(std::int64_t number, Place place) {
    if (number < 1) {
      failAt(place, "vertex " + std::to_string(number) + ": vertices are numbered from 1");
    }
    const auto end = static_cast<std::uint64_t>(number);
    if (count_ && end > *count_) failOutside(end, *count_, place);
    largestEnd_ = end;
    largestPlace_ = place;
  }

  [[noreturn]] static void failOutside(std::uint64_t end, std::uint64_t count, Place place) {
    failAt(place, "vertex " + std::to_string(end) + " of " + std::to_string(count));
  }

  /// A number of a vertex; one beyond all numbers is an error.
  std::optional<std::int64_t> readEnd(LineCursor& cursor) const {
    const std::optional<std::int64_t> end = cursor.readInteger();
    if (!end) PajekVertices::requireNoHugeNumber(cursor, lines_);
    return end;
  }

  void readEdge(LineCursor& cursor) {
    const char* const first = cursor.at();
    std::optional<std::int64_t> from = cursor.readInteger();
    cursor.skipBlanks();
    const char* const second = cursor.at();
    std::optional<std::int64_t> to = cursor.readInteger();
    if (!from || !to) return leaveOutLine(from ? second : first);
    if (section_ == PajekSection::kLinks && !states_.empty()) {
      from = vertexOfState(*from, first);
      to = vertexOfState(*to, second);
    }
    const std::uint64_t source = takeEnd(*from, first);
    const std::uint64_t target = takeEnd(*to, second);
    cursor.skipBlanks();
    const char* const begin = cursor.at();
    const double weight = cursor.readNumber().value_or(1.0);
    if (edges_.append(source, target, weight, static_cast<std::size_t>(cursor.at() - begin))) {
      edges_.setWeightPlace(lines_.placeOf(begin));
    }
    cursor.skipBlanks();
    if (!cursor.atEnd()) {
      context_.note(kFurtherWords, NoteKind::kLeftOut, lines_.placeOf(cursor.at()), [&] {
        return "how an edge is drawn, or when it is there, is left out: " + shown(cursor.rest());
      });
    }
  }

  /// A line that has no number of a vertex there.
  void leaveOutLine(const char* at) {
    const char* const end = lines_.line().data() + lines_.line().size();
    PajekVertices::requireNoHugeNumber(
        LineCursor(std::string_view(at, static_cast<std::size_t>(end - at))), lines_);
    context_.note(kNoEdge, NoteKind::kLeftOut, lines_.place(),
                  [&] { return "no edge in " + shown(lines_.line()) + "; the line is left out"; });
  }

  /// A state and the vertex that it is of.
  void readState(LineCursor& cursor) {
    const std::optional<std::int64_t> state = cursor.readInteger();
    cursor.skipBlanks();
    const std::optional<std::int64_t> vertex = cursor.readInteger();
    if (state && vertex) states_.insert_or_assign(*state, *vertex);
  }
  [[nodiscard]] std::int64_t vertexOfState(std::int64_t state, const char* at) const {
    const auto found = states_.find(state);
    if (found == states_.end()) {
      failAt(lines_.placeOf(at), "state " + std::to_string(state) + ", which is not there");
    }
    return found->second;
  }

  void readLayerEdge(LineCursor& cursor) {
    edges_.setLayer(cursor.readInteger().value_or(0));
    cursor.skipBlanks();
    readEdge(cursor);
  }

  void readList(LineCursor& cursor) {
    const Place place = lines_.placeOf(cursor.at());
    const std::optional<std::int64_t> first = readEnd(cursor);
    const std::uint64_t from = first ? takeEnd(*first, place) : 0;
    for (cursor.skipBlanks(); first && !cursor.atEnd(); cursor.skipBlanks()) {
      const char* const at = cursor.at();
      const std::optional<std::int64_t> end = readEnd(cursor);
      if (!end) break;
      // A negative end marks a line of weight -1.
      edges_.append(from, takeEnd(std::abs(*end), at), *end < 0 ? -1.0 : 1.0, 0);
    }
    if (cursor.atEnd() && first) return;
    context_.note(kNoEdge, NoteKind::kLeftOut, lines_.placeOf(cursor.at()), [&] {
      return "no number of a vertex in " + shown(cursor.rest()) + "; it is left out";
    });
  }

  void beginMatrix(LineCursor cursor) {
    matrix_.requireWhole();
    matrix_ = PajekMatrix(count_, firstMode_);
    beginEdges(!firstMode_, cursor);
  }

  void readMatrixLine(const LineCursor& cursor) {
    if (const std::uint64_t vertices = matrix_.readLine(cursor, lines_, edges_); vertices > 0) {
      takeEnd(static_cast<std::int64_t>(vertices), lines_.place());
    }
  }

  NetworkDraft finish() {
    if (!hasSections_) failAt({1, 1}, "no section of Pajek, such as *Vertices or *Edges");
    columns_.end();
    matrix_.requireWhole();
    NetworkDraft draft;
    if (count_) {
      context_.requireVertices(*count_, countPlace_);
    } else {
      countPlace_ = noCount_.value_or(firstArcs_.value_or(firstEdges_.value_or(Place{1, 1})));
      context_.note(kNoCount, NoteKind::kTaken, countPlace_, [&] {
        return "no number of vertices: " + std::to_string(largestEnd_) + " from the lines";
      });
      context_.requireVertices(largestEnd_, largestPlace_);
    }
    draft.vertexCount = count_.value_or(largestEnd_);
    // The first header of the kind that came second.
    const Place mixed = std::max(firstArcs_.value_or(Place{}), firstEdges_.value_or(Place{}),
                                 [](const Place& a, const Place& b) { return a.line < b.line; });
    edges_.finish(draft, context_, mixed, kMixed, kRounded);
    vertices_.finish(draft, context_, kVertexCodes, countPlace_);
    if (firstMode_) {
      draft.properties.vertices.set("Mode", modeColumn(*firstMode_, draft.vertexCount));
    }
    columns_.finish(draft, context_);
    return draft;
  }

  LineReader lines_;
  ReadContext& context_;
  std::uint64_t textSize_;
  PajekSection section_ = PajekSection::kNone;
  bool hasSections_ = false;
  bool ended_ = false;
  std::optional<std::uint64_t> count_;
  /// The header with the number of vertices, or else what shows that there is none.
  Place countPlace_;
  std::optional<std::uint64_t> firstMode_;
  std::uint64_t largestEnd_ = 0;
  Place largestPlace_;
  std::optional<Place> noCount_;
  std::optional<Place> firstArcs_;
  std::optional<Place> firstEdges_;
  PajekVertices vertices_;
  PajekEdges edges_;
  std::unordered_map<std::int64_t, std::int64_t> states_;
  PajekMatrix matrix_;
  PajekColumns columns_;
  LinesAhead<PlainEdges> ahead_;
};

void PlainEdges::begin(const PajekSections& whole) {
  edges.clear();
  largestEnd = 0;
  loneReturns_ = whole.lines_.hasLoneReturns();
  most_ = whole.count_.value_or(UINT64_MAX);
}

}  // namespace

NetworkDraft readPajekSections(TextInput& text, ReadContext& context) {
  return PajekSections(text, context).read();
}

}  // namespace veq::internal
