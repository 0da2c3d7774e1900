// Answers all questions about the networks that judge_questions.py describes on standard input: a
// line "n m directed weighted", then a line "source target weight" for each edge. Each answer is a
// line with its name and numbers; a line "end" ends those about one network.

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "veq/network.hpp"
#include "veq/questions.hpp"

namespace {

using namespace veq;

void put(std::uint64_t value) {
  if (value == kUnreachable) {
    std::printf(" -1");
  } else {
    std::printf(" %llu", static_cast<unsigned long long>(value));
  }
}

void put(double value) { std::printf(" %.17g", value); }

template <class T>
void line(const char* name, const std::vector<T>& values) {
  std::printf("%s", name);
  for (const T value : values) put(value);
  std::printf("\n");
}

template <class T>
void one(const char* name, T value) {
  line(name, std::vector<T>{value});
}

std::string named(const char* name, const char* direction) {
  return std::string(name) + "." + direction;
}

struct Way {
  Direction direction;
  const char* name;
};
constexpr Way kWays[] = {
    {Direction::kOut, "out"}, {Direction::kIn, "in"}, {Direction::kAll, "all"}};

void answerDegrees(const Network& network) {
  for (const Way& way : kWays) {
    line(named("degrees", way.name).c_str(), network.degrees(way.direction));
    line(named("strengths", way.name).c_str(), network.strengths(way.direction));
    line(named("distribution", way.name).c_str(), degreeDistribution(network, way.direction));
    std::vector<double> strengths;
    for (const StrengthCount& count : strengthDistribution(network, way.direction)) {
      strengths.push_back(count.strength);
      strengths.push_back(static_cast<double>(count.vertices));
    }
    line(named("strengthDistribution", way.name).c_str(), strengths);
    line(named("cores", way.name).c_str(), coreNumbers(network, way.direction));
    for (const bool weighted : {false, true}) {
      line(named(weighted ? "weightedNeighbourDegree" : "neighbourDegree", way.name).c_str(),
           averageNeighbourDegree(
               network,
               {.neighbours = way.direction, .degrees = Direction::kIn, .weighted = weighted}));
    }
  }
  one("density", density(network));
  one("reciprocity", reciprocity(network));
  one("assortativity", degreeAssortativity(network));
  one("assortativity.all", degreeAssortativity(network, Direction::kAll, Direction::kAll));
}

void answerClustering(const Network& network) {
  line("triangles", triangles(network));
  one("countTriangles", countTriangles(network));
  line("localClustering", localClustering(network));
  one("averageClustering", averageClustering(network));
  one("averageClustering.leftOut", averageClustering(network, WithoutPairs::kLeftOut));
  one("transitivity", transitivity(network));
}

void answerPath(const Network& network, const PathOptions& options, const char* name) {
  const std::uint64_t last = network.countVertices() - 1;
  const auto path = shortestPath(network, 0, last, options).value();
  line((std::string(name) + ".vertices").c_str(),
       path ? path->vertices : std::vector<std::uint64_t>());
  line((std::string(name) + ".edges").c_str(), path ? path->edges : std::vector<std::uint64_t>());
  one((std::string(name) + ".length").c_str(), path ? path->length : -1.0);
}

void answerDistances(const Network& network) {
  for (const Way& way : kWays) {
    if (network.countVertices() > 0) {
      line(named("distances", way.name).c_str(), distancesFrom(network, 0, way.direction));
      line(named("weightedDistances", way.name).c_str(),
           weightedDistancesFrom(network, 0, way.direction).value());
      answerPath(network, {.direction = way.direction}, named("path", way.name).c_str());
      answerPath(network, {.direction = way.direction, .weighted = true},
                 named("weightedPath", way.name).c_str());
    }
    const DistanceOptions options{.direction = way.direction};
    const DistanceHistogram histogram = distanceHistogram(network, options).value();
    line(named("histogram", way.name).c_str(), histogram.pairs);
    one(named("unreachable", way.name).c_str(), histogram.unreachablePairs);
    one(named("mean", way.name).c_str(), histogram.meanDistance);
    const Diameter found = diameter(network, options).value();
    line(named("diameter", way.name).c_str(),
         std::vector<std::uint64_t>{found.least, found.most, found.from, found.to});
  }
}

void answerComponents(const Network& network) {
  for (const Connection connection : {Connection::kWeak, Connection::kStrong}) {
    const std::string name = connection == Connection::kWeak ? "weak" : "strong";
    const ComponentLabels labels = components(network, connection);
    line((name + ".labels").c_str(), labels.labels);
    line((name + ".sizes").c_str(), labels.sizes);
    line((name + ".largest").c_str(), largestComponent(network, connection).value().vertices);
    for (const DerivedNetwork& part : componentNetworks(network, connection).value()) {
      line((name + ".part.vertices").c_str(), part.vertices);
      line((name + ".part.edges").c_str(), part.edges);
      line((name + ".part.sources").c_str(), part.network.sources());
      line((name + ".part.targets").c_str(), part.network.targets());
      line((name + ".part.strengths").c_str(), part.network.strengths());
    }
  }
}

void answerRanks(const Network& network) {
  line("pageRank", pageRank(network).value().ranks);
  std::vector<double> personalisation(network.countVertices());
  for (std::uint64_t v = 0; v < personalisation.size(); ++v) {
    personalisation[v] = static_cast<double>((v + 1) % 3);
  }
  line("pageRank.personal", pageRank(network, {.restart = 0.4,
                                               .personalisation = personalisation,
                                               .weighted = false,
                                               .tolerance = 1e-12})
                                .value()
                                .ranks);
}

bool answerNext() {
  std::uint64_t n = 0;
  std::uint64_t m = 0;
  bool directed = false;
  bool weighted = false;
  if (!(std::cin >> n >> m >> directed >> weighted)) return false;
  std::vector<std::uint64_t> from(m);
  std::vector<std::uint64_t> to(m);
  std::vector<double> weights(m);
  for (std::uint64_t e = 0; e < m; ++e) std::cin >> from[e] >> to[e] >> weights[e];
  BuildOptions options{.vertices = n, .directed = directed};
  if (weighted) options.edgeWeights = weights;
  const Network network = Network::build(from, to, options).value();
  answerDegrees(network);
  answerClustering(network);
  answerDistances(network);
  answerComponents(network);
  answerRanks(network);
  std::printf("end\n");
  return true;
}

}  // namespace

int main() {
  while (answerNext()) {
  }
}
