#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/internal/encodings.hpp"
#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/table_columns.hpp"
#include "veq/formats/internal/writers.hpp"

namespace veq::internal {
namespace {

/// Printable ASCII; everything else, and what would end a string, as numbers of characters.
void appendGml(std::string& out, std::string_view text) {
  if (!isValidUtf8(text)) return appendGml(out, utf8FromLatin1(text));
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t length = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    if (length == 1 && byte >= 0x20 && byte != '"' && byte != '&' && byte != 0x7F) {
      out += text[i++];
      continue;
    }
    std::uint64_t character = length == 1 ? byte : byte & (0x7Fu >> length);
    for (std::size_t k = 1; k < length; ++k) {
      character = character << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3Fu);
    }
    out += "&#";
    appendInteger(out, character);
    out += ';';
    i += length;
  }
}

/// A number with a point, by which readers know it from an integer.
std::string withPoint(std::string text) {
  if (text.find('.') != text.npos) return text;
  const std::size_t exponent = std::min(text.find('e'), text.size());
  return text.insert(exponent, ".0");
}

/// The keys of columns as GML allows them: letters and digits, a letter first, none twice.
class Keys {
 public:
  explicit Keys(std::set<std::string> taken) : taken_(std::move(taken)) {}

  std::string mapped(std::string_view key) {
    std::string plain;
    for (const char byte : key) {
      if (isLetter(byte) || (isDigit(byte) && !plain.empty())) plain += byte;
    }
    if (plain.empty()) plain = "key";
    std::string candidate = plain;
    // Readers tell keys apart by their letters, and some by these in any case.
    for (int number = 2; !taken_.insert(lower(candidate)).second; ++number) {
      candidate = plain + std::to_string(number);
    }
    return candidate;
  }

 private:
  static std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), lowerAscii);
    return text;
  }

  std::set<std::string> taken_;
};

class GmlWriter {
 public:
  GmlWriter(const NetworkCore& core, TextOutput& out) : core_(core), out_(out) {
    vertexColumns_ = mappedColumns(core.properties->vertices, {"id", "label", "weight"}, "node");
    edgeColumns_ =
        mappedColumns(core.properties->edges, {"source", "target", "weight", "id"}, "edge");
  }

  void write() {
    out_.text += comments_ + "graph [\n  directed " + (core_.store.directed() ? "1\n" : "0\n");
    // Without this word some readers refuse a second edge between two vertices.
    if (hasParallelEdges()) out_.text += "  multigraph 1\n";
    for (std::uint64_t v = 0; v < core_.store.vertexCount(); ++v) writeVertex(v);
    for (std::uint64_t e = 0; e < core_.store.edgeCount(); ++e) writeEdge(e);
    out_.text += "]\n";
    out_.finish();
  }

 private:
  struct MappedColumn {
    TableColumn column;
    std::string key;
  };

  std::vector<MappedColumn> mappedColumns(const PropertyTable& table, std::set<std::string> taken,
                                          std::string_view of) {
    Keys keys(std::move(taken));
    std::vector<MappedColumn> columns;
    for (TableColumn& column : columnsOf(table)) {
      const bool isName = of == "node" && column.key == "Name";
      std::string key = isName ? "label" : keys.mapped(column.key);
      if (!isName && key != column.key) {
        comments_.append("# ").append(of).append(" key ").append(key).append(" is \"");
        appendGml(comments_, column.key);
        comments_ += "\"\n";
      }
      columns.push_back({std::move(column), std::move(key)});
    }
    return columns;
  }

  [[nodiscard]] bool hasParallelEdges() const {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> ends(core_.store.edgeCount());
    for (std::uint64_t e = 0; e < ends.size(); ++e) {
      ends[e] = {core_.store.from(e), core_.store.to(e)};
      if (!core_.store.directed() && ends[e].first > ends[e].second) {
        std::swap(ends[e].first, ends[e].second);
      }
    }
    std::sort(ends.begin(), ends.end());
    return std::adjacent_find(ends.begin(), ends.end()) != ends.end();
  }

  void writeVertex(std::uint64_t vertex) {
    out_.text += "  node [\n    id ";
    appendInteger(out_.text, vertex);
    out_.text += '\n';
    if (core_.verticesWeights) writeWeight((*core_.verticesWeights)[vertex]);
    writeValues(vertexColumns_, vertex);
    out_.text += "  ]\n";
    out_.endRow();
  }

  void writeEdge(std::uint64_t edge) {
    out_.text += "  edge [\n    source ";
    appendInteger(out_.text, core_.store.from(edge));
    out_.text += "\n    target ";
    appendInteger(out_.text, core_.store.to(edge));
    out_.text += '\n';
    if (core_.edgesWeights) writeWeight((*core_.edgesWeights)[edge]);
    writeValues(edgeColumns_, edge);
    out_.text += "  ]\n";
    out_.endRow();
  }

  void writeWeight(float weight) {
    std::string text;
    appendShortest(text, weight);
    out_.text += "    weight ";
    writeReal(std::move(text));
  }

  /// From its shortest text. An infinity and NaN, which GML has none of, stand in quotes.
  void writeReal(std::string text) {
    const bool isNumber = wholeNumber(text).has_value();
    out_.text += isNumber ? withPoint(std::move(text)) : "\"" + text + "\"";
    out_.text += '\n';
  }

  void writeValues(const std::vector<MappedColumn>& columns, std::uint64_t row) {
    for (const MappedColumn& each : columns) {
      const PropertyValue value = each.column.at(row);
      if (value.isNull()) continue;
      out_.text.append("    ").append(each.key) += ' ';
      if (each.column.kind == ValueKind::kInteger) {
        out_.text.append(value.text()) += '\n';
      } else if (each.column.kind == ValueKind::kNumber) {
        writeReal(value.text());
      } else {
        out_.text += '"';
        appendGml(out_.text, value.text());
        out_.text += "\"\n";
      }
    }
  }

  const NetworkCore& core_;
  TextOutput& out_;
  std::string comments_;
  std::vector<MappedColumn> vertexColumns_;
  std::vector<MappedColumn> edgeColumns_;
};

}  // namespace

void writeGml(const NetworkCore& core, TextOutput& out) { GmlWriter(core, out).write(); }

}  // namespace veq::internal
