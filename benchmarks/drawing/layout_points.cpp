// layout_points EDGES N: reads "SOURCE TARGET" lines, and prints where forceLayout() puts the N
// vertices, a line each, behind a line with the seconds that it took.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "veq/drawing.hpp"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::ifstream in(argv[1]);
  std::vector<std::uint64_t> sources;
  std::vector<std::uint64_t> targets;
  for (std::uint64_t source = 0, target = 0; in >> source >> target;) {
    sources.push_back(source);
    targets.push_back(target);
  }
  veq::BuildOptions options;
  options.vertices = std::strtoull(argv[2], nullptr, 10);
  const veq::Network network = veq::Network::build(sources, targets, options).value();
  const auto begin = std::chrono::steady_clock::now();
  const auto points = veq::forceLayout(network).value();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  std::printf("%.4f\n", took.count());
  for (std::uint64_t v = 0; v < points->count(); ++v) {
    const veq::VEQVector2d point = points->vectorAtIndex(v);
    std::printf("%.17g %.17g\n", point.x(), point.y());
  }
  return 0;
}
