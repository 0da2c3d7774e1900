// New networks made of one or several.
#include <nanobind/stl/string_view.h>

#include "support.hpp"
#include "veq/questions.hpp"

namespace veq::python {
namespace {

// A part of a network: (network, its vertices, its edges) there.
using Part = Tuple<BoundNetwork, IntArray, IntArray>;
Part tupleOf(DerivedNetwork derived) {
  return nb::make_tuple(BoundNetwork(std::move(derived.network)),
                        arrayOf(std::move(derived.vertices)), arrayOf(std::move(derived.edges)));
}

nb::typed<nb::list, Part> listOf(std::vector<DerivedNetwork> parts) {
  nb::typed<nb::list, Part> result;
  for (DerivedNetwork& part : parts) result.append(tupleOf(std::move(part)));
  return result;
}

// What `make(network, options)` gives, with the options' progress followed.
template <class Options, class Make>
auto following(const BoundNetwork& bound, Options options, Make make) {
  Follow follow{nb::none()};
  options.progress = follow.progress();
  return reading(bound, [&](const Network& network) { return make(network, options).value(); });
}

using Change = Result<Network> (Network::*)(const ChangeOptions&) const;

template <Change kChange>
BoundNetwork changed(const BoundNetwork& bound) {
  return BoundNetwork(
      following(bound, ChangeOptions{}, [](const Network& network, const ChangeOptions& options) {
        return (network.*kChange)(options);
      }));
}

BoundNetwork withMoreVertices(const BoundNetwork& bound, std::uint64_t count) {
  return BoundNetwork(following(bound, ChangeOptions{},
                                [count](const Network& network, const ChangeOptions& options) {
                                  return network.withMoreVertices(count, options);
                                }));
}

Part simplified(const BoundNetwork& bound, std::string_view parallels, bool dropLoops) {
  SimplifyOptions options;
  options.parallels = named<ParallelEdges>(parallels, "parallels",
                                           {{"sum", ParallelEdges::kSum},
                                            {"keep", ParallelEdges::kKeep},
                                            {"least", ParallelEdges::kLeast},
                                            {"greatest", ParallelEdges::kGreatest},
                                            {"first", ParallelEdges::kFirst}});
  options.dropLoops = dropLoops;
  return tupleOf(following(bound, options, [](const Network& network, const auto& how) {
    return network.simplified(how);
  }));
}

Part subnetwork(const BoundNetwork& bound, const AnyArray& vertices) {
  const IndexSpan chosen = indicesOf(vertices);
  return tupleOf(following(bound, ChangeOptions{},
                           [&chosen](const Network& network, const ChangeOptions& options) {
                             return network.subnetwork(chosen, options);
                           }));
}

Part subnetworkOfEdges(const BoundNetwork& bound, const AnyArray& edges, bool keepVertices) {
  const IndexSpan chosen = indicesOf(edges);
  EdgeSubnetworkOptions options;
  options.keepAllVertices = keepVertices;
  return tupleOf(following(bound, options, [&chosen](const Network& network, const auto& how) {
    return network.subnetworkOfEdges(chosen, how);
  }));
}

Part neighbourhood(const BoundNetwork& bound, std::int64_t vertex, std::uint64_t distance,
                   std::string_view mode) {
  const std::uint64_t v = indexBelow(vertex, bound.network.countVertices(), "vertex");
  NeighbourhoodOptions options;
  options.distance = distance;
  options.direction = directionNamed(mode);
  return tupleOf(following(bound, options, [v](const Network& network, const auto& how) {
    return network.neighbourhood(v, how);
  }));
}

Connection connectionNamed(std::string_view connection) {
  return named<Connection>(connection, "connection",
                           {{"weak", Connection::kWeak}, {"strong", Connection::kStrong}});
}

Tuple<IntArray, IntArray> componentLabels(const BoundNetwork& bound, std::string_view connection,
                                          nb::object callable) {
  const Connection how = connectionNamed(connection);
  Follow follow(std::move(callable));
  const Progress progress = follow.progress();
  ComponentLabels made = reading(
      bound, [&](const Network& network) { return components(network, how, progress).value(); });
  return nb::make_tuple(arrayOf(std::move(made.labels)), arrayOf(std::move(made.sizes)));
}

nb::typed<nb::list, Part> split(const BoundNetwork& bound, std::string_view connection) {
  const Connection how = connectionNamed(connection);
  return listOf(following(bound, ChangeOptions{},
                          [how](const Network& network, const ChangeOptions& options) {
                            return componentNetworks(network, how, options);
                          }));
}

Part largest(const BoundNetwork& bound, std::string_view connection) {
  const Connection how = connectionNamed(connection);
  return tupleOf(following(bound, ChangeOptions{},
                           [how](const Network& network, const ChangeOptions& options) {
                             return largestComponent(network, how, options);
                           }));
}

Tuple<BoundNetwork, nb::typed<nb::list, IntArray>, IntArray> united(const nb::list& networks,
                                                                    std::string_view by) {
  UnionOptions options;
  options.by = named<UnionBy>(
      by, "by",
      {{"nothing", UnionBy::kNothing}, {"index", UnionBy::kIndex}, {"name", UnionBy::kName}});
  std::vector<BoundNetwork> bound;
  for (const nb::handle network : networks) bound.push_back(nb::cast<BoundNetwork&>(network));
  Follow follow{nb::none()};
  options.progress = follow.progress();
  std::optional<UnitedNetwork> made;
  {
    const nb::gil_scoped_release released;
    std::vector<std::unique_ptr<ReadingUse>> uses;
    std::vector<Network> all;
    for (const BoundNetwork& one : bound) {
      uses.push_back(std::make_unique<ReadingUse>(*one.use));
      all.push_back(one.network);
    }
    made = Network::united(all, options).value();
  }
  nb::typed<nb::list, IntArray> vertices;
  for (std::vector<std::uint64_t>& map : made->vertices) vertices.append(arrayOf(std::move(map)));
  return nb::make_tuple(BoundNetwork(std::move(made->network)), vertices,
                        arrayOf(std::move(made->firstEdges)));
}

}  // namespace

void bindDerived(nb::module_& m) {
  m.def("copy", &changed<&Network::copy>, nb::arg("network"));
  m.def("reversed", &changed<&Network::reversed>, nb::arg("network"));
  m.def("as_directed", &changed<&Network::asDirected>, nb::arg("network"));
  m.def("as_undirected", &changed<&Network::asUndirected>, nb::arg("network"));
  m.def("with_more_vertices", &withMoreVertices, nb::arg("network"), nb::arg("count"));
  m.def("simplified", &simplified, nb::arg("network"), nb::arg("parallels"), nb::arg("drop_loops"));
  m.def("subnetwork", &subnetwork, nb::arg("network"), nb::arg("vertices"));
  m.def("subnetwork_of_edges", &subnetworkOfEdges, nb::arg("network"), nb::arg("edges"),
        nb::arg("keep_vertices"));
  m.def("neighborhood", &neighbourhood, nb::arg("network"), nb::arg("vertex"), nb::arg("distance"),
        nb::arg("mode"));
  m.def("components", &componentLabels, nb::arg("network"), nb::arg("connection"),
        nb::arg("progress").none());
  m.def("split", &split, nb::arg("network"), nb::arg("connection"));
  m.def("largest_component", &largest, nb::arg("network"), nb::arg("connection"));
  m.def("united", &united, nb::arg("networks"), nb::arg("by"));
}

}  // namespace veq::python
