#include <memory>
#include <string>
#include <utility>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "failure.hpp"
#include "network_files.hpp"
#include "outputs.hpp"
#include "page_options.hpp"
#include "progress_line.hpp"
#include "streams.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct PageArguments {
  Input input;
  std::string page;
  std::string picture;
  Showing showing;
};

constexpr auto kPageExamples = R"(  veq page data/lesmis.xnet lesmis.html
      One file that any browser opens, with nothing to install and no network:
      move and zoom, search, colour by degree or by any property, see them all
      as a table. veq walk --page writes one on which a walk is walked again.
  veq page data/karate.xnet karate.html --layout circle --title "A karate club"
      On a circle, in the order of the vertices. By default vertices are where
      the property "Position" says, or else where forces between them lead.
  veq page data/lesmis.xnet lesmis.html --color degree --size strength
      What colours and sizes are by at first; both can be changed on the page.
  veq page data/lesmis.xnet --svg lesmis.svg --color degree
      A picture of up to 20000 vertices and edges instead, or as well.

A page has at most 200000 vertices and 1000000 edges.)";

PictureOptions pictureOptions(const PageOptions& page) {
  PictureOptions options;
  options.title = page.title;
  options.layout = page.layout;
  options.color = page.color;
  options.size = page.size;
  return options;
}

void savePicture(const Network& network, const PageOptions& page, const std::string& input,
                 const std::string& output) {
  std::optional<Outcome> written;
  PictureOptions options = pictureOptions(page);
  watch("drawing " + printable(outputName(output)), [&](const Progress& progress) {
    options.progress = progress;
    written = writeSvg(output, network, options);
  });
  if (!*written) failShowing(written->error(), input, output);
}

void runPage(const PageArguments& arguments) {
  requireDistinct({arguments.input.file}, {{"OUT", arguments.page}, {"--svg", arguments.picture}});
  for (const std::string& file : {arguments.page, arguments.picture}) {
    if (!file.empty()) requireWritable(file);
  }
  const LoadedNetwork loaded = loadNetwork(arguments.input);
  const Network network(loaded.network);
  const PageOptions options = pageOptions(arguments.showing, loaded.name);
  if (!arguments.page.empty()) savePage(network, options, nullptr, loaded.name, arguments.page);
  if (!arguments.picture.empty()) savePicture(network, options, loaded.name, arguments.picture);
}

}  // namespace

void addPage(CommandLine& commandLine) {
  const auto arguments = std::make_shared<PageArguments>();
  Command command = commandLine.addCommand(
      "page", "Write a page that shows a network in any browser", kPageExamples);
  addInput(command, "FILE", arguments->input);
  command.addPositionalUnless("--svg", "OUT", arguments->page,
                              "The page to write; - for standard output");
  command.addText("--svg", "OUT.svg", "a file", arguments->picture,
                  "Write a picture instead, or as well; - for standard output");
  addShowing(command, arguments->showing);
  command.onRun([arguments] { runPage(*arguments); });
}

}  // namespace veq::tool
