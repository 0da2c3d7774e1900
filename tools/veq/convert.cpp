#include <memory>
#include <string>

#include "command_line.hpp"
#include "failure.hpp"
#include "network_files.hpp"

namespace veq::tool {
namespace {

struct Options {
  std::string input;
  std::string output;
  bool directed = false;
};

constexpr auto kExamples = R"(  veq convert data/lesmis.xnet lesmis.net
      From xnet to Pajek. Suffixes say which format a file has: .xnet, .net for
      Pajek, .edges or .txt for edge lists, .veqa for archives.
  veq convert data/karate.xnet karate.veqa
      To an archive, a CBOR file that other languages can open.
  veq convert --directed citations.txt citations.xnet
      From an edge list of arcs. Only edge lists do not say themselves whether
      they are directed.

Whatever the result does not keep is said on standard error. Where the result
could not be read back at all, nothing is written and the exit code is 1.

Edge lists hold one edge a line, "FROM TO" or "FROM TO WEIGHT", separated by
blanks; the first two are names of vertices. Lists of two columns are read
whole. (A program that hands such a list to the library's own edge-list reader
loses every other line, which is taken for a weight; this program splits the
lines itself.) Lines that begin with # or % are skipped, which is said.)";

void convert(const Options& options) {
  if (options.directed && formatOf(options.input) != Format::kEdgeList) {
    throw WrongUsage("--directed", "is for edge lists, and " + options.input + " is none");
  }
  saveNetwork(*loadNetwork(options.input, options.directed), options.output);
}

}  // namespace

void addConvert(CommandLine& commandLine) {
  const auto options = std::make_shared<Options>();
  Command command =
      commandLine.addCommand("convert", "Write a network in another format", kExamples);
  command.addPositional("IN", options->input, "The network");
  command.addPositional("OUT", options->output, "The file to write");
  command.addFlag("--directed", options->directed, "Take an edge list for a list of arcs");
  command.onRun([options] { convert(*options); });
}

}  // namespace veq::tool
