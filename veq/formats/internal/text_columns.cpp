#include "veq/formats/internal/text_columns.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <system_error>
#include <utility>

#include "veq/base/internal/number_text.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/network/internal/property_columns.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {
namespace {

/// An integer as people write numbers: "007" and "+1" are texts, for all that they would lose.
std::optional<std::int64_t> plainInteger(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  const std::string_view digits = text.front() == '-' ? text.substr(1) : text;
  if (digits.size() > 1 && digits.front() == '0') return std::nullopt;
  if (text == "-0") return std::nullopt;
  return value;
}

/// A number that is not written like a label.
std::optional<double> plainNumber(std::string_view text) {
  if (const auto integer = plainInteger(text)) return static_cast<double>(*integer);
  // What has neither a point nor an exponent is an integer, and one such as "007" is a text.
  if (text.find_first_of(".eE") == text.npos) return std::nullopt;
  return wholeNumber(text);
}

/// Whether a number has up to six decimals and up to six digits, but for zeros, or is small: the
/// shortest text of the nearest float is that decimal. Where it says no, this need not be
/// otherwise.
bool hasFewDigits(double weight) {
  constexpr double kMillion = 1e6;
  if (!(weight < kMillion)) return false;
  // The quotient of two integers is rounded as the decimal is that they stand for.
  auto digits = static_cast<std::uint64_t>(weight * kMillion + 0.5);
  if (static_cast<double>(digits) / kMillion != weight) return false;
  // Below 16 floats lie closer than such decimals, so that each is the nearest to one at most.
  if (weight < 16) return true;
  while (digits >= 1'000'000 && digits % 10 == 0) digits /= 10;
  return digits < 1'000'000;
}

enum class CellKind { kInteger, kNumber, kText };

CellKind kindOf(std::string_view cell) {
  if (cell.empty()) return CellKind::kText;
  if (plainInteger(cell)) return CellKind::kInteger;
  return plainNumber(cell) ? CellKind::kNumber : CellKind::kText;
}

template <class T, class Convert>
Shared<PropertyColumn> numbers(const std::vector<std::string_view>& cells, Convert convert) {
  RawVector<T> values(cells.size());
  std::transform(cells.begin(), cells.end(), values.begin(), convert);
  return std::make_shared<VEQNumberArray>(std::move(values));
}

}  // namespace

Shared<PropertyColumn> TextColumn::finish(std::uint64_t rows) const {
  CellKind kind = CellKind::kInteger;
  bool complete = cells_.size() == rows && rows != 0;
  for (const std::string_view cell : cells_) {
    if (!cell.data()) {
      complete = false;
    } else if (kind != CellKind::kText) {
      kind = std::max(kind, kindOf(cell));
    }
  }
  const auto integer = [](std::string_view cell) { return plainInteger(cell).value_or(0); };
  const auto number = [](std::string_view cell) { return plainNumber(cell).value_or(0.0); };
  if (complete && kind == CellKind::kInteger) return numbers<std::int64_t>(cells_, integer);
  if (complete && kind == CellKind::kNumber) return numbers<double>(cells_, number);

  std::vector<PropertyValue> values(rows);
  for (std::uint64_t row = 0; row < cells_.size(); ++row) {
    const std::string_view cell = cells_[row];
    if (!cell.data()) continue;
    if (kind == CellKind::kInteger) {
      values[row] = Number(integer(cell));
    } else if (kind == CellKind::kNumber) {
      values[row] = Number(number(cell));
    } else {
      values[row] = std::string(cell);
    }
  }
  return std::make_shared<GenericArray>(std::move(values));
}

bool WeightColumn::look(double weight) {
  const float kept = weights_.back();
  // Texts have no infinite numbers, only such as are too large.
  if (!std::isinf(weight)) {
    if (static_cast<double>(kept) == weight || hasFewDigits(std::abs(weight))) return false;
    std::string text;
    appendShortest(text, kept);
    if (leadingDouble(text) == weight) return false;
  }
  inexact_.push_back({weights_.size() - 1, weight});
  return inexact_.size() == 1;
}

