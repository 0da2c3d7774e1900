#include <memory>
#include <string>

#include "command_line.hpp"
#include "failure.hpp"
#include "format.hpp"
#include "network_files.hpp"
#include "outputs.hpp"
#include "streams.hpp"

namespace veq::tool {
namespace {

struct ConvertArguments {
  Input input;
  Output output;
  bool lossy = false;
};

constexpr auto kConvertExamples = R"(  veq convert data/lesmis.xnet lesmis.net
      From xnet to Pajek. The suffix says what is written: .xnet, .net for Pajek,
      .edges or .txt for edge lists, .veqa for archives, .graphml, .gml, .mtx and
      .csv. Other files need --to. What is read is seen from its content.
  veq convert data/karate.xnet karate.veqa
      To an archive, a CBOR file that other languages can open.
  veq convert --directed citations.txt citations.xnet
      From an edge list of arcs. Most edge lists do not say themselves whether
      they are directed.
  veq convert data/karate.xnet - --to graphml
      To standard output; - is standard input in the place of the first file.

  veq convert data/lesmis.xnet lesmis.csv --vertices lesmis-vertices.csv
      Tables for spreadsheets: the edges in one, the vertices in the other.
  veq convert --number-names numbers.el numbers.net
      Vertices without a name get one: their id, or else their index.

What is odd in the file that is read is said on standard error, as FILE:LINE and
what was made of it. Where the result would not keep something that the network
has, nothing is written, the exit code is 1, and the reason says which formats
keep it; --lossy writes the rest. veq check says beforehand what each format
would lose.)";

void convert(ConvertArguments& arguments) {
  arguments.output.mayLose = arguments.lossy;
  requireDistinct({arguments.input.file},
                  {{"OUT", arguments.output.file}, {"--vertices", arguments.output.vertexTable}});
  requireWritable(arguments.output);
  if (!arguments.output.vertexTable.empty()) {
    if (formatToWrite(arguments.output.file, arguments.output.to) != FileFormat::kCsv) {
      throw WrongUsage("--vertices is for tables, and " + outputName(arguments.output.file) +
                       " is none");
    }
    requireWritable(arguments.output.vertexTable);
  }
  saveNetwork(loadNetwork(arguments.input).network, arguments.output);
}

}  // namespace

void addConvert(CommandLine& commandLine) {
  const auto arguments = std::make_shared<ConvertArguments>();
  Command command =
      commandLine.addCommand("convert", "Write a network in another format", kConvertExamples);
  addInput(command, "IN", arguments->input);
  command.addPositional("OUT", arguments->output.file, "The file to write; - for standard output");
  addOutputFormat(command, arguments->output);
  command.addFlag("--lossy", arguments->lossy, "Write OUT also where it loses something");
  command.addFlag("--number-names", arguments->output.numberNames,
                  "Call vertices that have no name by their id or index");
  command.addText("--vertices", "FILE", "a file", arguments->output.vertexTable,
                  "Write the vertices beside the edges of a CSV file");
  command.onRun([arguments] { convert(*arguments); });
}

}  // namespace veq::tool
