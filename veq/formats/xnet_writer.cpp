#include <utility>

#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/column_text.hpp"
#include "veq/formats/internal/xnet.hpp"
#include "veq/network/internal/property_columns.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

class XnetWriter {
 public:
  explicit XnetWriter(const NetworkCore& core) : core_(core) {}

  NetworkText write() {
    NetworkText text(core_, {0, "", "\n"});
    writeVertices();
    writeEdgesHeader();
    text.beforeEdges = std::exchange(out_, {});
    for (const auto& [key, column] : core_.properties->vertices) {
      if (!isReservedKey(key) && key != "Name") writeProperty(key, *column);
    }
    // The vertex header stands before edge columns, too: the format has no writer for the other.
    for (const auto& [key, column] : core_.properties->edges) {
      if (!isReservedKey(key)) writeProperty(key, *column);
    }
    text.behindEdges = std::move(out_);
    return text;
  }

 private:
  void writeVertices() {
    const std::uint64_t count = core_.store.vertexCount();
    out_ += "#vertices ";
    appendInteger(out_, count);
    out_ += core_.verticesWeights ? " weighted\n" : " nonweighted\n";
    const Shared<PropertyColumn>* const names = core_.properties->vertices.find("Name");
    if (names) {
      writeNamedVertices(ColumnText(**names), count);
    } else if (core_.verticesWeights) {
      for (std::uint64_t i = 0; i < count; ++i) {
        appendSixDecimals(out_, (*core_.verticesWeights)[i]);
        out_ += '\n';
      }
    }
  }

  void writeNamedVertices(const ColumnText& names, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i) {
      names.appendQuoted(out_, i);
      if (core_.verticesWeights) {
        out_ += ' ';
        appendSixDecimals(out_, (*core_.verticesWeights)[i]);
      }
      out_ += '\n';
    }
  }

  void writeEdgesHeader() {
    out_ += core_.edgesWeights ? "#edges weighted " : "#edges nonweighted ";
    out_ += core_.store.directed() ? "directed\n" : "undirected\n";
  }

  void writeProperty(std::string_view key, const PropertyColumn& column) {
    out_.append("#v \"").append(key).append("\" ");
    switch (column.kind()) {
      case PropertyColumn::Kind::kNumber:
        out_ += "n\n";
        out_ += static_cast<const VEQNumberArray&>(column).stringValueWithSeparator("\n");
        out_ += '\n';
        return;
      case PropertyColumn::Kind::kVector2d:
        return writeVectors("v2\n", static_cast<const VEQVector2dArray&>(column));
      case PropertyColumn::Kind::kVector3d:
        return writeVectors("v3\n", static_cast<const VEQVector3dArray&>(column));
      case PropertyColumn::Kind::kGeneric:
        return writeTexts(column);
    }
  }

  template <class Vectors>
  void writeVectors(std::string_view tag, const Vectors& vectors) {
    out_ += tag;
    out_ += vectors.stringValueWithVectorSeparator_elementsSeparator("\n", " ");
    out_ += '\n';
  }

  void writeTexts(const PropertyColumn& column) {
    out_ += "s\n";
    const ColumnText texts(column);
    for (std::uint64_t i = 0; i < column.count(); ++i) {
      texts.appendQuoted(out_, i);
      out_ += '\n';
    }
  }

  const NetworkCore& core_;
  std::string out_;
};

}  // namespace

NetworkText writeXnet(const NetworkCore& core) { return XnetWriter(core).write(); }

}  // namespace veq::internal
