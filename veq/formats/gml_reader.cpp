#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/character_entities.hpp"
#include "veq/formats/internal/gml.hpp"
#include "veq/formats/internal/gml_tokens.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/text_columns.hpp"

namespace veq::internal {
namespace {

enum NoteCode : unsigned { kRounded, kNested, kSecondGraph, kNoWeight, kOfGraph, kTwice };

/// Columns by their keys, in the order of their first appearance.
class ColumnSet {
 public:
  /// What stands in quotes is text. False where the row has a value of the key, which stays.
  bool set(std::string_view key, std::uint64_t row, std::string_view cell, bool quoted, Place place,
           ReadContext& context) {
    const auto [at, isNew] = places_.try_emplace(std::string(key), columns_.size());
    if (isNew) columns_.push_back({TextColumn(std::string(key)), false});
    Column& column = columns_[at->second];
    if (column.cells.at(row).data()) return false;
    context.addUnsetCells(column.cells.set(row, cell), [place] { return place; });
    column.isText |= quoted;
    return true;
  }
  void finish(PropertyTable& table, std::uint64_t rows, ReadContext& context) const {
    for (const auto& [cells, isText] : columns_) {
      context.addUnsetCells(cells.unsetBehind(rows), [] { return Place{1, 1}; });
      table.set(cells.key(), isText ? cells.finishAsText(rows) : cells.finish(rows));
    }
  }

 private:
  struct Column {
    TextColumn cells;
    bool isText;
  };
  std::vector<Column> columns_;
  std::unordered_map<std::string, std::size_t> places_;
};

/// What keys stand for, by the comments that our own writer puts before the graph:
/// # node key size2 is "Size (mm)"
class MappedKeys {
 public:
  explicit MappedKeys(LineReader lines) {
    while (lines.next() && lines.line().substr(0, 2) == "# ") readComment(lines.line().substr(2));
  }

  [[nodiscard]] std::string_view of(char kind, std::string_view key) const {
    const auto at = keys_.find(kind + std::string(key));
    return at == keys_.end() ? key : at->second;
  }

 private:
  void readComment(std::string_view comment) {
    LineCursor cursor(comment);
    const std::string_view kind = cursor.takeWord();
    cursor.skipBlanks();
    if ((kind != "node" && kind != "edge") || cursor.takeWord() != "key") return;
    cursor.skipBlanks();
    const std::string_view key = cursor.takeWord();
    cursor.skipBlanks();
    if (cursor.takeWord() != "is") return;
    cursor.skipBlanks();
    bool closed = false;
    if (!cursor.match('"')) return;
    const std::string_view original = cursor.takeQuoted(closed);
    if (closed) keys_[kind.front() + std::string(key)] = withoutEntities(original);
  }

  std::unordered_map<std::string, std::string> keys_;
};

class GmlReader {
 public:
  GmlReader(TextInput& text, ReadContext& context)
      : text_(text), keys_(LineReader(text)), tokens_(text), context_(context) {}

  NetworkDraft read() {
    bool found = false;
    for (Token token = tokens_.next(); token.kind != Kind::kEnd; token = tokens_.next()) {
      const std::string_view key = requireKey(token);
      const Token value = tokens_.next();
      if (value.kind == Kind::kOpen && sameWord(key, "graph") && !found) {
        readGraph();
        found = true;
      } else if (value.kind == Kind::kOpen) {
        if (sameWord(key, "graph")) {
          context_.note(kSecondGraph, NoteKind::kLeftOut, token.place,
                        [] { return std::string("a second graph is left out"); });
        }
        skipList();
      } else {
        requireValue(value);
      }
    }
    if (!found) failAt({1, 1}, "no \"graph [\"");
    return finish();
  }

 private:
  using Token = GmlTokens::Token;
  using Kind = GmlTokens::Kind;

  static std::string_view requireKey(const Token& token) {
    if (token.kind == Kind::kKey) return token.text;
    failAt(token.place, token.kind == Kind::kClose ? "a \"]\" without its \"[\""
                                                   : "no key: " + shown(token.text));
  }
  static void requireValue(const Token& value) {
    if (value.kind == Kind::kNumber || value.kind == Kind::kString) return;
    // Words without quotes are no values of GML, but people write them.
    if (value.kind == Kind::kKey) return;
    failAt(value.place, "a key without a value");
  }

  /// To behind the end of the list that has begun. Lists may be nested as deep as they like.
  void skipList() { skipList(tokens_); }
  static void skipList(GmlTokens& tokens) {
    for (std::uint64_t depth = 1; depth != 0;) {
      const Token token = tokens.next();
      if (token.kind == Kind::kEnd) failAt(token.place, "a \"[\" without its \"]\"");
      if (token.kind == Kind::kOpen) ++depth;
      if (token.kind == Kind::kClose) --depth;
    }
  }

