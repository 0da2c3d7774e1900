// The extension module veq._core: the library's natural face, translated and nothing more. What is
// pleasant to use, and documented, is the package around it.
#include "support.hpp"

NB_MODULE(_core, m) {
  using namespace veq::python;
  m.attr("version") = VEQ_VERSION;
  bindErrors(m);
  bindParallelism(m);
  bindRandom(m);
  bindNetwork(m);
  bindColumns(m);
  bindDerived(m);
  bindQuestions(m);
  bindDistances(m);
  bindModels(m);
  bindWalkNetwork(m);
  bindWalkers(m);
  bindWalkLaw(m);
  bindFormats(m);
  bindDrawing(m);
  bindSharing(m);
}
