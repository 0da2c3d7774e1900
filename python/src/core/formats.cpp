// Files.
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string_view.h>

#include "reader.hpp"
#include "support.hpp"
#include "veq/writing.hpp"

namespace veq::python {
namespace {

// (network, notes)
using ReadTuple = Tuple<BoundNetwork, nb::typed<nb::list, NoteTuple>>;
ReadTuple tupleOf(Reading reading) {
  const auto notes = notesOf(reading);
  return nb::make_tuple(BoundNetwork(std::move(reading).value()), notes);
}

ReadOptions optionsOf(std::optional<std::string_view> format, std::optional<bool> directed,
                      bool idsAreIndices, bool strict, bool keepWeights,
                      std::optional<std::uint64_t> mostVertices,
                      std::optional<std::uint64_t> mostBytes, Follow& follow) {
  ReadOptions options;
  options.format = formatNamed(format);
  options.directed = directed;
  options.idsAreIndices = idsAreIndices;
  options.strict = strict;
  options.keepWeights = keepWeights;
  options.mostVertices = mostVertices;
  options.mostBytes = mostBytes;
  options.progress = follow.progress();
  return options;
}

ReadTuple read(nb::bytes source, bool isText, std::optional<std::string_view> format,
               std::optional<bool> directed, bool idsAreIndices, bool strict, bool keepWeights,
               std::optional<std::uint64_t> mostVertices, std::optional<std::uint64_t> mostBytes,
               nb::object progress) {
  Follow follow(std::move(progress));
  const ReadOptions options = optionsOf(format, directed, idsAreIndices, strict, keepWeights,
                                        mostVertices, mostBytes, follow);
  std::string bytes(source.c_str(), source.size());
  std::optional<Reading> made;
  {
    const nb::gil_scoped_release released;
    made = isText ? reader::readNetworkText(std::move(bytes), options)
                  : reader::readNetwork(bytes, options);
  }
  return tupleOf(std::move(*made));
}

void write(const BoundNetwork& bound, nb::bytes path, std::optional<std::string_view> format,
           nb::object progress) {
  Follow follow(std::move(progress));
  WriteOptions options;
  options.format = formatNamed(format);
  options.progress = follow.progress();
  const std::string file(path.c_str(), path.size());
  reading(bound,
          [&](const Network& network) { return writeNetwork(network, file, options).value(); });
}

nb::bytes text(const BoundNetwork& bound, std::string_view format) {
  const FileFormat wanted = *formatNamed(format);
  Follow follow{nb::none()};
  const Progress progress = follow.progress();
  const std::string made = reading(bound, [&](const Network& network) {
    return networkText(network, wanted, progress).value();
  });
  return nb::bytes(made.data(), made.size());
}

nb::bytes vertexTable(const BoundNetwork& bound) {
  const std::string made =
      reading(bound, [](const Network& network) { return vertexTableText(network).value(); });
  return nb::bytes(made.data(), made.size());
}

}  // namespace

void bindFormats(nb::module_& m) {
  m.def("read", &read, nb::arg("source"), nb::arg("is_text"), nb::arg("format").none(),
        nb::arg("directed").none(), nb::arg("ids_are_indices"), nb::arg("strict"),
        nb::arg("keep_weights"), nb::arg("most_vertices").none(), nb::arg("most_bytes").none(),
        nb::arg("progress").none());
  m.def("write", &write, nb::arg("network"), nb::arg("path"), nb::arg("format").none(),
        nb::arg("progress").none());
  m.def("text", &text, nb::arg("network"), nb::arg("format"));
  m.def("vertex_table", &vertexTable, nb::arg("network"));
}

}  // namespace veq::python
