// Networks for walks alone.
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string_view.h>

#include "veq/walkers.hpp"

#include "reader.hpp"
#include "support.hpp"

namespace veq::python {
namespace {

// (vertices, edges, entries, bytes)
void announceTo(const nb::object& callable, std::function<void(const WalkNetworkSize&)>& announce) {
  if (callable.is_none()) return;
  announce = [&callable](const WalkNetworkSize& size) {
    const nb::gil_scoped_acquire held;
    callable(size.vertices, size.edges, size.entries, size.bytes());
  };
}

BoundWalkNetwork walkNetworkOf(const BoundNetwork& bound, std::optional<std::uint64_t> mostBytes,
                               nb::object announce, nb::object progress,
                               std::optional<unsigned> threads) {
  Follow follow(std::move(progress));
  WalkNetworkOptions options;
  options.mostBytes = mostBytes;
  options.threads = threads;
  announceTo(announce, options.announce);
  options.progress = follow.progress();
  return {reading(
      bound, [&](const Network& network) { return WalkNetwork::of(network, options).value(); })};
}

// The indices as the library takes them, which may be those of the array.
std::span<const std::uint64_t> wordsOf(const IndexSpan& span, std::vector<std::uint64_t>& copy) {
  if (const auto inPlace = span.inPlace()) return *inPlace;
  copy.resize(span.count());
  for (std::size_t i = 0; i < copy.size(); ++i) copy[i] = span[i];
  return copy;
}

// What the callable gives when it is called: pairs of arrays, one behind the other.
void giveBlocks(const nb::object& callable, const EdgeReceiver& receiver) {
  const nb::gil_scoped_acquire held;
  std::vector<std::uint64_t> sources;
  std::vector<std::uint64_t> targets;
  for (nb::handle block : callable()) {
    const nb::tuple pair = nb::cast<nb::tuple>(block);
    const auto from = nb::cast<AnyArray>(pair[0]);
    const auto to = nb::cast<AnyArray>(pair[1]);
    const nb::gil_scoped_release released;
    receiver(wordsOf(indicesOf(from), sources), wordsOf(indicesOf(to), targets));
  }
}

BoundWalkNetwork walkNetworkFrom(nb::object callable, std::optional<std::uint64_t> vertices,
                                 bool directed, std::optional<std::uint64_t> mostBytes,
                                 nb::object announce, nb::object progress,
                                 std::optional<unsigned> threads) {
  Follow follow(std::move(progress));
  WalkNetworkOptions options;
  options.vertices = vertices;
  options.directed = directed;
  options.mostBytes = mostBytes;
  options.threads = threads;
  announceTo(announce, options.announce);
  options.progress = follow.progress();
  const nb::gil_scoped_release released;
  return {WalkNetwork::fromEdges(
              [&](const EdgeReceiver& receiver) { giveBlocks(callable, receiver); }, options)
              .value()};
}

using WalkReadTuple = Tuple<BoundWalkNetwork, nb::typed<nb::list, NoteTuple>>;
WalkReadTuple readWalkNetwork(nb::bytes path, std::optional<std::string_view> format,
                              std::optional<bool> directed, bool strict,
                              std::optional<std::uint64_t> mostVertices,
                              std::optional<std::uint64_t> mostText,
                              std::optional<std::uint64_t> mostBytes, nb::bytes spoolFolder,
                              nb::object announce, nb::object progress) {
  Follow follow(std::move(progress));
  WalkReadOptions options;
  options.reading.format = formatNamed(format);
  options.reading.directed = directed;
  options.reading.strict = strict;
  options.reading.mostVertices = mostVertices;
  options.reading.mostBytes = mostText;
  options.reading.progress = follow.progress();
  options.mostMemory = mostBytes;
  options.spoolFolder.assign(spoolFolder.c_str(), spoolFolder.size());
  announceTo(announce, options.announce);
  const std::string file(path.c_str(), path.size());
  std::optional<WalkReading> made;
  {
    const nb::gil_scoped_release released;
    made = reader::readWalkNetwork(file, options);
  }
  const auto notes = notesOf(*made);
  return nb::make_tuple(BoundWalkNetwork{std::move(*made).value()}, notes);
}

std::uint64_t listLength(const BoundWalkNetwork& bound, std::int64_t vertex) {
  return bound.network.degree(indexBelow(vertex, bound.network.countVertices(), "vertex"));
}

IntArray neighboursIn(const BoundWalkNetwork& bound, std::int64_t vertex) {
  const nb::gil_scoped_release released;
  const std::uint64_t v = indexBelow(vertex, bound.network.countVertices(), "vertex");
  std::vector<std::uint64_t> list = bound.network.neighbours(v);
  const nb::gil_scoped_acquire held;
  return arrayOf(std::move(list));
}

std::uint64_t bytesToWalk(const BoundWalkNetwork& bound, std::uint64_t agents, bool firstArrivals,
                          bool until) {
  return bound.network.bytesToWalk(agents, firstArrivals, until);
}

std::uint64_t countVertices(const BoundWalkNetwork& bound) { return bound.network.countVertices(); }
std::uint64_t countEdges(const BoundWalkNetwork& bound) { return bound.network.countEdges(); }
std::uint64_t countEntries(const BoundWalkNetwork& bound) { return bound.network.size().entries; }
std::uint64_t countBytes(const BoundWalkNetwork& bound) { return bound.network.size().bytes(); }
bool isDirected(const BoundWalkNetwork& bound) { return bound.network.isDirected(); }

PyGetSetDef properties[] = {
    property<BoundWalkNetwork, &countVertices>("num_vertices", "How many vertices there are."),
    property<BoundWalkNetwork, &countEdges>("num_edges", "How many edges there are."),
    property<BoundWalkNetwork, &countEntries>("num_entries", "How many entries all lists have."),
    property<BoundWalkNetwork, &countBytes>("nbytes", "What rows and neighbours take."),
    property<BoundWalkNetwork, &isDirected>(
        "directed", "Whether edges lead from their source to their target alone."),
    {},
};
PyType_Slot slots[] = {{Py_tp_getset, properties}, {}};

}  // namespace

void bindWalkNetwork(nb::module_& m) {
  nb::class_<BoundWalkNetwork>(m, "WalkNetwork", nb::type_slots(slots))
      .def(nb::init<const BoundWalkNetwork&>(), nb::arg("other"))
      .def("_degree", &listLength, nb::arg("vertex"))
      .def("_neighbors", &neighboursIn, nb::arg("vertex"))
      .def("_bytes_to_walk", &bytesToWalk, nb::arg("agents"), nb::arg("first_arrivals"),
           nb::arg("until"));
  m.def("walk_network_of", &walkNetworkOf, nb::arg("network"), nb::arg("most_bytes").none(),
        nb::arg("announce").none(), nb::arg("progress").none(), nb::arg("threads").none());
  m.def("walk_network_from", &walkNetworkFrom, nb::arg("source"), nb::arg("vertices").none(),
        nb::arg("directed"), nb::arg("most_bytes").none(), nb::arg("announce").none(),
        nb::arg("progress").none(), nb::arg("threads").none());
  m.def("read_walk_network", &readWalkNetwork, nb::arg("path"), nb::arg("format").none(),
        nb::arg("directed").none(), nb::arg("strict"), nb::arg("most_vertices").none(),
        nb::arg("most_text").none(), nb::arg("most_bytes").none(), nb::arg("spool_folder"),
        nb::arg("announce").none(), nb::arg("progress").none());
}

}  // namespace veq::python
