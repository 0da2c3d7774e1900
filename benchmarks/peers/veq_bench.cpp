#include "veq/base/diagnostic_log.hpp"
#include "veq/base/parallelism.hpp"
#include "veq_tasks.hpp"

namespace bench {

using veq::Owned;
using veq::VEQNetwork;
using veq::VEQNumberArray;

Owned<VEQNumberArray> numberArrayOf(const std::vector<std::uint64_t>& values) {
  return VEQNumberArray::initWithUnsignedIntegerArray_count(values.data(), values.size());
}

Owned<VEQNetwork> networkOf(const Edges& edges, bool directed) {
  const auto from = numberArrayOf(edges.from);
  const auto to = numberArrayOf(edges.to);
  if (edges.weights.empty()) {
    return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
        edges.vertices, *from, *to, directed);
  }
  const auto weights =
      VEQNumberArray::initWithFloatArray_count(edges.weights.data(), edges.weights.size());
  return VEQNetwork::
      initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          edges.vertices, *from, *to, directed, nullptr, weights.get());
}

Owned<VEQNetwork> namedNetworkOf(const Edges& edges) {
  auto network = networkOf(edges);
  std::vector<veq::PropertyValue> names;
  names.reserve(edges.vertices);
  for (std::uint64_t v = 0; v < edges.vertices; ++v) names.emplace_back(nameOf(v));
  network->setPropertiesOfVertices_forKey(std::make_shared<veq::GenericArray>(std::move(names)),
                                          "Name");
  return network;
}

}  // namespace bench

int main(int count, char** values) {
  veq::setDiagnosticSink({});
  veq::setParallelism(static_cast<unsigned>(bench::Arguments(count, values).count("threads", 1)));
  std::vector<bench::Task> tasks;
  for (const auto& group : {bench::modelTasks(), bench::networkTasks(), bench::questionTasks(),
                            bench::formatTasks(), bench::walkTasks()}) {
    tasks.insert(tasks.end(), group.begin(), group.end());
  }
  return bench::run(count, values, tasks);
}
