// How many threads long work may use.
#include "veq/base/parallelism.hpp"

#include "support.hpp"

namespace veq::python {

void bindParallelism(nb::module_& m) {
  m.def("parallelism", [] { return parallelism(); });
  m.def(
      "set_parallelism", [](unsigned threads) { setParallelism(threads); }, nb::arg("threads"));
}

}  // namespace veq::python
