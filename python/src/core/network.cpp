// Building a network, its size, edges, degrees, weights and names.
#include <nanobind/stl/optional.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/string_view.h>

#include "support.hpp"

namespace veq::python {
namespace {

BoundNetwork build(const AnyArray& sources, const AnyArray& targets,
                   std::optional<std::uint64_t> vertices, bool directed,
                   const std::optional<AnyArray>& vertexWeights,
                   const std::optional<AnyArray>& edgeWeights, bool keepExactWeights) {
  BuildOptions options;
  options.vertices = vertices;
  options.directed = directed;
  options.vertexWeights = numbersOf(vertexWeights);
  options.edgeWeights = numbersOf(edgeWeights);
  options.keepExactWeights = keepExactWeights;
  Follow follow{nb::none()};
  options.progress = follow.progress();
  const IndexSpan from = indicesOf(sources);
  const IndexSpan to = indicesOf(targets);
  const nb::gil_scoped_release released;
  return BoundNetwork(Network::build(from, to, options).value());
}

BoundNetwork fromNames(const nb::list& sources, const nb::list& targets,
                       const std::optional<nb::list>& names, bool directed,
                       const std::optional<AnyArray>& edgeWeights) {
  const std::vector<std::string> from = stringsOf(sources);
  const std::vector<std::string> to = stringsOf(targets);
  std::vector<std::string> all;
  if (names) all = stringsOf(*names);
  BuildOptions options;
  options.directed = directed;
  options.edgeWeights = numbersOf(edgeWeights);
  const nb::gil_scoped_release released;
  return BoundNetwork(
      (names ? Network::fromNames(from, to, all, options) : Network::fromNames(from, to, options))
          .value());
}

IndexArray ends(const BoundNetwork& bound, bool targets) {
  const TopologyView view =
      glancing(bound, [](const Network& network) { return network.topology(); });
  return view.visit(
      [&](const auto& arrays) { return viewOf(targets ? arrays.to : arrays.from, view); });
}

IntArray edges(const BoundNetwork& bound) {
  std::unique_ptr<std::int64_t[]> pairs;
  std::size_t count = 0;
  {
    const nb::gil_scoped_release released;
    const ReadingUse use(*bound.use);
    const TopologyView view = bound.network.topology();
    count = view.countEdges();
    pairs = std::make_unique_for_overwrite<std::int64_t[]>(2 * count);
    view.visit([&](const auto& arrays) {
      for (std::size_t e = 0; e < count; ++e) {
        pairs[2 * e] = static_cast<std::int64_t>(arrays.from[e]);
        pairs[2 * e + 1] = static_cast<std::int64_t>(arrays.to[e]);
      }
    });
  }
  auto* const data = pairs.get();
  return arrayOver<std::int64_t>(data, {count, 2}, std::move(pairs));
}

// The neighbours of a vertex, or the edges that lead there.
ListArray listOf(const BoundNetwork& bound, std::int64_t vertex, std::string_view mode,
                 bool ofEdges) {
  const std::uint64_t v = indexBelow(vertex, bound.network.countVertices(), "vertex");
  const Direction direction = directionNamed(mode);
  if (direction == Direction::kAll && bound.network.isDirected()) {
    return arrayOf(glancing(bound, [&](const Network& network) {
      return ofEdges ? network.edgesOf(v, direction) : network.neighbours(v, direction);
    }));
  }
  const TopologyView view =
      glancing(bound, [](const Network& network) { return network.topology(); });
  return view.visit([&](const auto& arrays) -> ListArray {
    const auto& rows = direction == Direction::kIn ? arrays.in : arrays.out;
    return viewOf(ofEdges ? rows.edges(v) : rows.neighbours(v), view);
  });
}

Tuple<IndexArray, IndexArray, IndexArray> adjacency(const BoundNetwork& bound,
                                                    std::string_view mode) {
  const bool in = named<bool>(mode, "mode", {{"out", false}, {"in", true}});
  const TopologyView view = reading(bound, [](const Network& network) {
    const TopologyView made = network.topology();
    made.visitPacked([](const auto&) {});
    return made;
  });
  return view.visitPacked([&](const auto& packed) {
    const auto& rows = in ? packed.in : packed.out;
    return nb::make_tuple(viewOf(rows.offsets, view), viewOf(rows.neighbours, view),
                          viewOf(rows.edges, view));
  });
}

std::pair<std::uint64_t, std::uint64_t> endsOf(const BoundNetwork& bound, std::int64_t edge) {
  return glancing(bound, [&](const Network& network) {
    return network.endsOf(indexBelow(edge, network.countEdges(), "edge"));
  });
}

IntArray degrees(const BoundNetwork& bound, std::string_view mode) {
  const Direction direction = directionNamed(mode);
  return arrayOf(
      reading(bound, [&](const Network& network) { return network.degrees(direction); }));
}

FloatArray strengths(const BoundNetwork& bound, std::string_view mode) {
  const Direction direction = directionNamed(mode);
  return arrayOf(
      reading(bound, [&](const Network& network) { return network.strengths(direction); }));
}

std::uint64_t degree(const BoundNetwork& bound, std::int64_t vertex, std::string_view mode) {
  return glancing(bound, [&](const Network& network) {
    return network.degree(indexBelow(vertex, network.countVertices(), "vertex"),
                          directionNamed(mode));
  });
}

double strength(const BoundNetwork& bound, std::int64_t vertex, std::string_view mode) {
  return glancing(bound, [&](const Network& network) {
    return network.strength(indexBelow(vertex, network.countVertices(), "vertex"),
                            directionNamed(mode));
  });
}

IntArray edgesBetween(const BoundNetwork& bound, std::int64_t from, std::int64_t to) {
  const std::uint64_t n = bound.network.countVertices();
  const std::uint64_t source = indexBelow(from, n, "vertex");
  const std::uint64_t target = indexBelow(to, n, "vertex");
  return arrayOf(
      reading(bound, [&](const Network& network) { return network.edgesBetween(source, target); }));
}

std::optional<WeightArray> weights(const BoundNetwork& bound, bool ofEdges) {
  std::optional<std::vector<float>> result;
  {
    const nb::gil_scoped_release released;
    const ReadingUse use(*bound.use);
    const Network& network = bound.network;
    if (ofEdges ? network.isEdgeWeighted() : network.isVertexWeighted()) {
      result = ofEdges ? network.edgeWeights() : network.vertexWeights();
    }
  }
  if (!result) return std::nullopt;
  return arrayOf(std::move(*result));
}

void setWeights(BoundNetwork& bound, const AnyArray& weights, bool ofEdges) {
  const NumberSpan values = numbersOf(weights);
  editing(bound, [&](Network& network) {
    return (ofEdges ? network.setEdgeWeights(values) : network.setVertexWeights(values)).value();
  });
}

// A column of edges grows with them. Where somebody holds an array over it, that keeps the column
// as it is, and the network goes on with a copy.
void leaveColumnsToTheirHolders(Network& network) {
  for (const std::string& key : network.edgeKeys()) {
    const Shared<const PropertyColumn> column = network.edgeColumn(key);
    constexpr long kTableAndHere = 2;
    if (column.use_count() > kTableAndHere) {
      network.setEdgeColumn(key, column->editableCopy()).value();
    }
  }
}

std::pair<std::uint64_t, std::uint64_t> addEdges(BoundNetwork& bound, const AnyArray& sources,
                                                 const AnyArray& targets,
                                                 const std::optional<AnyArray>& weights) {
  const IndexSpan from = indicesOf(sources);
  const IndexSpan to = indicesOf(targets);
  const NumberSpan values = numbersOf(weights);
  const AddedEdges added = editing(bound, [&](Network& network) {
    leaveColumnsToTheirHolders(network);
    return network.addEdges(from, to, values).value();
  });
  return {added.first, added.count};
}

Texts names(const BoundNetwork& bound) {
  return textsOf(reading(bound, [](const Network& network) { return network.names(); }));
}

std::optional<std::uint64_t> vertexNamed(const BoundNetwork& bound, nb::str name) {
  const std::string wanted = bytesOf(name);
  return reading(bound, [&](const Network& network) { return network.vertexNamed(wanted); });
}

template <auto kAsk>
auto glanced(const BoundNetwork& bound) {
  return glancing(bound, [](const Network& network) { return (network.*kAsk)(); });
}

template <auto kAsk>
constexpr PyGetSetDef shown(const char* name, const char* about) {
  return property<BoundNetwork, &glanced<kAsk>>(name, about);
}

PyGetSetDef properties[] = {
    shown<&Network::countVertices>("num_vertices", "How many vertices there are."),
    shown<&Network::countEdges>("num_edges", "How many edges there are."),
    shown<&Network::isDirected>("directed",
                                "Whether edges lead from their source to their target alone."),
    shown<&Network::isVertexWeighted>("vertex_weighted", "Whether vertices have weights."),
    shown<&Network::isEdgeWeighted>("edge_weighted", "Whether edges have weights."),
    {},
};
PyType_Slot slots[] = {{Py_tp_getset, properties}, {}};

}  // namespace

void bindNetwork(nb::module_& m) {
  nb::class_<BoundNetwork>(m, "Network", nb::type_slots(slots))
      .def(nb::init<const BoundNetwork&>(), nb::arg("other"))
      .def("__len__", [](const BoundNetwork& b) { return b.network.countVertices(); });

  m.def("build", &build, nb::arg("sources"), nb::arg("targets"), nb::arg("vertices").none(),
        nb::arg("directed"), nb::arg("vertex_weights").none(), nb::arg("edge_weights").none(),
        nb::arg("keep_exact_weights"));
  m.def("from_names", &fromNames, nb::arg("sources"), nb::arg("targets"), nb::arg("names").none(),
        nb::arg("directed"), nb::arg("edge_weights").none());
  m.def("ends", &ends, nb::arg("network"), nb::arg("targets"));
  m.def("edges", &edges, nb::arg("network"));
  m.def("list_of", &listOf, nb::arg("network"), nb::arg("vertex"), nb::arg("mode"),
        nb::arg("edges"));
  m.def("adjacency", &adjacency, nb::arg("network"), nb::arg("mode"));
  m.def("ends_of", &endsOf, nb::arg("network"), nb::arg("edge"));
  m.def("degrees", &degrees, nb::arg("network"), nb::arg("mode"));
  m.def("strengths", &strengths, nb::arg("network"), nb::arg("mode"));
  m.def("degree", &degree, nb::arg("network"), nb::arg("vertex"), nb::arg("mode"));
  m.def("strength", &strength, nb::arg("network"), nb::arg("vertex"), nb::arg("mode"));
  m.def("edges_between", &edgesBetween, nb::arg("network"), nb::arg("source"), nb::arg("target"));
  m.def("weights", &weights, nb::arg("network"), nb::arg("edges"));
  m.def("set_weights", &setWeights, nb::arg("network"), nb::arg("weights"), nb::arg("edges"));
  m.def("add_edges", &addEdges, nb::arg("network"), nb::arg("sources"), nb::arg("targets"),
        nb::arg("weights").none());
  m.def("names", &names, nb::arg("network"));
  m.def("vertex_named", &vertexNamed, nb::arg("network"), nb::arg("name"));
}

}  // namespace veq::python
