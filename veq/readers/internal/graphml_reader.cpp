#include "veq/readers/internal/graphml_reader.hpp"

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "veq/base/internal/name_table.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/readers/internal/graphml_columns.hpp"
#include "veq/readers/internal/text_store.hpp"
#include "veq/readers/internal/xml_pieces.hpp"

namespace veq::readers {
namespace {

using internal::NameTable;
using internal::NetworkDraft;
using internal::RawVector;
using internal::ReadContext;

enum NoteCode : unsigned {
  kRounded,
  kRoundedVertex,
  kMixed,
  kNested,
  kHyperedge,
  kPort,
  kUnknownKey,
  kNestedData,
  kSecondGraph,
  kNoWeight,
  kNoVertexWeight,
  kEncoding,
  kOfGraph,
  kOfNested
};

/// Nodes by their ids, and the ends of edges, which may come before their nodes.
class Ends {
 public:
  explicit Ends(const XmlPieces& pieces) : pieces_(pieces) {}

  /// False where there is one of this id.
  bool addVertex(std::string_view id) {
    const std::uint64_t index = ids_.size();
    const std::string_view kept = texts_.kept(id);
    if (indices_.insert(kept, index) != index) return false;
    ids_.push_back(kept);
    return true;
  }
  /// The ids must stay until endPiece().
  void addEdge(std::string_view source, std::string_view target) {
    pending_.push_back(source);
    pending_.push_back(target);
  }
  void endPiece() {
    std::size_t end = 0;
    indices_.forEach(pending_, [&](const NameTable::Hashed& id) {
      const std::optional<std::uint64_t> index = indices_.find(id);
      if (!index) {
        early_.push_back(
            {texts_.kept(id.name), 2 * from_.size() - end, pieces_.placeOf(id.name.data())});
      }
      (end == 0 ? from_ : to_).push_back(index.value_or(0));
      end = 1 - end;
    });
    pending_.clear();
  }
  /// Finds the nodes of the ends that came before them.
  void finish(NetworkDraft& draft) {
    for (const Early& end : early_) {
      const std::optional<std::uint64_t> index = indices_.find(end.id);
      if (!index) {
        internal::failAt(end.place,
                         "an edge of node " + internal::shown(end.id) + ", which is not there");
      }
      (end.end % 2 == 0 ? from_ : to_)[end.end / 2] = *index;
    }
    draft.vertexCount = ids_.size();
    draft.from = std::move(from_);
    draft.to = std::move(to_);
  }

  [[nodiscard]] std::uint64_t edgeCount() const { return from_.size() + pending_.size() / 2; }
  [[nodiscard]] const std::vector<std::string_view>& ids() const { return ids_; }

 private:
  struct Early {
    std::string_view id;
    /// Twice the edge, and one more for its target.
    std::uint64_t end;
    Place place;
  };

  const XmlPieces& pieces_;
  TextStore texts_;
  std::vector<std::string_view> ids_;
  NameTable indices_;
  std::vector<std::string_view> pending_;
  RawVector<std::uint64_t> from_;
  RawVector<std::uint64_t> to_;
  std::vector<Early> early_;
};

class GraphMlReader {
 public:
  GraphMlReader(internal::ByteStream& bytes, ReadContext& context)
      : context_(context),
        pieces_(bytes, context, kEncoding),
        ends_(pieces_),
        vertexColumns_(true, context, kRoundedVertex, kNoVertexWeight),
        edgeColumns_(false, context, kRounded, kNoWeight) {}

  NetworkDraft read() {
    while (const pugi::xml_node root = pieces_.next()) {
      context_.pace.reach(pieces_.position());
      if (localName(root) != "graphml") fail(root, kNoGraphMl);
      if (!pieces_.goesOn()) root_ = placeOf(root);
      readRoot(root);
      ends_.endPiece();
    }
    if (!hasGraph_) internal::failAt(root_, "GraphML without a graph");
    return finish();
  }

