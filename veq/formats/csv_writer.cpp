// Tables of edges and of vertices, for spreadsheets and for programs that draw networks.

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/table_columns.hpp"
#include "veq/formats/internal/writers.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {
namespace {

void appendQuoted(std::string& out, std::string_view text) {
  out += '"';
  for (const char byte : text) {
    if (byte == '"') out += '"';
    out += byte;
  }
  out += '"';
}

/// A field is quoted where it must be, a quote inside it doubled.
void appendField(std::string& out, std::string_view text) {
  const bool isPlain = !text.empty() && text.find_first_of(",;\"\t\r\n") == text.npos &&
                       text.front() != ' ' && text.back() != ' ' && text.front() != '#' &&
                       text.front() != '%' && text.front() != '/';
  if (isPlain) {
    out += text;
    return;
  }
  if (!text.empty()) appendQuoted(out, text);
}

/// A text is quoted, too, that would be read as a number, or as no value at all.
void appendValue(std::string& out, const PropertyValue& value) {
  const std::string text = value.text();
  if (value.string() && (text.empty() || wholeNumber(text))) return appendQuoted(out, text);
  appendField(out, text);
}

/// What vertices are called in both tables: their names where each has one of its own, or else
/// their ids, and otherwise their indices.
class VertexIds {
 public:
  explicit VertexIds(const NetworkCore& core) {
    for (const std::string_view key : {"Name", "Id"}) {
      const Shared<PropertyColumn>* const column = core.properties->vertices.find(key);
      if (!column || !tellsApart(**column, core.store.vertexCount())) continue;
      names_ = column->get();
      key_ = key;
      return;
    }
  }

  /// The key of the column that they are from; empty for indices.
  [[nodiscard]] std::string_view key() const { return key_; }

  void append(std::string& out, std::uint64_t vertex) const {
    if (names_) {
      appendField(out, valueOrNull(*names_, vertex).text());
    } else {
      appendInteger(out, vertex);
    }
  }

 private:
  static bool tellsApart(const PropertyColumn& column, std::uint64_t vertices) {
    std::unordered_set<std::string> seen;
    for (std::uint64_t v = 0; v < vertices; ++v) {
      const PropertyValue name = valueOrNull(column, v);
      if (name.isNull() || name.text().empty() || !seen.insert(name.text()).second) return false;
    }
    return true;
  }

  const PropertyColumn* names_ = nullptr;
  std::string_view key_;
};

void appendHeader(std::string& out, const std::vector<TableColumn>& columns) {
  for (const TableColumn& column : columns) {
    out += ',';
    appendField(out, column.key);
  }
  out += '\n';
}

void appendRow(std::string& out, const std::vector<TableColumn>& columns, std::uint64_t row) {
  for (const TableColumn& column : columns) {
    out += ',';
    const PropertyValue value = column.at(row);
    if (!value.isNull()) appendValue(out, value);
  }
  out += '\n';
}

}  // namespace

void writeEdgeTable(const NetworkCore& core, TextOutput& out) {
  const VertexIds ids(core);
  const std::vector<TableColumn> columns = columnsOf(core.properties->edges);
  out.text += core.edgesWeights ? "Source,Target,Type,Weight" : "Source,Target,Type";
  appendHeader(out.text, columns);
  for (std::uint64_t edge = 0; edge < core.store.edgeCount(); ++edge) {
    ids.append(out.text, core.store.from(edge));
    out.text += ',';
    ids.append(out.text, core.store.to(edge));
    out.text += core.store.directed() ? ",Directed" : ",Undirected";
    if (core.edgesWeights) {
      out.text += ',';
      appendShortest(out.text, (*core.edgesWeights)[edge]);
    }
    appendRow(out.text, columns, edge);
    out.endRow();
  }
  out.finish();
}

void writeVertexTable(const NetworkCore& core, TextOutput& out) {
  const VertexIds ids(core);
  std::vector<TableColumn> columns = columnsOf(core.properties->vertices);
  if (ids.key() == "Id") {
    columns.erase(std::remove_if(columns.begin(), columns.end(),
                                 [](const TableColumn& column) { return column.key == "Id"; }),
                  columns.end());
  }
  for (TableColumn& column : columns) {
    if (column.key == "Name") column.key = "Label";
    // The first column has the name already.
    if (column.key == "Id") column.key = "Id 2";
  }
  out.text += core.verticesWeights ? "Id,Weight" : "Id";
  appendHeader(out.text, columns);
  for (std::uint64_t vertex = 0; vertex < core.store.vertexCount(); ++vertex) {
    ids.append(out.text, vertex);
    if (core.verticesWeights) {
      out.text += ',';
      appendShortest(out.text, (*core.verticesWeights)[vertex]);
    }
    appendRow(out.text, columns, vertex);
    out.endRow();
  }
  out.finish();
}

}  // namespace veq::internal
