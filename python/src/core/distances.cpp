// Distances and shortest paths.
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string_view.h>

#include "support.hpp"
#include "veq/questions.hpp"

namespace veq::python {
namespace {

std::uint64_t vertexOf(const BoundNetwork& bound, std::int64_t vertex) {
  return indexBelow(vertex, bound.network.countVertices(), "vertex");
}

FloatArray weightedFromOne(const BoundNetwork& bound, std::int64_t source, std::string_view mode) {
  const std::uint64_t v = vertexOf(bound, source);
  const Direction direction = directionNamed(mode);
  return arrayOf(reading(bound, [&](const Network& network) {
    return weightedDistancesFrom(network, v, direction).value();
  }));
}

IntArray fromOne(const BoundNetwork& bound, std::int64_t source, std::string_view mode) {
  const std::uint64_t v = vertexOf(bound, source);
  const Direction direction = directionNamed(mode);
  return arrayOf(
      reading(bound, [&](const Network& network) { return distancesFrom(network, v, direction); }));
}

std::optional<Tuple<IntArray, IntArray, double>> path(const BoundNetwork& bound, std::int64_t from,
                                                      std::int64_t to, std::string_view mode,
                                                      bool weighted) {
  const std::uint64_t source = vertexOf(bound, from);
  const std::uint64_t target = vertexOf(bound, to);
  PathOptions options;
  options.direction = directionNamed(mode);
  options.weighted = weighted;
  std::optional<Path> found = reading(bound, [&](const Network& network) {
    return shortestPath(network, source, target, options).value();
  });
  if (!found) return std::nullopt;
  return nb::make_tuple(arrayOf(std::move(found->vertices)), arrayOf(std::move(found->edges)),
                        found->length);
}

DistanceOptions optionsOf(std::string_view mode, std::uint64_t mostVisits, std::uint64_t seed,
                          Follow& follow) {
  DistanceOptions options;
  options.direction = directionNamed(mode);
  options.mostVisits = mostVisits;
  options.seed = seed;
  options.progress = follow.progress();
  return options;
}

// (pairs, unreachable pairs, sources, whether sampled, mean)
Tuple<IntArray, std::uint64_t, std::uint64_t, bool, double> histogram(const BoundNetwork& bound,
                                                                      std::string_view mode,
                                                                      std::uint64_t mostVisits,
                                                                      std::uint64_t seed,
                                                                      nb::object progress) {
  Follow follow(std::move(progress));
  const DistanceOptions options = optionsOf(mode, mostVisits, seed, follow);
  DistanceHistogram made = reading(
      bound, [&](const Network& network) { return distanceHistogram(network, options).value(); });
  return nb::make_tuple(arrayOf(std::move(made.pairs)), made.unreachablePairs, made.sources,
                        made.sampled, made.meanDistance);
}

// (least, most, from, to, searches)
Tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t> longest(
    const BoundNetwork& bound, std::string_view mode, std::uint64_t mostVisits,
    nb::object progress) {
  Follow follow(std::move(progress));
  const DistanceOptions options = optionsOf(mode, mostVisits, 1, follow);
  const Diameter made =
      reading(bound, [&](const Network& network) { return diameter(network, options).value(); });
  return nb::make_tuple(made.least, made.most, made.from, made.to, made.searches);
}

}  // namespace

void bindDistances(nb::module_& m) {
  m.def("distances_from", &fromOne, nb::arg("network"), nb::arg("source"), nb::arg("mode"));
  m.def("weighted_distances_from", &weightedFromOne, nb::arg("network"), nb::arg("source"),
        nb::arg("mode"));
  m.def("shortest_path", &path, nb::arg("network"), nb::arg("source"), nb::arg("target"),
        nb::arg("mode"), nb::arg("weighted"));
  m.def("distance_histogram", &histogram, nb::arg("network"), nb::arg("mode"),
        nb::arg("most_visits"), nb::arg("seed"), nb::arg("progress").none());
  m.def("diameter", &longest, nb::arg("network"), nb::arg("mode"), nb::arg("most_visits"),
        nb::arg("progress").none());
}

}  // namespace veq::python
