// Properties to CBOR.

#include <span>
#include <stdexcept>
#include <variant>

#include "veq/formats/internal/property_cbor.hpp"
#include "veq/formats/internal/vector_cbor.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

[[noreturn]] void refuse() { throw std::invalid_argument("A property cannot be archived."); }

// The plain value that stands for the object.
PropertyValue archivedForm(const PropertyObject& object) {
  PropertyValue form = object.archivedForm();
  if (form.isNull() || form.object()) refuse();
  return form;
}

// The map of a vector or an array of vectors, up to its components.
void writeVectorHead(CborWriter& out, std::size_t dimensions, Precision precision) {
  out.writeHead(CborMajor::kMap, dimensions + 1);
  out.writeString(kPrecisionKey);
  out.writeNumber(std::int64_t{precision});
}

template <std::size_t kDimensions>
void writeVector(CborWriter& out, Precision precision,
                 const std::array<double, kDimensions>& components) {
  writeVectorHead(out, kDimensions, precision);
  for (std::size_t axis = 0; axis < kDimensions; ++axis) {
    out.writeString(kComponentKeys[axis]);
    out.writeNumber(components[axis]);
  }
}

void writeValue(CborWriter& out, const PropertyValue& value) {
  if (value.isNull()) {
    out.writeNull();
  } else if (const Number* number = value.number()) {
    std::visit([&out](auto plain) { out.writeNumber(plain); }, number->value());
  } else if (const std::string* text = value.string()) {
    out.writeString(*text);
  } else if (const VEQVector2d* v = value.vector2d()) {
    writeVector<2>(out, v->precision(), {v->x(), v->y()});
  } else if (const VEQVector3d* w = value.vector3d()) {
    writeVector<3>(out, w->precision(), {w->x(), w->y(), w->z()});
  } else {
    writeValue(out, archivedForm(*value.object()));
  }
}

void writeColumn(CborWriter& out, const GenericArray& column) {
  out.writeHead(CborMajor::kArray, column.count());
  for (const PropertyValue& value : column.values()) writeValue(out, value);
}

void writeColumn(CborWriter& out, const VEQVector2dArray& column) {
  RawVector<double> x(column.count());
  RawVector<double> y(column.count());
  for (std::size_t i = 0; i < x.size(); ++i) {
    const VEQVector2d vector = column.vectorAtIndex(i);
    x[i] = vector.x();
    y[i] = vector.y();
  }
  writeVectorHead(out, 2, column.precision());
  out.writeString(kComponentKeys[0]);
  out.writeNumbers(std::span<const double>(x));
  out.writeString(kComponentKeys[1]);
  out.writeNumbers(std::span<const double>(y));
}

void writeColumn(CborWriter& out, const VEQVector3dArray& column) {
  const std::array<std::span<const double>, 3> components{column.xs(), column.ys(), column.zs()};
  writeVectorHead(out, 3, column.precision());
  for (std::size_t axis = 0; axis < 3; ++axis) {
    out.writeString(kComponentKeys[axis]);
    out.writeNumbers(components[axis]);
  }
}

void writeColumn(CborWriter& out, const PropertyColumn& column) {
  switch (column.kind()) {
    case PropertyColumn::Kind::kGeneric:
      return writeColumn(out, static_cast<const GenericArray&>(column));
    case PropertyColumn::Kind::kNumber:
      return out.writeNumbers(static_cast<const VEQNumberArray&>(column));
    case PropertyColumn::Kind::kVector2d:
      return writeColumn(out, static_cast<const VEQVector2dArray&>(column));
    case PropertyColumn::Kind::kVector3d:
      return writeColumn(out, static_cast<const VEQVector3dArray&>(column));
  }
}

}  // namespace

void requireArchivable(const PropertyTable& table) {
  for (const auto& [key, column] : table) {
    if (column->kind() != PropertyColumn::Kind::kGeneric) continue;
    for (const PropertyValue& value : static_cast<const GenericArray&>(*column).values()) {
      if (const PropertyObject* object = value.object()) static_cast<void>(archivedForm(*object));
    }
  }
}

void writeTable(CborWriter& out, const PropertyTable& table) {
  out.writeHead(CborMajor::kMap, table.size());
  for (const auto& [key, column] : table) {
    if (!column) refuse();
    out.writeString(key);
    writeColumn(out, *column);
  }
}

}  // namespace veq::internal
