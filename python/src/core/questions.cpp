// Degrees, triangles, cores and page rank.
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string_view.h>

#include "veq/questions.hpp"

#include "support.hpp"

namespace veq::python {
namespace {

// A question of the network alone, with one answer for all vertices.
template <auto kQuestion>
auto one(const BoundNetwork& bound) {
  return reading(bound, [](const Network& network) { return kQuestion(network); });
}

// One that may take long.
template <class Ask>
auto followed(const BoundNetwork& bound, nb::object callable, Ask ask) {
  Follow follow(std::move(callable));
  const Progress progress = follow.progress();
  return reading(bound, [&](const Network& network) { return ask(network, progress).value(); });
}

IntArray trianglesOf(const BoundNetwork& bound, nb::object progress) {
  return arrayOf(followed(bound, std::move(progress),
                          [](const auto&... asked) { return triangles(asked...); }));
}

std::uint64_t allTriangles(const BoundNetwork& bound, nb::object progress) {
  return followed(bound, std::move(progress),
                  [](const auto&... asked) { return countTriangles(asked...); });
}

FloatArray clusteringOf(const BoundNetwork& bound, nb::object progress) {
  return arrayOf(followed(bound, std::move(progress),
                          [](const auto&... asked) { return localClustering(asked...); }));
}

double transitivityOf(const BoundNetwork& bound, nb::object progress) {
  return followed(bound, std::move(progress),
                  [](const auto&... asked) { return transitivity(asked...); });
}

double average(const BoundNetwork& bound, std::string_view withoutPairs, nb::object progress) {
  const auto how =
      named<WithoutPairs>(withoutPairs, "without_pairs",
                          {{"zero", WithoutPairs::kZero}, {"left out", WithoutPairs::kLeftOut}});
  return followed(bound, std::move(progress), [how](const Network& network, const Progress& told) {
    return averageClustering(network, how, told);
  });
}

IntArray cores(const BoundNetwork& bound, std::string_view mode, nb::object progress) {
  const Direction direction = directionNamed(mode);
  return arrayOf(followed(bound, std::move(progress),
                          [direction](const Network& network, const Progress& told) {
                            return coreNumbers(network, direction, told);
                          }));
}

IntArray degreeCounts(const BoundNetwork& bound, std::string_view mode) {
  const Direction direction = directionNamed(mode);
  return arrayOf(reading(
      bound, [&](const Network& network) { return degreeDistribution(network, direction); }));
}

Tuple<FloatArray, IntArray> strengthCounts(const BoundNetwork& bound, std::string_view mode) {
  const Direction direction = directionNamed(mode);
  const std::vector<StrengthCount> counts = reading(
      bound, [&](const Network& network) { return strengthDistribution(network, direction); });
  std::vector<double> strengths;
  std::vector<std::uint64_t> vertices;
  for (const StrengthCount& count : counts) {
    strengths.push_back(count.strength);
    vertices.push_back(count.vertices);
  }
  return nb::make_tuple(arrayOf(std::move(strengths)), arrayOf(std::move(vertices)));
}

FloatArray neighbourDegrees(const BoundNetwork& bound, std::string_view neighbours,
                            std::string_view degrees, bool weighted) {
  NeighbourDegreeOptions options;
  options.neighbours = directionNamed(neighbours);
  options.degrees = directionNamed(degrees);
  options.weighted = weighted;
  return arrayOf(reading(
      bound, [&](const Network& network) { return averageNeighbourDegree(network, options); }));
}

double assortativity(const BoundNetwork& bound, std::string_view source, std::string_view target) {
  const Direction ofSource = directionNamed(source);
  const Direction ofTarget = directionNamed(target);
  return reading(bound, [&](const Network& network) {
    return degreeAssortativity(network, ofSource, ofTarget);
  });
}

Tuple<FloatArray, std::uint64_t, double, bool> rank(const BoundNetwork& bound, double restart,
                                                    const std::optional<AnyArray>& personalisation,
                                                    bool weighted, double tolerance,
                                                    std::uint64_t mostSweeps, nb::object progress) {
  Follow follow(std::move(progress));
  PageRankOptions options;
  options.restart = restart;
  options.personalisation = numbersOf(personalisation);
  options.weighted = weighted;
  options.tolerance = tolerance;
  options.mostSweeps = mostSweeps;
  options.progress = follow.progress();
  PageRank made =
      reading(bound, [&](const Network& network) { return pageRank(network, options).value(); });
  return nb::make_tuple(arrayOf(std::move(made.ranks)), made.sweeps, made.error, made.converged);
}

}  // namespace

void bindQuestions(nb::module_& m) {
  m.def("triangles", &trianglesOf, nb::arg("network"), nb::arg("progress").none());
  m.def("count_triangles", &allTriangles, nb::arg("network"), nb::arg("progress").none());
  m.def("local_clustering", &clusteringOf, nb::arg("network"), nb::arg("progress").none());
  m.def("average_clustering", &average, nb::arg("network"), nb::arg("without_pairs"),
        nb::arg("progress").none());
  m.def("transitivity", &transitivityOf, nb::arg("network"), nb::arg("progress").none());
  m.def("core_numbers", &cores, nb::arg("network"), nb::arg("mode"), nb::arg("progress").none());
  m.def("degree_distribution", &degreeCounts, nb::arg("network"), nb::arg("mode"));
  m.def("strength_distribution", &strengthCounts, nb::arg("network"), nb::arg("mode"));
  m.def("density", &one<density>, nb::arg("network"));
  m.def("reciprocity", &one<reciprocity>, nb::arg("network"));
  m.def("average_neighbor_degree", &neighbourDegrees, nb::arg("network"), nb::arg("neighbors"),
        nb::arg("degrees"), nb::arg("weighted"));
  m.def("degree_assortativity", &assortativity, nb::arg("network"), nb::arg("source"),
        nb::arg("target"));
  m.def("page_rank", &rank, nb::arg("network"), nb::arg("restart"),
        nb::arg("personalisation").none(), nb::arg("weighted"), nb::arg("tolerance"),
        nb::arg("most_sweeps"), nb::arg("progress").none());
}

}  // namespace veq::python
