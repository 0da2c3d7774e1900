#include <algorithm>
#include <cstdlib>
#include <memory>

#include "veq/natural/network.hpp"
#include "veq_tasks.hpp"

namespace bench {
namespace {

using veq::VEQNetwork;

bool measureBuild(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  const bool directed = arguments.count("dir") != 0;
  const auto from = numberArrayOf(edges.from);
  const auto to = numberArrayOf(edges.to);
  measurement.timeAndWeigh(
      "bytes_per_edge", edges.count(),
      [&] {
        return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
            edges.vertices, *from, *to, directed);
      },
      [](const auto& network) { return network->countEdges(); });
  return true;
}

/// One call for each edge, into a network with vertices only. Somebody may look at the topology
/// after each so many of them.
bool measureInsertion(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  const std::uint64_t batch = arguments.count("batch", edges.count() + 1);
  Edges none;
  none.vertices = edges.vertices;
  measurement.time(
      [&] {
        const veq::Network network(networkOf(none));
        for (std::uint64_t i = 0; i < edges.count(); ++i) {
          network.published()->addEdgesFromVerticesIndices_toVerticesIndices_count(&edges.from[i],
                                                                                   &edges.to[i], 1);
          if ((i + 1) % batch == 0 && network.topology().countEdges() != i + 1) std::abort();
        }
        return network;
      },
      [](const auto& network) { return network.countEdges(); });
  return true;
}

template <class Question>
bool measureArray(const Arguments& arguments, Measurement& measurement, Question question) {
  const auto network = networkOf(edgesOf(arguments, true));
  measurement.time([&] { return question(*network); },
                   [](const auto& array) { return array->integerValueAtIndex(0); });
  return true;
}

bool measureDegrees(const Arguments& arguments, Measurement& measurement) {
  return measureArray(arguments, measurement,
                      [](const VEQNetwork& network) { return network.calcDegrees(); });
}

bool measureStrengths(const Arguments& arguments, Measurement& measurement) {
  return measureArray(arguments, measurement,
                      [](const VEQNetwork& network) { return network.calcStrengths(); });
}

bool measureMatrix(const Arguments& arguments, Measurement& measurement) {
  const auto network = networkOf(edgesOf(arguments));
  const std::uint64_t n = network->countVertices();
  std::vector<float> buffer(n * n);
  measurement.time([&] { return network->buildAdjacencyMatrixInPointer(buffer.data()); },
                   [&](const float*) {
                     double sum = 0;
                     for (const float value : buffer) sum += value;
                     return sum;
                   });
  return true;
}

bool measureSplit(const Arguments& arguments, Measurement& measurement) {
  const auto network = networkOf(edgesOf(arguments));
  measurement.time([&] { return network->connectedSubNetworksArray(); },
                   [](const auto& parts) { return parts.size(); });
  return true;
}

bool measureLargest(const Arguments& arguments, Measurement& measurement) {
  const auto network = networkOf(edgesOf(arguments));
  measurement.time([&] { return network->largestConnectedSubNetwork(); },
                   [](const auto& part) { return part->countEdges(); });
  return true;
}

}  // namespace

std::vector<Task> networkTasks() {
  return {{"build", measureBuild},     {"insert", measureInsertion},
          {"degrees", measureDegrees}, {"strengths", measureStrengths},
          {"adjmat", measureMatrix},   {"decompose", measureSplit},
          {"largest", measureLargest}};
}

}  // namespace bench