  /// Calls use(key token, value) for all pairs of the list that has begun.
  template <class Use>
  void forEachPair(Use use) {
    for (;;) {
      const Token key = tokens_.next();
      if (key.kind == Kind::kClose) return;
      if (key.kind == Kind::kEnd) failAt(key.place, "a \"[\" without its \"]\"");
      requireKey(key);
      const Token value = tokens_.next();
      if (value.kind != Kind::kOpen) requireValue(value);
      use(key, value);
    }
  }

  void readGraph() {
    forEachPair([this](const Token& key, const Token& value) {
      const bool isList = value.kind == Kind::kOpen;
      if (isList && sameWord(key.text, "node")) return readNode(key.place);
      if (isList && sameWord(key.text, "edge")) return readEdge(key.place);
      if (isList) return leaveOutList(key);
      readGraphValue(key, value);
    });
  }

  void readGraphValue(const Token& key, const Token& value) {
    if (sameWord(key.text, "directed")) {
      directed_ = value.text != "0";
    } else if (sameWord(key.text, "label") || sameWord(key.text, "name")) {
      context_.title = withoutEntities(value.text);
    } else if (!sameWord(key.text, "multigraph")) {
      context_.note(kOfGraph, NoteKind::kLeftOut, key.place, [&] {
        return "what is said of the graph as a whole is left out: " + shown(key.text);
      });
    }
  }

  void leaveOutList(const Token& key) {
    context_.note(kNested, NoteKind::kLeftOut, key.place,
                  [&] { return "the list " + shown(key.text) + " is left out"; });
    skipList();
  }

  void readNode(Place place) {
    const std::uint64_t row = ids_.size();
    std::optional<std::int64_t> id;
    forEachPair([&](const Token& key, const Token& value) {
      place = key.place;
      if (value.kind == Kind::kOpen) return leaveOutList(key);
      if (sameWord(key.text, "id")) {
        id = integerOf(value);
      } else {
        const std::string_view name =
            sameWord(key.text, "label") ? "Name" : keys_.of('n', key.text);
        setCell(vertexColumns_, name, row, key, value);
      }
    });
    if (!id) failAt(place, "a node without an id");
    if (!indices_.try_emplace(*id, row).second) {
      failAt(place, "a second node " + std::to_string(*id));
    }
    ids_.push_back(*id);
    if ((row + 1) % 1024 == 0) context_.pace.reach(tokens_.position());
  }

  void readEdge(Place place) {
    const std::uint64_t row = from_.size();
    std::optional<std::int64_t> source;
    std::optional<std::int64_t> target;
    std::optional<double> weight;
    std::size_t length = 0;
    forEachPair([&](const Token& key, const Token& value) {
      if (value.kind == Kind::kOpen) return leaveOutList(key);
      if (sameWord(key.text, "source")) {
        source = integerOf(value);
      } else if (sameWord(key.text, "target")) {
        target = integerOf(value);
      } else if (sameWord(key.text, "weight") && wholeNumber(value.text)) {
        weight = wholeNumber(value.text);
        length = value.text.size();
      } else {
        setCell(edgeColumns_, keys_.of('e', key.text), row, key, value);
      }
    });
    if (!source || !target) failAt(place, "an edge without a source or a target");
    if (row == 0) firstEdge_ = place;
    from_.push_back(static_cast<std::uint64_t>(*source));
    to_.push_back(static_cast<std::uint64_t>(*target));
    appendWeight(weight, length, place);
    if ((row + 1) % 1024 == 0) context_.pace.reach(tokens_.position());
  }

  void setCell(ColumnSet& columns, std::string_view name, std::uint64_t row, const Token& key,
               const Token& value) {
    const bool quoted = value.kind == Kind::kString;
    if (columns.set(name, row, cellOf(value), quoted, key.place, context_)) return;
    context_.note(kTwice, NoteKind::kLeftOut, key.place, [&] {
      return "the key " + shown(key.text) +
             " stands more than once in a node or edge: all but its first value are left out";
    });
  }

  void appendWeight(std::optional<double> weight, std::size_t length, Place place) {
    if (weight && weights_.size() == 0) {
      // Edges before the first weight have none.
      for (std::size_t i = 0; i + 1 < from_.size(); ++i) weights_.append(1.0, 1);
      if (from_.size() > 1) noteNoWeight(firstEdge_);
    }
    if (weights_.size() == 0 && !weight) return;
    if (!weight) noteNoWeight(place);
    if (weights_.append(weight.value_or(1.0), length)) weights_.setPlace(place);
  }

