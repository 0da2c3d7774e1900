// calls build|walk ENDS VERTICES: the least processor seconds of some rounds of the same calls as
// in calls.py, for the edges of the file of 64-bit integers, first all sources and then all
// targets.
#include <algorithm>
#include <cstdint>
#include <ctime>
#include <fstream>
#include <iostream>
#include <iterator>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "veq/network.hpp"
#include "veq/walkers.hpp"

namespace {

std::vector<std::int64_t> read(const char* path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  std::vector<std::int64_t> values(static_cast<std::size_t>(file.tellg()) / sizeof(std::int64_t));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(values.data()),
            static_cast<std::streamsize>(values.size() * sizeof(std::int64_t)));
  return values;
}

template <class Call>
double least(int rounds, Call call) {
  std::vector<double> times;
  for (int round = 0; round <= rounds; ++round) {
    const std::clock_t begun = std::clock();
    call();
    times.push_back(static_cast<double>(std::clock() - begun) / CLOCKS_PER_SEC);
  }
  return *std::min_element(times.begin(), times.end());
}

}  // namespace

int main(int, char** arguments) {
  const std::vector<std::int64_t> ends = read(arguments[2]);
  const std::span<const std::int64_t> all(ends);
  veq::BuildOptions options;
  options.vertices = std::stoull(arguments[3]);
  const auto build = [&] {
    return veq::Network::build(all.first(all.size() / 2), all.last(all.size() / 2), options)
        .value();
  };
  if (std::string(arguments[1]) == "build") {
    std::cout << least(20, [&] { static_cast<void>(build()); }) << '\n';
    return 0;
  }
  const veq::Network network = build();
  std::vector<std::uint64_t> starts(1000);
  std::iota(starts.begin(), starts.end(), std::uint64_t{0});
  std::cout << least(40, [&] {
    veq::RandomState state = veq::RandomState::seeded(1).value();
    veq::Walkers walkers = veq::Walkers::at(network, starts).value();
    veq::WalkOptions walk;
    walk.steps = 1000;
    walk.random = &state;
    static_cast<void>(walkers.walk(walk).value());
    static_cast<void>(walkers.visits());
  }) << '\n';
}