 private:
  void readRoot(const pugi::xml_node& root) {
    bool isFirst = true;
    for (const pugi::xml_node& child : root.children()) {
      const std::string_view name = localName(child);
      if (name == "key") keys_.declare(child, placeOf(child));
      if (name != "graph") continue;
      if (!isFirst) note(kSecondGraph, NoteKind::kLeftOut, child, "a second graph is left out");
      if (isFirst && !pieces_.goesOn()) readHeader(child);
      if (isFirst) readElements(child);
      isFirst = false;
    }
  }

  void readHeader(const pugi::xml_node& graph) {
    hasGraph_ = true;
    directed_ = std::string_view(graph.attribute("edgedefault").as_string()) == "directed";
    context_.title = graph.attribute("id").as_string();
  }

  void readElements(const pugi::xml_node& graph) {
    for (const pugi::xml_node& child : graph.children()) {
      const std::string_view name = localName(child);
      if (name == "edge") {
        readEdge(child);
      } else if (name == "node") {
        readVertex(child);
      } else if (name == "hyperedge") {
        note(kHyperedge, NoteKind::kLeftOut, child, "an edge of more than two ends is left out");
      } else if (name == "data") {
        note(kOfGraph, NoteKind::kLeftOut, child, "data of the graph as a whole are left out");
      }
    }
  }

  void readVertex(const pugi::xml_node& node) {
    const std::uint64_t row = ends_.ids().size();
    const pugi::xml_attribute attribute = node.attribute("id");
    if (!attribute) fail(node, "a node without an id");
    const std::string_view id = attribute.value();
    if (!ends_.addVertex(id)) fail(node, "a second node " + internal::shown(id));
    readData(node, row, vertexColumns_);
  }

  void readEdge(const pugi::xml_node& node) {
    const std::uint64_t row = ends_.edgeCount();
    std::string_view source;
    std::string_view target;
    bool directed = directed_;
    for (const pugi::xml_attribute& attribute : node.attributes()) {
      const std::string_view name = attribute.name();
      if (name == "source") {
        source = attribute.value();
      } else if (name == "target") {
        target = attribute.value();
      } else if (name == "directed") {
        directed = attribute.as_bool();
      } else if (name == "sourceport" || name == "targetport") {
        note(kPort, NoteKind::kLeftOut, node, "the ports of edges are left out");
      }
    }
    if (!source.data() || !target.data()) fail(node, "an edge without a source or a target");
    if (!nestedIds_.empty() && (isNested(source) || isNested(target))) {
      note(kOfNested, NoteKind::kLeftOut, node,
           "edges of nodes of a graph inside a node are left out");
      return;
    }
    ends_.addEdge(source, target);
    hasDirected_ |= directed;
    if (!directed && !firstUndirected_) firstUndirected_ = placeOf(node);
    readData(node, row, edgeColumns_);
  }

  void readData(const pugi::xml_node& node, std::uint64_t row, GraphMlColumns& columns) {
    for (const pugi::xml_node& child : node.children()) {
      const std::string_view name = localName(child);
      if (name == "data") {
        readValue(child, row, columns);
      } else if (name == "graph") {
        note(kNested, NoteKind::kLeftOut, child, "a graph inside a node or an edge is left out");
        keepNestedIds(child);
      } else if (name == "port") {
        note(kPort, NoteKind::kLeftOut, child, "the ports of edges are left out");
      }
    }
    columns.endRow(row, [&] { return placeOf(node); });
  }

  /// Edges outside may be of the nodes of a graph that is left out, however deep they are.
  void keepNestedIds(const pugi::xml_node& graph) {
    for (pugi::xml_node node = graph.first_child(); node; node = following(node, graph)) {
      if (localName(node) == "node") nestedIds_.emplace(node.attribute("id").value());
    }
  }
  /// The next node of the tree, from above to below, as long as it is inside the top.
  static pugi::xml_node following(pugi::xml_node node, const pugi::xml_node& top) {
    if (node.first_child()) return node.first_child();
    while (node != top && !node.next_sibling()) node = node.parent();
    return node == top ? pugi::xml_node() : node.next_sibling();
  }
  [[nodiscard]] bool isNested(std::string_view id) const {
    return nestedIds_.count(std::string(id)) != 0;
  }