  void noteNoWeight(Place place) {
    context_.note(kNoWeight, NoteKind::kRepaired, place,
                  [] { return std::string("no weight is taken for 1"); });
  }

  static std::int64_t integerOf(const Token& value) {
    std::int64_t number = 0;
    const char* const end = value.text.data() + value.text.size();
    const auto [at, error] = std::from_chars(value.text.data(), end, number);
    if (error != std::errc() || at != end) {
      failAt(value.place, "no integer: " + shown(value.text));
    }
    return number;
  }

  /// The value's text; one that has entities is kept beside the text that has it.
  std::string_view cellOf(const Token& value) {
    if (value.kind != Kind::kString || value.text.find('&') == value.text.npos) return value.text;
    texts_.push_back(std::make_unique<std::string>(withoutEntities(value.text)));
    return *texts_.back();
  }

  /// Makes ids of an edge's ends indices.
  void findEnds(std::uint64_t edge) {
    for (RawVector<std::uint64_t>* const ends : {&from_, &to_}) {
      const auto id = static_cast<std::int64_t>((*ends)[edge]);
      const auto at = indices_.find(id);
      if (at == indices_.end()) {
        failAt(placeOfEdge(edge), "an edge of node " + std::to_string(id) + ", which is not there");
      }
      (*ends)[edge] = at->second;
    }
  }

  /// Looks for it in the text, since an edge that is wrong is one of millions.
  [[nodiscard]] Place placeOfEdge(std::uint64_t edge) const {
    GmlTokens tokens(text_);
    bool inGraph = false;
    for (Token key = tokens.next(); key.kind != Kind::kEnd; key = tokens.next()) {
      if (key.kind == Kind::kClose || tokens.next().kind != Kind::kOpen) continue;
      if (!inGraph && sameWord(key.text, "graph")) {
        inGraph = true;
        continue;
      }
      if (inGraph && sameWord(key.text, "edge") && edge-- == 0) return key.place;
      skipList(tokens);
    }
    return {};
  }

  NetworkDraft finish() {
    NetworkDraft draft;
    draft.vertexCount = ids_.size();
    draft.directed = directed_;
    const std::uint64_t edges = from_.size();
    for (std::uint64_t edge = 0; edge < edges; ++edge) findEnds(edge);
    draft.from = std::move(from_);
    draft.to = std::move(to_);
    if (weights_.size() != 0) weights_.finish(draft, context_, kRounded);
    draft.properties.vertices.set("Id", std::make_shared<VEQNumberArray>(std::move(ids_)));
    vertexColumns_.finish(draft.properties.vertices, draft.vertexCount, context_);
    edgeColumns_.finish(draft.properties.edges, edges, context_);
    takeVertexWeights(draft);
    return draft;
  }

  /// Numbers "weight" of all vertices are their weights where floats hold them.
  static void takeVertexWeights(NetworkDraft& draft) {
    const Shared<PropertyColumn>* const column = draft.properties.vertices.find("weight");
    if (!column || (*column)->kind() != PropertyColumn::Kind::kNumber) return;
    const auto& numbers = static_cast<const VEQNumberArray&>(**column);
    std::optional<Weights> weights = weightsOf(&numbers);
    std::string text;
    for (std::uint64_t i = 0; i < weights->size(); ++i) {
      const double number = numbers.numberAtIndex(i).as<double>();
      const float kept = (*weights)[i];
      text.clear();
      appendShortest(text, kept);
      if (static_cast<double>(kept) != number && leadingDouble(text) != number) return;
    }
    draft.verticesWeights = std::move(weights);
    draft.properties.vertices.remove("weight");
  }

  TextInput& text_;
  MappedKeys keys_;
  GmlTokens tokens_;
  ReadContext& context_;
  bool directed_ = false;
  RawVector<std::int64_t> ids_;
  std::unordered_map<std::int64_t, std::uint64_t> indices_;
  /// Ids, and indices in the end.
  RawVector<std::uint64_t> from_;
  RawVector<std::uint64_t> to_;
  Place firstEdge_;
  WeightColumn weights_;
  ColumnSet vertexColumns_;
  ColumnSet edgeColumns_;
  std::vector<std::unique_ptr<std::string>> texts_;
};

}  // namespace

NetworkDraft readGml(TextInput& text, ReadContext& context) {
  return GmlReader(text, context).read();
}

}  // namespace veq::internal
