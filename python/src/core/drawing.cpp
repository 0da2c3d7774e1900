// Layouts, and pages that show a network and replay a walk.
#include "veq/drawing.hpp"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/string_view.h>

#include "support.hpp"
#include "veq/base/files.hpp"

namespace veq::python {
namespace {

PointArray pointsOf(const VEQVector2dArray& vectors) {
  std::vector<double> points;
  points.reserve(2 * vectors.count());
  for (std::uint64_t v = 0; v < vectors.count(); ++v) {
    const VEQVector2d vector = vectors.vectorAtIndex(v);
    points.push_back(vector.x());
    points.push_back(vector.y());
  }
  auto kept = std::make_unique<std::vector<double>>(std::move(points));
  double* const data = kept->data();
  return arrayOver<double>(data, {vectors.count(), 2}, std::move(kept));
}

PointArray forced(const BoundNetwork& bound, std::uint64_t iterations, std::uint32_t seed,
                  bool weights, nb::object progress) {
  Follow follow(std::move(progress));
  LayoutOptions options;
  options.iterations = iterations;
  options.seed = seed;
  options.useWeights = weights;
  options.progress = follow.progress();
  return pointsOf(*reading(
      bound, [&](const Network& network) { return forceLayout(network, options).value(); }));
}

Layout layoutNamed(std::string_view name) {
  return named<Layout>(name, "layout",
                       {{"auto", Layout::kAutomatic},
                        {"force", Layout::kForce},
                        {"given", Layout::kGiven},
                        {"circle", Layout::kCircle}});
}

nb::bytes page(const BoundNetwork& bound, const BoundRecord* record, nb::str title,
               std::string_view layout, std::optional<nb::list> columns, nb::str color,
               nb::str size, nb::str call, std::optional<std::uint64_t> seed, nb::object progress) {
  Follow follow(std::move(progress));
  PageOptions options;
  options.title = bytesOf(title);
  options.layout = layoutNamed(layout);
  if (columns) options.columns = stringsOf(*columns);
  options.color = bytesOf(color);
  options.size = bytesOf(size);
  options.call = bytesOf(call);
  options.seed = seed;
  options.progress = follow.progress();
  const std::string html = reading(bound, [&](const Network& network) {
    return pageOf(network, options, record ? &record->record : nullptr).value();
  });
  return nb::bytes(html.data(), html.size());
}

void save(nb::bytes path, nb::bytes bytes) {
  const std::string name(path.c_str(), path.size());
  const std::string_view all(bytes.c_str(), bytes.size());
  const nb::gil_scoped_release released;
  writeFile(name, all).value();
}

}  // namespace

void bindDrawing(nb::module_& m) {
  nb::class_<BoundRecord>(m, "WalkRecord")
      .def_prop_ro(
          "steps", [](const BoundRecord& bound) { return bound.record.outcome().steps; },
          "How many steps all agents have made.")
      .def_prop_ro(
          "num_agents", [](const BoundRecord& bound) { return bound.record.countAgents(); },
          "How many agents have walked.");
  m.def("force_layout", &forced, nb::arg("network"), nb::arg("iterations"), nb::arg("seed"),
        nb::arg("weights"), nb::arg("progress").none());
  m.def("page", &page, nb::arg("network"), nb::arg("record").none(), nb::arg("title"),
        nb::arg("layout"), nb::arg("columns").none(), nb::arg("color"), nb::arg("size"),
        nb::arg("call"), nb::arg("seed").none(), nb::arg("progress").none());
  m.def("save_bytes", &save, nb::arg("path"), nb::arg("bytes"));
}

}  // namespace veq::python
