/// \file
/// The data of a GraphML file on their way to columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/network/internal/network_draft.hpp"
#include "veq/readers/internal/text_store.hpp"

namespace veq::readers {

/// What a key declares.
struct GraphMlKey {
  bool ofVertices = false;
  bool ofEdges = false;
  std::string name;
  bool isText = false;
  bool isWeight = false;
  /// 2 or 3 for vectors, which GraphML itself does not know.
  std::size_t dimensions = 0;
  std::string byDefault;
  Place place;
};

class GraphMlKeys {
 public:
  /// From an element <key>, which stands there.
  void declare(const pugi::xml_node& node, Place place);
  /// Nothing where there is none. It stays where it is.
  [[nodiscard]] const GraphMlKey* find(std::string_view id) const;
  [[nodiscard]] const std::deque<GraphMlKey>& all() const { return keys_; }

 private:
  std::deque<GraphMlKey> keys_;
  /// Those of them that are weights: one of nodes and one of edges, or one of both.
  std::vector<const GraphMlKey*> weights_;
  std::unordered_map<std::string_view, const GraphMlKey*> byId_;
  TextStore ids_;
};

/// The columns of either vertices or edges, and their weights.
class GraphMlColumns {
 public:
  GraphMlColumns(bool ofVertices, internal::ReadContext& context, unsigned roundedCode,
                 unsigned missingCode)
      : ofVertices_(ofVertices),
        context_(context),
        roundedCode_(roundedCode),
        missingCode_(missingCode) {}

  /// The data of the element in a row; placeOf() gives its place.
  template <class PlaceOf>
  void set(const GraphMlKey& key, std::uint64_t row, std::string_view text, PlaceOf placeOf) {
    if (key.isWeight) return setWeight(key, row, text, placeOf);
    context_.addUnsetCells(columnOf(key).cells.set(row, texts_.kept(text)), placeOf);
  }
  /// To be called behind the data of a row.
  template <class PlaceOf>
  void endRow(std::uint64_t row, PlaceOf placeOf) {
    if (!hasMissing_ && weights_.size() <= row) noteMissing(placeOf());
  }
  /// Gives the draft its columns, with defaults where there are no data, and its weights.
  void finish(const GraphMlKeys& keys, std::uint64_t rows, internal::NetworkDraft& draft);

 private:
  struct Column {
    explicit Column(const GraphMlKey& declared) : key(&declared), cells(declared.name) {}
    const GraphMlKey* key;
    internal::TextColumn cells;
  };

  template <class PlaceOf>
  void setWeight(const GraphMlKey& key, std::uint64_t row, std::string_view text, PlaceOf placeOf) {
    weightKey_ = &key;
    fillWeights(row);
    if (weights_.size() != row) return;
    const std::string_view cell = internal::withoutBlanks(text);
    const std::optional<double> weight = internal::wholeNumber(cell);
    if (!weight) {
      if (!hasMissing_) noteMissing(placeOf());
      return fillWeights(row + 1);
    }
    if (weights_.append(*weight, cell.size())) weights_.setPlace(placeOf());
  }
  void noteMissing(Place place) {
    hasMissing_ = true;
    missing_ = place;
  }
  /// Up to so many rows those that have none get the default.
  void fillWeights(std::uint64_t rows);
  void finishWeights(std::uint64_t rows, internal::NetworkDraft& draft);
  Column& columnOf(const GraphMlKey& key);

  bool ofVertices_;
  internal::ReadContext& context_;
  unsigned roundedCode_;
  unsigned missingCode_;
  TextStore texts_;
  std::vector<Column> columns_;
  std::unordered_map<const GraphMlKey*, std::size_t> places_;
  /// Data come in the same order again and again.
  std::size_t next_ = 0;
  const GraphMlKey* weightKey_ = nullptr;
  internal::WeightColumn weights_;
  /// The first element without a weight.
  bool hasMissing_ = false;
  Place missing_;
};

}  // namespace veq::readers
