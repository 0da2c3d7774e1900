#include "support.hpp"

namespace veq::python {
namespace {

template <class T>
IndexSpan spanOf(const AnyArray& array) {
  return {static_cast<const T*>(array.data()), array.shape(0),
          array.shape(0) == 0 ? sizeof(T) : static_cast<std::size_t>(array.stride(0)) * sizeof(T)};
}

}  // namespace

IndexSpan indicesOf(const AnyArray& array) {
  if (array.ndim() == 1) {
    if (array.dtype() == nb::dtype<std::int64_t>()) return spanOf<std::int64_t>(array);
    if (array.dtype() == nb::dtype<std::uint64_t>()) return spanOf<std::uint64_t>(array);
    if (array.dtype() == nb::dtype<std::int32_t>()) return spanOf<std::int32_t>(array);
    if (array.dtype() == nb::dtype<std::uint32_t>()) return spanOf<std::uint32_t>(array);
  }
  throw std::invalid_argument("indices need one dimension of integers of 32 or 64 bits");
}

NumberSpan numbersOf(const std::optional<AnyArray>& array) {
  if (!array) return {};
  if (array->ndim() == 1 && (array->shape(0) == 0 || array->stride(0) == 1)) {
    if (array->dtype() == nb::dtype<double>()) {
      return std::span(static_cast<const double*>(array->data()), array->shape(0));
    }
    if (array->dtype() == nb::dtype<float>()) {
      return std::span(static_cast<const float*>(array->data()), array->shape(0));
    }
  }
  throw std::invalid_argument("numbers need one contiguous dimension of floats");
}

nb::str textOf(std::string_view bytes) {
  PyObject* const text =
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
  if (text == nullptr) throw nb::python_error();
  return nb::steal<nb::str>(text);
}

std::string bytesOf(nb::handle text) {
  PyObject* const bytes = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
  if (bytes == nullptr) throw nb::python_error();
  const auto held = nb::steal<nb::bytes>(bytes);
  return {held.c_str(), held.size()};
}

Texts textsOf(const std::vector<std::string>& texts) {
  Texts result;
  for (const std::string& text : texts) result.append(textOf(text));
  return result;
}

std::vector<std::string> stringsOf(const nb::list& texts) {
  std::vector<std::string> result;
  result.reserve(texts.size());
  for (const nb::handle text : texts) result.push_back(bytesOf(text));
  return result;
}

Progress Follow::progress() {
  return {[this](std::uint64_t done, std::uint64_t all) { report(done, all); }, stop_.token()};
}

void Follow::report(std::uint64_t done, std::uint64_t all) {
  const nb::gil_scoped_acquire acquired;
  if (PyErr_CheckSignals() != 0) throw nb::python_error();
  if (callable_.is_none()) return;
  if (callable_(done, all).is(nb::handle(Py_False))) stop_.requestStop();
}

}  // namespace veq::python
