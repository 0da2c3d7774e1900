/// \file
/// Columns of a text on their way into a network.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/network/internal/network_draft.hpp"
#include "veq/numeric/property_column.hpp"

namespace veq::internal {

/// A column of texts, null where there is none.
[[nodiscard]] VEQ_EXPORT Shared<PropertyColumn> nameColumn(
    const std::vector<std::string_view>& texts, std::uint64_t rows);

/// The cells of one column, as they stand in a text that outlives this. A cell that is never set is
/// unset, which differs from one that is empty.
class VEQ_EXPORT TextColumn {
 public:
  explicit TextColumn(std::string key) : key_(std::move(key)) {}

  [[nodiscard]] const std::string& key() const { return key_; }
  [[nodiscard]] bool empty() const { return cells_.empty(); }
  /// Answers how many cells before it are unset that the column did not have.
  std::uint64_t set(std::uint64_t row, std::string_view cell) {
    const std::uint64_t before = cells_.size();
    if (row >= before) cells_.resize(row + 1);
    // An empty view may have no address, which would be no cell.
    cells_[row] = cell.data() ? cell : std::string_view("");
    return row > before ? row - before : 0;
  }
  /// How many of the rows lie behind its last cell.
  [[nodiscard]] std::uint64_t unsetBehind(std::uint64_t rows) const {
    return rows - std::min<std::uint64_t>(rows, cells_.size());
  }

  /// Makes cells that are empty unset.
  void unsetEmptyCells() {
    bool any = false;
    for (std::string_view& cell : cells_) {
      if (cell.empty()) cell = {};
      any |= cell.data() != nullptr;
    }
    if (!any) cells_.clear();
  }

  /// No address where the cell is unset.
  [[nodiscard]] std::string_view at(std::uint64_t row) const {
    return row < cells_.size() ? cells_[row] : std::string_view();
  }

  /// Whole numbers where all cells are that, as they are written, doubles where all are numbers,
  /// and otherwise the texts, with null markers for cells that are unset. Cells beyond the end are
  /// unset.
  [[nodiscard]] Shared<PropertyColumn> finish(std::uint64_t rows) const;
  /// The texts, whatever they say.
  [[nodiscard]] Shared<PropertyColumn> finishAsText(std::uint64_t rows) const {
    return nameColumn(cells_, rows);
  }

 private:
  std::string key_;
  std::vector<std::string_view> cells_;
};

/// Notes that no column can have this key.
void noteReserved(std::string_view key, Place place, ReadContext& context);

/// Gives a table a column that is declared at the place. Where it has one of this key, the new one
/// gets a number behind its key, with a note; where the key is reserved, it is left out with one.
VEQ_EXPORT void addColumn(PropertyTable& table, const std::string& key,
                          Shared<PropertyColumn> column, Place place, ReadContext& context);

/// The weights of edges: decimals in a text, floats in a network.
class VEQ_EXPORT WeightColumn {
 public:
  /// For a weight that comes from no text.
  static constexpr std::size_t kUnknownLength = SIZE_MAX;

  /// The next edge's weight, with the length of its text. Answers whether it is the first that a
  /// float does not hold, whose place is then to be told.
  bool append(double weight, std::size_t length) {
    weights_.push_back(static_cast<float>(weight));
    differsFromOne_ |= weight != 1.0;
    const double size = weight < 0 ? -weight : weight;
    // A float holds every decimal of six digits that is not too large. Below 16 floats lie closer
    // than decimals of six places, which is all that two more characters can say of a number from 1
    // on.
    const bool isHeld = length <= kSafeLength ? size < kSafeSize
                                              : length <= kSafeLength + 2 && size >= 1 && size < 16;
    return !isHeld && look(weight);
  }
  void setPlace(Place place) { place_ = place; }
  [[nodiscard]] Place place() const { return place_; }
  void reserve(std::uint64_t edges) { weights_.reserve(edges); }
  // For LinesAhead; the places of a piece are those of the text behind so many lines.
  void clear();
  void resize(std::uint64_t edges) { weights_.resize(edges); }
  void copy(const WeightColumn& piece, std::uint64_t at) {
    if (piece.weights_.empty()) return;  // nor has this one a place `at`
    std::copy(piece.weights_.begin(), piece.weights_.end(),
              weights_.begin() + static_cast<std::ptrdiff_t>(at));
  }
  void follow(const WeightColumn& piece, std::uint64_t at, std::uint64_t lines);
  [[nodiscard]] std::uint64_t size() const { return weights_.size(); }
  /// As the text says it where a float does not.
  [[nodiscard]] double at(std::uint64_t edge) const;
  [[nodiscard]] bool differsFromOne() const { return differsFromOne_; }

  /// The weights, without a word about those that were rounded.
  [[nodiscard]] Weights take() { return std::move(weights_); }

  /// Gives the draft its weights; with a note where the shortest text of a float is not what the
  /// text says, and the column "Weight" where that was asked for.
  void finish(NetworkDraft& draft, ReadContext& context, unsigned noteCode);

 private:
  struct Exact {
    std::uint64_t edge;
    double weight;
  };
  static constexpr std::size_t kSafeLength = 6;
  static constexpr double kSafeSize = 1e38;

  bool look(double weight);

  Weights weights_;
  std::vector<Exact> inexact_;
  Place place_;
  bool differsFromOne_ = false;
};

/// The vertex column "Mode" of a network of two kinds of vertices: 1 for the first ones and 2 for
/// the others.
[[nodiscard]] Shared<PropertyColumn> modeColumn(std::uint64_t first, std::uint64_t all);

}  // namespace veq::internal
