// The columns in the image of a network.

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "veq/natural/internal/network_image.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::internal {
namespace {

// What stands before the elements.
struct ColumnHead {
  std::uint64_t keyLength;
  std::uint64_t count;
  PropertyColumn::Kind kind;
  // The element type of numbers, or the precision of vectors.
  int detail;
};

// What kind of value follows; a number is told by its element type.
enum class ValueMark : std::uint8_t { kNull = 0, kString = 1, kVector2d = 2, kVector3d = 3 };

using Components2d = std::array<double, 2>;
using Components3d = std::array<double, 3>;

Components2d componentsOf(const VEQVector2d& v) { return {v.x(), v.y()}; }
Components3d componentsOf(const VEQVector3d& v) { return {v.x(), v.y(), v.z()}; }
VEQVector2d vectorOf(const Components2d& c, Precision precision) { return {c[0], c[1], precision}; }
VEQVector3d vectorOf(const Components3d& c, Precision precision) {
  return {c[0], c[1], c[2], precision};
}

template <class Vector>
void appendVector(ImageWriter& image, ValueMark mark, const Vector& vector) {
  image.append(mark);
  image.append(vector.precision());
  image.append(componentsOf(vector));
}

// False where it means nothing to another process.
bool appendValue(ImageWriter& image, const PropertyValue& value) {
  if (const PropertyObject* object = value.object()) {
    const PropertyValue form = object->archivedForm();
    return !form.isNull() && !form.object() && appendValue(image, form);
  }
  if (const Number* number = value.number()) {
    image.append(static_cast<std::uint8_t>(number->type()));
    std::visit([&image](auto plain) { image.append(plain); }, number->value());
  } else if (const std::string* string = value.string()) {
    image.append(ValueMark::kString);
    image.append(std::uint64_t{string->size()});
    image.append(string->data(), string->size());
  } else if (const VEQVector2d* vector2d = value.vector2d()) {
    appendVector(image, ValueMark::kVector2d, *vector2d);
  } else if (const VEQVector3d* vector3d = value.vector3d()) {
    appendVector(image, ValueMark::kVector3d, *vector3d);
  } else {
    image.append(ValueMark::kNull);
  }
  return true;
}

template <class Components>
PropertyValue nextVector(ImageReader& image) {
  const auto precision = image.next<Precision>();
  return vectorOf(image.next<Components>(), precision);
}

PropertyValue nextValue(ImageReader& image) {
  const auto mark = image.next<std::uint8_t>();
  switch (static_cast<ElementType>(mark)) {
    case ElementType::kDouble:
      return image.next<double>();
    case ElementType::kInteger:
      return image.next<std::int64_t>();
    case ElementType::kFloat:
      return image.next<float>();
    case ElementType::kUnsignedInteger:
      return image.next<std::uint64_t>();
  }
  switch (static_cast<ValueMark>(mark)) {
    case ValueMark::kNull:
      return {};
    case ValueMark::kString:
      return image.next(image.next<std::uint64_t>());
    case ValueMark::kVector2d:
      return nextVector<Components2d>(image);
    case ValueMark::kVector3d:
      return nextVector<Components3d>(image);
  }
  throw DamagedImage{};
}

template <class Array>
void writeVectors(ImageWriter& image, const PropertyColumn& column) {
  const auto& vectors = static_cast<const Array&>(column);
  using Components = decltype(componentsOf(vectors.vectorAtIndex(0)));
  Components* const to = image.section<Components>(vectors.count());
  for (std::uint64_t i = 0; to && i < vectors.count(); ++i) {
    to[i] = componentsOf(vectors.vectorAtIndex(i));
  }
}

std::optional<Error> writeElements(ImageWriter& image, const std::string& key,
                                   const PropertyColumn& column) {
  switch (column.kind()) {
    case PropertyColumn::Kind::kNumber:
      static_cast<const VEQNumberArray&>(column).visit([&image](auto elements) {
        using T = typename decltype(elements)::value_type;
        if (T* to = image.section<T>(elements.size())) {
          std::copy(elements.begin(), elements.end(), to);
        }
      });
      return std::nullopt;
    case PropertyColumn::Kind::kVector2d:
      writeVectors<VEQVector2dArray>(image, column);
      return std::nullopt;
    case PropertyColumn::Kind::kVector3d:
      writeVectors<VEQVector3dArray>(image, column);
      return std::nullopt;
    case PropertyColumn::Kind::kGeneric:
      break;
  }
  const std::vector<PropertyValue>& values = static_cast<const GenericArray&>(column).values();
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (appendValue(image, values[i])) continue;
    return Error(ErrorKind::kArgument,
                 "column " + key + ": value " + std::to_string(i) + " has no archived form");
  }
  return std::nullopt;
}

