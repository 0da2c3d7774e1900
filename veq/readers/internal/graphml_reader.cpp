#include "veq/readers/internal/graphml_reader.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "veq/base/encodings.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::readers {
namespace {

using internal::NetworkDraft;
using internal::RawVector;
using internal::ReadContext;
using internal::TextColumn;

enum NoteCode : unsigned {
  kRounded,
  kMixed,
  kNested,
  kHyperedge,
  kPort,
  kUnknownKey,
  kNestedData,
  kSecondGraph,
  kNoWeight,
  kEncoding
};

/// The name of an element without its namespace.
std::string_view localName(const pugi::xml_node& node) {
  const std::string_view name = node.name();
  const std::size_t colon = name.find(':');
  return colon == name.npos ? name : name.substr(colon + 1);
}

/// What a key declares.
struct Key {
  bool ofVertices = false;
  bool ofEdges = false;
  std::string name;
  bool isText = false;
  bool isWeight = false;
  /// 2 or 3 for vectors, which GraphML itself does not know.
  std::size_t dimensions = 0;
  std::string_view byDefault;
};

/// The values under one key of vertices or edges.
struct Column {
  explicit Column(const Key* declared) : key(declared), cells(declared->name) {}

  const Key* key;
  TextColumn cells;
};

class GraphMlReader {
 public:
  GraphMlReader(std::string bytes, ReadContext& context)
      : bytes_(std::move(bytes)), context_(context) {}

  NetworkDraft read() {
    const pugi::xml_encoding encoding = decode();
    const pugi::xml_parse_result parsed = document_.load_buffer_inplace(
        bytes_.data(), bytes_.size(), pugi::parse_default | pugi::parse_ws_pcdata_single, encoding);
    if (parsed.status == pugi::status_out_of_memory) throw std::bad_alloc();
    // The bytes have been changed by the parser, but each line still ends where it did.
    if (!parsed)
      internal::failAt(placeAt(parsed.offset), std::string("XML: ") + parsed.description());
    const pugi::xml_node root = document_.document_element();
    if (localName(root) != "graphml") internal::failAt({}, "XML, but no GraphML");
    pugi::xml_node graph;
    for (const pugi::xml_node& child : root.children()) {
      const std::string_view name = localName(child);
      if (name == "key") readKey(child);
      if (name != "graph") continue;
      if (graph) {
        note(kSecondGraph, NoteKind::kLeftOut, child.name(), "a second graph is left out");
      } else {
        graph = child;
      }
    }
    if (!graph) internal::failAt({}, "GraphML without a graph");
    readGraph(graph);
    return finish();
  }

 private:
  struct Edge {
    std::string_view source;
    std::string_view target;
    bool directed;
  };

  /// The parser takes whatever has no other mark for UTF-8, whether it is that or not.
  pugi::xml_encoding decode() {
    const std::string_view start = std::string_view(bytes_).substr(0, 4);
    const bool isWide = start.find('\0') != start.npos || start.substr(0, 2) == "\xFF\xFE" ||
                        start.substr(0, 2) == "\xFE\xFF";
    if (isWide || isUtf8(bytes_)) return pugi::encoding_auto;
    const std::string_view declaration = std::string_view(bytes_).substr(0, bytes_.find("?>"));
    if (declaration.find("encoding=\"ISO-8859-1\"") == declaration.npos) {
      note(kEncoding, NoteKind::kTaken, bytes_.data(),
           "not UTF-8: the text is taken for ISO-8859-1");
    }
    std::string utf8;
    for (const char byte : bytes_) {
      const auto code = static_cast<unsigned char>(byte);
      if (code < 0x80) {
        utf8 += byte;
      } else {
        utf8 += static_cast<char>(0xC0 | code >> 6);
        utf8 += static_cast<char>(0x80 | (code & 0x3F));
      }
    }
    bytes_ = std::move(utf8);
    return pugi::encoding_utf8;
  }

