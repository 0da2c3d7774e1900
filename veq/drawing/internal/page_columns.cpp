#include "veq/drawing/internal/page_columns.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "veq/drawing/internal/byte_writer.hpp"
#include "veq/drawing/internal/page_texts.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {
namespace {

enum Kind : std::uint8_t { kFloats = 1, kWholeNumbers = 2, kTexts = 3, kDoubles = 4 };

bool isWhole(double number) {
  return number >= 0.0 && number <= 4294967295.0 && std::trunc(number) == number &&
         !std::signbit(number);
}

bool isFloat(double number) {
  return std::isnan(number) ||
         (std::fabs(number) <= static_cast<double>(std::numeric_limits<float>::max()) &&
          static_cast<double>(static_cast<float>(number)) == number) ||
         std::isinf(number);
}

void writeNumbers(ByteWriter& out, const std::vector<double>& numbers) {
  const bool whole = std::all_of(numbers.begin(), numbers.end(), isWhole);
  const bool narrow = std::all_of(numbers.begin(), numbers.end(), isFloat);
  out.u8(whole ? kWholeNumbers : narrow ? kFloats : kDoubles);
  for (const double number : numbers) {
    if (whole) {
      out.varint(static_cast<std::uint64_t>(number));
    } else if (narrow) {
      out.f32(static_cast<float>(number));
    } else {
      out.f64(number);
    }
  }
}

void writeTexts(ByteWriter& out, const std::vector<std::optional<std::string>>& texts) {
  std::unordered_map<std::string, std::uint64_t> numbers;
  std::vector<const std::string*> different;
  for (const auto& text : texts) {
    if (!text) continue;
    const auto [place, isNew] = numbers.emplace(*text, numbers.size() + 1);
    if (isNew) different.push_back(&place->first);
  }
  out.u8(kTexts);
  out.varint(different.size());
  for (const std::string* text : different) out.text(*text);
  for (const auto& text : texts) out.varint(text ? numbers.at(*text) : 0);
}

}  // namespace

std::optional<PageColumn> pageColumn(const Network& network, std::string_view key) {
  const std::uint64_t n = network.countVertices();
  PageColumn made;
  made.key = key;
  if (key == "Vertex Weight" && network.isVertexWeighted()) {
    const std::vector<float> weights = network.vertexWeights();
    made.numbers.assign(weights.begin(), weights.end());
    return made;
  }
  const Shared<const PropertyColumn> column = network.vertexColumn(key);
  if (!column) return std::nullopt;
  made.numbers.assign(n, std::numeric_limits<double>::quiet_NaN());
  for (std::uint64_t v = 0; v < n && made.isNumber; ++v) {
    const PropertyValue value = valueOrNull(*column, v);
    if (const Number* const number = value.number()) {
      made.numbers[v] = number->as<double>();
    } else {
      made.isNumber = value.isNull();
    }
  }
  if (made.isNumber) return made;
  made.numbers.clear();
  made.texts.resize(n);
  for (std::uint64_t v = 0; v < n; ++v) {
    const PropertyValue value = valueOrNull(*column, v);
    if (!value.isNull()) made.texts[v] = asUtf8(value.text());
  }
  return made;
}

std::string columnBytes(const PageColumn& column) {
  ByteWriter out;
  if (column.isNumber) {
    writeNumbers(out, column.numbers);
  } else {
    writeTexts(out, column.texts);
  }
  return out.take();
}

}  // namespace veq::internal
