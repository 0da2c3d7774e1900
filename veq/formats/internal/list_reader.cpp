#include "veq/formats/internal/list_reader.hpp"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "veq/formats/internal/distinct_ends.hpp"
#include "veq/formats/internal/integer_edges.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/lines_ahead.hpp"
#include "veq/formats/internal/list_ends.hpp"
#include "veq/formats/internal/list_rows.hpp"
#include "veq/formats/internal/list_shape.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {
namespace {

enum NoteCode : unsigned {
  kIsolatedName,
  kEmptyName,
  kOpenQuote,
  kNoWeight,
  kMixedTypes,
  kRounded,
  kHeader
};

constexpr std::uint64_t kLinesAtOnce = 4096;

/// Reads a list of two integers a line, with a weight or without, quickly; nothing where a line is
/// anything else.
std::optional<IntegerEdges> readIntegerEdges(TextInput& text, const ListShape& shape,
                                             ReadContext& context) {
  if (shape.headerLine != 0 || shape.separator == '"') return std::nullopt;
  IntegerEdges edges(shape);
  edges.reserve(text.expectedSize() / 8);
  LinesAhead<IntegerEdges> ahead(context.team);
  LineReader lines(text);
  for (;;) {
    edges.lines = lines.number();
    edges.setLoneReturns(lines.hasLoneReturns());
    const std::size_t bytes =
        ahead.read(lines.rest(), lines.position(), edges, IntegerEdges::readPiece);
    lines.skip(bytes, edges.lines - lines.number());
    const std::uint64_t before = lines.number();
    if (bytes == 0 && !edges.read(lines, kLinesAtOnce)) return std::nullopt;
    if (bytes == 0 && lines.number() == before) return edges;
    context.pace.reach(lines.position());
  }
}

bool isDirected(const ListShape& shape, const ReadContext& context) {
  return context.options.directed.value_or(shape.directed.value_or(false));
}

/// Reads any list, field by field.
class FieldReader {
 public:
  FieldReader(TextInput& text, ListShape shape, ReadContext& context)
      : text_(text), shape_(std::move(shape)), rows_(text, shape_.separator), context_(context) {}

  NetworkDraft read() {
    nameColumns();
    for (std::uint64_t row = 1; rows_.next(); ++row) {
      if (row % kLinesAtOnce == 0) context_.pace.reach(rows_.position());
      if (rows_.number() != shape_.headerLine) readFields();
    }
    return finish();
  }

 private:
  /// The columns that are neither ends nor weight nor type.
  void nameColumns() {
    for (std::size_t i = 0; i < shape_.header.size(); ++i) nameColumn(i);
  }
  void nameColumn(std::size_t column) {
    while (columns_.size() <= column) {
      const std::size_t i = columns_.size();
      const bool hasName = i < shape_.header.size() && !shape_.header[i].empty() &&
                           named_.insert(shape_.header[i]).second;
      columns_.emplace_back(hasName ? shape_.header[i] : "Column " + std::to_string(i + 1));
    }
  }

  void readFields() {
    if (rows_.isOpen()) {
      context_.note(kOpenQuote, NoteKind::kRepaired, rows_.place(),
                    [] { return std::string("a quote that is not closed ends with its line"); });
    }
    const std::string_view source = field(shape_.source);
    const std::string_view target = field(shape_.target);
    if (source.empty() || target.empty()) return readIncomplete(source.empty() ? target : source);
    ends_.add(source, target);
    for (std::size_t i = 0; i < rows_.fields().size(); ++i) {
      hasUnquoted_ |= !rows_.fields()[i].empty() && !rows_.isQuoted(i);
      if (i != shape_.source && i != shape_.target) readFurther(i);
    }
    const bool isShort = shape_.weight >= rows_.fields().size();
    if (shape_.weight != ListShape::kNone && isShort) addWeight("");
    ++edges_;
  }

  [[nodiscard]] std::string_view field(std::size_t column) const {
    return column < rows_.fields().size() ? rows_.fields()[column] : std::string_view();
  }

  void readIncomplete(std::string_view name) {
    const Place place = rows_.place();
    if (name.empty()) {
      context_.note(kEmptyName, NoteKind::kLeftOut, place, [&] {
        return "no edge in " + shown(rows_.text()) + ": both ends are empty; the line is left out";
      });
      return;
    }
    context_.note(kIsolatedName, NoteKind::kTaken, place, [&] {
      return "the one end " + shown(name) + " is taken for a vertex without this edge";
    });
    isolated_.push_back(name);
  }

  void readFurther(std::size_t column) {
    const std::string_view cell = rows_.fields()[column];
    if (column == shape_.weight) return addWeight(cell);
    if (column == shape_.type) return addType(cell);
    setCell(column, cell);
  }

  void setCell(std::size_t column, std::string_view cell) {
    const bool quoted = rows_.isQuoted(column);
    if (cell.empty() && !quoted) return;
    nameColumn(column);
    context_.addUnsetCells(columns_[column].set(edges_, cell), [&] { return rows_.placeOf(cell); });
    if (quotedColumns_.size() <= column) quotedColumns_.resize(column + 1);
    if (quoted) quotedColumns_[column] = true;
  }

  /// What stands in quotes is text, unless everything does.
  [[nodiscard]] Shared<PropertyColumn> finished(std::size_t column) const {
    const bool isText = hasUnquoted_ && column < quotedColumns_.size() && quotedColumns_[column];
    return isText ? columns_[column].finishAsText(edges_) : columns_[column].finish(edges_);
  }

