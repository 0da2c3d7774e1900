// One network in sealed memory, for several processes.
#include "veq/natural/sharing.hpp"

#include "support.hpp"

namespace veq::python {
namespace {

void seal(SharedNetwork* at, const BoundNetwork& bound) {
  new (at) SharedNetwork(
      reading(bound, [](const Network& network) { return SharedNetwork::of(network).value(); }));
}

// The descriptor stays the caller's.
BoundNetwork attach(int descriptor, bool trusted) {
  const nb::gil_scoped_release released;
  AttachOptions options;
  options.trusted = trusted;
  return BoundNetwork(attachNetwork(descriptor, options).value());
}

}  // namespace

void bindSharing(nb::module_& m) {
  nb::class_<SharedNetwork>(m, "SharedNetwork")
      .def("__init__", &seal, nb::arg("network"))
      .def_prop_ro(
          "descriptor", [](const SharedNetwork& shared) { return shared.descriptor(); },
          "The memory file's descriptor, which is closed with this.")
      .def_prop_ro(
          "bytes", [](const SharedNetwork& shared) { return shared.bytes(); },
          "The size of the file.");
  m.def("attach", &attach, nb::arg("descriptor"), nb::arg("trusted"));
}

}  // namespace veq::python