  void readValue(const pugi::xml_node& data, std::uint64_t row, GraphMlColumns& columns) {
    const std::string_view id = data.attribute("key").as_string();
    const GraphMlKey* const key = keys_.find(id);
    if (!key) {
      note(kUnknownKey, NoteKind::kLeftOut, data, [&] {
        return "data of the key " + internal::shown(id) + ", which is not declared, is left out";
      });
    } else if (data.first_child().type() == pugi::node_element) {
      note(kNestedData, NoteKind::kLeftOut, data, "data that is XML itself is left out");
    } else {
      columns.set(*key, row, textOf(data), [&] { return placeOf(data); });
    }
  }

  /// All text of an element, which comments and CDATA may cut into pieces.
  std::string_view textOf(const pugi::xml_node& data) {
    const pugi::xml_node first = data.first_child();
    if (!first) return "";
    if (!first.next_sibling()) return first.value();
    joined_.clear();
    for (const pugi::xml_node& piece : data.children()) joined_ += piece.value();
    return joined_;
  }

  /// Of the first case alone the line is looked for and the text, or what makes it, asked.
  template <class Text>
  void note(unsigned code, NoteKind kind, const pugi::xml_node& node, const Text& text) {
    const bool isFirst = code >= noted_.size() || !noted_[code];
    if (code >= noted_.size()) noted_.resize(code + 1);
    noted_[code] = true;
    const Place place = isFirst ? placeOf(node) : Place{};
    context_.note(code, kind, place, [&text]() -> std::string {
      if constexpr (std::is_invocable_v<const Text&>) {
        return text();
      } else {
        return text;
      }
    });
  }

  /// That of the bracket before its name.
  [[nodiscard]] Place placeOf(const pugi::xml_node& node) const {
    return pieces_.placeOf(node.name() - 1);
  }
  [[noreturn]] void fail(const pugi::xml_node& node, std::string text) const {
    internal::failAt(placeOf(node), std::move(text));
  }

  NetworkDraft finish() {
    NetworkDraft draft;
    const std::uint64_t edges = ends_.edgeCount();
    ends_.finish(draft);
    draft.directed = hasDirected_ || (!firstUndirected_ && directed_);
    if (hasDirected_ && firstUndirected_) {
      context_.note(kMixed, NoteKind::kRepaired, *firstUndirected_, [] {
        return std::string("directed and undirected edges: all are taken for directed");
      });
    }
    vertexColumns_.finish(keys_, draft.vertexCount, draft);
    edgeColumns_.finish(keys_, edges, draft);
    setIds(draft);
    return draft;
  }

  /// The ids are the names where there are no others; ids that only count say nothing.
  void setIds(NetworkDraft& draft) {
    const std::vector<std::string_view>& ids = ends_.ids();
    const bool onlyCount = [&] {
      for (std::uint64_t row = 0; row < ids.size(); ++row) {
        if (ids[row] != "n" + std::to_string(row)) return false;
      }
      return true;
    }();
    if (onlyCount) return;
    const char* const key = draft.properties.vertices.contains("Name") ? "Id" : "Name";
    internal::addColumn(draft.properties.vertices, key, internal::nameColumn(ids, ids.size()),
                        root_, context_);
  }

  ReadContext& context_;
  XmlPieces pieces_;
  Ends ends_;
  GraphMlKeys keys_;
  GraphMlColumns vertexColumns_;
  GraphMlColumns edgeColumns_;
  Place root_;
  bool hasGraph_ = false;
  bool directed_ = false;
  bool hasDirected_ = false;
  std::optional<Place> firstUndirected_;
  std::unordered_set<std::string> nestedIds_;
  std::string joined_;
  /// For each code whether it has been noted.
  std::vector<bool> noted_;
};

}  // namespace

NetworkDraft readGraphMl(internal::ByteStream& bytes, ReadContext& context) {
  return GraphMlReader(bytes, context).read();
}

}  // namespace veq::readers