  void addWeight(std::string_view cell) {
    const std::optional<double> weight = wholeNumber(cell);
    if (!weight) {
      context_.note(kNoWeight, NoteKind::kRepaired, rows_.place(), [&] {
        return (cell.empty() ? std::string("no weight") : "the weight " + shown(cell)) +
               " is taken for 1";
      });
    }
    if (weights_.size() == edges_ && weights_.append(weight.value_or(1.0), cell.size())) {
      weights_.setPlace(rows_.placeOf(cell));
    }
  }

  void addType(std::string_view cell) {
    const bool directed = sameWord(cell, "directed");
    if (!directed && !sameWord(cell, "undirected")) return setCell(shape_.type, cell);
    (directed ? directedEdges_ : undirectedEdges_) = true;
    if (!directedEdges_ || !undirectedEdges_) return;
    context_.note(kMixedTypes, NoteKind::kRepaired, rows_.place(), [] {
      return std::string("directed and undirected edges: all are taken for directed");
    });
  }

  NetworkDraft finish() {
    if (directedEdges_ || undirectedEdges_) shape_.directed = directedEdges_;
    for (const std::string_view name : isolated_) ends_.addAlone(name);
    ends_.finish();
    NetworkDraft draft;
    draft.directed = isDirected(shape_, context_);
    takeEnds(draft);
    if (shape_.weight != ListShape::kNone && weights_.size() == edges_ && edges_ != 0) {
      weights_.finish(draft, context_, kRounded);
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (!hasUnquoted_) columns_[i].unsetEmptyCells();
      if (columns_[i].empty()) continue;
      context_.addUnsetCells(columns_[i].unsetBehind(edges_), [] { return Place{1, 1}; });
      addColumn(draft.properties.edges, columns_[i].key(), finished(i), {shape_.headerLine, 1},
                context_);
    }
    return draft;
  }

  void takeEnds(NetworkDraft& draft) {
    const std::vector<std::string_view>& names = ends_.names();
    const ListText list{text_, shape_};
    list.requireVertices(names.size(), context_);
    RawVector<std::uint64_t> from = ends_.takeFrom();
    RawVector<std::uint64_t> to = ends_.takeTo();
    std::optional<RawVector<std::int64_t>> ids = integers(names);
    if (!ids) {
      draft.vertexCount = names.size();
      draft.from = std::move(from);
      draft.to = std::move(to);
      draft.properties.vertices.set("Name", internal::nameColumn(names, names.size()));
      return;
    }
    const auto idsOf = [&](const RawVector<std::uint64_t>& ends) {
      RawVector<std::uint64_t> numbers(ends.size());
      std::transform(ends.begin(), ends.end(), numbers.begin(), [&](std::uint64_t index) {
        return static_cast<std::uint64_t>((*ids)[index]);
      });
      return numbers;
    };
    RawVector<std::uint64_t> sources = idsOf(from);
    RawVector<std::uint64_t> targets = idsOf(to);
    for (const std::string_view name : isolated_) {
      sources.push_back(static_cast<std::uint64_t>(*LineCursor(name).readLongInteger()));
      targets.push_back(sources.back());
    }
    takeIntegerEnds(draft, std::move(sources), std::move(targets), edges_, list, context_);
  }

  /// The names as numbers where each is one, however it is written.
  [[nodiscard]] static std::optional<RawVector<std::int64_t>> integers(
      const std::vector<std::string_view>& names) {
    RawVector<std::int64_t> numbers(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      LineCursor cursor(names[i]);
      const std::optional<std::int64_t> number = cursor.readLongInteger();
      if (!number || !cursor.atEnd()) return std::nullopt;
      numbers[i] = *number;
    }
    return numbers;
  }

  TextInput& text_;
  ListShape shape_;
  ListRows rows_;
  ReadContext& context_;
  DistinctEnds ends_;
  std::vector<std::string_view> isolated_;
  std::uint64_t edges_ = 0;
  WeightColumn weights_;
  std::vector<TextColumn> columns_;
  /// The words of the header that are names of columns already.
  std::unordered_set<std::string_view> named_;
  /// Those of which a cell stands in quotes, and whether any field stands in none.
  std::vector<bool> quotedColumns_;
  bool hasUnquoted_ = false;
  bool directedEdges_ = false;
  bool undirectedEdges_ = false;
};

}  // namespace

NetworkDraft readList(TextInput& text, ReadContext& context) {
  std::optional<ListShape> shape = shapeOfList(text);
  if (!shape) {
    failAt({1, 1}, "no list of edges: no line has two columns");
  }
  if (shape->isVertexTable) {
    failAt(
        {shape->headerLine, 1},
        "a table of vertices, which has no columns of sources and targets; the table of edges is "
        "what can be read");
  }
  if (shape->isHeaderGuessed) {
    context.note(kHeader, NoteKind::kTaken, {shape->headerLine, 1}, [] {
      return std::string(
          "this line is taken for the names of the columns, as the next has numbers there");
    });
  }
  std::optional<IntegerEdges> edges = readIntegerEdges(text, *shape, context);
  if (!edges) return FieldReader(text, std::move(*shape), context).read();
  NetworkDraft draft;
  draft.directed = isDirected(*shape, context);
  if (edges->weights.size() != 0) edges->weights.finish(draft, context, kRounded);
  const std::uint64_t count = edges->from.size();
  takeIntegerEnds(draft, std::move(edges->from), std::move(edges->to), count, {text, *shape},
                  context);
  return draft;
}

}  // namespace veq::internal
