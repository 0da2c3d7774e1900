#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "data.hpp"
#include "failure.hpp"
#include "network_files.hpp"
#include "outputs.hpp"
#include "parts.hpp"
#include "progress_line.hpp"
#include "table.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct ComponentsArguments {
  Input input;
  std::optional<std::uint64_t> top;
  Output largest;
  std::string splitDirectory;
  std::optional<std::size_t> format;
};

constexpr auto kComponentsExamples = R"(  veq components network.xnet
      How many connected components the network has, and how large they are.
  veq components network.xnet --largest largest.xnet
      Also writes the largest one, the first of equals.
  veq components network.xnet --split parts
      Also writes every component into the directory parts, which is made if it
      does not exist: component-0.xnet, component-1.xnet and so on, in the order
      of their lowest vertices. Parts of an earlier split that are replaced or
      stay behind are said.
  veq components network.xnet --format csv
      For other programs, as is --format json.

In directed networks, too, two vertices are connected where a path links them
whatever the direction of its edges.)";

/// How many components there are of each size, the largest first.
using Sizes = std::map<std::uint64_t, std::uint64_t, std::greater<>>;

Sizes sizesOf(const ComponentLabels& components) {
  Sizes sizes;
  for (const std::uint64_t size : components.sizes) ++sizes[size];
  return sizes;
}

/// A part of the network, or what stopped it from being made, which can only be lack of memory.
template <class T>
T made(Result<T> result) {
  if (!result) throw std::bad_alloc();
  return std::move(result).value();
}

void printSizes(std::ostream& out, const VEQNetwork& network, std::uint64_t count,
                const Sizes& sizes, std::uint64_t top) {
  out << sizeText(network) << '\n' << counted(count, "component", "components") << '\n';
  if (top == 0) return;
  Table table({"vertices", "components", "share of all vertices"});
  const auto n = static_cast<double>(network.countVertices());
  std::uint64_t rows = 0;
  for (const auto& [size, number] : sizes) {
    if (rows++ == top) break;
    table.addRow({std::to_string(size), std::to_string(number),
                  percentage(static_cast<double>(size) * static_cast<double>(number), n)});
  }
  out << '\n' << table;
  if (sizes.size() > top) {
    out << "and " << counted(sizes.size() - top, "smaller size", "smaller sizes") << '\n';
  }
}

/// The same for other programs; all sizes, unless fewer are asked for.
Records recordsOf(const VEQNetwork& network, const Sizes& sizes, std::uint64_t top) {
  Records records({"vertices", "components", "share"});
  const auto n = static_cast<double>(network.countVertices());
  std::uint64_t rows = 0;
  for (const auto& [size, number] : sizes) {
    if (rows++ == top) break;
    records.add({size, number, static_cast<double>(size) * static_cast<double>(number) / n});
  }
  return records;
}

void answer(std::ostream& out, const std::string& file, const VEQNetwork& network,
            std::uint64_t count, const Sizes& sizes, const ComponentsArguments& arguments) {
  const auto format = static_cast<Answer>(arguments.format.value_or(0));
  if (format == Answer::kTable) {
    printSizes(out, network, count, sizes, arguments.top.value_or(10));
    return;
  }
  const Records records = recordsOf(network, sizes, arguments.top.value_or(UINT64_MAX));
  if (format == Answer::kCsv) {
    records.writeCsv(out);
    return;
  }
  Data::object()
      .set("file", file)
      .set("vertices", network.countVertices())
      .set("edges", network.countEdges())
      .set("directed", network.isDirected())
      .set("components", count)
      .set("sizes", records.asList())
      .writeJson(out);
}

void runComponents(const ComponentsArguments& arguments) {
  const std::vector<NamedFile> outputs{{"--largest", arguments.largest.file}};
  requireDistinct({arguments.input.file}, outputs);
  if (arguments.largest.to && arguments.largest.file.empty() && arguments.splitDirectory.empty()) {
    throw WrongUsage("--to needs --largest or --split");
  }
  if (!arguments.largest.file.empty()) requireWritable(arguments.largest);
  const LoadedNetwork loaded = loadNetwork(arguments.input);
  const VEQNetwork& network = *loaded.network;
  const Network value(loaded.network);
  ComponentLabels labels;
  watch("finding components", [&](const Progress& progress) {
    labels = made(components(value, Connection::kWeak, progress));
  });
  std::ostream& out = reportFor(outputs);
  answer(out, loaded.name, network, labels.sizes.size(), sizesOf(labels), arguments);
  out.flush();
  if (!arguments.largest.file.empty()) {
    std::optional<Network> largest;
    watch("making the largest component", [&](const Progress& progress) {
      largest = made(largestComponent(value, Connection::kWeak, {.progress = progress})).network;
    });
    saveNetwork(largest->published(), arguments.largest);
  }
  if (arguments.splitDirectory.empty()) return;
  std::vector<DerivedNetwork> parts;
  watch("making the components", [&](const Progress& progress) {
    parts = made(componentNetworks(value, Connection::kWeak, {.progress = progress}));
  });
  splitInto(arguments.splitDirectory, arguments.largest.to, parts,
            {arguments.input.file, arguments.largest.file});
}

}  // namespace

void addComponents(CommandLine& commandLine) {
  const auto arguments = std::make_shared<ComponentsArguments>();
  Command command =
      commandLine.addCommand("components", "Find the connected components", kComponentsExamples);
  addInput(command, "FILE", arguments->input);
  command.addWholeNumber("--top", arguments->top, 0, UINT64_MAX,
                         "How many sizes to list, by default 10, or all as CSV or JSON");
  command.addText("--largest", "OUT", "a file", arguments->largest.file,
                  "Write the largest component; - for standard output");
  command.addText("--split", "DIR", "a directory", arguments->splitDirectory,
                  "Write every component into this directory");
  addOutputFormat(command, arguments->largest);
  addAnswer(command, arguments->format);
  command.onRun([arguments] { runComponents(*arguments); });
}

}  // namespace veq::tool
