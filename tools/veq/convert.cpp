#include <memory>
#include <string>

#include "command_line.hpp"
#include "network_files.hpp"
#include "outputs.hpp"

namespace veq::tool {
namespace {

struct Options {
  Input input;
  Output output;
};

constexpr auto kExamples = R"(  veq convert data/lesmis.xnet lesmis.net
      From xnet to Pajek. The suffix says what is written: .xnet, .net for Pajek,
      .edges or .txt for edge lists, .veqa for archives, .graphml, .gml, .mtx and
      .csv. Other files need --to. What is read is seen from its content.
  veq convert data/karate.xnet karate.veqa
      To an archive, a CBOR file that other languages can open.
  veq convert --directed citations.txt citations.xnet
      From an edge list of arcs. Most edge lists do not say themselves whether
      they are directed.
  veq convert data/karate.xnet - --to list
      To standard output; - is standard input in the place of the first file.

What is odd in the file that is read is said on standard error, as FILE:LINE and
what was made of it, and so is whatever the result does not keep. Where the
result could not be read back at all, nothing is written and the exit code is 1.)";

void convert(const Options& options) {
  requireDistinct({options.input.file}, {{"OUT", options.output.file}});
  requireWritable(options.output);
  saveNetwork(loadNetwork(options.input).network, options.output);
}

}  // namespace

void addConvert(CommandLine& commandLine) {
  const auto options = std::make_shared<Options>();
  Command command =
      commandLine.addCommand("convert", "Write a network in another format", kExamples);
  addInput(command, "IN", options->input);
  command.addPositional("OUT", options->output.file, "The file to write; - for standard output");
  addOutputFormat(command, options->output);
  command.onRun([options] { convert(*options); });
}

}  // namespace veq::tool
