// page_samples DIRECTORY: writes pages of many kinds there, NAME.html, each with its block,
// NAME.veqp.
#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/veq.hpp"

namespace {

using namespace veq;

/// The block, out of the page.
std::string blockOf(const std::string& page) {
  constexpr std::string_view kSigns =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  constexpr std::string_view kBefore = "type=\"application/octet-stream\">";
  std::string block;
  std::uint32_t bits = 0;
  int count = 0;
  for (std::size_t i = page.find(kBefore) + kBefore.size(); kSigns.find(page[i]) != kSigns.npos;
       ++i) {
    bits = bits << 6 | static_cast<std::uint32_t>(kSigns.find(page[i]));
    if ((count += 6) < 8) continue;
    count -= 8;
    block += static_cast<char>(bits >> count & 255);
  }
  return block;
}

class Samples {
 public:
  explicit Samples(std::string folder) : folder_(std::move(folder)) {}

  void write(const std::string& name, const Network& network, PageOptions options = {},
             const WalkRecord* walk = nullptr) {
    if (options.title.empty()) options.title = name;
    const std::string page = pageOf(network, options, walk).value();
    writeFile(folder_ + "/" + name + ".html", page).value();
    writeFile(folder_ + "/" + name + ".veqp", blockOf(page)).value();
    std::printf("%s: %zu bytes\n", name.c_str(), page.size());
  }

  void write(const std::string& name, const Network& network, Walkers& walkers, WalkOptions options,
             std::uint32_t seed) {
    RandomState state = RandomState::seeded(seed).value();
    options.random = &state;
    const WalkRecord record = walkers.record(options).value();
    PageOptions page;
    page.seed = seed;
    page.call = "page_samples " + name;
    write(name, network, page, &record);
  }

