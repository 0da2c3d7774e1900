// The law of a walk as numbers.
#include <nanobind/stl/string_view.h>

#include "support.hpp"
#include "veq/questions.hpp"

namespace veq::python {
namespace {

/// Any number of threads may ask it.
struct BoundLaw {
  WalkLaw law;
};

void make(BoundLaw* at, const BoundNetwork& bound, std::string_view choice, double restart,
          std::int64_t start) {
  WalkLawOptions options;
  options.choice = choiceNamed(choice);
  options.restart = restart;
  options.start = static_cast<std::uint64_t>(start);
  Follow follow{nb::none()};
  options.progress = follow.progress();
  WalkLaw law =
      reading(bound, [&](const Network& network) { return WalkLaw::of(network, options).value(); });
  new (at) BoundLaw{std::move(law)};
}

// What f(law, options) gives, computed without the interpreter's lock.
template <class F>
auto solved(const BoundLaw& bound, std::uint64_t solvedUpTo, double precision,
            std::uint64_t mostRounds, nb::object progress, F f) {
  Follow follow(std::move(progress));
  SolvingOptions options;
  options.solvedUpTo = solvedUpTo;
  options.precision = precision;
  options.mostRounds = mostRounds;
  options.progress = follow.progress();
  const nb::gil_scoped_release released;
  return f(bound.law, options).value();
}

Tuple<FloatArray, double> stationary(const BoundLaw& bound, std::uint64_t solvedUpTo,
                                     double precision, std::uint64_t mostRounds,
                                     nb::object progress) {
  StationaryShares made =
      solved(bound, solvedUpTo, precision, mostRounds, std::move(progress),
             [](const WalkLaw& law, const SolvingOptions& how) { return law.stationary(how); });
  return nb::make_tuple(arrayOf(std::move(made.shares)), made.errorBound);
}

Tuple<FloatArray, double> hittingTimes(const BoundLaw& bound, std::int64_t target,
                                       std::uint64_t solvedUpTo, double precision,
                                       std::uint64_t mostRounds, nb::object progress) {
  const std::uint64_t v = indexBelow(target, bound.law.countVertices(), "vertex");
  HittingTimes made = solved(
      bound, solvedUpTo, precision, mostRounds, std::move(progress),
      [v](const WalkLaw& law, const SolvingOptions& how) { return law.hittingTimes(v, how); });
  return nb::make_tuple(arrayOf(std::move(made.steps)), made.relativeErrorBound);
}

Tuple<double, double> coverTime(const BoundLaw& bound, std::int64_t start, bool startCounts,
                                nb::object progress) {
  const std::uint64_t v = indexBelow(start, bound.law.countVertices(), "vertex");
  Follow follow(std::move(progress));
  CoverOptions options;
  options.startCounts = startCounts;
  options.progress = follow.progress();
  CoverTime made;
  {
    const nb::gil_scoped_release released;
    made = bound.law.coverTime(v, options).value();
  }
  return nb::make_tuple(made.atLeast, made.atMost);
}

}  // namespace

void bindWalkLaw(nb::module_& m) {
  nb::class_<BoundLaw>(m, "WalkLaw")
      .def("__init__", &make, nb::arg("network"), nb::arg("choice"), nb::arg("restart"),
           nb::arg("start"))
      .def("_matrix",
           [](const BoundLaw& bound) -> Tuple<IndexArray, IndexArray, FloatArray> {
             return nb::make_tuple(viewOf(bound.law.rowStarts(), bound.law),
                                   viewOf(bound.law.targets(), bound.law),
                                   viewOf<FloatArray>(bound.law.shares(), bound.law));
           })
      .def("_dead_ends",
           [](const BoundLaw& bound) { return viewOf(bound.law.deadEnds(), bound.law); })
      .def("_stationary", &stationary, nb::arg("solved_up_to"), nb::arg("precision"),
           nb::arg("most_rounds"), nb::arg("progress").none())
      .def("_hitting_times", &hittingTimes, nb::arg("target"), nb::arg("solved_up_to"),
           nb::arg("precision"), nb::arg("most_rounds"), nb::arg("progress").none())
      .def("_cover_time", &coverTime, nb::arg("start"), nb::arg("start_counts"),
           nb::arg("progress").none());
}

}  // namespace veq::python
