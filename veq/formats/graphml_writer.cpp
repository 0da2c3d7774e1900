#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "veq/base/internal/encodings.hpp"
#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/table_columns.hpp"
#include "veq/formats/internal/writers.hpp"

namespace veq::internal {
namespace {

/// Appends the text for an element's content or an attribute between double quotes. What XML
/// cannot hold becomes "?".
void appendXml(std::string& out, std::string_view text) {
  if (!isValidUtf8(text)) return appendXml(out, utf8FromLatin1(text));
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool isNonCharacter = byte == 0xEF && static_cast<unsigned char>(text[i + 1]) == 0xBF &&
                                static_cast<unsigned char>(text[i + 2]) >= 0xBE;
    if (byte == '&') {
      out += "&amp;";
    } else if (byte == '<') {
      out += "&lt;";
    } else if (byte == '>') {
      out += "&gt;";
    } else if (byte == '"') {
      out += "&quot;";
    } else if (byte == '\t' || byte == '\n' || byte == '\r') {
      // As numbers, so that no reader takes them for other blanks.
      out += "&#";
      appendInteger(out, std::uint64_t{byte});
      out += ';';
    } else if (byte < 0x20 || isNonCharacter) {
      out += '?';
      i += isNonCharacter ? 2 : 0;
    } else {
      out += text[i];
    }
  }
}

struct XmlType {
  std::string_view type;
  /// What GraphML has no type for.
  std::string_view kind;
};

XmlType typeOf(ValueKind kind) {
  switch (kind) {
    case ValueKind::kInteger:
      return {"long", ""};
    case ValueKind::kNumber:
      return {"double", ""};
    case ValueKind::kText:
      return {"string", ""};
    case ValueKind::kVector2d:
      return {"string", "vector2d"};
    case ValueKind::kVector3d:
      return {"string", "vector3d"};
  }
  return {"string", ""};
}

class GraphMlWriter {
 public:
  GraphMlWriter(const NetworkCore& core, TextOutput& out)
      : core_(core),
        out_(out),
        vertexColumns_(columnsOf(core.properties->vertices)),
        edgeColumns_(columnsOf(core.properties->edges)) {}

  void write() {
    out_.text +=
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<graphml xmlns=\"http://graphml.graphdrawing.org/xmlns\" xmlns:veq=\"urn:veq\">\n";
    if (core_.verticesWeights) writeKey("vw", "node", "weight", {"float", "weight"});
    writeKeys('v', "node", vertexColumns_);
    if (core_.edgesWeights) writeKey("ew", "edge", "weight", {"float", "weight"});
    writeKeys('e', "edge", edgeColumns_);
    out_.text += core_.store.directed() ? "<graph edgedefault=\"directed\">\n"
                                        : "<graph edgedefault=\"undirected\">\n";
    for (std::uint64_t v = 0; v < core_.store.vertexCount(); ++v) writeVertex(v);
    for (std::uint64_t e = 0; e < core_.store.edgeCount(); ++e) writeEdge(e);
    out_.text += "</graph>\n</graphml>\n";
    out_.finish();
  }

 private:
  void writeKey(std::string_view id, std::string_view of, std::string_view name, XmlType type) {
    out_.text.append("<key id=\"").append(id).append("\" for=\"").append(of);
    out_.text += "\" attr.name=\"";
    appendXml(out_.text, name);
    out_.text.append("\" attr.type=\"").append(type.type);
    if (!type.kind.empty()) out_.text.append("\" veq:kind=\"").append(type.kind);
    out_.text += "\"/>\n";
  }

  void writeKeys(char letter, std::string_view of, const std::vector<TableColumn>& columns) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      writeKey(letter + std::to_string(i), of, columns[i].key, typeOf(columns[i].kind));
    }
  }

  void writeVertex(std::uint64_t vertex) {
    out_.text += "<node id=\"n";
    appendInteger(out_.text, vertex);
    out_.text += "\">";
    if (core_.verticesWeights) writeWeight("vw", (*core_.verticesWeights)[vertex]);
    writeData('v', vertexColumns_, vertex);
    out_.text += "</node>\n";
    out_.endRow();
  }

  void writeEdge(std::uint64_t edge) {
    out_.text += "<edge source=\"n";
    appendInteger(out_.text, core_.store.from(edge));
    out_.text += "\" target=\"n";
    appendInteger(out_.text, core_.store.to(edge));
    out_.text += "\">";
    if (core_.edgesWeights) writeWeight("ew", (*core_.edgesWeights)[edge]);
    writeData('e', edgeColumns_, edge);
    out_.text += "</edge>\n";
    out_.endRow();
  }

  void writeWeight(std::string_view key, float weight) {
    out_.text.append("<data key=\"").append(key).append("\">");
    appendShortest(out_.text, weight);
    out_.text += "</data>";
  }

  void writeData(char letter, const std::vector<TableColumn>& columns, std::uint64_t row) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const PropertyValue value = columns[i].at(row);
      if (value.isNull()) continue;
      out_.text.append("<data key=\"") += letter;
      appendInteger(out_.text, std::uint64_t{i});
      out_.text += "\">";
      appendXml(out_.text, value.text());
      out_.text += "</data>";
    }
  }

  const NetworkCore& core_;
  TextOutput& out_;
  std::vector<TableColumn> vertexColumns_;
  std::vector<TableColumn> edgeColumns_;
};

}  // namespace

void writeGraphMl(const NetworkCore& core, TextOutput& out) { GraphMlWriter(core, out).write(); }

}  // namespace veq::internal