 private:
  std::string folder_;
};

WalkOptions steps(std::uint64_t count, Choice choice = Choice::kPublished, double restart = 0.0) {
  WalkOptions options;
  options.steps = count;
  options.choice = choice;
  options.restart = restart;
  return options;
}

Network withNames(Network network, std::vector<PropertyValue> names, const char* key = "Name") {
  network.setVertexColumn(key, std::make_shared<GenericArray>(std::move(names))).value();
  return network;
}

/// 0 - 1, 0 - 2, 1 - 2, 2 - 3, 3 - 0, 1 - 3, with a loop, a parallel edge and a weight of 0.
Network small(bool directed = false) {
  const std::vector<float> weights{1, 2.5F, 0, 4, 0.5F, 3, 1.5F, 2};
  BuildOptions options;
  options.directed = directed;
  options.edgeWeights = weights;
  return Network::build({{0, 1}, {0, 2}, {1, 2}, {2, 3}, {3, 0}, {1, 3}, {2, 2}, {3, 2}}, options)
      .value();
}

void writeShapes(Samples& samples) {
  BuildOptions five;
  five.vertices = 5;
  BuildOptions one;
  one.vertices = 1;
  samples.write("empty", Network::build({}).value());
  samples.write("one", Network::build({}, one).value());
  samples.write("no_edges", Network::build({}, five).value());
  samples.write("loops", Network::build({{0, 0}, {1, 1}, {1, 1}}).value());
  samples.write("small", small());
  samples.write("directed", small(true));
  Network together = small();
  Shared<VEQVector2dArray> positions = VEQVector2dArray::initWithSize_precision(4, 1);
  together.setVertexColumn("Position", positions).value();
  samples.write("coincident", together);
  PageOptions circle;
  circle.layout = Layout::kCircle;
  samples.write("circle", small(), circle);
}

void writeTexts(Samples& samples) {
  const std::vector<PropertyValue> hostile{"</script><script>window.pwned=1</script>",
                                           "<img src=x onerror=window.pwned=1>",
                                           "\" onload=\"window.pwned=1",
                                           "javascript:window.pwned=1",
                                           std::string("NUL \0 and \xE2\x80\xAE right to left", 27),
                                           "${window.pwned=1}{{window.pwned=1}}",
                                           "=HYPERLINK(\"x\")",
                                           "\xFF\xFE no UTF-8",
                                           "",
                                           PropertyValue(),
                                           "-->]]><!--",
                                           std::string(1000, 'w')};
  BuildOptions twelve;
  twelve.vertices = 12;
  Network network = withNames(
      Network::build({{0, 1}, {1, 2}, {2, 3}, {4, 5}, {6, 7}, {8, 9}, {10, 11}}, twelve).value(),
      hostile);
  network = withNames(network, hostile, "</script><svg onload=window.pwned=1>");
  std::vector<PropertyValue> numbers(12);
  for (int i = 0; i < 11; ++i) numbers[static_cast<std::size_t>(i)] = 0.1 * i;
  numbers[3] = std::numeric_limits<double>::infinity();
  network = withNames(network, numbers, "doubles");
  network = withNames(network, std::vector<PropertyValue>(12, 2.5F), "floats");
  network = withNames(network, std::vector<PropertyValue>(12, 4294967295U), "whole");
  network = withNames(network, std::vector<PropertyValue>(12, -1), "negative");
  PageOptions options;
  options.title = "</title><script>window.pwned=1</script>";
  options.color = "</script><svg onload=window.pwned=1>";
  options.size = "whole";
  options.call = "veq page '</script><script>window.pwned=1</script>'";
  samples.write("hostile", network, options);
}

void writeWalks(Samples& samples, const Network& karate, const Network& lesmis) {
  const std::vector<std::uint64_t> starts{0, 5, 5};
  const auto fresh = [&](const Network& network) { return Walkers::at(network, starts).value(); };
  const std::array<const char*, 3> words{"published", "even", "weighted"};
  for (const Choice choice : {Choice::kPublished, Choice::kEven, Choice::kWeighted}) {
    const std::string word = words[static_cast<std::size_t>(choice)];
    Walkers walkers = fresh(lesmis);
    samples.write("walk_" + word, lesmis, walkers, steps(1000, choice), 7);
    samples.write("walk_" + word + "_restart", lesmis, walkers, steps(500, choice, 0.1), 8);
  }
  Walkers long1 = fresh(karate);
  samples.write("walk_long", karate, long1, steps(1'000'000), 4294967295U);
  WalkOptions target;
  target.target = 0.99;
  target.steps = 100'000;
  Walkers walkers = fresh(lesmis);
  samples.write("walk_target", lesmis, walkers, target, 1);
  target.steps.reset();
  target.restart = 0.05;
  target.choice = Choice::kWeighted;
  Walkers endless = fresh(lesmis);
  samples.write("walk_endless", lesmis, endless, target, 3);
  const Network arc = Network::build({{0, 1}, {1, 2}, {5, 2}}, {.directed = true}).value();
  Walkers stuck = Walkers::at(arc, starts).value();
  target = {};
  target.target = 1.0;
  samples.write("walk_stuck", arc, stuck, target, 1);
  Walkers loops = Walkers::at(small(), std::vector<std::uint64_t>{3, 0}).value();
  samples.write("walk_loops", small(), loops, steps(50, Choice::kWeighted), 2);
}

void writeMemories(Samples& samples, const Network& karate, const Network& lesmis) {
  const std::vector<std::uint64_t> starts{0, 5, 5};
  MemoryOptions memory;
  memory.sizes = {3, 4, 5};
  Walkers plain = Walkers::withMemory(lesmis, starts, memory).value();
  samples.write("memory", lesmis, plain, steps(300), 7);
  samples.write("memory_again", lesmis, plain, steps(300, Choice::kEven, 0.1), 8);
  memory.errors = {0.25F};
  memory.listeners = karate;
  Walkers telling = Walkers::withMemory(lesmis, starts, memory).value();
  samples.write("memory_telling", lesmis, telling, steps(300), 7);
  samples.write("memory_telling_again", lesmis, telling, steps(300), 9);
}

Network read(const char* file) { return readNetwork(file).value(); }

Network grown(std::uint64_t n) { return barabasiAlbertNetwork(n, 3, {.seed = 1}).value(); }

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  Samples samples(argv[1]);
  const Network karate = read(VEQ_DATA "/karate.xnet");
  const Network lesmis = read(VEQ_DATA "/lesmis.xnet");
  samples.write("karate", karate);
  samples.write("lesmis", lesmis);
  writeShapes(samples);
  writeTexts(samples);
  writeWalks(samples, karate, lesmis);
  writeMemories(samples, karate, lesmis);
  for (const std::uint64_t n : {1000U, 10'000U, 100'000U}) {
    samples.write("grown_" + std::to_string(n), grown(n));
  }
  return 0;
}
