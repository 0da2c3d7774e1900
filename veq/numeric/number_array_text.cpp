#include <charconv>
#include <stdexcept>
#include <system_error>

#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/text_scanner.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/internal/element_storage.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq {
namespace {

using internal::RawVector;
using internal::TextScanner;

/// The unsigned integer with which the text begins, so that the largest of them can be read back; a
/// negative one wraps.
std::uint64_t leadingUnsigned(std::string_view text) {
  TextScanner scanner(text);
  scanner.skipBlanksAndNewlines();
  if (scanner.startsWith('-')) return static_cast<std::uint64_t>(scanner.readInteger().value_or(0));
  scanner.match('+');
  const std::string_view digits = scanner.rest();
  std::uint64_t value = 0;
  const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return end.ec == std::errc::result_out_of_range ? UINT64_MAX : value;
}

/// One number for each piece between separators.
template <class T>
Owned<VEQNumberArray> readPieces(std::string_view text, std::string_view separator,
                                 T (*read)(std::string_view)) {
  RawVector<T> values;
  for (bool more = !text.empty(); more;) {
    const std::size_t end = text.find(separator);
    values.push_back(read(text.substr(0, end)));
    more = end != std::string_view::npos;
    if (more) text.remove_prefix(end + separator.size());
  }
  return std::make_unique<VEQNumberArray>(std::move(values));
}

}  // namespace

Owned<VEQNumberArray> VEQNumberArray::initWithString(std::string_view text) {
  RawVector<double> values;
  TextScanner scanner(text);
  for (scanner.skipBlanksAndNewlines(); !scanner.atEnd(); scanner.skipBlanksAndNewlines()) {
    values.push_back(scanner.readDouble().value_or(0.0));
    scanner.takeUntilBlankOrNewline();
  }
  return std::make_unique<VEQNumberArray>(std::move(values));
}

Owned<VEQNumberArray> VEQNumberArray::initWithString_separator_type(std::string_view text,
                                                                    std::string_view separator,
                                                                    int type) {
  if (separator.empty()) throw std::invalid_argument("The separator is empty.");
  switch (static_cast<ElementType>(type)) {
    case ElementType::kDouble:
      return readPieces(text, separator, internal::leadingDouble);
    case ElementType::kInteger:
      return readPieces(text, separator, internal::leadingInteger);
    case ElementType::kFloat:
      return readPieces(text, separator, internal::leadingFloat);
    case ElementType::kUnsignedInteger:
      return readPieces(text, separator, leadingUnsigned);
  }
  throw std::invalid_argument("The element type is none of 12, 13, 14 and 15.");
}

std::string VEQNumberArray::stringValueWithSeparator(std::string_view separator) const {
  std::string result;
  visit([&result, separator](auto elements) {
    for (const auto& element : elements) {
      if (&element != elements.data()) result += separator;
      internal::appendNumber(result, element);
    }
  });
  return result;
}

Shared<GenericArray> VEQNumberArray::stringArray() const {
  std::vector<PropertyValue> texts;
  texts.reserve(internal::sizeOf<PropertyValue>(count()));
  visit([&texts](auto elements) {
    for (const auto element : elements) texts.emplace_back(Number(element).text());
  });
  return std::make_shared<GenericArray>(std::move(texts));
}

std::string VEQNumberArray::description() const {
  return '(' + stringValueWithSeparator(", ") + ')';
}

}  // namespace veq
