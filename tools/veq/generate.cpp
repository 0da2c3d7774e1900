#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "failure.hpp"
#include "models.hpp"
#include "network_files.hpp"
#include "outputs.hpp"
#include "progress_line.hpp"
#include "seed.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct GenerateArguments {
  ModelArguments model;
  std::optional<std::uint64_t> seed;
  std::optional<std::uint64_t> substream;
  Output output;
};

constexpr auto kGenerateExamples =
    R"(  veq generate barabasi-albert --vertices 1000 --links 3 --seed 1 grown.xnet
      A thousand vertices, of which each new one is linked to three older ones,
      those with many edges being preferred.
  veq generate gnp --vertices 1000 --probability 0.006 --seed 1 random.xnet
      A thousand vertices, of which each two are linked with the probability
      0.006, so that the mean degree is about 6.
  veq generate gnm --vertices 1000 --edges 3000 random.net
      Three thousand edges in the Pajek format; the seed that was used is printed.
  veq generate gnm --vertices 1000 --edges 3000 --seed 1 --substream 7 task7.xnet
      The numbers of task 7, of thousands that share a seed.

veq help generate MODEL states the law of a model. The same seed gives the same
network on every machine.)";

Network grown(const Model& model, const ModelArguments& arguments, RandomState state) {
  VEQRandomGenerator::sharedRandomGenerator()->setState(state);
  std::optional<Result<Network>> network;
  watch("growing the network", [&](const Progress& progress) {
    ModelOptions options;
    options.random = &state;
    options.progress = progress;
    network = model.make(arguments, options);
  });
  if (*network) return std::move(*network).value();
  const Error& error = network->error();
  if (error.kind() == ErrorKind::kArgument) throw WrongUsage(inOptions(model, error.text()));
  throw Failure("not grown", error.text());
}

void generate(const Model& model, const GenerateArguments& arguments) {
  requireDistinct({arguments.model.network.file, arguments.model.degrees},
                  {{"OUT", arguments.output.file}});
  requireWritable(arguments.output);
  ModelArguments ofModel = arguments.model;
  if (!ofModel.network.file.empty()) {
    ofModel.loaded = Network(loadNetwork(ofModel.network).network);
  }
  const std::uint64_t seed = useSeed(arguments.seed);
  const Network network = grown(model, ofModel, stateOf(seed, arguments.substream));
  saveNetwork(network.published(), arguments.output);
  std::ostream& report = reportFor({{"OUT", arguments.output.file}});
  report << sizeText(*network.published()) << ", seed " << seed;
  if (arguments.substream) report << ", substream " << *arguments.substream;
  report << '\n';
  if (network.countVertices() < ofModel.vertices) {
    report << "without the last " << ofModel.vertices - network.countVertices() << " of "
           << ofModel.vertices << ", which have no edges\n";
  }
}

}  // namespace

void addGenerate(CommandLine& commandLine) {
  const auto arguments = std::make_shared<GenerateArguments>();
  Command generateCommand =
      commandLine.addCommand("generate", "Grow a model network", kGenerateExamples);
  for (const Model& model : models()) {
    Command command =
        generateCommand.addCommand("model", model.name, model.summary, model.examples);
    model.addOptions(command, arguments->model);
    command.addWholeNumber("--seed", arguments->seed, 0, UINT32_MAX,
                           "Choose the random numbers; 0 counts as 1");
    command.addWholeNumber("--substream", arguments->substream, 0, RandomState::kSubstreams - 1,
                           "Take the numbers of this task, of many that share the seed");
    command.addPositional("OUT", arguments->output.file,
                          "The file to write; - for standard output");
    addOutputFormat(command, arguments->output);
    command.onRun([arguments, &model] { generate(model, *arguments); });
  }
}

}  // namespace veq::tool
