#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "failure.hpp"
#include "network_files.hpp"
#include "table.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct Options {
  std::string file;
  std::optional<std::uint64_t> top;
  std::string largestFile;
  std::string splitDirectory;
};

constexpr auto kExamples = R"(  veq components network.xnet
      How many connected components the network has, and how large they are.
  veq components network.xnet --largest largest.xnet
      Also writes the largest one, the first of equals.
  veq components network.xnet --split parts
      Also writes every component into the directory parts, which is made if it
      does not exist: component-0.xnet, component-1.xnet and so on, in the order
      of their lowest vertices. These files do not keep weights, which is said.

In directed networks, too, two vertices are connected where a path links them
whatever the direction of its edges.)";

void printSizes(const VEQNetwork& network, const std::vector<Shared<VEQNetwork>>& components,
                std::uint64_t top) {
  std::map<std::uint64_t, std::uint64_t, std::greater<>> numberOfSize;
  for (const auto& component : components) ++numberOfSize[component->countVertices()];
  std::cout << sizeText(network) << '\n'
            << counted(components.size(), "component", "components") << '\n';
  if (top == 0) return;
  Table table({"vertices", "components", "share of all vertices"});
  const auto n = static_cast<double>(network.countVertices());
  std::uint64_t rows = 0;
  for (const auto& [size, number] : numberOfSize) {
    if (rows++ == top) break;
    table.addRow({std::to_string(size), std::to_string(number),
                  percentage(static_cast<double>(size) * static_cast<double>(number), n)});
  }
  std::cout << '\n' << table;
  if (numberOfSize.size() > top) {
    std::cout << "and " << counted(numberOfSize.size() - top, "smaller size", "smaller sizes")
              << '\n';
  }
}

void split(const std::vector<Shared<VEQNetwork>>& components, const std::string& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (!std::filesystem::is_directory(directory, error)) {
    throw Failure(directory, "cannot be made a directory");
  }
  for (std::size_t i = 0; i < components.size(); ++i) {
    saveNetwork(*components[i], directory + "/component-" + std::to_string(i) + ".xnet");
  }
}

void runComponents(const Options& options) {
  const Shared<VEQNetwork> network = loadNetwork(options.file);
  if (!options.largestFile.empty()) requireWritable(options.largestFile);
  const std::vector<Shared<VEQNetwork>> components = network->connectedSubNetworksArray();
  printSizes(*network, components, options.top.value_or(10));
  std::cout.flush();
  if (!options.largestFile.empty()) {
    saveNetwork(*network->largestConnectedSubNetwork(), options.largestFile);
  }
  if (!options.splitDirectory.empty()) {
    split(components, options.splitDirectory);
    if (network->isVertexWeighted() || network->isEdgeWeighted()) {
      note(options.splitDirectory, "the weights are lost in these files");
    }
  }
}

}  // namespace

void addComponents(CommandLine& commandLine) {
  const auto options = std::make_shared<Options>();
  Command command =
      commandLine.addCommand("components", "Find the connected components", kExamples);
  command.addPositional("FILE", options->file, "The network");
  command.addWholeNumber("--top", options->top, 0, UINT64_MAX,
                         "How many sizes to list, by default 10");
  command.addText("--largest", "OUT", options->largestFile, "Write the largest component");
  command.addText("--split", "DIR", options->splitDirectory, "Write every component");
  command.onRun([options] { runComponents(*options); });
}

}  // namespace veq::tool
