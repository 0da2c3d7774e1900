// The columns of vertices and edges.
#include <nanobind/stl/string_view.h>

#include <algorithm>

#include "support.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::python {
namespace {

template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

nb::object numpyScalar(const char* type, nb::object value) {
  return nb::module_::import_("numpy").attr(type)(value);
}

// Numbers that are not Python's own keep their kind as NumPy's.
nb::object objectOf(const Number& number) {
  return std::visit(
      Overloaded{[](double value) { return nb::object(nb::float_(value)); },
                 [](std::int64_t value) { return nb::object(nb::int_(value)); },
                 [](float value) { return numpyScalar("float32", nb::float_(double{value})); },
                 [](std::uint64_t value) { return numpyScalar("uint64", nb::int_(value)); }},
      number.value());
}

nb::object objectOf(const PropertyValue& value) {
  if (const Number* number = value.number()) return objectOf(*number);
  if (const std::string* text = value.string()) return textOf(*text);
  if (const VEQVector2d* at = value.vector2d()) return nb::make_tuple(at->x(), at->y());
  if (const VEQVector3d* at = value.vector3d()) return nb::make_tuple(at->x(), at->y(), at->z());
  if (const PropertyObject* object = value.object()) return textOf(object->description());
  return nb::none();
}

double component(const nb::tuple& vector, std::size_t axis) {
  return nb::cast<double>(vector[axis]);
}

// The Python side has told what is what: None, str, float, int, numpy.float32, numpy.uint64 and
// tuples of two or three floats.
PropertyValue valueOf(nb::handle object) {
  if (object.is_none()) return {};
  if (PyUnicode_Check(object.ptr())) return bytesOf(object);
  if (PyFloat_Check(object.ptr())) return nb::cast<double>(object);
  if (PyLong_Check(object.ptr())) return nb::cast<std::int64_t>(object);
  if (PyTuple_Check(object.ptr())) {
    const auto vector = nb::borrow<nb::tuple>(object);
    const double x = component(vector, 0);
    const double y = component(vector, 1);
    if (vector.size() == 2) return VEQVector2d(x, y);
    return VEQVector3d(x, y, component(vector, 2));
  }
  const nb::object numpy = nb::module_::import_("numpy");
  if (nb::isinstance(object, numpy.attr("float32"))) {
    return static_cast<float>(nb::cast<double>(nb::float_(object)));
  }
  return nb::cast<std::uint64_t>(nb::int_(object));
}

Shared<const PropertyColumn> columnNamed(const BoundNetwork& bound, nb::handle key, bool ofEdges) {
  const std::string name = bytesOf(key);
  const Shared<const PropertyColumn> column = glancing(bound, [&](const Network& network) {
    return ofEdges ? network.edgeColumn(name) : network.vertexColumn(name);
  });
  if (!column) throw nb::key_error(name.c_str());
  return column;
}

// The numbers themselves; writable where the column is editable.
nb::object numbers(const Shared<const PropertyColumn>& column) {
  const auto& array = static_cast<const VEQNumberArray&>(*column);
  return array.visit([&](auto elements) {
    using T = std::remove_const_t<typename decltype(elements)::element_type>;
    if (!column->isEditable()) return viewOf<nb::object>(elements, column);
    return arrayOver<T>(const_cast<T*>(elements.data()), {elements.size()}, column);
  });
}

template <std::size_t kAxes, class Array>
nb::object vectors(const Array& column, std::size_t most) {
  const std::size_t count = std::min<std::size_t>(column.count(), most);
  auto made = std::make_unique_for_overwrite<double[]>(kAxes * count);
  double* at = made.get();
  for (std::size_t i = 0; i < count; ++i) {
    const auto vector = column.vectorAtIndex(i);
    *at++ = vector.x();
    *at++ = vector.y();
    if constexpr (kAxes == 3) *at++ = vector.z();
  }
  auto* const data = made.get();
  return arrayOver<double>(data, {count, kAxes}, std::move(made));
}

ColumnArray values(const GenericArray& column, std::size_t most) {
  nb::list result;
  for (const PropertyValue& value : column.values()) {
    if (most-- == 0) break;
    result.append(objectOf(value));
  }
  return result;
}

// All numbers, or the first so many elements of another column.
ColumnArray column(const BoundNetwork& bound, nb::str key, bool ofEdges, std::size_t most) {
  const Shared<const PropertyColumn> found = columnNamed(bound, key, ofEdges);
  switch (found->kind()) {
    case PropertyColumn::Kind::kNumber:
      return numbers(found);
    case PropertyColumn::Kind::kVector2d:
      return vectors<2>(static_cast<const VEQVector2dArray&>(*found), most);
    case PropertyColumn::Kind::kVector3d:
      return vectors<3>(static_cast<const VEQVector3dArray&>(*found), most);
    case PropertyColumn::Kind::kGeneric:
      break;
  }
  return values(static_cast<const GenericArray&>(*found), most);
}

void install(BoundNetwork& bound, nb::handle key, Shared<PropertyColumn> column, bool ofEdges) {
  const std::string name = bytesOf(key);
  editing(bound, [&](Network& network) {
    return (ofEdges ? network.setEdgeColumn(name, std::move(column))
                    : network.setVertexColumn(name, std::move(column)))
        .value();
  });
}

template <class T>
Shared<PropertyColumn> numberColumn(const AnyArray& array) {
  const auto* const first = static_cast<const T*>(array.data());
  internal::RawVector<T> storage(first, first + array.shape(0));
  return std::make_shared<VEQNumberArray>(std::move(storage));
}

void setNumbers(BoundNetwork& bound, nb::str key, const AnyArray& array, bool ofEdges) {
  Shared<PropertyColumn> made;
  if (array.dtype() == nb::dtype<double>()) made = numberColumn<double>(array);
  if (array.dtype() == nb::dtype<float>()) made = numberColumn<float>(array);
  if (array.dtype() == nb::dtype<std::int64_t>()) made = numberColumn<std::int64_t>(array);
  if (array.dtype() == nb::dtype<std::uint64_t>()) made = numberColumn<std::uint64_t>(array);
  if (!made)
    throw std::invalid_argument("columns hold floats and integers of 64 bits, or floats of 32");
  install(bound, key, std::move(made), ofEdges);
}

template <std::size_t kAxes>
Shared<PropertyColumn> vectorColumn(const double* first, std::size_t count) {
  using Array = typename VectorArray<kAxes>::Array;
  Shared<Array> made(Array::initWithSize_precision(count, kDoublePrecision));
  for (std::size_t i = 0; i < count; ++i, first += kAxes) {
    if constexpr (kAxes == 2) {
      made->setVector_atIndex({first[0], first[1]}, i);
    } else {
      made->setVector_atIndex({first[0], first[1], first[2]}, i);
    }
  }
  return made;
}

void setVectors(BoundNetwork& bound, nb::str key, const AnyArray& array, bool ofEdges) {
  const auto* const first = static_cast<const double*>(array.data());
  const std::size_t count = array.shape(0);
  install(bound, key,
          array.shape(1) == 2 ? vectorColumn<2>(first, count) : vectorColumn<3>(first, count),
          ofEdges);
}

void setValues(BoundNetwork& bound, nb::str key, const nb::list& list, bool ofEdges) {
  std::vector<PropertyValue> made;
  made.reserve(list.size());
  for (const nb::handle object : list) made.push_back(valueOf(object));
  install(bound, key, std::make_shared<GenericArray>(std::move(made)), ofEdges);
}

void remove(BoundNetwork& bound, nb::str key, bool ofEdges) {
  static_cast<void>(columnNamed(bound, key, ofEdges));
  install(bound, key, nullptr, ofEdges);
}

Texts keys(const BoundNetwork& bound, bool ofEdges) {
  return textsOf(glancing(bound, [&](const Network& network) {
    return ofEdges ? network.edgeKeys() : network.vertexKeys();
  }));
}

Texts texts(const BoundNetwork& bound, nb::str key, bool ofEdges) {
  const std::string name = bytesOf(key);
  return textsOf(reading(bound, [&](const Network& network) {
    return (ofEdges ? network.edgeTexts(name) : network.vertexTexts(name)).value();
  }));
}

}  // namespace

void bindColumns(nb::module_& m) {
  m.def("column_keys", &keys, nb::arg("network"), nb::arg("edges"));
  m.def("column", &column, nb::arg("network"), nb::arg("key"), nb::arg("edges"), nb::arg("most"));
  m.def("column_texts", &texts, nb::arg("network"), nb::arg("key"), nb::arg("edges"));
  m.def("set_numbers", &setNumbers, nb::arg("network"), nb::arg("key"), nb::arg("values"),
        nb::arg("edges"));
  m.def("set_vectors", &setVectors, nb::arg("network"), nb::arg("key"), nb::arg("values"),
        nb::arg("edges"));
  m.def("set_values", &setValues, nb::arg("network"), nb::arg("key"), nb::arg("values"),
        nb::arg("edges"));
  m.def("remove_column", &remove, nb::arg("network"), nb::arg("key"), nb::arg("edges"));
}

}  // namespace veq::python