int detailOf(const PropertyColumn& column) {
  switch (column.kind()) {
    case PropertyColumn::Kind::kNumber:
      return static_cast<int>(static_cast<const VEQNumberArray&>(column).elementType());
    case PropertyColumn::Kind::kVector2d:
      return static_cast<const VEQVector2dArray&>(column).precision();
    case PropertyColumn::Kind::kVector3d:
      return static_cast<const VEQVector3dArray&>(column).precision();
    case PropertyColumn::Kind::kGeneric:
      break;
  }
  return 0;
}

template <class T>
Shared<PropertyColumn> numbersIn(ImageReader& image, std::uint64_t count,
                                 const Shared<const void>& owner) {
  return VEQNumberArray::over(image.section<T>(count), owner);
}

template <class Array, class Components>
Shared<PropertyColumn> vectorsIn(ImageReader& image, const ColumnHead& head) {
  const auto from = image.section<Components>(head.count);
  Shared<Array> vectors = Array::initWithSize_precision(head.count, head.detail);
  for (std::uint64_t i = 0; i < head.count; ++i) {
    vectors->setVector_atIndex(vectorOf(from[i], head.detail), i);
  }
  return vectors;
}

Shared<PropertyColumn> numberColumn(ImageReader& image, const ColumnHead& head,
                                    const Shared<const void>& owner) {
  switch (static_cast<ElementType>(head.detail)) {
    case ElementType::kDouble:
      return numbersIn<double>(image, head.count, owner);
    case ElementType::kInteger:
      return numbersIn<std::int64_t>(image, head.count, owner);
    case ElementType::kFloat:
      return numbersIn<float>(image, head.count, owner);
    case ElementType::kUnsignedInteger:
      return numbersIn<std::uint64_t>(image, head.count, owner);
  }
  throw DamagedImage{};
}

Shared<PropertyColumn> readElements(ImageReader& image, const ColumnHead& head,
                                    const Shared<const void>& owner) {
  switch (head.kind) {
    case PropertyColumn::Kind::kNumber:
      return numberColumn(image, head, owner);
    case PropertyColumn::Kind::kVector2d:
      return vectorsIn<VEQVector2dArray, Components2d>(image, head);
    case PropertyColumn::Kind::kVector3d:
      return vectorsIn<VEQVector3dArray, Components3d>(image, head);
    case PropertyColumn::Kind::kGeneric: {
      image.requireLeft(head.count);
      std::vector<PropertyValue> values(static_cast<std::size_t>(head.count));
      for (PropertyValue& value : values) value = nextValue(image);
      return std::make_shared<GenericArray>(std::move(values));
    }
  }
  throw DamagedImage{};
}

}  // namespace

std::optional<Error> writeColumns(ImageWriter& image, const PropertyTable& table) {
  for (const auto& [key, column] : table) {
    const ColumnHead head{key.size(), column->count(), column->kind(), detailOf(*column)};
    if (auto* to = image.section<ColumnHead>(1)) *to = head;
    image.append(key.data(), key.size());
    if (auto error = writeElements(image, key, *column)) return error;
  }
  return std::nullopt;
}

PropertyTable readColumns(ImageReader& image, std::uint64_t count,
                          const Shared<const void>& owner) {
  PropertyTable table;
  for (std::uint64_t c = 0; c < count; ++c) {
    const ColumnHead head = image.section<ColumnHead>(1)[0];
    const std::string_view key = image.next(head.keyLength);
    table.set(key, readElements(image, head, owner));
  }
  return table;
}

}  // namespace veq::internal
