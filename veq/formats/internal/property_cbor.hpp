/// \file
/// Properties as CBOR, in the forms that docs/formats/archive.md describes.
#pragma once

#include <optional>

#include "veq/formats/internal/cbor_reader.hpp"
#include "veq/formats/internal/cbor_writer.hpp"
#include "veq/numeric/keyed_table.hpp"

namespace veq::internal {

/// Throws std::invalid_argument where a column holds an object without an archived form.
void requireArchivable(const PropertyTable& table);

/// Throws as requireArchivable does, halfway.
void writeTable(CborWriter& out, const PropertyTable& table);

[[nodiscard]] std::optional<PropertyTable> readTable(CborReader& in);

}  // namespace veq::internal