void WeightColumn::clear() {
  weights_.clear();
  inexact_.clear();
  differsFromOne_ = false;
}

void WeightColumn::follow(const WeightColumn& piece, std::uint64_t at, std::uint64_t lines) {
  differsFromOne_ |= piece.differsFromOne_;
  if (inexact_.empty() && !piece.inexact_.empty()) {
    place_ = {lines + piece.place_.line, piece.place_.column};
  }
  for (const Exact& other : piece.inexact_) inexact_.push_back({at + other.edge, other.weight});
}

double WeightColumn::at(std::uint64_t edge) const {
  const auto exact =
      std::lower_bound(inexact_.begin(), inexact_.end(), edge,
                       [](const Exact& each, std::uint64_t sought) { return each.edge < sought; });
  const bool isExact = exact != inexact_.end() && exact->edge == edge;
  return isExact ? exact->weight : static_cast<double>(weights_[edge]);
}

void WeightColumn::finish(NetworkDraft& draft, ReadContext& context, unsigned noteCode) {
  if (!inexact_.empty()) {
    const Exact& first = inexact_.front();
    const bool keep = context.options.keepWeights;
    context.note(noteCode, keep ? NoteKind::kTaken : NoteKind::kRepaired, place_, [&] {
      std::string text = std::to_string(inexact_.size());
      text += inexact_.size() == 1 ? " weight is rounded to 32 bits: that of edge "
                                   : " weights are rounded to 32 bits: that of edge ";
      text += std::to_string(first.edge) + " from ";
      if (std::isinf(first.weight)) {
        text += "beyond 1.8e308";
      } else {
        appendShortest(text, first.weight);
      }
      text += " to ";
      appendShortest(text, weights_[first.edge]);
      return keep ? text + "; the column \"Weight\" has them all" : text;
    });
    if (keep) {
      RawVector<double> exact(weights_.begin(), weights_.end());
      for (const Exact& other : inexact_) exact[other.edge] = other.weight;
      draft.properties.edges.set("Weight", std::make_shared<VEQNumberArray>(std::move(exact)));
    }
  }
  draft.edgesWeights = std::move(weights_);
}

void noteReserved(std::string_view key, Place place, ReadContext& context) {
  context.noteEach(NoteKind::kLeftOut, place,
                   "the column \"" + std::string(key) +
                       "\" is left out, because weights and ends have such names");
}

void addColumn(PropertyTable& table, const std::string& key, Shared<PropertyColumn> column,
               Place place, ReadContext& context) {
  if (isReservedKey(key)) return noteReserved(key, place, context);
  std::string free = key;
  if (table.contains(key)) {
    std::uint64_t& number = context.furtherColumns.try_emplace({&table, key}, 1).first->second;
    while (table.contains(free)) free = key + " " + std::to_string(++number);
    context.noteEach(NoteKind::kTaken, place,
                     "a further column \"" + key + "\" is called \"" + free + "\"");
  }
  table.set(free, std::move(column));
}

Shared<PropertyColumn> nameColumn(const std::vector<std::string_view>& names, std::uint64_t rows) {
  std::vector<PropertyValue> values(rows);
  for (std::uint64_t i = 0; i < std::min<std::uint64_t>(rows, names.size()); ++i) {
    if (names[i].data()) values[i] = std::string(names[i]);
  }
  return std::make_shared<GenericArray>(std::move(values));
}

Shared<PropertyColumn> modeColumn(std::uint64_t first, std::uint64_t all) {
  RawVector<std::int64_t> modes(all, 2);
  std::fill_n(modes.begin(), std::min(first, all), 1);
  return std::make_shared<VEQNumberArray>(std::move(modes));
}

}  // namespace veq::internal
