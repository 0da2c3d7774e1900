// Properties from CBOR. What is malformed gives null or nothing.

#include <utility>

#include "veq/formats/internal/property_cbor.hpp"
#include "veq/formats/internal/vector_cbor.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

std::optional<PropertyValue> readVector(CborReader& in, const CborHead& head) {
  const auto fields = readVectorFields<double>(in, head, [](CborReader& from, double& component) {
    const auto next = from.readHead();
    const auto number = next ? from.readNumber(*next) : std::nullopt;
    if (!number || number->type() != ElementType::kDouble) return false;
    component = number->as<double>();
    return true;
  });
  if (!fields) return std::nullopt;
  const auto& [x, y, z] = fields->components;
  if (fields->dimensions == 2) return VEQVector2d(x, y, fields->precision);
  return VEQVector3d(x, y, z, fields->precision);
}

std::optional<PropertyValue> readValue(CborReader& in) {
  const auto head = in.readHead();
  if (!head) return std::nullopt;
  if (head->isSimple(kCborNull)) return PropertyValue();
  if (head->major == CborMajor::kMap) return readVector(in, *head);
  if (const auto text = in.readString(*head)) return PropertyValue(*text);
  if (const auto number = in.readNumber(*head)) return PropertyValue(*number);
  return std::nullopt;
}

Shared<PropertyColumn> readGeneric(CborReader& in, const CborHead& head) {
  std::vector<PropertyValue> values;
  values.reserve(static_cast<std::size_t>(head.argument));
  for (std::uint64_t i = 0; i < head.argument; ++i) {
    auto value = readValue(in);
    if (!value) return nullptr;
    values.push_back(std::move(*value));
  }
  return std::make_shared<GenericArray>(std::move(values));
}

Shared<PropertyColumn> vectors2d(std::span<const double> x, std::span<const double> y,
                                 Precision precision) {
  Shared<VEQVector2dArray> column = VEQVector2dArray::initWithSize_precision(x.size(), precision);
  for (std::size_t i = 0; i < x.size(); ++i) column->setVector_atIndex({x[i], y[i]}, i);
  return column;
}

Shared<PropertyColumn> vectors3d(std::span<const double> x, std::span<const double> y,
                                 std::span<const double> z, Precision precision) {
  Shared<VEQVector3dArray> column = VEQVector3dArray::initWithSize_precision(x.size(), precision);
  std::copy(x.begin(), x.end(), column->xd());
  std::copy(y.begin(), y.end(), column->yd());
  std::copy(z.begin(), z.end(), column->zd());
  return column;
}

Shared<PropertyColumn> readVectors(CborReader& in, const CborHead& head) {
  using Doubles = Owned<VEQNumberArray>;
  const auto fields = readVectorFields<Doubles>(in, head, [](CborReader& from, Doubles& component) {
    const auto next = from.readHead();
    if (next) component = from.readNumbers(*next);
    return component && component->elementType() == ElementType::kDouble;
  });
  if (!fields) return nullptr;
  std::array<std::span<const double>, 3> components;
  for (std::size_t axis = 0; axis < fields->dimensions; ++axis) {
    components[axis] = fields->components[axis]->values<double>();
    if (components[axis].size() != components[0].size()) return nullptr;
  }
  const auto& [x, y, z] = components;
  return fields->dimensions == 2 ? vectors2d(x, y, fields->precision)
                                 : vectors3d(x, y, z, fields->precision);
}

Shared<PropertyColumn> readColumn(CborReader& in) {
  const auto head = in.readHead();
  if (!head) return nullptr;
  if (head->major == CborMajor::kArray) return readGeneric(in, *head);
  if (head->major == CborMajor::kMap) return readVectors(in, *head);
  return in.readNumbers(*head);
}

}  // namespace

std::optional<PropertyTable> readTable(CborReader& in) {
  const auto head = in.readHead();
  if (!head || head->major != CborMajor::kMap) return std::nullopt;
  PropertyTable table;
  for (std::uint64_t i = 0; i < head->argument; ++i) {
    const auto key = in.readString();
    if (!key || table.contains(*key)) return std::nullopt;
    Shared<PropertyColumn> column = readColumn(in);
    if (!column) return std::nullopt;
    table.set(*key, std::move(column));
  }
  return table;
}

}  // namespace veq::internal
