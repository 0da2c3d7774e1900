// Which Python exception each error of the library is.
#include "support.hpp"
#include "veq/base/result.hpp"

namespace veq::python {
namespace {

// Raises a class of veq._errors, with the place in the text.
void raiseOwn(const char* name, const Error& error) {
  const nb::object type = nb::module_::import_("veq._errors").attr(name);
  nb::object line = nb::none();
  nb::object column = nb::none();
  if (error.place()) {
    line = nb::int_(error.place()->line);
    if (error.place()->column != 0) column = nb::int_(error.place()->column);
  }
  const nb::object raised = type(textOf(error.text()), line, column);
  PyErr_SetObject(type.ptr(), raised.ptr());
}

void raise(PyObject* type, const Error& error) {
  PyErr_SetObject(type, textOf(error.text()).ptr());
}

void translate(const std::exception_ptr& thrown, void* /*payload*/) {
  try {
    std::rethrow_exception(thrown);
  } catch (const Error& error) {
    switch (error.kind()) {
      case ErrorKind::kArgument:
        return raise(PyExc_ValueError, error);
      case ErrorKind::kFile:
        return raise(PyExc_OSError, error);
      case ErrorKind::kFormat:
        return raiseOwn("FormatError", error);
      case ErrorKind::kUnsupported:
        return raiseOwn("UnsupportedError", error);
      case ErrorKind::kMemory:
        return raise(PyExc_MemoryError, error);
      case ErrorKind::kStopped:
        return raiseOwn("StoppedError", error);
    }
  }
}

}  // namespace

void bindErrors(nb::module_& /*m*/) { nb::register_exception_translator(translate); }

}  // namespace veq::python