  /// Where something stands that the parser has left in the bytes, as it does unless it had to
  /// change their encoding.
  [[nodiscard]] Place placeOf(const char* at) const {
    if (at < bytes_.data() || at >= bytes_.data() + bytes_.size()) return {};
    return placeAt(at - bytes_.data());
  }

  [[nodiscard]] Place placeAt(std::ptrdiff_t offset) const {
    const auto length =
        std::min(static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset, 0)), bytes_.size());
    const auto end = bytes_.begin() + static_cast<std::ptrdiff_t>(length);
    return {static_cast<std::uint64_t>(std::count(bytes_.begin(), end, '\n')) + 1, 0};
  }

  /// Of the first case alone the line is looked for and the text, or what makes it, asked.
  template <class Text>
  void note(unsigned code, NoteKind kind, const char* at, const Text& text) {
    const bool isFirst = code >= noted_.size() || !noted_[code];
    if (code >= noted_.size()) noted_.resize(code + 1);
    noted_[code] = true;
    context_.note(code, kind, isFirst ? placeOf(at) : Place{}, [&text]() -> std::string {
      if constexpr (std::is_invocable_v<const Text&>) {
        return text();
      } else {
        return text;
      }
    });
  }

  void readKey(const pugi::xml_node& node) {
    Key key;
    const std::string_view of = node.attribute("for").as_string("all");
    key.ofVertices = of == "node" || of == "all";
    key.ofEdges = of == "edge" || of == "all";
    const std::string_view id = node.attribute("id").as_string();
    const std::string_view name = node.attribute("attr.name").as_string();
    key.name = std::string(name.empty() ? id : name);
    const std::string_view type = node.attribute("attr.type").as_string("string");
    key.isText = type == "string" || type == "boolean";
    const std::string_view kind = node.attribute("veq:kind").as_string();
    key.dimensions = kind == "vector2d" ? 2 : kind == "vector3d" ? 3 : 0;
    key.isWeight = kind == "weight" || (of == "edge" && name == "weight" && !key.isText);
    for (const pugi::xml_node& child : node.children()) {
      if (localName(child) == "default") key.byDefault = child.text().get();
    }
    declared_.push_back(std::make_unique<Key>(std::move(key)));
    keys_.insert_or_assign(id, declared_.back().get());
  }

  void readGraph(const pugi::xml_node& graph) {
    directed_ = std::string_view(graph.attribute("edgedefault").as_string()) == "directed";
    context_.title = graph.attribute("id").as_string();
    std::uint64_t elements = 0;
    for (const pugi::xml_node& child : graph.children()) {
      const std::string_view name = localName(child);
      if (name == "node") {
        readVertex(child);
      } else if (name == "edge") {
        readEdge(child);
      } else if (name == "hyperedge") {
        note(kHyperedge, NoteKind::kLeftOut, child.name(),
             "an edge of more than two ends is left out");
      }
      if (++elements % 4096 == 0) context_.pace.reach(elements);
    }
  }

  void readVertex(const pugi::xml_node& node) {
    const std::uint64_t row = ids_.size();
    const std::string_view id = node.attribute("id").as_string();
    if (!indices_.try_emplace(id, row).second) {
      internal::failAt(placeOf(node.name()), "a second node " + internal::shown(id));
    }
    ids_.push_back(id);
    readData(node, row, true);
  }

  void readEdge(const pugi::xml_node& node) {
    const std::uint64_t row = edges_.size();
    const pugi::xml_attribute own = node.attribute("directed");
    if (node.attribute("sourceport") || node.attribute("targetport")) {
      note(kPort, NoteKind::kLeftOut, node.name(), "the ports of edges are left out");
    }
    edges_.push_back({node.attribute("source").as_string(), node.attribute("target").as_string(),
                      own ? own.as_bool() : directed_});
    readData(node, row, false);
  }

  void readData(const pugi::xml_node& node, std::uint64_t row, bool ofVertices) {
    for (const pugi::xml_node& child : node.children()) {
      const std::string_view name = localName(child);
      if (name == "data") {
        readValue(child, row, ofVertices);
      } else if (name == "graph") {
        note(kNested, NoteKind::kLeftOut, child.name(),
             "a graph inside a node or an edge is left out");
      } else if (name == "port") {
        note(kPort, NoteKind::kLeftOut, child.name(), "the ports of edges are left out");
      }
    }
  }

  void readValue(const pugi::xml_node& data, std::uint64_t row, bool ofVertices) {
    const std::string_view id = data.attribute("key").as_string();
    const auto key = keys_.find(id);
    if (key == keys_.end()) {
      note(kUnknownKey, NoteKind::kLeftOut, data.name(), [&] {
        return "data of the key " + internal::shown(id) + ", which is not declared, is left out";
      });
      return;
    }
    if (data.first_child().type() == pugi::node_element) {
      note(kNestedData, NoteKind::kLeftOut, data.name(), "data that is XML itself is left out");
      return;
    }
    columnOf(*key->second, ofVertices).cells.set(row, textOf(data));
  }

  /// All text of an element, which comments and CDATA may cut into pieces.
  std::string_view textOf(const pugi::xml_node& data) {
    const pugi::xml_node first = data.first_child();
    if (!first) return "";
    if (!first.next_sibling()) return first.value();
    auto whole = std::make_unique<std::string>();
    for (const pugi::xml_node& piece : data.children()) *whole += piece.value();
    texts_.push_back(std::move(whole));
    return *texts_.back();
  }

  Column& columnOf(const Key& key, bool ofVertices) {
    std::vector<Column>& columns = ofVertices ? vertexColumns_ : edgeColumns_;
    // Data comes in the same order again and again.
    for (std::size_t tried = 0; tried < columns.size(); ++tried) {
      std::size_t& next = ofVertices ? nextVertexColumn_ : nextEdgeColumn_;
      const std::size_t place = (next + tried) % columns.size();
      if (columns[place].key != &key) continue;
      next = place + 1;
      return columns[place];
    }
    columns.emplace_back(&key);
    return columns.back();
  }

  NetworkDraft finish() {
    NetworkDraft draft;
    draft.vertexCount = ids_.size();
    draft.directed =
        std::any_of(edges_.begin(), edges_.end(), [](const Edge& edge) { return edge.directed; }) ||
        (edges_.empty() && directed_);
    setEnds(draft);
    setColumns(vertexColumns_, true, ids_.size(), draft);
    setColumns(edgeColumns_, false, edges_.size(), draft);
    setIds(draft);
    return draft;
  }

  void setEnds(NetworkDraft& draft) {
    RawVector<std::uint64_t> from;
    RawVector<std::uint64_t> to;
    from.reserve(edges_.size());
    to.reserve(edges_.size());
    const char* mixed = nullptr;
    for (const Edge& edge : edges_) {
      from.push_back(indexOf(edge.source));
      to.push_back(indexOf(edge.target));
      if (!mixed && edge.directed != draft.directed) mixed = edge.source.data();
    }
    if (mixed) {
      note(kMixed, NoteKind::kRepaired, mixed,
           "directed and undirected edges: all are taken for directed");
    }
    draft.from = std::move(from);
    draft.to = std::move(to);
  }

  [[nodiscard]] std::uint64_t indexOf(std::string_view id) const {
    const auto at = indices_.find(id);
    if (at == indices_.end()) {
      internal::failAt(placeOf(id.data()),
                       "an edge of node " + internal::shown(id) + ", which is not there");
    }
    return at->second;
  }

  void setColumns(const std::vector<Column>& columns, bool ofVertices, std::uint64_t rows,
                  NetworkDraft& draft) {
    addDefaults(ofVertices, rows);
    PropertyTable& table = ofVertices ? draft.properties.vertices : draft.properties.edges;
    for (const Column& column : columns) {
      const Key& key = *column.key;
      if (key.isWeight) {
        setWeights(column, ofVertices, rows, draft);
      } else if (key.dimensions != 0) {
        table.set(key.name, vectors(column, rows));
      } else {
        table.set(key.name,
                  key.isText ? column.cells.finishAsText(rows) : column.cells.finish(rows));
      }
    }
  }

  void addDefaults(bool ofVertices, std::uint64_t rows) {
    for (const std::unique_ptr<Key>& key : declared_) {
      if (key->byDefault.empty() || !(ofVertices ? key->ofVertices : key->ofEdges)) continue;
      TextColumn& cells = columnOf(*key, ofVertices).cells;
      for (std::uint64_t row = 0; row < rows; ++row) {
        if (!cells.at(row).data()) cells.set(row, key->byDefault);
      }
    }
  }

  void setWeights(const Column& column, bool ofVertices, std::uint64_t rows, NetworkDraft& draft) {
    internal::WeightColumn weights;
    for (std::uint64_t row = 0; row < rows; ++row) {
      const std::string_view cell = internal::withoutBlanks(column.cells.at(row));
      const std::optional<double> weight = internal::wholeNumber(cell);
      if (!weight) {
        const std::string_view where = ofVertices ? ids_[row] : edges_[row].source;
        note(kNoWeight, NoteKind::kRepaired, where.data(), "no weight is taken for 1");
      }
      weights.append(weight.value_or(1.0), cell.size());
    }
    if (ofVertices) {
      draft.verticesWeights = weights.take();
    } else {
      weights.finish(draft, context_, kRounded);
    }
  }

  static Shared<PropertyColumn> vectors(const Column& column, std::uint64_t rows) {
    std::array<std::vector<double>, 3> axes;
    for (std::uint64_t row = 0; row < rows; ++row) {
      const std::string_view cell = column.cells.at(row);
      internal::LineCursor cursor(cell.data() ? cell : std::string_view(""));
      for (std::vector<double>& axis : axes) {
        cursor.skipBlanks();
        axis.push_back(cursor.readNumber().value_or(0.0));
      }
    }
    if (column.key->dimensions == 3) {
      return VEQVector3dArray::initWithXd_Yd_Zd_count(axes[0].data(), axes[1].data(),
                                                      axes[2].data(), rows);
    }
    Shared<VEQVector2dArray> plane =
        VEQVector2dArray::initWithSize_precision(rows, kDoublePrecision);
    for (std::uint64_t row = 0; row < rows; ++row) {
      plane->setVector_atIndex({axes[0][row], axes[1][row]}, row);
    }
    return plane;
  }

  /// The ids are the names where there are no others; ids that only count say nothing.
  void setIds(NetworkDraft& draft) const {
    const bool onlyCount = [&] {
      for (std::uint64_t row = 0; row < ids_.size(); ++row) {
        if (ids_[row] != "n" + std::to_string(row)) return false;
      }
      return true;
    }();
    if (onlyCount) return;
    const char* const key = draft.properties.vertices.contains("Name") ? "Id" : "Name";
    if (!draft.properties.vertices.contains(key)) {
      draft.properties.vertices.set(key, internal::nameColumn(ids_, ids_.size()));
    }
  }

  std::string bytes_;
  ReadContext& context_;
  pugi::xml_document document_;
  /// In their order, and by their ids.
  std::vector<std::unique_ptr<Key>> declared_;
  std::unordered_map<std::string_view, const Key*> keys_;
  bool directed_ = false;
  std::vector<std::string_view> ids_;
  std::unordered_map<std::string_view, std::uint64_t> indices_;
  std::vector<Edge> edges_;
  std::vector<Column> vertexColumns_;
  std::vector<Column> edgeColumns_;
  std::size_t nextVertexColumn_ = 0;
  std::size_t nextEdgeColumn_ = 0;
  std::vector<std::unique_ptr<std::string>> texts_;
  /// For each code whether it has been noted.
  std::vector<bool> noted_;
};

}  // namespace

NetworkDraft readGraphMl(std::string bytes, ReadContext& context) {
  return GraphMlReader(std::move(bytes), context).read();
}

}  // namespace veq::readers
