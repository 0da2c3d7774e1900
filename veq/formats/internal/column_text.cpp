#include "veq/formats/internal/column_text.hpp"

#include "veq/base/internal/text_escapes.hpp"
#include "veq/network/internal/property_columns.hpp"
#include "veq/numeric/generic_array.hpp"

namespace veq::internal {

ColumnText::ColumnText(const PropertyColumn& column) : column_(column) {
  if (const auto* generic = dynamic_cast<const GenericArray*>(&column)) {
    values_ = &generic->values();
  }
}

void ColumnText::appendQuoted(std::string& out, std::uint64_t index) const {
  out += '"';
  const std::string* const string =
      values_ && index < values_->size() ? (*values_)[index].string() : nullptr;
  if (string) {
    appendEscaped(out, *string);
  } else {
    appendEscaped(out, valueOrNull(column_, index).text());
  }
  out += '"';
}

}  // namespace veq::internal
